#include "RunNames.h"

#include <algorithm>
#include <utility>

namespace lumbarn {

std::vector<std::string> distinctNames(std::span<const Run> runs) {
  std::vector<std::string> names;
  for (const Run& run : runs) {
    const bool taken =
        std::ranges::count_if(runs, [&](const Run& other) { return other.name() == run.name(); }) > 1;
    const std::string name = taken ? run.root() : run.name();
    std::string unique = name;
    for (int n = 2; std::ranges::count(names, unique) > 0; ++n) unique = name + '#' + std::to_string(n);
    names.push_back(std::move(unique));
  }
  return names;
}

}  // namespace lumbarn
