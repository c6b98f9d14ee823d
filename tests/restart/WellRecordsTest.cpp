#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "restart/MarkerBlock.h"
#include "restart/WellRecords.h"
#include "support/RestartBuilder.h"
#include "support/RestartLoad.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;
using namespace test;

/// One step of a restart set.
struct StepLoad : RestartLoad {
  StepLoad(const std::string& path, std::int32_t step, std::int32_t method = 2) : RestartLoad(path) {
    reader.MarkerMethod = method;
    reader.iStart = reader.iEnd = step;
    qOK = run();
  }
  std::vector<WellRecord> wells(std::int32_t iGrid = 1) {
    EXPECT_TRUE(qOK);
    return reader.RestartWells(1, iGrid, qOK);
  }
  bool qOK = false;
};

std::string text(const WellRecord& well) {
  std::string all =
      fmt::format("{} {} {} {} {} {} {},{} {}:", well.name, nameOf(well.type()), phaseText(well.iPhase),
                  wellStatusText(well.iStatus), controlText(well.iControl), well.group, well.iHead,
                  well.jHead, well.nConnections);
  for (const auto& one : well.connections) {
    all += fmt::format(" {},{},{} {}{}", one.i, one.j, one.k, connectionStatusText(one.iStatus),
                       directionText(one.iDirection));
    if (one.numbers) all += fmt::format(" {}-{}", one.numbers->lengthStart, one.numbers->lengthEnd);
  }
  return all;
}

std::vector<std::string> texts(const std::vector<WellRecord>& wells) {
  std::vector<std::string> all;
  for (const auto& well : wells) all.push_back(text(well));
  return all;
}

class WellsOfAFile : public OfForm {
 protected:
  /// Two wells in the global grid, one in a local grid.
  static RestartBuilder twoGrids() {
    RestartBuilder run;
    RestartBuilder::Grid global{
        .arrays = {{"PRESSURE", {1, 2, 3, 4}}},
        .wells = {{"A", {{1, 1, 1}, {2, 1, 1}}, {{6, 1}, {7, 1}, {11, 7}}}, {"B", {}, {{7, 9}}}}};
    RestartBuilder::Grid local{
        .name = "FINE", .arrays = {{"PRESSURE", {1, 2, 3, 4}}}, .wells = {{"C", {{2, 2, 1}}, {{7, 4}}}}};
    run.steps = {{.number = 4, .grids = {global, local}}};
    return run;
  }
  TemporaryFolder folder_;
};
INSTANTIATE_TEST_SUITE_P(Forms, WellsOfAFile, ::testing::ValuesIn(everyForm), formName);

TEST_P(WellsOfAFile, RecordsOfEachGridWithWhatTheLoadAskedFor) {
  const auto path = twoGrids().write(folder_, "RUN", form_);
  StepLoad whole(path, 4);
  EXPECT_THAT(
      texts(whole.wells()),
      ElementsAre("A producer oil 7 0 FIELD 1,1 2: 1,1,1 1010610114 1022-1021 2,1,1 1020610214 2022-2021",
                  "B unknown 0 0 0  0,0 0:"))
      << "a number that has no known meaning stands for itself";
  EXPECT_THAT(texts(whole.wells(2)),
              ElementsAre("C gas injector gas 0 0  2,2 1: 2,2,1 1010610114 1022-1021"));
  EXPECT_THAT(whole.wells(3), ::testing::IsEmpty());
  EXPECT_FALSE(whole.qOK) << "there is no third grid";
  StepLoad plain(path, 4, 3);
  EXPECT_THAT(texts(plain.wells()), ElementsAre("A producer oil 7 0 FIELD 1,1 2: 1,1,1 10106 2,1,1 10206",
                                                "B unknown 0 0 0  0,0 0:"));
  EXPECT_FALSE(plain.wells()[0].rates);
}

TEST_P(WellsOfAFile, MarkersOfAStepByTheMethodOfTheReader) {
  const auto path = twoGrids().write(folder_, "RUN", form_);
  for (const auto& [method, mark] : {std::pair(2, "MKEX"), std::pair(3, "MK32"), std::pair(5, "MKEX")}) {
    StepLoad load(path, 4, method);
    MarkerTable rows;
    std::vector<std::byte> bytes;
    std::int32_t nRows = 0;
    std::int32_t nBytesRows = 0;
    load.reader.GetRESTARTSEQUENCE(1, load.table, load.headers, load.source, rows, nRows, load.qOK);
    ASSERT_TRUE(load.qOK);
    load.reader.GetRESTARTSEQUENCEb(1, load.table, load.headers, load.source, bytes, nBytesRows, load.qOK);
    ASSERT_TRUE(load.qOK);
    EXPECT_THAT((std::array{nRows, nBytesRows}), ElementsAre(4, 4));
    EXPECT_EQ(rows.rows(), 8U);
    MarkerBlock block;
    std::string why;
    ASSERT_TRUE(block.open(bytes, why)) << why;
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), 4), mark);
    for (std::size_t iRow = 1; iRow <= 4; ++iRow) {
      for (std::size_t iItem = 1; iItem <= 55; ++iItem)
        EXPECT_EQ(block(iRow, iItem), rows(iRow, iItem)) << iRow << " " << iItem;
    }
    EXPECT_EQ(std::holds_alternative<double>(rows(2, 15)), method != 3) << "SCON is read when it is wanted";
  }
}

}  // namespace
}  // namespace lumbarn
