#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../record/RecordCursor.h"
#include "../record/cFILETYPE.h"
#include "../support/Session.h"

namespace lumbarn {

/// One stored row of a summary: where its values stand. Rows are found first and read after, so that the
/// table can be made at its final size and only wanted columns are ever read.
struct RowPlace {
  std::uint64_t dataAt = 0;  ///< byte offset of the PARAMS data
  std::int32_t iFile = 0;    ///< file of the set, from 0
  std::int32_t iStep = 0;    ///< report steps seen in that file, this one included
  bool regular = true;       ///< places in the data follow from arithmetic
  float first = 0;           ///< the first value, nearly always the time: the walk has it at hand
};

/// What is to be indexed.
struct RowIndexRequest {
  std::vector<std::string> zFiles;
  Form form;  ///< of files whose own first bytes do not tell
  bool unified = false;
  std::int32_t iFirst = -1;  ///< limits of the sequence value in a unified file, -1: open
  std::int32_t iLast = -1;
  PositionWords resume;      ///< position in a unified file from which to read, counted from 1
  std::int32_t nValues = 0;  ///< values that a row must have
};

/// The rows of one run.
struct RowIndex {
  std::vector<RowPlace> rows;
  PositionWords resume;  ///< of the last SEQHDR read; as requested when there was none
  bool cutOff = false;  ///< the last record of the last file is not whole: a run that goes on, or was stopped
  bool damaged = false;  ///< reading ended at damage of another kind
  bool cancelled = false;
  bool fellBack = false;  ///< ended where the sequence values of a multiple set fall back
  bool opened = true;     ///< False: a file could not be opened
};

/// Walks the files record by record and reads no value of a row but the first. Ends at the end of the last
/// file, behind the last wanted step, or at the first damage, which is told as a Diagnosis; the rows before
/// it are in the index.
RowIndex indexRows(const RowIndexRequest& request, Session& session);

/// A cursor on one file of a set, its form taken from its own first bytes if they tell. Null with a Diagnosis
/// when the file cannot be opened.
std::unique_ptr<RecordCursor> openSummaryData(const std::string& path, const Form& form, Session& session);

}  // namespace lumbarn
