#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../record/Form.h"
#include "../record/RecordHeader.h"
#include "../support/Dates.h"
#include "../support/Diagnosis.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "../support/System.h"
#include "../support/Text.h"

namespace lumbarn {

/// A text of at most `width` characters, padded with blanks, that takes no memory of its own: an index has
/// one entry for each record of a run.
template <std::size_t width>
class FixedText {
 public:
  FixedText() { letters_.fill(' '); }
  explicit FixedText(std::string_view text) : FixedText() {
    text.substr(0, width).copy(letters_.data(), width);
  }
  std::string_view view() const { return trimRight(whole()); }
  std::string_view whole() const { return {letters_.data(), width}; }  ///< with the blanks behind it
  bool operator==(const FixedText& other) const {
    return std::memcmp(letters_.data(), other.letters_.data(), width) == 0;
  }

 private:
  std::array<char, width> letters_;
};

/// One record with data.
struct IndexEntry {
  FixedText<8> keyword;
  FixedText<4> typeWord;       ///< as in the file: "REAL", "C032"
  std::int64_t count = 0;      ///< elements
  std::uint64_t position = 0;  ///< byte offset, from 0, of the header record; `nowhere` if derived
  /// Smallest and largest value; not numbers when they are not known. 0 for texts and logicals.
  float minimum = std::numeric_limits<float>::quiet_NaN();
  float maximum = std::numeric_limits<float>::quiet_NaN();

  /// Of an array that is not in the file but derived from others.
  static constexpr std::uint64_t nowhere = std::numeric_limits<std::uint64_t>::max();
  bool isDerived() const { return position == nowhere; }
  bool hasRange() const { return minimum <= maximum; }
};

/// The cells of a grid as its header states them; zeros without a header.
struct GridCells {
  std::array<std::int32_t, 3> size{};
  std::int64_t cells = 0;  ///< product of the three; 0 when it is beyond 64 bits or a size is below 1
  std::int64_t active = 0;
  std::int32_t units = 0;        ///< 1 metric, 2 field, 3 lab
  std::int64_t otherActive = 0;  ///< another number of active cells that the header states; 0 for none
  std::int32_t phases = 0;       ///< bit 1 oil, 2 water, 4 gas

  bool known() const { return cells > 0; }
  bool operator==(const GridCells&) const = default;
};
/// As the header of a restart or INIT file states them, see `statedActiveCells`.
LUMBARN_API GridCells gridCells(const std::vector<std::int32_t>& intehead, bool init);

/// Consecutive records that belong to one grid. A grid may have several groups: an INIT
/// file comes back to the global grid after each pass over the local ones.
struct IndexGroup {
  std::string grid;  ///< empty: the global grid
  GridCells cells;
  std::vector<IndexEntry> entries;  ///< in file order
};

/// A report step, or a complete INIT file.
struct LUMBARN_API IndexStep {
  std::int32_t number = -1;
  double days = 0;             ///< report time, DOUBHEAD word 1; 0 for an INIT file
  std::optional<Moment> date;  ///< with the time of day, as far as the headers state it
  std::size_t file = 0;        ///< which of the index's files
  std::uint64_t position = 0;  ///< byte offset, from 0, of the step's first record
  std::vector<IndexGroup> groups;

  /// The first record of that name in a grid, upper and lower case alike; null when there is none. The empty
  /// name and "ROOT" mean the global grid.
  const IndexEntry* find(std::string_view name, std::string_view grid = {}) const;
  /// All records of that name in a grid, in file order.
  std::vector<const IndexEntry*> findAll(std::string_view name, std::string_view grid = {}) const;
  /// Cells of a grid; unknown when the step has no such grid.
  GridCells cellsOf(std::string_view grid) const;
  bool hasGrid(std::string_view grid) const;
};

/// The records of a restart set (one unified file, or one file for each step) or of an INIT file (one
/// step without a number), with their positions. The same whether it was read from an index file or made by
/// walking.
struct LUMBARN_API RestartIndex {
  std::vector<std::string> files;
  std::vector<FileStamp> stamps;     ///< of these files, as they were before they were indexed
  Form form;                         ///< of the first file
  std::vector<std::int32_t> header;  ///< the first INTEHEAD of the global grid
  std::vector<IndexStep> steps;
  bool unified = true;    ///< all steps in one file
  bool init = false;      ///< of an INIT file
  bool whole = true;      ///< False: reading ended before the end, and a diagnosis says why, or was cancelled
  bool fromFile = false;  ///< read from an index file and found to agree

  void setFiles(std::vector<std::string> paths);
  /// The first step of that number; null when there is none.
  const IndexStep* find(std::int32_t number) const;
  /// All steps of that number: a run that is continued into its own file writes some again.
  std::vector<const IndexStep*> findAll(std::int32_t number) const;
  /// The step at a position, from 1, among those of that number; without a position the one written last.
  /// Null if it does not exist.
  const IndexStep* nth(std::int32_t number, std::optional<std::int32_t> position = std::nullopt) const;
};

/// Makes the index of a restart set by walking from header to header. The time goes with the number of
/// records, not with their size. Steps that are not complete are skipped, and so is damage, as long as
/// records follow it; files that cannot be opened are skipped too. Each gives a diagnosis, and `whole` is
/// False then. A cancel ends the walk with the steps so far, `whole` False and no diagnosis.
LUMBARN_API RestartIndex walkRestart(Session& session, std::span<const std::string> files);
/// The same for an INIT file: one step.
LUMBARN_API RestartIndex walkInit(Session& session, const std::string& file);

/// Reports that a step has another record, `entry`, with the name of an array.
LUMBARN_API Diagnosis repeatedArray(const RestartIndex& index, const IndexStep& step, const IndexEntry& entry,
                                    std::string action);

/// The empty name or "ROOT", by which hosts know the global grid.
LUMBARN_API bool isGlobalGrid(std::string_view name);
LUMBARN_API bool sameGrid(std::string_view a, std::string_view b);

/// Names, upper case, of records of a restart file that are no arrays of cells whatever their length:
/// headers, tables of wells, groups and aquifers, and flows across the faces of cells.
LUMBARN_API bool isRefusedArrayName(std::string_view zName);
/// Whether the type and name of a record are those of an array of cells: integers or singles, and a name that
/// is neither refused nor that of an INIT record about connections between cells.
LUMBARN_API bool mayBeCellArray(ElementType type, std::string_view zName);
/// Such an array with a value for each cell or active cell of its grid: the arrays that are kept of a restart
/// or INIT file when all are wanted.
LUMBARN_API bool isCellArray(const IndexEntry& entry, const GridCells& cells);
/// The same, 64-bit numbers included, which are not kept: what can be shown cell by cell.
LUMBARN_API bool hasCellValues(const IndexEntry& entry, const GridCells& cells);
/// The entries of a group that are cell arrays.
LUMBARN_API std::vector<const IndexEntry*> cellArrays(const IndexGroup& group);

}  // namespace lumbarn
