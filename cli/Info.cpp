#include <filesystem>

#include <nlohmann/json.hpp>

#include "Commands.h"
#include "Output.h"
#include "PathArgument.h"
#include "RunFacts.h"
#include "files/Recogniser.h"

namespace lumbarn::cli {
namespace {

struct InfoOptions {
  std::string path;
  OutputOptions output;
};

std::uintmax_t bytesOf(const std::string& path) {
  std::error_code unknown;
  const auto bytes =
      std::filesystem::file_size(std::filesystem::path(std::u8string(path.begin(), path.end())), unknown);
  return unknown ? 0 : bytes;
}

/// The given file as its records show it; its kind in `recognised`.
void addFile(Facts& facts, const RunMember& file, const Recognised& recognised) {
  facts["file"] = file.path;
  facts["kind"] = nameOf(recognised.kind);
  if (recognised.form) facts["form"] = recognised.form->description();
  if (recognised.unified) facts["layout"] = *recognised.unified ? "unified" : "one file for each step";
  facts["bytes"] = bytesOf(file.path);
}

/// As the name tells it, and of a name that tells nothing not at all.
const char* formOf(const RunMember& file) {
  if (file.kind == FileKind::Unknown) return "";
  return isText(file.kind) || file.formatted ? "formatted" : "unformatted";
}

/// One entry for each file of the run, step files of one set taken together as the first and the last of
/// them.
Facts familyFacts(const RunFamily& run) {
  Facts files = Facts::array();
  const RunMember* before = nullptr;
  for (const RunMember& member : run.members) {
    const bool goesOn = before && member.multiple() && before->multiple() && before->set == member.set;
    before = &member;
    const std::string name = nameOfFile(member.path);
    if (goesOn) {
      Facts& set = files.back();
      set["files"] = set["files"].get<std::int64_t>() + 1;
      set["last"] = name;
      set["bytes"] = set["bytes"].get<std::uintmax_t>() + bytesOf(member.path);
      continue;
    }
    files.push_back({{"kind", nameOf(member.kind)},
                     {"form", formOf(member)},
                     {"files", 1},
                     {"first", name},
                     {"last", ""},
                     {"bytes", bytesOf(member.path)}});
  }
  return files;
}

/// What the run's files of a kind tell; for the summary, specification and data together.
void addContent(Facts& facts, const RunFamily& run, FileKind kind, Console& console) {
  if (!run.find(kind)) return;
  switch (kind) {
    case FileKind::SummarySpec:
      facts["summary"] = summaryFacts(run, console);
      break;
    case FileKind::Restart:
      facts["restart"] = restartFacts(run, console);
      break;
    case FileKind::Init:
      facts["init"] = initFacts(run, console);
      break;
    case FileKind::Rsspec:
      facts["restart_index"] = indexFacts(run, kind, console);
      break;
    case FileKind::Inspec:
      facts["init_index"] = indexFacts(run, kind, console);
      break;
    case FileKind::EGrid:
    case FileKind::Grid:
      facts["grid"] = gridFacts(run, kind, console);
      break;
    case FileKind::Save:
      facts["save"] = saveFacts(run, console);
      break;
    case FileKind::Rft:
      facts["well_tests"] = testFacts(run, console);
      break;
    case FileKind::UserRft:
    case FileKind::UserPlt:
      facts["well_tests"] = userTestFacts(*run.find(kind), console);
      break;
    default:
      break;
  }
}

ExitStatus tellAbout(const InfoOptions& options, Console& console) {
  RunFamily run = findRun(options.path);
  Output output(options.output, console.out(), pathsOf(run));
  Facts facts = Facts::object();
  bool unknown = false;
  std::vector<FileKind> kinds{FileKind::SummarySpec, FileKind::Restart, FileKind::Init, FileKind::EGrid,
                              FileKind::Grid,        FileKind::Rft,     FileKind::Save};
  if (run.given) {
    RunMember& file = run.members[*run.given];
    const Recognised recognised = recogniseFile(file.path);
    addFile(facts, file, recognised);
    unknown = recognised.kind == FileKind::Unknown;
    if (!isText(recognised.kind) && recognised.problem) console.tell(*recognised.problem);
    file.kind = recognised.kind;
    kinds = {file.kind == FileKind::Summary ? FileKind::SummarySpec : file.kind};
  }
  facts["run"] = run.folder + run.base;
  for (const FileKind kind : kinds) addContent(facts, run, kind, console);
  facts["files"] = familyFacts(run);
  console.progress().hide();
  writeFacts(facts, options.output.format, output.stream());
  output.commit();
  return unknown ? Unreadable : console.doneStatus();
}

}  // namespace

void addInfo(CommandLine& line) {
  Subcommand command(line, "info", "Tell what a file is, or what a run consists of");
  InfoOptions& options = command.performs(tellAbout);
  command.path(options.path);
  command.output(options.output);
  command.footer(
      "For a file: its kind and form, what its headers tell, and the run that it belongs to. For a run: the "
      "same of\n"
      "all its files. Example:\n  lumbarn info RUN");
}

}  // namespace lumbarn::cli
