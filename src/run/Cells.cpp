#include <cstring>

#include "../support/Session.h"
#include "CellRows.h"
#include "Run.h"

namespace lumbarn {

namespace {

/// Collects one column of rows into memory of its own.
template <class Number>
Dense collected(CellRows& rows, const std::shared_ptr<const Schema>& schema, Session& session,
                std::size_t count, const BatchLimits& limits) {
  session.checkMemory(count * sizeof(Number));
  auto values = std::make_shared<std::vector<Number>>(count);
  auto bits = std::make_shared<std::vector<std::uint8_t>>((count + 7) / 8);
  std::size_t done = 0;
  std::size_t active = 0;
  BatchBuilder builder(schema, limits);
  for (bool more = true; more;) {
    more = rows.fill(builder);
    const Batch batch = builder.finish();
    if (batch.rows() == 0) continue;
    const Column column = batch[0];
    std::memcpy(values->data() + done, column.values<Number>().data(), batch.rows() * sizeof(Number));
    for (std::size_t row = 0; row < batch.rows(); ++row) {
      if (!column.valid(row)) continue;
      (*bits)[(done + row) / 8] |= static_cast<std::uint8_t>(1U << ((done + row) % 8));
      ++active;
    }
    done += batch.rows();
  }
  Dense dense;
  dense.data = std::shared_ptr<const void>(values, values->data());
  if (active < count) dense.active = std::shared_ptr<const std::uint8_t>(bits, bits->data());
  return dense;
}

}  // namespace

Stream Run::cells(const CellSelection& selection, const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    auto rows = std::make_shared<CellRows>(state_, context, selection);
    return streamOfRows(rows->schema(), std::move(context),
                        [rows](BatchBuilder& builder) { return rows->fill(builder); });
  } catch (...) {
    throw errorInFlight();
  }
}

Dense Run::cellArray(const std::string& name, std::optional<std::int32_t> step,
                     const std::optional<CellBox>& box, const std::string& grid,
                     const ReadOptions& options) const {
  try {
    CellSelection selection{
        .arrays = {name}, .grid = grid, .init = !step, .inactive = true, .valuesOnly = true};
    if (step) selection.time.steps = {{*step, *step}};
    if (box) selection.cells = {*box};
    auto context = std::make_shared<StreamContext>(options);
    CellRows rows(state_, context, selection);
    const auto size = rows.step().cellsOf(rows.plan().grid).size;
    Dense shape;
    for (std::size_t axis = 0; axis < 3; ++axis)
      shape.shape[2 - axis] = box ? box->to[axis] - box->from[axis] + 1 : size[axis];
    const auto shared = std::make_shared<const Schema>(rows.schema());
    const auto count = static_cast<std::size_t>(shape.cells());
    const auto collect = [&]<class Number>(Number) {
      return collected<Number>(rows, shared, context->session(), count, options.limits);
    };
    const Field& field = shared->front();
    Dense dense = field.type == Type::Int32     ? collect(std::int32_t{})
                  : field.type == Type::Float32 ? collect(float{})
                                                : collect(double{});
    dense.type = field.type;
    dense.shape = shape.shape;
    dense.unit = field.unit;
    return dense;
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
