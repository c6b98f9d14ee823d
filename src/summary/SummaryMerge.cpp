#include "SummaryMerge.h"

#include <algorithm>
#include <utility>

#include "../shapes/HeaderLayout.h"
#include "../shapes/VectorData.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "ChainTable.h"
#include "HeaderMerge.h"

namespace lumbarn {
namespace {

constexpr const char* className = "SummaryMerge";

/// The chain of the two tables. A main table without rows may have no columns either; the pairs count them.
ChainPlan planMerge(const XYData& sOld, const TextPairs& pairs, const XYData& sMain) {
  const std::size_t mainColumns = sMain.columns() > 0 ? sMain.columns() : pairs.iMatch.size();
  if (pairs.iMatch.size() < mainColumns) throw Fault(FaultNumber::Subscript);
  ChainPlan plan;
  plan.addNewest(sMain.rows(), mainColumns);
  ChainPart old;
  if (!sOld.empty()) {
    const auto firstTime = sMain.empty() ? std::nullopt : std::optional(sMain(1, 1));
    old.rows = rowsBefore(sOld.column(1), {}, firstTime);
  }
  for (const std::int32_t number : std::span(pairs.iMatch).first(mainColumns))
    old.sources.push_back({number});
  for (const std::int32_t number : pairs.iNew) old.sources.push_back({number});
  plan.add(std::move(old));
  return plan;
}

/// The old main table from the file of the new one.
void restore(const Session& session, const ScratchFile& scratch, const ChainPlan& plan, std::size_t columns,
             XYData& sMain) {
  sMain = XYData();
  sMain = XYData(plan.parts()[0].rows, columns, session);
  if (sMain.empty()) return;
  for (std::size_t column = 1; column <= columns; ++column) {
    scratch.read(sMain.column(column), (column - 1) * plan.rows() + plan.parts()[1].rows);
  }
}

enum class Through { Memory, File };

void mergeValues(Session& session, const XYData& sOld, const TextPairs& pairs, XYData& sMain,
                 Through through = Through::Memory) {
  const bool memory = through == Through::Memory;
  inRoutine(className, memory ? "mergeData" : "mergeDataFormScratchfile", [&] {
    const ChainPlan plan = planMerge(sOld, pairs, sMain);
    if (plan.parts()[1].rows == 0 && pairs.iNew.empty()) return;
    const RunTables runs{
        {&sMain, &sOld},
        [&] { sMain = XYData(); },
        [&, columns = sMain.columns()](const auto& file) { restore(session, file, plan, columns, sMain); }};
    XYData merged;
    (memory ? mergeTables : mergeThroughFile)(session, plan, runs, merged);
    sMain = std::move(merged);
  });
}

/// The numbers that a host counts.
std::span<const std::int32_t> counted(std::span<const std::int32_t> iNew, std::int32_t nNew) {
  if (nNew > 0 && static_cast<std::size_t>(nNew) > iNew.size()) throw Fault(FaultNumber::Subscript);
  return iNew.first(static_cast<std::size_t>(std::max(nNew, 0)));
}

TextPairs pairsOf(std::span<const std::int32_t> iNew, std::int32_t nNew,
                  std::span<const std::int32_t> iMatch) {
  const auto added = counted(iNew, nNew);
  return {{iMatch.begin(), iMatch.end()}, {added.begin(), added.end()}};
}

void hand(TextPairs pairs, std::vector<std::int32_t>& iNew, std::int32_t& nNew,
          std::vector<std::int32_t>& iMatch) {
  iMatch = std::move(pairs.iMatch);
  iNew = std::move(pairs.iNew);
  nNew = static_cast<std::int32_t>(iNew.size());
}

void hand(std::vector<std::string> keys, std::vector<std::string>& zKeys,
          std::vector<std::int32_t>& nLengths) {
  zKeys = std::move(keys);
  nLengths.clear();
  for (const std::string& key : zKeys) nLengths.push_back(static_cast<std::int32_t>(key.size()));
}

/// Adds values behind headers, and takes the headers back when that fails.
template <class MergeValues>
void mergeBehind(ByteTable& bMain, std::size_t headersBefore, MergeValues merge) {
  try {
    merge();
  } catch (...) {
    bMain.resize(headersBefore);
    throw;
  }
}

XYData columnOf(std::span<const float> values, const Session& session) {
  XYData column(values.size(), 1, session);
  std::ranges::copy(values, column.values().begin());
  return column;
}

}  // namespace

void createSummaryList(Session& session, const ByteTable& bHeaders, std::vector<std::string>& zKeys,
                       std::vector<std::int32_t>& nLengths, bool& qOK) {
  guarded(session, qOK, className, "createSummaryList", [&] { hand(headerKeys(bHeaders), zKeys, nLengths); });
}

void createStoreSummaryList(Session& session, const AttributeStores& xStore, const ByteTable& bPointers,
                            std::vector<std::string>& zKeys, std::vector<std::int32_t>& nLengths, bool& qOK) {
  guarded(session, qOK, className, "createStoreSummaryList", [&] {
    auto keys = headerKeys(xStore, bPointers);
    if (keys) hand(std::move(*keys), zKeys, nLengths);
    return keys.has_value();
  });
}

void checkSummaryList(Session& session, const ByteTable& bOld, const ByteTable& bMain,
                      std::vector<std::int32_t>& iNew, std::int32_t& nNew, std::vector<std::int32_t>& iMatch,
                      bool& qOK) {
  guarded(session, qOK, className, "checkSummaryList", [&] {
    auto pairs = pairHeaders(bOld, bMain);
    if (pairs) hand(std::move(*pairs), iNew, nNew, iMatch);
    return pairs.has_value();
  });
}

void checkStoreSummaryList(Session& session, const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                           const AttributeStores& xStoreMain, const ByteTable& bPointersMain,
                           std::vector<std::int32_t>& iNew, std::int32_t& nNew,
                           std::vector<std::int32_t>& iMatch, bool& qOK) {
  guarded(session, qOK, className, "checkStoreSummaryList", [&] {
    auto pairs = pairHeaders(xStoreOld, bPointersOld, xStoreMain, bPointersMain);
    if (pairs) hand(std::move(*pairs), iNew, nNew, iMatch);
    return pairs.has_value();
  });
}

void mergeHeaders(Session& session, const ByteTable& bOld, std::span<const std::int32_t> iNew,
                  std::int32_t nNew, ByteTable& bMain, bool& qOK) {
  guarded(session, qOK, className, "mergeHeaders", [&] { addHeaders(bOld, counted(iNew, nNew), bMain); });
}

void mergeStoreHeaders(Session& session, const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                       std::span<const std::int32_t> iNew, std::int32_t nNew, AttributeStores& xStoreMain,
                       ByteTable& bPointersMain, bool& qOK) {
  guarded(session, qOK, className, "mergeStoreHeaders", [&] {
    return addHeaders(xStoreOld, bPointersOld, counted(iNew, nNew), xStoreMain, bPointersMain);
  });
}

void mergeData(Session& session, const XYData& sOld, std::span<const std::int32_t> iNew, std::int32_t nNew,
               std::span<const std::int32_t> iMatch, XYData& sMain, bool& qOK) {
  guarded(session, qOK, className, "mergeData",
          [&] { mergeValues(session, sOld, pairsOf(iNew, nNew, iMatch), sMain); });
}

void mergeDataFormScratchfile(Session& session, const XYData& sOld, std::span<const std::int32_t> iNew,
                              std::int32_t nNew, std::span<const std::int32_t> iMatch, XYData& sMain,
                              bool& qOK) {
  guarded(session, qOK, className, "mergeDataFormScratchfile",
          [&] { mergeValues(session, sOld, pairsOf(iNew, nNew, iMatch), sMain, Through::File); });
}

void mergeSUMMARYData(Session& session, const ByteTable& bOld, const XYData& sOld, ByteTable& bMain,
                      XYData& sMain, bool qPerforations, bool& qOK) {
  guarded(session, qOK, className, "mergeSUMMARYData", [&] {
    if (qPerforations) return true;
    const auto pairs = pairHeaders(bOld, bMain);
    if (!pairs) return false;
    const std::size_t before = bMain.entries();
    addHeaders(bOld, pairs->iNew, bMain);
    mergeBehind(bMain, before, [&] { mergeValues(session, sOld, *pairs, sMain); });
    return true;
  });
}

void mergeStoreSUMMARYData(Session& session, const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                           const XYData& sOld, AttributeStores& xStoreMain, ByteTable& bPointersMain,
                           XYData& sMain, bool qPerforations, bool& qOK) {
  guarded(session, qOK, className, "mergeStoreSUMMARYData", [&] {
    if (qPerforations) return true;
    const auto pairs = pairHeaders(xStoreOld, bPointersOld, xStoreMain, bPointersMain);
    const std::size_t before = bPointersMain.entries();
    if (!pairs || !addHeaders(xStoreOld, bPointersOld, pairs->iNew, xStoreMain, bPointersMain)) return false;
    mergeBehind(bPointersMain, before, [&] { mergeValues(session, sOld, *pairs, sMain); });
    return true;
  });
}

bool mergeConnections(Session& session, const ByteTable& bOld, const XYData& sOld,
                      std::span<const float> sLengthsOld, ByteTable& bMain, XYData& sMain,
                      std::vector<float>& sLengthsMain) {
  const auto pairs = pairHeaders(bOld, bMain);
  if (!pairs) return false;
  XYData lengths = columnOf(sLengthsMain, session);
  mergeValues(session, columnOf(sLengthsOld, session), *pairs, lengths);
  const std::size_t before = bMain.entries();
  addHeaders(bOld, pairs->iNew, bMain);
  mergeBehind(bMain, before, [&] { mergeValues(session, sOld, *pairs, sMain); });
  if (lengths.rows() > 0) sLengthsMain.assign(lengths.column(1).begin(), lengths.column(1).end());
  return true;
}

void mergeSUMMARYHorizData(Session& session, const ByteTable& bOld, const XYData& sOld,
                           std::span<const float> sLengthsOld, ByteTable& bMain, XYData& sMain,
                           std::vector<float>& sLengthsMain, bool qPerforations, bool& qOK) {
  guarded(session, qOK, className, "mergeSUMMARYHorizData", [&] {
    return qPerforations || mergeConnections(session, bOld, sOld, sLengthsOld, bMain, sMain, sLengthsMain);
  });
}

bool CheckforPerfs(const ByteTable& bHeaders, std::int32_t iType) {
  if (bHeaders.width() < headerWidth) return false;
  const auto any = [&](auto&& test) {
    for (std::size_t i = 1; i <= bHeaders.entries(); ++i) {
      if (test(i)) return true;
    }
    return false;
  };
  if (iType == 13) {
    const std::size_t first = headerField(attributeClass).firstByte;
    return any([&](std::size_t i) { return bHeaders(first, i) == 'C'; });
  }
  if (iType != 31 && iType != 32 && iType != 38) return false;
  const HeaderField field = headerField(attributeVariable);
  return any([&](std::size_t i) { return bHeaders.get(i, field.firstByte, field.width) == "WLLYR"; });
}

bool CheckStoreforPerfs(const AttributeStores& xStore, std::int32_t iType) {
  if (iType == 13) return xStore.has(attributeClass) && xStore(attributeClass).find("COMPLETIONS") > 0;
  if (iType != 31 && iType != 32 && iType != 38) return false;
  return xStore.has(attributeVariable) && xStore(attributeVariable).find("WLLYR") > 0;
}

}  // namespace lumbarn
