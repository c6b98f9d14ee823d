#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arrays/ArrayReader.h"
#include "reader/LoadDialog.h"
#include "shapes/HeaderLayout.h"
#include "shapes/SelectionFixture.h"
#include "support/Forms.h"
#include "support/GridBuilder.h"
#include "support/Host.h"
#include "support/InitBuilder.h"
#include "support/Paths.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class InitOperations : public testing::Test {
 protected:
  InitOperations() { test::writeFile(path_, test::twoLocalGrids(test::bigEndian)); }
  /// Names of the arrays that a fetch gives, from its headers.
  std::vector<std::string> names() {
    std::vector<std::string> found;
    qOK_ = host_.fetchInit();
    for (std::size_t i = 1; qOK_ && i <= host_.headers.entries(); ++i)
      found.push_back(ExtractAttribute(attributeVariable, host_.headers, i));
    return found;
  }
  test::TemporaryFolder folder_;
  const std::string path_ = folder_.file("CASE.INIT");
  test::Host host_{path_, 15};
  qvEclipseReader& reader_ = host_.reader;
  bool qOK_ = false;
};

TEST_F(InitOperations, FetchTheChosenGrid) {
  ASSERT_TRUE(host_.run());
  std::int32_t Nx = 0, Ny = 0, Nz = 0;
  reader_.iGridNumber = 3;
  EXPECT_THAT(names(), ElementsAre("PORV", "DR", "DTHETA", "PERMR", "PVTNUM"));
  EXPECT_EQ(std::get<std::string>(host_.source(29)), "RING");
  EXPECT_EQ(std::get<bool>(host_.source(13)), true) << "radial, not formatted";
  reader_.GetINITNxNyNz(Nx, Ny, Nz, qOK_);
  EXPECT_EQ(std::vector({Nx, Ny, Nz}), std::vector({2, 1, 1}));
  reader_.GetINITNNCData(3, host_.table, host_.headers, qOK_);
  EXPECT_THAT(host_.table.values(), ElementsAre(34, 35));
  reader_.iGridNumber = 1;
  std::vector<float> all;
  reader_.GetINITArray("poro", true, all, qOK_);
  EXPECT_THAT(all, ElementsAre(5, -999, 6, 7, -999, 8));
  reader_.iGridNumber = 4;
  EXPECT_THAT(names(), IsEmpty());
  EXPECT_FALSE(qOK_);
  EXPECT_TRUE(reader_.DissolvedGas() && reader_.DualPorosity() && reader_.Oil() && !reader_.Brine());
  EXPECT_EQ(reader_.NumberPhases(), 3);
  EXPECT_EQ(reader_.InitScratchFileName(), "") << "memory sufficed";
  reader_.DeleteInitData(qOK_);
  EXPECT_FALSE(reader_.IsInitialised(15) || reader_.Oil() || reader_.IsINITTableData());
}

TEST_F(InitOperations, GivePlacesThatLeadToTheValues) {
  test::writeFile(path_, test::twoLocalGrids(test::formatted));
  reader_.LoadData = false;
  host_.run();
  ColumnTable<std::int32_t> places;
  std::array<bool, 5> settings{};
  bool qFOD = false;
  reader_.getINITDataFOD(host_.table, host_.headers, host_.source, host_.only, places, settings, qFOD, qOK_);
  EXPECT_TRUE(qOK_ && qFOD);
  EXPECT_THAT(host_.table.values(), ElementsAre(-1, 0, 0, 0, 0, 0));
  ASSERT_EQ(places.columns(), 6U);
  std::vector<float> fetched(6);
  EXPECT_THAT(places.values().subspan(5, 2), ElementsAre(6, 3)) << "values and type of DEPTH";
  ArrayReader(host_.session)
      .readFetched(path_, settings, places.values().subspan(5).first<5>(), 0, fetched, qOK_);
  EXPECT_THAT(fetched, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(InitOperations, FindTheFileOfAnIndex) {
  reader_.IndexFolder = folder_.file("");
  EXPECT_TRUE(host_.load(folder_.file("CASE.inspec"), 15));
  EXPECT_TRUE(std::filesystem::exists(folder_.file("CASE.INSPEC"))) << "it was written anew";
  EXPECT_EQ(reader_.FileName, path_);
  test::writeFile(folder_.file("case.finit"), test::twoLocalGrids(test::formatted));
  EXPECT_TRUE(host_.load(folder_.file("case.finspec"), 15));
  EXPECT_FALSE(host_.load(folder_.file("NONE.INSPEC"), 15));
  EXPECT_THAT(host_.lastDiagnosis().text(), HasSubstr("NONE.INSPEC"));
}

TEST_F(InitOperations, HandOverTablesAsTheyAreStored) {
  ASSERT_TRUE(host_.load(examplePath("/data/HOLLIN/HOLLIN.INIT"), 15));
  ASSERT_TRUE(reader_.IsINITTableData());
  reader_.GetINITTableData("PVDO", 1, host_.table, host_.headers, host_.source, qOK_);
  ASSERT_TRUE(qOK_);
  EXPECT_EQ(host_.table.rows(), 4u);
  EXPECT_FLOAT_EQ(host_.table(1, 2), static_cast<float>(1 / 1.12));
  EXPECT_EQ(ExtractAttribute(attributeVariable, host_.headers, 2), "1/BO");
  std::vector<float> values;
  std::vector<std::int32_t> sizes;
  std::int32_t nDims = 0;
  reader_.getTable("PVDO", 1, values, sizes, nDims, qOK_);
  EXPECT_TRUE(qOK_ && nDims > 0);
  reader_.InitTables = false;
  EXPECT_TRUE(host_.run());
  EXPECT_FALSE(reader_.IsINITTableData());
  EXPECT_EQ(reader_.NumberTables("PVDO"), 0);
}

/// Deselects the first array.
class TakeAllButOne : public LoadDialog {
 public:
  bool show(const qvEclipseSPEC&, ECLIPSEINFO&, LoadDialogSettings&) override { return false; }
  bool showArrays(ECLIPSEINFO& selection, LoadDialogSettings& settings) override {
    EXPECT_EQ(settings.zFileType + std::to_string(selection.nSolutionVectors), "INIT3");
    selection.qSolutionChosen[0] = false;
    settings.zOrigin = "CHOSEN";
    return goOn;
  }
  bool goOn = true;
};

TEST_F(InitOperations, AskADialog) {
  TakeAllButOne dialog;
  reader_.setLoadDialog(&dialog);
  reader_.Silent = false;
  host_.run();
  EXPECT_THAT(names(), ElementsAre("DEPTH", "PORO", "PVTNUM", "SATNUM", "FIPNUM"));
  EXPECT_EQ(std::get<std::string>(host_.source(1)), "CHOSEN");
  dialog.goOn = false;
  EXPECT_FALSE(host_.run());
}

}  // namespace
}  // namespace lumbarn
