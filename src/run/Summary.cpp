#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "../frame/BatchBuilder.h"
#include "../frame/BatchData.h"
#include "../summary/ColumnNames.h"
#include "../summary/ColumnReader.h"
#include "../summary/SummaryTable.h"
#include "../summary/VectorSelection.h"
#include "../support/Closest.h"
#include "../support/Text.h"
#include "Run.h"
#include "RunState.h"
#include "TimeChoice.h"

namespace lumbarn {
namespace {

/// The columns in front of the vectors.
enum class Key : std::uint8_t { Step, Date, Days };

std::vector<Key> keysOf(const SummarySelection& selection) {
  if (selection.keys) return {Key::Step, Key::Date, Key::Days};
  return selection.dates ? std::vector{Key::Date} : std::vector<Key>();
}

Field fieldOf(Key key, bool wide) {
  switch (key) {
    case Key::Step:
      return {.name = "step", .type = Type::Int32, .nullable = false};
    case Key::Date:
      return {.name = wide ? "DATE" : "date", .type = Type::Timestamp};
    case Key::Days:
      break;
  }
  return {.name = "days", .type = Type::Float32, .unit = "DAYS"};
}

Field fieldOf(const NamedVector& named, bool complete) {
  const SummaryVector& vector = *named.vector;
  Field field{.name = toUtf8(named.name),
              .type = Type::Float32,
              .nullable = !complete,
              .unit = toUtf8(vector.units),
              .description = toUtf8(vector.description)};
  const auto add = [&](const char* name, const std::string& text) {
    if (!text.empty()) field.metadata.emplace_back(name, toUtf8(text));
  };
  add("mnemonic", vector.mnemonic);
  add("member", vector.member);
  if (vector.cell)
    add("cell", fmt::format("{},{},{}", (*vector.cell)[0], (*vector.cell)[1], (*vector.cell)[2]));
  add("lgr", vector.lgr);
  return field;
}

/// The batches of a table, each in one block into which its values are read.
class SummaryBatches final : public BatchSource {
 public:
  SummaryBatches(std::shared_ptr<const Schema> schema, std::shared_ptr<const SummaryTable> table,
                 std::vector<Key> keys, std::vector<std::size_t> rows, std::vector<std::size_t> columns,
                 StreamContext& context)
      : schema_(std::move(schema)),
        table_(std::move(table)),
        keys_(std::move(keys)),
        columns_(columns),
        reader_(table_, std::move(rows), std::move(columns), context.session()) {
    std::size_t width = 0;
    for (const Field& field : *schema_) width += widthOf(field);
    const BatchLimits& limits = context.options().limits;
    mostRows_ = std::clamp<std::size_t>(limits.bytes / std::max<std::size_t>(width, 1), 1,
                                        std::max<std::size_t>(limits.rows, 1));
    mostRows_ = std::min(mostRows_, std::max<std::size_t>(reader_.rowsLeft(), 1));
  }

  std::optional<Batch> next() override {
    auto memory = std::make_shared<Memory>();
    auto data = std::make_shared<BatchData>();
    data->schema = schema_;
    const auto places = allocate(*memory);
    std::vector<float*> out;
    for (std::size_t i = 0; i < columns_.size(); ++i)
      out.push_back(reinterpret_cast<float*>(places[keys_.size() + i]));
    const auto rows = reader_.read(mostRows_, out);
    if (rows.empty()) return std::nullopt;
    data->rows = rows.size();
    for (std::byte* place : places) data->columns.push_back({.values = place});
    memory->validity.resize(data->columns.size());
    for (std::size_t i = 0; i < keys_.size(); ++i)
      setKey(keys_[i], rows, places[i], data->columns[i], memory->validity[i]);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const std::size_t at = keys_.size() + i;
      if ((*schema_)[at].nullable) {
        markNulls(
            rows, [&](std::size_t row) { return table_->has(rows[row], columns_[i]); }, data->columns[at],
            memory->validity[at]);
      }
    }
    data->owners.push_back(std::move(memory));
    return Batch(std::move(data));
  }

 private:
  struct Memory {
    Block block;
    std::vector<std::vector<std::uint8_t>> validity;
  };

  /// Columns of one width are at one distance from each other.
  std::vector<std::byte*> allocate(Memory& memory) const {
    std::vector<std::size_t> offsets;
    std::size_t bytes = 0;
    for (const Field& field : *schema_) {
      offsets.push_back(bytes);
      bytes += (mostRows_ * widthOf(field) + Block::alignment - 1) / Block::alignment * Block::alignment;
    }
    memory.block = Block(bytes);
    std::vector<std::byte*> places;
    for (const std::size_t offset : offsets) places.push_back(memory.block.data() + offset);
    return places;
  }

