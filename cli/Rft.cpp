#include <algorithm>
#include <string>
#include <vector>

#include "Answer.h"
#include "Commands.h"

namespace lumbarn::cli {
namespace {

struct RftOptions {
  RunOptions runs;
  TimeOptions time;
  std::vector<std::string> wells;
  std::int32_t test = 0;
  bool rows = false;
  bool plt = false;
  std::int32_t branch = 0;
  std::int32_t icd = 0;
  bool segments = false;
  bool all = false;
  OutputOptions output;

  bool wantsRows() const {
    return output.longForm || test != 0 || rows || plt || branch != 0 || icd != 0 || segments || all;
  }
  TestPart part() const {
    if (all) return TestPart::All;
    if (segments) return TestPart::Segments;
    if (icd != 0) return TestPart::Devices;
    if (branch != 0) return plt ? TestPart::PltBranch : TestPart::Branch;
    return plt ? TestPart::Plt : TestPart::Rft;
  }
};

/// Throws Failure for tables that do not go together.
void checkTogether(const RftOptions& options) {
  const int tables = (options.plt || options.branch != 0 ? 1 : 0) + (options.icd != 0 ? 1 : 0) +
                     (options.segments ? 1 : 0) + (options.all ? 1 : 0);
  if (tables > 1) throw Failure(Usage, "one of --plt, --branch, --icd, --segments and --all at a time");
}

ExitStatus showTests(const RftOptions& options, Console& console) {
  checkTogether(options);
  TestSelection selection{.wells = options.wells, .time = options.time.selection()};
  if (options.test != 0) selection.numbers = {options.test};
  if (options.wantsRows()) {
    selection.part = options.part();
    selection.branch = std::max(options.branch, options.icd);
    // A program knows which test it asked for, a person reads it.
    selection.plain = options.test != 0 && options.output.format != Format::Table && !options.output.longForm;
  }
  return answer(options.runs, options.output, console, [&](const Run& run, const ReadOptions& read) {
    return options.wantsRows() ? run.testRows(selection, read) : run.tests(selection, read);
  });
}

}  // namespace

void addRft(CommandLine& line) {
  Subcommand command(line, "rft", "List the well tests of a run or of a text file, or show their tables");
  RftOptions& options = command.performs(showTests);
  command.runs(options.runs);
  options.runs.namedInLongForm = false;  // the number and the well of a test identify it
  command.list("--well", options.wells, "PATTERNS", "Tests of these wells: names with * and ?");
  command.time(options.time);
  command.ordinal("--test", options.test, "Show the table of one test, by its number in the list");
  command.flag("--rows", options.rows, "Show the table of each test, one below the other");
  command.flag("--plt", options.plt, "Show their rates along the well (PLT)");
  command.ordinal("--branch", options.branch, "Show the segments of one branch; with --plt its connections");
  command.ordinal("--icd", options.icd,
                  "Show the inflow control devices that empty into one branch of the tubing");
  command.flag("--segments", options.segments, "Show all segments");
  command.flag("--all", options.all, "Show every array, a line for each value");
  command.output(options.output);
  command.footer(
      "Of each well, --steps last, --date and --every take the last test. Units stand below the names in\n"
      "tables; --all has them in its lines. Example:\n"
      "  lumbarn rft --test 2 --plt --branch 1 --format csv RUN");
}

}  // namespace lumbarn::cli
