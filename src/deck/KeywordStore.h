#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"

namespace lumbarn {

/// One keyword with its arguments as text. Slots behind nArgs are undefined to hosts.
struct LUMBARN_API DeckKeywordRecord {
  std::string zName;
  std::int32_t iSection = 0;
  std::vector<std::string> zArgs;
  std::int32_t nArgs = 0;
};

/// Keywords whose arguments are kept as they were merged with their defaults, by name and section.
class LUMBARN_API KeywordStore {
 public:
  /// Any section, as the argument of a search.
  static constexpr std::int32_t anySection = -1;

  /// Null when there is none. Names are compared without regard to case.
  const DeckKeywordRecord* find(std::string_view zName, std::int32_t iSection) const;
  /// Deliberate: a record never shrinks. When it comes again with fewer arguments, the tail of the older ones
  /// stays.
  void add(std::string_view zName, std::int32_t iSection, std::span<const std::string> zArgs);
  /// The names of one section, or with a section below 1 all, in the order of their first mention.
  std::vector<std::string> names(std::int32_t iSection) const;
  const std::vector<DeckKeywordRecord>& records() const { return records_; }

 private:
  std::vector<DeckKeywordRecord> records_;
};

}  // namespace lumbarn
