#include "HorizontalData.h"

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

void ExtractDifferentVectors(Session& session, const ByteTable& bHeaders, std::vector<float>& sLengths,
                             std::vector<std::string>& zVectors, std::vector<std::int32_t>& iVectorStart,
                             std::int32_t& nVectors, bool& qOK) {
  guarded(session, qOK, className, "ExtractDifferentVectors", [&] {
    nVectors = 0;
    if (bHeaders.entries() != sLengths.size() || sLengths.empty()) return false;
    zVectors.clear();
    iVectorStart.clear();
    const HeaderField field = headerField(attributeVariable);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < sLengths.size(); ++i) {
      const std::string_view name = bHeaders.get(i + 1, field.firstByte, field.width);
      if (zVectors.empty() || name != zVectors.back()) {
        zVectors.emplace_back(name);
        iVectorStart.push_back(static_cast<std::int32_t>(i) + 1);
      }
      if (zVectors.size() == 1) sLengths[kept++] = sLengths[i];
    }
    sLengths.resize(kept);
    nVectors = static_cast<std::int32_t>(zVectors.size());
    return true;
  });
}

void GetTimeStepsUsed(Session& session, std::span<const std::int32_t> iReportSteps, bool qMiniSteps,
                      std::vector<std::int32_t>& iSteps, std::int32_t& nSteps, bool& qOK) {
  guarded(session, qOK, className, "GetTimeStepsUsed", [&] {
    iSteps.clear();
    for (std::size_t r = 0; r < iReportSteps.size(); ++r) {
      const auto row = static_cast<std::int32_t>(r) + 1;
      if (!qMiniSteps && r > 0 && iReportSteps[r] == iReportSteps[r - 1]) {
        iSteps.back() = row;
      } else {
        iSteps.push_back(row);
      }
    }
    nSteps = static_cast<std::int32_t>(iSteps.size());
  });
}

void SetHorizLengthData(Session& session, const HorizontalLayout& layout, bool qInflow, XYData& sOut,
                        bool& qOK) {
  guarded(session, qOK, className, "SetHorizLengthData", [&] {
    const std::size_t offset = qInflow ? 1 : 0;
    if (qInflow) sOut(1, 1) = 0;
    for (std::size_t c = 0; c < layout.iOrder.size(); ++c) {
      const auto place = static_cast<std::size_t>(layout.iOrder[c] - 1);
      if (place >= layout.sLengths.size()) throw Fault(FaultNumber::Subscript);
      sOut(c + 1 + offset, 1) = layout.sLengths[place];
    }
  });
}

