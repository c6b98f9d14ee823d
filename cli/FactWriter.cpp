#include "FactWriter.h"

#include <algorithm>
#include <string>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Console.h"

namespace lumbarn::cli {
namespace {

using Json = nlohmann::ordered_json;

class TextSink final : public Sink {
 public:
  void write(std::span<const std::byte> bytes) override {
    text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  }
  std::string text;
};

void put(Sink& sink, const std::string& text) { sink.write(std::as_bytes(std::span(text))); }

Json rowsOf(Stream&& stream) {
  TextSink sink;
  write(std::move(stream), sink, {.format = Format::Json});
  return Json::parse(sink.text);
}

/// "summary.vectors_by_class" within "summary".
Json& groupOf(Json& all, const Json& name) {
  Json* group = &all;
  if (name.is_null()) return *group;
  const auto text = name.get<std::string>();
  for (std::size_t from = 0; from <= text.size();) {
    const std::size_t end = std::min(text.find('.', from), text.size());
    group = &(*group)[text.substr(from, end - from)];
    from = end + 1;
  }
  return *group;
}

Json valueOf(const std::string& type, std::string text) {
  if (type == "number") return Json::parse(text);
  if (type != "size") return text;
  std::ranges::replace(text, 'x', ',');
  return Json::parse('[' + text + ']');
}

/// Facts as one object, which has groups as objects.
Json objectOf(Stream&& facts) {
  Json all = Json::object();
  for (const Json& row : rowsOf(std::move(facts))) {
    const auto type = row["type"].get<std::string>();
    Json& fact = groupOf(all, row["group"])[row["property"].get<std::string>()];
    Json value = valueOf(type, row["value"].get<std::string>());
    if (type == "texts") {
      fact.push_back(std::move(value));
    } else {
      fact = std::move(value);
    }
  }
  return all;
}

/// A fact as text; a list with its items side by side. Lists of numbers are sizes of grids.
std::string plain(const Json& fact) {
  if (fact.is_string()) return fact.get<std::string>();
  if (!fact.is_array()) return fact.dump();
  std::string all;
  for (const Json& item : fact) all += (all.empty() ? "" : item.is_number() ? " x " : ", ") + plain(item);
  return all;
}

std::string words(std::string name) {
  std::ranges::replace(name, '_', ' ');
  return name;
}

void appendGroup(const Json& group, const std::string& indent, std::string& out) {
  std::size_t width = 0;
  for (const auto& [name, fact] : group.items()) {
    if (!fact.is_object()) width = std::max(width, name.size());
  }
  for (const auto& [name, fact] : group.items()) {
    if (!fact.is_object())
      out += printable(fmt::format("{}{:<{}}  {}", indent, words(name), width, plain(fact))) + "\n";
  }
  for (const auto& [name, fact] : group.items()) {
    if (!fact.is_object()) continue;
    if (indent.empty()) out += "\n";
    out += printable(indent + words(name)) + "\n";
    appendGroup(fact, indent + "  ", out);
  }
}

/// Lines of the table of files. Step files of one set follow one another.
class FileLines {
 public:
  explicit FileLines(const Batch& files)
      : files_(files),
        kind_(files["kind"]),
        form_(files["form"]),
        first_(files["first_step"]),
        last_(files["last_step"]),
        inUse_(files["in_use"]) {}

  static Schema schema() {
    return {{.name = "kind", .type = Type::Utf8},   {.name = "files", .type = Type::Int64},
            {.name = "first", .type = Type::Utf8},  {.name = "last", .type = Type::Utf8},
            {.name = "bytes", .type = Type::Int64}, {.name = "steps", .type = Type::Utf8},
            {.name = "form", .type = Type::Utf8}};
  }

  bool fill(BatchBuilder& rows) {
    while (next_ < files_.rows() && !rows.full()) {
      std::size_t end = next_ + 1;
      while (end < files_.rows() && isOneSet(next_, end)) ++end;
      addLine(rows, next_, end);
      next_ = end;
    }
    return next_ < files_.rows();
  }

 private:
  std::int32_t step(const Column& column, std::size_t row) const {
    return column.values<std::int32_t>()[row];
  }
  bool isStepFile(std::size_t row) const {
    return first_.valid(row) && step(first_, row) == step(last_, row);
  }
  bool isOneSet(std::size_t a, std::size_t b) const {
    return isStepFile(a) && isStepFile(b) && kind_.text(a) == kind_.text(b) &&
           form_.text(a) == form_.text(b) && isRead(a) == isRead(b);
  }
  bool isRead(std::size_t row) const { return !inUse_.valid(row) || inUse_.boolean(row); }

  void addLine(BatchBuilder& rows, std::size_t first, std::size_t end) const {
    const Column name = files_["name"];
    const Column bytes = files_["bytes"];
    std::int64_t sum = 0;
    for (std::size_t row = first; row < end; ++row) sum += bytes.values<std::int64_t>()[row];
    const std::string kind(kind_.text(first));
    rows.set(0, isRead(first) ? kind : kind + ", not in use");
    rows.set(1, end - first);
    rows.set(2, name.text(first));
    if (end > first + 1) rows.set(3, name.text(end - 1));
    rows.set(4, sum);
    if (first_.valid(first))
      rows.set(5, std::string_view(fmt::format("{}:{}", step(first_, first), step(last_, end - 1))));
    rows.set(6, form_.text(first));
    rows.endRow();
  }

  const Batch& files_;
  Column kind_;
  Column form_;
  Column first_;
  Column last_;
  Column inUse_;
  std::size_t next_ = 0;
};

}  // namespace

void writeFactsJson(Stream&& facts, Stream&& files, Sink& sink) {
  Json all = objectOf(std::move(facts));
  all["files"] = rowsOf(std::move(files));
  put(sink, all.dump(2) + "\n");
}

void writeFactsReadable(Stream&& facts, Stream&& files, Sink& sink) {
  std::string text;
  appendGroup(objectOf(std::move(facts)), "", text);
  put(sink, text + "\n");
  const Batch all = std::move(files).collect();
  FileLines lines(all);
  write(streamOfRows(FileLines::schema(), std::make_shared<StreamContext>(),
                     [&](BatchBuilder& rows) { return lines.fill(rows); }),
        sink, {.format = Format::Table});
}

}  // namespace lumbarn::cli
