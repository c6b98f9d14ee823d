#include "StepRange.h"

#include <limits>

#include <fmt/format.h>

#include "Failure.h"
#include "support/Text.h"

namespace lumbarn::cli {
namespace {

constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();

[[noreturn]] void refuse(std::string_view text) {
  throw Failure(Usage, fmt::format("--steps takes a range as 3:7, 3:, :7 or 3, not \"{}\"", text));
}

}  // namespace

StepRange parseSteps(std::string_view text) {
  const auto colon = text.find(':');
  const auto number = [text](std::string_view part, std::int32_t ifEmpty) {
    if (part.empty()) return ifEmpty;
    const auto value = toInteger(part);
    if (!value || *value < 0 || *value > greatest) refuse(text);
    return static_cast<std::int32_t>(*value);
  };
  if (text.empty() || text == ":") refuse(text);
  if (colon == text.npos) {
    const auto step = number(text, -1);
    return {step, step};
  }
  // The reader takes a start without an end as that one step, so an end that is left open is the greatest.
  const StepRange range{number(text.substr(0, colon), -1), number(text.substr(colon + 1), greatest)};
  if (range.last < range.first) refuse(text);
  return range;
}

}  // namespace lumbarn::cli