  template <class Has>
  static void markNulls(std::span<const std::size_t> rows, Has has, ColumnBuffers& column,
                        std::vector<std::uint8_t>& validity) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (has(i)) continue;
      validity.resize((rows.size() + 7) / 8, 0xFF);
      validity[i / 8] = static_cast<std::uint8_t>(validity[i / 8] & ~(1U << (i % 8)));
      ++column.nulls;
    }
    if (column.nulls > 0) column.validity = validity.data();
  }

  void setKey(Key key, std::span<const std::size_t> rows, std::byte* place, ColumnBuffers& column,
              std::vector<std::uint8_t>& validity) const {
    std::vector<bool> known(rows.size(), true);
    const auto store = [&](std::size_t i, auto value) {
      std::memcpy(place + i * sizeof value, &value, sizeof value);
    };
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (key == Key::Step) {
        store(i, table_->step(rows[i]));
      } else if (key == Key::Date) {
        const auto date = table_->date(rows[i]);
        known[i] = date.has_value();
        store(i, std::int64_t{date ? date->time_since_epoch().count() : 0});
      } else {
        known[i] = table_->hasTime();
        const double days = static_cast<double>(table_->time(rows[i])) / table_->timePerDay();
        store(i, known[i] ? static_cast<float>(days) : 0.0F);
      }
    }
    markNulls(
        rows, [&](std::size_t i) { return known[i]; }, column, validity);
  }

  std::shared_ptr<const Schema> schema_;
  std::shared_ptr<const SummaryTable> table_;
  std::vector<Key> keys_;
  std::vector<std::size_t> columns_;
  SummaryReader reader_;
  std::size_t mostRows_ = 1;
};

void refuseEmptyPatterns(const SummarySelection& selection, const std::string& path) {
  for (const auto* lists : {&selection.vectors, &selection.except}) {
    for (const std::string& list : *lists) {
      if (splitPatterns(list).empty()) throwRefused(path, "a pattern of vectors is empty");
    }
  }
}

std::vector<std::string> similarNames(const std::vector<std::string>& patterns, const SummarySpec& spec) {
  std::vector<std::string> names;
  for (SummaryVector& vector : summaryVectors(spec)) names.push_back(std::move(vector.name));
  std::vector<std::string> similar;
  for (const std::string& pattern : patterns) {
    if (pattern.find_first_of("*?") != pattern.npos) continue;
    std::string better = closest(pattern, names);
    if (!better.empty()) similar.push_back(toUtf8(better));
  }
  return similar;
}

/// Reports patterns that fit no vector. Throws Error NotFound when none fits.
void checkPatterns(const VectorChoice& choice, const SummarySpec& spec, Session& session) {
  const auto& missed = choice.unmatched();
  if (missed.empty()) return;
  const auto problem = [](const std::string& pattern) {
    return fmt::format("no vector matches \"{}\"", toUtf8(pattern));
  };
  if (!choice.anyFits()) {
    std::string all = problem(missed.front());
    for (std::size_t i = 1; i < missed.size(); ++i) all += fmt::format(", \"{}\"", toUtf8(missed[i]));
    throw Error(Error::Kind::NotFound,
                {.message = Message::RequestMissing, .path = spec.zFileName, .problem = std::move(all)},
                similarNames(missed, spec));
  }
  for (const std::string& pattern : missed) {
    const auto better = similarNames({pattern}, spec);
    std::string text = problem(pattern);
    if (!better.empty()) text += fmt::format("; did you mean \"{}\"?", better.front());
    session.diagnose(
        {.message = Message::PatternUnmatched, .path = spec.zFileName, .problem = std::move(text)});
  }
}

std::shared_ptr<const SummaryTable> makeTable(const SummaryState& state, const SummarySelection& selection,
                                              StreamContext& context) {
  Session& session = context.session();
  const auto spec = state.specification(context);
  auto table = std::make_shared<SummaryTable>(VectorChoice(selection.vectors, selection.except), session);
  auto vectors = table->choose(*spec);
  if (!selection.chain) checkPatterns(table->choice(), *spec, session);
  const bool sparse = readsSparsely(vectors.size(), spec->qKeyMask.size());
  table->add(state.run(context, sparse), std::move(vectors));
  if (selection.chain) {
    const auto earlier = state.earlierRuns(context, sparse);
    for (const SummaryRun& run : *earlier) {
      auto chosen = table->choose(*run.spec);
      table->add({earlier, &run}, std::move(chosen));
    }
  }
  table->finish();
  if (selection.chain) checkPatterns(table->choice(), *spec, session);
  if ((selection.dates || selection.keys) && table->rows() > 0 && !table->date(0))
    session.diagnose({.message = Message::SummaryDates, .path = spec->zFileName});
  return table;
}

