#include "qvEclipseDTAB.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "../support/Diagnosis.h"
#include "../support/Guarded.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseDTAB";

std::string canonical(std::string_view zTable) { return upper(trim(zTable)); }

}  // namespace

void EclipseFluids(std::int32_t nPhases, bool& Oil, bool& Water, bool& Gas, bool& qOK) {
  constexpr std::int32_t oilBit = 1, waterBit = 2, gasBit = 4;
  qOK = nPhases >= 1 && nPhases <= 7;
  Oil = qOK && (nPhases & oilBit) != 0;
  Water = qOK && (nPhases & waterBit) != 0;
  Gas = qOK && (nPhases & gasBit) != 0;
}

void qvEclipseDTAB::clear() {
  words_.fill(0);
  qTABDIMS_ = false;
  dTAB_.clear();
  tables_.clear();
  nSaturationTables_ = nSaturationRows_ = nPVTTables_ = nPVTOuterRows_ = nPVTRows_ = 0;
}

void qvEclipseDTAB::processTABDIMS(std::span<const std::int32_t> iTABDIMS, bool& qOK) {
  qOK = false;
  if (iTABDIMS.empty()) return;
  qTABDIMS_ = true;
  words_.fill(0);
  std::ranges::copy(iTABDIMS.first(std::min(iTABDIMS.size(), words_.size())), words_.begin());
  nSaturationTables_ = std::max({nSaturationTables_, word(23), word(26), word(30)});
  nSaturationRows_ = std::max({nSaturationRows_, word(22), word(25), word(29)});
  nPVTTables_ = std::max({nPVTTables_, word(11), word(13), word(18)});
  nPVTOuterRows_ = std::max({nPVTOuterRows_, word(9), word(16)});
  nPVTRows_ = std::max({nPVTRows_, word(10), word(17)});
  qOK = iTABDIMS.size() >= words_.size();
  if (qOK) return;
  Diagnosis diagnosis;
  diagnosis.path = FileName;
  diagnosis.keyword = "TABDIMS";
  diagnosis.offset = offset;
  diagnosis.problem = "record is shorter than usual";
  diagnosis.expected = fmt::format("{} words", words_.size());
  diagnosis.found = fmt::format("{}", iTABDIMS.size());
  diagnosis.action = "the tables that the missing words would describe are left out";
  session_->diagnose(std::move(diagnosis));
}

void qvEclipseDTAB::addDTAB(std::vector<double> dTAB, bool& qOK) {
  dTAB_ = std::move(dTAB);
  qOK = true;
}

void qvEclipseDTAB::GetTABDIMS(std::vector<std::int32_t>& iTABDIMS) const {
  iTABDIMS.assign(words_.begin(), words_.end());
}

void qvEclipseDTAB::processTables(bool& qOK) {
  guarded(*session_, qOK, className, "processTables", [&] {
    tables_.clear();
    if (!qTABDIMS_) return true;
    bool Oil = false, Water = false, Gas = false, qPhases = false;
    EclipseFluids(iPhases_, Oil, Water, Gas, qPhases);
    // The order is part of what hosts see: it is that of the list, and a failure leaves the ones behind out.
    std::vector<std::string_view> wanted;
    const auto want = [&](std::initializer_list<std::string_view> names) {
      wanted.insert(wanted.end(), names);
    };
    if (Water) want({"SWFN", "PVTW"});
    if (Gas) want({"SGFN"});
    if (Gas && properties_.VapourisedOil) want({"PVTG", "PGAS"});
    if (Gas && !properties_.VapourisedOil) want({"PVDG"});
    if (Gas) want({"RVVD"});
    if (Oil) want({Water && Gas ? "SOF3" : "SOF2"});
    if (Oil && properties_.DissolvedGas) want({"PVTO", "RS"});
    if (Oil && !properties_.DissolvedGas) want({"PVDO"});
    if (Oil) want({"RSVD"});
    want({"DENSITY", properties_.RockCompaction ? "ROCKTAB" : "ROCK", "EQUIL"});
    const bool all = std::ranges::all_of(wanted, [&](std::string_view name) { return addByLayout(name); });
    tellOverlaps();
    return all;
  });
}

bool qvEclipseDTAB::addByLayout(std::string_view zTable) {
  const auto& layout = *tableLayout(zTable);
  const auto iStart = word(layout.startWord);
  const auto nEach = word(layout.tablesWord);
  if (iStart < 1 || nEach < 1) return true;
  std::vector<std::int32_t> iDimens{word(layout.rowsWord), nEach, GRAFTableColumns(zTable)};
  if (layout.outerWord != 0) iDimens.insert(iDimens.begin(), word(layout.outerWord));
  bool qAdded = false;
  addTable(zTable, iStart, layout.parent, iDimens, qAdded);
  return qAdded;
}

