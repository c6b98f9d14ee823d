#include "Transforms.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "../support/Session.h"
#include "BatchCopy.h"
#include "RowUnits.h"

namespace lumbarn {

namespace {

[[noreturn]] void refuse(std::string problem) {
  throw Error(Error::Kind::BadRequest, {.message = Message::TableRequest, .problem = std::move(problem)});
}

/// Takes the rows that are wanted out of the batches of a stream.
class KeptRows final : public BatchSource {
 public:
  KeptRows(Stream stream, std::function<bool(const Batch&, std::size_t)> keep)
      : stream_(std::move(stream)), keep_(std::move(keep)) {}

  std::optional<Batch> next() override {
    auto batch = stream_.next();
    if (!batch) return std::nullopt;
    std::vector<BatchRows> kept;
    for (std::size_t row = 0; row < batch->rows(); ++row) {
      if (!keep_(*batch, row)) continue;
      if (!kept.empty() && kept.back().first + kept.back().count == row) {
        ++kept.back().count;
      } else {
        kept.push_back({*batch, row, 1});
      }
    }
    if (kept.size() == 1 && kept.front().count == batch->rows()) return batch;
    return copied(stream_.sharedSchema(), kept);
  }

 private:
  Stream stream_;
  std::function<bool(const Batch&, std::size_t)> keep_;
};

template <class Source, class... Arguments>
Stream inPlaceOf(Stream stream, std::shared_ptr<const Schema> schema, Arguments&&... arguments) {
  auto context = stream.context();
  auto source = std::make_unique<Source>(std::move(stream), std::forward<Arguments>(arguments)...);
  return {std::move(schema), std::move(context), std::move(source)};
}

std::optional<std::size_t> columnNamed(const Schema& schema, std::string_view name) {
  const auto found = std::ranges::find(schema, name, &Field::name);
  if (found == schema.end()) return std::nullopt;
  return static_cast<std::size_t>(found - schema.begin());
}

/// Which period a moment lies in: numbers that differ from one to the next.
std::int64_t periodOf(LocalMoment moment, Every every) {
  using namespace std::chrono;
  const auto day = floor<days>(moment);
  const year_month_day date(day);
  const auto year = static_cast<std::int64_t>(static_cast<int>(date.year()));
  const auto month = static_cast<std::int64_t>(static_cast<unsigned>(date.month())) - 1;
  switch (every) {
    case Every::Day:
      return day.time_since_epoch().count();
    case Every::Month:
      return 12 * year + month;
    case Every::Quarter:
      return 4 * year + month / 3;
    case Every::Year:
      return year;
    case Every::Row:
    case Every::ReportStep:
      break;
  }
  return moment.time_since_epoch().count();
}

/// Holds the rows of the last moment back until it is known that no later one is in the same period.
class LastOfPeriods final : public BatchSource {
 public:
  struct Columns {
    std::optional<std::size_t> run, step, moment;
  };

  LastOfPeriods(Stream stream, Every every, const Columns& by)
      : stream_(std::move(stream)), every_(every), by_(by) {}

  std::optional<Batch> next() override {
    if (ended_) return std::nullopt;
    auto batch = stream_.next();
    std::vector<BatchRows> done;
    if (!batch) {
      ended_ = true;
      done = std::move(held_);
    } else {
      for (std::size_t row = 0; row < batch->rows(); ++row) take(*batch, row, done);
    }
    auto rows = copied(stream_.sharedSchema(), done);
    if (batch) holdLess(batch->rows());
    return rows;
  }

 private:
  struct Place {
    std::string run;
    std::int64_t period = 0, moment = 0;
    bool operator==(const Place&) const = default;
  };

  /// Keeps a few held rows alone, not the batches that they are in.
  void holdLess(std::size_t rowsOfBatch) {
    std::size_t rows = 0;
    for (const BatchRows& range : held_) rows += range.count;
    if (rows == 0 || rows > rowsOfBatch / 2) return;
    Batch few = copied(stream_.sharedSchema(), held_);
    held_.assign(1, {std::move(few), 0, rows});
  }
  /// Where a row is; rows without a moment are moments of their own.
  std::optional<Place> placeOf(const Batch& batch, std::size_t row) {
    const std::size_t decides = every_ == Every::ReportStep ? *by_.step : *by_.moment;
    if (!batch[decides].valid(row)) return std::nullopt;
    Place place{.run = by_.run ? std::string(batch[*by_.run].text(row)) : std::string()};
    const bool dated = by_.moment && batch[*by_.moment].valid(row);
    place.moment = dated ? batch[*by_.moment].values<std::int64_t>()[row] : ++undated_;
    place.period = every_ == Every::ReportStep
                       ? batch[*by_.step].values<std::int32_t>()[row]
                       : periodOf(LocalMoment(std::chrono::microseconds(place.moment)), every_);
    return place;
  }
  void take(const Batch& batch, std::size_t row, std::vector<BatchRows>& done) {
    auto place = placeOf(batch, row);
    if (!place) return;
    if (*place != heldAt_) {
      if (place->run != heldAt_.run || place->period != heldAt_.period)
        done.insert(done.end(), held_.begin(), held_.end());
      held_.clear();
      heldAt_ = std::move(*place);
    }
    if (!held_.empty() && held_.back().batch.data() == batch.data() &&
        held_.back().first + held_.back().count == row) {
      ++held_.back().count;
    } else {
      held_.push_back({batch, row, 1});
    }
  }

