#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arrays/ArrayReader.h"
#include "index/qvEclipseINSPEC.h"
#include "reader/qvEclipseReader.h"
#include "shapes/HeaderLayout.h"
#include "support/Forms.h"
#include "support/InitBuilder.h"
#include "support/Paths.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class InitOperations : public testing::Test {
 protected:
  InitOperations() {
    test::writeFile(folder_.file("CASE.INIT"), test::twoLocalGrids(test::bigEndian));
    reader_.FileName = folder_.file("CASE.INIT");
    reader_.whichtype = 15;
    reader_.Silent = true;
  }
  void load() { reader_.ECLReadData(qOK_); }
  /// Names of the arrays that a fetch gives, from its headers.
  std::vector<std::string> names() {
    std::vector<std::string> found;
    reader_.GetINITData(values_, headers_, source_, only_, qOK_);
    for (std::size_t i = 1; qOK_ && i <= headers_.entries(); ++i)
      found.push_back(ExtractAttribute(attributeVariable, headers_, i));
    return found;
  }
  void listOnly(std::vector<std::string> entries, bool positive) {
    reader_.bOnly = ByteTable(onlyWidth, entries.size());
    reader_.qOnly = positive;
    for (std::size_t i = 0; i < entries.size(); ++i) reader_.bOnly.put(i + 1, 1, onlyNameWidth, entries[i]);
  }
  test::TemporaryFolder folder_;
  Session session_;
  qvEclipseReader reader_{session_};
  XYData values_;
  ByteTable headers_;
  SourceData source_;
  ByteTable only_;
  bool qOK_ = false;
};

TEST_F(InitOperations, AFileThatIsRefusedLeavesNothingOfTheOneBefore) {
  load();
  reader_.FileName = folder_.file("OTHER.INIT");
  test::writeFile(reader_.FileName, std::vector<std::byte>(40));
  load();
  EXPECT_FALSE(qOK_);
  EXPECT_THAT(names(), SizeIs(0));
  EXPECT_FALSE(qOK_);
  EXPECT_THAT(session_.diagnoses().front().text(), testing::HasSubstr("byte 0: expected a record header"));
}

TEST_F(InitOperations, FetchTheChosenGrid) {
  load();
  ASSERT_TRUE(qOK_);
  EXPECT_TRUE(reader_.IsInitialised(15));
  EXPECT_THAT(names(), SizeIs(6));
  std::int32_t Nx = 0, Ny = 0, Nz = 0;
  reader_.iGridNumber = 3;
  EXPECT_THAT(names(), ElementsAre("PORV", "DR", "DTHETA", "PERMR", "PVTNUM"));
  EXPECT_EQ(std::get<std::string>(source_(1)), "CASE");
  EXPECT_EQ(std::get<std::string>(source_(29)), "RING");
  EXPECT_EQ(std::get<bool>(source_(13)), true) << "radial, not formatted";
  reader_.GetINITNxNyNz(Nx, Ny, Nz, qOK_);
  EXPECT_EQ(std::vector({Nx, Ny, Nz}), std::vector({2, 1, 1}));
  reader_.GetINITNNCData(3, values_, headers_, qOK_);
  EXPECT_THAT(values_.values(), ElementsAre(34, 35));
  reader_.iGridNumber = 1;
  std::vector<float> all;
  reader_.GetINITArray("poro", true, all, qOK_);
  EXPECT_THAT(all, ElementsAre(5, -999, 6, 7, -999, 8));
  reader_.iGridNumber = 4;
  EXPECT_THAT(names(), SizeIs(0));
  EXPECT_FALSE(qOK_);
  EXPECT_TRUE(reader_.DissolvedGas() && reader_.DualPorosity() && reader_.Oil() && !reader_.Brine());
  EXPECT_EQ(reader_.NumberPhases(), 3);
  EXPECT_TRUE(reader_.DeleteObject(15));
  EXPECT_FALSE(reader_.IsInitialised(15) || reader_.Oil() || reader_.IsINITTableData());
}

TEST_F(InitOperations, ChooseArraysByEachKindOfList) {
  const auto load = [&](auto set) {
    reader_.InitEclipseReader();
    reader_.FileName = folder_.file("CASE.INIT");
    reader_.whichtype = 15;
    set();
    reader_.ECLReadData(qOK_);
    return names();
  };
  EXPECT_THAT(load([&] { reader_.zOnly = "PO*"; }), ElementsAre("PORV", "PORO"));
  EXPECT_THAT(load([&] { reader_.zExcept = "P*,SATNUM"; }), ElementsAre("DEPTH", "FIPNUM"));
  EXPECT_THAT(load([&] { reader_.VectorPatterns = {"depth", "NONE"}; }), ElementsAre("DEPTH"));
  EXPECT_THAT(reader_.UnmatchedPatterns(), ElementsAre("NONE"));
  EXPECT_THAT(load([&] { listOnly({"PORO", "DEPTH"}, true); }), ElementsAre("DEPTH", "PORO"));
  EXPECT_THAT(load([&] {
                listOnly({"PORO", "DEPTH", "PORV"}, false);
              }),
              ElementsAre("PVTNUM", "SATNUM", "FIPNUM"));
}

