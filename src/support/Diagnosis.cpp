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
  if (line > 0) add(fmt::format("line {}", line), ", ");
  if (offset) add(fmt::format("byte {}", *offset), ", ");
  if (!expected.empty()) add("expected " + expected, ": ");
  if (!found.empty()) add("found " + found, expected.empty() ? ": " : ", ");

  std::string all = path.empty() ? std::string(what()) : fmt::format("{}: {}", path, what());
  if (!place.empty()) all += " (" + place + ")";
  if (!action.empty()) all += "; " + action;
  return all;
}

}  // namespace lumbarn
