#pragma once

#include <cstddef>
#include <vector>

namespace lumbarn {

/// Memory that pieces of a file are read into. It begins with a line of the processor's cache: copies of
/// whole pages to a place some bytes behind the beginning of one, which is where the allocator puts large
/// blocks, take several times as long on some processors.
class ReadBuffer {
 public:
  ReadBuffer() = default;
  explicit ReadBuffer(std::size_t bytes) : lines_((bytes + sizeof(Line) - 1) / sizeof(Line)) {}
  std::byte* data() { return lines_.empty() ? nullptr : lines_.front().bytes; }

 private:
  struct alignas(64) Line {
    std::byte bytes[64];
  };
  std::vector<Line> lines_;
};

}  // namespace lumbarn
