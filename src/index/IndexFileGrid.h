#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "../record/RecordCursor.h"
#include "../shapes/ByteTable.h"
#include "../support/Export.h"
#include "RestartIndex.h"

namespace lumbarn {

/// The arrays of one grid as an index file (RSSPEC, INSPEC) lists them, in the order of its NAME record.
/// In a damaged file the other records may have another length than NAME: they are kept as stored.
struct LUMBARN_API IndexFileGrid {
  std::string zGrid;         ///< LGRNAME; empty: the global grid
  std::int32_t nArrays = 0;  ///< elements of NUMBER; in an INSPEC file of NAME
  ByteTable bNames{16, 0};   ///< each name, at most 16 characters of it
  std::vector<FixedText<8>> zTypes;
  std::vector<std::int32_t> iNumber;    ///< elements of each array
  std::vector<std::int32_t> iPointer;   ///< low part of the position
  std::vector<std::int32_t> iPointerB;  ///< high part
  std::vector<float> sMin;
  std::vector<float> sMax;
  std::vector<FixedText<8>> keywords;  ///< the names as the records have them

  /// Reads the current record when it is TYPE, NUMBER, POINTER, POINTERB, ARRAYMIN or ARRAYMAX. False for any
  /// other.
  bool take(RecordCursor& cursor);
  /// Reads the current record, which is NAME.
  void takeNames(RecordCursor& cursor);
  /// Copies names into `bNames`, cut at 16 characters.
  void setNames(const std::vector<std::string>& names);
  std::vector<std::string> names() const;  ///< those of `bNames`, trimmed
  /// Byte offsets, from 0, of the header records of the arrays of that name. A name may occur more than once.
  std::vector<std::uint64_t> positions(std::string_view name) const;
};

/// The low part is taken as unsigned, with the high part above its 32 bits.
LUMBARN_API std::uint64_t positionOf(std::int32_t iPointer, std::int32_t iPointerB);

/// The grid of that name; an empty one means the global grid. Null when there is none.
LUMBARN_API const IndexFileGrid* findGrid(const std::vector<IndexFileGrid>& grids, std::string_view zGrid);
/// Its number, from 1; 0 when there is none.
LUMBARN_API std::int32_t indexOfGrid(const std::vector<IndexFileGrid>& grids, std::string_view zGrid);

/// The names in order, each once.
LUMBARN_API void addNewNames(const std::vector<std::string>& more, std::vector<std::string>& names);

/// An array of 2^31 elements and more is indexed as it is stored, in two parts with the position of the
/// first: its name with this type and the number -k, then with its own type and n, for k * 2^31 + n elements.
inline constexpr std::string_view x231 = "X231";
inline constexpr std::int64_t elementsOfX231 = std::int64_t{1} << 31;

/// The entries for a grid of an index file. False with `problem` set when its arrays do not fit
/// together or a name is not valid.
LUMBARN_API bool toGroup(const IndexFileGrid& grid, IndexGroup& group, std::string& problem);

}  // namespace lumbarn
