#include "Answer.h"
#include "Commands.h"
#include "FactWriter.h"

namespace lumbarn::cli {
namespace {

struct InfoOptions {
  RunOptions runs;
  bool files = false;
  OutputOptions output;
};

Stream factsOf(const Run& run, const ReadOptions& read) {
  return run.namedFile() ? run.fileFacts(read) : run.facts(read);
}

/// Facts and files of one run, which are no table together.
ExitStatus tellAbout(const Run& run, const OutputOptions& options, Console& console) {
  const auto writeBoth = [&](Sink& sink) {
    const auto write = options.format == Format::Json ? writeFactsJson : writeFactsReadable;
    write(factsOf(run, asking(console)), run.files(asking(console)), sink);
  };
  return writeAnswer(writeBoth, options, run.paths(), console);
}

ExitStatus showInfo(const InfoOptions& options, Console& console) {
  if (options.files) {
    return answer(options.runs, options.output, console,
                  [](const Run& run, const ReadOptions& read) { return run.files(read); });
  }
  const bool both = options.output.format == Format::Table || options.output.format == Format::Json;
  const bool one = options.runs.paths.size() == 1 && !options.runs.each;
  if (one && both && !options.output.unitRow && !options.output.longForm)
    return tellAbout(Run::open(options.runs.paths.front()), options.output, console);
  return answer(options.runs, options.output, console, factsOf);
}

}  // namespace

void addInfo(CommandLine& line) {
  Subcommand command(line, "info", "Tell what a file is, or what a run consists of");
  InfoOptions& options = command.performs(showInfo);
  command.runs(options.runs);
  command.flag("--files", options.files, "List the files of the run");
  command.output(options.output);
  command.footer(
      "For a file: its kind and form, what its headers tell, and the files of the run that it belongs to. "
      "For\n"
      "a run: the same of all its files. csv and the like, and tables of several runs, have a row for each\n"
      "fact. Example:\n  lumbarn info RUN");
}

}  // namespace lumbarn::cli
