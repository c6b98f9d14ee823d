#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/WellTestLoad.h"

namespace lumbarn {
namespace {

using test::arraysOf;
using test::subscriptFaultIn;
using test::WellTestLoad;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Singles = std::vector<float>;

/// Middles are 35, 15, 20 and 15; the third connection has no length. Arrays are changed or appended as
/// `others` says, and left out where it has none of their values.
std::vector<test::WellTestBuilder::Array> plt(const std::string& others = "") {
  auto arrays = arraysOf(
      "CONIPOS: 1 2 3 4; CONJPOS: 5 5 5 5; CONKPOS: 6 7 8 9; CONORAT 10 20 5 0; CONWRAT 30 0 -5 0; "
      "CONGRAT 1000 100 7 9; CONOTUB 1 2 4 0; CONWTUB 3 2 0 0; CONGTUB 8 8 8 8; CONLENST 30 10 20 14; "
      "CONLENEN 40 20 20 16; CONBRNO: 2 1 2 1; CONSEGNO: 2 3 2 3; DEPTH 300 100 200 400; CONPRES 51 52 53 "
      "54");
  for (const auto& other : arraysOf(others)) {
    std::erase_if(arrays, [&](const auto& array) { return array.name == other.name; });
    if (std::visit([](const auto& values) { return !values.empty(); }, other.values))
      arrays.insert(arrays.begin(), other);
  }
  return arrays;
}

TEST(Plt, GoesByMeasuredDepthWithWhatIsWorkedOut) {
  WellTestLoad run({{{.arrays = plt()}}});
  ASSERT_TRUE(run.plt(1));
  EXPECT_THAT(run.names(), ElementsAre("CONMD", "CONLENST", "CONLENEN", "CONLENTH", "CONORAT", "CONWRAT",
                                       "CONGRAT", "CONOTUB", "CONWTUB", "CONGTUB", "CONBRNO", "CONSEGNO",
                                       "CONPRES", "CONIPOS", "CONJPOS", "CONKPOS", "CONORATS", "CONWRATS",
                                       "CONGRATS", "CONWCUT", "CONWCUTUB", "CONGOR", "CONGORTUB", "CONBDEPH",
                                       "CONIPOS", "CONJPOS", "CONKPOS", "CONBSOIL", "COMPLETION"));
  const struct {
    const char* name;
    Singles values;
    const char* unit;
  } rows[] = {
      {"CONMD", {15, 15, 20, 35}, "METRES"},  // equal ones stay in the order of the file
      {"CONLENTH", {10, 2, 0, 10}, "METRES"},
      {"CONPRES", {52, 54, 53, 51}, "BARSA"},
      {"CONGRAT", {100, 9, 7, 1000}, "SM3/D"},
      {"CONORATS", {2, 0, 0, 1}, "SM3/DAY/METRES"},
      {"CONWRATS", {0, 0, 0, 3}, "SM3/DAY/METRES"},
      {"CONGRATS", {10, 4.5F, 0, 100}, "SM3/D/METRES"},
      {"CONWCUT", {0, 0, 0, 0.75F}, ""},
      {"CONWCUTUB", {0.5F, 0, 0, 0.75F}, ""},
      {"CONGOR", {5, 0, 7.F / 5.F, 100}, "SM3/SM3"},
      {"CONGORTUB", {4, 0, 2, 8}, "SM3/SM3"},
      {"CONBDEPH", {100, 400, 200, 300}, "METRES"},
      {"COMPLETION", {2, 4, 3, 1}, ""},
  };
  for (const auto& [name, values, unit] : rows) {
    EXPECT_EQ(run.column(name), values) << name;
    EXPECT_EQ(run.unit(name), unit) << name;
  }
  EXPECT_EQ(run.fields(attributeDataKind)[0], "PLT");
  EXPECT_TRUE(run.rft(1));  // RFT tables stay in the order of the file
  EXPECT_EQ(run.column("DEPTH"), (Singles{300, 100, 200, 400}));
  EXPECT_THAT(run.faults, IsEmpty());

  EXPECT_EQ(run.file.NumberPLTBranches(1), 2);
  EXPECT_FALSE(run.pltBranch(1, 0) || run.pltBranch(1, 3));
  ASSERT_TRUE(run.pltBranch(1, 2));
  EXPECT_EQ(run.column("CONMD"), (Singles{20, 35}));
  EXPECT_EQ(run.column("CONBDEPH"), (Singles{200, 300}));
  EXPECT_EQ(run.fields(attributeDataKind)[28] + run.fields(attributeLGRName)[28], "PLTBRAN2");
}

TEST(Plt, StaysInTheOrderOfTheFileWithoutAnArrayThatItNeeds) {
  for (const char* missing : {"CONLENEN", "CONLENST", "CONOTUB"}) {
    const bool tubing = std::string(missing) == "CONOTUB", sums = std::string(missing) == "CONLENEN";
    WellTestLoad run({{{.arrays = plt(missing + std::string("; SEGBRNO: 1 1 1"))}, {.arrays = plt()}}});
    EXPECT_EQ(run.lastDiagnosis().keyword, tubing ? missing : "");
    EXPECT_EQ(run.faults,
              tubing ? std::vector{subscriptFaultIn("processPLTRecords")} : std::vector<std::string>{});
    ASSERT_TRUE(run.plt(1));
    EXPECT_EQ(run.column("CONORAT"), (Singles{10, 20, 5, 0})) << missing;
    EXPECT_EQ(run.column("CONBDEPH"), (Singles{300, 100, 200, 400})) << missing;
    // Segments get the sums when only the ends are missing.
    EXPECT_EQ(run.file.test(1).segmentTable().find("SEGCORAT") > 0, sums) << missing;
    ASSERT_TRUE(run.plt(2));
    EXPECT_EQ(run.column("CONMD"), (Singles{15, 15, 20, 35}));
    if (!sums) continue;
    ASSERT_TRUE(run.pltBranch(1, 1));
    EXPECT_EQ(run.column("CONORAT"), (Singles{20, 0}));
    EXPECT_EQ(run.column("CONBDEPH"), (Singles{300, 100}));  // the first rows, not those of its connections
  }
}

TEST(Plt, BranchesAreCountedByTheGreatestNumber) {
  const struct {
    const char* numbers;
    std::int32_t branches;
    bool first;  ///< branch 1 can be had
  } rows[] = {{"1 1 1 1", 1, false},
              {"0 0 0 0", 0, false},
              {"0 2 1 1", 0, false},
              {"1 3 3 1", 3, true},
              {"1 2 1 2000000000", 2000000000, true}};
  for (const auto& [numbers, branches, first] : rows) {
    WellTestLoad run({{{.arrays = plt(std::string("CONBRNO: ") + numbers)}}});
    EXPECT_EQ(run.file.NumberPLTBranches(1), branches);
    EXPECT_EQ(run.pltBranch(1, 1), first);
    EXPECT_EQ(run.pltBranch(1, branches), branches > 1);  // the last one has connections in each row
  }
}

TEST(Plt, TablesOfOtherLengthsAreNeverReadBeyondTheirEnd) {
  for (const auto* depths : {"5", "5 5 5", "5 5 5 5 5 5 5"}) {
    WellTestLoad run({{{.arrays = plt(std::string("DEPTH ") + depths)}, {.arrays = plt()}}});
    EXPECT_EQ(run.session.diagnoses().front().keyword, "CONORAT");
    EXPECT_EQ(run.plt(1), std::string_view(depths).size() > 5);
    EXPECT_TRUE(run.plt(2));
  }
}

}  // namespace
}  // namespace lumbarn
