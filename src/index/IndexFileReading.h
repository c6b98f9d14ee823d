#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "../record/Form.h"
#include "../record/cFILETYPE.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "IndexFileGrid.h"

namespace lumbarn {

class RecordCursor;

/// The header words that an index file repeats from the files that it indexes.
struct LUMBARN_API IndexFileHead {
  bool init = false;                  ///< of an INIT file
  std::vector<std::int32_t> iHeader;  ///< INTEHEAD as stored
  std::int32_t iProgram = 0;          ///< word 95
  std::int32_t Nx = 0;                ///< words 9, 10, 11
  std::int32_t Ny = 0;
  std::int32_t Nz = 0;
  std::int32_t nActive = 0;  ///< see `statedActiveCells`
  std::int32_t iUnits = 0;   ///< word 3
  std::int32_t iPhases = 0;  ///< word 15
  std::int32_t iDay = 0;     ///< words 65, 66, 67
  std::int32_t iMonth = 0;
  std::int32_t iYear = 0;

  /// A header with fewer words leaves the rest as it was.
  void processINTEHEAD(std::vector<std::int32_t> words);
};

/// One report step of an index of a restart set.
struct IndexFileStep {
  double dTime = 0;        ///< days
  std::int32_t iStep = 0;  ///< report step number
  std::int32_t iDay = 0;   ///< this and the next two stay 0 when ITIME has three words or fewer
  std::int32_t iMonth = 0;
  std::int32_t iYear = 0;
  std::vector<std::int32_t> iTime;                                   ///< ITIME as stored
  std::vector<IndexFileGrid> grids = std::vector<IndexFileGrid>(1);  ///< the global grid first
};

/// One pass over the grids of an INIT file: the global grid, then local grids. An INIT file with local grids
/// has several passes. Names go through `cleanVectorName` before they are counted.
struct IndexFilePass {
  std::vector<IndexFileGrid> grids = std::vector<IndexFileGrid>(1);  ///< the global grid first
  std::vector<std::string> zAllNames;                                ///< of all grids, each once
};

/// The form of an index file; nothing for a file whose first record is not INTEHEAD.
LUMBARN_API std::optional<Form> formOfIndexFile(const std::string& path);

/// Takes the file over when it is an index file: name and form of a reader of one.
template <class Reader>
bool takeIndexFile(std::string_view zFile, Reader& reader) {
  std::string path(zFile);
  const auto form = formOfIndexFile(path);
  if (!form) return false;
  reader.FileName = std::move(path);
  reader.setForm(*form);
  reader.FORTRAN = true;
  return true;
}
LUMBARN_API void setIndexFileTypeProps(const FormFlags& flags, std::int32_t fileKindCode,
                                       const Session& session, cFILETYPE& xFile);

/// Reads the step whose TIME record is the next one, up to the next TIME or the end of the file. Throws
/// BadRecord; `step` holds what was read before.
LUMBARN_API void readIndexFileStep(RecordCursor& cursor, IndexFileStep& step);
/// Reads the pass whose first record is the next one. It ends at the end of the file, or where the next one
/// begins: before a NAME record without an LGRNAME in front when the current grid has its names already, and
/// before an LGRNAME of a local grid that this pass has. Throws BadRecord; `pass` holds what was read before.
LUMBARN_API void readIndexFilePass(RecordCursor& cursor, IndexFilePass& pass);

/// Reads a complete index of a restart set and hands on each step, also one that damage ends, as far as it
/// came. Only the index file is read. False when it cannot be opened, with a diagnosis, or the load was
/// cancelled. Throws BadRecord.
LUMBARN_API bool readRsspec(const std::string& path, const Form& form, Session& session, IndexFileHead& head,
                            const std::function<void(IndexFileStep&&)>& take);
/// The same for the passes of the index of an INIT file.
LUMBARN_API bool readInspec(const std::string& path, const Form& form, Session& session, IndexFileHead& head,
                            const std::function<void(IndexFilePass&&)>& take);

}  // namespace lumbarn
