#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "../support/Session.h"
#include "../vocabulary/UnitChange.h"
#include "Compare.h"
#include "DifferenceList.h"
#include "RunState.h"

namespace lumbarn {

namespace {

constexpr double microsecondsInDay = 86400e6;

/// The rows of a stream, one after the other.
class RowCursor {
 public:
  explicit RowCursor(Stream stream) : stream_(std::move(stream)) { advance(); }

  bool atEnd() const { return !batch_; }
  void advance() {
    if (batch_ && ++row_ < batch_->rows()) return;
    row_ = 0;
    batch_ = stream_.next();
    columns_.clear();
    for (std::size_t c = 0; batch_ && c < batch_->columns(); ++c) columns_.push_back((*batch_)[c]);
  }
  const Schema& schema() const { return stream_.schema(); }

  std::optional<std::int32_t> integer(std::size_t column) const {
    const Column& values = columns_[column];
    return values.valid(row_) ? std::optional(values.values<std::int32_t>()[row_]) : std::nullopt;
  }
  std::optional<LocalMoment> moment(std::size_t column) const {
    const Column& values = columns_[column];
    if (!values.valid(row_)) return std::nullopt;
    return LocalMoment(std::chrono::microseconds(values.values<std::int64_t>()[row_]));
  }
  /// A number of any type; not a number where it is null.
  double number(std::size_t column) const {
    const Column& values = columns_[column];
    if (!values.valid(row_)) return std::numeric_limits<double>::quiet_NaN();
    switch (values.field().type) {
      case Type::Int32:
        return values.values<std::int32_t>()[row_];
      case Type::Float32:
        return values.values<float>()[row_];
      default:
        return values.values<double>()[row_];
    }
  }

 private:
  Stream stream_;
  std::optional<Batch> batch_;
  std::vector<Column> columns_;
  std::size_t row_ = 0;
};

/// Which columns of a stream are what.
struct Columns {
  std::optional<std::size_t> step, date, days;
  std::vector<std::size_t> place;  // i, j, k
  std::vector<std::pair<std::string, std::size_t>> values;

  explicit Columns(const Schema& schema) {
    for (std::size_t c = 0; c < schema.size(); ++c) {
      const std::string& name = schema[c].name;
      if (name == "step") {
        step = c;
      } else if (name == "date") {
        date = c;
      } else if (name == "days") {
        days = c;
      } else if (name == "i" || name == "j" || name == "k") {
        place.push_back(c);
      } else if (schema[c].type == Type::Float32 || schema[c].type == Type::Float64 ||
                 schema[c].type == Type::Int32) {
        values.emplace_back(name, c);
      }
    }
  }
};

/// When a row is, and in which cell.
struct RowKey {
  std::optional<LocalMoment> date;
  std::int32_t step = -1;
  double days = 0;
  std::array<std::int32_t, 3> cell{};  // k, j, i: rows are in this order

  RowKey(const RowCursor& row, const Columns& columns) {
    if (columns.date) date = row.moment(*columns.date);
    if (columns.step) step = row.integer(*columns.step).value_or(-1);
    if (columns.days) days = row.number(*columns.days);
    for (std::size_t axis = 0; axis < columns.place.size(); ++axis)
      cell[2 - axis] = row.integer(columns.place[axis]).value_or(0);
  }

  /// Below 0: this row comes first. Dates that have the same TIME are the same.
  int compare(const RowKey& other) const {
    if (date && other.date) {
      const auto single = static_cast<float>(std::abs(days));
      const double last = std::nextafter(single, std::numeric_limits<float>::infinity()) - single;
      const auto apart = static_cast<double>((*date - *other.date).count());
      if (std::abs(apart) > last / 2 * microsecondsInDay + 1) return apart < 0 ? -1 : 1;
    } else if (step != other.step) {
      return step < other.step ? -1 : 1;
    }
    return cell < other.cell ? -1 : cell > other.cell ? 1 : 0;
  }
};

/// A column that both have.
struct ColumnPair {
  std::string name;
  std::size_t a = 0;
  std::size_t b = 0;
  UnitChange ofB;
  bool single = false;
  bool rate = false;
};

/// The row of b that was passed last.
struct PassedRow {
  std::optional<LocalMoment> date;
  std::vector<double> values;  // by pair

