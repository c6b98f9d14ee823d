#pragma once

#include <string>

#include "../support/Export.h"
#include "../support/Session.h"

namespace lumbarn {

/// The second public object: what belongs to the whole process (or to a session given here).
class LUMBARN_API qvEclipseInfo {
 public:
  explicit qvEclipseInfo(Session& session = Session::process()) : session_(&session) {}

  /// The host's progress display, told of every load from now on; not owned, null for none.
  void Container(Progress* progress) { session_->Container = progress; }

  /// Component name, " v", version, a blank and the date of the library's file, or ":Unknown Date)" when that
  /// file is not found. With qLogToFile True the text and " OK" are added to the log: LOGFILE with the
  /// extension ".txt". StartupMsg, when not empty, stands in the log before it. A log that cannot be written
  /// is no failure.
  std::string DLLVersion(const std::string& LOGFILE = {}, const std::string& StartupMsg = {},
                         bool qLogToFile = false);

  /// Logs the text of the last `DLLVersion` call that logged, with " Close Down", and releases the shared
  /// record reader.
  void CloseDown();

  /// The flag that every long loop polls. A load that sees it ends with qOK False. It stays until it is set
  /// False.
  bool CancelLoad() const { return session_->CancelLoad; }
  void CancelLoad(bool cancel) { session_->CancelLoad = cancel; }

 private:
  void log(const std::string& line) const;

  Session* session_;
  std::string logFile_;
};

}  // namespace lumbarn
