#include "SummaryMerge.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "../shapes/HeaderLayout.h"
#include "../shapes/VectorData.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "ChainPlan.h"
#include "ScratchFile.h"
#include "SummaryMatch.h"

namespace lumbarn {
namespace {

constexpr const char* className = "SummaryMerge";
constexpr char separator = '\0';  // between the parts of a key; "P1", "12" and "P11", "2" differ by it
constexpr std::array<std::int32_t, 6> keyAttributes = {
    attributeVariable, attributeClass, attributeMember, attributeIndex, attributeLGRName, attributeLGRClass};

/// Rows of the earlier run that precede the main table.
std::size_t rowsBefore(const XYData& sMain, const XYData& sOld) {
  if (sOld.empty()) return 0;
  const auto times = sOld.column(1);
  if (sMain.empty()) return times.size();
  const float t0 = sMain(1, 1);
  const auto end = std::ranges::find_if(times, [t0](float time) { return !(time < t0); });
  return static_cast<std::size_t>(end - times.begin());
}

/// The chain of the two tables. A main table without rows may have no columns either; iMatch counts them.
ChainPlan planMerge(const XYData& sOld, std::span<const std::int32_t> iNew,
                    std::span<const std::int32_t> iMatch, const XYData& sMain) {
  const std::size_t mainColumns = sMain.columns() > 0 ? sMain.columns() : iMatch.size();
  if (iMatch.size() < mainColumns) throw Fault(FaultNumber::Subscript);
  ChainPart main{.rows = sMain.rows(), .sources = {}};
  for (std::size_t i = 1; i <= mainColumns; ++i) main.sources.push_back({static_cast<std::int32_t>(i)});
  ChainPart old{.rows = rowsBefore(sMain, sOld), .sources = {}};
  for (const std::int32_t number : iMatch.first(mainColumns)) old.sources.push_back({number});
  for (const std::int32_t number : iNew) old.sources.push_back({number});
  ChainPlan plan;
  plan.add(std::move(main));
  plan.add(std::move(old));
  return plan;
}

/// The old main table from the file of the new one.
void restore(const Session& session, const ScratchFile& scratch, std::size_t fileRows, std::size_t keep,
             std::size_t columns, XYData& sMain) {
  sMain = XYData();
  sMain = XYData(fileRows - keep, columns, session);
  if (sMain.empty()) return;
  for (std::size_t column = 1; column <= columns; ++column) {
    scratch.read(sMain.column(column), (column - 1) * fileRows + keep);
  }
}

bool mergeThroughScratch(Session& session, const ChainPlan& plan, const XYData& sOld, XYData& sMain) {
  const std::size_t rows = plan.rows(), columns = plan.columns(), mainColumns = sMain.columns();
  session.checkMemory(rows * columns * sizeof(float));  // before the old table is released
  ScratchFile scratch("MS");
  const XYData* const tables[] = {&sMain, &sOld};
  if (!fillScratchFile(session, plan, tables, scratch)) return false;
  sMain = XYData();
  try {
    sMain = XYData(rows, columns, session);
    scratch.read(sMain.values());
  } catch (const Fault&) {
    restore(session, scratch, rows, plan.parts()[1].rows, mainColumns, sMain);
    throw;
  }
  return true;
}

bool mergeTables(Session& session, const ChainPlan& plan, const XYData& sOld, XYData& sMain) {
  XYData merged;
  const XYData* const tables[] = {&sMain, &sOld};
  try {
    if (!fillTable(session, plan, tables, merged)) return false;
  } catch (const Fault& fault) {
    if (fault.number() != FaultNumber::OutOfMemory) throw;
    return mergeThroughScratch(session, plan, sOld, sMain);
  }
  sMain = std::move(merged);
  return true;
}

void setLengths(const std::vector<std::string>& zKeys, std::vector<std::int32_t>& nLengths) {
  nLengths.clear();
  for (const std::string& key : zKeys) nLengths.push_back(static_cast<std::int32_t>(key.size()));
}

void setPairs(const std::vector<std::string>& zOld, const std::vector<std::string>& zMain,
              std::vector<std::int32_t>& iNew, std::int32_t& nNew, std::vector<std::int32_t>& iMatch) {
  TextPairs pairs = pairTexts(zOld, zMain);
  iMatch = std::move(pairs.iMatch);
  iNew = std::move(pairs.iNew);
  nNew = static_cast<std::int32_t>(iNew.size());
}

/// The vector with its texts in the main stores.
VECTORDATA carryOver(const VECTORDATA& xVector, const AttributeStores& xOld, AttributeStores& xMain) {
  VECTORDATA carried;
  for (std::int32_t iAttribute = 1; iAttribute <= 14; ++iAttribute) {
    if (!xOld.has(iAttribute) || !xMain.has(iAttribute)) continue;
    const std::int32_t number = pointer(xVector, iAttribute);
    if (number < 1) continue;
    xMain(iAttribute).widen(xOld(iAttribute).width());  // a run with longer names
    setPointer(carried, iAttribute, xMain(iAttribute).add(xOld(iAttribute).item(number)));
  }
  return carried;
}

}  // namespace

void createSummaryList(Session& session, const ByteTable& bHeaders, std::vector<std::string>& zKeys,
                       std::vector<std::int32_t>& nLengths, bool& qOK) {
  guarded(session, qOK, className, "createSummaryList", [&] {
    zKeys.assign(bHeaders.entries(), {});
    for (std::size_t i = 0; i < zKeys.size(); ++i) {
      for (const std::int32_t iAttribute : keyAttributes) {
        const HeaderField field = headerField(iAttribute);
        zKeys[i] += bHeaders.get(i + 1, field.firstByte, field.width);
        zKeys[i] += separator;
      }
    }
    setLengths(zKeys, nLengths);
  });
}

void createStoreSummaryList(Session& session, const AttributeStores& xStore, const ByteTable& bPointers,
                            std::vector<std::string>& zKeys, std::vector<std::int32_t>& nLengths, bool& qOK) {
  guarded(session, qOK, className, "createStoreSummaryList", [&] {
    std::vector<VECTORDATA> xVectors;
    bool qSet = false;
    setVECTORDATA(bPointers, xVectors, qSet);
    if (!qSet) return false;
    zKeys.assign(bPointers.entries(), {});
    for (std::size_t i = 0; i < zKeys.size(); ++i) {
      for (const std::int32_t iAttribute : keyAttributes) {
        zKeys[i] += xStore(iAttribute).item(pointer(xVectors[i], iAttribute));
        zKeys[i] += separator;
      }
    }
    setLengths(zKeys, nLengths);
    return true;
  });
}

void checkSummaryList(Session& session, const ByteTable& bOld, const ByteTable& bMain,
                      std::vector<std::int32_t>& iNew, std::int32_t& nNew, std::vector<std::int32_t>& iMatch,
                      bool& qOK) {
  guarded(session, qOK, className, "checkSummaryList", [&] {
    if (bOld.width() < headerWidth || bMain.width() < headerWidth) return false;
    std::vector<std::string> zOld, zMain;
    std::vector<std::int32_t> nOld, nMain;
    bool qKeys = false;
    createSummaryList(session, bOld, zOld, nOld, qKeys);
    if (qKeys) createSummaryList(session, bMain, zMain, nMain, qKeys);
    if (qKeys) setPairs(zOld, zMain, iNew, nNew, iMatch);
    return qKeys;
  });
}

void checkStoreSummaryList(Session& session, const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                           const AttributeStores& xStoreMain, const ByteTable& bPointersMain,
                           std::vector<std::int32_t>& iNew, std::int32_t& nNew,
                           std::vector<std::int32_t>& iMatch, bool& qOK) {
  guarded(session, qOK, className, "checkStoreSummaryList", [&] {
    if (bPointersOld.width() < vectorDataBytes || bPointersMain.width() < vectorDataBytes) return false;
    std::vector<std::string> zOld, zMain;
    std::vector<std::int32_t> nOld, nMain;
    bool qKeys = false;
    createStoreSummaryList(session, xStoreOld, bPointersOld, zOld, nOld, qKeys);
    if (qKeys) createStoreSummaryList(session, xStoreMain, bPointersMain, zMain, nMain, qKeys);
    if (qKeys) setPairs(zOld, zMain, iNew, nNew, iMatch);
    return qKeys;
  });
}

void mergeHeaders(Session& session, const ByteTable& bOld, std::span<const std::int32_t> iNew,
                  std::int32_t nNew, ByteTable& bMain, bool& qOK) {
  guarded(session, qOK, className, "mergeHeaders", [&] {
    if (nNew < 1) return;
    const std::size_t old = bMain.entries();
    bMain.resize(old + static_cast<std::size_t>(nNew));
    for (std::size_t i = 0; i < static_cast<std::size_t>(nNew); ++i) {
      const auto source = bOld.entry(static_cast<std::size_t>(iNew[i])).first(headerWidth);
      std::ranges::copy(source, bMain.entry(old + i + 1).begin());
    }
  });
}

void mergeStoreHeaders(Session& session, const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                       std::span<const std::int32_t> iNew, std::int32_t nNew, AttributeStores& xStoreMain,
                       ByteTable& bPointersMain, bool& qOK) {
  guarded(session, qOK, className, "mergeStoreHeaders", [&] {
    if (nNew < 1) return true;
    std::vector<VECTORDATA> xOld, xMain;
    bool qSet = false;
    setVECTORDATA(bPointersOld, xOld, qSet);
    if (qSet) setVECTORDATA(bPointersMain, xMain, qSet);
    if (!qSet) return false;
    for (const std::int32_t number : iNew.first(static_cast<std::size_t>(nNew))) {
      xMain.push_back(carryOver(xOld.at(static_cast<std::size_t>(number - 1)), xStoreOld, xStoreMain));
    }
    getVECTORDATA(xMain, bPointersMain, qSet);
    return qSet;
  });
}

void mergeData(Session& session, const XYData& sOld, std::span<const std::int32_t> iNew, std::int32_t nNew,
               std::span<const std::int32_t> iMatch, XYData& sMain, bool& qOK) {
  guarded(session, qOK, className, "mergeData", [&] {
    iNew = iNew.first(static_cast<std::size_t>(nNew));
    const ChainPlan plan = planMerge(sOld, iNew, iMatch, sMain);
    return (plan.parts()[1].rows == 0 && iNew.empty()) || mergeTables(session, plan, sOld, sMain);
  });
}

void mergeDataFormScratchfile(Session& session, const XYData& sOld, std::span<const std::int32_t> iNew,
                              std::int32_t nNew, std::span<const std::int32_t> iMatch, XYData& sMain,
                              bool& qOK) {
  guarded(session, qOK, className, "mergeDataFormScratchfile", [&] {
    iNew = iNew.first(static_cast<std::size_t>(nNew));
    const ChainPlan plan = planMerge(sOld, iNew, iMatch, sMain);
    return (plan.parts()[1].rows == 0 && iNew.empty()) || mergeThroughScratch(session, plan, sOld, sMain);
  });
}

void mergeSUMMARYData(Session& session, const ByteTable& bOld, const XYData& sOld, ByteTable& bMain,
                      XYData& sMain, bool qPerforations, bool& qOK) {
  guarded(session, qOK, className, "mergeSUMMARYData", [&] {
    if (qPerforations) return true;
    const std::size_t before = bMain.entries();
    std::vector<std::int32_t> iNew, iMatch;
    std::int32_t nNew = 0;
    bool qStep = false;
    checkSummaryList(session, bOld, bMain, iNew, nNew, iMatch, qStep);
    if (qStep) mergeHeaders(session, bOld, iNew, nNew, bMain, qStep);
    if (qStep) mergeData(session, sOld, iNew, nNew, iMatch, sMain, qStep);
    if (!qStep && bMain.entries() > before) bMain.resize(before);
    return qStep;
  });
}

void mergeStoreSUMMARYData(Session& session, const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                           const XYData& sOld, AttributeStores& xStoreMain, ByteTable& bPointersMain,
                           XYData& sMain, bool qPerforations, bool& qOK) {
  guarded(session, qOK, className, "mergeStoreSUMMARYData", [&] {
    if (qPerforations) return true;
    const std::size_t before = bPointersMain.entries();
    std::vector<std::int32_t> iNew, iMatch;
    std::int32_t nNew = 0;
    bool qStep = false;
    checkStoreSummaryList(session, xStoreOld, bPointersOld, xStoreMain, bPointersMain, iNew, nNew, iMatch,
                          qStep);
    if (qStep) {
      mergeStoreHeaders(session, xStoreOld, bPointersOld, iNew, nNew, xStoreMain, bPointersMain, qStep);
    }
    if (qStep) mergeData(session, sOld, iNew, nNew, iMatch, sMain, qStep);
    if (!qStep && bPointersMain.entries() > before) bPointersMain.resize(before);
    return qStep;
  });
}

void mergeSUMMARYHorizData(Session& session, const ByteTable& bOld, const XYData& sOld,
                           std::span<const float> sLengthsOld, ByteTable& bMain, XYData& sMain,
                           std::vector<float>& sLengthsMain, bool qPerforations, bool& qOK) {
  guarded(session, qOK, className, "mergeSUMMARYHorizData", [&] {
    if (qPerforations) return true;
    std::vector<std::int32_t> iNew, iMatch;
    std::int32_t nNew = 0;
    bool qStep = false;
    checkSummaryList(session, bOld, bMain, iNew, nNew, iMatch, qStep);
    if (!qStep) return false;
    XYData old(sLengthsOld.size(), 1, session);
    std::ranges::copy(sLengthsOld, old.values().begin());
    XYData main(sLengthsMain.size(), 1, session);
    std::ranges::copy(sLengthsMain, main.values().begin());
    mergeData(session, old, iNew, nNew, iMatch, main, qStep);
    const std::size_t before = bMain.entries();
    if (qStep) mergeHeaders(session, bOld, iNew, nNew, bMain, qStep);
    if (qStep) mergeData(session, sOld, iNew, nNew, iMatch, sMain, qStep);
    if (!qStep && bMain.entries() > before) bMain.resize(before);
    if (qStep && main.rows() > 0) sLengthsMain.assign(main.column(1).begin(), main.column(1).end());
    return qStep;
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
