#include "Baseline.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <stdexcept>

#include <benchmark/benchmark.h>
#include <fast_float/fast_float.h>

#include "support/System.h"

namespace lumbarn::bench {

namespace {

InputFile openFile(const std::filesystem::path& path) {
  std::string error;
  InputFile file(path.string(), error);
  if (!file.isOpen()) throw std::runtime_error(path.string() + ": " + error);
  return file;
}

#if defined(__x86_64__) && defined(__GNUC__)
__attribute__((target_clones("avx2", "default")))
#endif
void turnWords(std::byte* bytes, std::size_t words) {
  for (std::size_t i = 0; i < words; ++i) {
    std::uint32_t word;
    std::memcpy(&word, bytes + 4 * i, sizeof word);
    word = __builtin_bswap32(word);
    std::memcpy(bytes + 4 * i, &word, sizeof word);
  }
}

}  // namespace

SwappedBytes readSwapped(const std::filesystem::path& path) {
  // Pieces that the second level cache holds, so that turning the words does not fetch them from memory.
  constexpr std::size_t piece = std::size_t{256} << 10;
  std::string error = "has shrunk";
  const auto file = openFile(path);
  const auto size = static_cast<std::size_t>(file.openingStamp().size);
  SwappedBytes result{std::make_unique_for_overwrite<std::byte[]>(size), size};
  for (std::size_t at = 0; at < size; at += piece) {
    const std::span part(result.bytes.get() + at, std::min(piece, size - at));
    if (file.readAt(at, part, error) != part.size()) throw std::runtime_error(path.string() + ": " + error);
    turnWords(part.data(), part.size() / 4);
  }
  benchmark::DoNotOptimize(result.bytes.get());
  return result;
}

std::string readText(const std::filesystem::path& path) {
  const auto file = openFile(path);
  std::string text(static_cast<std::size_t>(file.openingStamp().size), ' ');
  std::string error;
  file.readAt(0, std::as_writable_bytes(std::span(text)), error);
  return text;
}

std::size_t parseAllNumbers(const std::string& text) {
  const auto numbers = std::make_unique_for_overwrite<float[]>(text.size() / 12);
  std::size_t count = 0;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (true) {
    while (at < end && (*at == ' ' || *at == '\n')) ++at;
    if (at == end) break;
    if (*at == '\'') {
      at = std::find(at, end, '\n');
      continue;
    }
    const char* const word = at;
    at = fast_float::from_chars(word, end, numbers[count]).ptr;
    if (at != word) {
      ++count;
      continue;
    }
    while (at < end && *at != ' ' && *at != '\n') ++at;  // T and F of logicals
  }
  benchmark::DoNotOptimize(numbers.get());
  return count;
}

}  // namespace lumbarn::bench
