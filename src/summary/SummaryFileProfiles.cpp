// Profiles along horizontal wells: what a restart chain of summaries has to collect for them.

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../record/RecordCursor.h"
#include "../shapes/HeaderLayout.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../vocabulary/Units.h"
#include "SpecHeaders.h"
#include "SummaryMerge.h"
#include "qvEclipseSUMMARYFile.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSUMMARYFile";

/// Nothing when the run has none, or they do not fit.
std::optional<ConnectionData> connectionsOf(qvEclipseSPEC& spec, qvEclipseSUMMARY& summary,
                                            Session& session) {
  ConnectionData data;
  std::vector<bool> qMask;
  auto headers = makeConnectionHeaders(spec, qMask, session);
  if (!headers) return std::nullopt;
  data.bHeaders = std::move(*headers);
  data.sData = summary.tableOf(qMask);
  auto lengths = session.cancelled() ? std::nullopt : connectionLengths(spec, qMask);
  if (!lengths) return std::nullopt;
  data.sLengths = std::move(lengths->values);
  data.zUnits = std::move(lengths->unit);
  return data;
}

/// Consecutive vectors of one mnemonic, with the number of connections of each member.
struct MnemonicMembers {
  std::string_view mnemonic;
  std::vector<std::pair<std::string_view, std::size_t>> members;
};

std::vector<MnemonicMembers> membersByMnemonic(const ByteTable& bHeaders) {
  const HeaderField variable = headerField(attributeVariable), owner = headerField(attributeMember);
  std::vector<MnemonicMembers> all;
  for (std::size_t i = 1; i <= bHeaders.entries(); ++i) {
    const auto mnemonic = bHeaders.get(i, variable.firstByte, variable.width);
    const auto member = bHeaders.get(i, owner.firstByte, owner.width);
    if (all.empty() || all.back().mnemonic != mnemonic) all.push_back({mnemonic, {}});
    auto& members = all.back().members;
    if (members.empty() || members.back().first != member) members.emplace_back(member, 0);
    ++members.back().second;
  }
  return all;
}

/// The header of KEYWORDS. Looked for only where a report needs it.
std::optional<std::uint64_t> keywordsAt(const std::string& path) {
  std::string why;
  const auto cursor = openRecords(path, why);
  while (cursor && cursor->next()) {
    if (cursor->header().keyword == "KEYWORDS") return cursor->header().headerAt;
  }
  return std::nullopt;
}

/// Whether each mnemonic has as many connections of each member as the first. The lengths of the first serve
/// for all of them, and a mnemonic with fewer connections would be filled with values of the next one.
bool haveSameConnections(Session& session, const ByteTable& bHeaders, const std::string& path) {
  const auto all = membersByMnemonic(bHeaders);
  for (const auto& [mnemonic, members] : all) {
    const auto& first = all.front();
    const auto [expected, found] = std::ranges::mismatch(first.members, members);
    const bool more = expected != first.members.end();
    if (!more && found == members.end()) continue;
    const std::string_view member = more ? expected->first : found->first;
    const bool same = found != members.end() && found->first == member;
    session.diagnose({.message = Message::SpecRecordLength,
                      .path = path,
                      .problem = "profiles need the same connections for each mnemonic",
                      .keyword = "KEYWORDS",
                      .occurrence = 1,
                      .offset = keywordsAt(path),
                      .expected = fmt::format("{} of {} for {}, as for {}", more ? expected->second : 0,
                                              member, mnemonic, first.mnemonic),
                      .found = std::to_string(same ? found->second : 0),
                      .action = "built no profiles"});
    return false;
  }
  return true;
}

}  // namespace

bool qvEclipseSUMMARYFile::buildProfiles(bool qInflow, bool qConnect, bool qMiniSteps) {
  if (!qInflow && !qConnect) return true;
  const auto connections = getDataUsedForHorizontalWells();
  if (!connections || !haveSameConnections(*session_, connections->bHeaders, xSPEC.front()->zFileName)) {
    return false;
  }
  times_ = xSUMMARY.front()->column(1);
  const HorizontalSource source{connections->bHeaders, connections->sData, connections->sLengths,
                                connections->zUnits, xSUMMARY.front()->iSteps};
  return horizontal_.build(source, qInflow, qConnect, qMiniSteps);
}

std::optional<ConnectionData> qvEclipseSUMMARYFile::getDataUsedForHorizontalWells() {
  if (xSPEC.empty()) return std::nullopt;
  auto merged = connectionsOf(*xSPEC.front(), *xSUMMARY.front(), *session_);
  if (!merged) return std::nullopt;
  for (std::size_t run = 1; run < xSPEC.size(); ++run) {
    // Deliberate: an earlier run that has no such data, or does not fit, is skipped without a word of it.
    succeeds(*session_, "SummaryMerge", "mergeSUMMARYHorizData", [&] {
      const auto earlier = connectionsOf(*xSPEC[run], *xSUMMARY[run], *session_);
      return earlier && mergeConnections(*session_, earlier->bHeaders, earlier->sData, earlier->sLengths,
                                         merged->bHeaders, merged->sData, merged->sLengths);
    });
  }
  // Deliberate: steps, rows and dates of profiles are those of the newest run also where rows of earlier runs
  // precede its own. Hosts know it so; each profile that is fetched is reported with a remark.
  profilesOfChain_ = merged->sData.rows() > xSUMMARY.front()->rows().size();
  const auto source = headerField(attributeSource);
  for (std::size_t i = 1; i <= merged->bHeaders.entries(); ++i) {
    merged->bHeaders.put(i, source.firstByte, source.width, zOrigin);
  }
  return merged;
}

HorizontalTable qvEclipseSUMMARYFile::profilesOf(std::int32_t iStep, bool qInflow) const {
  auto profiles = horizontal_.step(qInflow, iStep);
  if (profilesOfChain_) session_->diagnose({.message = Message::ChainProfiles, .path = zFileName});
  return profiles;
}

std::optional<std::string> qvEclipseSUMMARYFile::dateOf(std::int32_t iRow) {
  return inRoutine(className, "GetDateStamp", [&] {
    if (times_.empty() && !xSUMMARY.empty()) times_ = xSUMMARY.front()->column(1);
    if (iRow < 1 || static_cast<std::size_t>(iRow) > times_.size()) throw Fault(FaultNumber::Subscript);
    // The date alone, deliberately: the time of day that hosts of old might add is that of today's date,
    // which has none.
    const double perDay = timeUnit_.empty() ? unitsPerDay(iUnits) : unitsPerDay(timeUnit_);
    return dateStamp(zStartDate, perDay, times_[static_cast<std::size_t>(iRow - 1)]);
  });
}

}  // namespace lumbarn
