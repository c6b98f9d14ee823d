#include "Facts.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Console.h"
#include "support/Text.h"

namespace lumbarn::cli {
namespace {

bool isGroup(const Facts& fact) {
  return fact.is_object() || (fact.is_array() && !fact.empty() && fact[0].is_object());
}

/// A fact that is no group, as text; a list with its items side by side. Lists of numbers are sizes of grids.
std::string plain(const Facts& fact) {
  if (fact.is_string()) return toUtf8(fact.get_ref<const std::string&>());
  if (!fact.is_array()) return fact.dump();
  std::string all;
  for (const Facts& item : fact) all += (all.empty() ? "" : item.is_number() ? " x " : ", ") + plain(item);
  return all;
}

std::string words(std::string name) {
  std::ranges::replace(name, '_', ' ');
  return name;
}

void writeGroup(const Facts& group, std::string_view indent, std::ostream& out) {
  std::size_t width = 0;
  for (const auto& [name, fact] : group.items()) {
    if (!isGroup(fact)) width = std::max(width, name.size());
  }
  for (const auto& [name, fact] : group.items()) {
    if (isGroup(fact)) continue;
    out << printable(fmt::format("{}{:<{}}  {}", indent, words(name), width, plain(fact))) << "\n";
  }
  for (const auto& [name, fact] : group.items()) {
    if (!fact.is_object() || fact.empty()) continue;
    if (indent.empty()) out << "\n";
    out << printable(fmt::format("{}{}", indent, words(name))) << "\n";
    writeGroup(fact, std::string(indent) + "  ", out);
  }
}

/// A list of groups with the same names in each.
void writeList(const Facts& list, std::ostream& out) {
  std::vector<Column> columns;
  for (const auto& [name, fact] : list[0].items()) columns.push_back({words(name), fact.is_number()});
  for (const Facts& row : list) {
    auto column = columns.begin();
    for (const Facts& cell : row) {
      column->width = std::max(column->width, displayWidth(plain(cell)));
      ++column;
    }
  }
  const auto table = TableWriter::make(Format::Table, columns, out);
  for (const Facts& row : list) {
    for (const Facts& cell : row) table->text(plain(cell));
  }
  table->finish();
}

void writeRows(const Facts& fact, const std::string& name, TableWriter& table) {
  if (!isGroup(fact)) {
    table.text(name);
    table.text(plain(fact));
    return;
  }
  std::size_t number = 0;
  for (const auto& [key, item] : fact.items()) {
    const std::string part = fact.is_array() ? fmt::format("{}", ++number) : key;
    writeRows(item, name.empty() ? part : name + "." + part, table);
  }
}

/// Names in files may have Latin-1 letters, which JSON cannot contain.
Facts inUtf8(const Facts& fact) {
  if (fact.is_string()) return toUtf8(fact.get_ref<const std::string&>());
  if (!fact.is_structured()) return fact;
  Facts all = fact.is_array() ? Facts::array() : Facts::object();
  for (const auto& [name, item] : fact.items()) {
    if (fact.is_array()) {
      all.push_back(inUtf8(item));
    } else {
      all[toUtf8(name)] = inUtf8(item);
    }
  }
  return all;
}

}  // namespace

std::string quotedJson(std::string_view text) { return Facts(toUtf8(text)).dump(); }

void writeFacts(const Facts& facts, Format format, std::ostream& out) {
  if (format == Format::Json) {
    out << inUtf8(facts).dump(2) << "\n";
    return;
  }
  if (format == Format::Csv) {
    const auto table = TableWriter::make(format, {{"property"}, {"value"}}, out);
    writeRows(facts, "", *table);
    table->finish();
    return;
  }
  writeGroup(facts, "", out);
  for (const Facts& fact : facts) {
    if (!fact.is_array() || !isGroup(fact)) continue;
    out << "\n";
    writeList(fact, out);
  }
}

}  // namespace lumbarn::cli
