#include "WellNames.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "../support/Pattern.h"
#include "../support/Text.h"
#include "RunState.h"

namespace lumbarn {

WellNames::WellNames(const std::vector<std::string>& patterns) {
  for (const std::string& pattern : patterns) {
    if (trim(pattern).empty()) throwRefused("", "a pattern of wells is empty");
    patterns_.push_back(toUtf8(trim(pattern)));
  }
}

bool WellNames::wants(std::string_view name) {
  if (patterns_.empty()) return true;
  std::string text = toUtf8(name);
  const bool wanted =
      std::ranges::any_of(patterns_, [&](const auto& pattern) { return matchesPattern(text, pattern); });
  if (wanted) {
    any_ = true;
    others_.clear();
  } else if (!any_) {
    others_.insert(std::move(text));
  }
  return wanted;
}

void WellNames::throwIfNone(const std::string& path) const {
  constexpr std::ptrdiff_t shown = 12;
  if (any_ || patterns_.empty()) return;
  const std::vector<std::string> names(others_.begin(), others_.end());
  const auto more = std::ssize(names) - shown;
  auto has =
      fmt::format("{}", fmt::join(names.begin(), more > 0 ? names.begin() + shown : names.end(), ", "));
  if (more > 0) has += fmt::format(" and {} others", more);
  throwNotFound(path,
                fmt::format("has no well \"{}\"; it has {}", fmt::join(patterns_, ","),
                            names.empty() ? "none there" : has),
                patterns_.front(), names);
}

}  // namespace lumbarn
