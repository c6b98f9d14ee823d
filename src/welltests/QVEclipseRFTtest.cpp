#include "QVEclipseRFTtest.h"

#include <utility>

#include "../support/Guarded.h"
#include "TestProcessing.h"
#include "TestResults.h"

namespace lumbarn {

namespace {

constexpr const char* className = "QVEclipseRFTtest";

/// True when the file ended with the test.
bool readTest(RecordWalk& walk, Session& session, ProcessedTest& test, const TestOptions& options) {
  for (auto& array : walk.indices) array.values.clear();
  TestWork work{test, options, {session, walk}};
  TableFiller tables(test.tables, test.header, work.report);
  ParsedTest parsed;
  try {
    parsed = parseTest(walk, session, test.header, tables);
    if (!parsed.any && parsed.end == ParsedTest::End::File) throw Fault(FaultNumber::PastEnd);
  } catch (const Fault& fault) {
    work.report(Message::WellTestRecord, walk.header().keyword, walk.header().headerAt, fault.what(), {}, {},
                "left out the rest of the test");
    throw;
  }
  if (parsed.complete) processTest(work);
  if (parsed.damage) session.diagnose(std::move(*parsed.damage));
  return parsed.end == ParsedTest::End::File;
}

}  // namespace

bool QVEclipseRFTtest::read(RecordWalk& reader) {
  return attempt(*session_, className, "getEclipseRFTtest",
                 [&] { return readTest(reader, *session_, test_, *this); });
}

std::optional<XYData> QVEclipseRFTtest::data(TestPart part, std::int32_t iBranch) const {
  switch (part) {
    case TestPart::Rft:
      return attempt(*session_, className, "getRFTtestData", [&] { return rftData(test_, *session_); });
    case TestPart::Plt:
      return attempt(*session_, className, "getPLTtestData", [&] { return pltData(test_, *session_); });
    case TestPart::PltBranch:
      return attempt(*session_, className, "getPLTBranchtestData",
                     [&] { return pltBranchData(test_, iBranch, *session_); });
    case TestPart::Branch:
      return attempt(*session_, className, "getBRANCHtestData",
                     [&] { return branchData(test_, iBranch, *session_); });
    case TestPart::Devices:
      return attempt(*session_, className, "getICDBRANCHtestData",
                     [&] { return deviceBranchData(test_, iBranch, *session_); });
    default:
      return std::nullopt;
  }
}

std::optional<ByteTable> QVEclipseRFTtest::headers(TestPart part) const {
  const bool branch = part == TestPart::PltBranch;
  if (part == TestPart::Rft)
    return attempt(*session_, className, "getRFTtestHeaders",
                   [&] { return std::optional(rftHeaders(test_)); });
  if (part == TestPart::Plt || branch)
    return attempt(*session_, className, "getPLTtestHeaders",
                   [&] { return std::optional(pltHeaders(test_, branch)); });
  return segmentHeaders(1, part == TestPart::Devices ? "ICDBRAN" : "");
}

std::optional<ByteTable> QVEclipseRFTtest::segmentHeaders(std::int32_t iIndex,
                                                          std::string_view zClass) const {
  return attempt(*session_, className, "getSEGtestHeaders",
                 [&] { return std::optional(segmentTableHeaders(test_, iIndex, zClass)); });
}

std::optional<TestResult> QVEclipseRFTtest::table(TestPart part, std::int32_t iBranch) const {
  auto values = data(part, iBranch);
  auto records = values ? headers(part) : std::nullopt;
  if (!records) return std::nullopt;
  if (iBranch > 0) setBranchNumber(*records, iBranch);
  return TestResult{std::move(*values), std::move(*records)};
}

std::optional<XYData> QVEclipseRFTtest::segmentValues(std::int32_t iSegment) const {
  return attempt(*session_, className, "getSegmenttestData", [&]() -> std::optional<XYData> {
    if (!validSegmentIndex(iSegment)) return std::nullopt;
    return segmentData(test_, iSegment, *session_);
  });
}

bool QVEclipseRFTtest::fillGrids(std::vector<char>& bGrids) const {
  return attempt(*session_, className, "getRFTtestGrids", [&] {
    if (nRFT() > 0) bGrids = gridNames(test_);
    return true;
  });
}

void QVEclipseRFTtest::getRFTtestData(XYData& xyData, bool& qOK) const {
  give(data(TestPart::Rft), xyData, qOK);
}

void QVEclipseRFTtest::getRFTtestHeaders(ByteTable& bHeaders, bool& qOK) const {
  give(headers(TestPart::Rft), bHeaders, qOK);
}

void QVEclipseRFTtest::getPLTtestData(XYData& xyData, bool& qOK) const {
  give(data(TestPart::Plt), xyData, qOK);
}

void QVEclipseRFTtest::getPLTBranchtestData(XYData& xyData, bool& qOK, std::int32_t iBranch) const {
  give(data(TestPart::PltBranch, iBranch), xyData, qOK);
}

void QVEclipseRFTtest::getPLTtestHeaders(ByteTable& bHeaders, bool& qOK, bool qBranch) const {
  give(headers(qBranch ? TestPart::PltBranch : TestPart::Plt), bHeaders, qOK);
}

void QVEclipseRFTtest::getBRANCHtestData(XYData& xyData, bool& qOK, std::int32_t iBranch) const {
  give(data(TestPart::Branch, iBranch), xyData, qOK);
}

void QVEclipseRFTtest::getICDBRANCHtestData(XYData& xyData, bool& qOK, std::int32_t iBranch) const {
  give(data(TestPart::Devices, iBranch), xyData, qOK);
}

void QVEclipseRFTtest::getSegmenttestData(XYData& xyData, bool& qOK, std::int32_t iSegment) const {
  give(segmentValues(iSegment), xyData, qOK);
}

void QVEclipseRFTtest::getSEGtestHeaders(ByteTable& bHeaders, bool& qOK, std::int32_t iIndex,
                                         std::string_view zClass) const {
  give(segmentHeaders(iIndex, zClass), bHeaders, qOK);
}

void QVEclipseRFTtest::getRFTtestGrids(std::vector<char>& bGrids, bool& qOK) const {
  qOK = fillGrids(bGrids);
}

std::int32_t QVEclipseRFTtest::BranchNumber(std::int32_t iSegment) const {
  return iSegment >= 1 && iSegment <= static_cast<std::int64_t>(test_.segments.size())
             ? test_.segment(iSegment).BRNO
             : -1;
}

bool QVEclipseRFTtest::validSegmentIndex(std::int32_t iSegment) const {
  return iSegment >= 1 && iSegment <= nSegments() - 1;  // not the last one: deliberate
}

bool QVEclipseRFTtest::validBranchIndex(std::int32_t iBranch) const {
  return iBranch >= 1 && iBranch <= nBranches();
}

bool QVEclipseRFTtest::validICDBranchIndex(std::int32_t iBranch) const {
  return iBranch >= 1 && iBranch <= nICDBranches();
}

}  // namespace lumbarn
