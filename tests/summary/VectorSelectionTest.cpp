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

TEST_F(VectorSelectionTest, PatternsMatchWholeNamesInAnyCase) {
  EXPECT_THAT(select({"fopr"}), ElementsAre("FOPR", "FOPR")) << "a vector that stands twice, both";
  EXPECT_THAT(select({"WOPR:OP_?", "TIME"}), ElementsAre("TIME", "WOPR:OP_1", "WOPR:OP_2"));
  EXPECT_THAT(select({"BPR:10,4,*,TIME"}), ElementsAre("TIME", "BPR:10,4,3", "BPR:10,4,4"));
  EXPECT_THAT(select({}, {"W*", "BPR:10,4,3"}), ElementsAre("TIME", "FOPR", "BPR:10,4,4", "FOPR"));
  EXPECT_THAT(select({"WOPR:*"}, {"*:OP*"}), ElementsAre("WOPR:P*", "WOPR:P[1]", "WOPR:P#1", "WOPR:A,B"));
}

TEST_F(VectorSelectionTest, NamesWithSpecialCharactersMatchThemselves) {
  EXPECT_THAT(select({"WOPR:P[1]"}), ElementsAre("WOPR:P[1]"));
  EXPECT_THAT(select({"WOPR:P#1"}), ElementsAre("WOPR:P#1"));
  EXPECT_THAT(select({"?OPR:P[*"}), ElementsAre("WOPR:P[1]"));
  EXPECT_THAT(select({"*P#?"}), ElementsAre("WOPR:P#1"));
  EXPECT_THAT(select({"WOPR:A,B"}), ElementsAre("WOPR:A,B"));
  EXPECT_THAT(select({}, {"WOPR:P*"}), ::testing::Not(::testing::Contains("WOPR:P*")));
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
