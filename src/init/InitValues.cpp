// The values of an INIT file: from their records into columns, all cells compressed to the active ones.

#include <algorithm>
#include <filesystem>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include "../arrays/ActiveCells.h"
#include "../files/Families.h"
#include "../record/ByteSource.h"
#include "../support/Fault.h"
#include "../support/System.h"
#include "InitFile.h"

namespace lumbarn {

namespace {

std::size_t size(std::int32_t count) { return static_cast<std::size_t>(std::max(count, 0)); }

/// Elements that are decoded at once when they do not go to their place as they are.
constexpr std::size_t atOnce = std::size_t{1} << 14;

/// Hands the elements of the cursor's record, of integers or singles, to take(first, values) as singles.
template <class Take>
void inParts(RecordCursor& cursor, Take take) {
  const auto count = static_cast<std::size_t>(cursor.header().count);
  const bool integers = cursor.header().type == ElementType::Integer;
  std::vector<float> values(std::min(count, atOnce));
  std::vector<std::int32_t> whole(integers ? values.size() : 0);
  for (std::size_t first = 0; first < count; first += atOnce) {
    const auto part = std::span(values).first(std::min(atOnce, count - first));
    if (integers) {
      const auto words = std::span(whole).first(part.size());
      cursor.read(words, static_cast<std::int64_t>(first));
      std::ranges::transform(words, part.begin(), [](std::int32_t word) { return static_cast<float>(word); });
    } else {
      cursor.read(part, static_cast<std::int64_t>(first));
    }
    take(first, part);
  }
}

/// The values of active cells out of those of all cells, in the order of the cells.
void readCompressed(RecordCursor& cursor, std::span<const std::int32_t> iA2N, std::span<float> column) {
  std::size_t done = 0;
  inParts(cursor, [&](std::size_t first, std::span<const float> part) {
    for (; done < column.size(); ++done) {
      const auto place = static_cast<std::size_t>(iA2N[done]) - 1 - first;
      if (place >= part.size()) break;
      column[done] = part[place];
    }
  });
}

void removeScratch(GRIDINFO& grid) {
  std::error_code ignored;
  if (!grid.zScratchFile.empty()) std::filesystem::remove(std::exchange(grid.zScratchFile, {}), ignored);
}

// Layout of a scratch file, as for every table that hosts take over: number of dimensions, two words that
// they take as fixed, lower bounds, upper bounds, then the values.
constexpr std::int32_t scratchWords = 7;

}  // namespace

void InitFile::removeScratchFiles() {
  for (auto& grid : tGrids_) removeScratch(grid);
}

InitFile::~InitFile() {
  if (!SaveScratchFile) removeScratchFiles();
}

void InitFile::tellDropped(const KeptArray& array, const GRIDINFO& grid) const {
  Diagnosis diagnosis{.message = Message::InitArrayLength,
                      .path = FileName,
                      .keyword = array.name,
                      .offset = array.header.headerAt};
  diagnosis.expected = fmt::format("{} values for grid {}", grid.nActive, grid.GridName);
  diagnosis.found = fmt::format("{}", array.header.count);
  diagnosis.action = "dropped the array";
  session_->diagnose(std::move(diagnosis));
}

/// The same text for each array, so that it is told once where arrays are shown one after the other.
void InitFile::tellUnnumbered(const GRIDINFO& grid) const {
  Diagnosis diagnosis{.message = Message::InitActiveCells, .path = FileName, .keyword = "PORV"};
  if (grid.PORV) diagnosis.offset = grid.PORV->headerAt;
  diagnosis.problem = fmt::format("which {} of the {} cells of grid {} are active is not known", grid.nActive,
                                  grid.nCells, grid.GridName);
  diagnosis.action = "gave no values of arrays of all cells, nor for all cells";
  session_->diagnose(std::move(diagnosis));
}

/// The table of active cells, the cursor being anywhere; with a column, the values of PORV too, as they are
/// at hand.
void InitFile::CreateINIT_A2N(RecordCursor& cursor, GRIDINFO& grid, std::span<float> porvColumn) {
  if (grid.nCells > std::numeric_limits<std::int32_t>::max()) {
    session_->diagnose({.message = Message::ActiveCellsBeyondNumbers,
                        .path = FileName,
                        .keyword = "PORV",
                        .offset = grid.PORV->headerAt,
                        .found = fmt::format("{} cells", grid.nCells),
                        .action = "cells are not numbered"});
    grid.active.emplace();
    return;
  }
  ActivityEvidence evidence{.cells = grid.nCells, .active = grid.nActive};
  auto& porous = evidence.porous.emplace();
  porous.reserve(std::min(size(grid.nActive), static_cast<std::size_t>(grid.PORV->count)));
  cursor.setCurrent(*grid.PORV);
  inParts(cursor, [&](std::size_t first, std::span<const float> part) {
    for (std::size_t i = 0; i < part.size(); ++i) {
      if (!(part[i] > 0)) continue;
      if (porous.size() < porvColumn.size()) porvColumn[porous.size()] = part[i];
      porous.push_back(static_cast<std::int32_t>(first + i + 1));
    }
  });
  if (std::cmp_equal(porous.size(), grid.nActive)) {  // as usual, and without a copy
    grid.active = InitActiveCells{std::move(porous), true};
    return;
  }
  auto decided = decideWithGridFile(evidence, grid);
  const bool certain = decided && decided->certainty == Certainty::Certain;
  if (!certain) {
    session_->diagnose(
        {.message = Message::ActiveCellsGuessed,
         .path = FileName,
         .problem = fmt::format("pore volumes disagree with the active cells of grid {}", grid.GridName),
         .keyword = "PORV",
         .offset = grid.PORV->headerAt,
         .expected = fmt::format("{} cells with pore volume", grid.nActive),
         .found = fmt::format("{}", porous.size()),
         .action = decided ? "took the first ones as active" : "cells are not numbered by them",
         .certainty = Certainty::Guess});
  }
  grid.active.emplace();
  grid.active->agrees = decided.has_value();
  grid.active->iA2N = decided ? decided->cells.iA2N() : std::move(porous);
  grid.active->iA2N.resize(std::min(size(grid.nActive), static_cast<std::size_t>(grid.PORV->count)));
  if (certain && !porvColumn.empty()) {
    cursor.setCurrent(*grid.PORV);
    readCompressed(cursor, grid.active->iA2N, porvColumn);
  }
}

/// The grid file beside the INIT file is read only when pore volumes do not decide.
std::optional<DecidedCells> InitFile::decideWithGridFile(ActivityEvidence& evidence,
                                                         const GRIDINFO& grid) const {
  std::string why;
  const auto runs = findRuns(FileName, why);
  const RunMember* egrid = runs.empty() ? nullptr : runs.front().find(FileKind::EGrid);
  if (egrid) {
    try {
      collectEGrid(*session_, egrid->path, grid.GridName, evidence);
    } catch (BadRecord& damage) {
      damage.diagnosis().action = "looked no further in it for active cells";
      session_->diagnose(std::move(damage.diagnosis()));
    }
  }
  return decideActiveCells(evidence);
}

/// Null when the file does not tell which cells are active.
const InitActiveCells* InitFile::activeOf(RecordCursor& cursor, GRIDINFO& grid) {
  if (!grid.active) {
    if (!grid.PORV || grid.PORV->count != grid.nCells) return nullptr;
    CreateINIT_A2N(cursor, grid);
  }
  return &*grid.active;
}

/// The values of active cells into a column of that length. False when they are not to be had.
bool InitFile::readArray(RecordCursor& cursor, GRIDINFO& grid, const KeptArray& array,
                         std::span<float> column) {
  if (std::cmp_equal(array.header.count, column.size())) {
    cursor.setCurrent(array.header);
    if (array.header.type == ElementType::Single) {
      cursor.read(column);
    } else {
      inParts(cursor, [&](std::size_t first, std::span<const float> part) {
        std::ranges::copy(part, column.begin() + static_cast<std::ptrdiff_t>(first));
      });
    }
    return true;
  }
  if (array.header.count != grid.nCells) return false;
  if (!grid.active && grid.PORV && grid.PORV->headerAt == array.header.headerAt) {
    CreateINIT_A2N(cursor, grid, column);
    return grid.active->agrees;
  }
  const auto* active = activeOf(cursor, grid);
  if (!active || !active->agrees) return false;
  cursor.setCurrent(array.header);
  readCompressed(cursor, active->iA2N, column);
  return true;
}

/// Arrays that turn out not to fit, or whose values are damaged, are dropped on the way. False when it was
/// cancelled.
bool InitFile::readColumns(RecordCursor& cursor, GRIDINFO& grid, XYData& columns) {
  for (std::size_t i = 0; i < grid.arrays.size();) {
    if (session_->yield()) return false;
    const auto& array = grid.arrays[i];
    bool kept = false;
    try {
      kept = readArray(cursor, grid, array, columns.column(i + 1));
      if (!kept) tellDropped(array, grid);
    } catch (BadRecord& damage) {
      endAtDamage(std::move(damage.diagnosis()), "dropped the array");
    }
    if (session_->Container && cursor.fileSize() > 0) {
      session_->Container->fraction(static_cast<double>(array.header.headerAt) /
                                    static_cast<double>(cursor.fileSize()));
    }
    if (kept) {
      ++i;
    } else {
      grid.arrays.erase(grid.arrays.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }
  return true;
}

/// An array is never shorter than its column here, so the block is no larger than what the file holds.
bool InitFile::loadValues(RecordCursor& cursor, GRIDINFO& grid) {
  std::erase_if(grid.arrays, [&](const KeptArray& array) {
    const bool unfit = grid.nActive < 0 || array.header.count < grid.nActive;
    if (unfit) tellDropped(array, grid);
    return unfit;
  });
  if (grid.arrays.empty()) return true;
  XYData columns;
  try {
    columns = XYData(static_cast<std::size_t>(grid.nActive), grid.arrays.size(), *session_);
  } catch (const Fault& fault) {
    if (fault.number() != FaultNumber::OutOfMemory) throw;
    return loadThroughScratch(cursor, grid);
  }
  if (!readColumns(cursor, grid, columns)) return false;
  grid.sData = std::move(columns);  // only now: a grid has all of its columns or none
  return true;
}

/// One column at a time to a scratch file in place of memory. False when it was canceled.
bool InitFile::loadThroughScratch(RecordCursor& cursor, GRIDINFO& grid) {
  grid.zScratchFile = makeTemporaryFile("EI");
  std::string why;
  OutputFile scratch(grid.zScratchFile, why);
  if (!scratch.isOpen())
    session_->diagnose(
        {.message = Message::FileWrite, .path = grid.zScratchFile, .problem = "cannot be written: " + why});
  const std::int32_t words[scratchWords] = {2, 2, 3, 1, 1, grid.nActive, grid.nVectors()};
  bool written = scratch.isOpen() && scratch.write(std::as_bytes(std::span(words)));
  XYData column(static_cast<std::size_t>(grid.nActive), 1, *session_);
  for (const auto& array : grid.arrays) {
    if (session_->yield()) break;
    if (written && !readArray(cursor, grid, array, column.values()))
      std::ranges::fill(column.values(), static_cast<float>(session_->NullValue));
    written = written && scratch.write(std::as_bytes(column.values()));
  }
  if (!scratch.close() || !written)
    throw Fault(FaultNumber::OutOfMemory, "the scratch file cannot be written");
  return !session_->cancelled();
}

std::optional<XYData> InitFile::takeScratchValues() {
  auto* held = find(iGrid);
  if (!held || held->zScratchFile.empty()) return std::nullopt;
  XYData values(static_cast<std::size_t>(held->nActive), held->arrays.size(), *session_);
  std::string why;
  const auto scratch = FileSource::open(held->zScratchFile, why);
  if (!scratch) throw BadRecord({.message = Message::FileOpen, .path = held->zScratchFile, .problem = why});
  const auto bytes = std::as_writable_bytes(values.values());
  if (scratch->readAt(scratchWords * sizeof(std::int32_t), bytes) != bytes.size()) return std::nullopt;
  removeScratch(*held);
  return values;
}

}  // namespace lumbarn
