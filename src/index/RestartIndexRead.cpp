// Indexes that are read from an index file.

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../files/Extensions.h"
#include "../support/Guarded.h"
#include "IndexFileReading.h"
#include "RestartIndexAgreement.h"
#include "RestartIndexHeads.h"

namespace lumbarn {
namespace {

bool isSet(std::span<const std::string> files) {
  return files.size() > 1 || (!files.empty() && GetNumericPartOfFileName(files[0]) >= 0);
}

bool usesHighWord(const RestartIndex& index) {
  for (const IndexStep& step : index.steps) {
    for (const IndexGroup& group : step.groups) {
      if (std::ranges::any_of(group.entries, [](const auto& entry) { return entry.position >> 32 != 0; }))
        return true;
    }
  }
  return false;
}

/// There are writers that keep the low word of a position from being negative: their high word counts from
/// bit 31 on.
void countHighWordsFromBit31(RestartIndex& index) {
  for (IndexStep& step : index.steps) {
    for (IndexGroup& group : step.groups) {
      for (IndexEntry& entry : group.entries)
        entry.position = (entry.position >> 32 << 31) + static_cast<std::uint32_t>(entry.position);
    }
  }
}

/// Adds the groups of an index file's grids to a step; grids without arrays are skipped. Gives what is wrong
/// when the arrays of a grid do not fit together.
std::string addGroups(const std::vector<IndexFileGrid>& grids, IndexStep& step) {
  std::string problem;
  for (const IndexFileGrid& grid : grids) {
    if (grid.keywords.empty()) continue;
    IndexGroup& group = step.groups.emplace_back();
    if (!toGroup(grid, group, problem))
      return fmt::format("grid {} of step {}: {}", nameOf(group), step.number, problem);
  }
  return {};
}

constexpr const char* notRead = "it cannot be read";

/// Adds the steps of an index file; gives what is wrong with it.
std::string addSteps(Session& session, const std::string& rsspec, RestartIndex& index) {
  std::string problem;
  IndexFileHead head;
  const auto take = [&](const IndexFileStep& step) {
    if (!problem.empty()) return;
    IndexStep& made = index.steps.emplace_back();
    made.number = step.iStep;
    made.days = step.dTime;
    made.date = makeMoment(step.iYear, step.iMonth, step.iDay);
    problem = addGroups(step.grids, made);
  };
  const bool done = succeeds(session, "qvEclipseRSSPEC", "getRSSPECData", [&] {
    const auto form = formOfIndexFile(rsspec);
    return form && readRsspec(rsspec, *form, session, head, take);
  });
  index.header = std::move(head.iHeader);
  return done ? problem : notRead;
}

/// The same for the one step of an INIT file, whose groups come in several passes.
std::string addPasses(Session& session, const std::string& inspec, RestartIndex& index) {
  std::string problem;
  IndexFileHead head{.init = true};
  IndexStep& step = index.steps.emplace_back();
  const auto take = [&](const IndexFilePass& pass) {
    if (problem.empty()) problem = addGroups(pass.grids, step);
  };
  const bool done = succeeds(session, "qvEclipseINSPECFile", "getINSPECData", [&] {
    const auto form = formOfIndexFile(inspec);
    return form && readInspec(inspec, *form, session, head, take);
  });
  index.header = std::move(head.iHeader);
  step.date = dateOfHead(index.header, 0);
  return done ? problem : notRead;
}

/// `read`, which an index file holds, when it agrees with its files; otherwise, and when there was a
/// `problem` in reading it, a diagnosis and what `walk` gives.
template <class Walk>
RestartIndex agreeingIndex(Session& session, const std::string& indexFile, RestartIndex read,
                           std::string problem, Walk walk) {
  if (problem.empty()) {
    problem = disagreement(read);
    if (!problem.empty() && usesHighWord(read)) {
      countHighWordsFromBit31(read);
      if (disagreement(read).empty()) problem.clear();
    }
  }
  read.fromFile = problem.empty();
  if (read.fromFile) return read;
  if (session.cancelled()) return walk();
  session.diagnose({.message = Message::IndexDisagrees,
                    .path = indexFile,
                    .found = problem,
                    .action = "walked the files"});
  return walk();
}

}  // namespace

RestartIndex indexOfRestart(Session& session, std::span<const std::string> files, const std::string& rsspec) {
  const auto walk = [&] { return walkRestart(session, files); };
  if (rsspec.empty()) return walk();
  RestartIndex read;
  read.setFiles({files.begin(), files.end()});
  read.unified = !isSet(files);
  std::string problem = addSteps(session, rsspec, read);
  return agreeingIndex(session, rsspec, std::move(read), std::move(problem), walk);
}

RestartIndex indexOfInit(Session& session, const std::string& file, const std::string& inspec) {
  const auto walk = [&] { return walkInit(session, file); };
  if (inspec.empty()) return walk();
  RestartIndex read;
  read.setFiles({file});
  read.init = true;
  std::string problem = addPasses(session, inspec, read);
  return agreeingIndex(session, inspec, std::move(read), std::move(problem), walk);
}

}  // namespace lumbarn
