#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "../support/Session.h"
#include "MarkerRows.h"
#include "MarkerTable.h"

namespace lumbarn {

/// The header of a packed block of markers, 13 integers behind the mark of four characters.
/// docs/formats/markers.md has the layout byte by byte.
struct MarkerHeader {
  static constexpr std::int32_t layout = 20;
  static constexpr std::size_t bytes = 13 * sizeof(std::int32_t);

  std::int32_t iLayout = layout;  ///< 20; in the other byte order the block is of another machine
  std::int32_t nIntegers = 16;    ///< 4-byte integers of a row
  std::int32_t nSingles = 34;     ///< 4-byte singles of a row: 34, or 0 when no row has any
  std::int32_t nDoubles = 0;      ///< 8-byte doubles of a row
  std::int32_t nTexts = 1;        ///< texts of a row
  std::int32_t nWidth = 40;       ///< bytes of a text
  std::int32_t nRows = 0;
  std::int32_t nWells = 0;     ///< rows of kind "WELL"
  std::int32_t nPerfs = 0;     ///< rows of kind "PERF"
  std::int32_t nRowBytes = 0;  ///< bytes of a row
  std::int32_t nItems = 55;    ///< items of a row
  std::int32_t iForm = 1;      ///< byte form that was asked for: 1, 2, 3
  std::int32_t qExtended = 0;  ///< -1 when the step was read with its extended well records
};
static_assert(sizeof(MarkerHeader) == MarkerHeader::bytes);

/// How a block is packed.
struct MarkerPacking {
  std::int32_t iForm = 3;  ///< 2 gives "MKEX", any other "MK32"
  bool qLong = true;       ///< names of more than 40 bytes widen the texts; else they are cut
};

/// The markers of a grid as one block. Throws Fault 9 for connections that are missing from their table, 6
/// and 7 when the block would be too large.
std::vector<std::byte> packMarkers(const RESTARTGRID& grid, bool qMarkers, const MarkerPacking& packing,
                                   const Session& session);

/// A packed block of markers, as a host reads it. Holds a view: the bytes must outlive it.
class MarkerBlock {
 public:
  /// Opens a block and checks every row. False, with the reason in zWhy, if it is not valid; nothing is
  /// held then. Bytes behind the last row do not matter.
  bool open(std::span<const std::byte> bMarkers, std::string& zWhy);

  const MarkerHeader& header() const { return header_; }
  std::size_t rows() const { return static_cast<std::size_t>(header_.nRows); }
  /// The kind of a row, from 1. Throws Fault 9 outside.
  MarkerKind kind(std::size_t iRow) const;
  /// An item of a row, both from 1, as in `MarkerTable`. Throws Fault 9 outside.
  Variant operator()(std::size_t iRow, std::size_t iItem) const;
  /// All rows: what was packed.
  MarkerTable table() const;

 private:
  std::span<const std::byte> row(std::size_t iRow) const;

  MarkerHeader header_;
  std::span<const std::byte> rows_;
};

}  // namespace lumbarn
