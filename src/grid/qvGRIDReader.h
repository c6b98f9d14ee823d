#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "../record/FormFlags.h"
#include "../record/cFILETYPE.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "GridFile.h"

namespace lumbarn {

/// Reads the geometry of grids, of the older GRID file and of the EGRID file, into one store object for each
/// grid: first the global one, then the local ones in the order of the file.
///
/// Nothing in a file is trusted: an array that does not go with the sizes of its grid, sizes that cannot be,
/// and damage end the read with a Diagnosis; grids that were whole before it stay and are given out. A
/// parent, host cell or connection that is not there is told and left out, and the read goes on.
class LUMBARN_API qvGRIDReader : public FormFlags {
 public:
  explicit qvGRIDReader(Session& session = Session::process()) : session_(&session) {}

  bool Coarsened = true;      ///< make blocks of coarsened cells one cell, where the file has such
  std::int32_t FileType = 0;  ///< 1 GRID, 2 EGRID
  std::string GridName;       ///< of the current grid, "ROOT" for the global one
  std::int32_t GridNumber = 0;
  std::int32_t nGrids = 0;
  std::vector<std::shared_ptr<Hadrick>> xGrids;  ///< grid n at n - 1
  std::shared_ptr<Hadrick> ThisGridData;         ///< the current grid: the last one read or given out
  std::string FileName;
  std::string HPGFolder;  ///< folder for cached geometry, told to each store object
  std::string Origin;
  /// Keep active cells only. A formatted file, and a grid with coarsened cells, is read as if this were
  /// False.
  bool CompressOnLoad = false;
  bool NoInactive = false;  ///< all cells of a GRID file count as active
  bool qDamaged = false;    ///< the last read met damage; xGrids has the grids that are complete

  /// True when the first record is DIMENS, or FILEHEAD. Sets the form and remembers the name; on False the
  /// object is as it was.
  bool CheckGRIDFile(std::string_view zFile) { return check(zFile, false, "CheckGRIDFile"); }
  bool CheckEGRIDFile(std::string_view zFile) { return check(zFile, true, "CheckEGRIDFile"); }

  /// Reads all grids of the file. qOK False when it is not there, damaged or not what it seems, or the load
  /// was cancelled; nGrids and xGrids have the grids that were whole before.
  void ReadEclipseGridFile(bool& qOK);
  void ReadEclipseEGridFile(bool& qOK);
  /// The same from any source, or with none from the file, in the form of the flags and of the type that
  /// FileType says. False instead of qOK; throws BadRecord for damage.
  bool readGrids(std::shared_ptr<const ByteSource> source = nullptr);

  /// Makes the last of xGrids the current one, when they came from elsewhere.
  void setRead();
  /// The store object of grid iGrid, from 1; qOK False when there is none of that number.
  void GetGRIDData(std::int32_t iGrid, std::shared_ptr<Hadrick>& cGridData, bool& qOK);
  /// Sets a descriptor from this object's flags.
  void setGRIDFileTypeProps(cFILETYPE& xFile, bool& qOK) const;

 private:
  bool check(std::string_view zFile, bool egrid, const char* routine);

  Session* session_;
};

}  // namespace lumbarn
