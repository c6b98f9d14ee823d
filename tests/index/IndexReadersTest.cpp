#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "index/qvEclipseINSPEC.h"
#include "index/qvEclipseRSSPEC.h"
#include "support/IndexedRun.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;
using Texts = std::vector<std::string>;
using Words = std::vector<std::int32_t>;

/// The records of one grid: array n (from 0) has 10 n elements at byte 100 n, 4 GB further in the second
/// grid.
void writeGrid(RecordWriter& out, const Texts& names, std::int32_t high = 0, int width = 8) {
  Words numbers, low;
  std::vector<float> extremes;
  for (std::size_t n = 0; n < names.size(); ++n) {
    numbers.push_back(static_cast<std::int32_t>(10 * n));
    low.push_back(static_cast<std::int32_t>(100 * n));
    extremes.push_back(static_cast<float>(n));
  }
  out.texts("NAME", names, width);
  out.texts("TYPE", Texts(names.size(), "REAL"));
  out.integers("NUMBER", numbers);
  out.integers("POINTER", low);
  out.integers("POINTERB", Words(names.size(), high));
  out.singles("ARRAYMAX", extremes);
  out.singles("ARRAYMIN", extremes);
  out.texts("MEASRMNT", Texts{"PRESSURE"});
  out.texts("UNITS", Texts(names.size(), "BARSA"));
}

class IndexReaders : public OfForm {
 protected:
  template <class Write>
  std::string file(Write write) {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), form_);
    out.integers("INTEHEAD", IndexedRun::head({3, 2, 2}, 9, 4));
    write(out);
    writeFile(folder_.file("INDEX"), bytes);
    return folder_.file("INDEX");
  }
  TemporaryFolder folder_;
  Session session_;
  bool qOK_ = false;
};
INSTANTIATE_TEST_SUITE_P(Forms, IndexReaders, ::testing::ValuesIn(everyForm), formName);

TEST_P(IndexReaders, RsspecGivesStepsGridsNamesAndPlaces) {
  qvEclipseRSSPEC index(session_);
  index.CheckRESTARTFile(file([](RecordWriter& out) {
                           out.integers("OTHER", Words{1});
                           out.doubles("TIME", std::array{1.5, 9.0});
                           out.integers("ITIME", Words{4, 15, 7, 2003, 0, 0, 0, 0, 0, 0, 0, 0, 0});
                           writeGrid(out, {"PRESSURE", "SWAT", "PRESSURE"});
                           out.texts("LGRNAME", Texts{"LGR1"});
                           writeGrid(out, {"SWAT", "A LONG NAME OF MORE THAN 16"}, -1, 32);
                           out.doubles("TIME", std::array{2.5});
                           out.integers("ITIME", Words{5, 16, 7, 2003});
                           writeGrid(out, {"RS"});
                           out.doubles("TIME", std::array{3.5});
                           out.integers("ITIME", Words{6, 17, 7});
                         }),
                         qOK_);
  ASSERT_TRUE(qOK_);
  index.getRSSPECData(qOK_);
  ASSERT_TRUE(qOK_);
  EXPECT_EQ(index.head.nActive, 9);
  ASSERT_EQ(index.steps.size(), 3U);
  EXPECT_EQ(index.GetNumberOfGrids(), 2);

  const auto& step = index.steps[0];
  EXPECT_EQ(step.dTime, 1.5);
  ASSERT_EQ(step.grids.size(), 2U);
  EXPECT_EQ(step.grids[1].nArrays, 2);
  EXPECT_EQ(step.GridIndex("lgr1"), 2);
  Texts names;
  step.GetSolutionNames("LGR1", names, qOK_);
  EXPECT_TRUE(qOK_);
  EXPECT_THAT(names, ElementsAre("SWAT", "A LONG NAME OF M")) << "16 characters are kept";
  std::vector<std::uint64_t> positions;
  step.GetPointersToSolutionNames("", "PRESSURE", positions, qOK_);
  EXPECT_THAT(positions, ElementsAre(0, 200));
  step.GetPointersToSolutionNames("LGR1", "A LONG NAME OF MORE", positions, qOK_);
  EXPECT_THAT(positions, ElementsAre(0xFFFFFFFF00000064U)) << "both words are unsigned";

  index.GetVectors(1, names, qOK_);
  EXPECT_THAT(names, ElementsAre("PRESSURE", "SWAT", "A LONG NAME OF M"));
  index.GetVectors(4, names, qOK_);
  EXPECT_FALSE(qOK_);
  index.GetListofAllSolutionVectors(names, qOK_);
  EXPECT_THAT(names, ElementsAre("PRESSURE", "SWAT", "A LONG NAME OF M", "RS"));
  Words numbers;
  index.GetSequences(numbers, qOK_);
  EXPECT_THAT(numbers, ElementsAre(4, 5, 0)) << "three words of ITIME are not enough";
  index.GetDates(names, qOK_);
  EXPECT_THAT(names, ElementsAre("15 JUL 2003", "16 JUL 2003", ""));
}

TEST_P(IndexReaders, InspecCleansNamesAndKeepsPasses) {
  qvEclipseINSPECFile index(session_);
  index.CheckINSPECFile(file([](RecordWriter& out) {
                          writeGrid(out, {"INTEHEAD", "1PORO", "depth", "PORV"});
                          out.texts("LGRNAME", Texts{"LGR1"});
                          writeGrid(out, {"PORV"}, 1);
                          writeGrid(out, {"TABDIMS", "PVTNUM", "TRANNNC"});
                          for (const auto* array : {"SATNUM", "TRANGL"}) {
                            out.texts("LGRNAME", Texts{"LGR1"});
                            writeGrid(out, {array});
                          }
                        }),
                        qOK_);
  ASSERT_TRUE(qOK_);
  index.getINSPECData(qOK_);
  ASSERT_TRUE(qOK_);
  ASSERT_EQ(index.passes.size(), 3U);
  const qvEclipseINSPEC& pass = *index.GetINSPEC(1);
  Texts names;
  pass.GetINITNames("", names, qOK_);
  EXPECT_THAT(names, ElementsAre("PORO", "", "PORV"));
  index.GetINSPEC(3)->GetINITNames("LGR1", names, qOK_);
  EXPECT_THAT(names, ElementsAre("TRANGL")) << "a local grid that comes again begins a pass";
  std::vector<std::uint64_t> positions;
  pass.GetPointersToINITNames("LGR1", "PORV", positions, qOK_);
  EXPECT_THAT(positions, ElementsAre(std::uint64_t{1} << 32));
  index.GetVectors(names, qOK_);
  EXPECT_THAT(names, ElementsAre("PORO", "", "PORV", "TABDIMS", "PVTNUM", "TRANNNC", "SATNUM", "TRANGL"));
  index.GetInitVectorList(names, qOK_);
  EXPECT_THAT(names, ElementsAre("PORO", "", "PORV", "TABDIMS", "PVTNUM", "TRANNNC"))
      << "unwanted ones go from the front only";
}

}  // namespace
}  // namespace lumbarn
