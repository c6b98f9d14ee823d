#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../files/FileSets.h"
#include "../record/RecordCursor.h"
#include "../record/cFILETYPE.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "../support/System.h"

namespace lumbarn {

/// Position of one stored row of a summary. Rows are indexed before they are read, so that the table is
/// allocated at its final size and only the wanted columns are read.
struct RowPlace {
  std::uint64_t dataAt = 0;      ///< byte offset of the PARAMS data
  std::int32_t iFile = 0;        ///< file of the set, from 0
  std::int32_t iStep = 0;        ///< SEQHDR records in that file up to the row
  std::int32_t iReportStep = 0;  ///< report step, see `RowSteps`
  float first = 0;               ///< the first value, nearly always TIME
  bool regular = true;           ///< offsets in the data can be computed
};

/// What is to be indexed.
struct RowIndexRequest {
  std::vector<std::string> zFiles;
  Form form;  ///< of files whose form cannot be detected
  bool unified = false;
  StepLimits limits;              ///< of the report step in a unified file
  PositionWords resume;           ///< position in a unified file from which to read, counted from 1
  std::int32_t nValues = 0;       ///< values that a row must have
  std::int32_t iRestartStep = 0;  ///< report step at which the run was restarted
  bool timeFirst = false;         ///< the first value of a row is TIME
  bool sparse = false;            ///< few values of each row will be read
};

/// The rows of one run.
struct RowIndex {
  std::vector<RowPlace> rows;
  std::vector<std::optional<FileStamp>> stamps;  ///< state of each file when it was indexed
  PositionWords resume;  ///< of the last SEQHDR read; as requested when there was none
  bool cutOff = false;   ///< the last row of the last file is incomplete: a run in progress, or stopped
  bool damaged = false;  ///< rows are missing because of damage of another sort
  bool faulty = false;   ///< damage after which no rows are missing, or TIME decreases
  bool cancelled = false;
  bool opened = false;  ///< False: there are files, and none of them can be opened
};

/// Walks the files record by record and reads only the first value of each row. Ends at the end of the last
/// file, or after the last wanted step. A damaged file contributes the rows before the damage, and of a set
/// of step files the next one follows. Of several generations of step files in one folder the rows end where
/// TIME decreases. All of this is reported as Diagnoses.
LUMBARN_API RowIndex indexRows(const RowIndexRequest& request, Session& session);

/// A cursor on one file of a set, in the form of its first header if that is sound, and the state of the
/// file. Null with a Diagnosis when the file cannot be opened. `sparse`: few of its bytes will be read.
LUMBARN_API std::unique_ptr<RecordCursor> openSummaryData(const std::string& path, const Form& form,
                                                          Session& session, std::optional<FileStamp>& stamp,
                                                          bool sparse);

}  // namespace lumbarn
