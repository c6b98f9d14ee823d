#include "RowUnits.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "../support/Session.h"
#include "BatchCopy.h"

namespace lumbarn {

namespace {

constexpr std::string_view measured[] = {"value", "min", "max", "mean", "weighted_mean", "sum"};

bool isMeasured(const Field& field) {
  return std::ranges::count(measured, field.name) > 0 || metadataOf(field, "statistic") == "percentile";
}

bool isText(Type type) { return type == Type::Utf8 || type == Type::Dictionary; }

class RowUnits {
 public:
  RowUnits(Stream stream, Units units, std::size_t unitColumn)
      : stream_(std::move(stream)), units_(units), unitColumn_(unitColumn) {
    const Schema& schema = stream_.schema();
    for (std::size_t c = 0; c < schema.size(); ++c) {
      const Field& field = schema[c];
      const bool real = field.type == Type::Float32 || field.type == Type::Float64;
      if (real && field.unit.empty() && isMeasured(field)) values_.push_back(c);
      summed_ = summed_ || field.name == "sum";
      if (isText(field.type) && (field.name == "mnemonic" || field.name == "array")) quantity_ = c;
    }
  }
  bool any() const { return !values_.empty(); }
  Stream& stream() { return stream_; }
  Schema schema() const {
    Schema schema = stream_.schema();
    schema[unitColumn_].type = Type::Utf8;  // the texts are known when the rows are
    schema[unitColumn_].dictionary = nullptr;
    return schema;
  }
  bool fill(BatchBuilder& rows) {
    while (!rows.full()) {
      if (!batch_ && !(batch_ = stream_.next())) return false;
      for (; row_ < batch_->rows() && !rows.full(); ++row_) addRow(rows);
      if (row_ < batch_->rows()) return true;
      batch_.reset();
      row_ = 0;
    }
    return true;
  }

 private:
  void addRow(BatchBuilder& rows) {
    const UnitChange& change = changeOf(row_);
    for (std::size_t c = 0; c < batch_->columns(); ++c) {
      const Column column = (*batch_)[c];
      if (!column.valid(row_)) continue;
      if (c == unitColumn_) {
        rows.set(c, std::string_view(change.unit));
      } else if (change.changesValues() && std::ranges::count(values_, c) > 0) {
        rows.set(c, change.of(numberAt(column, row_)));
      } else {
        setFrom(rows, c, column, row_);
      }
    }
    rows.endRow();
  }
  const UnitChange& changeOf(std::size_t row) {
    const std::string unit((*batch_)[unitColumn_].text(row));
    const std::string quantity(quantity_ ? (*batch_)[*quantity_].text(row) : std::string_view());
    const auto [known, isNew] = changes_.try_emplace({unit, quantity}, UnitChange{.unit = unit});
    if (!isNew) return known->second;
    auto change = unitChange(unit, units_, quantity);
    // The offset of a sum would need the number of its values.
    if (change && !(summed_ && change->offset != 0)) {
      known->second = std::move(*change);
    } else {
      stream_.context()->session().diagnose(
          {.message = Message::UnitUnknown,
           .problem = fmt::format("values of {} in {} are not converted", quantity, unit)});
    }
    return known->second;
  }

  Stream stream_;
  Units units_;
  std::size_t unitColumn_;
  std::optional<std::size_t> quantity_;
  std::vector<std::size_t> values_;
  bool summed_ = false;
  std::map<std::pair<std::string, std::string>, UnitChange> changes_;
  std::optional<Batch> batch_;
  std::size_t row_ = 0;
};

}  // namespace

Stream convertRowUnits(Stream stream, Units units) {
  const auto& schema = stream.schema();
  const auto unit = std::ranges::find(schema, "unit", &Field::name);
  if (unit == schema.end() || !isText(unit->type)) return stream;
  const auto at = static_cast<std::size_t>(unit - schema.begin());
  auto rows = std::make_shared<RowUnits>(std::move(stream), units, at);
  if (!rows->any()) return std::move(rows->stream());
  auto context = rows->stream().context();
  return streamOfRows(rows->schema(), std::move(context),
                      [rows](BatchBuilder& out) { return rows->fill(out); });
}

}  // namespace lumbarn
