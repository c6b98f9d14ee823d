#include <optional>

#include "Answer.h"
#include "Commands.h"

namespace lumbarn::cli {
namespace {

struct TablesOptions {
  RunOptions runs;
  std::string table;
  std::optional<std::int32_t> number;
  OutputOptions output;
};

ExitStatus showTables(const TablesOptions& options, Console& console) {
  if (options.number && options.table.empty()) throw Failure(Usage, "--number goes with --table");
  return answer(options.runs, options.output, console, [&](const Run& run, const ReadOptions& read) {
    return options.table.empty() ? run.tables(read)
                                 : run.table(options.table, options.number.value_or(1), read);
  });
}

}  // namespace

void addTables(CommandLine& line) {
  Subcommand command(line, "tables", "List the simulation tables of a run's INIT file, or show one");
  TablesOptions& options = command.performs(showTables);
  command.runs(options.runs);
  command.value("--table", options.table, "NAME", "The table to show, as PVTO");
  command.value("--number", options.number, "N",
                "Which one, from 1, where there are several; the first if not given");
  command.output(options.output);
  command.footer(
      "Values are as a deck has them, in the units of the run. Example:\n  lumbarn tables --table PVTO RUN");
}

}  // namespace lumbarn::cli
