#pragma once

#include <ostream>
#include <span>
#include <string>

#include "support/Session.h"

namespace lumbarn::cli {

/// Runs the command with its arguments, the program's name not among them, and gives the exit status (see
/// Failure.h). `terminal` tells that `err` is read by a person at a terminal, who gets a progress bar. Sets
/// `CancelLoad` of the session to end it early.
int run(std::span<const std::string> args, std::ostream& out, std::ostream& err,
        Session& session = Session::process(), bool terminal = false);

}  // namespace lumbarn::cli
