#include <cstdlib>
#include <filesystem>
#include <initializer_list>
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

std::vector<std::vector<float>> columnsOf(const XYData& data) {
  std::vector<std::vector<float>> columns;
  for (std::size_t i = 1; i <= data.columns(); ++i) {
    columns.emplace_back(data.column(i).begin(), data.column(i).end());
  }
  return columns;
}

using Columns = std::vector<std::vector<float>>;

/// Each text of the later run takes the first open one behind the last pair, else from the start.
TEST(SummaryMatch, AgreesWithALinearSearch) {
  std::uint32_t random = 1;
  const auto next = [&](std::uint32_t below) {
    return (random = random * 1664525 + 1013904223) / 65536 % below;
  };
  for (int round = 0; round < 300; ++round) {
    std::vector<std::string> old(next(12)), main(next(12));
    for (auto* list : {&old, &main}) {
      for (auto& text : *list) text = std::string(1, static_cast<char>('A' + next(5)));
    }
    std::vector<std::int32_t> expected(main.size());
    std::vector<bool> open(old.size(), true);
    std::size_t place = 0;
    for (std::size_t i = 0; i < main.size(); ++i) {
      for (std::size_t step = 0; step < old.size(); ++step) {
        const std::size_t k = (place + step) % old.size();
        if (!open[k] || old[k] != main[i]) continue;
        expected[i] = static_cast<std::int32_t>(k) + 1;
        open[k] = false;
        place = k + 1;
        break;
      }
    }
    std::vector<std::int32_t> unmatched;
    for (std::size_t k = 0; k < old.size(); ++k) {
      if (open[k]) unmatched.push_back(static_cast<std::int32_t>(k) + 1);
    }
    const TextPairs pairs = pairTexts(old, main);
    ASSERT_EQ(pairs.iMatch, expected) << round;
    ASSERT_EQ(pairs.iNew, unmatched) << round;
  }
}

class SummaryMerge : public ::testing::Test {
 protected:
  void merge(const ByteTable& bOld, const XYData& sOld, bool qPerforations = false) {
    mergeSUMMARYData(session, bOld, sOld, bMain, sMain, qPerforations, qOK);
  }
  Session session;
  bool qOK = false;
  ByteTable bMain = headers({{"TIME", ""}});
  XYData sMain = table(session, {{3, 5}});
};

TEST_F(SummaryMerge, RunsWithoutRowsAndThoseThatAddNone) {
  const ByteTable bOld = headers({{"TIME", ""}, {"WGPR", "P1"}});
  merge(headers({{"TIME", ""}}), table(session, {{1}}), true);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(columnsOf(sMain), (Columns{{3, 5}})) << "completion data take no earlier runs";
  merge(bOld, table(session, {{3, 4}, {71, 72}}));
  ASSERT_TRUE(qOK);
  EXPECT_EQ(columnsOf(sMain), (Columns{{3, 5}, {0, 0}})) << "no row before the first, but a vector";
  EXPECT_EQ(bMain.entries(), 2U);
  merge(headers({{"TIME", ""}}), XYData(0, 1, session));
  ASSERT_TRUE(qOK);
  EXPECT_EQ(columnsOf(sMain), (Columns{{3, 5}, {0, 0}}));

  bMain = headers({{"TIME", ""}, {"WOPR", "P1"}});
  sMain = XYData(0, 2, session);
  merge(bOld, table(session, {{1, 2}, {71, 72}}));
  ASSERT_TRUE(qOK);
  EXPECT_EQ(columnsOf(sMain), (Columns{{1, 2}, {0, 0}, {71, 72}})) << "all that came before";
}

TEST_F(SummaryMerge, FailureLeavesTheMainTableAsItWas) {
  merge(ByteTable(200, 1), table(session, {{1}}));
  EXPECT_FALSE(qOK) << "headers too short";
  const ByteTable bOld = headers({{"TIME", ""}, {"WGPR", "P1"}});
  merge(bOld, table(session, {{1, 2}}));
  EXPECT_FALSE(qOK) << "more headers than columns";
  session.memoryLimit = 20;
  merge(bOld, table(Session::process(), {{1, 2}, {7, 8}}));
  EXPECT_FALSE(qOK) << "beyond the memory limit";
  EXPECT_EQ(columnsOf(sMain), (Columns{{3, 5}}));
  EXPECT_EQ(bMain.entries(), 1U);
}

/// With a folder for temporary files of its own, so that what is left behind can be seen.
class ScratchMerge : public SummaryMerge {
 protected:
  ScratchMerge() { ::setenv("TMPDIR", folder_.file("").c_str(), 1); }
  ~ScratchMerge() override {
    if (outer_ != nullptr) {
      ::setenv("TMPDIR", kept_.c_str(), 1);
    } else {
      ::unsetenv("TMPDIR");
    }
  }
  bool filesAreLeft() const { return !std::filesystem::is_empty(folder_.file("")); }

 private:
  const char* const outer_ = std::getenv("TMPDIR");
  const std::string kept_ = outer_ != nullptr ? outer_ : "";
  const test::TemporaryFolder folder_;
};

