#include "ArrayPlan.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <unordered_map>

#include <fmt/format.h>

#include "../arrays/ArrayUnits.h"
#include "../arrays/DerivedSaturation.h"
#include "../frame/Error.h"
#include "../support/Closest.h"
#include "../support/Pattern.h"
#include "../support/Text.h"
#include "TimeChoice.h"

namespace lumbarn {

namespace {

using Steps = std::vector<const IndexStep*>;

/// "step 3 " in front of what it does not have; nothing where that goes for the file.
std::string ownerOf(const RestartIndex& index, const Steps& steps) {
  return index.init || steps.size() != 1 ? std::string() : fmt::format("step {} ", steps.front()->number);
}

std::optional<Type> columnType(const IndexEntry& entry) {
  switch (typeInfo(entry.typeWord.view()).type) {
    case ElementType::Integer:
    case ElementType::Short:
      return Type::Int32;
    case ElementType::Single:
      return Type::Float32;
    case ElementType::Double:
      return Type::Float64;
    default:
      return std::nullopt;
  }
}

/// A type that has the values of both: whole numbers of 32 bits do not fit into Float32.
Type widerOf(Type a, Type b) { return a == b ? a : Type::Float64; }

/// The records of one name in the steps that are wanted.
struct Candidate {
  std::string name;
  std::string unit;
  std::optional<Type> type;  // nothing: not all are numbers
  std::string otherType;     // of those that are none
  bool listed = false;       // an array of cells in some step, which patterns match
  bool allCells = true;      // an array of cells wherever it is
  std::size_t most = 0;      // in one step
  std::size_t steps = 0;     // that have it
  std::size_t inStep = 0;
  const IndexStep* step = nullptr;       // the last one that has it
  const IndexEntry* repeated = nullptr;  // the second one of the name in the first step with two
  const IndexStep* repeatedIn = nullptr;
  bool taken = false;
};

/// The records of the wanted steps by name, in the order in which they are met.
class Candidates {
 public:
  Candidates(const RestartIndex& index, const Steps& steps, const std::string& grid)
      : index_(&index), grid_(grid) {
    for (const IndexStep* step : steps) add(*step);
  }

  /// The candidates that a name or pattern means, in the order of the file.
  std::vector<Candidate*> matching(const std::string& pattern) {
    std::vector<Candidate*> found;
    if (!hasWildcard(pattern)) {
      const auto one = byName_.find(upper(pattern));
      if (one != byName_.end()) found.push_back(&all_[one->second]);
      return found;
    }
    for (Candidate& candidate : all_) {
      if (candidate.listed && matchesPattern(candidate.name, pattern)) found.push_back(&candidate);
    }
    return found;
  }
  std::vector<std::string> listedNames() const {
    std::vector<std::string> names;
    for (const Candidate& candidate : all_) {
      if (candidate.listed) names.push_back(candidate.name);
    }
    return names;
  }
  const RestartIndex& index() const { return *index_; }

 private:
  void add(const IndexStep& step) {
    const GridCells cells = step.cellsOf(grid_);
    for (const IndexGroup& group : step.groups) {
      if (!sameGrid(group.grid, grid_)) continue;
      for (const IndexEntry& entry : group.entries) add(step, entry, cells);
    }
    if (const auto derived = index_->init ? std::nullopt : derivedArray(step, grid_)) {
      add(step, *derived, cells);
    }
  }

  void add(const IndexStep& step, const IndexEntry& entry, const GridCells& cells) {
    const auto [place, isNew] = byName_.try_emplace(std::string(entry.keyword.view()), all_.size());
    if (isNew) {
      all_.push_back({.name = place->first,
                      .unit = std::string(arrayUnit(place->first, cells.units)),
                      .type = columnType(entry)});
    }
    Candidate& candidate = all_[place->second];
    const auto type = columnType(entry);
    if (!type) candidate.otherType = entry.typeWord.view();
    candidate.type = type && candidate.type ? std::optional(widerOf(*type, *candidate.type)) : std::nullopt;
    candidate.listed = candidate.listed || isCellArray(entry, cells);
    candidate.allCells = candidate.allCells && hasCellValues(entry, cells);
    if (candidate.step != &step) {
      candidate.step = &step;
      candidate.inStep = 0;
      ++candidate.steps;
    }
    candidate.most = std::max(candidate.most, ++candidate.inStep);
    if (candidate.inStep == 2 && !candidate.repeated) {
      candidate.repeated = &entry;
      candidate.repeatedIn = &step;
    }
  }

