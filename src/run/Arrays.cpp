#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "../arrays/ArrayReader.h"
#include "../arrays/ArrayUnits.h"
#include "../arrays/DerivedSaturation.h"
#include "ArrayPlan.h"
#include "Run.h"

namespace lumbarn {

namespace {

using Steps = std::vector<const IndexStep*>;

std::shared_ptr<const std::vector<std::string>> gridNames(const Steps& steps) {
  std::vector<std::string> names;
  for (const IndexStep* step : steps) {
    for (const IndexGroup& group : step->groups) {
      auto name = shownGrid(group.grid);
      if (std::ranges::find(names, name) == names.end()) names.push_back(std::move(name));
    }
  }
  return std::make_shared<const std::vector<std::string>>(std::move(names));
}

Schema listSchema(const Steps& steps, bool init) {
  Schema schema;
  if (!init) {
    schema.push_back({.name = "step", .type = Type::Int32, .nullable = false});
    schema.push_back({.name = "date", .type = Type::Timestamp});
    schema.push_back({.name = "days", .type = Type::Float64, .nullable = false});
  }
  schema.push_back({.name = "grid", .type = Type::Dictionary, .dictionary = gridNames(steps)});
  schema.push_back({.name = "array", .type = Type::Utf8});
  schema.push_back({.name = "type", .type = Type::Utf8});
  schema.push_back({.name = "count", .type = Type::Int64});
  schema.push_back({.name = "unit", .type = Type::Utf8});
  if (init) {
    schema.push_back({.name = "min", .type = Type::Float32});
    schema.push_back({.name = "max", .type = Type::Float32});
  }
  return schema;
}

/// An array of a list.
struct Listed {
  const IndexStep* step = nullptr;
  const IndexGroup* group = nullptr;  // null: the step has no array
  IndexEntry entry;
};

/// The arrays of one grid or all of them, step after step.
class ArrayRows {
 public:
  ArrayRows(std::shared_ptr<const RunState> run, std::shared_ptr<StreamContext> context,
            const ArrayListSelection& selection)
      : run_(std::move(run)), context_(std::move(context)), selection_(selection) {
    index_ = selection_.init ? run_->initIndex(*context_) : run_->restartIndex(*context_);
    steps_ = selection_.init ? Steps{&index_->steps.front()}
                             : chooseSteps(*index_, selection_.time, std::nullopt, false);
    if (!selection_.grid.empty()) requireGrid(*index_, steps_, selection_.grid);
    schema_ = listSchema(steps_, selection_.init);
    reader_ = std::make_unique<ArrayReader>(index_, context_->session());
  }

  const Schema& schema() const { return schema_; }

  bool fill(BatchBuilder& rows) {
    while (!rows.full()) {
      if (next_ == listed_.size() && !nextStep()) return false;
      if (context_->session().cancelled()) throw LoadCanceled();
      put(rows, listed_[next_++]);
      rows.endRow();
    }
    return true;
  }

 private:
  bool nextStep() {
    if (begun_ == steps_.size()) return false;
    const IndexStep& step = *steps_[begun_++];
    next_ = 0;
    listed_.clear();
    std::set<std::string> derived;  // the grids whose derived array is listed, which may have several groups
    for (const IndexGroup& group : step.groups) {
      if (!selection_.grid.empty() && !sameGrid(group.grid, selection_.grid)) continue;
      for (const IndexEntry* entry : cellArrays(group)) listed_.push_back({&step, &group, *entry});
      const auto saturation = selection_.init ? std::nullopt : derivedArray(step, group.grid);
      if (saturation && derived.insert(group.grid).second) listed_.push_back({&step, &group, *saturation});
    }
    if (listed_.empty() && !selection_.init)
      listed_.push_back({.step = &step, .group = nullptr, .entry = {}});
    // The passes of an INIT file come back to each grid.
    if (selection_.init) {
      std::ranges::stable_sort(listed_, {}, [&](const Listed& one) { return gridNumber(one.group->grid); });
    }
    return !listed_.empty() || nextStep();
  }

