#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <numeric>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shapes/HeaderLayout.h"
#include "shapes/VectorData.h"
#include "summary/SummaryMatch.h"
#include "summary/SummaryMerge.h"
#include "support/SummaryBuilder.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;
using Columns = std::vector<std::vector<float>>;

/// Headers of wells "MNEMONIC MEMBER", or of anything with a class of its own.
ByteTable headers(std::initializer_list<std::pair<const char*, const char*>> vectors,
                  const char* word = "WELLS") {
  ByteTable table(headerWidth, vectors.size());
  std::size_t i = 0;
  for (const auto& [mnemonic, member] : vectors) {
    setAttribute(attributeVariable, table, ++i, mnemonic);
    setAttribute(attributeMember, table, i, member);
    setAttribute(attributeClass, table, i, word);
  }
  return table;
}

XYData table(const Session& session, std::initializer_list<std::vector<float>> columns) {
  XYData data(columns.begin()->size(), columns.size(), session);
  std::size_t i = 0;
  for (const auto& column : columns) std::ranges::copy(column, data.column(++i).begin());
  return data;
}

Columns columnsOf(const XYData& data) {
  Columns columns;
  for (std::size_t i = 1; i <= data.columns(); ++i) {
    columns.emplace_back(data.column(i).begin(), data.column(i).end());
  }
  return columns;
}

/// Each text of the later run takes the first open one behind the last pair, else from the start.
TEST(SummaryMatch, PairsEqualTextsInOrder) {
  const TextPairs pairs = pairTexts(std::vector<std::string>{"A", "B", "A", "C"}, {"B", "A", "D", "A"});
  EXPECT_THAT(pairs.iMatch, ElementsAre(2, 3, 0, 1));
  EXPECT_THAT(pairs.iNew, ElementsAre(4));
}

class SummaryMerge : public ::testing::Test {
 protected:
  void merge(const ByteTable& bEarlier, const XYData& sEarlier, bool qPerforations = false) {
    mergeSUMMARYData(session, bEarlier, sEarlier, bMain, sMain, qPerforations, qOK);
  }
  Session session;
  bool qOK = false;
  ByteTable bMain = headers({{"TIME", ""}, {"WOPR", "P1"}, {"WOPR", "P2"}});
  const ByteTable bOld = headers({{"TIME", ""}, {"WGPR", "P1"}, {"WOPR", "P1"}});
  const Columns main{{3, 5}, {60, 61}, {80, 81}};
  const Columns merged{{1, 2, 3, 5}, {51, 52, 60, 61}, {0, 0, 80, 81}, {71, 72, 0, 0}};
  XYData sMain = table(session, {{3, 5}, {60, 61}, {80, 81}});
  XYData sOld = table(session, {{1, 2, 3, 4}, {71, 72, 73, 74}, {51, 52, 53, 54}});
};

TEST_F(SummaryMerge, PutsEarlierRowsInFrontOrLeavesTheTableAsItWas) {
  merge(bOld, sOld, true);
  EXPECT_TRUE(qOK) << "completion data take no earlier runs";
  std::vector<std::int32_t> iNew, iMatch;
  std::int32_t nNew = 0;
  checkSummaryList(session, headers({{"SOFR", "P1"}}, "SEG"), headers({{"SOFR", "1"}}, "SEGP"), iNew, nNew,
                   iMatch, qOK);
  EXPECT_EQ(nNew, 1) << "parts of a header do not run together";
  merge(ByteTable(200, 1), sOld);
  EXPECT_FALSE(qOK) << "headers too short";
  merge(bOld, table(session, {{1, 2}}));
  EXPECT_FALSE(qOK) << "more headers than columns";
  session.memoryLimit = 20;
  merge(bOld, sOld);
  EXPECT_FALSE(qOK) << "beyond the memory limit";
  session.memoryLimit = 0;
  EXPECT_EQ(columnsOf(sMain), main);
  EXPECT_EQ(bMain.entries(), 3U);
  merge(bOld, sOld);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(columnsOf(sMain), merged);
  merge(headers({{"TIME", ""}, {"FOPR", ""}}), table(session, {{1, 2}, {7, 8}}));
  EXPECT_EQ(columnsOf(sMain).at(4), std::vector<float>(4)) << "no row before the first, but a vector";
  sMain = XYData(0, 5, session);
  merge(bOld, sOld);
  EXPECT_EQ(columnsOf(sMain).front(), (std::vector<float>{1, 2, 3, 4})) << "all that came before";
}

