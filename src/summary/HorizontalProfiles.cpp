#include "HorizontalProfiles.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "../shapes/HeaderLayout.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Sorting.h"
#include "../support/Text.h"

namespace lumbarn {
namespace {

constexpr const char* className = "HorizontalData";

std::size_t rowCount(const HorizontalLayout& layout) {
  return layout.iSteps.size() * layout.zVectors.size() + 1;
}

/// Fraction vectors stay values per connection in the accumulated table.
bool accumulates(std::string_view mnemonic, bool qInflow) {
  return qInflow && !(mnemonic.size() >= 3 && equalNoCase(mnemonic.substr(mnemonic.size() - 3), "FRU"));
}

void copyField(const ByteTable& from, std::size_t iFrom, ByteTable& to, std::size_t iTo,
               std::int32_t iAttribute) {
  const HeaderField field = headerField(iAttribute);
  std::ranges::copy(from.entry(iFrom).subspan(field.firstByte - 1, field.width),
                    to.entry(iTo).begin() + static_cast<std::ptrdiff_t>(field.firstByte - 1));
}

/// Number of the vector of mnemonic j, from 0, at connection c, from 0 in order of length.
std::size_t vectorOf(const HorizontalLayout& layout, std::size_t j, std::size_t c) {
  if (j >= layout.iVectorStart.size() || c >= layout.iOrder.size()) throw Fault(FaultNumber::Subscript);
  return static_cast<std::size_t>(layout.iVectorStart[j] + layout.iOrder[c] - 1);
}

}  // namespace

std::optional<HorizontalLayout> differentVectors(const ByteTable& bHeaders, std::span<const float> sLengths) {
  return inRoutine(className, "ExtractDifferentVectors", [&]() -> std::optional<HorizontalLayout> {
    if (bHeaders.entries() != sLengths.size() || sLengths.empty()) return std::nullopt;
    HorizontalLayout layout;
    const HeaderField field = headerField(attributeVariable);
    for (std::size_t i = 0; i < sLengths.size(); ++i) {
      const std::string_view name = bHeaders.get(i + 1, field.firstByte, field.width);
      if (layout.zVectors.empty() || name != layout.zVectors.back()) {
        layout.zVectors.emplace_back(name);
        layout.iVectorStart.push_back(static_cast<std::int32_t>(i) + 1);
      }
      if (layout.zVectors.size() == 1) layout.sLengths.push_back(sLengths[i]);
    }
    return layout;
  });
}

std::vector<std::int32_t> stepsUsed(std::span<const std::int32_t> iReportSteps, bool qMiniSteps) {
  std::vector<std::int32_t> steps;
  for (std::size_t r = 0; r < iReportSteps.size(); ++r) {
    const auto row = static_cast<std::int32_t>(r) + 1;
    if (!qMiniSteps && r > 0 && iReportSteps[r] == iReportSteps[r - 1]) {
      steps.back() = row;
    } else {
      steps.push_back(row);
    }
  }
  return steps;
}

std::optional<HorizontalLayout> layoutOf(const HorizontalSource& source, bool qMiniSteps) {
  auto layout = differentVectors(source.bHeaders, source.sLengths);
  if (!layout || layout->sLengths.size() * layout->zVectors.size() != source.bHeaders.entries()) {
    return std::nullopt;
  }
  layout->iOrder = sortPositions(layout->sLengths);
  layout->iSteps = stepsUsed(source.iReportSteps, qMiniSteps);
  return layout;
}

void fillLengths(const HorizontalLayout& layout, bool qInflow, XYData& sOut) {
  inRoutine(className, "SetHorizLengthData", [&] {
    const std::size_t offset = qInflow ? 1 : 0;
    if (qInflow) sOut(1, 1) = 0;
    for (std::size_t c = 0; c < layout.iOrder.size(); ++c) {
      const auto place = static_cast<std::size_t>(layout.iOrder[c] - 1);
      if (place >= layout.sLengths.size()) throw Fault(FaultNumber::Subscript);
      sOut(c + 1 + offset, 1) = layout.sLengths[place];
    }
  });
}

void fillProfiles(Session& session, const HorizontalLayout& layout, const XYData& sData, bool qInflow,
                  XYData& sOut) {
  inRoutine(className, "SetHorizData", [&] {
    const std::size_t offset = qInflow ? 1 : 0;
    std::size_t row = 1;
    for (const std::int32_t step : layout.iSteps) {
      if (session.yield()) throw LoadCanceled();
      for (std::size_t j = 0; j < layout.zVectors.size(); ++j) {
        ++row;
        const bool sum = accumulates(layout.zVectors[j], qInflow);
        if (qInflow) sOut(1, row) = 0;
        for (std::size_t c = 0; c < layout.iOrder.size(); ++c) {
          const float value = sData(static_cast<std::size_t>(step), vectorOf(layout, j, c));
          sOut(c + 1 + offset, row) = sum ? value + sOut(c + 1, row) : value;
        }
      }
    }
  });
}

void fillProfileHeaders(Session& session, const HorizontalLayout& layout, const HorizontalSource& source,
                        bool qInflow, bool qMiniSteps, ByteTable& bOut) {
  inRoutine(className, "SetHorizDataHeaders", [&] {
    const auto common = [&](std::size_t row, std::size_t t, std::size_t j, std::string_view name) {
      const std::size_t from = vectorOf(layout, j, 0);
      copyField(source.bHeaders, from, bOut, row, attributeSource);
      copyField(source.bHeaders, from, bOut, row, attributeMember);
      setAttribute(attributeDataKind, bOut, row, qInflow ? "Inflow" : "Connect");
      // Steps count from 0 when every ministep is one.
      setAttribute(attributeIndex, bOut, row, std::to_string(qMiniSteps ? t : t + 1));
      setAttribute(attributeVariable, bOut, row, name);
      setAttribute(attributeVerbose, bOut, row, name);
    };
    common(1, 0, 0, "WLENGTH");
    setAttribute(attributeUnits, bOut, 1, source.zUnits);
    std::size_t row = 1;
    for (std::size_t t = 0; t < layout.iSteps.size(); ++t) {
      if (session.yield()) throw LoadCanceled();
      for (std::size_t j = 0; j < layout.zVectors.size(); ++j) {
        const std::string& mnemonic = layout.zVectors[j];
        // The sum along a well is the well's own quantity: COFR becomes WOFR. A value per connection only
        // gets the W in front.
        std::string name =
            "W" + (qInflow ? mnemonic.substr(std::min<std::size_t>(1, mnemonic.size())) : mnemonic);
        common(++row, t, j, name.substr(0, 16));
        copyField(source.bHeaders, vectorOf(layout, j, 0), bOut, row, attributeUnits);
      }
    }
  });
}

HorizontalTable makeProfiles(Session& session, const HorizontalSource& source, const HorizontalLayout& layout,
                             bool qInflow, bool qMiniSteps) {
  return inRoutine(className, "StoreHorizontalDataArray", [&] {
    HorizontalTable made;
    made.sData = XYData(layout.sLengths.size() + (qInflow ? 1 : 0), rowCount(layout), session);
    made.bHeaders = ByteTable(headerWidth, rowCount(layout));
    fillLengths(layout, qInflow, made.sData);
    fillProfiles(session, layout, source.sData, qInflow, made.sData);
    fillProfileHeaders(session, layout, source, qInflow, qMiniSteps, made.bHeaders);
    return made;
  });
}

HorizontalTable profilesOfStep(const HorizontalTable& table, std::size_t vectors, std::size_t step,
                               const Session& session) {
  const std::size_t first = step * vectors + 2;
  HorizontalTable cut{ByteTable(headerWidth, vectors + 1), XYData(table.sData.rows(), vectors + 1, session)};
  for (std::size_t row = 1; row <= vectors + 1; ++row) {
    const std::size_t from = row == 1 ? 1 : first + row - 2;
    std::ranges::copy(table.sData.column(from), cut.sData.column(row).begin());
    std::ranges::copy(table.bHeaders.entry(from), cut.bHeaders.entry(row).begin());
  }
  copyField(table.bHeaders, first, cut.bHeaders, 1, attributeIndex);
  return cut;
}

std::optional<std::string> dateStamp(Moment start, double unitsPerDay, float sTime) {
  return inRoutine(className, "GetDateStamp", [&]() -> std::optional<std::string> {
    const auto moment = momentAfter(start, sTime, unitsPerDay);
    if (!moment) return std::nullopt;
    // Day, month and year only, also for a row in the middle of a day: deliberate, hosts expect three words.
    return dayMonthYear(*moment);
  });
}

std::optional<std::string> dateStamp(std::string_view zStartDate, double unitsPerDay, float sTime) {
  return inRoutine(className, "GetDateStamp", [&]() -> std::optional<std::string> {
    const auto parts = words(zStartDate);
    if (parts.size() < 3) return std::nullopt;
    const auto day = toInteger(parts[0]), year = toInteger(parts[2]);
    constexpr long long most = std::numeric_limits<int>::max();
    if (!day || !year || *day < 1 || *day > 31 || *year < 1 || *year > most) return std::nullopt;
    const auto start = makeMoment(static_cast<int>(*year), monthNumber(parts[1]), static_cast<int>(*day));
    return start ? dateStamp(*start, unitsPerDay, sTime) : std::nullopt;
  });
}

}  // namespace lumbarn
