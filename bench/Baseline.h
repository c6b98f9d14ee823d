#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace lumbarn::bench {

/// What a figure is measured against: the least that any reader must do with the same bytes.

/// A file's bytes in a new buffer, read in order, with the bytes of every word turned around.
struct SwappedBytes {
  std::unique_ptr<std::byte[]> bytes;
  std::size_t size = 0;
};
SwappedBytes readSwapped(const std::filesystem::path& path);

std::string readText(const std::filesystem::path& path);

/// Every number of a formatted file's text, parsed one after the other with blanks skipped, and lines of
/// headers with them, into a new buffer. Gives how many there were.
std::size_t parseAllNumbers(const std::string& text);

}  // namespace lumbarn::bench
