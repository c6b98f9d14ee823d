#include "../shapes/HeaderLayout.h"
#include "TestResults.h"

namespace lumbarn {

namespace {

/// What all headers of a test have in common.
void putHeader(ByteTable& bHeaders, std::size_t iColumn, std::string_view zKind, std::string_view zUnits,
               const ProcessedTest& test, std::string_view zName) {
  setAttribute(attributeDataKind, bHeaders, iColumn, zKind);
  setAttribute(attributeUnits, bHeaders, iColumn, zUnits);
  setAttribute(attributeMember, bHeaders, iColumn, test.well());
  setAttribute(attributeIndex, bHeaders, iColumn, std::to_string(test.number));
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

std::string pltUnit(const ProcessedTest& test, std::string_view zName) {
  const TextArray& welletc = test.header.welletc;
  // All are blank when there are fewer texts, those of depths too. Deliberate.
  if (welletc.size() < static_cast<std::size_t>(WelletcText::LiquidRate)) return {};
  if (zName == "CONGOR" || zName == "CONGORTUB") return test.gasOilUnit;
  return unitOf(zName, welletc);
}

}  // namespace

ByteTable rftHeaders(const ProcessedTest& test) {
  const TestTable& rft = test.tables.rft;
  ByteTable headers(headerWidth, static_cast<std::size_t>(rft.count));
  for (std::int32_t i = 0; i < rft.count; ++i) {
    const std::string_view zName =
        rft.columns[static_cast<std::size_t>((test.tables.depthColumn - 1 + i) % rft.count)].name;
    putHeader(headers, static_cast<std::size_t>(i + 1), "RFT", unitOf(zName, test.header.welletc), test,
              zName);
  }
  return headers;
}

ByteTable pltHeaders(const ProcessedTest& test, bool qBranch) {
  const TestTable& plt = test.tables.plt;
  const TestTable& rft = test.tables.rft;
  ByteTable headers(headerWidth, static_cast<std::size_t>(plt.count + rft.count));
  std::size_t iColumn = 0;
  const auto put = [&](std::string_view zName) {
    putHeader(headers, ++iColumn, qBranch ? "PLTBRAN" : "PLT", pltUnit(test, zName), test, zName);
  };
  for (std::int32_t i = 0; i < plt.count; ++i) put(plt.columns[static_cast<std::size_t>(i)].name);
  for (std::int32_t i = 0; i < rft.count; ++i) put(nameInPLT(rft.columns[static_cast<std::size_t>(i)].name));
  return headers;
}

ByteTable segmentTableHeaders(const ProcessedTest& test, std::int32_t iIndex, std::string_view zClass) {
  const bool isICD = zClass.find("ICD") != std::string_view::npos;
  ByteTable headers(headerWidth, segmentVectors.size());
  for (std::size_t i = 1; i <= segmentVectors.size(); ++i) {
    const std::string_view zName = segmentVectors[i - 1].name;
    putHeader(headers, i, isICD ? "ICDBRAN" : "SEGBRAN",
              zName == "SEGGOR" ? test.gasOilUnit : unitOf(zName, test.header.welletc), test, zName);
  }
  setBranchNumber(headers, iIndex);
  return headers;
}

void setBranchNumber(ByteTable& bHeaders, std::int32_t iBranch) {
  const std::string number = std::to_string(iBranch);
  for (std::size_t i = 1; i <= bHeaders.entries(); ++i) setAttribute(attributeLGRName, bHeaders, i, number);
}

}  // namespace lumbarn
