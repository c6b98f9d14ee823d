#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "../frame/Stream.h"
#include "../support/Dates.h"

namespace lumbarn {

/// Facts of a file or a run, in the order in which they are told.
class FactList {
 public:
  /// Facts from here on belong to this group. "summary.vectors_by_class" is a group within another.
  void group(std::string name) { group_ = std::move(name); }

  void text(std::string_view property, std::string_view value);
  void number(std::string_view property, std::int64_t value);
  void date(std::string_view property, Moment value);
  /// "16 x 12 x 5".
  void size(std::string_view property, const std::array<std::int32_t, 3>& value);
  /// A list, which has a row for each item.
  void texts(std::string_view property, const std::vector<std::string>& values);

  /// `group, property, value, type`.
  Stream stream(std::shared_ptr<StreamContext> context) &&;

 private:
  enum class FactType : std::int32_t { Text, Number, Date, Size, Texts };
  struct Fact {
    std::string group;
    std::string property;
    std::string value;
    FactType type{};
  };
  void add(std::string_view property, std::string value, FactType type);
  Schema schema() const;

  std::string group_;  // empty: the file or the run itself
  std::vector<Fact> facts_;
};

}  // namespace lumbarn
