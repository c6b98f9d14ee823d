#include "FactList.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../support/Text.h"

namespace lumbarn {

void FactList::add(std::string_view property, std::string value, FactType type) {
  facts_.push_back({group_, toUtf8(property), std::move(value), type});
}

void FactList::text(std::string_view property, std::string_view value) {
  add(property, toUtf8(value), FactType::Text);
}

void FactList::number(std::string_view property, std::int64_t value) {
  add(property, std::to_string(value), FactType::Number);
}

void FactList::date(std::string_view property, Moment value) {
  add(property, isoText(value, true), FactType::Date);
}

void FactList::texts(std::string_view property, const std::vector<std::string>& values) {
  for (const std::string& value : values) add(property, toUtf8(value), FactType::Texts);
}

void FactList::size(std::string_view property, const std::array<std::int32_t, 3>& value) {
  add(property, fmt::format("{} x {} x {}", value[0], value[1], value[2]), FactType::Size);
}

Schema FactList::schema() const {
  std::vector<std::string> groups;
  for (const Fact& fact : facts_) {
    if (!fact.group.empty() && std::ranges::count(groups, fact.group) == 0) groups.push_back(fact.group);
  }
  const auto types = std::make_shared<const std::vector<std::string>>(
      std::vector<std::string>{"text", "number", "date", "size", "texts"});
  return {{.name = "group",
           .type = Type::Dictionary,
           .description = "null: the file or the run itself",
           .dictionary = std::make_shared<const std::vector<std::string>>(std::move(groups))},
          {.name = "property", .type = Type::Utf8, .nullable = false},
          {.name = "value", .type = Type::Utf8, .nullable = false},
          {.name = "type",
           .type = Type::Dictionary,
           .nullable = false,
           .description = "of the value; texts: it is one of a list",
           .dictionary = types}};
}

Stream FactList::stream(std::shared_ptr<StreamContext> context) && {
  Schema columns = schema();
  const auto groups = columns.front().dictionary;
  return streamOfRows(std::move(columns), std::move(context),
                      [facts = std::move(facts_), groups, next = std::size_t{0}](BatchBuilder& rows) mutable {
                        for (; next < facts.size() && !rows.full(); ++next) {
                          const Fact& fact = facts[next];
                          if (!fact.group.empty())
                            rows.set(0, std::ranges::find(*groups, fact.group) - groups->begin());
                          rows.set(1, fact.property);
                          rows.set(2, fact.value);
                          rows.set(3, static_cast<std::int32_t>(fact.type));
                          rows.endRow();
                        }
                        return next < facts.size();
                      });
}

}  // namespace lumbarn
