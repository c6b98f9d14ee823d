#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/WellTestLoad.h"

namespace lumbarn {
namespace {

using test::subscriptFaultIn;
using test::WellTestBuilder;
using test::WellTestLoad;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using Arrays = std::vector<WellTestBuilder::Array>;
using Singles = std::vector<float>;

WellTestBuilder::Array integers(const std::string& name, std::vector<std::int32_t> values) {
  return {name, values};
}

Arrays without(Arrays arrays, const std::string& name) {
  std::erase_if(arrays, [&](const auto& array) { return array.name == name; });
  return arrays;
}

/// Middles are 35, 15, 20 and 15; the third connection has no length.
Arrays plt() {
  return {integers("CONIPOS", {1, 2, 3, 4}),     integers("CONJPOS", {5, 5, 5, 5}),
          integers("CONKPOS", {6, 7, 8, 9}),     {"CONORAT", Singles{10, 20, 5, 0}},
          {"CONWRAT", Singles{30, 0, -5, 0}},    {"CONGRAT", Singles{1000, 100, 7, 9}},
          {"CONOTUB", Singles{1, 2, 4, 0}},      {"CONWTUB", Singles{3, 2, 0, 0}},
          {"CONGTUB", Singles{8, 8, 8, 8}},      {"CONLENST", Singles{30, 10, 20, 14}},
          {"CONLENEN", Singles{40, 20, 20, 16}}, integers("CONBRNO", {2, 1, 2, 1}),
          integers("CONSEGNO", {2, 3, 2, 3}),    {"DEPTH", Singles{300, 100, 200, 400}},
          {"CONPRES", Singles{51, 52, 53, 54}}};
}

class Plt : public test::OfForm {};
INSTANTIATE_TEST_SUITE_P(Forms, Plt, ::testing::ValuesIn(test::everyForm), test::formName);

TEST_P(Plt, GoesByMeasuredDepthWithWhatIsWorkedOut) {
  WellTestLoad run({{{.arrays = plt()}}}, form_);
  ASSERT_TRUE(run.plt(1));
  EXPECT_THAT(run.names(), ElementsAre("CONMD", "CONLENST", "CONLENEN", "CONLENTH", "CONORAT", "CONWRAT",
                                       "CONGRAT", "CONOTUB", "CONWTUB", "CONGTUB", "CONBRNO", "CONSEGNO",
                                       "CONPRES", "CONIPOS", "CONJPOS", "CONKPOS", "CONORATS", "CONWRATS",
                                       "CONGRATS", "CONWCUT", "CONWCUTUB", "CONGOR", "CONGORTUB", "CONBDEPH",
                                       "CONIPOS", "CONJPOS", "CONKPOS", "CONBSOIL", "COMPLETION"));
  struct Row {
    const char* name;
    Singles values;
    const char* unit;
  };
  const Row rows[] = {
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
  for (const Row& row : rows) {
    EXPECT_EQ(run.column(row.name), row.values) << row.name;
    EXPECT_EQ(run.unit(row.name), row.unit) << row.name;
  }
  EXPECT_EQ(run.fields(attributeDataKind)[0], "PLT");
  EXPECT_TRUE(run.rft(1));  // RFT tables stay in the order of the file
  EXPECT_EQ(run.column("DEPTH"), (Singles{300, 100, 200, 400}));
  EXPECT_THAT(run.faults, IsEmpty());
}

TEST_P(Plt, BranchHasItsRowsOfBothTables) {
  WellTestLoad run({{{.arrays = plt()}}}, form_);
  EXPECT_EQ(run.file.NumberPLTBranches(1), 2);
  EXPECT_FALSE(run.pltBranch(1, 0));
  EXPECT_FALSE(run.pltBranch(1, 3));
  ASSERT_TRUE(run.pltBranch(1, 2));
  EXPECT_EQ(run.column("CONMD"), (Singles{20, 35}));
  EXPECT_EQ(run.column("CONBDEPH"), (Singles{200, 300}));
  EXPECT_EQ(run.fields(attributeDataKind)[28], "PLTBRAN");
  EXPECT_EQ(run.fields(attributeLGRName)[28], "2");
}

TEST(PltOrder, BranchInTheOrderOfTheFileTakesTheFirstRftRows) {
  Arrays arrays = without(plt(), "CONLENEN");
  WellTestLoad run({{{.arrays = arrays}}});
  ASSERT_TRUE(run.pltBranch(1, 1));
  EXPECT_EQ(run.column("CONORAT"), (Singles{20, 0}));
  EXPECT_EQ(run.column("CONBDEPH"), (Singles{300, 100}));  // not those of connections 2 and 4
}

TEST(PltOrder, WithoutBothLengthsTheTableStaysAsTheFileHasIt) {
  const Arrays segments = {integers("SEGBRNO", {1, 1, 1})};
  for (const char* missing : {"CONLENEN", "CONLENST"}) {
    Arrays arrays = without(plt(), missing);
    arrays.insert(arrays.end(), segments.begin(), segments.end());
    WellTestLoad run({{{.arrays = arrays}}});
    ASSERT_TRUE(run.plt(1));
    EXPECT_EQ(run.names()[0], "CONORAT");
    EXPECT_EQ(run.column("COMPLETION"), (Singles{1, 2, 3, 4}));
    EXPECT_EQ(run.column("CONORAT"), (Singles{10, 20, 5, 0}));
    // Segments get the sums when only the ends are missing.
    const bool sums = std::string(missing) == "CONLENEN";
    EXPECT_EQ(run.file.test(1).segmentTable().find("SEGCORAT") > 0, sums);
  }
}

struct BranchNumbers {
  std::vector<std::int32_t> numbers;
  std::int32_t branches;
  bool first;  ///< branch 1 can be had
};

TEST(PltBranches, AreCountedByTheGreatestNumber) {
  const BranchNumbers rows[] = {
      {{1, 1, 1, 1}, 1, false},
      {{0, 0, 0, 0}, 0, false},
      {{0, 2, 1, 1}, 0, false},
      {{1, 3, 3, 1}, 3, true},
      {{1, 2, 1, 2000000000}, 2000000000, true},
  };
  for (const auto& [numbers, branches, first] : rows) {
    Arrays arrays = without(plt(), "CONBRNO");
    arrays.push_back(integers("CONBRNO", numbers));
    WellTestLoad run({{{.arrays = arrays}}});
    EXPECT_EQ(run.file.NumberPLTBranches(1), branches);
    EXPECT_EQ(run.pltBranch(1, 1), first);
    EXPECT_EQ(run.pltBranch(1, branches), branches > 1);  // the last one has connections in each row
  }
}

TEST(PltFaults, WithoutTubingRatesBothTablesStayInTheOrderOfTheFile) {
  WellTestLoad run({{{.arrays = without(plt(), "CONOTUB")}, {.arrays = plt()}}});
  EXPECT_THAT(run.faults, ElementsAre(subscriptFaultIn("processPLTRecords")));
  ASSERT_EQ(run.session.diagnoses().size(), 1U);
  EXPECT_EQ(run.lastDiagnosis().keyword, "CONOTUB");
  ASSERT_TRUE(run.plt(1));
  EXPECT_EQ(run.column("CONORAT"), (Singles{10, 20, 5, 0}));
  EXPECT_EQ(run.column("CONBDEPH"), (Singles{300, 100, 200, 400}));
  ASSERT_TRUE(run.plt(2));
  EXPECT_EQ(run.column("CONMD"), (Singles{15, 15, 20, 35}));
}

TEST(PltOptions, OfTheFileReachNoTestAndOfATestDo) {
  WellTestLoad run;
  run.file.ProcessPLT = run.file.SortedPLT = run.file.ScaledPLT = false;
  ASSERT_TRUE(run.load(WellTestBuilder{{{.arrays = plt()}}}.write(run.folder, test::bigEndian)));
  ASSERT_TRUE(run.plt(1));
  EXPECT_THAT(run.names(), IsSupersetOf({"CONMD", "CONORATS"}));
  EXPECT_EQ(run.column("CONMD"), (Singles{15, 15, 20, 35}));

  struct Row {
    bool QVEclipseRFTtest::*off;  // as no host can have it
    const char* firstColumn;
    Singles depths;
  };
  const Row rows[] = {{&QVEclipseRFTtest::ProcessPLT, "CONORAT", {300, 100, 200, 400}},
                      {&QVEclipseRFTtest::SortedPLT, "CONMD", {300, 100, 200, 400}},
                      {&QVEclipseRFTtest::ScaledPLT, "CONMD", {100, 400, 200, 300}}};
  for (const Row& row : rows) {
    EXPECT_THAT(run.faults, IsEmpty());
    std::string why;
    const auto walk = openWalk(run.file.FileName, why);
    const auto one = std::make_shared<QVEclipseRFTtest>(run.session);
    (*one).*row.off = false;
    bool qOK = false;
    one->getEclipseRFTtest(*walk, qOK);
    run.file.addRFTtest(one, qOK);
    ASSERT_TRUE(run.plt(run.file.NumTests()));
    EXPECT_EQ(run.names()[0], row.firstColumn);
    EXPECT_EQ(run.column("CONBDEPH"), row.depths);
  }
  // The scaled columns are asked for all the same: the new table with as many columns as the file's had.
  EXPECT_THAT(run.faults, ElementsAre(subscriptFaultIn("processPLTRecords")));
  EXPECT_EQ(run.file.test(4).nPLT(), 15);
  EXPECT_EQ(run.file.test(4).pltTable().columns.size(), 23U);
}

TEST(PltFaults, TablesOfOtherLengthsAreNeverReadBeyondTheirEnd) {
  for (const std::size_t rows : {1U, 3U, 7U}) {
    Arrays arrays = without(plt(), "DEPTH");
    arrays.insert(arrays.begin(), {"DEPTH", Singles(rows, 5)});
    WellTestLoad run({{{.arrays = arrays}, {.arrays = plt()}}});
    EXPECT_EQ(run.session.diagnoses().front().keyword, "CONORAT");
    EXPECT_EQ(run.plt(1), rows >= 4);
    EXPECT_TRUE(run.plt(2));
  }
}

}  // namespace
}  // namespace lumbarn