  const RestartIndex* index_;
  std::string grid_;
  std::vector<Candidate> all_;
  std::unordered_map<std::string, std::size_t> byName_;
};

class Planner {
 public:
  Planner(const RunState& run, StreamContext& context, const CellSelection& selection)
      : run_(run), context_(context), selection_(selection) {}

  ArrayPlan make() {
    plan_.index = selection_.init ? run_.initIndex(context_) : run_.restartIndex(context_);
    plan_.grid = isGlobalGrid(selection_.grid) ? std::string() : std::string(trim(selection_.grid));
    if (selection_.init) {
      plan_.steps.push_back(&plan_.index->steps.front());
    } else {
      plan_.steps = chooseSteps(*plan_.index, selection_.time, selection_.nth, true);
    }
    requireGrid(*plan_.index, plan_.steps, plan_.grid);
    own_.emplace(*plan_.index, plan_.steps, plan_.grid);
    for (const std::string& list : selection_.arrays) {
      for (const std::string& pattern : split(list, ',')) {
        if (trim(pattern).empty()) throwRefused(run_.root(), "an array is given without a name");
        choose(std::string(trim(pattern)));
      }
      ++asked_;
    }
    if (!unmatched_.empty()) reportUnmatched();
    if (plan_.columns.empty()) throwRefused(run_.root(), "no array is asked for");
    return std::move(plan_);
  }

 private:
  void choose(const std::string& pattern) {
    auto found = own_->matching(pattern);
    Candidates* from = &*own_;
    if (found.empty() && !selection_.init && run_.family().find(FileKind::Init)) {
      from = &inits();
      found = from->matching(pattern);
    }
    if (found.empty()) unmatched_.push_back(pattern);
    for (Candidate* candidate : found) take(*from, *candidate);
  }

  Candidates& inits() {
    if (!inits_) {
      plan_.inits = run_.initIndex(context_);
      inits_.emplace(*plan_.inits, Steps{&plan_.inits->steps.front()}, plan_.grid);
    }
    return *inits_;
  }

  void take(const Candidates& from, Candidate& candidate) {
    if (std::exchange(candidate.taken, true)) return;
    if (!candidate.type)
      throwRefused(from.index().files.front(),
                   fmt::format("{} holds no numbers but {}", candidate.name, candidate.otherType));
    const bool fixed = &from != &*own_;
    for (std::size_t i = 0; i < candidate.most; ++i)
      plan_.columns.push_back(
          {candidate.name, i, fixed, *candidate.type, candidate.unit, asked_, candidate.allCells});
    if (candidate.repeated)
      context_.session().diagnose(repeatedArray(from.index(), *candidate.repeatedIn, *candidate.repeated,
                                                "shown in the order of the file"));
    const std::size_t steps = fixed ? 1 : plan_.steps.size();
    if (candidate.steps < steps)
      context_.session().diagnose({.message = Message::ArraySomeSteps,
                                   .path = from.index().files.front(),
                                   .problem = fmt::format("{} has no values in {} of {} steps",
                                                          candidate.name, steps - candidate.steps, steps)});
  }

  /// Names that are not there are an error where nothing else is.
  void reportUnmatched() {
    const auto names = own_->listedNames();
    for (const std::string& pattern : unmatched_) {
      std::string problem = fmt::format("{}has no array {}{}", ownerOf(*plan_.index, plan_.steps), pattern,
                                        plan_.grid.empty() ? "" : " of grid " + plan_.grid);
      const std::string path = plan_.index->files.front();
      const std::string better = closest(upper(pattern), names);
      if (plan_.columns.empty()) {
        if (better.empty()) problem += names.empty() ? "; it has none" : "; it has " + listText(names);
        throwNotFound(path, problem, upper(pattern), names);
      }
      if (!better.empty()) problem += fmt::format("; did you mean \"{}\"?", better);
      context_.session().diagnose({.message = Message::ArrayUnmatched, .path = path, .problem = problem});
    }
  }

