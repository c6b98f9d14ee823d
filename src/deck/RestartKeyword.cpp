#include <algorithm>
#include <string>

#include "../files/Folder.h"
#include "../restart/qvEclipseSOLUTION.h"
#include "../support/Text.h"
#include "DeckScheduleStore.h"
#include "ECLCommonFunctions.h"
#include "KeywordParsers.h"
#include "qvEclipseData.h"

namespace lumbarn {

namespace {

bool isAbsolute(const std::string& zName) {
  return zName.starts_with('\\') || zName.starts_with('/') || (zName.size() > 1 && zName[1] == ':');
}

std::string rootName(const HostKeyword& keyword, const std::string& zArgument) {
  std::string root;
  bool qOK = false;
  // In quotes, so that a "/" in it does not end it.
  getIncludeFileName({"'" + zArgument + "' /"}, 1, root, qOK, true, {}, keyword.session);
  if (isAbsolute(root)) return root;
  std::string folder = keyword.zDeckPath;
  while (folder.size() > 1 && (folder.back() == '/' || folder.back() == '\\')) folder.pop_back();
  return folder.empty() ? root : folder + '\\' + root;
}

/// The date of one step of a restart set; Nothing when the set cannot be read or has no such step.
std::optional<DeckDate> dateOfStep(const std::string& path, std::int32_t iStep, const HostKeyword& keyword) {
  qvEclipseSOLUTION restart(keyword.session);
  if (!restart.CheckRESTARTFile(path)) return std::nullopt;
  restart.Unified = keyword.runspec().input.form == DeckFileForm::Unified;
  restart.FileName = path;
  restart.ReadOnlyHeader = true;
  restart.iStart = restart.iEnd = iStep;
  bool qOK = false;
  restart.SetMultList(1, {path}, qOK);
  if (qOK) restart.getSOLUTIONData(qOK);
  if (!qOK || restart.NumSequences() < 1) return std::nullopt;
  DeckDate date;
  restart.getRESTARTDate(date.iDay, date.iMonth, date.iYear);
  return date;
}

/// Hosts with a screen show these as a warning.
void warn(const HostKeyword& keyword, const char* problem, const std::string& path) {
  keyword.session.diagnose(Diagnosis{.message = Message::DeckRestart,
                                     .path = keyword.file.path(),
                                     .problem = problem,
                                     .keyword = "RESTART",
                                     .line = keyword.file.currentLine(),
                                     .found = path,
                                     .action = "Schedule section must contain entire history"});
}

}  // namespace

void parseRESTART(const HostKeyword& keyword) {
  const auto words = keyword.arguments(false);
  if (words.size() < 2) return;
  const std::int32_t step = integerAt(words, 1);
  DeckRestartSource source{.zRoot = rootName(keyword, std::string(trim(textAt(words, 0)))),
                           .iStep = step == noDeckValue ? 0 : step,
                           .qIsSave = equalNoCase(textAt(words, 2), "SAVE"),
                           .qFormatted = equalNoCase(textAt(words, 3), "FORMATTED")};
  keyword.runspec().restart = source;
  DeckScheduleStore* const schedule = keyword.schedule();
  if (!schedule) return;
  const std::string name = schedule->restart(source);
  std::string path = name;
  std::replace(path.begin(), path.end(), '\\', '/');
  if (!isFile(path)) {
    warn(keyword, "Cannot find restart file", name);
  } else if (const auto date = dateOfStep(path, source.iStep, keyword)) {
    schedule->restartDate(*date);
  } else {
    warn(keyword, "Cannot set report step date from restart file", name);
  }
}

}  // namespace lumbarn
