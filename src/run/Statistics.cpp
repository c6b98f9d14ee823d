#include <algorithm>
#include <cmath>
#include <deque>
#include <exception>
#include <limits>
#include <map>

#include <fmt/format.h>

#include "../frame/Error.h"
#include "../frame/NumberText.h"
#include "../support/Session.h"
#include "../support/Text.h"
#include "CellRows.h"
#include "Run.h"

namespace lumbarn {

namespace {

/// The percentiles of values, whose order changes: each at `percentile` / 100 * (count - 1) in their order,
/// from 0, linearly between the two at its sides.
std::vector<double> percentilesOf(std::vector<double>& values, const std::vector<double>& percentiles) {
  std::vector<double> found;
  for (const double percentile : values.empty() ? std::vector<double>() : percentiles) {
    const double place = percentile / 100 * static_cast<double>(values.size() - 1);
    const auto below = values.begin() + static_cast<std::ptrdiff_t>(place);
    std::ranges::nth_element(values, below);
    const double part = place - std::floor(place);
    const double next = part > 0 ? *std::min_element(below + 1, values.end()) : *below;
    found.push_back(std::lerp(*below, next, part));
  }
  return found;
}

/// What is summed up of one array in one region, in the order of the cells.
struct Summary {
  std::int64_t count = 0;
  double least = std::numeric_limits<double>::infinity();
  double most = -std::numeric_limits<double>::infinity();
  double sum = 0;
  double weights = 0;
  double weighted = 0;
  std::vector<double> values;  // where percentiles are asked for; of all cells, those without a region

  void add(double value, double weight) {
    ++count;
    least = std::min(least, value);
    most = std::max(most, value);
    sum += value;
    if (std::isnan(weight)) return;
    weights += weight;
    weighted += weight * value;
  }
};

using Region = std::vector<std::int32_t>;

class RegionRows {
 public:
  RegionRows(std::shared_ptr<const RunState> run, std::shared_ptr<StreamContext> context,
             const StatisticsSelection& selection)
      : context_(std::move(context)),
        init_(selection.cells.init),
        percentiles_(selection.percentiles),
        cells_(std::move(run), context_, cellSelection(selection)),
        cellSchema_(std::make_shared<const Schema>(cells_.schema())) {
    const auto& columns = cells_.plan().columns;
    firstArray_ = cellSchema_->size() - columns.size();
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (columns[i].asked < selection.cells.arrays.size()) values_.push_back(i + firstArray_);
    }
    for (const std::string& name : selection.by) {
      by_.push_back(columnNamed(name));
      if ((*cellSchema_)[by_.back()].type != Type::Int32)
        throwRefused(cells_.plan().index->files.front(), fmt::format("{} has no region numbers", name));
    }
    if (!selection.weight.empty()) weight_ = columnNamed(selection.weight);
    for (const double percentile : percentiles_) {
      if (!(percentile >= 0 && percentile <= 100))
        throwRefused(cells_.plan().index->files.front(),
                     fmt::format("a percentile is from 0 to 100, not {}", percentile));
    }
    if (values_.empty()) throwRefused(cells_.plan().index->files.front(), "no array is asked for");
  }

  Schema schema() const {
    Schema schema;
    if (!init_) {
      schema.push_back({.name = "step", .type = Type::Int32, .nullable = false});
      schema.push_back({.name = "date", .type = Type::Timestamp});
    }
    schema.push_back((*cellSchema_)[firstArray_ - 1]);  // grid
    const Type type = valueType();
    for (const char* text : {"array", "region"})
      schema.push_back({.name = text, .type = Type::Utf8, .nullable = false});
    schema.push_back({.name = "count", .type = Type::Int64, .nullable = false});
    for (const char* bound : {"min", "max"}) schema.push_back({.name = bound, .type = type});
    for (const char* number : {"mean", "weighted_mean"})
      schema.push_back({.name = number, .type = Type::Float64});
    for (const double percentile : percentiles_) {
      schema.push_back({.name = fmt::format("p{}", NumberText(percentile).view()), .type = Type::Float64});
      schema.back().metadata.emplace_back("statistic", "percentile");
    }
    for (const char* number : {"sum", "weight_sum"})
      schema.push_back({.name = number, .type = Type::Float64});
    schema.push_back({.name = "unit", .type = Type::Utf8});
    makeNamesUnique(schema);
    return schema;
  }

