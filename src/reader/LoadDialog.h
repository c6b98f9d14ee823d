#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "../shapes/EclipseInfo.h"
#include "../summary/qvEclipseSPEC.h"
#include "../support/Export.h"

namespace lumbarn {

/// What a load dialog is told and what it gives back. It starts with the reader's settings; the dialog
/// changes what the person chose.
struct LoadDialogSettings {
  bool Unified = false;
  bool Formatted = false;
  bool byteSwap = false;
  bool FORTRAN = true;
  std::string zOrigin;
  std::string FileName;
  std::string zFileType;    ///< "SUMMARY", "SOLUTION", "INIT"
  bool hasLengths = false;  ///< along-well profiles can be had
  std::int32_t iStart = -1;
  std::int32_t iEnd = -1;
  bool Restart = false;  ///< follow the restart chain
  bool HorizWell = false;
  bool MiniSteps = false;
  bool InFlow = false;
  bool Connect = false;
  std::vector<std::string> zFiles;         ///< files of a multiple set
  std::vector<std::int32_t> iRestartList;  ///< report steps of a restart set, all of them; takes the choice
  bool writeIndex = false;                 ///< write an index of the restart set
};

/// A dialog through which a person chooses what to load; a host may supply one. Without it the reader takes
/// the silent path.
class LUMBARN_API LoadDialog {
 public:
  virtual ~LoadDialog();
  /// Shows the dialog until it is closed. `spec` has the list of the file's records and its vectors;
  /// `selection` is filled with the classes and members on offer, all chosen, and takes the choice. False
  /// when it was cancelled.
  virtual bool show(const qvEclipseSPEC& spec, ECLIPSEINFO& selection, LoadDialogSettings& settings) = 0;
  /// The same for files of arrays: `selection` has the names of the solution vectors on offer, all chosen,
  /// and takes the choice. A dialog that does not know such files takes them as they are.
  virtual bool showArrays(ECLIPSEINFO& selection, LoadDialogSettings& settings) {
    (void)selection;
    (void)settings;
    return true;
  }
};

}  // namespace lumbarn
