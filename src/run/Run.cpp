#include "Run.h"

#include <utility>

#include <fmt/format.h>

#include "../files/Families.h"
#include "../frame/Error.h"
#include "RunState.h"

namespace lumbarn {

namespace {

constexpr std::size_t shownRuns = 12;

std::string rootOf(const RunFamily& run) { return run.folder + run.base; }

}  // namespace

Run Run::open(const std::string& path) {
  std::string why;
  auto runs = findRuns(path, why);
  if (runs.empty())
    throw Error(Error::Kind::NotFound, {.message = Message::RunMissing, .path = path, .problem = why});
  if (runs.size() == 1) return Run(std::make_shared<const RunState>(std::move(runs.front())));
  std::vector<std::string> roots;
  std::string list;
  for (const RunFamily& run : runs) {
    roots.push_back(rootOf(run));
    if (roots.size() <= shownRuns) list += (list.empty() ? "" : ", ") + roots.back();
  }
  if (roots.size() > shownRuns) list += fmt::format(" and {} others", roots.size() - shownRuns);
  throw Error(
      Error::Kind::BadRequest,
      {.message = Message::RunSeveral, .path = path, .problem = "can mean several runs, name one: " + list},
      std::move(roots));
}

std::vector<std::string> Run::find(const std::string& path) {
  std::string why;
  std::vector<std::string> roots;
  for (const RunFamily& run : findRuns(path, why)) roots.push_back(rootOf(run));
  return roots;
}

std::string Run::root() const { return state_->root(); }
std::string Run::name() const { return state_->family().base; }

std::vector<std::string> Run::paths() const {
  std::vector<std::string> paths;
  for (const RunMember& member : state_->family().members) paths.push_back(member.path);
  return paths;
}

std::optional<std::string> Run::namedFile() const {
  const RunMember* given = state_->family().givenMember();
  return given ? std::optional(given->path) : std::nullopt;
}

std::optional<std::int32_t> Run::namedStep() const {
  const RunMember* given = state_->family().givenMember();
  if (!given || given->kind != FileKind::Restart || !given->multiple()) return std::nullopt;
  return given->step;
}

bool Run::changed() const { return state_->changed(); }

std::vector<StepInfo> Run::steps(const ReadOptions& options) const {
  try {
    StreamContext context(options);
    const auto index = state_->restartIndex(context);
    std::vector<StepInfo> steps;
    for (const IndexStep& step : index->steps)
      steps.push_back({step.number, step.days, toLocal(step.date), index->files[step.file]});
    return steps;
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