  PassedRow(const RowKey& key, const RowCursor& row, const std::vector<ColumnPair>& pairs) : date(key.date) {
    for (const ColumnPair& pair : pairs) values.push_back(row.number(pair.b));
  }
};

/// Where a date is from the row of b before it, 0, to the one behind, 1; nothing without dates.
std::optional<double> placeBetween(const PassedRow& before, const RowKey& at, const RowKey& behind) {
  if (!before.date || !at.date || !behind.date) return std::nullopt;
  const auto days = [&](LocalMoment to) {
    return static_cast<double>((to - *before.date).count()) / microsecondsInDay;
  };
  return days(*at.date) / days(*behind.date);
}

class RunPair {
 public:
  RunPair(const std::string& b, const Comparison& comparison, Session& session)
      : pathOfB_(b), allTimes_(comparison.time.isAll()), differences_(comparison), session_(session) {}

  /// Compares the rows of two answers that have the same key, or with `interpolate` those of b at the keys of
  /// a.
  void compareRows(const std::string& kind, Stream ofA, Stream ofB, bool interpolate) {
    RowCursor a(std::move(ofA));
    RowCursor b(std::move(ofB));
    const Columns columnsOfA(a.schema());
    const Columns columnsOfB(b.schema());
    const auto pairs = pairColumns(kind, a.schema(), columnsOfA, b.schema(), columnsOfB);
    std::int64_t aloneInA = 0, aloneInB = 0;
    std::optional<double> before;
    std::optional<PassedRow> passed;
    bool begun = false;  // dates of a
    while (!a.atEnd() && !b.atEnd()) {
      if (session_.yield()) throw LoadCanceled();
      const RowKey keyOfA(a, columnsOfA);
      const RowKey keyOfB(b, columnsOfB);
      const int order = keyOfA.compare(keyOfB);
      std::optional<double> part;
      if (order < 0 && passed) part = placeBetween(*passed, keyOfA, keyOfB);
      if (order == 0 || part) {
        compareRow(kind, pairs, a, keyOfA, valuesOfB(pairs, b, passed, part), before);
        before = keyOfA.days;
      } else if (order < 0) {
        ++aloneInA;
      } else if (!(interpolate && begun && keyOfB.date)) {
        ++aloneInB;
      }
      begun = begun || order <= 0;
      if (order <= 0) a.advance();
      if (order < 0) continue;
      if (interpolate) passed.emplace(keyOfB, b, pairs);
      b.advance();
    }
    for (; !a.atEnd(); a.advance()) ++aloneInA;
    for (; !b.atEnd(); b.advance()) ++aloneInB;
    // To interpolate, b is asked for more rows than a when a time is.
    const std::int64_t alone = aloneInA + (interpolate && !allTimes_ ? 0 : aloneInB);
    if (alone > 0) {
      report(Message::CompareRows, kind,
             fmt::format("{} rows have dates or cells that only one of the two has", alone));
    }
  }

  void report(Message message, const std::string& name, std::string problem) {
    session_.diagnose({.message = message, .path = pathOfB_, .problem = name + ": " + std::move(problem)});
  }
  void missing() { complete_ = false; }
  Differences result() {
    if (differences_.nothingCompared() && complete_)
      throwRefused(pathOfB_, "nothing of it is to be compared");
    return {differences_.overview(), differences_.largest(), complete_ && differences_.equal()};
  }

 private:
  static std::vector<double> valuesOfB(const std::vector<ColumnPair>& pairs, const RowCursor& b,
                                       const std::optional<PassedRow>& passed, std::optional<double> part) {
    std::vector<double> values;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      const double value = b.number(pairs[i].b);
      const bool between = part && !pairs[i].rate;
      values.push_back(pairs[i].ofB.of(between ? std::lerp(passed->values[i], value, *part) : value));
    }
    return values;
  }

  /// `before`: the days of the last row that was compared.
  void compareRow(const std::string& kind, const std::vector<ColumnPair>& pairs, const RowCursor& a,
                  const RowKey& key, const std::vector<double>& ofB, std::optional<double> before) {
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      const double value = a.number(pairs[i].a);
      take(kind, pairs[i], key, kind == "array", value, ofB[i]);
      if (kind != "array" && before)
        differences_.integrate(pairs[i].name, value - ofB[i], key.days - *before);
    }
  }

