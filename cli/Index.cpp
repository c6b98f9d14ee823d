#include <filesystem>

#include <fmt/format.h>

#include "Commands.h"
#include "Output.h"
#include "PathArgument.h"
#include "RunIndex.h"
#include "files/Folder.h"
#include "index/IndexFile.h"
#include "support/Text.h"

namespace lumbarn::cli {
namespace {

struct IndexOptions {
  std::string path;
  std::string folder;
  bool replace = false;
};

/// Where the index of a file goes: the run's name, with the extension in the form and case of the file's.
std::string targetOf(const RestartIndex& index, const RunFamily& run, const IndexOptions& options) {
  const std::string_view separators = folderSeparators();
  const bool ended = separators.find(options.folder.back()) != separators.npos;
  const bool upperCase = isUpperCase(FileName(index.files.front()).extension);
  const std::string extension =
      fmt::format("{}{}", index.form.formatted() ? "f" : "", index.init ? "inspec" : "rsspec");
  const std::string path = fmt::format("{}{}{}.{}", options.folder, ended ? "" : "/", run.base,
                                       upperCase ? upper(extension) : extension);
  if (isFile(path) && !options.replace)
    throw Failure(Usage, fmt::format("{}: is there already; --replace writes it anew", path));
  checkTarget(path, index.files, true);
  return path;
}

/// False when it cannot be written, which a diagnosis states.
bool write(const RestartIndex& index, const std::string& target, Console& console) {
  bool qOK = false;
  (index.init ? WriteEclipseInspecFile : WriteEclipseRsspecFile)(index, target, qOK, console.session());
  console.progress().hide();
  console.checkCancelled();
  if (!qOK) return false;
  std::size_t records = 0;
  for (const IndexStep& step : index.steps) {
    for (const IndexGroup& group : step.groups) records += group.entries.size();
  }
  console.out() << fmt::format("{}: {}{} records\n", printable(target),
                               index.init ? "" : fmt::format("{} steps, ", index.steps.size()), records);
  return true;
}

/// The walked indexes of what the run has; those that are there already do not count.
std::vector<RestartIndex> walkAll(const RunFamily& run, Console& console) {
  std::vector<RestartIndex> indexes;
  if (run.find(FileKind::Restart))
    indexes.push_back(walkRestart(console.session(), restartFiles(run, console.session())));
  if (const RunMember* init = run.find(FileKind::Init))
    indexes.push_back(walkInit(console.session(), init->path));
  console.progress().hide();
  console.checkCancelled();
  if (indexes.empty())
    throw Failure(Usage, fmt::format("{}{}: has no restart files and no INIT file", run.folder, run.base));
  return indexes;
}

ExitStatus writeIndexes(const IndexOptions& options, Console& console) {
  const RunFamily run = findRun(options.path);
  if (!isFolder(options.folder)) throw Failure(Usage, options.folder + ": is no folder");
  const auto indexes = walkAll(run, console);
  std::vector<std::string> targets;
  for (const RestartIndex& index : indexes) targets.push_back(targetOf(index, run, options));
  bool all = true;
  bool any = false;
  for (std::size_t i = 0; i < indexes.size(); ++i) {
    all = all && indexes[i].whole;
    if (!indexes[i].whole) continue;
    if (write(indexes[i], targets[i], console)) {
      any = true;
    } else if (any) {
      throw Failure(Partial, "");
    } else {
      console.giveUp(targets[i], "cannot be written");
    }
  }
  if (!all) throw Failure(Partial, "no index was written of what could not be read to its end");
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
