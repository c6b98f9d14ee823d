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
#include "frame/Error.h"

namespace lumbarn::cli {

/// Where a subcommand writes and talks. Messages go to standard error, one line each.
class Console {
 public:
  /// `stop` becomes true when the command is to end.
  Console(std::ostream& out, std::ostream& err, const std::atomic<bool>& stop, bool terminal);
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  std::ostream& out() { return out_; }
  std::ostream& err() { return err_; }
  ProgressBar& progress() { return progress_; }
  const std::atomic<bool>& stopFlag() const { return stop_; }

  /// One line: "lumbarn: " and the text.
  void say(std::string_view text);
  /// A diagnosis as a line, each once. Beyond `shownDiagnoses` they are counted only.
  void tell(const Diagnosis& diagnosis);
  /// The exit status that follows from the worst diagnosis: Done when nothing is missing,
  /// otherwise Partial.
  ExitStatus doneStatus() const { return complete() ? Done : Partial; }
  /// Throws Failure when Ctrl-C was pressed.
  void checkCancelled() const;

  static constexpr int shownDiagnoses = 20;

 private:
  std::ostream& out_;
  std::ostream& err_;
  const std::atomic<bool>& stop_;
  ProgressBar progress_;
  bool complete() const { return !worst_ || *worst_ == Severity::Remark; }

  int diagnoses_ = 0;
  std::optional<Severity> worst_;  // of the diagnoses so far
  std::vector<std::string> told_;
};

/// Control characters replaced by "?", so that what a file contains cannot steer a terminal.
std::string printable(std::string_view text);

}  // namespace lumbarn::cli