  const RunState& run_;
  StreamContext& context_;
  const CellSelection& selection_;
  ArrayPlan plan_;
  std::optional<Candidates> own_;
  std::optional<Candidates> inits_;
  std::vector<std::string> unmatched_;
  std::size_t asked_ = 0;
};

}  // namespace

StepArrays ArrayPlan::arraysOf(const IndexStep& step) const {
  StepArrays arrays{nullptr, std::vector<const IndexEntry*>(columns.size())};
  std::unordered_map<std::string_view, std::size_t> nextOf;  // the next column of each name
  bool anyFixed = false;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    anyFixed = anyFixed || columns[i].fixed;
    if (columns[i].position == 0) nextOf.emplace(columns[i].name, i);
  }
  const auto offer = [&](const IndexEntry& entry, bool fixed) {
    const auto next = nextOf.find(entry.keyword.view());
    if (next == nextOf.end()) return;
    const std::size_t column = next->second;
    if (column == columns.size() || columns[column].name != next->first || columns[column].fixed != fixed)
      return;
    arrays.entries[column] = &entry;
    ++next->second;
  };
  const auto offerAll = [&](const IndexStep& from, bool fixed) {
    for (const IndexGroup& group : from.groups) {
      if (!sameGrid(group.grid, grid)) continue;
      for (const IndexEntry& entry : group.entries) offer(entry, fixed);
    }
  };
  offerAll(step, false);
  if (anyFixed) offerAll(inits->steps.front(), true);
  if (auto derived = index->init ? std::nullopt : derivedArray(step, grid)) {
    arrays.derived = std::make_unique<const IndexEntry>(*derived);
    offer(*arrays.derived, false);
  }
  return arrays;
}

ArrayPlan planArrays(const RunState& run, StreamContext& context, const CellSelection& selection) {
  return Planner(run, context, selection).make();
}

std::vector<const IndexStep*> chooseSteps(const RestartIndex& index, const TimeSelection& time,
                                          std::optional<std::int32_t> nth, bool once) {
  std::unordered_map<std::int32_t, std::int32_t> counts;
  for (const IndexStep& step : index.steps) ++counts[step.number];
  std::unordered_map<std::int32_t, std::int32_t> met;
  Steps all;
  Steps candidates;
  for (const IndexStep& step : index.steps) {
    const std::int32_t position = ++met[step.number];
    all.push_back(&step);
    if (!once || position == nth.value_or(counts[step.number])) candidates.push_back(&step);
  }
  const auto choose = [&](const Steps& from) {
    std::vector<TimePoint> points;
    for (const IndexStep* step : from) points.push_back({step->number, toLocal(step->date)});
    Steps chosen;
    for (const std::size_t i : chooseTimes(time, points, index.files.front())) chosen.push_back(from[i]);
    return chosen;
  };
  if (!nth) return choose(candidates);
  const auto wanted = choose(all);  // throws when there is no such step
  Steps chosen;
  std::ranges::copy_if(wanted, std::back_inserter(chosen),
                       [&](const IndexStep* step) { return std::ranges::count(candidates, step) > 0; });
  if (!chosen.empty()) return chosen;
  const std::int32_t number = wanted.front()->number;
  const std::int32_t count = counts[number];
  throwRefused(index.files.front(),
               fmt::format("step {} at position {}: there {} with number {}", number, *nth,
                           count == 1 ? "is one step" : fmt::format("are {} steps", count), number));
}

void requireGrid(const RestartIndex& index, const std::vector<const IndexStep*>& steps,
                 const std::string& grid) {
  std::vector<std::string> names;
  for (const IndexStep* step : steps) {
    if (step->hasGrid(grid)) return;
    for (const IndexGroup& group : step->groups) {
      auto name = shownGrid(group.grid);
      if (std::ranges::count(names, name) == 0) names.push_back(std::move(name));
    }
  }
  throwNotFound(index.files.front(),
                fmt::format("{}has no grid {}; it has {}", ownerOf(index, steps), grid, listText(names)),
                grid, names);
}

}  // namespace lumbarn
