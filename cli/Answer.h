#pragma once

#include <functional>
#include <span>

#include "Console.h"
#include "Output.h"
#include "Subcommand.h"
#include "frame/Stream.h"
#include "frame/Write.h"
#include "run/Run.h"

namespace lumbarn::cli {

/// How a subcommand asks: what is reported goes to the console, Ctrl-C stops, and all good rows are kept.
ReadOptions asking(Console& console);

/// Writes the rows of an answer in the units and the form that were asked for, to standard output or to a
/// file that appears when it is complete. `inputs` are the files that are read. Gives the exit status that
/// follows from what was reported.
ExitStatus writeAnswer(Stream&& answer, const OutputOptions& options, std::span<const std::string> inputs,
                       Console& console);

/// The same for output that is more than one table: `write` writes all of it.
ExitStatus writeAnswer(const std::function<void(Sink&)>& write, const OutputOptions& options,
                       std::span<const std::string> inputs, Console& console);

/// A question about one run.
using Question = std::function<Stream(const Run&, const ReadOptions&)>;
/// Asks the runs and writes the answer. That of several, and the long form of one, have a column "run". Of
/// several runs, one that cannot be asked is reported and does not stop the others.
ExitStatus answer(const RunOptions& options, const OutputOptions& output, Console& console,
                  const Question& ask);

/// Asks them several questions and writes the answers one below the other, for people.
ExitStatus answers(const RunOptions& runs, const OutputOptions& options, Console& console,
                   std::span<const Question> questions);

}  // namespace lumbarn::cli
