#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "TestColumns.h"
#include "TestProcessing.h"

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

/// One branch. A list without branches counts as one empty branch. Throws Fault 9 outside.
BranchRecord& branch(ProcessedTest& test, std::int64_t i) {
  if (test.branches.empty()) test.branches.resize(1);
  if (i < 1 || i > static_cast<std::int64_t>(test.branches.size())) throw Fault(FaultNumber::Subscript);
  return test.branches[static_cast<std::size_t>(i - 1)];
}

/// The segment table of a test.
struct SegmentSource {
  const TestTable& table;
  const TestOptions& options;
  ColumnNumbers<SegColumn> columns;
  std::size_t rows;

  bool has(SegColumn column) const { return columns.has(column); }
  float value(SegColumn column, std::size_t i) const { return table.column(columns[column], rows)[i]; }
};

/// Takes one row of the segment table. What would be computed from an array that the file lacks stays null:
/// null values must not enter arithmetic, where they would turn into numbers like any other.
void setSegment(SegmentRecord& record, const SegmentSource& source, std::size_t i) {
  for (const auto& [column, field] : segmentFields) {
    if (source.has(column)) record.*field = source.value(column, i);
  }
  if (source.has(SegColumn::SEGBRNO)) record.BRNO = rounded(source.value(SegColumn::SEGBRNO, i));
  if (source.has(SegColumn::SEGNXT)) record.NXT = rounded(source.value(SegColumn::SEGNXT, i));
  const bool oil = source.has(SegColumn::SEGORAT), water = source.has(SegColumn::SEGWRAT),
             gas = source.has(SegColumn::SEGGRAT);
  const auto ratio = [](float part, float whole) { return whole > 0 ? part / whole : 0; };
  if (oil && water) record.WCUT = ratio(record.WRAT, record.ORAT + record.WRAT);
  if (oil && gas) record.GOR = ratio(record.GRAT, record.ORAT);
  if (!source.has(SegColumn::SEGLENST) || !source.has(SegColumn::SEGLENEN)) return;
  record.MD = (record.LENST + record.LENEN) * 0.5F;
  record.LENTH = record.LENEN - record.LENST;
  if (!(record.LENTH > 0)) return;
  if (oil) record.ORATS = record.ORAT / record.LENTH;
  if (water) record.WRATS = record.WRAT / record.LENTH;
  if (gas) record.GRATS = record.GRAT / record.LENTH;
  record.ICD = source.options.ProcessICD &&
               static_cast<double>(std::fabs(record.LENTH - source.options.ICDLength)) < sameLength;
}

/// Clears the flag of branches of which less than half are devices, and of every segment in their range.
/// Ranges come from the file and may overlap, so their segments are cleared in one pass at the end.
void clearSparseBranches(TestWork& work, std::span<const std::int32_t> nOfBranch,
                         std::span<const std::int32_t> nICDOfBranch) {
  std::vector<SegmentRecord>& segments = work.test.segments;
  const std::int32_t nSegments = work.test.tables.nSegments;
  std::vector<std::int32_t> opened(segments.size() + 1);  // ranges that begin here, less those that ended
  for (std::size_t b = 0; b < nOfBranch.size(); ++b) {
    if (nOfBranch[b] < 1 || 2 * std::int64_t{nICDOfBranch[b]} >= nOfBranch[b]) continue;
    BranchRecord& record = branch(work.test, static_cast<std::int64_t>(b + 1));
    record.qICD = false;
    if (record.iLast < record.iFirst) continue;
    if (record.iFirst < 1 || record.iLast > nSegments) {
      work.report(Message::WellTestReference, "BRNST", TestTable::derived,
                  "range of a branch leaves the segments", fmt::format("1 to {}", nSegments),
                  fmt::format("{} to {}", record.iFirst, record.iLast), "left out the devices");
      throw ReportedFault(FaultNumber::Subscript);
    }
    ++opened[static_cast<std::size_t>(record.iFirst - 1)];
    --opened[static_cast<std::size_t>(record.iLast)];
  }
  std::int32_t open = 0;
  for (std::size_t i = 0; i < segments.size(); ++i) {
    open += opened[i];
    if (open > 0) segments[i].ICD = false;
  }
}

}  // namespace

void processBRANCHData(TestWork& work) {
  ProcessedTest& test = work.test;
  const TestTable& table = test.tables.branches;
  if (test.tables.nBranches < 1 || table.count < 1) return;
  ColumnNumbers<BrnColumn> columns;
  columns.set(table);
  test.impliedBranches = false;
  test.branches.assign(static_cast<std::size_t>(test.tables.nBranches), {});
  for (std::size_t i = 0; i < test.branches.size(); ++i) {
    BranchRecord& record = test.branches[i];
    const auto value = [&](BrnColumn column) {
      return columns.has(column) ? rounded(table.column(columns[column], test.branches.size())[i]) : 0;
    };
    record.iFirst = value(BrnColumn::BRNST);
    record.iLast = value(BrnColumn::BRNEN);
    const std::int64_t nSegments = std::int64_t{record.iLast} - record.iFirst + 1;
    if (nSegments != static_cast<std::int32_t>(nSegments)) throw Fault(FaultNumber::Overflow);
    record.nSegments = static_cast<std::int32_t>(nSegments);
    record.iNumber = static_cast<std::int32_t>(i + 1);
  }
}

/// A device is recognized by its length alone, so a branch is taken for one of devices only when they are
/// half of its segments or more.
void processSEGMENTData(TestWork& work) {
  ProcessedTest& test = work.test;
  const TestTables& tables = test.tables;
  if (tables.nSegments < 1 || tables.segments.count < 1) return;
  const std::int32_t nCounted = tables.nBranches > 0 ? tables.nBranches : tables.nSegments;
  std::vector<std::int32_t> nOfBranch(static_cast<std::size_t>(nCounted));
  std::vector<std::int32_t> nICDOfBranch(nOfBranch.size());
  SegmentSource source{tables.segments, work.options, {}, static_cast<std::size_t>(tables.nSegments)};
  source.columns.set(tables.segments);
  test.segments.assign(source.rows, SegmentRecord(static_cast<float>(work.report.session.NullValue)));
  std::int32_t nICD = 0;
  for (std::size_t i = 0; i < test.segments.size(); ++i) {
    SegmentRecord& record = test.segments[i];
    setSegment(record, source, i);
    if (record.ICD) ++nICD;
    if (record.BRNO == -1) continue;
    // Of a device, the branch itself is asked for, which a test without branches has one of.
    const auto nThere =
        record.ICD ? std::clamp(static_cast<std::int32_t>(test.branches.size()), 1, nCounted) : nCounted;
    if (record.BRNO < 1 || record.BRNO > nThere) {
      work.report(Message::WellTestReference, "SEGBRNO", tables.segments.headerOf("SEGBRNO"),
                  "segment on a branch that is not there", fmt::format("1 to {}", nThere),
                  fmt::format("{}", record.BRNO), "left out the segments behind it, and all devices");
      throw ReportedFault(FaultNumber::Subscript);
    }
    const auto at = static_cast<std::size_t>(record.BRNO - 1);
    ++nOfBranch[at];
    if (!record.ICD) continue;
    branch(test, record.BRNO).qICD = true;
    ++nICDOfBranch[at];
  }
  if (nICD == 0) return;
  clearSparseBranches(work, nOfBranch, nICDOfBranch);
  test.hasDevices = true;
  test.nDevices = nICD;  // with those whose flag is cleared by now. Deliberate.
}

}  // namespace lumbarn
