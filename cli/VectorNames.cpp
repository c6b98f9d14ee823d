#include "VectorNames.h"

#include <string_view>
#include <unordered_map>

#include <fmt/format.h>

namespace lumbarn::cli {

std::vector<NamedVector> nameVectors(std::span<const SummaryVector> vectors, bool keepDuplicates,
                                     Console& console) {
  std::vector<NamedVector> named;
  std::unordered_map<std::string_view, int> met;
  std::size_t hidden = 0;
  std::string_view firstHidden;
  for (const SummaryVector& vector : vectors) {
    const int occurrence = ++met[vector.name];
    if (occurrence == 1) {
      named.push_back({&vector, vector.name});
    } else if (keepDuplicates) {
      named.push_back({&vector, fmt::format("{}#{}", vector.name, occurrence)});
    } else if (hidden++ == 0) {
      firstHidden = vector.name;
    }
  }
  if (hidden > 0) {
    console.say(
        fmt::format("{} vector{} left out, as their names occur before ({}{}); --keep-duplicates shows all",
                    hidden, hidden == 1 ? "" : "s", firstHidden, hidden == 1 ? "" : " and others"));
  }
  return named;
}

}  // namespace lumbarn::cli
