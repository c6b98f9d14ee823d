#pragma once

#include <atomic>
#include <ostream>
#include <span>
#include <string>

namespace lumbarn::cli {

/// Runs the command with its arguments, the program's name not among them, and gives the exit status (see
/// Failure.h). Ends early once `stop` is true. `terminal` tells that `err` is read by a person at a terminal,
/// who gets a progress bar.
int run(std::span<const std::string> args, std::ostream& out, std::ostream& err,
        const std::atomic<bool>& stop, bool terminal = false);

}  // namespace lumbarn::cli
