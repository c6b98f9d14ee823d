#include "ScheduleItems.h"

#include <array>
#include <utility>

#include "../support/Text.h"
#include "LookUp.h"
#include "Mnemonics.h"

namespace lumbarn {

namespace {

struct ScheduleItem {
  std::string_view key;
  std::int32_t iCode;
  std::int32_t iPhase;
};

constexpr std::int32_t noPhase = -1;
constexpr std::int32_t production = 1;
constexpr std::int32_t injection = 2;

constexpr auto scheduleItems = std::to_array<ScheduleItem>({
    {"ALQ", 74, noPhase},     {"BHP", 53, noPhase},     {"BHPH", 37, noPhase},    {"BP", 56, noPhase},
    {"BP4", 57, noPhase},     {"BP5", 58, noPhase},     {"BP9", 59, noPhase},     {"CHMR", 77, noPhase},
    {"CHMT", 78, noPhase},    {"CMIR", 81, noPhase},    {"CMIT", 82, noPhase},    {"CMPR", 79, noPhase},
    {"CMPT", 80, noPhase},    {"GIR", 45, injection},   {"GIRH", 30, injection},  {"GIT", 63, injection},
    {"GITH", 40, injection},  {"GLIR", 74, noPhase},    {"GOR", 50, noPhase},     {"GORH", 34, noPhase},
    {"GPR", 45, production},  {"GPRH", 30, production}, {"GPT", 63, production},  {"GPTH", 40, production},
    {"LPR", 47, production},  {"LPRH", 32, production}, {"LPT", 65, production},  {"LPTH", 42, production},
    {"MCTL", 27, noPhase},    {"MVFP", 72, noPhase},    {"OIR", 44, injection},   {"OIRH", 29, injection},
    {"OIT", 62, injection},   {"OITH", 39, injection},  {"OPR", 44, production},  {"OPRH", 29, production},
    {"OPT", 62, production},  {"OPTH", 39, production}, {"PI", 60, noPhase},      {"PR", 55, noPhase},
    {"THP", 54, noPhase},     {"THPH", 38, noPhase},    {"VIR", 48, injection},   {"VIT", 49, injection},
    {"VPR", 48, production},  {"VPT", 49, production},  {"WCT", 52, noPhase},     {"WCTH", 36, noPhase},
    {"WEFF", 76, noPhase},    {"WGR", 51, noPhase},     {"WGRH", 35, noPhase},    {"WIR", 46, injection},
    {"WIRH", 31, injection},  {"WIT", 64, injection},   {"WITH", 41, injection},  {"WPR", 46, production},
    {"WPRH", 31, production}, {"WPT", 64, production},  {"WPTH", 41, production}, {"XMF", 83, noPhase},
    {"YMF", 84, noPhase},     {"ZMF", 85, noPhase},
});
static_assert(keysRise<scheduleItems>);

constexpr std::int32_t fieldClass = 4;
constexpr std::int32_t gridClass = 6;
constexpr std::int32_t wellClass = 9;

/// Slots of the class list. Nodes have no slot here: they count as miscellaneous.
std::int32_t classSlot(char letter) {
  switch (letter) {
    case 'A':
      return 1;
    case 'B':
      return 2;
    case 'C':
      return 3;
    case 'F':
      return fieldClass;
    case 'G':
      return 5;
    case 'L':
      return gridClass;
    case 'R':
      return 8;
    case 'W':
      return wellClass;
    case 'S':
      return 10;
    default:
      return 7;
  }
}

std::int32_t classSlot(std::string_view vector, std::size_t letter) {
  return classSlot(letter < vector.size() ? vector[letter] : ' ');
}

}  // namespace

ScheduleCode scheduleCode(std::string_view zVariable) {
  const ScheduleItem* item = findRow(scheduleItems, trim(zVariable));
  return item ? ScheduleCode{item->iCode, item->iPhase} : ScheduleCode{};
}

void scheduleVector(std::string_view zVariable, std::int32_t& iCode, std::int32_t& iPhase, bool& qOK) {
  const ScheduleCode found = scheduleCode(zVariable);
  iCode = found.iCode;
  iPhase = found.iPhase;
  qOK = true;
}

void scheduleVectorInfo(std::string& zVector, std::int32_t& iClass, std::int32_t& iCode, std::int32_t& iPhase,
                        std::int32_t& iNumber, bool& qOK) {
  qOK = false;
  iCode = iPhase = iNumber = -1;
  const auto vector = trim(zVector);
  iClass = classSlot(vector, 0);
  if (iClass == gridClass) iClass = classSlot(vector, 1);
  if (iClass == wellClass || iClass == fieldClass) {
    const VectorParts parts = splitVector("SUMMARY", vector);
    const ScheduleCode found = scheduleCode(parts.variable);
    iCode = found.iCode;
    iPhase = found.iPhase;
    const auto value = toInteger(parts.number);
    if (value && std::in_range<std::int32_t>(*value)) {
      iNumber = static_cast<std::int32_t>(*value);
      zVector = std::string(parts.variable);
    }
  }
  qOK = true;
}

}  // namespace lumbarn