  std::vector<ColumnPair> pairColumns(const std::string& kind, const Schema& a, const Columns& columnsOfA,
                                      const Schema& b, const Columns& columnsOfB) {
    std::map<std::string, std::size_t> ofB(columnsOfB.values.begin(), columnsOfB.values.end());
    std::vector<ColumnPair> pairs;
    std::vector<std::string> alone;
    for (const auto& [name, column] : columnsOfA.values) {
      const auto found = ofB.find(name);
      if (found == ofB.end()) {
        alone.push_back(name);
        continue;
      }
      const auto change = a[column].unit == b[found->second].unit
                              ? std::optional(UnitChange{})
                              : unitChange(b[found->second].unit, a[column].unit);
      if (change) {
        pairs.push_back({name, column, found->second, *change, a[column].type == Type::Float32,
                         isPerTime(b[found->second].unit)});
      } else {
        report(
            Message::CompareSize, name,
            fmt::format("the units {} and {} are of different kinds", a[column].unit, b[found->second].unit));
        complete_ = false;
      }
      ofB.erase(found);
    }
    for (const auto& [name, column] : ofB) alone.push_back(name);
    if (!alone.empty()) {
      complete_ = false;
      report(Message::CompareMissing, kind,
             alone.size() == 1
                 ? fmt::format("only one of the two has {}", alone[0])
                 : fmt::format("only one of the two has {} and {} others", alone[0], alone.size() - 1));
    }
    return pairs;
  }

  void take(const std::string& kind, const ColumnPair& pair, const RowKey& key, bool ofCells, double a,
            double b) {
    if (std::isnan(a) && std::isnan(b)) return;
    differences_.count(kind, pair.name, 1);
    if (a == b) return;
    ElementPair values{.single = pair.single, .a = a, .b = b, .textA = {}, .textB = {}};
    differences_.take(kind, pair.name, values, [&] {
      DifferencePlace at{.step = {}, .date = key.date, .place = {}};
      if (key.step >= 0) at.step = key.step;
      if (ofCells) at.place = fmt::format("{},{},{}", key.cell[2], key.cell[1], key.cell[0]);
      return at;
    });
  }

  std::string pathOfB_;
  bool allTimes_;
  DifferenceList differences_;
  Session& session_;
  bool complete_ = true;
};

/// The sizes of the global grids; nothing where the restart files do not state them.
std::optional<std::array<std::int32_t, 3>> sizeOf(const Run& run, StreamContext& context) {
  const auto index = run.state().restartIndex(context);
  const GridCells cells = index->steps.front().cellsOf({});
  return cells.known() ? std::optional(cells.size) : std::nullopt;
}

void compareArrays(const Run& a, const Run& b, const Comparison& comparison, StreamContext& context,
                   const ReadOptions& options, RunPair& runs) {
  const auto sizeA = sizeOf(a, context);
  const auto sizeB = sizeOf(b, context);
  if (sizeA != sizeB && sizeA && sizeB) {
    runs.missing();
    return runs.report(Message::CompareSize, "arrays",
                       fmt::format("the grids have {} x {} x {} and {} x {} x {} cells", (*sizeA)[0],
                                   (*sizeA)[1], (*sizeA)[2], (*sizeB)[0], (*sizeB)[1], (*sizeB)[2]));
  }
  CellSelection cells{.arrays = comparison.keywords, .time = comparison.time, .ijk = true};
  runs.compareRows("array", a.cells(cells, options), b.cells(cells, options), false);
}

}  // namespace

Differences compare(const Run& a, const Run& b, const Comparison& comparison, const ReadOptions& options) {
  try {
    StreamContext context(options);
    RunPair runs(b.root(), comparison, context.session());
    const bool all = comparison.vectors.empty() && comparison.keywords.empty();
    if (all || !comparison.vectors.empty()) {
      SummarySelection vectors{
          .vectors = comparison.vectors, .except = {"TIME"}, .time = comparison.time, .keys = true};
      SummarySelection vectorsOfB = vectors;
      if (comparison.interpolate) vectorsOfB.time = {};
      runs.compareRows("vector", a.summary(vectors, options), b.summary(vectorsOfB, options),
                       comparison.interpolate);
    }
    if (!comparison.keywords.empty()) compareArrays(a, b, comparison, context, options, runs);
    return runs.result();
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
