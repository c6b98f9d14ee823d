#include "RegionCells.h"

#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "../frame/Error.h"
#include "../support/Closest.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

bool isWhole(const IndexEntry& entry) {
  const ElementType type = typeInfo(entry.typeWord.view()).type;
  return type == ElementType::Integer || type == ElementType::Short;
}

}  // namespace

RegionFilter parseRegion(std::string_view text) {
  const auto equals = text.find('=');
  RegionFilter filter{.array = upper(trim(text.substr(0, equals))), .numbers = {}};
  const auto refuse = [&] {
    throwRefused({}, fmt::format("regions are given as FIPNUM=1,2, not \"{}\"", text));
  };
  if (equals == text.npos || filter.array.empty()) refuse();
  for (const std::string& part : split(text.substr(equals + 1), ',')) {
    const auto number = toInteger(trim(part));
    if (!number || !std::in_range<std::int32_t>(*number)) refuse();
    filter.numbers.push_back(static_cast<std::int32_t>(*number));
  }
  return filter;
}

RegionCells::RegionCells(const RunState& run, StreamContext& context, const ArrayPlan& plan,
                         const CellSelection& selection)
    : session_(&context.session()), grid_(plan.grid), index_(plan.index) {
  if (selection.regions.empty()) return;
  if (selection.init) {
    inits_ = plan.index;
  } else if (run.family().find(FileKind::Init)) {
    inits_ = run.initIndex(context);
  }
  if (inits_) initReader_ = std::make_unique<ArrayReader>(inits_, *session_);
  if (!selection.init) reader_ = std::make_unique<ArrayReader>(index_, *session_);
  for (const RegionFilter& filter : selection.regions) find(filter, context, plan.steps);
}

void RegionCells::find(RegionFilter filter, StreamContext& context,
                       const std::vector<const IndexStep*>& steps) {
  if (filter.numbers.empty())
    throwRefused(index_->files.front(), "no region of " + filter.array + " is given");
  Array array{.filter = std::move(filter)};
  const std::string& name = array.filter.array;
  std::string path = index_->files.front();
  if (inits_) array.entry = inits_->steps.front().find(name, grid_);
  array.fixed = array.entry != nullptr;
  if (array.fixed) {
    array.step = &inits_->steps.front();
    path = inits_->files.front();
  }
  std::size_t without = 0;
  for (const IndexStep* step : steps) {
    const IndexEntry* entry = array.fixed ? array.entry : step->find(name, grid_);
    if (!entry) ++without;
    if (entry && !isWhole(*entry)) throwRefused(path, fmt::format("{} has no region numbers", name));
  }
  if (without == steps.size()) throwNotFound(path, fmt::format("has no array {}", name), name, {});
  if (without > 0)
    context.session().diagnose(
        {.message = Message::ArraySomeSteps,
         .path = path,
         .problem = fmt::format("{} has no values in {} of {} steps", name, without, steps.size())});
  arrays_.push_back(std::move(array));
}

void RegionCells::beginStep(const IndexStep& step) {
  for (Array& array : arrays_) {
    if (array.fixed) continue;
    array.step = &step;
    array.entry = step.find(array.filter.array, grid_);
  }
}

bool RegionCells::has(std::int64_t count) const {
  return std::ranges::any_of(arrays_,
                             [&](const Array& array) { return array.entry && array.entry->count == count; });
}

std::vector<std::int32_t> RegionCells::numbersOf(const Array& array, const GridCells& cells) {
  const std::int64_t count = array.entry->count;
  if (count != cells.active && count != cells.cells)
    throwRefused((array.fixed ? inits_ : index_)->files.front(),
                 fmt::format("{} has {} values, the grid has {} cells of which {} are active",
                             array.filter.array, count, cells.cells, cells.active));
  session_->checkMemory(static_cast<std::size_t>(count) * sizeof(std::int32_t));
  std::vector<std::int32_t> numbers(static_cast<std::size_t>(count));
  (array.fixed ? *initReader_ : *reader_)
      .fetch(*array.step, *array.entry, grid_, 0, std::span<std::int32_t>(numbers));
  return numbers;
}

void RegionCells::keep(std::vector<std::uint32_t>& list, const GridCells& cells, const ActiveCells* active) {
  for (Array& array : arrays_) {
    if (!array.entry) list.clear();
    if (list.empty()) return;
    const std::vector<std::int32_t> numbers = numbersOf(array, cells);
    const bool ofAll = !active || array.entry->count == cells.cells;
    const auto elementOf = [&](std::uint32_t cell) -> std::int64_t {
      if (cell >= cells.cells) return -1;
      return ofAll ? std::int64_t{cell} : active->activeOf(std::int64_t{cell} + 1) - 1;
    };
    std::vector<std::uint32_t> kept;
    for (const std::uint32_t cell : list) {
      const std::int64_t element = elementOf(cell);
      if (element >= 0 &&
          std::ranges::count(array.filter.numbers, numbers[static_cast<std::size_t>(element)]) > 0)
        kept.push_back(cell);
    }
    for (const std::uint32_t cell : kept.empty() ? list : std::vector<std::uint32_t>()) {
      if (const std::int64_t element = elementOf(cell); element >= 0)
        array.others.insert(numbers[static_cast<std::size_t>(element)]);
    }
    list = std::move(kept);
  }
}

void RegionCells::throwNone() const {
  std::string problem;
  for (const Array& array : arrays_) {
    problem += fmt::format("{}{}={}", problem.empty() ? "no cell is in " : " and ", array.filter.array,
                           fmt::join(array.filter.numbers, ","));
  }
  for (const Array& array : arrays_) {
    std::vector<std::string> names;
    for (const std::int32_t number : array.others) names.push_back(fmt::format("{}", number));
    if (!names.empty()) problem += fmt::format("; of {} there are {}", array.filter.array, listText(names));
  }
  throwNotFound(index_->files.front(), problem, {}, {});
}

}  // namespace lumbarn