/// Whether a block of these sizes lies in TAB, and how many values it has.
bool qvEclipseDTAB::placeInTab(std::string_view zTable, std::int32_t iStart,
                               std::span<const std::int32_t> iDimens, std::size_t& count) const {
  const std::size_t behind = dTAB_.size() - std::min(dTAB_.size(), static_cast<std::size_t>(iStart) - 1);
  count = 1;
  bool fits = true;
  for (const auto size : iDimens) {
    fits = fits && size >= 0 && (size == 0 || count <= behind / static_cast<std::size_t>(size));
    if (fits) count *= static_cast<std::size_t>(size);
  }
  if (fits) return true;
  Diagnosis diagnosis;
  diagnosis.path = FileName;
  diagnosis.keyword = "TABDIMS";
  diagnosis.offset = offset;
  diagnosis.problem = fmt::format("table {} does not lie in TAB", zTable);
  diagnosis.expected = fmt::format("at most {} values from {} on", behind, iStart);
  diagnosis.found = fmt::format("{}", fmt::join(iDimens, " x "));
  diagnosis.action = fmt::format("kept the {} tables before it", tables_.size());
  session_->diagnose(std::move(diagnosis));
  return false;
}

void qvEclipseDTAB::addTable(std::string_view zTable, std::int32_t iStart, std::string_view zParent,
                             std::span<const std::int32_t> iDimens, bool& qOK) {
  guarded(*session_, qOK, className, "addTable", [&] {
    if (iStart < 1) return true;
    if (iDimens.size() < 2 || iDimens.size() > 5) return false;
    std::size_t count = 0;
    if (!placeInTab(zTable, iStart, iDimens, count)) return false;
    if (count == 0) return true;  // no rows are no table, and no reason to leave out those behind
    const auto* first = dTAB_.data() + iStart - 1;
    tables_.push_back({canonical(zTable),
                       iStart,
                       canonical(zParent),
                       {iDimens.begin(), iDimens.end()},
                       static_cast<std::int32_t>(iDimens.size()),
                       {first, first + count}});
    return true;
  });
}

std::string qvEclipseDTAB::overlaps(std::string_view zTable) const {
  const auto* table = find(zTable);
  const auto inUse = [&](const tTableInfo& one) {
    const auto* layout = tableLayout(one.zTable);
    return !layout || word(layout->startWord) != 1 || word(layout->outerWord) != 1 ||
           word(layout->rowsWord) != 1 || word(layout->tablesWord) != 1;
  };
  if (!table || inUse(*table)) return {};
  const auto last = [](const tTableInfo& one) { return one.iStart + std::ssize(one.dValues); };
  for (const auto& other : tables_) {
    if (inUse(other) && other.iStart < last(*table) && table->iStart < last(other)) return other.zTable;
  }
  return {};
}

/// The list keeps such tables, as hosts know it; only a diagnosis and `overlaps` tell them apart.
void qvEclipseDTAB::tellOverlaps() const {
  std::vector<std::string> names;
  std::string owner;
  for (const auto& table : tables_) {
    const auto other = overlaps(table.zTable);
    if (other.empty()) continue;
    names.push_back(table.zTable);
    owner = other;
  }
  if (names.empty()) return;
  Diagnosis diagnosis;
  diagnosis.path = FileName;
  diagnosis.keyword = "TABDIMS";
  diagnosis.offset = offset;
  diagnosis.problem = fmt::format("{} would stand where {} stands", fmt::join(names, ", "), owner);
  diagnosis.action = "kept, though their words are all 1, which some writers leave in words not in use";
  diagnosis.certainty = Certainty::Guess;
  session_->diagnose(std::move(diagnosis));
}

const tTableInfo* qvEclipseDTAB::find(std::string_view zTable) const {
  const auto found = std::ranges::find(tables_, canonical(zTable), &tTableInfo::zTable);
  return found == tables_.end() ? nullptr : &*found;
}

void qvEclipseDTAB::getTableNames(std::vector<std::string>& zTables, std::int32_t& nTables) const {
  zTables.clear();
  for (const auto& table : tables_) zTables.push_back(table.zTable);
  nTables = this->nTables();
}

std::int32_t qvEclipseDTAB::getTableIndex(std::string_view zTable) const {
  const auto* table = find(zTable);
  return table ? static_cast<std::int32_t>(table - tables_.data()) + 1 : 0;
}

std::int32_t qvEclipseDTAB::getNumberTables(std::string_view zTable) const {
  const auto* table = find(zTable);
  return table ? table->iDimens[table->iDimens.size() - 2] : 0;
}

void qvEclipseDTAB::getTableProperties(std::string_view zTable, std::vector<std::int32_t>& iDimens,
                                       std::int32_t& nDims, bool& qOK) const {
  const auto* table = find(zTable);
  qOK = table != nullptr;
  if (qOK) iDimens = table->iDimens;
  nDims = qOK ? table->nDims : 0;
}

void qvEclipseDTAB::getAllTableProperties(std::vector<std::string>& zTables,
                                          std::vector<std::string>& zParents,
                                          std::vector<std::int32_t>& nEach, bool& qOK) const {
  guarded(*session_, qOK, className, "getAllTableProperties", [&] {
    zTables.clear();
    zParents.clear();
    nEach.clear();
    for (const auto& table : tables_) {
      zTables.push_back(table.zTable);
      zParents.push_back(table.zParent);
      nEach.push_back(table.iDimens[table.iDimens.size() - 2]);
    }
  });
}

void qvEclipseDTAB::GetRelatedTables(std::string_view zTable, std::vector<std::string>& zList,
                                     std::int32_t& nList, bool& qOK) const {
  const auto related = relatedTable(canonical(zTable));
  zList.clear();
  if (!related.empty()) zList.emplace_back(related);
  nList = static_cast<std::int32_t>(zList.size());
  qOK = true;
}

}  // namespace lumbarn
