#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "ByteSource.h"

namespace lumbarn {

class Session;

/// A buffered view of a byte source. Fetches what is asked for and a little more, so that a walk from header
/// to header does not drag the data along. Keeps the last two fetches, since finding a record looks at its
/// end before its data are read.
class Window {
 public:
  explicit Window(const ByteSource& source) : source_(&source), size_(source.size()) {}

  std::uint64_t size() const { return size_; }

  /// The bytes from a position on that are at hand: at least `needed` of them (at most `capacity`), fewer
  /// only when the file ends. `wanted` tells how many will be read from there in sequence, so that they come
  /// in few transfers. The view holds until the next call.
  std::span<const std::byte> at(std::uint64_t position, std::size_t needed, std::uint64_t wanted = 0) {
    return last_.has(position, needed) ? last_.from(position) : fetch(position, needed, wanted);
  }

  /// Makes every fetch poll the session's cancel flag, and throw LoadCanceled when it is set.
  void watch(const Session& session) { session_ = &session; }

  /// Fetches as much as there is room for each time, for a file that is read from end to end in small pieces.
  void readAhead() { ahead_ = true; }

  static constexpr std::size_t capacity = std::size_t{128} << 10;

 private:
  struct Fetched {
    std::unique_ptr<std::byte[]> bytes;
    std::uint64_t start = 0;
    std::size_t length = 0;
    std::uint64_t number = 0;  // of the fetch, in their order

    bool has(std::uint64_t position, std::size_t needed) const {
      return position >= start && position - start <= length && length - (position - start) >= needed;
    }
    std::span<const std::byte> from(std::uint64_t position) const {  // empty when the file ended before
      const auto skip = static_cast<std::size_t>(std::min<std::uint64_t>(position - start, length));
      return {bytes.get() + skip, length - skip};
    }
  };
  std::span<const std::byte> fetch(std::uint64_t position, std::size_t needed, std::uint64_t wanted);

  const ByteSource* source_;
  const Session* session_ = nullptr;
  std::uint64_t size_;
  bool ahead_ = false;
  Fetched last_;
  Fetched before_;
};

}  // namespace lumbarn
