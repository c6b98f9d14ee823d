#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "../support/Export.h"

namespace lumbarn {

/// Text of a fixed-width field: cut at the first character 0, blanks (and only those) trimmed on both sides.
LUMBARN_API std::string_view fieldText(std::string_view bytes);

/// Two-dimensional array of bytes, `table(iByte, iEntry)`, both from 1; the bytes of one entry lie next to
/// each other. The shape of `bHeaders` (233 bytes an entry), `bOnly` (56) and `bPointers` (24).
class LUMBARN_API ByteTable {
 public:
  ByteTable() = default;
  /// Throws Fault 7 for a size that no memory has.
  ByteTable(std::size_t width, std::size_t entries, char fill = ' ');

  std::size_t width() const { return width_; }
  std::size_t entries() const { return entries_; }

  /// One byte. Throws Fault 9 outside.
  char& operator()(std::size_t iByte, std::size_t iEntry);
  char operator()(std::size_t iByte, std::size_t iEntry) const;
  /// All bytes of one entry, from 1. Throws Fault 9 outside.
  std::span<char> entry(std::size_t iEntry);
  std::span<const char> entry(std::size_t iEntry) const;
  /// The whole block.
  std::span<char> bytes() { return bytes_; }

  /// Copies text left-aligned to bytes [firstByte, firstByte + fieldWidth) of an entry, cut at the field's
  /// width; what the text does not fill stays as it was. Throws Fault 9 when the field is not inside the
  /// entry.
  void put(std::size_t iEntry, std::size_t firstByte, std::size_t fieldWidth, std::string_view text);
  /// The field by `fieldText`. Throws Fault 9 when the field is not inside the entry.
  std::string_view get(std::size_t iEntry, std::size_t firstByte, std::size_t fieldWidth) const;

  /// Keeps the first `entries` entries or adds entries filled with `fill`.
  void resize(std::size_t entries, char fill = ' ');

  bool operator==(const ByteTable&) const = default;

 private:
  std::size_t width_ = 0;
  std::size_t entries_ = 0;
  std::vector<char> bytes_;
};

}  // namespace lumbarn