void SetHorizData(Session& session, const HorizontalLayout& layout, const XYData& sData, bool qInflow,
                  XYData& sOut, bool& qOK) {
  guarded(session, qOK, className, "SetHorizData", [&] {
    const std::size_t offset = qInflow ? 1 : 0;
    std::size_t row = 1;
    for (const std::int32_t step : layout.iSteps) {
      if (session.yield()) return false;
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
    return true;
  });
}

void SetHorizDataHeaders(Session& session, const HorizontalLayout& layout, const HorizontalSource& source,
                         bool qInflow, bool qMiniSteps, ByteTable& bOut, bool& qOK) {
  guarded(session, qOK, className, "SetHorizDataHeaders", [&] {
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
      if (session.yield()) return false;
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
    return true;
  });
}

void StoreHorizontalDataArray(Session& session, const HorizontalSource& source,
                              const HorizontalLayout& layout, bool qInflow, bool qMiniSteps,
                              HorizontalTable& table, bool& qOK) {
  guarded(session, qOK, className, "StoreHorizontalDataArray", [&] {
    table = {};
    HorizontalTable made;
    made.sData = XYData(layout.sLengths.size() + (qInflow ? 1 : 0), rowCount(layout), session);
    made.bHeaders = ByteTable(headerWidth, rowCount(layout));
    bool qStep = false;
    SetHorizLengthData(session, layout, qInflow, made.sData, qStep);
    if (qStep) SetHorizData(session, layout, source.sData, qInflow, made.sData, qStep);
    if (qStep) SetHorizDataHeaders(session, layout, source, qInflow, qMiniSteps, made.bHeaders, qStep);
    if (qStep) table = std::move(made);
    return qStep;
  });
}

void HorizontalData::getHorizontalData(const HorizontalSource& source, bool qInflow, bool qConnect,
                                       bool qMiniSteps, bool& qOK) {
  guarded(*session_, qOK, className, "getHorizontalData", [&] {
    *this = HorizontalData(*session_);
    if (!qInflow && !qConnect) return true;
    HorizontalLayout layout;
    layout.sLengths.assign(source.sLengths.begin(), source.sLengths.end());
    std::int32_t nVectors = 0, nSteps = 0;
    bool qStep = false;
    ExtractDifferentVectors(*session_, source.bHeaders, layout.sLengths, layout.zVectors, layout.iVectorStart,
                            nVectors, qStep);
    if (!qStep || layout.sLengths.size() * layout.zVectors.size() != source.bHeaders.entries()) return false;
    layout.iOrder = sortPositions(layout.sLengths);
    GetTimeStepsUsed(*session_, source.iReportSteps, qMiniSteps, layout.iSteps, nSteps, qStep);

    HorizontalData made(*session_);
    made.nHorizVectors = nVectors;
    made.nHorizSteps = nSteps;
    made.iHorizSteps = layout.iSteps;
    if (qStep && qInflow) {
      StoreHorizontalDataArray(*session_, source, layout, true, qMiniSteps, made.Inflow, qStep);
    }
    if (qStep && qConnect) {
      StoreHorizontalDataArray(*session_, source, layout, false, qMiniSteps, made.Connect, qStep);
    }
    if (qStep) *this = std::move(made);
    return qStep;
  });
}

void HorizontalData::getHoriz(bool qInflow, std::int32_t iStep, XYData& sData, ByteTable& bHeaders,
                              bool& qOK) const {
  guarded(*session_, qOK, className, "getHoriz", [&] {
    sData = {};
    bHeaders = {};
    const HorizontalTable& kept = qInflow ? Inflow : Connect;
    if (iStep < 1 || iStep > nHorizSteps || kept.sData.empty()) throw Fault(FaultNumber::Subscript);
    const auto vectors = static_cast<std::size_t>(nHorizVectors);
    const std::size_t first = (static_cast<std::size_t>(iStep) - 1) * vectors + 2;
    XYData data(kept.sData.rows(), vectors + 1, *session_);
    ByteTable headers(headerWidth, vectors + 1);
    for (std::size_t row = 1; row <= vectors + 1; ++row) {
      const std::size_t from = row == 1 ? 1 : first + row - 2;
      std::ranges::copy(kept.sData.column(from), data.column(row).begin());
      std::ranges::copy(kept.bHeaders.entry(from), headers.entry(row).begin());
    }
    copyField(kept.bHeaders, first, headers, 1, attributeIndex);
    sData = std::move(data);
    bHeaders = std::move(headers);
  });
}

void GetDateStamp(Session& session, Moment start, double unitsPerDay, float sTime, std::string& zDate,
                  bool& qOK) {
  guarded(session, qOK, className, "GetDateStamp", [&] {
    zDate.clear();
    const auto moment = momentAfter(start, sTime, unitsPerDay);
    if (!moment) return false;
    // Day, month and year only, also for a row in the middle of a day: deliberate, hosts expect three words.
    zDate = dayMonthYear(*moment);
    return true;
  });
}

void GetDateStamp(Session& session, std::string_view zStartDate, double unitsPerDay, float sTime,
                  std::string& zDate, bool& qOK) {
  guarded(session, qOK, className, "GetDateStamp", [&] {
    zDate.clear();
    const auto parts = words(zStartDate);
    if (parts.size() < 3) return false;
    const auto day = toInteger(parts[0]), year = toInteger(parts[2]);
    constexpr long long most = std::numeric_limits<int>::max();
    if (!day || !year || *day < 1 || *day > 31 || *year < 1 || *year > most) return false;
    const auto start = makeMoment(static_cast<int>(*year), monthNumber(parts[1]), static_cast<int>(*day));
    if (!start) return false;
    bool qDone = false;
    GetDateStamp(session, *start, unitsPerDay, sTime, zDate, qDone);
    return qDone;
  });
}

}  // namespace lumbarn
