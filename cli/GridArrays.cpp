#include "GridArrays.h"

#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include "Failure.h"
#include "RunIndex.h"
#include "index/RestartIndexAgreement.h"
#include "record/RecordCursor.h"
#include "support/Closest.h"

namespace lumbarn::cli {
namespace {

std::string pathOf(const RunMember* member) { return member ? member->path : std::string(); }

}  // namespace

class GridArrays::Source {
 public:
  /// A cursor on the record.
  RecordCursor& at(const Place& place) {
    if (!cursor_ || cursor_->path() != *place.path) {
      std::string why;
      cursor_ = openRecords(*place.path, why);
      entry_ = nullptr;
      if (!cursor_) throw BadRecord({.message = Message::FileOpen, .path = *place.path, .problem = why});
    }
    if (entry_ != place.entry) {
      cursor_->seek(place.entry->position);
      cursor_->next();
    }
    entry_ = place.entry;
    return *cursor_;
  }

 private:
  std::unique_ptr<RecordCursor> cursor_;
  const IndexEntry* entry_ = nullptr;  // the current record
};

GridArrays::GridArrays(const RunFamily& run, const Hadrick& grid, std::optional<std::int32_t> step,
                       Console& console)
    : initFile_(pathOf(run.find(FileKind::Init))),
      egridFile_(pathOf(run.find(FileKind::EGrid))),
      grid_(grid),
      zGrid_(grid.isLocal() ? grid.zName : ""),
      oneStep_(step.has_value()),
      source_(std::make_shared<Source>()),
      console_(console) {
  if (!initFile_.empty())
    init_ = indexOfInit(console.session(), initFile_, pathOf(run.find(FileKind::Inspec)));
  if (run.find(FileKind::Restart))
    restart_ = indexOfRestart(console.session(), restartFiles(run, console.session()),
                              pathOf(run.find(FileKind::Rsspec)));
  console.checkCancelled();
  if (!step) {
    for (const IndexStep& each : restart_.steps) steps_.push_back(&each);
  } else if (const IndexStep* last = restart_.nth(*step)) {
    steps_.push_back(last);  // of steps with the same number the one that restart shows too
  }
  if (step && steps_.empty()) throw Failure(Usage, fmt::format("no restart step {} is there", *step));
}

std::vector<double> GridArrays::times() const {
  std::vector<double> times;
  for (const IndexStep* step : steps_) {
    const bool stated = step->days != 0 || restart_.fromFile || step->find("DOUBHEAD");
    times.push_back(stated ? step->days : static_cast<double>(step->number));
  }
  return times;
}

/// A file without headers has arrays for the cells that the grid file states.
GridCells GridArrays::cellsOf(const IndexStep& step) const {
  const GridCells cells = step.cellsOf(zGrid_);
  return cells.known() ? cells
                       : GridCells{{grid_.Nx(), grid_.Ny(), grid_.Nz()}, grid_.nCells(), grid_.nActive()};
}

bool GridArrays::isArray(const IndexEntry& entry, const GridCells& cells) const {
  return cells.cells == grid_.nCells() && hasCellValues(entry, cells);
}

GridArrays::Place GridArrays::find(const RestartIndex& index, const IndexStep& step,
                                   const std::string& name) {
  const GridCells cells = cellsOf(step);
  const auto entries = step.findAll(name, zGrid_);
  if (entries.empty() || !isArray(*entries.front(), cells)) return {};
  if (entries.size() > 1 && repeated_.insert(name).second)
    console_.tell(repeatedArray(index, step, *entries[1], "exported the first one"));
  return {&index.files[step.file], entries.front(), cells};
}

std::vector<std::string> GridArrays::names() const {
  std::vector<std::string> all;
  const auto add = [&](const IndexStep& step) {
    const GridCells cells = cellsOf(step);
    for (const IndexGroup& group : step.groups) {
      if (!sameGrid(group.grid, zGrid_)) continue;
      for (const IndexEntry& entry : group.entries) {
        std::string name(entry.keyword.view());
        if (isArray(entry, cells) && std::ranges::count(all, name) == 0) all.push_back(std::move(name));
      }
    }
  };
  for (const IndexStep* step : steps_) add(*step);
  for (const IndexStep& step : init_.steps) add(step);
  return all;
}

CellArray GridArrays::array(const std::string& name) {
  std::vector<Place> places;
  for (const IndexStep* step : steps_) places.push_back(find(restart_, *step, name));
  if (std::ranges::any_of(places, &Place::entry)) {
    for (std::size_t i = 0; i < places.size(); ++i) {
      if (!places[i].entry) console_.say(fmt::format("{} has no values in step {}", name, steps_[i]->number));
    }
    CellArray array = arrayOf(name, std::move(places));
    array.changes = !oneStep_;
    return array;
  }
  if (!init_.steps.empty()) {
    const Place place = find(init_, init_.steps.front(), name);
    if (place.entry) return arrayOf(name, {place});
  }
  const auto known = names();
  const std::string better = closest(name, known);
  throw Failure(Usage,
                fmt::format("no array \"{}\" with a value for each cell is in the restart or the INIT "
                            "file{}",
                            name, better.empty() ? "" : fmt::format("; did you mean \"{}\"?", better)));
}

/// The grid file may count other cells as active than the arrays have values for: IX counts cells without
/// pore volume.
void GridArrays::needActiveCells(const GridCells& cells) {
  if (active_ || cells.active == grid_.nActive()) return;
  active_ = findActiveCells(console_.session(), initFile_, egridFile_, zGrid_, cells);
  console_.checkCancelled();
  if (active_) return;
  throw Failure(Unreadable,
                fmt::format("{}: the grid has {} active cells and its arrays have {} values: which cells "
                            "these belong to is not known",
                            egridFile_.empty() ? initFile_ : egridFile_, grid_.nActive(), cells.active));
}

/// An array has the type that it has in its first step.
CellArray GridArrays::arrayOf(const std::string& name, std::vector<Place> places) {
  const auto first = std::ranges::find_if(places, [](const Place& place) { return place.entry != nullptr; });
  for (const Place& place : places) {
    if (place.entry && place.entry->count != place.cells.cells) needActiveCells(place.cells);
  }
  CellArray array{.name = name, .read = {}};
  const ElementType type = typeInfo(first->entry->typeWord.view()).type;
  if (type == ElementType::Integer) {
    array.read = reader<std::int32_t>(std::move(places));
  } else if (type == ElementType::Double) {
    array.read = reader<double>(std::move(places));
  } else {
    array.read = reader<float>(std::move(places));
  }
  return array;
}

template <class Number>
CellReader<Number> GridArrays::reader(std::vector<Place> places) const {
  return [this, places = std::move(places)](std::size_t step, std::size_t first, std::span<Number> values) {
    // Not a number, or 0 for integers.
    std::ranges::fill(values, std::numeric_limits<Number>::quiet_NaN());
    const Place& place = places[step];
    if (!place.entry || values.empty()) return;
    RecordCursor& cursor = source_->at(place);
    const bool all = place.entry->count == place.cells.cells;
    if (!all && !active_) return cursor.read(values, static_cast<std::int64_t>(first));
    // The elements of the array, from 0, that the cells have; -1: none.
    std::vector<std::int64_t> elements(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      const std::int32_t cell = grid_.cellOf(static_cast<std::int32_t>(first + i) + 1);
      elements[i] = (all ? cell : active_->activeOf(cell)) - 1;
    }
    const auto from = std::ranges::find_if(elements, [](std::int64_t element) { return element >= 0; });
    if (from == elements.end()) return;
    std::vector<Number> piece(static_cast<std::size_t>(std::ranges::max(elements) - *from) + 1);
    cursor.read(std::span(piece), *from);
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (elements[i] >= 0) values[i] = piece[static_cast<std::size_t>(elements[i] - *from)];
    }
  };
}

}  // namespace lumbarn::cli
