#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../shapes/ByteTable.h"
#include "../shapes/XYData.h"
#include "../support/Dates.h"
#include "../support/Fault.h"
#include "../support/Session.h"
#include "../vocabulary/Units.h"
#include "RecordWalk.h"
#include "TestColumns.h"
#include "TestRecords.h"
#include "TestTable.h"

namespace lumbarn {

/// One well test of a simulator's RFT file: the records from one TIME up to the next. They go by name into
/// four tables: RFT and PLT (a row for each connection), segments and branches; what the file leaves out is
/// worked out from them. Read once, by `getEclipseRFTtest`; from then on it only answers.
///
/// Results are singles, `XYData(row, column)`, with a header record of 233 bytes for each column. Rows,
/// columns, branches and segments count from 1. After qOK False, outputs are what they were before unless
/// told otherwise. Run-time faults (number 9 for a column, branch or segment that is not there) are reported
/// through the session; data that are left out are told as a Diagnosis with the record's place.
class QVEclipseRFTtest {
 public:
  /// The tables and texts of the file lie in `memory`, which must outlive the test.
  explicit QVEclipseRFTtest(Session& session = Session::process(),
                            TestTable::Memory* memory = std::pmr::get_default_resource())
      : session_(&session),
        rft_(10, memory),
        plt_(28, memory),
        seg_(28, memory),
        brn_(4, memory),
        welletc_{std::pmr::string(memory)} {}

  // Options of the PLT arithmetic. Nothing in the system ever changes those of a test, see `qvEclipseRFT`.
  bool ProcessPLT = true;  ///< re-form the PLT table at all
  bool SortedPLT = true;   ///< rows by measured depth
  bool ScaledPLT = true;   ///< rates by length of connection. False ends the re-forming of a test with rates
                           ///< in a fault: the table of results asks for the scaled columns all the same
  float ICDLength = 0.1F;  ///< length of the segments that stand for inflow control devices
  bool ProcessICD = true;

  /// Reads the records up to the next TIME or the end of the file and works the rest out. qOK is True only
  /// when the file ended here. After a fault, damage or cancelling, the test holds the arrays that were read,
  /// with nothing worked out from them.
  void getEclipseRFTtest(RecordWalk& reader, bool& qOK);

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
  /// Always fails: its array is made 31 by 1 and filled 1 by 23. Kept, as no host can come to it.
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

  // What was read.
  std::int32_t nRFT() const { return rft_.count; }
  std::int32_t nPLT() const { return plt_.count; }
  std::int32_t nSEG() const { return seg_.count; }
  std::int32_t nBRN() const { return brn_.count; }
  std::int32_t nConnections() const { return nConnections_; }  ///< rows of the RFT and of the PLT table
  std::int32_t nSegments() const { return nSegments_; }
  std::int32_t nBranches() const { return nBranches_; }  ///< those that are no device branches
  std::int32_t nPLTBranches() const { return nPLTBranches_; }
  std::int32_t nICDBranches() const { return nICDBranches_; }
  std::int32_t nICDSegments() const { return nICDSegments_; }
  std::string dateText() const;          ///< "15 JUL 2003"; empty without a date
  std::optional<Moment> date() const;    ///< see `WellTest::date`
  float time() const { return sTime_; }  ///< as the file has it
  /// TIME in days, by the unit in WELLETC: laboratory runs have hours.
  double days() const { return static_cast<double>(sTime_) / unitsPerDay(welletc_.textOf(welletcTime)); }
  const std::string& well() const { return zWell_; }
  const std::string& grid() const { return zGrid_; }        ///< empty for the main grid
  const std::string& origin() const { return zOrigin_; }    ///< nothing fills it
  std::int32_t testNumber() const { return iTestNumber_; }  ///< within the well, from 1; 0 before numbering
  void setTestNumber(std::int32_t number) { iTestNumber_ = number; }
  const std::string& wellType() const { return zWellType_; }
  bool qRFT() const { return qRFT_; }
  bool qPLT() const { return qPLT_; }
  bool qSEG() const { return qSEG_; }
  const TestTable& rftTable() const { return rft_; }
  const TestTable& segmentTable() const { return seg_; }