TEST_F(SummaryMerge, ThroughAScratchFileTheTableIsTheSameAndNoFileIsLeft) {
  const test::TemporaryFolder folder;
  const std::string outer = std::filesystem::temp_directory_path();
  ::setenv("TMPDIR", folder.file("").c_str(), 1);
  const auto mergeThroughFile = [&](std::int32_t match) {
    const std::vector<std::int32_t> iNew = {2}, iMatch = {1, match, 0};
    mergeDataFormScratchfile(session, sOld, iNew, 1, iMatch, sMain, qOK);
  };
  mergeThroughFile(9);
  EXPECT_FALSE(qOK) << "a vector that does not exist";
  mergeHeaders(session, bOld, std::vector<std::int32_t>{2}, 2, bMain, qOK);
  EXPECT_FALSE(qOK) << "more new vectors than are listed";
  EXPECT_EQ(bMain.entries(), 3U);
  EXPECT_EQ(columnsOf(sMain), main);
  mergeThroughFile(3);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(columnsOf(sMain), merged);

  // Memory runs out between the two tables: the host is asked while the scratch file is written.
  constexpr std::size_t columns = 1200;
  XYData wide(2, columns, session), earlier(1, columns, session);
  std::vector<std::int32_t> iMatch(columns);
  std::iota(iMatch.begin(), iMatch.end(), 1);
  std::iota(wide.values().begin(), wide.values().end(), 1.0F);
  std::ranges::fill(earlier.values(), 0.0F);
  const auto expected = columnsOf(wide);
  session.hostYield = [&] { session.memoryLimit = columns * 2 * sizeof(float); };
  mergeDataFormScratchfile(session, earlier, {}, 0, iMatch, wide, qOK);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(columnsOf(wide), expected);
  EXPECT_TRUE(std::filesystem::is_empty(folder.file("")));
  ::setenv("TMPDIR", folder.file("none").c_str(), 1);
  session.hostYield = nullptr;
  session.memoryLimit = 0;
  mergeThroughFile(3);
  EXPECT_FALSE(qOK) << "no scratch file can be made";
  ::setenv("TMPDIR", outer.c_str(), 1);
}

TEST_F(SummaryMerge, StoreFormCarriesTextsOver) {
  const auto fill = [&](AttributeStores& stores, ByteTable& pointers, int width,
                        std::initializer_list<std::pair<const char*, const char*>> vectors) {
    InitByteStorage(false, stores, qOK);
    stores(attributeMember).widen(width);
    std::vector<VECTORDATA> records;
    for (const auto& [mnemonic, member] : vectors) {
      setPointer(records.emplace_back(), attributeVariable, stores(attributeVariable).add(mnemonic));
      setPointer(records.back(), attributeMember, stores(attributeMember).add(member));
    }
    getVECTORDATA(records, pointers, qOK);
  };
  const char* const longName = "A-WELL-WITH-A-NAME-BEYOND-20";
  AttributeStores xOld, xMain;
  ByteTable pOld, pMain;
  fill(xOld, pOld, 32, {{"TIME", ""}, {"WWPR", longName}, {"WOPR", "P1"}});
  fill(xMain, pMain, 8, {{"TIME", ""}, {"WOPRP", "1"}});
  std::vector<std::int32_t> iNew, iMatch;
  std::int32_t nNew = 0;
  checkStoreSummaryList(session, xOld, pOld, xMain, pMain, iNew, nNew, iMatch, qOK);
  EXPECT_EQ(nNew, 2) << "parts of a name do not run together";
  fill(xMain, pMain, 8, {{"TIME", ""}, {"WOPR", "P1"}});
  sMain = table(session, {{5}, {60}});
  mergeStoreSUMMARYData(session, xOld, pOld, table(session, {{1}, {91}, {7}}), xMain, pMain, sMain, false,
                        qOK);
  ASSERT_TRUE(qOK);
  EXPECT_EQ(columnsOf(sMain), (Columns{{1, 5}, {7, 60}, {91, 0}}));
  std::vector<VECTORDATA> records;
  setVECTORDATA(pMain, records, qOK);
  EXPECT_EQ(xMain(attributeMember).item(records.at(2).iMember), longName);
}

TEST_F(SummaryMerge, LengthsAreMergedByTheirOwnValues) {
  bMain = headers({{"TIME", ""}, {"WOPR", "P1"}});
  const ByteTable before = bMain;
  sMain = table(session, {{3, 5}, {60, 61}});
  std::vector<float> lengths = {40, 40}, earlier = {30, 40};
  mergeSUMMARYHorizData(session, before, table(session, {{1, 2}, {51, 52}}), earlier, bMain, sMain, lengths,
                        false, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_EQ(columnsOf(sMain), (Columns{{1, 2, 3, 5}, {51, 52, 60, 61}}));
  EXPECT_THAT(lengths, ElementsAre(30, 40, 40)) << "a smaller length counts as an earlier row";
}

TEST(PerforationCheck, AsksForAnotherThingByFileKind) {
  const ByteTable completions = headers({{"COFR", "P1"}}, "COMPLETIONS");
  const ByteTable allocation = headers({{"WLLYR", "P1"}});
  AttributeStores stores;
  bool qOK = false;
  InitByteStorage(false, stores, qOK);
  stores(attributeClass).add("COMPLETIONS");
  stores(attributeVariable).add("WLLYR");
  for (const std::int32_t kind : {12, 13, 31, 32, 38}) {
    EXPECT_EQ(CheckforPerfs(completions, kind), kind == 13);
    EXPECT_EQ(CheckforPerfs(allocation, kind), kind > 13);
    EXPECT_EQ(CheckStoreforPerfs(stores, kind), kind > 12);
  }
}

}  // namespace
}  // namespace lumbarn
