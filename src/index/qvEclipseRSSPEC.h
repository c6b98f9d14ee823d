#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "../record/FormFlags.h"
#include "../record/cFILETYPE.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "IndexFileReading.h"

namespace lumbarn {

/// One report step of an index of a restart set.
class LUMBARN_API qvEclipseRSSPECSequence : public IndexFileStep {
 public:
  qvEclipseRSSPECSequence() = default;
  explicit qvEclipseRSSPECSequence(IndexFileStep step) : IndexFileStep(std::move(step)) {}

  void getEclipseSEQUENCE(RecordCursor& cursor) { readIndexFileStep(cursor, *this); }

  /// Names of one grid's arrays, in order. qOK False with none when there is no such grid.
  void GetSolutionNames(std::string_view zGrid, std::vector<std::string>& zNames, bool& qOK) const;
  /// Byte offsets in the restart file, from 0, of the header records of a grid's arrays of one name; mostly
  /// one. qOK False with none when there is no such grid or array. The low word of a position (POINTER) is
  /// taken as unsigned and the high one (POINTERB) as the bits above its 32.
  void GetPointersToSolutionNames(std::string_view zGrid, std::string_view zName,
                                  std::vector<std::uint64_t>& positions, bool& qOK) const;
  /// Number of a grid, from 1; an empty name means the global grid. 0 when there is none of that name.
  std::int32_t GridIndex(std::string_view zGrid) const { return indexOfGrid(grids, zGrid); }
};

/// The index of a restart set: which arrays each report step has, with type, size, place and range. Only the
/// index file is read; whether it agrees with the restart files is for `indexOfRestart` to find out.
///
/// Steps count from 1. Records that are shorter than NAME are used as far as they go.
class LUMBARN_API qvEclipseRSSPEC : public FormFlags {
 public:
  explicit qvEclipseRSSPEC(Session& session = Session::process()) : session_(&session) {}

  std::string FileName;
  IndexFileHead head;
  std::vector<qvEclipseRSSPECSequence> steps;

  /// Probes for INTEHEAD as the first keyword. Success keeps the name and the form.
  void CheckRESTARTFile(std::string_view zFile, bool& qOK);
  /// Reads the complete file, whose name and form `CheckRESTARTFile` found. qOK False when it is damaged,
  /// with a diagnosis, or the load was cancelled; the steps read until then stay, the last one as far as it
  /// came.
  void getRSSPECData(bool& qOK);
  void setRSSPECFileTypeProps(cFILETYPE& xFile, bool& qOK) const;
  void addSEQUENCE(qvEclipseRSSPECSequence step) { steps.push_back(std::move(step)); }

  /// Names of all arrays of a step, whatever the grid, each once.
  void GetVectors(std::int32_t iSequence, std::vector<std::string>& zVectors, bool& qOK) const;
  /// The same of all steps.
  void GetListofAllSolutionVectors(std::vector<std::string>& zVectors, bool& qOK) const;
  /// Date of each step as "15 JUL 2003"; empty for a step without one.
  void GetDates(std::vector<std::string>& zDates, bool& qOK) const;
  /// Report step numbers of all steps.
  void GetSequences(std::vector<std::int32_t>& iSequences, bool& qOK) const;
  /// Grids of the file: those with different names, the global grid among them. 0 without steps.
  std::int32_t GetNumberOfGrids() const;

 private:
  const qvEclipseRSSPECSequence& step(std::int32_t iSequence) const;

  Session* session_;
};

}  // namespace lumbarn
