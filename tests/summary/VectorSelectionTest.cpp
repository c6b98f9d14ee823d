#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "summary/VectorSelection.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;
using Texts = std::vector<std::string>;

class VectorSelectionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"TIME", "FOPR", "WOPR:OP_1", "WOPR:OP_2", "WOPR:P*", "WOPR:P[1]", "WOPR:P#1",
                             "WOPR:A,B", "BPR:10,4,3", "BPR:10,4,4", "FOPR", "WBHP:\xD8ST"}) {
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
      {{" BPR:10,4,* ,,TIME"}, {}, {"TIME", "BPR:10,4,3", "BPR:10,4,4"}},
      {{}, {"W*", "BPR:10,4,3"}, {"TIME", "FOPR", "BPR:10,4,4", "FOPR"}},
      {{"WOPR:*"}, {"*:OP*"}, {"WOPR:P*", "WOPR:P[1]", "WOPR:P#1", "WOPR:A,B"}},
      {{"WOPR:P[1]"}, {}, {"WOPR:P[1]"}},  // special characters match themselves
      {{"WOPR:P#1"}, {}, {"WOPR:P#1"}},
      {{"WOPR:A,B"}, {}, {"WOPR:A,B"}},
      {{"WBHP:\xD8ST"}, {}, {"WBHP:\xD8ST"}},  // Latin-1 names match patterns of either encoding
      {{"WBHP:\xC3\x98*"}, {}, {"WBHP:\xD8ST"}},
  };
  for (const auto& row : rows) EXPECT_EQ(select(row.only, row.except), row.kept) << &row - rows;
}

TEST_F(VectorSelectionTest, PatternsWithoutAnyVectorAreReported) {
  EXPECT_THAT(select({"WOPR,FOPR,GOPR:*"}, {"NOPE"}), ElementsAre("FOPR", "FOPR"));
  EXPECT_THAT(selection.unmatched, ElementsAre("WOPR", "GOPR:*", "NOPE"));
  Texts many{"FOPR"};  // so many that a table is made of the names
  for (int n = 1; n < 40; ++n) many.push_back("WOPR:P" + std::to_string(n));
  EXPECT_THAT(select(many, {"time"}), ElementsAre("FOPR", "FOPR"));
  EXPECT_THAT(selection.unmatched, SizeIs(39)) << "TIME exists, though it was not kept anyway";
}

}  // namespace
}  // namespace lumbarn
