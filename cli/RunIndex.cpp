#include "RunIndex.h"

#include <algorithm>

#include <fmt/format.h>

#include "Failure.h"
#include "files/FileChoice.h"
#include "index/RestartIndexAgreement.h"
#include "support/Closest.h"

namespace lumbarn::cli {
namespace {

std::string pathOf(const RunMember* member) { return member ? member->path : std::string(); }

/// "0:3", "5".
std::vector<std::string> rangesOf(const std::vector<std::int32_t>& steps) {
  std::vector<std::string> ranges;
  for (std::size_t i = 0; i < steps.size();) {
    std::size_t last = i;
    while (last + 1 < steps.size() && steps[last + 1] == steps[last] + 1) ++last;
    const std::string_view between = last > i + 1 ? ":" : ", ";
    ranges.push_back(last > i ? fmt::format("{}{}{}", steps[i], between, steps[last])
                              : fmt::format("{}", steps[i]));
    i = last + 1;
  }
  return ranges;
}

const RestartIndex& checked(const RestartIndex& index, Console& console) {
  console.progress().hide();
  console.checkCancelled();
  if (index.steps.empty()) console.giveUp(index.files.front(), "nothing of it can be read");
  return index;
}

}  // namespace

std::vector<std::string> restartFiles(const RunFamily& run, Session& session) {
  FileChoice choice = chooseFiles(session, run, FileKind::Restart);
  if (choice.files.empty())
    throw Failure(Usage, fmt::format("{}{}: has no restart files", run.folder, run.base));
  return std::move(choice.files);
}

std::optional<std::int32_t> namedStep(const RunFamily& run) {
  const RunMember* given = run.givenMember();
  if (!given || given->kind != FileKind::Restart || !given->multiple()) return std::nullopt;
  return given->step;
}

RestartIndex restartIndex(const RunFamily& run, Console& console) {
  const auto files = restartFiles(run, console.session());
  return checked(indexOfRestart(console.session(), files, pathOf(run.find(FileKind::Rsspec))), console);
}

RestartIndex initIndex(const RunFamily& run, Console& console) {
  const RunMember* file = run.find(FileKind::Init);
  if (!file) throw Failure(Usage, fmt::format("{}{}: has no INIT file", run.folder, run.base));
  return checked(indexOfInit(console.session(), file->path, pathOf(run.find(FileKind::Inspec))), console);
}

std::string noStepText(const std::string& file, std::int32_t step, const std::vector<std::int32_t>& steps) {
  return fmt::format("{} has no report step {}; it has {}", file, step,
                     steps.empty() ? "none" : listText(rangesOf(steps)));
}

}  // namespace lumbarn::cli
