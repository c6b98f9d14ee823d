#include "ArrayValues.h"

#include <algorithm>

#include <fmt/format.h>

#include "Failure.h"
#include "RunIndex.h"
#include "arrays/ArrayUnits.h"
#include "arrays/DerivedSaturation.h"
#include "frame/NumberText.h"
#include "support/Closest.h"
#include "support/Pattern.h"
#include "support/Text.h"

namespace lumbarn::cli {
namespace {

constexpr std::int64_t pieceRows = std::int64_t{1} << 16;

bool isNumber(const IndexEntry& entry) {
  const ElementType type = typeInfo(entry.typeWord.view()).type;
  return type == ElementType::Integer || type == ElementType::Single || type == ElementType::Double ||
         type == ElementType::Short;
}

std::string nameOf(const IndexEntry& entry) { return std::string(entry.keyword.view()); }

/// As a number of its own type, so that it is as short as it can be.
void put(TableWriter& table, const IndexEntry& entry, double value) {
  switch (typeInfo(entry.typeWord.view()).type) {
    case ElementType::Integer:
    case ElementType::Short:
      return table.number(static_cast<std::int32_t>(value));
    case ElementType::Double:
      return table.number(value);
    default:
      return table.number(static_cast<float>(value));
  }
}

}  // namespace

ArrayValues::ArrayValues(ArrayReader& reader, const IndexStep& step, const RunFamily& run,
                         const ArrayOptions& options, Console& console)
    : reader_(reader), step_(step), options_(options), console_(console), cells_(step.cellsOf(options.grid)) {
  const IndexStep* const steps[] = {&step};
  requireGrid(steps, options.grid, stepName());
  if (!reader.index().init) derived_ = derivedArray(step, options.grid);
  for (const std::string& list : options.names) {
    for (const std::string& pattern : split(list, ',')) {
      if (!trim(pattern).empty()) choose(std::string(trim(pattern)));
    }
  }
  if (chosen_.empty()) throw Failure(Usage, "--array takes the name of an array");
  ofCells_ = std::ranges::all_of(chosen_, [&](const auto* entry) { return isCellArray(*entry, cells_); });
  ofCells_ ? checkCells() : checkElements();
  if (ofCells_) findActive(run);
}

std::string ArrayValues::stepName() const {
  return reader_.index().init ? reader_.index().files.front() : fmt::format("step {}", step_.number);
}

void ArrayValues::choose(const std::string& pattern) {
  std::vector<std::string> names;
  const bool any = pattern.find_first_of("*?") != pattern.npos;
  const std::size_t before = chosen_.size();
  const auto offer = [&](const IndexEntry& entry) {
    const std::string name = nameOf(entry);
    const bool array = isCellArray(entry, cells_);
    if (array) names.push_back(name);
    const bool fits = any ? array && matchesPattern(name, pattern) : equalNoCase(name, pattern);
    if (!fits || std::ranges::count(chosen_, &entry) != 0) return;
    if (std::ranges::any_of(chosen_, [&](const auto* one) { return one->keyword == entry.keyword; }))
      reportTwice(entry);
    chosen_.push_back(&entry);
  };
  for (const IndexGroup& group : step_.groups) {
    if (!sameGrid(group.grid, options_.grid)) continue;
    for (const IndexEntry& entry : group.entries) offer(entry);
  }
  if (derived_) offer(*derived_);
  if (chosen_.size() > before) {
    if (isNumber(*chosen_.back())) return;
    throw Failure(Usage, fmt::format("{} holds no numbers but {}", nameOf(*chosen_.back()),
                                     chosen_.back()->typeWord.view()));
  }
  const std::string better = closest(upper(pattern), names);
  throw Failure(Usage, fmt::format("{} has no array {}{}; {}", stepName(), pattern,
                                   isGlobalGrid(options_.grid) ? "" : " of grid " + options_.grid,
                                   names.empty()     ? "it has none"
                                   : !better.empty() ? fmt::format("did you mean \"{}\"?", better)
                                                     : "it has " + listText(names)));
}

void ArrayValues::reportTwice(const IndexEntry& entry) {
  console_.tell(repeatedArray(reader_.index(), step_, entry, "shown in the order of the file"));
}

void ArrayValues::checkCells() { rows_ = options_.all ? cells_.cells : cells_.active; }

void ArrayValues::checkElements() {
  rows_ = chosen_.front()->count;
  for (const IndexEntry* entry : chosen_) {
    if (entry->count == rows_) continue;
    throw Failure(Usage, fmt::format("{} has {} values and {} has {}: show them one by one",
                                     nameOf(*chosen_.front()), rows_, nameOf(*entry), entry->count));
  }
  if (!options_.all && !options_.ijk) return;
  const auto other =
      std::ranges::find_if(chosen_, [&](const auto* entry) { return !isCellArray(*entry, cells_); });
  throw Failure(Usage, fmt::format("{} has no values for cells: it cannot be shown with {}", nameOf(**other),
                                   options_.ijk ? "--ijk" : "--all"));
}

/// Looks for the active cells where they matter.
void ArrayValues::findActive(const RunFamily& run) {
  const bool allActive = cells_.active == cells_.cells;
  const bool someFull =
      std::ranges::any_of(chosen_, [&](const auto* entry) { return entry->count == cells_.cells; });
  const bool someActive =
      std::ranges::any_of(chosen_, [&](const auto* entry) { return entry->count != cells_.cells; });
  if (allActive || (!options_.all && !someFull && !options_.ijk)) return;
  const auto pathOf = [&](FileKind kind) { return run.find(kind) ? run.find(kind)->path : std::string(); };
  active_ = findActiveCells(console_.session(), pathOf(FileKind::Init), pathOf(FileKind::EGrid),
                            options_.grid, cells_);
  console_.checkCancelled();
  if (!active_ && options_.all && !someActive) return;  // values of all cells can be shown as they stand
  if (!active_) {
    throw Failure(Unreadable,
                  fmt::format("{}: which {} of the {} cells are active is not known: the run has no INIT "
                              "file with PORV and no EGRID file with ACTNUM for them",
                              reader_.index().files[step_.file], cells_.active, cells_.cells));
  }
  reader_.setActiveCells(options_.grid, *active_);
}

std::vector<Column> ArrayValues::columns(Format format) const {
  std::vector<Column> all;
  if (options_.ijk) {
    const char* const names[] = {"i", "j", "k"};
    for (std::size_t axis = 0; axis < 3; ++axis) {
      all.push_back({names[axis], true, NumberText(cells_.size[axis]).view().size()});
    }
  }
  for (const IndexEntry* entry : chosen_) {
    // Values are written as they are read, so the width is that of all but the longest numbers.
    const std::size_t width = typeInfo(entry->typeWord.view()).type == ElementType::Integer ? 6 : 13;
    const auto unit = arrayUnit(entry->keyword.view(), cells_.units);
    all.push_back({nameOf(*entry), true, format == Format::Table ? width : 0, std::string(unit)});
  }
  return all;
}

/// Rows [first, first + values.size()) of a column.
void ArrayValues::readPiece(std::int64_t first, std::size_t column, std::span<double> values) {
  const IndexEntry& entry = *chosen_[column];
  const auto done = [&](bool qOK) {
    console_.checkCancelled();
    if (!qOK) console_.giveUp(reader_.index().files[step_.file], "cannot be read on");
  };
  bool qOK = false;
  if (ofCells_ && options_.all) {
    reader_.readCells(step_, entry, options_.grid, first, values, qOK);
    return done(qOK);
  }
  if (!ofCells_ || entry.count != cells_.cells || !active_) {
    reader_.read(step_, entry, options_.grid, first, values, qOK);
    return done(qOK);
  }
  // Of an array of all cells those that are active.
  const auto cells = std::span(active_->iA2N()).subspan(static_cast<std::size_t>(first), values.size());
  for (std::size_t row = 0; row < cells.size();) {
    std::size_t to = row + 1;
    while (to < cells.size() && cells[to] == cells[to - 1] + 1) ++to;
    reader_.read(step_, entry, options_.grid, cells[row] - 1, values.subspan(row, to - row), qOK);
    done(qOK);
    row = to;
  }
}

void ArrayValues::write(Format format, std::ostream& out) {
  const auto table = TableWriter::make(format, columns(format), out);
  std::vector<std::vector<double>> values(chosen_.size());
  console_.progress().files(1);
  for (std::int64_t first = 0; first < rows_; first += pieceRows) {
    console_.progress().fraction(static_cast<double>(first) / static_cast<double>(rows_));
    const auto count = static_cast<std::size_t>(std::min(pieceRows, rows_ - first));
    for (std::size_t column = 0; column < chosen_.size(); ++column) {
      values[column].resize(count);
      readPiece(first, column, values[column]);
    }
    for (std::size_t row = 0; row < count; ++row) {
      if (options_.ijk) {
        const std::int64_t number = first + static_cast<std::int64_t>(row);
        const std::int64_t cell = !options_.all && active_ ? active_->cellOf(number + 1) - 1 : number;
        table->number(cell % cells_.size[0] + 1);
        table->number(cell / cells_.size[0] % cells_.size[1] + 1);
        table->number(cell / cells_.size[0] / cells_.size[1] + 1);
      }
      for (std::size_t column = 0; column < chosen_.size(); ++column)
        put(*table, *chosen_[column], values[column][row]);
    }
  }
  table->finish();
  console_.progress().hide();
}

}  // namespace lumbarn::cli
