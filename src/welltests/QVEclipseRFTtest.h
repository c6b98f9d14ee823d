#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../shapes/ByteTable.h"
#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "ProcessedTest.h"
#include "TestPart.h"

namespace lumbarn {

/// A table of a test, with one header for each column.
struct TestResult {
  XYData values;
  ByteTable headers;
};

/// One well test of a simulator's RFT file: the records from one TIME up to the next. They are sorted by name
/// into four tables: RFT and PLT (a row for each connection), segments and branches; what the file omits is
/// derived from them. Read once, by `getEclipseRFTtest`; from then on it only answers.
///
/// Results are singles, `XYData(row, column)`, with a header record of 233 bytes for each column. Rows,
/// columns, branches and segments count from 1. After qOK False, outputs are what they were before unless
/// stated otherwise. Run-time faults (number 9 for a column, branch or segment that is not there) are
/// reported through the session; data that are skipped are reported as a Diagnosis with the record's offset.
class LUMBARN_API QVEclipseRFTtest : public TestOptions {
 public:
  /// The tables and texts of the file lie in `memory`, which must outlive the test.
  explicit QVEclipseRFTtest(Session& session = Session::process(),
                            TestTable::Memory* memory = std::pmr::get_default_resource())
      : session_(&session), test_(memory) {}

  /// Reads the records up to the next TIME or the end of the file and derives the rest. qOK is True only when
  /// the file ended here. After a fault, damage or cancellation, the test holds the arrays that were read,
  /// with nothing derived from them.
  void getEclipseRFTtest(RecordWalk& reader, bool& qOK) { qOK = read(reader); }

  // Results. XYData and bHeaders of one kind have the same columns in the same order.
  /// RFT table, nConnections rows; columns from the depth column on come first, then those before it. qOK
  /// False when the test has none.
  void getRFTtestData(XYData& xyData, bool& qOK) const;
  void getRFTtestHeaders(ByteTable& bHeaders, bool& qOK) const;
  /// PLT columns, then RFT columns in the order of the PLT's rows.
  void getPLTtestData(XYData& xyData, bool& qOK) const;
  /// The same for the rows of one PLT branch.
  void getPLTBranchtestData(XYData& xyData, bool& qOK, std::int32_t iBranch) const;
  void getPLTtestHeaders(ByteTable& bHeaders, bool& qOK, bool qBranch) const;
  /// 31 columns for each segment of a branch.
  void getBRANCHtestData(XYData& xyData, bool& qOK, std::int32_t iBranch) const;
  /// 31 columns for each segment of a device branch. Column 1 is the measured depth of the tubing that the
  /// device empties into, column 23 the row; columns 24 to 31 are 0.
  void getICDBRANCHtestData(XYData& xyData, bool& qOK, std::int32_t iBranch) const;
  /// Always fails: its array is made 31 by 1 and filled 1 by 23. Kept, as no host can reach it.
  void getSegmenttestData(XYData& xyData, bool& qOK, std::int32_t iSegment) const;
  /// `iIndex` goes into the field of the branch number; a class word with "ICD" makes the class ICDBRAN, any
  /// other SEGBRAN.
  void getSEGtestHeaders(ByteTable& bHeaders, bool& qOK, std::int32_t iIndex, std::string_view zClass) const;
  /// Name of the grid and a blank, "ROOT " for the main grid, once for each connection. Without RFT columns
  /// bGrids stays as it is, and qOK is True.
  void getRFTtestGrids(std::vector<char>& bGrids, bool& qOK) const;

  /// Branch of a segment, or -1 when the segment or its branch is not known.
  std::int32_t BranchNumber(std::int32_t iSegment) const;
  /// The last segment is refused, unlike the last branch of the next two. Deliberate.
  bool validSegmentIndex(std::int32_t iSegment) const;
  bool validBranchIndex(std::int32_t iBranch) const;
  bool validICDBranchIndex(std::int32_t iBranch) const;

  // The same for callers within the library. Nothing where the test has none, and after a fault, which is
  // reported in the name of the operation above.
  bool read(RecordWalk& reader);
  /// A table of the kinds Rft, Plt, PltBranch, Branch and Devices; `iBranch` also goes into the headers of
  /// the last three.
  std::optional<TestResult> table(TestPart part, std::int32_t iBranch = 0) const;
  std::optional<XYData> segmentValues(std::int32_t iSegment) const;
  bool fillGrids(std::vector<char>& bGrids) const;

  // What was read.
  std::int32_t nRFT() const { return test_.tables.rft.count; }
  std::int32_t nPLT() const { return test_.tables.plt.count; }
  std::int32_t nSEG() const { return test_.tables.segments.count; }
  std::int32_t nBRN() const { return test_.tables.branches.count; }
  std::int32_t nConnections() const { return test_.tables.nConnections; }  ///< rows of the RFT and PLT tables
  std::int32_t nSegments() const { return test_.tables.nSegments; }
  std::int32_t nBranches() const { return test_.nBranches(); }  ///< without device branches
  std::int32_t nPLTBranches() const { return test_.nPltBranches; }
  std::int32_t nICDBranches() const { return test_.nDeviceBranches(); }
  std::int32_t nICDSegments() const { return test_.nDevices; }
  std::string dateText() const { return test_.header.dateText(); }  ///< "15 JUL 2003"; empty without a date
  std::optional<Moment> date() const { return test_.header.moment(); }  ///< see `WellTest::date`
  float time() const { return test_.header.time; }                      ///< as the file has it
  double days() const { return test_.header.days(); }
  std::string_view well() const { return test_.well(); }
  std::string_view grid() const { return test_.grid(); }  ///< empty for the main grid
  std::string_view origin() const { return {}; }          ///< no record has one
  std::string_view wellType() const { return test_.wellType(); }
  std::int32_t testNumber() const { return test_.number; }  ///< within the well, from 1; 0 before numbering
  void setTestNumber(std::int32_t number) { test_.number = number; }
  bool qRFT() const { return test_.tables.hasRft; }
  bool qPLT() const { return test_.tables.hasPlt; }
  bool qSEG() const { return test_.tables.hasSegments; }
  const TestTable& rftTable() const { return test_.tables.rft; }
  const TestTable& segmentTable() const { return test_.tables.segments; }

 private:
  std::optional<XYData> data(TestPart part, std::int32_t iBranch = 0) const;
  std::optional<ByteTable> headers(TestPart part) const;
  std::optional<ByteTable> segmentHeaders(std::int32_t iIndex, std::string_view zClass) const;

  Session* session_;
  ProcessedTest test_;
};

}  // namespace lumbarn
