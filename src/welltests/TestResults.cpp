#include <algorithm>

#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "QVEclipseRFTtest.h"

namespace lumbarn {

namespace {

constexpr const char* className = "QVEclipseRFTtest";
constexpr std::size_t segmentColumns = 31;

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

}  // namespace

void QVEclipseRFTtest::getRFTtestData(XYData& xyData, bool& qOK) const {
  guarded(*session_, qOK, className, "getRFTtestData", [&] {
    if (rft_.count < 1 || nConnections_ < 1) return false;
    const auto n = static_cast<std::size_t>(nConnections_);
    XYData result(n, static_cast<std::size_t>(rft_.count), *session_);
    for (std::int32_t i = 0; i < rft_.count; ++i) {
      const std::int32_t from = (iDepthColumn_ - 1 + i) % rft_.count + 1;
      std::ranges::copy(rft_.column(from, n), result.column(static_cast<std::size_t>(i + 1)).begin());
    }
    xyData = std::move(result);
    return true;
  });
}

/// True when the rows of the PLT table are not those of the file in their order.
bool QVEclipseRFTtest::sorted() const {
  for (std::size_t r = 0; r < iSort_.size(); ++r) {
    if (iSort_[r] != static_cast<std::int32_t>(r + 1)) return true;
  }
  return false;
}

/// The PLT table is in its order already; the RFT table is in that of the file.
void QVEclipseRFTtest::getPLTtestData(XYData& xyData, bool& qOK) const {
  guarded(*session_, qOK, className, "getPLTtestData", [&] {
    if (plt_.count + rft_.count < 1 || nConnections_ < 1) return false;
    const auto n = static_cast<std::size_t>(nConnections_);
    XYData result(n, static_cast<std::size_t>(plt_.count + rft_.count), *session_);
    std::size_t iColumn = 0;
    for (std::int32_t i = 1; i <= plt_.count; ++i) {
      std::ranges::copy(plt_.column(i, n), result.column(++iColumn).begin());
    }
    const bool throughIndex = sorted();
    for (std::int32_t i = 1; i <= rft_.count; ++i) {
      const auto from = rft_.column(i, n);
      const auto to = result.column(++iColumn);
      if (throughIndex && iSort_.size() < n) throw Fault(FaultNumber::Subscript);
      for (std::size_t r = 0; r < n; ++r) {
        to[r] = from[throughIndex ? static_cast<std::size_t>(iSort_[r] - 1) : r];
      }
    }
    xyData = std::move(result);
    return true;
  });
}

void QVEclipseRFTtest::getPLTBranchtestData(XYData& xyData, bool& qOK, std::int32_t iBranch) const {
  guarded(*session_, qOK, className, "getPLTBranchtestData", [&] {
    const std::int32_t iNumbers = pltColumns_[PltColumn::CONBRNO];
    if (!qPLTBranches_ || iBranch < 1 || iBranch > nPLTBranches_) return false;
    if (iNumbers < 1 || iNumbers > plt_.count + rft_.count) return false;
    const auto n = static_cast<std::size_t>(nConnections_);
    const auto number = static_cast<float>(branchNumber(iBranch));
    const auto numbers = plt_.column(iNumbers, n);
    std::vector<std::size_t> selected;
    for (std::size_t r = 0; r < n; ++r) {
      if (numbers[r] == number) selected.push_back(r);
    }
    if (selected.empty()) return false;
    XYData result(selected.size(), static_cast<std::size_t>(plt_.count + rft_.count), *session_);
    std::size_t iColumn = 0;
    for (std::int32_t i = 1; i <= plt_.count; ++i) {
      const auto from = plt_.column(i, n);
      std::ranges::transform(selected, result.column(++iColumn).begin(),
                             [&](std::size_t r) { return from[r]; });
    }
    // A table in the file's own order gives the first RFT rows, not those of the branch. Deliberate: the two
    // ways have always differed.
    const bool throughIndex = sorted();
    for (std::int32_t i = 1; i <= rft_.count; ++i) {
      const auto from = rft_.column(i, n);
      const auto to = result.column(++iColumn);
      for (std::size_t k = 0; k < to.size(); ++k) {
        to[k] = from[throughIndex ? static_cast<std::size_t>(iSort_[selected[k]] - 1) : k];
      }
    }
    xyData = std::move(result);
    return true;
  });
}

void QVEclipseRFTtest::getBRANCHtestData(XYData& xyData, bool& qOK, std::int32_t iBranch) const {
  guarded(*session_, qOK, className, "getBRANCHtestData", [&] {
    if (!validBranchIndex(iBranch)) return false;
    const BranchRecord& record = branches_.at(static_cast<std::size_t>(iBranch - 1));
    segment(record.iFirst);  // before any memory is asked for: the range comes from the file
    segment(record.iLast);
    if (record.nSegments < 1) throw Fault(FaultNumber::Subscript);
    XYData result(static_cast<std::size_t>(record.nSegments), segmentColumns, *session_);
    std::size_t iRow = 0;
    for (std::int32_t s = record.iFirst; s <= record.iLast; ++s) {
      putSegment(result, ++iRow, segment(s).MD, segment(s), s);
      putConnectionRates(result, iRow, segment(s));
    }
    xyData = std::move(result);
    return true;
  });
}

void QVEclipseRFTtest::getICDBRANCHtestData(XYData& xyData, bool& qOK, std::int32_t iBranch) const {
  guarded(*session_, qOK, className, "getICDBRANCHtestData", [&] {
    if (!validICDBranchIndex(iBranch)) return false;
    const ICDBranchRecord& record = icdBranches_.at(static_cast<std::size_t>(iBranch - 1));
    XYData result(record.iSegments.size(), segmentColumns, *session_);
    std::ranges::fill(result.values(), 0.0F);  // rates of connections are not given for devices
    for (std::size_t k = 0; k < record.iSegments.size(); ++k) {
      putSegment(result, k + 1, segment(record.iTubing[k]).MD, segment(record.iSegments[k]),
                 static_cast<std::int32_t>(k + 1));
    }
    xyData = std::move(result);
    return true;
  });
}

void QVEclipseRFTtest::getSegmenttestData(XYData& xyData, bool& qOK, std::int32_t iSegment) const {
  guarded(*session_, qOK, className, "getSegmenttestData", [&] {
    if (!validSegmentIndex(iSegment)) return false;
    // The array has the columns as rows, so the second value is out of range. Deliberate.
    XYData result(segmentColumns, 1, *session_);
    std::ranges::fill(result.values(), 0.0F);
    putSegment(result, 1, segment(iSegment).MD, segment(iSegment), iSegment);
    xyData = std::move(result);
    return true;
  });
}

void QVEclipseRFTtest::getRFTtestGrids(std::vector<char>& bGrids, bool& qOK) const {
  guarded(*session_, qOK, className, "getRFTtestGrids", [&] {
    if (rft_.count < 1) return;
    const std::string word = zGrid_.empty() ? "ROOT " : zGrid_ + ' ';
    std::vector<char> grids;
    grids.reserve(word.size() * static_cast<std::size_t>(nConnections_));
    for (std::int32_t i = 0; i < nConnections_; ++i) grids.insert(grids.end(), word.begin(), word.end());
    bGrids = std::move(grids);
  });
}

}  // namespace lumbarn