TEST_F(ScratchMerge, ThroughAScratchFileTheTableIsTheSameAndNoFileIsLeft) {
  const Columns merged{{1, 2, 3, 5}, {51, 52, 60, 61}, {0, 0, 80, 81}, {71, 72, 0, 0}};
  const XYData sOld = table(session, {{1, 2, 3, 4}, {71, 72, 73, 74}, {51, 52, 53, 54}});
  bMain = headers({{"TIME", ""}, {"WOPR", "P1"}, {"WOPR", "P2"}});
  sMain = table(session, {{3, 5}, {60, 61}, {80, 81}});
  XYData scratch = sMain.clone(session);
  const std::vector<std::int32_t> iNew = {2};
  mergeDataFormScratchfile(session, sOld, iNew, 1, std::vector<std::int32_t>{1, 9, 0}, scratch, qOK);
  EXPECT_FALSE(qOK) << "a vector that is not there";
  EXPECT_EQ(columnsOf(scratch), columnsOf(sMain));
  mergeDataFormScratchfile(session, sOld, iNew, 1, std::vector<std::int32_t>{1, 3, 0}, scratch, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_EQ(columnsOf(scratch), merged);
  merge(headers({{"TIME", ""}, {"WGPR", "P1"}, {"WOPR", "P1"}}), sOld);
  ASSERT_TRUE(qOK);
  EXPECT_EQ(columnsOf(sMain), merged);
  ASSERT_EQ(bMain.entries(), 4U);
  EXPECT_EQ(ExtractAttribute(attributeVariable, bMain, 4), "WGPR");
  EXPECT_FALSE(filesAreLeft());
}

TEST_F(ScratchMerge, WhenMemoryGivesOutHalfWayTheOldTableComesBack) {
  constexpr std::size_t columns = 1200;
  XYData main(2, columns, session);
  XYData old(1, columns, session);
  std::vector<std::int32_t> iMatch;
  for (std::size_t i = 1; i <= columns; ++i) {
    main(1, i) = static_cast<float>(i + 1);
    main(2, i) = static_cast<float>(i + 2);
    old(1, i) = static_cast<float>(i);
    iMatch.push_back(static_cast<std::int32_t>(i));
  }
  const auto expected = columnsOf(main);
  // The host's turn comes while the scratch file is written.
  session.hostYield = [&] { session.memoryLimit = columns * 2 * sizeof(float); };
  mergeDataFormScratchfile(session, old, {}, 0, iMatch, main, qOK);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(columnsOf(main), expected);
  EXPECT_FALSE(filesAreLeft());
}

TEST_F(SummaryMerge, StoreFormCarriesTextsOver) {
  const auto fill = [](AttributeStores& stores, ByteTable& pointers, int width,
                       std::initializer_list<std::pair<const char*, const char*>> vectors) {
    bool qDone = false;
    InitByteStorage(false, stores, qDone);
    stores(attributeMember).widen(width);
    std::vector<VECTORDATA> records;
    for (const auto& [mnemonic, member] : vectors) {
      setPointer(records.emplace_back(), attributeVariable, stores(attributeVariable).add(mnemonic));
      setPointer(records.back(), attributeMember, stores(attributeMember).add(member));
    }
    getVECTORDATA(records, pointers, qDone);
  };
  const char* const longName = "A-WELL-WITH-A-NAME-BEYOND-20";
  AttributeStores xOld, xMain;
  ByteTable bOld;
  fill(xOld, bOld, 32, {{"WOPR", "P1"}, {"WWPR", longName}, {"TIME", ""}});
  fill(xMain, bMain, 8, {{"TIME", ""}, {"WOPR", "P1"}});
  sMain = table(session, {{5}, {60}});
  mergeStoreSUMMARYData(session, xOld, bOld, table(session, {{1}, {91}, {7}}), xMain, bMain, sMain, false,
                        qOK);
  ASSERT_TRUE(qOK);
  // Rows are compared by the first column of each, which here is not the time in the old run: 1 lies
  // before 5.
  EXPECT_EQ(columnsOf(sMain), (Columns{{7, 5}, {1, 60}, {91, 0}}));
  std::vector<VECTORDATA> records;
  setVECTORDATA(bMain, records, qOK);
  ASSERT_EQ(records.size(), 3U);
  EXPECT_EQ(xMain(attributeMember).item(records[2].iMember), longName);
  EXPECT_EQ(xMain(attributeVariable).item(records[2].iVariable), "WWPR");
}

TEST_F(SummaryMerge, LengthsAreMergedByTheirOwnValues) {
  const ByteTable bOld = headers({{"COFR", "P1"}, {"CWFR", "P1"}});
  const XYData sOld = table(session, {{1, 2}, {11, 12}});
  bMain = bOld;
  sMain = table(session, {{2, 3}, {22, 23}});
  std::vector<float> lengths = {40, 40};
  mergeSUMMARYHorizData(session, bOld, sOld, std::vector<float>{40, 40}, bMain, sMain, lengths, false, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_EQ(columnsOf(sMain), (Columns{{1, 2, 3}, {11, 22, 23}}));
  EXPECT_THAT(lengths, ElementsAre(40, 40));

  mergeSUMMARYHorizData(session, bOld, sOld, std::vector<float>{30, 40}, bMain, sMain, lengths, false, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_THAT(lengths, ElementsAre(30, 40, 40)) << "a smaller length counts as an earlier row";

  mergeSUMMARYHorizData(session, bOld, sOld, std::vector<float>{}, bMain, sMain, lengths, true, qOK);
  EXPECT_TRUE(qOK);
}

TEST(PerforationCheck, AsksForAnotherThingByFileKind) {
  const ByteTable completions = headers({{"COFR", "P1"}}, "COMPLETIONS");
  const ByteTable allocation = headers({{"WLLYR", "P1"}});
  for (const std::int32_t kind : {12, 13, 31, 32, 38}) {
    EXPECT_EQ(CheckforPerfs(completions, kind), kind == 13);
    EXPECT_EQ(CheckforPerfs(allocation, kind), kind > 13);
  }
}

}  // namespace
}  // namespace lumbarn
