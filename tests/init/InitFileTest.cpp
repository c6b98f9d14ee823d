#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arrays/ArrayReader.h"
#include "init/qvEclipseINIT.h"
#include "shapes/HeaderLayout.h"
#include "shapes/OnlyList.h"
#include "support/Forms.h"
#include "support/InitBuilder.h"
#include "support/Paths.h"
#include "support/TemporaryFolder.h"
#include "support/Text.h"
#include "support/WellTestBuilder.h"

namespace lumbarn {
namespace {

using test::InitBuilder;
using test::InitHead;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// A file in a folder of its own, loaded.
class Loaded {
 public:
  explicit Loaded(const std::vector<std::byte>& bytes, bool loadData = true) {
    test::writeFile(path, bytes);
    if (!init.CheckINITFile(path)) return;
    init.LoadData = loadData;
    init.getEclipseINITArrays(qOK);
  }
  /// "PORO=5,6,7,8 ..." of a grid.
  std::string arrays(std::int32_t grid) {
    std::ostringstream text;
    XYData values;
    init.iGrid = grid;
    init.GetData(values, qOK);
    for (std::size_t i = 0; i < values.columns(); ++i) {
      text << (i == 0 ? "" : " ") << init.grid(grid).arrays[i].name << "=";
      for (std::size_t k = 0; k < values.rows(); ++k) text << (k == 0 ? "" : ",") << values(k + 1, i + 1);
    }
    return text.str();
  }
  test::TemporaryFolder folder;
  std::string path = folder.file("CASE.INIT");
  Session session;
  qvEclipseINIT init{session};
  bool qOK = false;
};

TEST(InitLoad, ConnectionArraysStandByKind) {
  const std::tuple<std::int32_t, std::int32_t, std::vector<float>, std::string> rows[] = {
      {1, 1, {0.5F, 0.25F, 0.125F}, "NNC"},
      {2, 1, {}, "NNC"},
      {2, 2, {31, 32}, "NNCGL"},
      {3, 1, {33}, "NNCLL"},  // the label of the third kind stands over that of the first
      {3, 3, {34, 35}, ""}};
  for (const bool loadData : {true, false}) {
    Loaded file(test::twoLocalGrids(test::bigEndian), loadData);
    auto& init = file.init;
    XYData values;
    for (const auto& [grid, type, expected, label] : rows) {
      init.iGrid = grid;
      EXPECT_EQ(init.getNUMNNC(type), static_cast<std::int32_t>(expected.size()));
      EXPECT_EQ(init.getNNCTypes(type), expected.empty() ? 0 : 1);
      init.GetNNCData(type, values, file.qOK);
      EXPECT_EQ(file.qOK, !expected.empty());
      EXPECT_TRUE(!file.qOK || std::ranges::equal(values.values(), expected));
      EXPECT_EQ(init.grid().xNNC[static_cast<std::size_t>(type) - 1].zNNCType, label);
    }
    ByteTable headers;
    init.getNNCHeaders(1, headers, file.qOK);
    std::string shown;
    for (const auto attribute : {attributeVariable, attributeMember, attributeLGRName})
      shown += ExtractAttribute(attribute, headers, 1);
    EXPECT_EQ(shown, "TRANNNCNNCLLRING");
  }
}

TEST(InitLoad, FlagsComeFromTheirWords) {
  const std::tuple<std::int32_t, std::vector<int>, int, std::string> rows[] = {
      {100, {4}, 35, "ReversibleKR "},
      {100, {5}, 35, "Radial "},
      {300, {4}, 35, "Radial "},
      {300, {5}, 35, "ReversibleKR "},
      {300,
       {1, 2, 8, 15, 17, 26, 31, 35},
       35,
       "DissolvedGas VapourisedOil RockCompaction DualPorosity EndPointScaling CompressedVE "
       "CoalBedMethane Miscible "},
      {300, {12, 23, 24, 25, 29, 30}, 35, ""},
      {100, {1, 3}, 3, "DissolvedGas DirectionalKR "}};
  for (const auto& [program, set, words, flags] : rows) {
    Loaded file(InitBuilder(test::bigEndian).head({.iProgram = program}).flags(set, words).bytes());
    std::string names;
    for (const auto& [name, flag] : namedFlags()) {
      if (file.init.grid(1).flags.*flag) names += std::string(name) + " ";
    }
    EXPECT_EQ(names, "Oil Water Gas " + flags);
  }
  Loaded other(InitBuilder(test::bigEndian).head({.iUnits = 5002, .iProgram = 5000}).bytes());
  EXPECT_EQ(other.init.grid(1).iUnits, 2);
  std::vector<std::int32_t> dims(48);
  dims[3] = dims[5] = 1, dims[4] = 2;
  const std::vector<double> tab(8, 1);
  Loaded zeros(
      InitBuilder(test::bigEndian).head({}).flags({}).integers("TABDIMS", dims).doubles("TAB", tab).bytes());
  EXPECT_EQ(zeros.init.getNumberTables("ROCKTAB"), 1) << "LOGIHEAD all false states nothing";
}

TEST(InitLoad, ActiveCellsWhereRecordsDisagreeWithTheHeader) {
  const InitHead head{.Nx = 3, .Ny = 2, .nActive = 5};
  Loaded lengths(InitBuilder(test::bigEndian)
                     .head(head)
                     .singles("PORO", {1, 2, 3, 4})
                     .singles("NTG", {5, 6, 7, 8})
                     .bytes());
  EXPECT_EQ(lengths.arrays(1), "PORO=1,2,3,4 NTG=5,6,7,8");
  Loaded porous(InitBuilder(test::bigEndian)
                    .head(head)
                    .singles("PORV", {9, 9, 9, 9, 9, 8})
                    .singles("DX", {1, 2, 3, 4, 5, 6})
                    .bytes());
  EXPECT_EQ(porous.arrays(1), "PORV=9,9,9,9,9 DX=1,2,3,4,5") << "the first ones of too many";
}

/// Records of a text such as "NTG 1 1; SEQNUM: 1": "@NAME" is a local grid, "-WORD" a message and "?WORD" the
/// header of a record of an unknown type.
void append(InitBuilder& file, const std::string& text) {
  for (const auto& array : test::arraysOf(text)) {
    const std::string rest = array.name.substr(1);
    const auto* singles = std::get_if<std::vector<float>>(&array.values);
    if (array.name[0] == '@') {
      file.local(rest).head({});
    } else if (array.name[0] == '-') {
      file.message(rest);
    } else if (array.name[0] == '?') {
      file.header(rest, static_cast<std::int32_t>(singles->size()), "ABCD");
    } else {
      singles ? file.singles(array.name, *singles) : file.integers(array.name, std::get<1>(array.values));
    }
  }
}

TEST(InitLoad, RecordsThatAreNotAsUsual) {
  std::string dims = "TABDIMS:";
  for (int n = 0; n < 100; ++n) dims += " 1";
  const struct {
    std::string records, arrays, keyword, action;  // behind the head and PORO; of the report, if there is one
  } rows[] = {{"SEQNUM: 1; NTG 1 1 1 1", "", "", ""},
              {"?WHAT 1 2 3", "", "WHAT", "stopped; kept the arrays before"},
              {"?WHAT; NTG 1 1 1 1", " NTG=1,1,1,1", "", ""},
              {"poro 5 6 7 8", " PORO=5,6,7,8", "PORO", "kept all of them; a request by name gets the first"},
              {"TABDIMS 1; NTG 1 1 1 1", " NTG=1,1,1,1", "TABDIMS", "skipped bytes 496 to 532"},
              {"TRANNNC 1; HEATNNC 1 2", "", "HEATNNC", "dropped the array"},
              {dims + "; TAB 1 2", "", "TAB", "kept the arrays before"},
              {"@LGR1; PORO 5 6 7 8; -ENDLGR; NTG 1 1 1 1; @LGR1; NTG 2 2 2 2", " NTG=1,1,1,1", "", ""}};
  for (const auto& [records, arrays, keyword, action] : rows) {
    InitBuilder bytes(test::bigEndian);
    append(bytes.integers("SEQNUM", {0}).head({}).singles("PORO", {1, 2, 3, 4}), records);
    Loaded file(bytes.bytes());
    EXPECT_EQ(file.arrays(1), "PORO=1,2,3,4" + arrays);
    EXPECT_TRUE(file.init.nGrids() == 1 || file.arrays(2) == "PORO=5,6,7,8 NTG=2,2,2,2") << file.arrays(2);
    const auto& reports = file.session.diagnoses();
    ASSERT_THAT(reports, SizeIs(keyword.empty() ? 0 : 1)) << keyword;
    EXPECT_EQ(keyword.empty() ? keyword : reports[0].keyword + reports[0].action, keyword + action);
  }
}

/// Positions that a host was given, and values that are read later, are those of the file that was loaded.
TEST(InitLoad, AFileThatIsReplacedIsNotReadOn) {
  Loaded file(test::twoLocalGrids(test::bigEndian), false);
  ColumnTable<std::int32_t> places;
  file.init.GetINITFODPointers(places, file.qOK);
  const auto column = places.values().subspan(5 * 2).first<5>();
  std::vector<float> values(4);
  for (const bool replaced : {false, true}) {
    if (replaced)
      std::filesystem::last_write_time(file.path,
                                       std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    const auto fetch = [&] {
      ArrayReader(file.session).readFetched(file.path, {true, false, true, true, false}, column, 0, values);
    };
    if (replaced)
      EXPECT_THROW(fetch(), BadRecord);
    else
      fetch();
    file.init.GetArray(1, 3, false, values, file.qOK);
    EXPECT_EQ(file.qOK, !replaced);
    EXPECT_EQ(file.session.diagnoses().size(), replaced ? 1U : 0U);
  }
  EXPECT_EQ(file.session.diagnoses().back().id(), "file.changed");
}

TEST(InitLoad, MatchesTheSampleRuns) {
  for (const std::string file : {"ARBOR/ARBOR.INIT", "ARBORF/ARBORF.FINIT", "HOLLIN/HOLLIN.INIT"}) {
    std::map<std::string, std::array<double, 4>> expected;  // count, min, max, sum
    std::ifstream csv(examplePath("/data/expected/") + file.substr(file.find('/') + 1) + ".records.csv");
    for (std::string line; std::getline(csv, line);) {
      const auto cells = split(line, ',');
      for (std::size_t n = 0; n < 4; ++n) expected[cells.at(0)][n] = std::atof(cells.at(n + 2).c_str());
    }
    Session session;
    qvEclipseINIT init(session);
    bool qOK = false;
    ASSERT_TRUE(init.CheckINITFile(examplePath("/data/") + file)) << file;
    init.getEclipseINITArrays(qOK);
    ASSERT_TRUE(qOK) << file;
    ASSERT_THAT(init.grid(1).arrays, SizeIs(17)) << file;
    XYData values;
    init.GetData(values, qOK);
    ASSERT_EQ(values.rows(), static_cast<std::size_t>(init.grid(1).nActive));
    for (std::size_t i = 1; i <= values.columns(); ++i) {
      const auto& [count, min, max, sum] = expected[init.grid(1).arrays[i - 1].name];
      const auto column = values.column(i);
      // Cells that are not active have no pore volume, so the sum is that of the record all the same.
      EXPECT_NEAR(std::accumulate(column.begin(), column.end(), 0.0), sum, 1e-6 * std::abs(sum)) << file << i;
      EXPECT_FLOAT_EQ(*std::ranges::max_element(column), static_cast<float>(max)) << file << i;
      const bool everyCell = count == static_cast<double>(column.size());
      EXPECT_TRUE(!everyCell || *std::ranges::min_element(column) == static_cast<float>(min)) << file << i;
    }
    std::vector<float> natural;
    init.GetArray(1, 1, true, natural, qOK);
    EXPECT_EQ(std::ranges::count(natural, -999.0F), init.grid(1).nCells - init.grid(1).nActive);
  }
}

TEST(InitLoad, SelectionKeepsPoreVolumesForTheNumbering) {
  Loaded file(test::twoLocalGrids(test::bigEndian));
  file.init.selection = ArraySelection(std::vector<std::string>{"dep*,SATNUM"}, {});
  file.init.getEclipseINITArrays(file.qOK);
  EXPECT_EQ(file.arrays(1), "DEPTH=1,3,4,6 SATNUM=1,3,4,6");
  std::int32_t count = 0;
  std::vector<std::string> names;
  file.init.GetInitVectorList(count, names, file.qOK, true);
  EXPECT_THAT(names, ElementsAre("DEPTH")) << "up to the first local grid";
}

/// Of more than 2^31 cells; their product fits into 64 bits in any sound file.
TEST(InitLoad, HugeGridsHaveFlagsAndArraysOfActiveCells) {
  InitBuilder huge(test::bigEndian);
  huge.head({.Nx = 100'000, .Ny = 100'000, .nActive = 2}).flags({1}).singles("PORO", {1, 2});
  Loaded file(huge.bytes());
  ASSERT_TRUE(file.qOK);
  EXPECT_EQ(file.arrays(1), "PORO=1,2");
  EXPECT_TRUE(file.init.grid(1).flags.DissolvedGas);
  EXPECT_EQ(file.init.grid(1).nCells, 10'000'000'000);

  InitBuilder damaged(test::bigEndian);
  constexpr std::int32_t most = 2147483647;
  damaged.head({}).singles("PORO", {1, 2, 3, 4}).local("BIG").head({.Nx = most, .Ny = most, .Nz = 3});
  Loaded other(damaged.bytes());
  EXPECT_FALSE(other.qOK);
  EXPECT_THAT(other.session.diagnoses().back().text(), HasSubstr("2147483647 x 2147483647 x 3"));
  EXPECT_EQ(other.arrays(1), "PORO=1,2,3,4");
  other.init.AcceptDamaged = true;
  other.init.getEclipseINITArrays(other.qOK);
  EXPECT_TRUE(other.qOK && other.init.qDamaged);
  std::vector<std::string> only{"PORO"};
  bool qOnly = false;
  other.init.setONLYList(only, true, other.qOK);
  only.clear();
  other.init.getONLYList(only, qOnly, other.qOK);
  EXPECT_TRUE(qOnly && only.size() == 1);
}

TEST(InitLoad, AfterACancelThereIsNothingToFetch) {
  Loaded file(test::twoLocalGrids(test::bigEndian));
  int left = -1;
  for (int turns = 0; left < 0; ++turns) {  // up to a load that comes to its end
    left = turns;
    file.session.hostYield = [&] { file.session.CancelLoad = left-- == 0; };
    file.init.getEclipseINITArrays(file.qOK);
    EXPECT_EQ(file.qOK, left >= 0);
    if (file.qOK) break;
    file.session.CancelLoad = false;
    EXPECT_EQ(file.arrays(1), "");
    EXPECT_FALSE(file.qOK) << turns;
  }
}

TEST(InitLoad, RangesAndEstimatesAreOdd) {
  Loaded file(InitBuilder(test::bigEndian)
                  .head({})
                  .singles("A", {3, 1, 2, 5})
                  .singles("B", {2e10F, 3e10F, 2e10F, 4e10F})
                  .bytes());
  std::vector<float> least, most;
  file.init.GetArrayMin(least, file.qOK);
  file.init.GetArrayMax(most, file.qOK);
  EXPECT_THAT(least, ElementsAre(1, 1e10F)) << "ranges start at ten thousand million";
  EXPECT_THAT(most, ElementsAre(5, 4e10F));
  EXPECT_EQ(qvEclipseINIT::EstimateVectorCount(0, 1'000'000), 10);
  EXPECT_EQ(qvEclipseINIT::EstimateVectorCount(1, 4 * 100'000), 100'000);
  EXPECT_EQ(qvEclipseINIT::EstimateVectorCount(1, 4 * 100'001), 10);
}

TEST(InitLoad, WithoutMemoryValuesGoThroughAScratchFile) {
  Loaded file(test::twoLocalGrids(test::bigEndian));
  file.session.memoryLimit = 5 * sizeof(float) * 4;  // a column, but not six
  file.init.getEclipseINITArrays(file.qOK);
  ASSERT_TRUE(file.qOK);
  const std::string scratch = file.init.zScratchFile();
  ASSERT_THAT(std::filesystem::path(scratch).filename().string(), testing::StartsWith("EI"));
  XYData values;
  file.init.GetData(values, file.qOK);
  EXPECT_FALSE(file.qOK) << "still no memory";
  file.session.memoryLimit = 0;
  EXPECT_EQ(file.arrays(1),
            "PORV=10,30,40,60 DEPTH=1,3,4,6 PORO=5,6,7,8 PVTNUM=1,1,2,2 SATNUM=1,3,4,6 FIPNUM=9,8,7,6");
  EXPECT_FALSE(std::filesystem::exists(scratch));
}

}  // namespace
}  // namespace lumbarn