std::vector<std::size_t> chooseRows(const TimeSelection& time, const SummaryTable& table,
                                    const std::string& path) {
  const bool byDate = time.from || time.to || time.at || time.every > Every::ReportStep;
  std::vector<TimePoint> points(table.rows());
  for (std::size_t i = 0; i < points.size(); ++i) {
    points[i].step = table.step(i);
    if (byDate) points[i].date = toLocal(table.date(i));
  }
  return chooseTimes(time, points, path);
}

/// Positions of the vectors to show, and their names.
std::vector<NamedVector> chooseColumns(const SummaryTable& table, const SummarySelection& selection,
                                       const std::string& path, Session& session) {
  const auto& vectors = table.vectors();
  const auto named = nameVectors(vectors, selection.keepDuplicates, path, session);
  std::vector<const NamedVector*> byPosition(vectors.size());
  for (const NamedVector& one : named)
    byPosition[static_cast<std::size_t>(one.vector - vectors.data())] = &one;
  const bool timeNamed = std::ranges::any_of(selection.vectors, [](const std::string& list) {
    return std::ranges::any_of(splitPatterns(list), [](const auto& one) { return equalNoCase(one, "TIME"); });
  });
  std::vector<NamedVector> shown;
  for (const std::size_t position : table.choice().shown(vectors)) {
    const bool hidden = selection.keys && !timeNamed && vectors[position].name == "TIME";
    if (byPosition[position] != nullptr && !hidden) shown.push_back(*byPosition[position]);
  }
  return shown;
}

void reportRenamed(const std::vector<std::string>& renamed, const std::string& path, Session& session) {
  if (renamed.empty()) return;
  session.diagnose({.message = Message::SummaryNames,
                    .path = path,
                    .problem = fmt::format("{} column{} numbered, as names differ in letter case only ({}{})",
                                           renamed.size(), renamed.size() == 1 ? "" : "s", renamed.front(),
                                           renamed.size() == 1 ? "" : " and others")});
}

}  // namespace

Stream Run::vectors(bool keepDuplicates, const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    const auto spec = state_->summary().specification(*context);
    const auto vectors = std::make_shared<const std::vector<SummaryVector>>(summaryVectors(*spec));
    auto named = nameVectors(*vectors, keepDuplicates, spec->zFileName, context->session());
    Schema schema;
    for (const char* name : {"name", "mnemonic", "class", "member", "index", "lgr", "units", "description"})
      schema.push_back({.name = name, .type = Type::Utf8});
    const auto fill = [vectors, named = std::move(named), next = std::size_t{0}](BatchBuilder& rows) mutable {
      for (; next < named.size() && !rows.full(); ++next) {
        const SummaryVector& vector = *named[next].vector;
        const std::string* const texts[] = {&named[next].name, &vector.mnemonic,   &vector.classWord,
                                            &vector.member,    &vector.index,      &vector.lgr,
                                            &vector.units,     &vector.description};
        for (std::size_t i = 0; i < std::size(texts); ++i) rows.set(i, toUtf8(*texts[i]));
        rows.endRow();
      }
      return next < named.size();
    };
    return streamOfRows(std::move(schema), std::move(context), fill);
  } catch (...) {
    throw errorInFlight();
  }
}

Stream Run::summary(const SummarySelection& selection, const ReadOptions& options) const {
  try {
    refuseEmptyPatterns(selection, root());
    auto context = std::make_shared<StreamContext>(options);
    auto table = makeTable(state_->summary(), selection, *context);
    const auto keys = keysOf(selection);
    const auto named = chooseColumns(*table, selection, root(), context->session());
    if (named.empty() && keys.empty()) throwRefused(root(), "nothing to show: all vectors are omitted");
    auto rows = chooseRows(selection.time, *table, root());
    auto schema = std::make_shared<Schema>();
    std::vector<std::size_t> columns;
    for (const Key key : keys) schema->push_back(fieldOf(key, !selection.keys));
    for (const NamedVector& one : named) {
      columns.push_back(static_cast<std::size_t>(one.vector - table->vectors().data()));
      schema->push_back(fieldOf(one, table->complete(columns.back())));
    }
    reportRenamed(makeNamesUnique(*schema), root(), context->session());
    auto source = std::make_unique<SummaryBatches>(schema, std::move(table), keys, std::move(rows),
                                                   std::move(columns), *context);
    return {std::move(schema), std::move(context), std::move(source)};
  } catch (...) {
    throw errorInFlight();
  }
}

std::vector<std::string> Run::filesOfChain(const ReadOptions& options) const {
  try {
    StreamContext context(options);
    std::vector<std::string> files;
    for (const SummaryRun& run : *state_->summary().earlierRuns(context, false)) {
      files.push_back(run.spec->zFileName);
      files.insert(files.end(), run.files.begin(), run.files.end());
    }
    return files;
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
