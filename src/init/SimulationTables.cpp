#include "SimulationTables.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "../support/Diagnosis.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

std::string canonical(std::string_view zTable) { return upper(trim(zTable)); }

}  // namespace

void SimulationTables::clear() {
  words_.fill(0);
  qTABDIMS_ = false;
  dTAB_.clear();
  tables_.clear();
  nSaturationTables_ = nSaturationRows_ = nPVTTables_ = nPVTOuterRows_ = nPVTRows_ = 0;
}

bool SimulationTables::setWords(std::span<const std::int32_t> iTABDIMS) {
  if (iTABDIMS.empty()) return false;
  qTABDIMS_ = true;
  words_.fill(0);
  std::ranges::copy(iTABDIMS.first(std::min(iTABDIMS.size(), words_.size())), words_.begin());
  nSaturationTables_ = std::max({nSaturationTables_, word(23), word(26), word(30)});
  nSaturationRows_ = std::max({nSaturationRows_, word(22), word(25), word(29)});
  nPVTTables_ = std::max({nPVTTables_, word(11), word(13), word(18)});
  nPVTOuterRows_ = std::max({nPVTOuterRows_, word(9), word(16)});
  nPVTRows_ = std::max({nPVTRows_, word(10), word(17)});
  if (iTABDIMS.size() >= words_.size()) return true;
  diagnoseDims(Message::InitTableWords, {}, fmt::format("{} words", words_.size()),
               fmt::format("{}", iTABDIMS.size()),
               "omitted the tables that the missing words would describe");
  return false;
}

void SimulationTables::diagnoseDims(Message message, std::string problem, std::string expected,
                                    std::string found, std::string action) const {
  session_->diagnose(Diagnosis{.message = message,
                               .path = FileName,
                               .problem = std::move(problem),
                               .keyword = "TABDIMS",
                               .offset = offset,
                               .expected = std::move(expected),
                               .found = std::move(found),
                               .action = std::move(action)});
}

bool SimulationTables::build() {
  tables_.clear();
  if (!qTABDIMS_) return true;
  const auto blocks = tablesInUse(words_, iPhases_, properties_, dTAB_.size());
  bool all = true;
  for (const auto& described : blocks) {
    const TableBlock block = asConstantCompressibility(described);
    all = add(block.name, block.iStart, block.parent, block.iDimens) && all;
  }
  if (tables_.empty())
    diagnoseDims(Message::InitTablesNone, {}, {},
                 fmt::format("{} descriptions of tables in use", blocks.size()),
                 "listed no simulation tables");
  return all;
}

/// A deck's PVDO has at least two rows. A single one is that of a PVCDO, whose third column in TAB is a
/// compressibility, so that it must not be divided as the reciprocal of a PVDO.
TableBlock SimulationTables::asConstantCompressibility(TableBlock block) const {
  constexpr std::string_view constant = "PVCDO";
  const auto first = static_cast<std::size_t>(block.iStart) - 1;
  if (block.name != "PVDO" || block.count > dTAB_.size() || first > dTAB_.size() - block.count) return block;
  const auto rows = static_cast<std::size_t>(block.iDimens[0]);
  const auto tables = static_cast<std::size_t>(block.iDimens[1]);
  for (std::size_t table = 0; table < tables; ++table) {
    const auto pressures = std::span(dTAB_).subspan(first + table * rows, rows);
    if (std::ranges::count_if(pressures, [](double value) { return !isBlank(value); }) != 1) return block;
  }
  block.name = constant;
  block.iDimens.back() = GRAFTableColumns(constant);
  return block;
}

bool SimulationTables::add(std::string_view zTable, std::int32_t iStart, std::string_view zParent,
                           std::span<const std::int32_t> iDimens) {
  if (iStart < 1) return true;
  if (iDimens.size() < 2 || iDimens.size() > 5) return false;
  const std::size_t behind = dTAB_.size() - std::min(dTAB_.size(), static_cast<std::size_t>(iStart) - 1);
  const std::size_t count = tableSize(iDimens);
  if (count > behind) {
    diagnoseDims(Message::InitTableExtent, fmt::format("table {} does not lie in TAB", zTable),
                 fmt::format("at most {} values from {} on", behind, iStart),
                 fmt::format("{}", fmt::join(iDimens, " x ")), "omitted the table");
    return false;
  }
  if (count == 0) return true;  // a table without rows is not an error
  const auto* first = dTAB_.data() + iStart - 1;
  tables_.push_back({canonical(zTable),
                     iStart,
                     canonical(zParent),
                     {iDimens.begin(), iDimens.end()},
                     static_cast<std::int32_t>(iDimens.size()),
                     {first, first + count}});
  return true;
}

const tTableInfo* SimulationTables::find(std::string_view zTable) const {
  const auto found = std::ranges::find(tables_, canonical(zTable), &tTableInfo::zTable);
  return found == tables_.end() ? nullptr : &*found;
}

std::vector<std::string> SimulationTables::names() const {
  std::vector<std::string> names;
  for (const auto& table : tables_) names.push_back(table.zTable);
  return names;
}

std::int32_t SimulationTables::getTableIndex(std::string_view zTable) const {
  const auto* table = find(zTable);
  return table ? static_cast<std::int32_t>(table - tables_.data()) + 1 : 0;
}

std::int32_t SimulationTables::getNumberTables(std::string_view zTable) const {
  const auto* table = find(zTable);
  return table ? table->count() : 0;
}

}  // namespace lumbarn
