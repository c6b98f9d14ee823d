#include "ColumnNames.h"

#include <string_view>
#include <unordered_map>

#include <fmt/format.h>

#include "../support/Diagnosis.h"

namespace lumbarn {

std::vector<NamedVector> nameVectors(std::span<const SummaryVector> vectors, bool keepDuplicates,
                                     const std::string& path, Session& session) {
  std::vector<NamedVector> named;
  named.reserve(vectors.size());
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
    session.diagnose(
        {.message = Message::SummaryNames,
         .path = path,
         .problem = fmt::format("{} vector{} omitted, as their names occur before ({}{})", hidden,
                                hidden == 1 ? "" : "s", firstHidden, hidden == 1 ? "" : " and others")});
  }
  return named;
}

}  // namespace lumbarn
