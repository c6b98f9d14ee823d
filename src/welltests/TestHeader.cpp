#include "TestHeader.h"

#include <algorithm>

#include <fmt/format.h>

#include "../support/Fault.h"
#include "../support/Text.h"
#include "../vocabulary/Units.h"
#include "TimeOfDay.h"

namespace lumbarn {

std::string_view TextArray::at(std::size_t i) const {
  if (i < 1 || i > size()) throw Fault(FaultNumber::Subscript);
  return trim(std::string_view(bytes).substr((i - 1) * width, width));
}

std::string_view TextArray::textOf(WelletcText position) const {
  const auto i = static_cast<std::size_t>(position);
  return i >= 1 && i <= size() ? at(i) : std::string_view{};
}

std::string unitOf(std::string_view name, const TextArray& welletc) {
  const TestVector* vector = testVector(name);
  return vector ? unitText(*vector, [&](WelletcText position) { return welletc.textOf(position); })
                : std::string();
}

std::string_view getWellType(std::string_view zText) {
  for (const std::string_view type : {"FRICTION", "MULTISEG"}) {
    if (equalNoCase(trim(zText), type)) return type;
  }
  return "STANDARD";
}

double TestHeader::days() const {
  return static_cast<double>(time) / unitsPerDay(welletc.textOf(WelletcText::Time));
}

std::optional<Moment> TestHeader::moment() const {
  if (!date) return std::nullopt;
  const auto [day, month, year] = *date;
  return testMoment(day, month, year, time, unitsPerDay(welletc.textOf(WelletcText::Time)));
}

std::string TestHeader::dateText() const {
  if (!date) return {};
  const auto [day, month, year] = *date;
  return fmt::format("{} {} {:04}", day, monthName(month), std::max(year, 0));
}

}  // namespace lumbarn
