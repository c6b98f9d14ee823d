#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "VtkExport.h"
#include "frame/Error.h"
#include "grid/Hadrick.h"
#include "run/ArrayPlan.h"
#include "run/Run.h"
#include "run/RunState.h"
#include "support/Export.h"
#include "support/Session.h"
#include "support/Text.h"

namespace lumbarn {
namespace {

/// As restart and INIT files name it.
std::string nameOf(const Hadrick& grid) { return shownGrid(grid.isLocal() ? grid.zName : std::string()); }

/// One array in the active cells of one grid.
class GridArray {
 public:
  GridArray(const Run& run, std::shared_ptr<const Hadrick> grid, const ArrayPlan& plan, bool init,
            StreamContext& context)
      : run_(run), grid_(std::move(grid)), column_(plan.columns.front()), context_(context) {
    init_ = init || column_.fixed;
    for (const IndexStep* step : plan.steps) {
      const IndexStep& from = column_.fixed ? plan.inits->steps.front() : *step;
      const GridCells cells = from.cellsOf(plan.grid);
      const StepArrays arrays = plan.arraysOf(*step);  // owns an entry that is derived
      const IndexEntry* entry = arrays.entries.front();
      const bool has = entry && cells.cells == grid_->nCells() && hasCellValues(*entry, cells);
      steps_.push_back(has ? std::optional(step->number) : std::nullopt);
    }
  }

  bool any() const {
    return std::ranges::any_of(steps_, [](const auto& step) { return step.has_value(); });
  }
  bool changes() const { return !init_; }
  Type type() const { return column_.type; }

  template <class Number>
  void read(std::size_t step, std::size_t first, std::span<Number> values) {
    std::ranges::fill(values, std::numeric_limits<Number>::quiet_NaN());  // 0 for whole numbers
    if (!steps_[step]) return;
    if (held_ != step) hold(step);
    const auto copy = [&]<class Own>(Own) {
      const auto* all = static_cast<const Own*>(dense_.data.get());
      for (std::size_t i = 0; i < values.size(); ++i) {
        const auto cell =
            static_cast<std::size_t>(grid_->cellOf(static_cast<std::int32_t>(first + i) + 1)) - 1;
        const bool active = !dense_.active || (dense_.active.get()[cell / 8] >> (cell % 8) & 1) != 0;
        if (active) values[i] = static_cast<Number>(all[cell]);
      }
    };
    if (dense_.type == Type::Int32) copy(std::int32_t{});
    if (dense_.type == Type::Float32) copy(float{});
    if (dense_.type == Type::Float64) copy(double{});
  }
  void release() {
    dense_ = {};
    held_.reset();
  }

 private:
  void hold(std::size_t step) {
    release();
    ReadOptions options;
    options.stop = context_.options().stop;
    options.stopFlag = context_.options().stopFlag;
    // The plan of all steps made the remarks.
    options.report = [this](const Diagnosis& diagnosis) {
      if (diagnosis.severity() != Severity::Remark) context_.note(diagnosis);
    };
    try {
      dense_ = run_.cellArray(column_.name, init_ ? std::nullopt : steps_[step], {},
                              shownGrid(grid_->isLocal() ? grid_->zName : ""), options);
    } catch (const Error& error) {
      if (error.kind() == Error::Kind::Cancelled) throw LoadCanceled();
      throw BadRecord(error.diagnosis());
    }
    held_ = step;
  }

  Run run_;
  std::shared_ptr<const Hadrick> grid_;
  ArrayColumn column_;
  StreamContext& context_;
  bool init_ = false;                               // of the INIT file
  std::vector<std::optional<std::int32_t>> steps_;  // their numbers, nothing where a step has no values
  Dense dense_;                                     // of the step that is held
  std::optional<std::size_t> held_;
};

/// Arrays of a run for several of its grids, in the order in which the grids are exported.
class RunArrays {
 public:
  RunArrays(const Run& run, Grids grids, std::optional<std::int32_t> step, StreamContext& context)
      : run_(run), grids_(std::move(grids)), context_(context) {
    if (step) time_.steps = {{*step, *step}};
    if (!step && !run.state().family().find(FileKind::Restart)) return;
    index_ = run.state().restartIndex(context);
    steps_ = chooseSteps(*index_, time_, std::nullopt, true);
  }

