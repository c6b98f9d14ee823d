#include "Answer.h"
#include "Commands.h"

namespace lumbarn::cli {
namespace {

struct VectorsOptions {
  RunOptions runs;
  bool keepDuplicates = false;
  OutputOptions output;
};

ExitStatus listVectors(const VectorsOptions& options, Console& console) {
  return answer(options.runs, options.output, console, [&](const Run& run, const ReadOptions& read) {
    return run.vectors(options.keepDuplicates, read);
  });
}

}  // namespace

void addVectors(CommandLine& line) {
  Subcommand command(line, "vectors", "List the vectors of a summary, with units and descriptions");
  VectorsOptions& options = command.performs(listVectors);
  command.runs(options.runs);
  command.flag("--keep-duplicates", options.keepDuplicates,
               "Show vectors whose name occurs before too, with #2 and so on behind the name");
  command.output(options.output);
  command.footer("Example:\n  lumbarn vectors --format csv RUN");
}

}  // namespace lumbarn::cli
