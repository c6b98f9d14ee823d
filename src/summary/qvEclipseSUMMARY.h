#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "../record/FormFlags.h"
#include "../record/cFILETYPE.h"
#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "RowIndex.h"

namespace lumbarn {

class ScratchFile;

/// The data files of one run: finds its rows, reads the wanted columns of them straight into the table that
/// is handed out. Set the members, call `getEclipseSummaryFile`, then fetch.
class LUMBARN_API qvEclipseSUMMARY : public FormFlags {
 public:
  explicit qvEclipseSUMMARY(Session& session = Session::process()) : session_(&session) {}

  std::string zFileName;  ///< any file of the run; the unified file is found from it
  bool Unified = false;
  std::int32_t iStart = 0;  ///< step limits as given; -1 is open
  std::int32_t iEnd = 0;
  std::int32_t iPosition = -1;  ///< resume position in a unified file, before and after reading
  std::int32_t iPositionHigh = -1;
  bool UseBufferedInput = usesBufferedInput(13);
  std::int32_t nFiles = 0;  ///< multiple files to read
  std::vector<std::string> zFiles;
  std::int32_t nRows = 0;            ///< rows found
  std::vector<std::int32_t> iSteps;  ///< per row the report steps seen in its file; see `stepsAfterGrowth`
  bool qSubset = false;              ///< not all vectors are wanted
  std::vector<bool> qKeys;           ///< the mask
  std::int32_t nSelected = 0;
  std::vector<std::int32_t> iSelected;  ///< numbers of the wanted vectors, from 1
  std::int32_t nAllKeys = 0;
  bool SaveScratchFile = false;   ///< hand a scratch file over instead of its content
  std::string zScratchFile;       ///< the scratch file handed over
  bool AcceptDamaged = false;     ///< keep the rows before damage and succeed
  bool qDamaged = false;          ///< damage was met, or the last row is incomplete
  std::int32_t iRestartStep = 0;  ///< report step at which the run was restarted
  bool timeFirst = true;          ///< the first vector is TIME

  /// Selects the vectors with True.
  void setKeyMask(const std::vector<bool>& qMask);
  void setMultList(std::int32_t n, const std::vector<std::string>& files);

  /// Reads the run. A last record that is not whole ends it with success; so does damage with AcceptDamaged.
  /// The rows before a failure stay. When the table cannot be allocated its rows are read at the fetch,
  /// through a scratch file.
  void getEclipseSummaryFile(bool& qOK);

  /// The table, nRows by selected vectors; moved out, so fetched once. When it could not be allocated:
  /// through a scratch file, which with SaveScratchFile is left to the host under zScratchFile and XYData
  /// stays empty.
  void getSummaryArray(XYData& xyData, bool& qOK);
  /// A copy of the columns of other vectors: one True for each wanted one in qMask, which counts all vectors
  /// of the run. Reads from the files what is not at hand.
  void getSummaryArray(XYData& xyData, const std::vector<bool>& qMask, bool& qOK);
  /// All rows of one selected vector, from 1.
  void GetColumnData(std::int32_t iVector, std::vector<float>& sValues, bool& qOK);
  void GetReportSteps(std::vector<std::int32_t>& iReportSteps, bool& qOK) const;

  // Beyond what hosts ask for: what stands behind these operations.
  /// False after a failure, which is reported.
  bool read();
  // Throw what fails. A table of a canceled load is not whole.
  XYData takeTable();
  XYData tableOf(const std::vector<bool>& qMask);
  std::vector<float> column(std::int32_t iVector);
  const std::vector<RowPlace>& rows() const { return index_.rows; }

 private:
  bool readRun();
  bool setUnifiedName();
  XYData readColumns(std::span<const std::int32_t> vectors);
  void readInto(XYData& table, std::span<const std::int32_t> vectors);
  void dropDamagedRows(Diagnosis& diagnosis, std::size_t good);
  XYData throughScratchFile();
  void writeScratchFile(ScratchFile& scratch);

  Session* session_;
  RowIndex index_;
  XYData sData_;
  bool tooLarge_ = false;  // the table could not be allocated
};

/// What `iSteps` holds after rows were added one by one to a store that starts with a capacity and grows by
/// 100: the steps are made new at each growth without keeping what they held, so earlier rows read 0. Hosts
/// rely on it.
LUMBARN_API std::vector<std::int32_t> stepsAfterGrowth(std::span<const RowPlace> rows, std::int64_t capacity);

/// Rows for which a store is sized at its first row: the size of the files over that of a row of wanted
/// values.
LUMBARN_API std::int64_t estimatedRows(std::uint64_t bytes, std::int64_t nFiles, std::int64_t nVectors);

}  // namespace lumbarn
