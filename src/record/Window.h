#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "ByteSource.h"

namespace lumbarn {

/// A buffered view of a byte source. Fetches what is asked for and a little more, so that a walk from header
/// to header does not drag the data along.
class Window {
 public:
  explicit Window(const ByteSource& source) : source_(&source), size_(source.size()) {}

  std::uint64_t size() const { return size_; }

  /// The bytes from a position on that are at hand: at least `needed` of them (at most `capacity`), fewer
  /// only when the file ends. `wanted` tells how many will be read from there in sequence, so that they come
  /// in few transfers. The view holds until the next call.
  std::span<const std::byte> at(std::uint64_t position, std::size_t needed, std::uint64_t wanted = 0) {
    if (position >= start_ && position - start_ <= length_ && length_ - (position - start_) >= needed) {
      const auto skip = static_cast<std::size_t>(position - start_);
      return {buffer_.get() + skip, length_ - skip};
    }
    return fetch(position, needed, wanted);
  }

  static constexpr std::size_t capacity = std::size_t{256} << 10;

 private:
  std::span<const std::byte> fetch(std::uint64_t position, std::size_t needed, std::uint64_t wanted);

  const ByteSource* source_;
  std::uint64_t size_;
  std::unique_ptr<std::byte[]> buffer_;
  std::uint64_t start_ = 0;
  std::size_t length_ = 0;
};

}  // namespace lumbarn