  bool fill(BatchBuilder& rows) {
    while (!rows.full()) {
      if (!results_.empty()) {
        put(rows, results_.front());
        rows.endRow();
        results_.pop_front();
      } else if (failure_) {
        std::rethrow_exception(failure_);
      } else if (ended_) {
        return false;
      } else {
        readCells();
      }
    }
    return true;
  }

 private:
  struct Result {
    std::int32_t step = 0;
    std::optional<LocalMoment> date;
    std::size_t column = 0;
    std::string region;
    Summary summary;
    std::vector<double> percentiles;
  };

  static CellSelection cellSelection(const StatisticsSelection& selection) {
    CellSelection cells = selection.cells;
    cells.valuesOnly = cells.ijk = cells.inactive = false;
    cells.arrays.insert(cells.arrays.end(), selection.by.begin(), selection.by.end());
    if (!selection.weight.empty()) cells.arrays.push_back(selection.weight);
    return cells;
  }

  std::size_t columnNamed(const std::string& name) const {
    const auto& columns = cells_.plan().columns;
    const auto found = std::ranges::find(columns, upper(trim(name)), &ArrayColumn::name);
    if (found != columns.end()) return static_cast<std::size_t>(found - columns.begin()) + firstArray_;
    throwNotFound(cells_.plan().index->files.front(), fmt::format("has no array {}", name), name, {});
  }

  /// Of smallest and largest values: that of the arrays where they have the same.
  Type valueType() const {
    const Type first = (*cellSchema_)[values_.front()].type;
    const bool same = std::ranges::all_of(
        values_, [&](std::size_t column) { return (*cellSchema_)[column].type == first; });
    return same ? first : Type::Float64;
  }

  /// Adds some more cells to the summaries. Damage ends them at the last complete step.
  void readCells() {
    BatchBuilder builder(cellSchema_, {.bytes = std::size_t{8} << 20, .rows = 65536});
    bool more = false;
    try {
      more = cells_.fill(builder);
    } catch (...) {
      builder.dropRow();
      failure_ = std::current_exception();
    }
    if (builder.rows() > 0) add(builder.finish());
    if (!percentiles_.empty()) context_->session().checkMemory(keptValues_ * sizeof(double));
    const bool partial = failure_ && (init_ || cells_.step().number == step_);
    if (partial) {
      summaries_.clear();
    } else if (!more) {
      finishStep();
    }
    ended_ = !more;
  }