 private:
  // Reading: TestReading.cpp.
  void readRecord(RecordWalk& reader);
  void setDate(RecordCursor& cursor);
  void readWELLETC(RecordCursor& cursor);
  void readIndices(RecordCursor& cursor);
  TestTable* tableOf(std::string_view keyword);
  std::int32_t& rowCount(const TestTable& table);
  bool accepts(TestTable& table, std::string_view name, std::int64_t rows, std::uint64_t headerAt);
  void addRecord(RecordCursor& cursor, TestTable& table);
  void addArray(TestTable& table, std::string_view name, std::span<const float> data,
                std::uint64_t headerAt = TestTable::workedOut);
  void stored(const TestTable& table, std::string_view name);
  void tell(Message message, std::string_view keyword, std::uint64_t headerAt, std::string_view problem,
            std::string expected, std::string found, std::string_view action) const;

  // Working out: TestProcessing.cpp, PltProcessing.cpp, SegmentProcessing.cpp, DeviceBranches.cpp.
  /// A fault whose place in the file has been told as a Diagnosis.
  struct ToldFault : Fault {
    using Fault::Fault;
  };
  void step(const char* routine, void (QVEclipseRFTtest::*work)(), std::string_view lost);
  void processRecords();
  void setPointers();
  void setUNITS();
  void processRFTPLTRecords(TestTable& table);
  void processRFTRecords();
  void processPLTRecords();
  void setPLTBranches(std::size_t n);
  struct PltRates;
  PltRates ratesOfPLT(std::size_t n) const;
  void reformPLT(std::size_t n, std::int32_t m);
  void setPLTSegmentData();
  void processBRANCHData();
  void processSEGMENTData();
  void setSegment(std::size_t i);
  void clearSparseBranches(std::span<const std::int32_t> nOfBranch,
                           std::span<const std::int32_t> nICDOfBranch);
  void processICDData();
  void setICDBranches(std::size_t nMost);
  std::int32_t below(std::int32_t iSegment) const;
  ToldFault noWayToTubing(std::string found, FaultNumber number = FaultNumber::Subscript) const;

  // Results: TestResults.cpp, TestHeaders.cpp.
  bool sorted() const;
  std::string unitsOf(std::string_view zName) const;
  BranchRecord& branch(std::int64_t i);
  std::int32_t branchNumber(std::int32_t i) const;
  const SegmentRecord& segment(std::int64_t i) const;

  Session* session_;
  RecordWalk* reader_ = nullptr;  // only while reading
  std::uint64_t beginsAt_ = 0;    // byte offset of the first record

  TestTable rft_, plt_, seg_, brn_;
  TextArray welletc_;
  std::vector<float> sWELLPLT_;      // as read; nothing uses it
  std::vector<std::int32_t> iSort_;  // row order of the PLT table, from 1; empty: as they stand
  std::int32_t iDepthColumn_ = 1;
  std::int32_t nConnections_ = 0;
  std::int32_t nSegments_ = 0;
  std::int32_t nBranches_ = 0;
  std::int32_t nPLTBranches_ = 0;
  std::int32_t nICDBranches_ = 0;
  std::int32_t nICDSegments_ = 0;
  bool qDate_ = false;  // a date was read
  std::int32_t iDay_ = 0;
  std::int32_t iMonth_ = 0;
  std::int32_t iYear_ = 0;
  float sTime_ = 0;
  std::string zWell_, zGrid_, zOrigin_;
  std::int32_t iTestNumber_ = 0;
  std::string zGORUnits_;
  std::string zWellType_ = "STANDARD";
  bool qRFT_ = false;
  bool qIndices_ = false;  // connection indices were read
  bool qPLT_ = false;
  bool qSEG_ = false;
  bool qPLTBranches_ = false;
  bool qICD_ = false;
  ColumnNumbers<PltColumn> pltColumns_;
  ColumnNumbers<SegColumn> segColumns_;
  ColumnNumbers<BrnColumn> brnColumns_;
  // Without records of a kind, its list counts as one empty record.
  std::vector<BranchRecord> branches_;
  bool qImpliedBranches_ = false;  // branches behind the records have their place as number
  std::vector<SegmentRecord> segments_;
  std::vector<ICDBranchRecord> icdBranches_;
};

/// "STANDARD", "FRICTION" or "MULTISEG" from the text of WELLETC, in any case; "STANDARD" for any other.
std::string_view getWellType(std::string_view zText);

/// Kinds of arrays by name, trimmed and in any case.
bool checkRFTArray(std::string_view zName);     ///< PRESSURE, DEPTH, SWAT, SGAS
bool checkRFTPLTArray(std::string_view zName);  ///< CONIPOS, CONJPOS, CONKPOS, I, J, K
bool checkPLTArray(std::string_view zName);     ///< begins with CON
bool checkSEGArray(std::string_view zName);     ///< begins with SEG or BRN

}  // namespace lumbarn
