#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "summary/VectorSelection.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Texts = std::vector<std::string>;

TEST(VectorPatterns, CommasInsideACellDoNotSeparate) {
  const std::pair<const char*, Texts> rows[] = {
      {"FOPR", {"FOPR"}},
      {"BPR:10,4,3,FOPR", {"BPR:10,4,3", "FOPR"}},
      {"COPR:OP_1:10,4,3,COPR:OP_1:10,4,*,RPR:2", {"COPR:OP_1:10,4,3", "COPR:OP_1:10,4,*", "RPR:2"}},
      {"BPR:*,4,?,B*", {"BPR:*,4,?", "B*"}},
      {" W* , RPR:1,RPR:2 ,,", {"W*", "RPR:1", "RPR:2"}},
      {"WOPR:*,FOPR,WWPR:*", {"WOPR:*", "FOPR", "WWPR:*"}},
      {"WOPR:*,*", {"WOPR:*", "*"}},
      {"ROFT:1-2,RPR:1", {"ROFT:1-2", "RPR:1"}},
      {"", {}},
  };
  for (const auto& [list, patterns] : rows) EXPECT_EQ(splitPatterns(list), patterns) << list;
}

class VectorSelectionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"TIME", "FOPR", "WOPR:OP_1", "WOPR:OP_2", "WOPR:P*", "WOPR:P[1]", "WOPR:P#1",
                             "WOPR:A,B", "BPR:10,4,3", "BPR:10,4,4", "FOPR"}) {
      vectors.emplace_back().name = name;
    }
  }
  /// Names that are kept.
  Texts select(const Texts& only, const Texts& except = {}) {
    selection = selectVectors(vectors, only, except);
    Texts kept;
    for (std::size_t i = 0; i < vectors.size(); ++i) {
      if (selection.mask[i]) kept.push_back(vectors[i].name);
    }
    return kept;
  }
  std::vector<SummaryVector> vectors;
  VectorSelection selection;
};

TEST_F(VectorSelectionTest, PatternsMatchCompleteNamesInAnyCase) {
  const struct {
    Texts only, except, kept;
  } rows[] = {
      {{"fopr"}, {}, {"FOPR", "FOPR"}},  // a vector that is stored twice, both
      {{"WOPR:OP_?", "TIME"}, {}, {"TIME", "WOPR:OP_1", "WOPR:OP_2"}},
      {{"BPR:10,4,*,TIME"}, {}, {"TIME", "BPR:10,4,3", "BPR:10,4,4"}},
      {{}, {"W*", "BPR:10,4,3"}, {"TIME", "FOPR", "BPR:10,4,4", "FOPR"}},
      {{"WOPR:*"}, {"*:OP*"}, {"WOPR:P*", "WOPR:P[1]", "WOPR:P#1", "WOPR:A,B"}},
      {{"WOPR:P[1]"}, {}, {"WOPR:P[1]"}},  // special characters match themselves
      {{"WOPR:P#1"}, {}, {"WOPR:P#1"}},
      {{"?OPR:P[*"}, {}, {"WOPR:P[1]"}},
      {{"*P#?"}, {}, {"WOPR:P#1"}},
      {{"WOPR:A,B"}, {}, {"WOPR:A,B"}},
  };
  for (const auto& row : rows) EXPECT_EQ(select(row.only, row.except), row.kept) << &row - rows;
}

TEST_F(VectorSelectionTest, LatinNamesMatchPatternsOfEitherEncoding) {
  vectors.emplace_back().name = "WBHP:\xD8ST";
  for (const char* pattern : {"WBHP:\xD8ST", "WBHP:\xC3\x98*"}) {
    EXPECT_THAT(select({pattern}), ElementsAre("WBHP:\xD8ST"));
  }
}

TEST_F(VectorSelectionTest, PatternsWithoutAnyVectorAreTold) {
  EXPECT_THAT(select({"WOPR,FOPR,GOPR:*"}, {"NOPE"}), ElementsAre("FOPR", "FOPR"));
  EXPECT_THAT(selection.unmatched, ElementsAre("WOPR", "GOPR:*", "NOPE"));
  select({"FOPR"}, {"TIME"});
  EXPECT_THAT(selection.unmatched, IsEmpty()) << "TIME is there, though it was not kept anyway";
}

TEST(MnemonicFilterTest, PassesEveryMnemonicThatAPatternCanMatch) {
  const std::vector<std::string> only{"WOPR:P1", "f*", "A:B:C"};
  const MnemonicFilter filter(only, {});
  for (const char* mnemonic : {"WOPR", "wopr", "FOPR", "A", "A:B"}) EXPECT_TRUE(filter(mnemonic)) << mnemonic;
  for (const char* mnemonic : {"WOPRH", "GOPR", "AA"}) EXPECT_FALSE(filter(mnemonic)) << mnemonic;
}

}  // namespace
}  // namespace lumbarn