  Stream stream_;
  Every every_;
  Columns by_;
  std::vector<BatchRows> held_;
  Place heldAt_;
  std::int64_t undated_ = 0;
  bool ended_ = false;
};

template <class Number>
void convert(const Number* from, Block& to, std::size_t count, const UnitChange& change) {
  auto* out = reinterpret_cast<Number*>(to.data());
  for (std::size_t i = 0; i < count; ++i)
    out[i] = static_cast<Number>(change.of(static_cast<double>(from[i])));
}

class Converted final : public BatchSource {
 public:
  Converted(Stream stream, std::shared_ptr<const Schema> schema, std::vector<UnitChange> changes)
      : stream_(std::move(stream)), schema_(std::move(schema)), changes_(std::move(changes)) {}

  std::optional<Batch> next() override {
    const auto batch = stream_.next();
    if (!batch) return std::nullopt;
    BatchMaker made(schema_, batch->rows());
    for (std::size_t c = 0; c < schema_->size(); ++c) {
      if (changes_[c].changesValues()) {
        made.add(converted(*batch, c), &*batch, c);
      } else {
        made.share(*batch, c);
      }
    }
    return made.finish();
  }

 private:
  Block converted(const Batch& batch, std::size_t c) const {
    const Field& field = (*schema_)[c];
    const std::byte* from = batch.data()->columns[c].values;
    Block values(batch.rows() * widthOf(field));
    if (field.type == Type::Float64) {
      convert(reinterpret_cast<const double*>(from), values, batch.rows(), changes_[c]);
    } else {
      convert(reinterpret_cast<const float*>(from), values, values.size() / sizeof(float), changes_[c]);
    }
    // Nulls contain 0, also where the units have an offset.
    for (std::size_t row = 0; changes_[c].offset != 0 && row < batch.rows(); ++row) {
      if (!batch[c].valid(row))
        std::fill_n(values.data() + row * widthOf(field), widthOf(field), std::byte{});
    }
    return values;
  }

  Stream stream_;
  std::shared_ptr<const Schema> schema_;
  std::vector<UnitChange> changes_;
};

}  // namespace

Stream where(Stream stream, std::function<bool(const Batch& batch, std::size_t row)> keep) {
  auto schema = stream.sharedSchema();
  return inPlaceOf<KeptRows>(std::move(stream), std::move(schema), std::move(keep));
}

Stream where(Stream stream, const std::string& column, std::vector<std::string> texts) {
  const auto found = columnNamed(stream.schema(), column);
  if (!found) {
    throw Error(Error::Kind::NotFound,
                {.message = Message::TableRequest, .problem = fmt::format("there is no column {}", column)});
  }
  const Type type = stream.schema()[*found].type;
  if (type != Type::Utf8 && type != Type::Dictionary) refuse(fmt::format("column {} has no texts", column));
  const std::set<std::string, std::less<>> wanted(texts.begin(), texts.end());
  return where(std::move(stream), [wanted, at = *found](const Batch& batch, std::size_t row) {
    return batch[at].valid(row) && wanted.contains(batch[at].text(row));
  });
}

Stream resample(Stream stream, Every every) {
  if (every == Every::Row) return stream;
  auto schema = stream.sharedSchema();
  LastOfPeriods::Columns by{.run = columnNamed(*schema, "run"), .step = columnNamed(*schema, "step")};
  const auto moments = std::ranges::find(*schema, Type::Timestamp, &Field::type);
  if (moments != schema->end()) by.moment = static_cast<std::size_t>(moments - schema->begin());
  if (every == Every::ReportStep && (!by.step || (*schema)[*by.step].type != Type::Int32))
    refuse("the table has no steps by which rows could be chosen");
  if (every != Every::ReportStep && !by.moment)
    refuse("the table has no dates by which rows could be chosen");
  return inPlaceOf<LastOfPeriods>(std::move(stream), std::move(schema), every, by);
}

Stream convertUnits(Stream stream, Units units) {
  if (units == Units::File) return stream;
  auto schema = std::make_shared<Schema>(stream.schema());
  std::vector<UnitChange> changes(schema->size());
  std::set<std::string> unknown;
  for (std::size_t c = 0; c < schema->size(); ++c) {
    Field& field = (*schema)[c];
    const bool real =
        field.type == Type::Float32 || field.type == Type::Float64 || field.type == Type::FixedList;
    if (!real || field.unit.empty() || field.name == "days") continue;
    if (auto change = unitChange(field.unit, units, metadataOf(field, "mnemonic").value_or(field.name))) {
      field.unit = change->unit;
      changes[c] = std::move(*change);
    } else {
      unknown.insert(field.unit);
    }
  }
  if (unknown.empty() &&
      std::ranges::none_of(changes, [](const UnitChange& one) { return !one.unit.empty(); }))
    return convertRowUnits(std::move(stream), units);
  if (!unknown.empty()) {
    stream.context()->session().diagnose(
        {.message = Message::UnitUnknown,
         .problem = fmt::format("units that are not known are kept: {}", fmt::join(unknown, ", "))});
  }
  return convertRowUnits(inPlaceOf<Converted>(std::move(stream), schema, schema, std::move(changes)), units);
}

}  // namespace lumbarn
