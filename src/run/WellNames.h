#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace lumbarn {

/// Patterns of names of wells, which match in UTF-8 whatever the bytes of the file are.
class WellNames {
 public:
  /// No patterns: all wells. Throws Error BadRequest for an empty pattern.
  explicit WellNames(const std::vector<std::string>& patterns);

  /// Whether a well is wanted. Names that are not are kept until one is.
  bool wants(std::string_view name);
  bool any() const { return any_; }
  /// Throws Error NotFound when there are patterns and no name was wanted.
  void throwIfNone(const std::string& path) const;

 private:
  std::vector<std::string> patterns_;
  std::set<std::string> others_;
  bool any_ = false;
};

}  // namespace lumbarn
