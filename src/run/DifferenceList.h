#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "../frame/BatchBuilder.h"
#include "../frame/NumberText.h"
#include "../support/Text.h"
#include "RecordData.h"
#include "RecordPair.h"
#include "Selections.h"

namespace lumbarn {

/// Where a difference is.
struct DifferencePlace {
  std::optional<std::int32_t> step{};
  std::optional<LocalMoment> date{};
  std::string place{};
};

/// A difference as a row.
struct Difference {
  std::string kind, name;
  DifferencePlace at;
  ElementPair values;
  double absolute = 0;  ///< infinite for texts, and for a number beside none
  double relative = 0;

  bool operator<(const Difference& other) const {
    return std::pair(absolute, relative) > std::pair(other.absolute, other.relative);
  }
};

/// What was found of one name.
struct NameTotal {
  std::string kind;
  std::int64_t count = 0;
  std::int64_t different = 0;
  double largest = 0;
  double sum = 0;                  // of absolute differences
  std::optional<double> integral;  // of the difference over time, in days
};

/// Takes pairs of values that are not equal, and keeps the largest differences and the totals of each name.
class DifferenceList {
 public:
  explicit DifferenceList(const Comparison& comparison) : comparison_(comparison) {}

  /// Values of a name that were compared.
  void count(const std::string& kind, const std::string& name, std::int64_t values) {
    NameTotal& total = totals_[name];
    total.kind = kind;
    total.count += values;
  }
  /// Adds to the integral of a - b over time.
  void integrate(const std::string& name, double difference, double days) {
    if (!std::isfinite(difference)) return;
    NameTotal& total = totals_[name];
    total.integral = total.integral.value_or(0) + difference * days;
  }
  /// `place` gives the DifferencePlace, where the difference is one to keep.
  template <class Place>
  void take(const std::string& kind, const std::string& name, const ElementPair& pair, Place&& place) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    double absolute = infinite, relative = infinite;
    if (pair.numbers && !std::isnan(pair.a) && !std::isnan(pair.b)) {
      const double larger = std::max(std::abs(pair.a), std::abs(pair.b));
      absolute = std::abs(pair.a - pair.b);
      relative = absolute / larger;  // not both are 0
      if (absolute <= std::max(comparison_.absolute, comparison_.relative * larger)) return;
    }
    NameTotal& total = totals_[name];
    ++total.different;
    if (std::isfinite(absolute)) {
      total.largest = std::max(total.largest, absolute);
      total.sum += absolute;
    }
    Difference one{kind, name, {}, pair, absolute, relative};
    if (comparison_.top == 0) return;
    if (largest_.size() == comparison_.top) {
      if (!(one < largest_.front())) return;
      std::pop_heap(largest_.begin(), largest_.end());
      largest_.pop_back();
    }
    one.at = place();
    largest_.push_back(std::move(one));
    std::push_heap(largest_.begin(), largest_.end());
  }

  bool equal() const {
    return std::ranges::all_of(totals_, [](const auto& total) { return total.second.different == 0; });
  }
  bool nothingCompared() const { return totals_.empty(); }

  Batch overview() const {
    BatchBuilder rows(schemaOf({{.name = "kind", .type = Type::Utf8, .nullable = false},
                                {.name = "name", .type = Type::Utf8, .nullable = false},
                                {.name = "count", .type = Type::Int64, .nullable = false},
                                {.name = "different", .type = Type::Int64, .nullable = false},
                                {.name = "max", .type = Type::Float64, .nullable = false},
                                {.name = "mean", .type = Type::Float64, .nullable = false},
                                {.name = "integral", .type = Type::Float64}}),
                      all);
    for (const auto& [name, total] : totals_) {
      rows.set(0, total.kind);
      rows.set(1, toUtf8(name));
      rows.set(2, total.count);
      rows.set(3, total.different);
      rows.set(4, total.largest);
      rows.set(5, total.count > 0 ? total.sum / static_cast<double>(total.count) : 0.0);
      if (total.integral) rows.set(6, *total.integral);
      rows.endRow();
    }
    return rows.finish();
  }
  Batch largest() {
    std::sort_heap(largest_.begin(), largest_.end());
    const bool texts =
        std::ranges::any_of(largest_, [](const Difference& one) { return !one.values.numbers; });
    const Type values = texts ? Type::Utf8 : Type::Float64;
    BatchBuilder rows(schemaOf({{.name = "kind", .type = Type::Utf8, .nullable = false},
                                {.name = "name", .type = Type::Utf8, .nullable = false},
                                {.name = "step", .type = Type::Int32},
                                {.name = "date", .type = Type::Timestamp},
                                {.name = "place", .type = Type::Utf8, .nullable = false},
                                {.name = "a", .type = values},
                                {.name = "b", .type = values},
                                {.name = "abs", .type = Type::Float64},
                                {.name = "rel", .type = Type::Float64}}),
                      all);
    for (const Difference& one : largest_) add(rows, one, texts);
    return rows.finish();
  }

 private:
  static constexpr BatchLimits all{.bytes = std::numeric_limits<std::size_t>::max(),
                                   .rows = std::size_t{1} << 24};

  static std::shared_ptr<const Schema> schemaOf(Schema schema) {
    return std::make_shared<const Schema>(std::move(schema));
  }
  static void add(BatchBuilder& rows, const Difference& one, bool texts) {
    rows.set(0, one.kind);
    rows.set(1, toUtf8(one.name));
    if (one.at.step) rows.set(2, *one.at.step);
    if (one.at.date) rows.set(3, *one.at.date);
    rows.set(4, one.at.place);
    const auto put = [&](std::size_t column, double value, const std::string& text) {
      const double shown = one.values.single ? sameDigits(static_cast<float>(value)) : value;
      if (!texts && std::isnan(shown)) return;  // no value
      if (!texts) return rows.set(column, shown);
      rows.set(column, one.values.numbers ? NumberText(shown, false).view() : std::string_view(text));
    };
    put(5, one.values.a, one.values.textA);
    put(6, one.values.b, one.values.textB);
    if (std::isfinite(one.absolute)) {
      rows.set(7, one.absolute);
      rows.set(8, one.relative);
    }
    rows.endRow();
  }

  Comparison comparison_;
  std::map<std::string, NameTotal> totals_;
  std::vector<Difference> largest_;  // a heap, the smallest in front
};

}  // namespace lumbarn