  void add(const Batch& batch) {
    std::vector<std::vector<double>> values;
    for (const std::size_t column : values_) values.push_back(batch[column].doubles());
    const auto weights = weight_ ? batch[*weight_].doubles() : std::vector<double>();
    std::vector<Column> by;
    for (const std::size_t column : by_) by.push_back(batch[column]);
    Region region(by.size());
    std::vector<Summary>* summaries = nullptr;
    for (std::size_t row = 0; row < batch.rows(); ++row) {
      if (!init_) beginStep(batch, row, summaries);
      bool known = !by.empty();
      bool same = summaries != nullptr;
      for (std::size_t i = 0; i < by.size(); ++i) {
        const std::int32_t number = by[i].values<std::int32_t>()[row];
        known = known && by[i].valid(row);
        same = same && region[i] == number;
        region[i] = number;
      }
      if (!known) summaries = nullptr;
      if (known && !same) summaries = &of(region);
      if (all_.empty()) all_.resize(values_.size());
      const double weight = weights.empty() ? std::nan("") : weights[row];
      for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::isnan(values[i][row])) continue;
        if (known) (*summaries)[i].add(values[i][row], weight);
        all_[i].add(values[i][row], weight);
        if (percentiles_.empty()) continue;
        ++keptValues_;
        (known ? (*summaries)[i] : all_[i]).values.push_back(values[i][row]);
      }
    }
  }

  std::vector<Summary>& of(const Region& region) {
    auto& summaries = summaries_[region];
    summaries.resize(values_.size());
    return summaries;
  }

  void beginStep(const Batch& batch, std::size_t row, std::vector<Summary>*& summaries) {
    const std::int32_t step = batch[0].values<std::int32_t>()[row];
    if (!all_.empty() && step == step_) return;
    finishStep();
    summaries = nullptr;
    step_ = step;
    date_.reset();
    if (batch[1].valid(row))
      date_ = LocalMoment(std::chrono::microseconds(batch[1].values<std::int64_t>()[row]));
  }

  void finishStep() {
    if (all_.empty()) return;
    for (std::size_t i = 0; i < values_.size(); ++i) {
      std::vector<double> all = std::move(all_[i].values);
      for (auto& [region, summaries] : summaries_) {
        std::vector<double> values = std::move(summaries[i].values);
        auto percentiles = percentilesOf(values, percentiles_);
        all.insert(all.end(), values.begin(), values.end());
        results_.push_back(
            {step_, date_, values_[i], regionText(region), std::move(summaries[i]), std::move(percentiles)});
      }
      auto percentiles = percentilesOf(all, percentiles_);
      results_.push_back({step_, date_, values_[i], "all", std::move(all_[i]), std::move(percentiles)});
    }
    summaries_.clear();
    all_.clear();
    keptValues_ = 0;
  }

  static std::string regionText(const Region& region) {
    std::string text;
    for (const std::int32_t number : region) text += fmt::format("{}{}", text.empty() ? "" : "/", number);
    return text;
  }

  void put(BatchBuilder& rows, const Result& result) const {
    const Field& field = (*cellSchema_)[result.column];
    const Summary& summary = result.summary;
    std::size_t column = 0;
    if (!init_) {
      rows.set(column++, result.step);
      if (result.date) rows.set(column, *result.date);
      ++column;
    }
    rows.set(column++, std::int32_t{0});
    rows.set(column++, std::string_view(field.name));
    rows.set(column++, std::string_view(result.region));
    rows.set(column++, summary.count);
    const std::size_t behind = column + 4 + percentiles_.size();
    if (summary.count > 0) {
      rows.set(column, summary.least);
      rows.set(column + 1, summary.most);
      rows.set(column + 2, summary.sum / static_cast<double>(summary.count));
      if (weight_ && summary.weights != 0) rows.set(column + 3, summary.weighted / summary.weights);
      for (std::size_t i = 0; i < percentiles_.size(); ++i) rows.set(column + 4 + i, result.percentiles[i]);
      rows.set(behind, summary.sum);
    }
    if (weight_) rows.set(behind + 1, summary.weights);
    rows.set(behind + 2, std::string_view(field.unit));
  }

  std::shared_ptr<StreamContext> context_;
  bool init_;
  std::vector<double> percentiles_;
  CellRows cells_;
  std::shared_ptr<const Schema> cellSchema_;
  std::size_t firstArray_ = 0;
  std::vector<std::size_t> values_;  // columns of the cells
  std::vector<std::size_t> by_;
  std::optional<std::size_t> weight_;

  // The current step
  std::int32_t step_ = 0;
  std::optional<LocalMoment> date_;
  std::map<Region, std::vector<Summary>> summaries_;
  std::vector<Summary> all_;
  std::size_t keptValues_ = 0;

  std::deque<Result> results_;
  std::exception_ptr failure_;
  bool ended_ = false;
};

}  // namespace

Stream Run::statistics(const StatisticsSelection& selection, const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    auto rows = std::make_shared<RegionRows>(state_, context, selection);
    return streamOfRows(rows->schema(), std::move(context),
                        [rows](BatchBuilder& builder) { return rows->fill(builder); });
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