TEST_F(InitOperations, GivePlacesThatLeadToTheValues) {
  for (const auto& [name, form] : test::everyForm) {
    test::writeFile(folder_.file("CASE.INIT"), test::twoLocalGrids(form));
    reader_.LoadData = false;
    load();
    ColumnTable<std::int32_t> places;
    std::array<bool, 5> settings{};
    bool qFOD = false;
    reader_.getINITDataFOD(values_, headers_, source_, only_, places, settings, qFOD, qOK_);
    EXPECT_TRUE(qOK_ && qFOD);
    EXPECT_THAT(values_.values(), ElementsAre(-1, 0, 0, 0, 0, 0));
    ASSERT_EQ(places.columns(), headers_.entries());
    ArrayReader fetch(session_);
    const struct {
      std::size_t array;
      std::int32_t kind;
      std::vector<float> values;
    } rows[] = {{2, 3, {1, 2, 3, 4, 5, 6}}, {4, 2, {1, 1, 2, 2}}};
    for (const auto& [array, kind, values] : rows) {
      std::vector<float> fetched(static_cast<std::size_t>(places(1, array)));
      EXPECT_EQ(places(2, array), kind);
      fetch.readFetched(reader_.FileName, settings, places.values().subspan(5 * (array - 1)).first<5>(), 0,
                        fetched, qOK_);
      EXPECT_EQ(fetched, values) << name << array;
    }
  }
}

TEST_F(InitOperations, FindTheFileOfAnIndex) {
  reader_.FileName = folder_.file("CASE.inspec");
  load();
  EXPECT_TRUE(qOK_);
  EXPECT_EQ(reader_.FileName, folder_.file("CASE.INIT"));
  test::writeFile(folder_.file("case.finit"), test::twoLocalGrids({Framing::Formatted}));
  reader_.FileName = folder_.file("case.finspec");
  load();
  EXPECT_TRUE(qOK_);
  reader_.FileName = folder_.file("NONE.INSPEC");
  load();
  EXPECT_FALSE(qOK_);
  EXPECT_THAT(session_.diagnoses().back().text(), testing::HasSubstr("NONE.INSPEC"));
}

TEST_F(InitOperations, WriteTheIndexWhereTheHostNamesAFolder) {
  reader_.IndexFolder = folder_.file("");
  load();
  EXPECT_TRUE(qOK_);
  qvEclipseINSPECFile index(session_);
  index.CheckINSPECFile(folder_.file("CASE.INSPEC"), qOK_);
  ASSERT_TRUE(qOK_);
  index.getINSPECData(qOK_);
  std::vector<std::string> names;
  ASSERT_NE(index.GetINSPEC(1), nullptr);
  index.GetINSPEC(1)->GetINITNames("RING", names, qOK_);
  EXPECT_THAT(names, testing::IsSupersetOf({"PORV", "DR", "DTHETA", "PERMR"}));
}

TEST_F(InitOperations, HandOverTablesAsTheyStandAndAsTheyAreMeant) {
  reader_.FileName = examplePath("/data/HOLLIN/HOLLIN.INIT");
  load();
  ASSERT_TRUE(reader_.IsINITTableData());
  reader_.GetINITTableData("PVDO", 1, values_, headers_, source_, qOK_);
  ASSERT_TRUE(qOK_);
  EXPECT_EQ(values_.rows(), 4u);
  EXPECT_FLOAT_EQ(values_(1, 2), static_cast<float>(1 / 1.12));
  EXPECT_EQ(ExtractAttribute(attributeVariable, headers_, 2), "1/BO");
  const auto physical = reader_.GetINITPhysicalTable("PVDO", 1, qOK_);
  EXPECT_DOUBLE_EQ(physical.columns[1].values[0], 1.12);
  EXPECT_EQ(physical.columns[0].units, "BARSA");
  reader_.InitTables = false;
  load();
  EXPECT_TRUE(qOK_);
  EXPECT_FALSE(reader_.IsINITTableData());
  EXPECT_EQ(reader_.NumberTables("PVDO"), 0);
}

/// Leaves the first array out.
class TakeAllButOne : public LoadDialog {
 public:
  bool show(const qvEclipseSPEC&, ECLIPSEINFO&, LoadDialogSettings&) override { return false; }
  bool showArrays(ECLIPSEINFO& selection, LoadDialogSettings& settings) override {
    offered = settings.zFileType + std::to_string(selection.nSolutionVectors);
    selection.qSolutionChosen[0] = false;
    settings.zOrigin = "CHOSEN";
    return goOn;
  }
  std::string offered;
  bool goOn = true;
};

TEST_F(InitOperations, AskADialog) {
  TakeAllButOne dialog;
  reader_.setLoadDialog(&dialog);
  reader_.Silent = false;
  load();
  EXPECT_EQ(dialog.offered, "INIT3");
  EXPECT_THAT(names(), ElementsAre("DEPTH", "PORO", "PVTNUM", "SATNUM", "FIPNUM"));
  EXPECT_EQ(std::get<std::string>(source_(1)), "CHOSEN");
  dialog.goOn = false;
  load();
  EXPECT_FALSE(qOK_);
}

TEST_F(InitOperations, KeepWhatStandsBeforeDamage) {
  auto bytes = test::twoLocalGrids(test::bigEndian);
  bytes.resize(bytes.size() - 3);
  test::writeFile(folder_.file("CASE.INIT"), bytes);
  load();
  EXPECT_FALSE(qOK_);
  EXPECT_TRUE(reader_.Damaged());
  EXPECT_THAT(names(), ElementsAre("PORV", "DEPTH", "PORO", "PVTNUM", "SATNUM"));
  reader_.AcceptDamaged = true;
  load();
  EXPECT_TRUE(qOK_);
}

}  // namespace
}  // namespace lumbarn
