#include "qvEclipseInfo.h"

#include <chrono>
#include <filesystem>
#include <fstream>

#include "../record/Quarnet.h"
#include "../support/Dates.h"
#include "../support/System.h"

namespace lumbarn {

namespace {

std::string versionText() {
  std::error_code error;
  const auto written = std::filesystem::last_write_time(thisModulePath(), error);
  std::string text = "Lumbarn v" LUMBARN_VERSION " ";
  if (error) return text + ":Unknown Date)";
  const auto onCalendar = std::chrono::file_clock::to_sys(written);
  return text + isoText(std::chrono::time_point_cast<std::chrono::microseconds>(onCalendar)).substr(0, 10);
}

}  // namespace

std::string qvEclipseInfo::DLLVersion(const std::string& LOGFILE, const std::string& StartupMsg,
                                      bool qLogToFile) {
  const std::string text = versionText();
  if (qLogToFile && !LOGFILE.empty()) {
    logFile_ = std::filesystem::path(LOGFILE).replace_extension(".txt").string();
    if (!StartupMsg.empty()) log(StartupMsg);
    log(text + " OK");
  }
  return text;
}

void qvEclipseInfo::CloseDown() {
  log(versionText() + " Close Down");
  session_->release<Quarnet>();
}

void qvEclipseInfo::log(const std::string& line) const {
  if (logFile_.empty()) return;
  std::ofstream(logFile_, std::ios::app) << line << '\n';
}

}  // namespace lumbarn
