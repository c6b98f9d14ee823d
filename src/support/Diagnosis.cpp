#include "Diagnosis.h"

#include <fmt/format.h>

namespace lumbarn {

BadRecord::~BadRecord() = default;

std::string Diagnosis::text() const {
  std::string place = keyword;
  const auto add = [&place](const std::string& item, const char* separator) {
    if (!place.empty()) place += separator;
    place += item;
  };
  if (occurrence > 0) add(fmt::format("occurrence {}", occurrence), ", ");
  if (offset) add(fmt::format("byte {}", *offset), ", ");
  if (!expected.empty()) add("expected " + expected, ": ");
  if (!found.empty()) add("found " + found, expected.empty() ? ": " : ", ");

  std::string line = path.empty() ? std::string(what()) : fmt::format("{}: {}", path, what());
  if (!place.empty()) line += " (" + place + ")";
  if (!action.empty()) line += "; " + action;
  return line;
}

}  // namespace lumbarn
