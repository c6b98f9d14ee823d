#include "RunArrays.h"

#include <algorithm>
#include <limits>
#include <type_traits>
#include <utility>

#include "Failure.h"

namespace lumbarn::cli {
namespace {

/// Values of an array in another type of number than its own.
template <class Number>
void readAs(const CellArray& array, std::size_t step, std::size_t first, std::span<Number> values) {
  std::visit(
      [&]<class Own>(const CellReader<Own>& read) {
        if constexpr (std::is_same_v<Own, Number>) {
          read(step, first, values);
        } else {
          std::vector<Own> own(values.size());
          read(step, first, own);
          std::ranges::transform(own, values.begin(), [](Own value) { return static_cast<Number>(value); });
        }
      },
      array.read);
}

/// A reader over all grids. `parts` have the first cell of each.
template <class Number, class Part>
CellReader<Number> joined(std::vector<Part> parts) {
  return [parts = std::move(parts)](std::size_t step, std::size_t first, std::span<Number> values) {
    const auto after = std::ranges::upper_bound(parts, first, {}, &Part::first);
    const Part& part = *std::prev(after);
    if (part.array) return readAs(*part.array, part.array->changes ? step : 0, first - part.first, values);
    // Not a number, or for integers, which have no such value, 0.
    std::ranges::fill(values, std::numeric_limits<Number>::quiet_NaN());
  };
}

}  // namespace

RunArrays::RunArrays(const RunFamily& run, std::vector<std::shared_ptr<Hadrick>> grids,
                     std::optional<std::int32_t> step, Console& console)
    : grids_(std::move(grids)) {
  for (const auto& grid : grids_) arrays_.emplace_back(run, *grid, step, console);
}

CellArray RunArrays::array(const std::string& name) {
  std::vector<Part> parts;
  std::optional<CellArray> known;
  std::optional<Failure> refusal;
  std::size_t first = 0;
  for (std::size_t n = 0; n < grids_.size(); ++n) {
    Part part{{}, first};
    first += static_cast<std::size_t>(grids_[n]->nActive());
    try {
      part.array = arrays_[n].array(name);
      if (!known || (part.array->changes && !known->changes)) known = part.array;
    } catch (const Failure& none) {
      if (none.status() != Usage) throw;
      if (!refusal) refusal = none;
    }
    parts.push_back(std::move(part));
  }
  if (!known) throw Failure(*refusal);
  std::visit([&]<class Number>(CellReader<Number>& read) { read = joined<Number>(std::move(parts)); },
             known->read);
  return *std::move(known);
}

}  // namespace lumbarn::cli
