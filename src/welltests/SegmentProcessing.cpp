#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "../support/Fault.h"
#include "QVEclipseRFTtest.h"

namespace lumbarn {

namespace {

constexpr double sameLength = 0.001;

struct SegmentField {
  SegColumn column;
  float SegmentRecord::*field;
};
constexpr SegmentField segmentFields[] = {
    {SegColumn::SEGDEPTH, &SegmentRecord::DEPTH}, {SegColumn::SEGLENST, &SegmentRecord::LENST},
    {SegColumn::SEGLENEN, &SegmentRecord::LENEN}, {SegColumn::SEGXCORD, &SegmentRecord::XCORD},
    {SegColumn::SEGYCORD, &SegmentRecord::YCORD}, {SegColumn::SEGPRES, &SegmentRecord::PRES},
    {SegColumn::SEGORAT, &SegmentRecord::ORAT},   {SegColumn::SEGWRAT, &SegmentRecord::WRAT},
    {SegColumn::SEGGRAT, &SegmentRecord::GRAT},   {SegColumn::SEGOVEL, &SegmentRecord::OVEL},
    {SegColumn::SEGWVEL, &SegmentRecord::WVEL},   {SegColumn::SEGGVEL, &SegmentRecord::GVEL},
    {SegColumn::SEGOHF, &SegmentRecord::OHF},     {SegColumn::SEGWHF, &SegmentRecord::WHF},
    {SegColumn::SEGGHF, &SegmentRecord::GHF},     {SegColumn::SEGCORAT, &SegmentRecord::CORAT},
    {SegColumn::SEGCWRAT, &SegmentRecord::CWRAT}, {SegColumn::SEGCGRAT, &SegmentRecord::CGRAT},
    {SegColumn::SEGCORTS, &SegmentRecord::CORTS}, {SegColumn::SEGCWRTS, &SegmentRecord::CWRTS},
    {SegColumn::SEGCGRTS, &SegmentRecord::CGRTS},
};

}  // namespace

/// One branch; of a list that has none, the empty record that it counts as. Throws Fault 9 outside.
BranchRecord& QVEclipseRFTtest::branch(std::int64_t i) {
  if (branches_.empty()) branches_.resize(1);
  if (i < 1 || i > static_cast<std::int64_t>(branches_.size())) throw Fault(FaultNumber::Subscript);
  return branches_[static_cast<std::size_t>(i - 1)];
}

const SegmentRecord& QVEclipseRFTtest::segment(std::int64_t i) const {
  if (i < 1 || i > static_cast<std::int64_t>(segments_.size())) throw Fault(FaultNumber::Subscript);
  return segments_[static_cast<std::size_t>(i - 1)];
}

void QVEclipseRFTtest::processBRANCHData() {
  if (nBranches_ < 1 || brn_.count < 1) return;
  qImpliedBranches_ = false;
  branches_.assign(static_cast<std::size_t>(nBranches_), {});
  for (std::size_t i = 0; i < branches_.size(); ++i) {
    BranchRecord& record = branches_[i];
    const auto value = [&](BrnColumn column) {
      return brnColumns_.has(column) ? rounded(brn_.column(brnColumns_[column], branches_.size())[i]) : 0;
    };
    record.iFirst = value(BrnColumn::BRNST);
    record.iLast = value(BrnColumn::BRNEN);
    const std::int64_t nSegments = std::int64_t{record.iLast} - record.iFirst + 1;
    if (nSegments != static_cast<std::int32_t>(nSegments)) throw Fault(FaultNumber::Overflow);
    record.nSegments = static_cast<std::int32_t>(nSegments);
    record.zName = std::to_string(i + 1);
    record.iNumber = static_cast<std::int32_t>(i + 1);
  }
}

/// Takes one row of the segment table. What would be computed from an array that the file lacks stays null:
/// null values must not enter arithmetic, where they would turn into numbers like any other.
void QVEclipseRFTtest::setSegment(std::size_t i) {
  SegmentRecord& record = segments_[i];
  const auto value = [&](SegColumn column) { return seg_.column(segColumns_[column], segments_.size())[i]; };
  for (const auto& [column, field] : segmentFields) {
    if (segColumns_.has(column)) record.*field = value(column);
  }
  if (segColumns_.has(SegColumn::SEGBRNO)) record.BRNO = rounded(value(SegColumn::SEGBRNO));
  if (segColumns_.has(SegColumn::SEGNXT)) record.NXT = rounded(value(SegColumn::SEGNXT));
  const bool oil = segColumns_.has(SegColumn::SEGORAT), water = segColumns_.has(SegColumn::SEGWRAT),
             gas = segColumns_.has(SegColumn::SEGGRAT);
  const auto ratio = [](float part, float whole) { return whole > 0 ? part / whole : 0; };
  if (oil && water) record.WCUT = ratio(record.WRAT, record.ORAT + record.WRAT);
  if (oil && gas) record.GOR = ratio(record.GRAT, record.ORAT);
  if (!segColumns_.has(SegColumn::SEGLENST) || !segColumns_.has(SegColumn::SEGLENEN)) return;
  record.MD = (record.LENST + record.LENEN) * 0.5F;
  record.LENTH = record.LENEN - record.LENST;
  if (!(record.LENTH > 0)) return;
  if (oil) record.ORATS = record.ORAT / record.LENTH;
  if (water) record.WRATS = record.WRAT / record.LENTH;
  if (gas) record.GRATS = record.GRAT / record.LENTH;
  record.ICD = ProcessICD && static_cast<double>(std::fabs(record.LENTH - ICDLength)) < sameLength;
}

/// Segments, and which of them stand for inflow control devices. A device is told by its length alone, so a
/// branch is taken for one of devices only when they are half of its segments or more.
void QVEclipseRFTtest::processSEGMENTData() {
  if (nSegments_ < 1 || seg_.count < 1) return;
  const std::int32_t nCounted = nBranches_ > 0 ? nBranches_ : nSegments_;
  std::vector<std::int32_t> nOfBranch(static_cast<std::size_t>(nCounted));
  std::vector<std::int32_t> nICDOfBranch(nOfBranch.size());
  segColumns_.set(seg_);
  segments_.assign(static_cast<std::size_t>(nSegments_),
                   SegmentRecord(static_cast<float>(session_->NullValue)));
  std::int32_t nICD = 0;
  for (std::size_t i = 0; i < segments_.size(); ++i) {
    setSegment(i);
    const SegmentRecord& record = segments_[i];
    if (record.ICD) ++nICD;
    if (record.BRNO == -1) continue;
    // Of a device, the branch itself is asked for, which a test without branches has one of.
    const auto nThere =
        record.ICD ? std::clamp(static_cast<std::int32_t>(branches_.size()), 1, nCounted) : nCounted;
    if (record.BRNO < 1 || record.BRNO > nThere) {
      const std::int32_t iColumn = segColumns_[SegColumn::SEGBRNO];
      tell(Message::WellTestReference, "SEGBRNO",
           seg_.columns[static_cast<std::size_t>(iColumn - 1)].headerAt,
           "segment on a branch that is not there", fmt::format("1 to {}", nThere),
           fmt::format("{}", record.BRNO), "left out the segments behind it, and all devices");
      throw ToldFault(FaultNumber::Subscript);
    }
    const auto at = static_cast<std::size_t>(record.BRNO - 1);
    ++nOfBranch[at];
    if (!record.ICD) continue;
    branch(record.BRNO).qICD = true;
    ++nICDOfBranch[at];
  }
  if (nICD == 0) return;
  clearSparseBranches(nOfBranch, nICDOfBranch);
  qICD_ = true;
  nICDSegments_ = nICD;  // with those whose flag is gone by now. Deliberate.
}

/// Takes the flag from branches of which less than half are devices, and from every segment in their range.
/// Ranges come from the file and may overlap, so their segments are cleared in one pass at the end.
void QVEclipseRFTtest::clearSparseBranches(std::span<const std::int32_t> nOfBranch,
                                           std::span<const std::int32_t> nICDOfBranch) {
  std::vector<std::int32_t> opened(segments_.size() + 1);  // ranges that begin here, less those that ended
  for (std::size_t b = 0; b < nOfBranch.size(); ++b) {
    if (nOfBranch[b] < 1 || 2 * std::int64_t{nICDOfBranch[b]} >= nOfBranch[b]) continue;
    BranchRecord& record = branch(static_cast<std::int64_t>(b + 1));
    record.qICD = false;
    if (record.iLast < record.iFirst) continue;
    if (record.iFirst < 1 || record.iLast > nSegments_) {
      tell(Message::WellTestReference, "BRNST", TestTable::workedOut, "range of a branch leaves the segments",
           fmt::format("1 to {}", nSegments_), fmt::format("{} to {}", record.iFirst, record.iLast),
           "left out the devices");
      throw ToldFault(FaultNumber::Subscript);
    }
    ++opened[static_cast<std::size_t>(record.iFirst - 1)];
    --opened[static_cast<std::size_t>(record.iLast)];
  }
  std::int32_t open = 0;
  for (std::size_t i = 0; i < segments_.size(); ++i) {
    open += opened[i];
    if (open > 0) segments_[i].ICD = false;
  }
}

}  // namespace lumbarn
