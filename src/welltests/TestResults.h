#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "../shapes/ByteTable.h"
#include "../shapes/XYData.h"
#include "../support/Session.h"
#include "ProcessedTest.h"

namespace lumbarn {

// The tables of a test in the form that hosts know, `XYData(row, column)`. Nothing for what the test does not
// have; Fault 9 for a column, branch or segment that a reference in the file misses.
std::optional<XYData> rftData(const ProcessedTest& test, const Session& session);
std::optional<XYData> pltData(const ProcessedTest& test, const Session& session);
std::optional<XYData> pltBranchData(const ProcessedTest& test, std::int32_t iBranch, const Session& session);
std::optional<XYData> branchData(const ProcessedTest& test, std::int32_t iBranch, const Session& session);
std::optional<XYData> deviceBranchData(const ProcessedTest& test, std::int32_t iBranch,
                                       const Session& session);
/// Always throws Fault 9, see `QVEclipseRFTtest::getSegmenttestData`.
XYData segmentData(const ProcessedTest& test, std::int32_t iSegment, const Session& session);
/// The name of the grid and a blank for each connection, one after the other.
std::vector<char> gridNames(const ProcessedTest& test);

// Their headers, one record of 233 bytes for each column.
ByteTable rftHeaders(const ProcessedTest& test);
ByteTable pltHeaders(const ProcessedTest& test, bool qBranch);
ByteTable segmentTableHeaders(const ProcessedTest& test, std::int32_t iIndex, std::string_view zClass);
/// Writes the number of a branch into each header. Only the bytes of the digits are written, so that what is
/// behind them stays. Deliberate.
void setBranchNumber(ByteTable& bHeaders, std::int32_t iBranch);

}  // namespace lumbarn