  std::int32_t gridNumber(const std::string& grid) const {
    const auto& names = *schema_[selection_.init ? 0 : 3].dictionary;
    return static_cast<std::int32_t>(std::ranges::find(names, shownGrid(grid)) - names.begin());
  }

  void put(BatchBuilder& rows, const Listed& listed) {
    std::size_t column = 0;
    if (!selection_.init) {
      rows.set(column++, listed.step->number);
      if (listed.step->date) rows.set(column, toLocal(*listed.step->date));
      rows.set(++column, listed.step->days);
      ++column;
    }
    if (!listed.group) return;
    const IndexEntry& entry = listed.entry;
    rows.set(column++, gridNumber(listed.group->grid));
    rows.set(column++, entry.keyword.view());
    rows.set(column++, entry.isDerived() ? std::string_view("derived") : entry.typeWord.view());
    rows.set(column++, entry.count);
    rows.set(column++, arrayUnit(entry.keyword.view(), listed.group->cells.units));
    if (selection_.init) putRange(rows, column, listed);
  }

  void putRange(BatchBuilder& rows, std::size_t column, const Listed& listed) {
    float least = std::numeric_limits<float>::infinity();
    float most = -least;
    try {
      const auto look = [&](std::span<const float> values) {
        for (const float value : values) {
          if (std::isnan(value)) continue;
          least = std::min(least, value);
          most = std::max(most, value);
        }
      };
      readActive(listed, look);
    } catch (const BadRecord& damage) {
      context_->session().diagnose(damage.diagnosis());
      return;
    }
    if (least > most) return;
    rows.set(column, least);
    rows.set(column + 1, most);
  }

  /// The values in active cells, in pieces; all values where the active cells are not known.
  template <class Look>
  void readActive(const Listed& listed, Look look) {
    constexpr std::int64_t pieceElements = std::int64_t{1} << 16;
    const GridCells& cells = listed.group->cells;
    const IndexEntry& entry = listed.entry;
    const auto active = entry.count == cells.cells && cells.active < cells.cells
                            ? run_->activeCells(*context_, listed.group->grid, cells)
                            : nullptr;
    const bool picked = active && active->has_value();
    const std::int64_t count = picked ? (*active)->active() : entry.count;
    std::vector<float> piece;
    std::vector<std::uint32_t> elements;
    for (std::int64_t first = 0; first < count; first += pieceElements) {
      piece.resize(static_cast<std::size_t>(std::min(pieceElements, count - first)));
      if (!picked) {
        reader_->fetch(*listed.step, entry, listed.group->grid, first, std::span(piece));
      } else {
        elements.clear();
        for (std::size_t i = 0; i < piece.size(); ++i)
          elements.push_back(
              static_cast<std::uint32_t>((*active)->iA2N()[static_cast<std::size_t>(first) + i] - 1));
        reader_->fetch(*listed.step, entry, listed.group->grid, std::span<const std::uint32_t>(elements),
                       std::span(piece));
      }
      look(piece);
    }
  }

  std::shared_ptr<const RunState> run_;
  std::shared_ptr<StreamContext> context_;
  ArrayListSelection selection_;
  std::shared_ptr<const RestartIndex> index_;
  Steps steps_;
  Schema schema_;
  std::unique_ptr<ArrayReader> reader_;
  std::size_t begun_ = 0;
  std::vector<Listed> listed_;  // of the current step
  std::size_t next_ = 0;
};

}  // namespace

Stream Run::arrays(const ArrayListSelection& selection, const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    auto rows = std::make_shared<ArrayRows>(state_, context, selection);
    return streamOfRows(rows->schema(), std::move(context),
                        [rows](BatchBuilder& builder) { return rows->fill(builder); });
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
