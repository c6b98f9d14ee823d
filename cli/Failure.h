#pragma once

#include <stdexcept>
#include <string>

namespace lumbarn::cli {

/// What the command tells its caller.
enum ExitStatus : int {
  Done = 0,
  Unreadable = 1,   ///< the data could not be read, or the output not written
  Usage = 2,        ///< wrong usage, or no such file
  Partial = 3,      ///< the readable part was written, the rest is told on standard error
  Different = 4,    ///< what was compared differs
  Cancelled = 130,  ///< as shells tell the end by Ctrl-C
};

/// Ends a subcommand with an exit status and a message for people, which is empty when all has been said.
class Failure : public std::runtime_error {
 public:
  Failure(ExitStatus status, const std::string& message) : std::runtime_error(message), status_(status) {}
  ExitStatus status() const { return status_; }

 private:
  ExitStatus status_;
};

}  // namespace lumbarn::cli
