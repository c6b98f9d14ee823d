#include "JoinRuns.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "../support/Session.h"
#include "../support/Text.h"
#include "../vocabulary/UnitChange.h"
#include "BatchCopy.h"

namespace lumbarn {

namespace {

/// Where a column of the whole comes from in one run, and what is done to it.
struct Origin {
  std::size_t column = 0;
  UnitChange change{};
  std::vector<std::int32_t> codes{};  // of a Dictionary, if they are others in the whole
};
using Origins = std::vector<std::optional<Origin>>;  // by column of the whole

bool isText(Type type) { return type == Type::Utf8 || type == Type::Dictionary; }

/// The type that holds the values of both; nothing if there is none.
std::optional<Type> commonType(const Field& a, const Field& b) {
  if (a.type == b.type)
    return a.type != Type::FixedList || a.listSize == b.listSize ? std::optional(a.type) : std::nullopt;
  if (isText(a.type) && isText(b.type)) return Type::Utf8;
  if (!isNumeric(a.type) || !isNumeric(b.type)) return std::nullopt;
  const bool whole =
      (a.type == Type::Int32 || a.type == Type::Int64) && (b.type == Type::Int32 || b.type == Type::Int64);
  return whole ? Type::Int64 : Type::Float64;
}

/// Joins the texts of a dictionary to those that are there, and gives the new number of each.
std::vector<std::int32_t> mergeTexts(std::vector<std::string>& all, const std::vector<std::string>& texts) {
  std::map<std::string_view, std::int32_t> known;
  for (std::size_t i = 0; i < all.size(); ++i) known.emplace(all[i], static_cast<std::int32_t>(i));
  const std::size_t before = all.size();
  std::vector<std::int32_t> codes;
  std::vector<std::string> added;
  for (const std::string& text : texts) {
    const auto next = static_cast<std::int32_t>(before + added.size());
    const auto [place, isNew] = known.try_emplace(text, next);
    if (isNew) added.push_back(text);
    codes.push_back(place->second);
  }
  all.insert(all.end(), added.begin(), added.end());
  return codes;
}

/// The schema of the whole and where each run's columns go.
class Union {
 public:
  explicit Union(std::vector<NamedStream>& runs) : runs_(runs), origins_(runs.size()) {
    for (std::size_t r = 0; r < runs.size(); ++r) {
      const Schema& schema = runs[r].stream.schema();
      for (std::size_t c = 0; c < schema.size(); ++c) place(r, c, schema[c]);
    }
    for (Origins& origins : origins_) origins.resize(fields_.size());
    remark();
  }
  Schema schema() const {
    std::vector<std::string> names;
    for (const NamedStream& run : runs_) names.push_back(run.run);
    Schema schema{{.name = "run",
                   .type = Type::Dictionary,
                   .nullable = false,
                   .dictionary = std::make_shared<const std::vector<std::string>>(std::move(names))}};
    for (std::size_t c = 0; c < fields_.size(); ++c) {
      schema.push_back(fields_[c]);
      if (fields_[c].type == Type::Dictionary)
        schema.back().dictionary = std::make_shared<const std::vector<std::string>>(texts_.at(c));
    }
    makeNamesUnique(schema);
    return schema;
  }
  const Origins& origins(std::size_t run) const { return origins_[run]; }

 private:
  void report(std::size_t run, Message message, std::string problem) {
    runs_[run].stream.context()->session().diagnose(
        {.message = message, .path = runs_[run].run, .problem = std::move(problem)});
  }
  void place(std::size_t run, std::size_t column, const Field& field) {
    const auto [known, isNew] = byName_.try_emplace(upper(field.name), fields_.size());
    const std::size_t to = known->second;
    if (isNew) {
      fields_.push_back(field);
    } else if (auto problem = misfit(fields_[to], field); !problem.empty()) {
      report(run, Message::RunColumnLeftOut, std::move(problem));
      return;
    }
    Origin origin{.column = column};
    if (!isNew) origin.change = *unitChange(field.unit, fields_[to].unit);
    fields_[to].type = *commonType(fields_[to], field);
    fields_[to].nullable = true;
    if (field.type == Type::Dictionary) origin.codes = mergeTexts(texts_[to], *field.dictionary);
    origins_[run].resize(std::max(origins_[run].size(), to + 1));
    origins_[run][to] = std::move(origin);
  }
  static std::string misfit(const Field& known, const Field& field) {
    if (!commonType(known, field)) return fmt::format("column {} has another type here", field.name);
    const auto change = unitChange(field.unit, known.unit);
    const bool whole = field.type == Type::Int32 || field.type == Type::Int64;
    if (change && (!whole || !change->changesValues())) return {};
    return fmt::format("column {} in {} cannot be converted to {}", field.name,
                       field.unit.empty() ? "no unit" : field.unit, known.unit.empty() ? "none" : known.unit);
  }
  /// One remark for all, as many runs may lack many columns.
  void remark() {
    std::vector<std::string> lacking;
    std::size_t without = 0;
    for (std::size_t r = 0; r < runs_.size(); ++r) {
      bool some = false;
      for (std::size_t c = 0; c < fields_.size(); ++c) {
        if (origins_[r][c]) continue;
        some = true;
        if (std::ranges::count(lacking, fields_[c].name) == 0) lacking.push_back(fields_[c].name);
      }
      without += some ? 1 : 0;
    }
    if (without == 0) return;
    constexpr std::size_t shown = 8;
    const std::size_t more = lacking.size() - std::min(shown, lacking.size());
    lacking.resize(std::min(shown, lacking.size()));
    runs_.front().stream.context()->session().diagnose(
        {.message = Message::RunColumn,
         .problem = fmt::format("{} of {} runs have no values of {}{}", without, runs_.size(),
                                fmt::join(lacking, ", "),
                                more > 0 ? fmt::format(" and {} others", more) : std::string())});
  }

