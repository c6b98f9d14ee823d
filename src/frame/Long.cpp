#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "BatchCopy.h"
#include "NumberText.h"
#include "Transforms.h"
#include "Write.h"

namespace lumbarn {

namespace {

/// Numbers that say where or when, under whatever question.
constexpr std::string_view placesAndTimes[] = {"step",   "date", "days",   "i",          "j",       "k",
                                               "i1",     "j1",   "k1",     "i2",         "j2",      "k2",
                                               "active", "cell", "number", "connection", "segment", "branch",
                                               "test",   "row",  "region", "occurrence", "offset",  "index"};

/// A text for each column of values, as a column of the long form.
class Label {
 public:
  void add(std::optional<std::string_view> text) {
    if (!text) {
      codes_.push_back(-1);
      return;
    }
    const auto [place, isNew] =
        known_.try_emplace(std::string(*text), static_cast<std::int32_t>(texts_.size()));
    if (isNew) texts_.emplace_back(*text);
    codes_.push_back(place->second);
  }
  Field field(std::string name) const {
    return {.name = std::move(name),
            .type = Type::Dictionary,
            .dictionary = std::make_shared<const std::vector<std::string>>(texts_)};
  }
  void set(BatchBuilder& rows, std::size_t column, std::size_t value) const {
    if (codes_[value] >= 0) rows.set(column, codes_[value]);
  }

 private:
  std::map<std::string, std::int32_t> known_;
  std::vector<std::string> texts_;
  std::vector<std::int32_t> codes_;
};

std::string textOf(const Column& column, std::size_t row) {
  switch (column.field().type) {
    case Type::Int32:
      return std::string(NumberText(column.values<std::int32_t>()[row]).view());
    case Type::Int64:
      return std::string(NumberText(column.values<std::int64_t>()[row]).view());
    case Type::Float32:
      return std::string(NumberText(column.values<float>()[row], false).view());
    case Type::Float64:
      return std::string(NumberText(column.values<double>()[row], false).view());
    case Type::Bool:
      return column.boolean(row) ? "true" : "false";
    case Type::Timestamp:
      return isoText(LocalMoment(std::chrono::microseconds(column.values<std::int64_t>()[row])));
    default:
      return std::string(column.text(row));
  }
}

/// The plan of a long form, and how far it has come.
class LongForm {
 public:
  explicit LongForm(Stream stream) : stream_(std::move(stream)) {
    const Schema& from = stream_.schema();
    const auto isValue = valueColumns(from);
    for (std::size_t c = 0; c < from.size(); ++c) (isValue[c] ? values_ : keys_).push_back(c);
    if (values_.empty()) refuse("the table has no values that a long form could list");
    const bool places = std::ranges::count(from, "grid", &Field::name) > 0;
    vectors_ = !places && std::ranges::any_of(values_, [&](std::size_t c) {
      return metadataOf(from[c], "mnemonic").has_value();
    });
    for (const std::size_t c : values_) {
      const Field& field = from[c];
      if (field.type == Type::FixedList) refuse(fmt::format("column {} has no long form", field.name));
      names_.add(field.name);
      mnemonics_.add(metadataOf(field, "mnemonic"));
      members_.add(metadataOf(field, "member"));
      units_.add(field.unit.empty() ? std::nullopt : std::optional<std::string_view>(field.unit));
    }
  }
  Schema schema() const {
    const Schema& from = stream_.schema();
    Schema schema;
    for (const std::size_t c : keys_) schema.push_back(from[c]);
    schema.push_back(names_.field(vectors_ ? "vector" : "array"));
    if (vectors_) {
      schema.push_back(mnemonics_.field("mnemonic"));
      schema.push_back(members_.field("member"));
    }
    Field value = oneType() ? from[values_.front()] : Field{.type = Type::Utf8};
    schema.push_back({.name = "value", .type = value.type, .dictionary = value.dictionary});
    schema.push_back(units_.field("unit"));
    makeNamesUnique(schema);
    return schema;
  }
  bool fill(BatchBuilder& rows) {
    while (!rows.full()) {
      if (!batch_ && !(batch_ = stream_.next())) return false;
      for (; row_ < batch_->rows(); ++row_, value_ = 0) {
        for (; value_ < values_.size(); ++value_) {
          if (rows.full()) return true;
          addRow(rows);
        }
      }
      batch_.reset();
      row_ = 0;
    }
    return true;
  }
  const std::shared_ptr<StreamContext>& context() const { return stream_.context(); }

 private:
  [[noreturn]] static void refuse(std::string problem) {
    throw Error(Error::Kind::BadRequest, {.message = Message::TableRequest, .problem = std::move(problem)});
  }
  bool oneType() const {
    const Schema& from = stream_.schema();
    const Field& first = from[values_.front()];
    return std::ranges::all_of(values_, [&](std::size_t c) {
      return from[c].type == first.type && from[c].dictionary == first.dictionary;
    });
  }
  void addRow(BatchBuilder& rows) {
    const Column value = (*batch_)[values_[value_]];
    if (!value.valid(row_)) return;
    std::size_t to = 0;
    for (const std::size_t c : keys_) setFrom(rows, to++, (*batch_)[c], row_);
    names_.set(rows, to++, value_);
    if (vectors_) {
      mnemonics_.set(rows, to++, value_);
      members_.set(rows, to++, value_);
    }
    if (rows.schema()[to].type == Type::Utf8) {
      rows.set(to++, std::string_view(textOf(value, row_)));
    } else {
      setFrom(rows, to++, value, row_);
    }
    units_.set(rows, to, value_);
    rows.endRow();
  }

  Stream stream_;
  std::vector<std::size_t> keys_, values_;
  bool vectors_ = false;
  Label names_, mnemonics_, members_, units_;
  std::optional<Batch> batch_;
  std::size_t row_ = 0;
  std::size_t value_ = 0;
};

}  // namespace

std::vector<bool> valueColumns(const Schema& schema) {
  const auto isNamed = [](const Field& field) {
    return metadataOf(field, "mnemonic").has_value() || metadataOf(field, "array").has_value();
  };
  const bool named = std::ranges::any_of(schema, isNamed);
  std::vector<bool> values;
  for (const Field& field : schema) {
    if (const auto role = metadataOf(field, "role")) {
      values.push_back(*role == "value");
    } else if (named) {
      values.push_back(isNamed(field));
    } else {
      values.push_back((isNumeric(field.type) || field.type == Type::FixedList) &&
                       std::ranges::count(placesAndTimes, field.name) == 0);
    }
  }
  return values;
}

Stream toLong(Stream stream) {
  const auto has = [&](std::string_view name) {
    return std::ranges::count(stream.schema(), name, &Field::name) > 0;
  };
  if (has("value") && has("unit")) return stream;
  auto form = std::make_shared<LongForm>(std::move(stream));
  return streamOfRows(form->schema(), form->context(),
                      [form](BatchBuilder& rows) { return form->fill(rows); });
}

}  // namespace lumbarn