  /// An array by name, of all grids that have it. Throws Error NotFound when none does.
  CellArray array(const std::string& name) {
    auto parts = std::make_shared<Parts>();
    std::optional<Type> type;
    bool changes = false;
    std::size_t first = 0;
    for (const auto& grid : grids_) {
      auto array = find(name, grid);
      if (array) {
        changes = changes || array->changes();
        type = !type || *type == array->type() ? array->type() : Type::Float64;
      }
      parts->push_back({std::move(array), first});
      first += static_cast<std::size_t>(grid->nActive());
    }
    if (!type) throw refusal(name);
    CellArray exported{.name = name, .read = {}, .changes = changes && time_.steps.empty()};
    if (*type == Type::Int32) exported.read = reader<std::int32_t>(parts);
    if (*type == Type::Float32) exported.read = reader<float>(parts);
    if (*type == Type::Float64) exported.read = reader<double>(parts);
    return exported;
  }

  /// Days of each restart step, or the step's number where the file does not state them.
  std::vector<double> times() const {
    std::vector<double> times;
    for (const IndexStep* step : steps_) {
      const bool stated = step->days != 0 || index_->fromFile || step->find("DOUBHEAD");
      times.push_back(stated ? step->days : static_cast<double>(step->number));
    }
    return times;
  }

 private:
  /// The array of one grid, null if it does not have it, and the number of active cells before that grid.
  struct Part {
    std::unique_ptr<GridArray> array;
    std::size_t first = 0;
  };
  using Parts = std::vector<Part>;

  std::unique_ptr<GridArray> find(const std::string& name, const std::shared_ptr<Hadrick>& grid) {
    for (const bool init : {false, true}) {
      if (init ? !run_.state().family().find(FileKind::Init) : !index_) continue;
      CellSelection selection{.arrays = {name}, .grid = nameOf(*grid)};
      selection.init = init;
      if (!init) selection.time = time_;
      try {
        const auto plan = planArrays(run_.state(), context_, selection);
        auto array = std::make_unique<GridArray>(run_, grid, plan, init, context_);
        if (array->any()) return array;
      } catch (const Error& error) {
        if (error.kind() != Error::Kind::NotFound && error.kind() != Error::Kind::BadRequest) throw;
        if (!refusal_) refusal_ = error;
      }
    }
    return nullptr;
  }

  Error refusal(const std::string& name) {
    if (refusal_) return *std::exchange(refusal_, std::nullopt);
    return {Error::Kind::NotFound,
            {.message = Message::RequestMissing,
             .path = run_.root(),
             .problem = fmt::format(
                 "no array \"{}\" with a value for each cell is in the restart or the INIT file", name)}};
  }

  template <class Number>
  static CellReader<Number> reader(std::shared_ptr<Parts> parts) {
    return [parts = std::move(parts), last = static_cast<GridArray*>(nullptr)](
               std::size_t step, std::size_t first, std::span<Number> values) mutable {
      const auto after =
          std::upper_bound(parts->begin(), parts->end(), first,
                           [](std::size_t cell, const Part& part) { return cell < part.first; });
      const Part& part = *std::prev(after);
      if (last && last != part.array.get()) last->release();
      last = part.array.get();
      if (last) return last->read(last->changes() ? step : 0, first - part.first, values);
      std::ranges::fill(values, std::numeric_limits<Number>::quiet_NaN());  // 0 for whole numbers
    };
  }

  const Run& run_;
  Grids grids_;
  StreamContext& context_;
  TimeSelection time_;
  std::shared_ptr<const RestartIndex> index_;  // of the restart files; null: there are none
  std::vector<const IndexStep*> steps_;        // of these
  std::optional<Error> refusal_;               // the first
};

}  // namespace

LUMBARN_API void exportVtk(const Run& run, const RunExport& selection, const std::string& path,
                           const ReadOptions& options) {
  try {
    StreamContext context(options);
    const auto grids = run.state().grids(context);
    const bool all = selection.grid.empty();
    const std::size_t only = all ? 0 : numberOfGrid(*grids, selection.grid, run.root());
    VtkOptions how{.zUp = selection.zUp, .iGrid = all ? 0 : static_cast<std::int32_t>(only) + 1};
    std::vector<CellArray> arrays;
    std::optional<RunArrays> source;
    if (!selection.arrays.empty()) {
      source.emplace(run, all ? *grids : Grids{(*grids)[only]}, selection.step, context);
      for (const std::string& name : selection.arrays) arrays.push_back(source->array(upper(trim(name))));
      if (std::ranges::any_of(arrays, &CellArray::changes)) how.times = source->times();
    }
    bool qOK = false;
    exportVtk(*grids, arrays, how, path, context.session(), qOK);
    if (context.session().cancelled()) throw LoadCanceled();
    if (!qOK) {
      throw Error(Error::Kind::System,
                  context.worst().value_or(Diagnosis{.message = Message::FileWrite, .path = path}));
    }
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
