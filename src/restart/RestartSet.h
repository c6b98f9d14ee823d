#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "../arrays/ArraySelection.h"
#include "../support/Export.h"
#include "qvEclipseSEQUENCE.h"

namespace lumbarn {

/// What is to be read of a restart file set, and how.
struct RestartSetOptions {
  std::string FileName;
  std::string Origin;
  bool Unified = false;
  std::int32_t iStart = 0;  ///< report step limits; negative: open
  std::int32_t iEnd = 0;
  bool ReadOnlyHeader = false;  ///< keep no arrays
  bool LoadData = true;         ///< keep values in memory; False: places only
  std::int32_t nMultList = 0;
  std::vector<std::string> zMultList{std::string()};  ///< the files; after a load those really used
  std::vector<std::int32_t> iRestartList{-1};         ///< report steps picked; the first -1: all
  bool qMarkers = false;                              ///< the extended well records are wanted

  // Not used by existing hosts.
  ArraySelection selection;    ///< patterns of array names
  bool AcceptDamaged = false;  ///< succeed with the steps before damage

  void setFiles(std::vector<std::string> files) {
    nMultList = static_cast<std::int32_t>(files.size());
    zMultList = std::move(files);
  }
};

/// Number and date of a step. `iSeqnum` is the number of the report step; operations that fetch a step take a
/// parameter of that name which is a position in the list of steps, from 1. A number may occur more than
/// once, which a remark reports; a position is unique.
struct RestartStep {
  std::int32_t iSeqnum = 0;  ///< report step number, see `stepNumber`
  double dTime = 0;          ///< days
  std::int32_t iDay = -1;
  std::int32_t iMonth = -1;
  std::int32_t iYear = -1;
  std::string zDate;  ///< with the time of day when there is one: "15 JUL 2003 6:30"
  std::int32_t nGrids = 1;
  std::string FileName;
};

/// What was read of a set.
struct LUMBARN_API RestartSet {
  std::vector<std::unique_ptr<qvEclipseSEQUENCE>> xSEQ;  ///< the steps kept, in the order read
  std::int32_t nGrids = 0;                               ///< this and the next five: of the last step read
  std::int32_t iLastStep = -1;
  std::int32_t iDay = -1;
  std::int32_t iMonth = -1;
  std::int32_t iYear = -1;
  std::vector<std::int32_t> iFirstHeader;  ///< INTEHEAD of the first step that had one
  bool qDamaged = false;  ///< something was damaged, or a step was not complete; not used by existing hosts

  std::int32_t NumSequences() const { return static_cast<std::int32_t>(xSEQ.size()); }
  /// A step that was kept, from 1. Throws Fault 9 outside.
  qvEclipseSEQUENCE& step(std::int32_t iSeqnum);
  const qvEclipseSEQUENCE& step(std::int32_t iSeqnum) const;
  std::vector<RestartStep> steps() const;  ///< in the order read
};

}  // namespace lumbarn
