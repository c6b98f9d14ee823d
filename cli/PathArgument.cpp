#include "PathArgument.h"

#include <span>

#include <fmt/format.h>

#include "Failure.h"
#include "files/Folder.h"

namespace lumbarn::cli {
namespace {

constexpr std::size_t shownChoices = 12;

[[noreturn]] void askToChoose(const std::string& problem, std::span<const std::string> choices) {
  std::string message = problem;
  for (std::size_t i = 0; i < choices.size() && i < shownChoices; ++i) {
    message += (i == 0 ? ": " : ", ") + choices[i];
  }
  if (choices.size() > shownChoices) message += ", and others";
  throw Failure(Usage, message);
}

}  // namespace

RunFamily findRun(const std::string& argument) {
  std::string why;
  auto runs = findRuns(argument, why);
  if (runs.empty()) throw Failure(Usage, argument + ": " + why);
  if (runs.size() == 1) return std::move(runs.front());
  std::vector<std::string> roots;
  for (const RunFamily& run : runs) roots.push_back(run.folder + run.base);
  askToChoose(argument + " can mean several runs, name one", roots);
}

std::vector<std::string> pathsOf(const RunFamily& run) {
  std::vector<std::string> paths;
  for (const RunMember& member : run.members) paths.push_back(member.path);
  return paths;
}

RunMember summarySpecification(const RunFamily& run) {
  const RunMember* specification = run.find(FileKind::SummarySpec);
  if (specification) return *specification;
  // A file under a name of its own is taken at the host's word; whether it is one, its records tell.
  const RunMember* given = run.givenMember();
  if (given && given->kind == FileKind::Unknown) return *given;
  throw Failure(Usage, fmt::format("{}{}: has no summary specification (SMSPEC)", run.folder, run.base));
}

std::string summaryFile(const RunFamily& run) {
  const RunMember* given = run.givenMember();
  const RunMember specification = summarySpecification(run);
  return given && given->kind == FileKind::Summary ? given->path : specification.path;
}

std::string nameOfFile(const std::string& path) {
  return path.substr(path.find_last_of(folderSeparators()) + 1);
}

}  // namespace lumbarn::cli
