#include "Answer.h"
#include "Commands.h"

namespace lumbarn::cli {
namespace {

struct SummaryOptions {
  RunOptions runs;
  SummarySelection selection;
  TimeOptions time;
  bool reportSteps = false;
  OutputOptions output;
};

SummarySelection selectionOf(const SummaryOptions& options) {
  SummarySelection selection = options.selection;
  selection.time = options.time.selection();
  selection.keys = options.output.longForm;  // the long form repeats step, date and days
  if (!options.reportSteps) return selection;
  if (!options.time.every.empty()) throw Failure(Usage, "--report-steps and --every exclude each other");
  selection.time.every = Every::ReportStep;
  return selection;
}

ExitStatus showSummary(const SummaryOptions& options, Console& console) {
  const SummarySelection selection = selectionOf(options);
  return answer(options.runs, options.output, console, [&](const Run& run, const ReadOptions& read) {
    // Without --replace no simulator file is replaced, so only then it matters which ones are read.
    if (selection.chain && options.output.replace)
      checkTarget(options.output.file, run.filesOfChain(read), true);
    return run.summary(selection, read);
  });
}

}  // namespace

void addSummary(CommandLine& line) {
  Subcommand command(line, "summary", "Show summary data, one column for each vector");
  SummaryOptions& options = command.performs(showSummary);
  SummarySelection& selection = options.selection;
  command.runs(options.runs);
  command.repeated("--vectors", selection.vectors, "PATTERNS",
                   "Vectors to show, as WOPR:* or BPR:10,4,3; * and ? match any characters");
  command.repeated("--except", selection.except, "PATTERNS",
                   "Vectors to leave out; TIME is shown unless it is one of them");
  command.time(options.time);
  command.flag("--restart", selection.chain, "Show the runs that this one restarted from too");
  command.flag("--report-steps", options.reportSteps, "Show only the last row of each report step");
  command.flag("--dates", selection.dates, "Show the date of each row in front");
  command.flag("--keep-duplicates", selection.keepDuplicates,
               "Show vectors whose name occurs before too, with #2 and so on behind the name");
  command.output(options.output);
  command.footer(
      "Columns are in the order of the patterns, which are separated by commas; options may be repeated.\n"
      "Values that are not numbers are empty in csv and null in json. Example:\n  lumbarn summary --vectors "
      "'FOPR,WBHP:*' --dates --format csv -o rates.csv RUN");
}

}  // namespace lumbarn::cli
