#include "WriteIndex.h"

#include <filesystem>

#include <fmt/format.h>

#include "../files/FileChoice.h"
#include "../files/Folder.h"
#include "../index/IndexFile.h"
#include "../support/Session.h"
#include "../support/Text.h"
#include "RunState.h"

namespace lumbarn {

namespace {

std::filesystem::path pathOf(const std::string& name) { return {std::u8string(name.begin(), name.end())}; }

/// Where the index of a file goes: the run's name, with the extension in the form and case of the file's.
std::string targetOf(const RestartIndex& index, const std::string& base, const std::string& folder,
                     bool replace) {
  const bool ended = folderSeparators().find(folder.back()) != std::string_view::npos;
  const bool upperCase = isUpperCase(FileName(index.files.front()).extension);
  const std::string extension =
      fmt::format("{}{}", index.form.formatted() ? "f" : "", index.init ? "inspec" : "rsspec");
  std::string path =
      fmt::format("{}{}{}.{}", folder, ended ? "" : "/", base, upperCase ? upper(extension) : extension);
  if (isFile(path) && !replace) throwRefused(path, "is there already; --replace writes it anew");
  for (const std::string& file : index.files) {
    std::error_code unknown;
    if (std::filesystem::equivalent(pathOf(path), pathOf(file), unknown))
      throwRefused(path, "is a file that is read");
  }
  return path;
}

/// The walked indexes of what the run has; index files that are there already do not count.
std::vector<RestartIndex> walkAll(const RunState& run, Session& session) {
  std::vector<RestartIndex> indexes;
  if (run.family().find(FileKind::Restart))
    indexes.push_back(walkRestart(session, chooseFiles(session, run.family(), FileKind::Restart).files));
  if (const RunMember* init = run.family().find(FileKind::Init))
    indexes.push_back(walkInit(session, init->path));
  if (session.cancelled()) throw LoadCanceled();
  if (indexes.empty())
    throw Error(Error::Kind::NotFound, {.message = Message::RunFileMissing,
                                        .path = run.root(),
                                        .problem = "has no restart files and no INIT file"});
  return indexes;
}

WrittenIndex describe(const RestartIndex& index, std::string path) {
  WrittenIndex written{std::move(path), index.init, static_cast<std::int64_t>(index.steps.size())};
  for (const IndexStep& step : index.steps) {
    for (const IndexGroup& group : step.groups)
      written.records += static_cast<std::int64_t>(group.entries.size());
  }
  return written;
}

}  // namespace

std::vector<WrittenIndex> writeIndex(const Run& run, const std::string& folder, bool replace,
                                     const ReadOptions& options) {
  try {
    StreamContext context(options);
    Session& session = context.session();
    if (!isFolder(folder)) throwRefused(folder, "is no folder");
    const auto indexes = walkAll(run.state(), session);
    std::vector<std::string> targets;
    for (const RestartIndex& index : indexes) targets.push_back(targetOf(index, run.name(), folder, replace));
    std::vector<WrittenIndex> written;
    for (std::size_t i = 0; i < indexes.size(); ++i) {
      bool qOK = false;
      (indexes[i].init ? WriteEclipseInspecFile : WriteEclipseRsspecFile)(indexes[i], targets[i], qOK,
                                                                          session);
      if (session.cancelled()) throw LoadCanceled();
      if (qOK) {
        written.push_back(describe(indexes[i], targets[i]));
      } else if (indexes[i].whole && written.empty()) {  // the diagnosis has the reason
        throw Error(Error::Kind::System,
                    context.worst().value_or(Diagnosis{.message = Message::FileWrite, .path = targets[i]}));
      }
    }
    return written;
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
