// Profiles along horizontal wells: what a restart chain of summaries has to collect for them.

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../record/RecordCursor.h"
#include "../shapes/HeaderLayout.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../vocabulary/Units.h"
#include "SummaryMerge.h"
#include "qvEclipseSUMMARYFile.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSUMMARYFile";

/// Connection vectors of one run with their values and lengths.
bool readConnections(qvEclipseSPEC& spec, qvEclipseSUMMARY& summary, ByteTable& bHeaders, XYData& sData,
                     std::vector<float>& sLengths, std::string& zUnits) {
  std::vector<bool> qMask;
  bool qOK = false;
  spec.getHorizontalHeaders(bHeaders, qMask, qOK);
  if (!qOK) return false;
  summary.getSummaryArray(sData, qMask, qOK);
  if (!qOK) return false;
  spec.getHorizontalLengths(sLengths, zUnits, qOK);
  return qOK;
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

void qvEclipseSUMMARYFile::getHorizontalData(bool qInflow, bool qConnect, bool qMiniSteps, bool& qOK) {
  guarded(*session_, qOK, className, "getHorizontalData", [&] {
    if (!qInflow && !qConnect) return true;
    ByteTable bHeaders;
    XYData sData;
    std::vector<float> sLengths;
    std::string zUnits;
    if (!getDataUsedForHorizontalWells(bHeaders, sData, sLengths, zUnits)) return false;
    if (!haveSameConnections(*session_, bHeaders, xSPEC.front()->zFileName)) return false;
    bool qDone = false;
    xSUMMARY.front()->GetColumnData(1, times_, qDone);
    if (!qDone) return false;
    const HorizontalSource source{bHeaders, sData, sLengths, zUnits, xSUMMARY.front()->iSteps};
    horizontal_.getHorizontalData(source, qInflow, qConnect, qMiniSteps, qDone);
    return qDone;
  });
}

bool qvEclipseSUMMARYFile::getDataUsedForHorizontalWells(ByteTable& bHeaders, XYData& sData,
                                                         std::vector<float>& sLengths, std::string& zUnits) {
  if (xSPEC.empty() ||
      !readConnections(*xSPEC.front(), *xSUMMARY.front(), bHeaders, sData, sLengths, zUnits)) {
    return false;
  }
  for (std::size_t run = 1; run < xSPEC.size(); ++run) {
    ByteTable bEarlier;
    XYData sEarlier;
    std::vector<float> sEarlierLengths;
    std::string zEarlierUnits;
    // Deliberate: an earlier run that has no such data, or does not fit, is skipped without a report.
    if (!readConnections(*xSPEC[run], *xSUMMARY[run], bEarlier, sEarlier, sEarlierLengths, zEarlierUnits))
      continue;
    bool qMerged = false;
    mergeSUMMARYHorizData(*session_, bEarlier, sEarlier, sEarlierLengths, bHeaders, sData, sLengths, false,
                          qMerged);
  }
  // Deliberate: steps, rows and dates of profiles are those of the newest run also where rows of earlier runs
  // precede its own. Hosts know it so; each profile that is fetched is reported with a remark.
  profilesOfChain_ = sData.rows() > xSUMMARY.front()->rows().size();
  const auto source = headerField(attributeSource);
  for (std::size_t i = 1; i <= bHeaders.entries(); ++i)
    bHeaders.put(i, source.firstByte, source.width, zOrigin);
  return true;
}

void qvEclipseSUMMARYFile::getHorizontalData(std::int32_t iStep, bool qInflow, XYData& xyData,
                                             ByteTable& bHeaders, std::string& zDate, bool& qOK) {
  guarded(*session_, qOK, className, "getHorizontalData", [&] {
    bool qDone = false;
    horizontal_.getHoriz(qInflow, iStep, xyData, bHeaders, qDone);
    if (!qDone) return false;
    if (profilesOfChain_) session_->diagnose({.message = Message::ChainProfiles, .path = zFileName});
    GetDateStamp(horizontal_.iHorizSteps.at(static_cast<std::size_t>(iStep - 1)), zDate, qDone);
    return qDone;
  });
}

void qvEclipseSUMMARYFile::GetDateStamp(std::int32_t iRow, std::string& zDate, bool& qOK) {
  guarded(*session_, qOK, className, "GetDateStamp", [&] {
    bool qDone = false;
    if (times_.empty() && !xSUMMARY.empty()) {
      xSUMMARY.front()->GetColumnData(1, times_, qDone);
      if (!qDone) return false;
    }
    if (iRow < 1 || static_cast<std::size_t>(iRow) > times_.size()) throw Fault(FaultNumber::Subscript);
    // The date alone, deliberately: the time of day that hosts of old might add is that of today's date,
    // which has none.
    const double perDay = timeUnit_.empty() ? unitsPerDay(iUnits) : unitsPerDay(timeUnit_);
    lumbarn::GetDateStamp(*session_, zStartDate, perDay, times_[static_cast<std::size_t>(iRow - 1)], zDate,
                          qDone);
    return qDone;
  });
}

}  // namespace lumbarn
