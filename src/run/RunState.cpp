#include "RunState.h"

#include <algorithm>

#include <fmt/format.h>

#include "../files/FileChoice.h"
#include "../files/Recogniser.h"
#include "../frame/Error.h"
#include "../index/RestartIndexAgreement.h"
#include "../support/Closest.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

/// An index from which something can be read. The reason why nothing can is among the reports.
RestartIndex checked(RestartIndex index, StreamContext& context) {
  if (context.session().cancelled()) throw LoadCanceled();
  if (!index.steps.empty()) return index;
  if (context.worst()) throw Error(Error::Kind::Damaged, *context.worst());
  throw Error(Error::Kind::Damaged, {.message = Message::RecordDamaged,
                                     .path = index.files.empty() ? std::string() : index.files.front(),
                                     .problem = "nothing of it can be read"});
}

}  // namespace

RunState::RunState(RunFamily family) : family_(std::move(family)), summary_(family_) {
  for (const RunMember& member : family_.members) stamps_.push_back(stampOf(member.path));
}

bool RunState::changed() const {
  for (std::size_t i = 0; i < stamps_.size(); ++i) {
    const auto now = stampOf(family_.members[i].path);
    if (stamps_[i] && (!now || changeBetween(*stamps_[i], *now) != FileChange::None)) return true;
  }
  return false;
}

const RunMember& RunState::file(FileKind kind) const {
  if (const RunMember* member = family_.find(kind)) return *member;
  throw Error(Error::Kind::NotFound, {.message = Message::RunFileMissing,
                                      .path = root(),
                                      .problem = fmt::format("has no {} file", nameOf(kind))});
}

std::string RunState::pathOf(FileKind kind) const {
  const RunMember* member = family_.find(kind);
  return member ? member->path : std::string();
}

std::shared_ptr<const RestartIndex> RunState::restartIndex(StreamContext& context) const {
  return restart_.get(context, [&](Session& session) {
    const auto files = chooseFiles(session, family_, FileKind::Restart).files;
    if (files.empty()) file(FileKind::Restart);
    return checked(indexOfRestart(session, files, pathOf(FileKind::Rsspec)), context);
  });
}

std::shared_ptr<const RestartIndex> RunState::initIndex(StreamContext& context) const {
  return init_.get(context, [&](Session& session) {
    return checked(indexOfInit(session, file(FileKind::Init).path, pathOf(FileKind::Inspec)), context);
  });
}

std::shared_ptr<const Deck> RunState::deck(StreamContext& context) const {
  return deck_.get(context, [&](Session& session) { return Deck::read(file(FileKind::Deck).path, session); });
}

std::shared_ptr<const std::optional<ActiveCells>> RunState::activeCells(StreamContext& context,
                                                                        const std::string& grid,
                                                                        const GridCells& cells) const {
  const Lazy<std::optional<ActiveCells>>* known = nullptr;
  {
    const std::lock_guard lock(activeMutex_);
    known = &active_[{upper(trim(grid)), cells.cells, cells.active}];
  }
  return known->get(context, [&](Session& session) {
    auto found = findActiveCells(session, pathOf(FileKind::Init), pathOf(FileKind::EGrid), grid, cells);
    return found ? std::move(found) : activeInGridFile(context, grid, cells);
  });
}

void throwNotFound(const std::string& path, const std::string& problem, std::string_view name,
                   const std::vector<std::string>& names) {
  std::vector<std::string> similar;
  if (std::string better = closest(name, names); !better.empty()) similar.push_back(std::move(better));
  throw Error(Error::Kind::NotFound, {.message = Message::RequestMissing, .path = path, .problem = problem},
              std::move(similar));
}

void throwRefused(const std::string& path, const std::string& problem) {
  throw Error(Error::Kind::BadRequest,
              {.message = Message::RequestRefused, .path = path, .problem = problem});
}

}  // namespace lumbarn
