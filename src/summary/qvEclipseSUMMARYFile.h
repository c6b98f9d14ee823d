#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../record/FormFlags.h"
#include "../shapes/OnlyList.h"
#include "../shapes/SourceData.h"
#include "../shapes/XYData.h"
#include "../support/Dates.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "HorizontalData.h"
#include "SummaryChain.h"
#include "SummaryVector.h"
#include "qvEclipseSPEC.h"
#include "qvEclipseSUMMARY.h"

namespace lumbarn {

/// One row of a summary table, beside its values.
struct SummaryRow {
  std::int32_t iRun = 1;         ///< run of the restart chain that wrote it, 1 is the newest
  std::int32_t iFile = 1;        ///< file of that run's set, from 1
  std::int32_t iStep = 0;        ///< SEQHDR records in that file up to the row
  std::int32_t iReportStep = 0;  ///< report step, as `iStart` and `iEnd` limit it
};

/// The rows of a run, of that number in the chain.
LUMBARN_API std::vector<SummaryRow> summaryRows(const qvEclipseSUMMARY& summary, std::int32_t iRun);

/// Connection vectors of a run or a chain, with their values and lengths.
struct ConnectionData {
  ByteTable bHeaders;
  XYData sData;
  std::vector<float> sLengths;
  std::string zUnits;
};

/// A restart chain of summaries: reads the run that is named, and unless `NoRestart` stands those it
/// restarted from, and merges them into one table. Runs are kept newest first until they are fetched, which
/// can be done once.
class LUMBARN_API qvEclipseSUMMARYFile : public FormFlags {
 public:
  explicit qvEclipseSUMMARYFile(Session& session = Session::process())
      : session_(&session), horizontal_(session) {}

  std::string zFileName;
  bool Unified = false;
  std::int32_t NumRestart = 0;  ///< earlier runs read
  std::int32_t iStart = -1;     ///< step limits; -1 is open
  std::int32_t iEnd = -1;
  std::int32_t iPosition = -1;  ///< resume position of the newest run, before and after reading
  std::int32_t iPositionHigh = -1;
  std::int32_t iUnits = -1;  ///< unit system of the newest run
  bool NoRestart = false;
  bool qPerforations = false;  ///< the vectors hold perforation data
  std::int32_t nMult = 0;      ///< multiple files of the newest run
  std::vector<std::string> zMult;
  std::vector<std::unique_ptr<qvEclipseSPEC>>
      xSPEC;  ///< may hold the facade's object for the newest run before reading
  std::vector<std::unique_ptr<qvEclipseSUMMARY>> xSUMMARY;
  ByteTable bOnly = emptyOnlyList();
  bool qOnly = true;
  std::string zOrigin;
  bool SaveScratchFile = false;
  std::string zScratchFile;
  std::vector<bool> qMask;  ///< the key mask in use
  std::string zStartDate;   ///< "1 JAN 2015", of the newest run

  // Beyond what hosts of old ask for.
  std::vector<std::string> onlyPatterns;    ///< vectors to keep, by full name or pattern; empty: all
  std::vector<std::string> exceptPatterns;  ///< vectors to leave out
  std::vector<std::string> unmatched;       ///< patterns that no run of the chain had a vector for
  bool AcceptDamaged = false;               ///< take what was read before damage as a success
  bool qDamaged = false;                    ///< something of what was read is damaged or not whole

  /// Reads the whole chain. False when the newest run cannot be read; an earlier run that cannot only ends
  /// the chain.
  void ReadSUMMARYData(bool& qOK);
  /// The merged table and its headers; releases the runs, so it can be called once. A chain with completion
  /// vectors gives the rows up to the first run that has them.
  void GetSUMMARYData(XYData& xyData, ByteTable& bHeaders, bool& qOK);
  /// The same with headers as string numbers into stores.
  void GetStoreSUMMARYData(XYData& xyData, AttributeStores& xStore, ByteTable& bPointers, bool& qOK);
  /// Source information: slots 2, 3, 4, 6, 7, 14, 23, 54, 56 and 57.
  void getFileInfo(SourceData& vSourceData, bool& qOK) const;

