#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "../record/ByteSource.h"
#include "../support/Export.h"

namespace lumbarn {

/// A text file seen through one buffer, for walks that go forward and skip most of it. Lines end in LF, with
/// or without CR before it; in a file that has CR only, in CR. Keeps one transfer, or the longest line where
/// that is longer.
class LUMBARN_API TextWindow {
 public:
  explicit TextWindow(std::shared_ptr<const ByteSource> source);

  std::uint64_t size() const { return size_; }
  const ByteSource& source() const { return *source_; }
  /// The character that ends a line.
  char lineEnd() const { return lineEnd_; }

  /// The bytes from a position on that are at hand: at least one, none behind the end. Holds until the next
  /// call. Throws BadRecord when the file cannot be read.
  std::string_view from(std::uint64_t position);
  /// The line that begins at a position, with what ends it. Holds until the next call.
  std::string_view line(std::uint64_t position);
  /// Gives the buffer back until it is needed again.
  void release();

 private:
  void fetch(std::uint64_t position, std::size_t room);

  std::shared_ptr<const ByteSource> source_;
  std::uint64_t size_;
  std::vector<char> buffer_;
  std::uint64_t start_ = 0;  // offset of the buffer in the file
  std::size_t length_ = 0;   // bytes in it
  char lineEnd_ = '\n';
};

}  // namespace lumbarn
