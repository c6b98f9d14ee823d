#include "../shapes/HeaderLayout.h"
#include "../support/Guarded.h"
#include "../vocabulary/Segments.h"
#include "QVEclipseRFTtest.h"
#include "TestUnits.h"

namespace lumbarn {

namespace {

constexpr const char* className = "QVEclipseRFTtest";

/// What all headers of a test have in common.
void putHeader(ByteTable& bHeaders, std::size_t iColumn, std::string_view zKind, std::string_view zUnits,
               const QVEclipseRFTtest& test, std::string_view zName) {
  setAttribute(attributeDataKind, bHeaders, iColumn, zKind);
  setAttribute(attributeUnits, bHeaders, iColumn, zUnits);
  setAttribute(attributeMember, bHeaders, iColumn, test.well());
  setAttribute(attributeIndex, bHeaders, iColumn, std::to_string(test.testNumber()));
  setAttribute(attributeVariable, bHeaders, iColumn, zName);
  // No table describes the vectors of these classes: each name is its own description.
  setAttribute(attributeVerbose, bHeaders, iColumn, zName);
}

/// Names that RFT columns have beside those of a PLT.
std::string_view nameInPLT(std::string_view zName) {
  struct Renamed {
    std::string_view from, to;
  };
  for (const auto& [from, to] : {Renamed{"DEPTH", "CONBDEPH"},
                                 {"PRESSURE", "CONBPRES"},
                                 {"SWAT", "CONBSWAT"},
                                 {"SGAS", "CONBSGAS"},
                                 {"SOIL", "CONBSOIL"}}) {
    if (zName == from) return to;
  }
  return zName;
}

}  // namespace

void QVEclipseRFTtest::getRFTtestHeaders(ByteTable& bHeaders, bool& qOK) const {
  guarded(*session_, qOK, className, "getRFTtestHeaders", [&] {
    ByteTable headers(headerWidth, static_cast<std::size_t>(rft_.count));
    for (std::int32_t i = 0; i < rft_.count; ++i) {
      const std::string_view zName =
          rft_.columns[static_cast<std::size_t>((iDepthColumn_ - 1 + i) % rft_.count)].name;
      const bool hasUnit = zName == "DEPTH" || zName == "PRESSURE";
      const std::string zUnits = hasUnit ? connectionUnit(zName, welletc_) : std::string();
      putHeader(headers, static_cast<std::size_t>(i + 1), "RFT", zUnits, *this, zName);
    }
    bHeaders = std::move(headers);
  });
}

std::string QVEclipseRFTtest::unitsOf(std::string_view zName) const {
  // All are blank when there are fewer texts, those of depths too. Deliberate.
  if (welletc_.size() < welletcLiquidRate) return {};
  if (zName == "CONGOR" || zName == "CONGORTUB") return zGORUnits_;
  return connectionUnit(zName, welletc_);
}

void QVEclipseRFTtest::getPLTtestHeaders(ByteTable& bHeaders, bool& qOK, bool qBranch) const {
  guarded(*session_, qOK, className, "getPLTtestHeaders", [&] {
    ByteTable headers(headerWidth, static_cast<std::size_t>(plt_.count + rft_.count));
    std::size_t iColumn = 0;
    const auto put = [&](std::string_view zName) {
      putHeader(headers, ++iColumn, qBranch ? "PLTBRAN" : "PLT", unitsOf(zName), *this, zName);
    };
    for (std::int32_t i = 0; i < plt_.count; ++i) put(plt_.columns[static_cast<std::size_t>(i)].name);
    for (std::int32_t i = 0; i < rft_.count; ++i) {
      put(nameInPLT(rft_.columns[static_cast<std::size_t>(i)].name));
    }
    bHeaders = std::move(headers);
  });
}

void QVEclipseRFTtest::getSEGtestHeaders(ByteTable& bHeaders, bool& qOK, std::int32_t iIndex,
                                         std::string_view zClass) const {
  guarded(*session_, qOK, className, "getSEGtestHeaders", [&] {
    std::vector<std::string> zTexts;
    for (std::size_t i = 1; i <= welletc_.size(); ++i) zTexts.emplace_back(welletc_.at(i));
    std::vector<std::string> zNames;
    std::vector<std::string> zUnits;
    std::int32_t nNames = 0;
    bool qNames = false;
    setSEGHeaders(zTexts, zNames, zUnits, nNames, qNames);
    if (!qNames) return false;
    const bool isICD = zClass.find("ICD") != std::string_view::npos;
    ByteTable headers(headerWidth, zNames.size());
    for (std::size_t i = 0; i < zNames.size(); ++i) {
      putHeader(headers, i + 1, isICD ? "ICDBRAN" : "SEGBRAN", zNames[i] == "SEGGOR" ? zGORUnits_ : zUnits[i],
                *this, zNames[i]);
      setAttribute(attributeLGRName, headers, i + 1, std::to_string(iIndex));
    }
    bHeaders = std::move(headers);
    return true;
  });
}

}  // namespace lumbarn