  /// Builds the profiles along horizontal wells from the runs that are held, so before the fetch. True with
  /// nothing built when neither table is asked for; False without a message when the connection vectors or
  /// their lengths do not fit.
  void getHorizontalData(bool qInflow, bool qConnect, bool qMiniSteps, bool& qOK);
  /// One step, from 1, of a kept table, and its date: xyData(iColumn, iRow), the lengths in row 1.
  void getHorizontalData(std::int32_t iStep, bool qInflow, XYData& xyData, ByteTable& bHeaders,
                         std::string& zDate, bool& qOK);
  /// Date text, "15 JUL 2003", of a row of the newest run, from 1.
  void GetDateStamp(std::int32_t iRow, std::string& zDate, bool& qOK);

  void SetbOnly(const ByteTable& only, bool qSense) { bOnly = only, qOnly = qSense; }
  void setMultList(std::int32_t n, const std::vector<std::string>& files, bool& qOK);

  /// The key mask: all True; as given; or one entry for each item of the session's only-list, True for those
  /// that stand in a text of comma-separated mnemonics, in the given items, or in the first 16 bytes of
  /// bOnly's entries.
  void SetKeys();
  void SetKeys(const std::vector<bool>& mask) { qMask = mask; }
  void SetSUMMARYKeys(std::string_view zMnemonics);
  void SetSUMMARYKeysFromOnly(const std::vector<std::string>& zItems);
  void SetSUMMARYKeysFrombOnly();

  /// Rows of the table that was read or fetched: before the fetch those of the newest run.
  const std::vector<SummaryRow>& rows() const { return rows_; }
  /// The vectors of the table that was fetched, one for each column, in order.
  const std::vector<SummaryVector>& vectors() const { return vectors_; }
  /// Whether each row of that table has a value of a column, from 1. Rows of a run of the chain that does not
  /// have the vector contain 0.
  std::vector<bool> rowsWithValues(std::size_t iColumn) const;
  /// Vectors of that table; before the fetch those read of the newest run.
  std::int32_t columns() const;
  /// Moment at which the newest run's time is 0, with its time of day.
  std::optional<Moment> start() const { return start_; }
  std::int32_t unitSystem() const { return iUnits; }

  // What stands behind the operations. Without another word, what fails is thrown.
  /// False after a failure, which may be thrown too.
  bool readChain();
  /// False for a failure that was reported, or needs no report.
  bool fetch(XYData& xyData, ByteTable& bHeaders);
  bool fetch(XYData& xyData, AttributeStores& xStore, ByteTable& bPointers);
  SourceData fileInfo() const;
  bool buildProfiles(bool qInflow, bool qConnect, bool qMiniSteps);
  HorizontalTable profilesOf(std::int32_t iStep, bool qInflow) const;
  /// Nothing for a row without a date.
  std::optional<std::string> dateOf(std::int32_t iRow);

 private:
  std::unique_ptr<qvEclipseSPEC> specOfNewestRun(std::unique_ptr<qvEclipseSPEC> given);
  void release();
  bool readSpecOf(qvEclipseSPEC& spec);
  bool narrow(qvEclipseSPEC& spec, const std::vector<bool>& mask);
  bool selectVectorsOf(qvEclipseSPEC& spec, bool newest);
  void applyPatterns(qvEclipseSPEC& spec, bool newest);
  std::unique_ptr<qvEclipseSUMMARY> readData(qvEclipseSPEC& spec, bool newest);
  std::unique_ptr<qvEclipseSPEC> earlierRun(const qvEclipseSPEC& later);
  template <class ReadHeaders, class AddHeaders>
  bool fetchRuns(XYData& xyData, ReadHeaders readHeaders, AddHeaders addHeaders);
  void assemble(const ChainPlan& plan, std::vector<XYData>& tables, XYData& xyData);
  std::optional<ConnectionData> getDataUsedForHorizontalWells();

  Session* session_;
  std::vector<SummaryRow> rows_;
  std::vector<SummaryVector> vectors_;
  ChainPlan plan_;  // of the table that was fetched
  std::optional<Moment> start_;
  std::string timeUnit_;  // of the newest run
  HorizontalData horizontal_;
  bool profilesOfChain_ = false;  // profiles were made from rows of several runs
  std::vector<float> times_;      // of the newest run's rows; kept when profiles are built
};

}  // namespace lumbarn
