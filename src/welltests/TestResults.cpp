#include "TestResults.h"

#include <algorithm>

#include "../support/Fault.h"

namespace lumbarn {

namespace {

/// Columns 2 to 22 of a segment table.
constexpr float SegmentRecord::*ownFields[] = {
    &SegmentRecord::DEPTH, &SegmentRecord::LENST, &SegmentRecord::LENEN, &SegmentRecord::LENTH,
    &SegmentRecord::XCORD, &SegmentRecord::YCORD, &SegmentRecord::PRES,  &SegmentRecord::ORAT,
    &SegmentRecord::WRAT,  &SegmentRecord::GRAT,  &SegmentRecord::ORATS, &SegmentRecord::WRATS,
    &SegmentRecord::GRATS, &SegmentRecord::OVEL,  &SegmentRecord::WVEL,  &SegmentRecord::GVEL,
    &SegmentRecord::OHF,   &SegmentRecord::WHF,   &SegmentRecord::GHF,
};
/// Columns 24 to 31.
constexpr float SegmentRecord::*connectionFields[] = {
    &SegmentRecord::CORAT, &SegmentRecord::CWRAT, &SegmentRecord::CGRAT, &SegmentRecord::CORTS,
    &SegmentRecord::CWRTS, &SegmentRecord::CGRTS, &SegmentRecord::WCUT,  &SegmentRecord::GOR};

/// Columns 1 to 23, which segment and device tables have in common.
void putSegment(XYData& xyData, std::size_t iRow, float md, const SegmentRecord& record,
                std::int32_t iNumber) {
  std::size_t iColumn = 1;
  xyData(iRow, iColumn++) = md;
  for (const auto field : ownFields) xyData(iRow, iColumn++) = record.*field;
  xyData(iRow, iColumn++) = static_cast<float>(record.BRNO);
  xyData(iRow, iColumn++) = static_cast<float>(record.NXT);
  xyData(iRow, iColumn) = static_cast<float>(iNumber);
}

void putConnectionRates(XYData& xyData, std::size_t iRow, const SegmentRecord& record) {
  std::size_t iColumn = 24;
  for (const auto field : connectionFields) xyData(iRow, iColumn++) = record.*field;
}

/// True when the rows of the PLT table are not those of the file in their order.
bool isReordered(const ProcessedTest& test) {
  for (std::size_t r = 0; r < test.rowOrder.size(); ++r) {
    if (test.rowOrder[r] != static_cast<std::int32_t>(r + 1)) return true;
  }
  return false;
}

/// Number of the branch at a position in the list. Throws Fault 9 outside.
std::int32_t branchNumber(const ProcessedTest& test, std::int32_t i) {
  if (i >= 1 && static_cast<std::size_t>(i) <= test.branches.size())
    return test.branches[static_cast<std::size_t>(i - 1)].iNumber;
  if (i >= 1 && test.impliedBranches && i <= test.nPltBranches) return i;
  throw Fault(FaultNumber::Subscript);
}

}  // namespace

const SegmentRecord& ProcessedTest::segment(std::int64_t i) const {
  if (i < 1 || i > static_cast<std::int64_t>(segments.size())) throw Fault(FaultNumber::Subscript);
  return segments[static_cast<std::size_t>(i - 1)];
}

std::optional<XYData> rftData(const ProcessedTest& test, const Session& session) {
  const TestTables& tables = test.tables;
  if (tables.rft.count < 1 || tables.nConnections < 1) return std::nullopt;
  const auto n = static_cast<std::size_t>(tables.nConnections);
  XYData result(n, static_cast<std::size_t>(tables.rft.count), session);
  for (std::int32_t i = 0; i < tables.rft.count; ++i) {
    const std::int32_t from = (tables.depthColumn - 1 + i) % tables.rft.count + 1;
    std::ranges::copy(tables.rft.column(from, n), result.column(static_cast<std::size_t>(i + 1)).begin());
  }
  return result;
}

/// The PLT table is in its order already; the RFT table is in that of the file.
std::optional<XYData> pltData(const ProcessedTest& test, const Session& session) {
  const TestTable& plt = test.tables.plt;
  const TestTable& rft = test.tables.rft;
  if (plt.count + rft.count < 1 || test.tables.nConnections < 1) return std::nullopt;
  const auto n = static_cast<std::size_t>(test.tables.nConnections);
  XYData result(n, static_cast<std::size_t>(plt.count + rft.count), session);
  std::size_t iColumn = 0;
  for (std::int32_t i = 1; i <= plt.count; ++i)
    std::ranges::copy(plt.column(i, n), result.column(++iColumn).begin());
  const bool throughIndex = isReordered(test);
  for (std::int32_t i = 1; i <= rft.count; ++i) {
    const auto from = rft.column(i, n);
    const auto to = result.column(++iColumn);
    if (throughIndex && test.rowOrder.size() < n) throw Fault(FaultNumber::Subscript);
    for (std::size_t r = 0; r < n; ++r)
      to[r] = from[throughIndex ? static_cast<std::size_t>(test.rowOrder[r] - 1) : r];
  }
  return result;
}

std::optional<XYData> pltBranchData(const ProcessedTest& test, std::int32_t iBranch, const Session& session) {
  const TestTable& plt = test.tables.plt;
  const TestTable& rft = test.tables.rft;
  const std::int32_t iNumbers = test.pltBranchColumn;
  if (!test.hasPltBranches || iBranch < 1 || iBranch > test.nPltBranches) return std::nullopt;
  if (iNumbers < 1 || iNumbers > plt.count + rft.count) return std::nullopt;
  const auto n = static_cast<std::size_t>(test.tables.nConnections);
  const auto number = static_cast<float>(branchNumber(test, iBranch));
  const auto numbers = plt.column(iNumbers, n);
  std::vector<std::size_t> selected;
  for (std::size_t r = 0; r < n; ++r) {
    if (numbers[r] == number) selected.push_back(r);
  }
  if (selected.empty()) return std::nullopt;
  XYData result(selected.size(), static_cast<std::size_t>(plt.count + rft.count), session);
  std::size_t iColumn = 0;
  for (std::int32_t i = 1; i <= plt.count; ++i) {
    const auto from = plt.column(i, n);
    std::ranges::transform(selected, result.column(++iColumn).begin(),
                           [&](std::size_t r) { return from[r]; });
  }
  // A table in the file's own order gives the first RFT rows, not those of the branch. Deliberate: the two
  // ways have always differed.
  const bool throughIndex = isReordered(test);
  for (std::int32_t i = 1; i <= rft.count; ++i) {
    const auto from = rft.column(i, n);
    const auto to = result.column(++iColumn);
    for (std::size_t k = 0; k < to.size(); ++k)
      to[k] = from[throughIndex ? static_cast<std::size_t>(test.rowOrder[selected[k]] - 1) : k];
  }
  return result;
}

std::optional<XYData> branchData(const ProcessedTest& test, std::int32_t iBranch, const Session& session) {
  if (iBranch < 1 || iBranch > test.nBranches()) return std::nullopt;
  if (static_cast<std::size_t>(iBranch) > test.branches.size()) throw Fault(FaultNumber::Subscript);
  const BranchRecord& record = test.branches[static_cast<std::size_t>(iBranch - 1)];
  test.segment(record.iFirst);  // before any memory is allocated: the range comes from the file
  test.segment(record.iLast);
  if (record.nSegments < 1) throw Fault(FaultNumber::Subscript);
  XYData result(static_cast<std::size_t>(record.nSegments), segmentVectors.size(), session);
  std::size_t iRow = 0;
  for (std::int32_t s = record.iFirst; s <= record.iLast; ++s) {
    putSegment(result, ++iRow, test.segment(s).MD, test.segment(s), s);
    putConnectionRates(result, iRow, test.segment(s));
  }
  return result;
}

std::optional<XYData> deviceBranchData(const ProcessedTest& test, std::int32_t iBranch,
                                       const Session& session) {
  if (iBranch < 1 || iBranch > test.nDeviceBranches()) return std::nullopt;
  const ICDBranchRecord& record = test.deviceBranches[static_cast<std::size_t>(iBranch - 1)];
  XYData result(record.iSegments.size(), segmentVectors.size(), session);
  std::ranges::fill(result.values(), 0.0F);  // rates of connections are not given for devices
  for (std::size_t k = 0; k < record.iSegments.size(); ++k) {
    putSegment(result, k + 1, test.segment(record.iTubing[k]).MD, test.segment(record.iSegments[k]),
               static_cast<std::int32_t>(k + 1));
  }
  return result;
}

XYData segmentData(const ProcessedTest& test, std::int32_t iSegment, const Session& session) {
  // The array has the columns as rows, so the second value is out of range. Deliberate.
  XYData result(segmentVectors.size(), 1, session);
  std::ranges::fill(result.values(), 0.0F);
  putSegment(result, 1, test.segment(iSegment).MD, test.segment(iSegment), iSegment);
  return result;
}

std::vector<char> gridNames(const ProcessedTest& test) {
  const std::string_view grid = test.grid();
  const std::string word = std::string(grid.empty() ? "ROOT" : grid) + ' ';
  std::vector<char> names;
  names.reserve(word.size() * static_cast<std::size_t>(test.tables.nConnections));
  for (std::int32_t i = 0; i < test.tables.nConnections; ++i)
    names.insert(names.end(), word.begin(), word.end());
  return names;
}

}  // namespace lumbarn
