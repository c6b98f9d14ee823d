#pragma once

#include "Console.h"
#include "Output.h"
#include "frame/Stream.h"
#include "frame/Write.h"
#include "run/Run.h"

namespace lumbarn::cli {

/// How a subcommand asks: what is reported goes to the console, Ctrl-C stops, and all good rows are kept.
ReadOptions asking(Console& console);

/// Writes the rows of an answer in the form that was asked for, to standard output or to a file that appears
/// when it is complete. Gives the exit status that follows from what was reported.
ExitStatus write(Stream&& answer, const OutputOptions& options, const Run& run, Console& console);

}  // namespace lumbarn::cli
