#include "TestProcessing.h"

#include <numeric>

#include <fmt/format.h>

#include "../support/Guarded.h"

namespace lumbarn {

namespace {

std::string_view beforeSlash(std::string_view text) { return text.substr(0, text.find('/')); }

/// A WELLETC of exactly 8 texts has no gas rate, which is a fault. Deliberate: shorter ones are skipped.
void setUNITS(TestWork& work) {
  const TextArray& welletc = work.test.header.welletc;
  if (welletc.size() < static_cast<std::size_t>(WelletcText::LiquidRate)) return;
  work.test.gasOilUnit = beforeSlash(welletc.at(WelletcText::GasRate));
  work.test.gasOilUnit.append("/").append(beforeSlash(welletc.at(WelletcText::LiquidRate)));
}

void processRFTRecords(TestWork& work) {
  TestTables& tables = work.test.tables;
  TestTable& rft = tables.rft;
  addIndices(work, rft);
  if (!tables.hasRft || tables.nConnections == 0 || rft.find("DEPTH") < 0) return;
  const auto n = static_cast<std::size_t>(tables.nConnections);
  std::vector<float>& values = work.report.walk.singles;
  values.resize(n);
  if (rft.find("SOIL") < 0) {
    values.assign(n, 1);
    for (const std::string_view phase : {"SGAS", "SWAT"}) {  // in this order, for the last bit
      const std::int32_t iPhase = rft.find(phase);
      if (iPhase < 0) continue;
      const auto saturation = rft.column(iPhase, n);
      for (std::size_t i = 0; i < n; ++i) values[i] -= saturation[i];
    }
    tables.add(rft, "SOIL", values, work.report);
  }
  std::iota(values.begin(), values.end(), 1.0F);
  tables.add(rft, "COMPLETION", values, work.report);
}

}  // namespace

void runStep(TestWork& work, const char* routine, void (*step)(TestWork&), std::string_view lost) {
  const TestHeader& header = work.test.header;
  try {
    try {
      step(work);
    } catch (const ReportedFault&) {
      throw;
    } catch (const Fault& fault) {
      work.report(Message::WellTestDerived, {}, header.beginsAt,
                  fmt::format("test of well {}, {}: {}", work.test.well(), header.dateText(), fault.what()),
                  {}, {}, lost);
      throw;
    }
  } catch (...) {
    reportCurrentException(work.report.session, "QVEclipseRFTtest", routine);
  }
}

/// The order counts: the PLT step writes into the segment table, and the segment step needs the branches.
void processTest(TestWork& work) {
  runStep(work, "setUNITS", setUNITS, "left out the units of gas-oil ratios");
  runStep(work, "processRFTRecords", processRFTRecords, "left out oil saturations and completions");
  runStep(work, "processPLTRecords", processPLTRecords, "worked out nothing from its PLT");
  runStep(work, "processBRANCHData", processBRANCHData, "left out the branches behind the fault");
  runStep(work, "processSEGMENTData", processSEGMENTData, "left out the segments behind it, and all devices");
  runStep(work, "processICDData", processICDData, "left out the device branches");
}

/// All three are added when any was read. One that was not is a single 0, which fits no table but one of one
/// row, and makes one when no other array came before. Deliberate.
void addIndices(TestWork& work, TestTable& table) {
  if (!work.test.tables.hasIndices) return;
  constexpr std::string_view names[] = {"CONIPOS", "CONJPOS", "CONKPOS"};
  constexpr float notRead = 0;
  const auto& indices = work.report.walk.indices;
  for (std::size_t axis = 0; axis < indices.size(); ++axis) {
    const RecordWalk::IndexArray& array = indices[axis];
    const auto values =
        array.values.empty() ? std::span<const float>(&notRead, 1) : std::span<const float>(array.values);
    work.test.tables.add(table, names[axis], values, work.report, array.headerAt);
  }
}

}  // namespace lumbarn