  std::vector<NamedStream>& runs_;
  std::map<std::string, std::size_t> byName_;
  Schema fields_;
  std::map<std::size_t, std::vector<std::string>> texts_;  // of the Dictionary columns
  std::vector<Origins> origins_;
};

class JoinedRuns final : public BatchSource {
 public:
  JoinedRuns(std::vector<NamedStream> runs, std::vector<Origins> origins,
             std::shared_ptr<const Schema> schema, std::shared_ptr<StreamContext> context)
      : runs_(std::move(runs)),
        origins_(std::move(origins)),
        schema_(std::move(schema)),
        context_(std::move(context)) {}

  std::optional<Batch> next() override {
    for (; run_ < runs_.size(); ++run_) {
      Stream& stream = runs_[run_].stream;
      try {
        if (auto batch = stream.next()) return joined(*batch);
      } catch (...) {
        passOn(stream);
        throw;
      }
      passOn(stream);
      Stream ended = std::move(stream);  // its files are closed before the next run is read
    }
    return std::nullopt;
  }

 private:
  /// What was reported of a run; the host has heard it.
  void passOn(const Stream& stream) {
    for (const Diagnosis& remark : stream.remarks()) context_->note(remark);
    if (stream.incomplete()) context_->note(*stream.incomplete());
  }
  Batch joined(const Batch& batch) const {
    BatchMaker made(schema_, batch.rows());
    Block codes(batch.rows() * sizeof(std::int32_t));
    std::fill_n(reinterpret_cast<std::int32_t*>(codes.data()), batch.rows(), static_cast<std::int32_t>(run_));
    made.add(std::move(codes));
    for (std::size_t c = 1; c < schema_->size(); ++c) {
      const auto& origin = origins_[run_][c - 1];
      if (!origin) {
        made.addNulls();
      } else {
        add(made, batch, *origin, (*schema_)[c]);
      }
    }
    return made.finish();
  }
  static void add(BatchMaker& made, const Batch& batch, const Origin& origin, const Field& field) {
    const Column column = batch[origin.column];
    if (column.field().type == field.type && !origin.change.changesValues()) {
      if (field.type == Type::Dictionary) {
        made.add(recoded(column, origin.codes), &batch, origin.column);
      } else {
        made.share(batch, origin.column);
      }
    } else if (field.type == Type::Utf8) {
      BatchBuilder texts(std::make_shared<const Schema>(Schema{field}),
                         {.bytes = SIZE_MAX, .rows = batch.rows()});
      for (std::size_t row = 0; row < batch.rows(); ++row, texts.endRow()) {
        if (column.valid(row)) texts.set(0, column.text(row));
      }
      made.share(texts.finish(), 0);
    } else {
      made.add(numbers(column, origin.change, field.type), &batch, origin.column);
    }
  }
  static Block recoded(const Column& column, const std::vector<std::int32_t>& codes) {
    Block block(column.size() * sizeof(std::int32_t));
    auto* out = reinterpret_cast<std::int32_t*>(block.data());
    const auto from = column.values<std::int32_t>();
    for (std::size_t row = 0; row < column.size(); ++row) {
      if (column.valid(row)) out[row] = codes[static_cast<std::size_t>(from[row])];
    }
    return block;
  }
  template <class Number>
  static Block numbersAs(const Column& column, const UnitChange& change) {
    Block block(column.size() * sizeof(Number));
    auto* out = reinterpret_cast<Number*>(block.data());
    for (std::size_t row = 0; row < column.size(); ++row) {
      if (column.valid(row)) out[row] = static_cast<Number>(change.of(numberAt(column, row)));
    }
    return block;
  }
  static Block numbers(const Column& column, const UnitChange& change, Type type) {
    if (type == Type::Float32) return numbersAs<float>(column, change);
    if (type == Type::Int64) return numbersAs<std::int64_t>(column, change);
    if (type == Type::FixedList) return lists(column, change);
    return numbersAs<double>(column, change);
  }
  static Block lists(const Column& column, const UnitChange& change) {
    const auto from = column.values<float>();
    Block block(from.size_bytes());
    std::ranges::transform(from, reinterpret_cast<float*>(block.data()),
                           [&](float value) { return static_cast<float>(change.of(value)); });
    return block;
  }

  std::vector<NamedStream> runs_;
  std::vector<Origins> origins_;
  std::shared_ptr<const Schema> schema_;
  std::shared_ptr<StreamContext> context_;
  std::size_t run_ = 0;
};

}  // namespace

Stream joinRuns(std::vector<NamedStream> runs) {
  if (runs.empty()) {
    throw Error(Error::Kind::BadRequest,
                {.message = Message::TableRequest, .problem = "there are no runs to be joined"});
  }
  const Union plan(runs);
  auto schema = std::make_shared<const Schema>(plan.schema());
  std::vector<Origins> origins;
  for (std::size_t r = 0; r < runs.size(); ++r) origins.push_back(plan.origins(r));
  ReadOptions options = runs.front().stream.context()->options();
  options.report = nullptr;  // each run's own session reports
  options.progress = nullptr;
  auto context = std::make_shared<StreamContext>(std::move(options));
  auto source = std::make_unique<JoinedRuns>(std::move(runs), std::move(origins), schema, context);
  return {std::move(schema), std::move(context), std::move(source)};
}

}  // namespace lumbarn
