#pragma once

#include <algorithm>
#include <atomic>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "Failure.h"
#include "ProgressBar.h"
#include "support/Diagnosis.h"
#include "support/Session.h"

namespace lumbarn::cli {

/// Where a subcommand reads, writes and talks. Messages go to standard error, one line each; diagnoses that
/// the session makes while this object lives are messages too.
class Console {
 public:
  Console(std::ostream& out, std::ostream& err, Session& session, bool terminal);
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  std::ostream& out() { return out_; }
  std::ostream& err() { return err_; }
  Session& session() { return session_; }
  ProgressBar& progress() { return progress_; }
  /// Becomes true when the command is to end.
  const std::atomic<bool>& stopFlag() const {
    return session_.hostCancel ? *session_.hostCancel : session_.CancelLoad;
  }

  /// One line: "lumbarn: " and the text.
  void say(std::string_view text);
  /// A diagnosis as a line, each once. Beyond `shownDiagnoses` they are counted only.
  void tell(const Diagnosis& diagnosis);
  /// The exit status that follows from the worst diagnosis or fault of the run: Done when nothing is missing,
  /// otherwise Partial.
  ExitStatus doneStatus() const { return complete() ? Done : Partial; }
  /// Throws Failure for a file that cannot be read. Without a message when diagnoses explain it.
  [[noreturn]] void giveUp(const std::string& path, const std::string& problem) const;
  /// Throws Failure when Ctrl-C was pressed.
  void checkCancelled() const;

  static constexpr int shownDiagnoses = 20;

 private:
  std::ostream& out_;
  std::ostream& err_;
  Session& session_;
  ProgressBar progress_;
  bool complete() const { return !worst_ || *worst_ == Severity::Remark; }
  void note(Severity severity) { worst_ = std::max(worst_.value_or(severity), severity); }

  int diagnoses_ = 0;
  std::optional<Severity> worst_;  // of the diagnoses and faults so far
  std::vector<std::string> told_;
};

/// Control characters replaced by "?", so that what a file contains cannot steer a terminal.
std::string printable(std::string_view text);

}  // namespace lumbarn::cli
