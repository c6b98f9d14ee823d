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

/// Takes names that hold "INTEHEAD", "TABDIMS" or "TRANNNC" off the front of a list: they are no arrays that
/// a host could show.
LUMBARN_API void RemoveUnwantedHeaders(std::vector<std::string>& zNames);

/// One pass over the grids of an INIT file, as its index lists it.
class LUMBARN_API qvEclipseINSPEC : public IndexFilePass {
 public:
  qvEclipseINSPEC() = default;
  explicit qvEclipseINSPEC(IndexFilePass pass) : IndexFilePass(std::move(pass)) {}

  void getEclipseINSPEC(RecordCursor& cursor) { readIndexFilePass(cursor, *this); }

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
class LUMBARN_API qvEclipseINSPECFile : public FormFlags {
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

}  // namespace lumbarn
