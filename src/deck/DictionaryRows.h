#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace lumbarn {

/// The keywords of one section that one simulator has, in the order of the dictionary, with blanks between.
struct DictionaryGroup {
  std::string_view section;
  std::string_view simulator;
  std::string_view keywords;
};
inline constexpr std::size_t dictionaryGroupCount = 25;
extern const DictionaryGroup dictionaryGroups[dictionaryGroupCount];

/// Keywords of a class: 2 tables by depth or the like, 1000 cell arrays of integers, 1001 of numbers, 1002
/// coordinates. All others are of class 1.
struct DictionaryClass {
  std::int32_t number;
  std::string_view keywords;
};
inline constexpr std::size_t dictionaryClassCount = 4;
extern const DictionaryClass dictionaryClasses[dictionaryClassCount];

}  // namespace lumbarn
