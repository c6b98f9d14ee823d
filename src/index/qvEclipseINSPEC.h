#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "../record/FormFlags.h"
#include "../record/cFILETYPE.h"
#include "../support/Session.h"
#include "IndexFileGrid.h"
#include "qvEclipseRSSPEC.h"

namespace lumbarn {

class RecordCursor;

/// Takes names that hold "INTEHEAD", "TABDIMS" or "TRANNNC" off the front of a list: they are no arrays that
/// a host could show.
void RemoveUnwantedHeaders(std::vector<std::string>& zNames);

/// One pass over the grids of an INIT file, as its index lists it: the global grid, then local grids. An INIT
/// file with local grids has several passes. Names go through `CleanUpVectorNames` before they are counted.
class qvEclipseINSPEC {
 public:
  std::vector<IndexFileGrid> grids = std::vector<IndexFileGrid>(1);  ///< the global grid first
  std::vector<std::string> zAllNames;                                ///< of all grids, each once

  /// Reads the pass whose first record is the next one. It ends at the end of the file, or where the next
  /// one begins: before a NAME record without an LGRNAME in front when the current grid has its names
  /// already, and before an LGRNAME of a local grid that this pass has. Throws BadRecord. What was read
  /// before stays.
  void getEclipseINSPEC(RecordCursor& cursor);

  /// Names of one grid's arrays, without unwanted ones in front. qOK False with none when there is no such
  /// grid.
  void GetINITNames(std::string_view zGrid, std::vector<std::string>& zNames, bool& qOK) const;
  /// Byte offsets in the INIT file, from 0, of the header records of a grid's arrays of one name. qOK False
  /// with none when there is no such grid or array.
  void GetPointersToINITNames(std::string_view zGrid, std::string_view zName,
                              std::vector<std::uint64_t>& positions, bool& qOK) const;
  /// Number of a grid, from 1; an empty name means the global grid. 0 when there is none of that name.
  std::int32_t GridIndex(std::string_view zGrid) const { return indexOfGrid(grids, zGrid); }
};

/// The index of an INIT file. Only the index file is read; whether it agrees with the INIT file is for
/// `indexOfInit` to find out. Passes count from 1.
class qvEclipseINSPECFile : public FormFlags {
 public:
  explicit qvEclipseINSPECFile(Session& session = Session::process()) : session_(&session) {}

  std::string FileName;
  IndexFileHead head;
  std::vector<qvEclipseINSPEC> passes;

  /// Probes for INTEHEAD as the first keyword. Success keeps the name and the form.
  void CheckINSPECFile(std::string_view zFile, bool& qOK);
  /// Reads the complete file, whose name and form `CheckINSPECFile` found. qOK False when it is damaged, with
  /// a diagnosis, or the load was cancelled; what was read until then stays.
  void getINSPECData(bool& qOK);
  void setINSPECFileTypeProps(cFILETYPE& xFile, bool& qOK) const;

  /// Names of all arrays of all grids, each once, without unwanted ones in front.
  void GetVectors(std::vector<std::string>& zVectors, bool& qOK) const;
  /// The same for the global grid.
  void GetInitVectorList(std::vector<std::string>& zVectors, bool& qOK) const;
  /// A pass; null when there is none of that number.
  const qvEclipseINSPEC* GetINSPEC(std::int32_t iPass) const;

 private:
  Session* session_;
};

/// The index of an INIT file: read from `inspec` if that is not empty and agrees with the file, otherwise
/// made by walking it. An index that does not agree is reported as a diagnosis.
RestartIndex indexOfInit(Session& session, const std::string& file, const std::string& inspec);

}  // namespace lumbarn
