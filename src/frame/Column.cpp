#include "Column.h"

#include <algorithm>
#include <limits>
#include <set>
#include <type_traits>

#include <fmt/format.h>

#include "../support/Text.h"
#include "BatchData.h"
#include "Error.h"

namespace lumbarn {

namespace {

Error wrongType(const Field& field, std::string_view wanted) {
  return {
      Error::Kind::BadRequest,
      {.message = Message::TableRequest, .problem = fmt::format("column {} has no {}", field.name, wanted)}};
}

template <class T>
bool holds(Type type) {
  if constexpr (std::is_same_v<T, std::int32_t>) return type == Type::Int32 || type == Type::Dictionary;
  if constexpr (std::is_same_v<T, std::int64_t>) return type == Type::Int64 || type == Type::Timestamp;
  if constexpr (std::is_same_v<T, float>) return type == Type::Float32 || type == Type::FixedList;
  return std::is_same_v<T, double> && type == Type::Float64;
}

template <class T>
void widen(std::span<const T> values, std::vector<double>& out) {
  std::ranges::transform(values, out.begin(), [](T value) { return static_cast<double>(value); });
}

}  // namespace

std::optional<std::string_view> metadataOf(const Field& field, std::string_view key) {
  for (const auto& [name, text] : field.metadata) {
    if (name == key) return text;
  }
  return std::nullopt;
}

std::vector<std::string> makeNamesUnique(Schema& schema) {
  std::set<std::string> taken;
  std::vector<std::string> changed;
  for (Field& field : schema) {
    std::string name = field.name;
    for (std::size_t n = 2; !taken.insert(upper(name)).second; ++n)
      name = fmt::format("{}#{}", field.name, n);
    if (name == field.name) continue;
    changed.push_back(field.name);
    field.name = std::move(name);
  }
  return changed;
}

const Field& Column::field() const { return (*batch_->schema)[column_]; }
std::size_t Column::size() const { return batch_->rows; }
std::size_t Column::nullCount() const { return batch_->columns[column_].nulls; }

bool Column::valid(std::size_t row) const {
  const auto* bits = batch_->columns[column_].validity;
  return bits == nullptr || bitAt(bits, row);
}

template <class T>
std::span<const T> Column::values() const {
  if (!holds<T>(field().type)) throw wrongType(field(), "values of this type");
  const std::size_t count = field().type == Type::FixedList ? static_cast<std::size_t>(field().listSize) : 1;
  return {reinterpret_cast<const T*>(batch_->columns[column_].values), count * size()};
}
template std::span<const std::int32_t> Column::values() const;
template std::span<const std::int64_t> Column::values() const;
template std::span<const float> Column::values() const;
template std::span<const double> Column::values() const;

std::vector<double> Column::doubles() const {
  std::vector<double> out(size());
  switch (field().type) {
    case Type::Int32:
      widen(values<std::int32_t>(), out);
      break;
    case Type::Int64:
    case Type::Timestamp:
      widen(values<std::int64_t>(), out);
      break;
    case Type::Float32:
      widen(values<float>(), out);
      break;
    case Type::Float64:
      widen(values<double>(), out);
      break;
    default:
      throw wrongType(field(), "numbers");
  }
  for (std::size_t i = 0; nullCount() > 0 && i < out.size(); ++i) {
    if (!valid(i)) out[i] = std::numeric_limits<double>::quiet_NaN();
  }
  return out;
}

bool Column::boolean(std::size_t row) const {
  if (field().type != Type::Bool) throw wrongType(field(), "truth values");
  return bitAt(reinterpret_cast<const std::uint8_t*>(batch_->columns[column_].values), row);
}

std::string_view Column::text(std::size_t row) const {
  const ColumnBuffers& column = batch_->columns[column_];
  const auto* words = reinterpret_cast<const std::int32_t*>(column.values);
  if (field().type == Type::Utf8) {
    return {column.texts + words[row], static_cast<std::size_t>(words[row + 1] - words[row])};
  }
  if (field().type != Type::Dictionary) throw wrongType(field(), "texts");
  return valid(row) ? std::string_view((*field().dictionary)[static_cast<std::size_t>(words[row])]) : "";
}

const Schema& Batch::schema() const { return *data_->schema; }
std::size_t Batch::rows() const { return data_->rows; }

Column Batch::operator[](std::size_t column) const {
  if (column >= columns()) {
    throw Error(Error::Kind::BadRequest, {.message = Message::TableRequest,
                                          .problem = fmt::format("column {} of {}", column, columns())});
  }
  return {data_, column};
}

Column Batch::operator[](std::string_view name) const {
  const auto found = std::ranges::find(schema(), name, &Field::name);
  if (found != schema().end()) return {data_, static_cast<std::size_t>(found - schema().begin())};
  std::vector<std::string> similar;
  for (const Field& field : schema()) {
    if (equalNoCase(field.name, name)) similar.push_back(field.name);
  }
  throw Error(Error::Kind::NotFound,
              {.message = Message::TableRequest, .problem = fmt::format("there is no column {}", name)},
              std::move(similar));
}

std::span<const float> Batch::block(std::size_t first, std::size_t count, std::size_t& stride) const {
  stride = 0;
  if (count == 0 || first + count > columns()) return {};
  const auto at = [&](std::size_t i) {
    return reinterpret_cast<const float*>(data_->columns[first + i].values);
  };
  for (std::size_t i = 0; i < count; ++i) {
    if (schema()[first + i].type != Type::Float32) return {};
    if (i == 1) stride = static_cast<std::size_t>(at(1) - at(0));
    if (i > 1 && at(i) != at(0) + i * stride) return {};
  }
  return {at(0), (count - 1) * stride + rows()};
}

}  // namespace lumbarn
