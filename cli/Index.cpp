#include <fmt/format.h>

#include "Answer.h"
#include "Commands.h"
#include "run/WriteIndex.h"

namespace lumbarn::cli {
namespace {

struct IndexOptions {
  std::string path;
  std::string folder;
  bool replace = false;
};

ExitStatus writeIndexes(const IndexOptions& options, Console& console) {
  const auto all = writeIndex(Run::open(options.path), options.folder, options.replace, asking(console));
  console.progress().hide();
  for (const WrittenIndex& index : all) {
    console.out() << fmt::format("{}: {}{} records\n", printable(index.path),
                                 index.init ? "" : fmt::format("{} steps, ", index.steps), index.records);
  }
  return console.doneStatus();
}

}  // namespace

void addIndex(CommandLine& line) {
  Subcommand command(line, "index",
                     "Write index files (RSSPEC, INSPEC) of a run's restart and INIT files to a folder");
  IndexOptions& options = command.performs(writeIndexes);
  command.path(options.path);
  command.requiredValue("--into", options.folder, "FOLDER", "The folder to write to; may be the run's own");
  command.flag("--replace", options.replace, "Write index files anew that are there already");
  command.footer(
      "Programs list a run faster with an index beside it. An index tells the range of every array, so all\n"
      "data are read once. Example:\n  lumbarn index --into . RUN");
}

}  // namespace lumbarn::cli
