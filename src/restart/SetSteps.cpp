#include "SetSteps.h"

#include "../files/FileSets.h"

namespace lumbarn {

WantedSteps::WantedSteps(std::string_view zKind, bool qUnified, std::int32_t iStart, std::int32_t iEnd)
    : qUnified_(qUnified) {
  bool qOK = false;
  setEclipseSequenceLimits(zKind, qUnified, iStart, iEnd, iFirst, iLast, qOK);
}

bool WantedSteps::contain(std::int32_t iStep) const {
  bool qUse = false, qPast = false, qOK = false;
  checkSequence(qUnified_, iStep, iFirst, iLast, qUse, qPast, qOK);
  return qUse;
}

bool WantedSteps::endAt(std::int32_t iStep) const {
  bool qExit = false, qOK = false;
  checkForExit(qUnified_, iStep, iLast, qExit, qOK);
  return qExit;
}

std::string unifiedFileOf(const std::string& zFile, std::string_view zKind, bool qFormatted) {
  std::string extension, name;
  bool qOK = false;
  setEclipseFileName(zFile, zKind, extension, true, qFormatted, name, qOK);
  return name;
}

}  // namespace lumbarn
