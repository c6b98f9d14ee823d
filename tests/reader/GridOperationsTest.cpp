#include <cmath>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "grid/CellGeometryOfGrid.h"
#include "grid/GridLoad.h"
#include "reader/qvEclipseReader.h"
#include "record/RecordCursor.h"
#include "support/GridBuilder.h"
#include "support/Paths.h"
#include "support/TemporaryFolder.h"

namespace lumbarn::test {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// A reader with a session of its own that loads a grid file.
struct HostGrid {
  Session session;
  qvEclipseReader reader{session};

  explicit HostGrid(const std::string& path, std::int32_t kind = 23) {
    reader.FileName = path;
    reader.whichtype = kind;
  }
  bool run() {
    bool qOK = false;
    reader.ECLReadData(qOK);
    return qOK;
  }
  std::shared_ptr<Hadrick> grid(std::int32_t n = 1) {
    std::shared_ptr<Hadrick> found;
    bool qOK = false;
    reader.GetGRIDData(n, found, qOK);
    return found;
  }
  std::string problem() const { return session.diagnoses().empty() ? "" : session.diagnoses().back().text(); }
};

const std::string examples = examplePath("/data/");

std::vector<float> singlesOf(const std::string& path, const std::string& keyword) {
  std::string why;
  const auto cursor = openRecords(path, why);
  while (cursor && cursor->next()) {
    if (cursor->header().is(keyword, ElementType::Single)) return cursor->singles();
  }
  return {};
}

struct Sample {
  const char* name;
  const char* grid;
  const char* init;
  double volumeUnit;  // of PORV in cubic units of length
};

class GridSamples : public ::testing::TestWithParam<Sample> {};
INSTANTIATE_TEST_SUITE_P(Runs, GridSamples,
                         ::testing::Values(Sample{"HOLLIN", "HOLLIN/HOLLIN.EGRID", "HOLLIN/HOLLIN.INIT", 1},
                                           Sample{"ARBOR", "ARBOR/ARBOR.EGRID", "ARBOR/ARBOR.INIT", 5.614583},
                                           Sample{"ARBORF", "ARBORF/ARBORF.FEGRID", "ARBORF/ARBORF.FINIT",
                                                  5.614583}),
                         [](const auto& test) { return test.param.name; });

/// Corner n of a cell straight from the arrays of the file, in double.
std::array<double, 3> cornerOf(const Hadrick& grid, std::int32_t iCell, int n) {
  const auto [i, j, k] = grid.placeOf(iCell);
  const int di = n & 1;
  const int dj = n >> 1 & 1;
  const int dk = n >> 2;
  const auto pillar =
      grid.coord().subspan(static_cast<std::size_t>(6 * (i - 1 + di + (grid.Nx() + 1) * (j - 1 + dj))), 6);
  const double z = grid.zcorn()[static_cast<std::size_t>(
      2 * (i - 1) + di + 2 * grid.Nx() * (2 * (j - 1) + dj + 2 * grid.Ny() * (2 * (k - 1) + dk)))];
  const double t = (z - pillar[2]) / (static_cast<double>(pillar[5]) - pillar[2]);
  return {pillar[0] + t * (static_cast<double>(pillar[3]) - pillar[0]),
          pillar[1] + t * (static_cast<double>(pillar[4]) - pillar[1]), z};
}

TEST_P(GridSamples, CornersAreThoseOfPillarsAndDepths) {
  std::vector<float> rows[2];
  for (const bool compress : {false, true}) {
    HostGrid host(examples + GetParam().grid);
    host.reader.CompressOnLoad = compress;
    ASSERT_TRUE(host.run()) << host.problem();
    EXPECT_TRUE(host.session.diagnoses().empty()) << host.problem();
    XYData corners;
    std::int32_t nActive = 0;
    bool qOK = false;
    host.reader.getCorners(1, corners, nActive, qOK);
    ASSERT_TRUE(qOK);
    rows[compress ? 1 : 0].assign(corners.values().begin(), corners.values().end());
    for (std::int32_t n = 0; !compress && n < 8 * nActive; ++n) {
      const auto expected = cornerOf(*host.grid(), host.grid()->cellOf(n / 8 + 1), n % 8);
      for (std::size_t axis = 0; axis < 3; ++axis)
        ASSERT_EQ(rows[0].at(3 * static_cast<std::size_t>(n) + axis), static_cast<float>(expected[axis]));
    }
  }
  EXPECT_EQ(rows[0], rows[1]) << "compressed or not";
}

/// Corners near y = 6,000,000 are singles half a unit apart, which volumes must not show.
TEST_P(GridSamples, VolumesAreThoseOfTheSimulator) {
  const auto init = examples + GetParam().init;
  const auto porv = singlesOf(init, "PORV");
  const auto poro = singlesOf(init, "PORO");
  const auto ntg = singlesOf(init, "NTG");
  for (const bool compress : {false, true}) {
    HostGrid host(examples + GetParam().grid);
    host.reader.CompressOnLoad = compress;
    ASSERT_TRUE(host.run()) << host.problem();
    const auto grid = host.grid();
    ASSERT_EQ(static_cast<std::size_t>(grid->nActive()), poro.size());
    std::vector<double> volumes(porv.size());
    cellVolumes(*grid, 1, volumes);
    for (std::size_t n = 0; n < poro.size(); ++n) {
      const auto cell = static_cast<std::size_t>(grid->cellOf(static_cast<std::int32_t>(n) + 1)) - 1;
      const double bulk = static_cast<double>(porv[cell]) * GetParam().volumeUnit /
                          (static_cast<double>(poro[n]) * ntg.at(n));
      EXPECT_NEAR(std::abs(volumes[cell]) / bulk, 1, 1e-4) << "active cell " << n + 1;
    }
  }
}

/// A small run on disk, with 9 of 12 cells active and a local grid.
struct SmallRun {
  TemporaryFolder folder;
  GridBuilder builder;
  std::string path;

  SmallRun() : path(folder.file("RUN.EGRID")) {
    builder.grids[0].activity = {1, 0, 1, 1, 1, 1, 1, 1, 1, 0, 0, 1};
    builder.grids[0].nnc1 = {1};
    builder.grids[0].nnc2 = {7};
    builder.grids.push_back({.size = {2, 2, 1}, .name = "INNER", .hosts = {1, 2, 5, 3}});
    writeFile(path, builder.egrid(bigEndian));
  }
};

TEST(GridOperations, AnswerForWhatIsHeld) {
  const SmallRun run;
  HostGrid host(run.path);
  bool qOK = true;
  XYData corners;
  std::int32_t nActive = 0;
  host.reader.getCorners(1, corners, nActive, qOK);
  EXPECT_FALSE(qOK) << "nothing is loaded";
  host.reader.ReadGridFile(qOK);
  EXPECT_FALSE(qOK) << "it is no GRID file";
  EXPECT_THAT(host.problem(), HasSubstr("not a GRID file"));
  EXPECT_FALSE(host.reader.IsInitialised(14));
  ASSERT_TRUE(host.run());
  EXPECT_EQ(host.reader.zOrigin, "RUN");
  EXPECT_TRUE(host.reader.IsInitialised(14));
  EXPECT_EQ(host.reader.NumberGrids(), 2);
  host.reader.CreateCorners(2, qOK);
  EXPECT_TRUE(qOK);
  host.reader.CreateCorners(3, qOK);
  EXPECT_FALSE(qOK);
  EXPECT_FALSE(host.grid(3));
  host.reader.DeleteObject(14);
  EXPECT_EQ(host.reader.NumberGrids(), 0);
}

TEST(GridOperations, SetACTNUMReplacesTheActivityOfWhatWasKept) {
  const SmallRun run;
  for (const bool compress : {false, true}) {
    HostGrid host(run.path);
    host.reader.CompressOnLoad = compress;
    ASSERT_TRUE(host.run());
    const auto before = activeRows(*host.grid());
    bool qOK = false;
    host.reader.SetACTNUM(1, {1, 1}, qOK);
    EXPECT_TRUE(qOK) << "another length is no failure";
    EXPECT_EQ(host.grid()->nActive(), 9);
    host.reader.SetACTNUM(1, {0, 1, 0, 5, 0, 0, 0, 0, 0, 0, 0, -3}, qOK);
    EXPECT_TRUE(qOK);
    EXPECT_EQ(host.grid()->nActive(), compress ? 1 : 2);
    EXPECT_EQ(host.grid()->activeOf(2), compress ? 0 : 1) << "its geometry was not kept";
    EXPECT_EQ(host.problem().empty(), !compress);
    const auto after = activeRows(*host.grid());
    EXPECT_TRUE(std::equal(after.end() - 24, after.end(), before.begin() + 48)) << "cell 4 was the third";
  }
}

TEST(GridCache, GivesTheSameGridsUntilTheFileOrTheCacheChanges) {
  const SmallRun run;
  const auto cached = run.folder.file("HPGRUN.gfile");
  std::filesystem::remove(cached);
  HostGrid first(run.path);
  first.reader.SaveHPGridFiles = true;
  ASSERT_TRUE(first.run());
  EXPECT_FALSE(std::filesystem::exists(cached)) << "no folder is named";
  first.reader.HPGFolder = run.folder.file("");
  ASSERT_TRUE(first.run()) << first.problem();
  ASSERT_TRUE(std::filesystem::exists(cached));

  const auto load = [&](bool compress = true) {
    auto host = std::make_unique<HostGrid>(run.path);
    host->reader.HPGFolder = run.folder.file("");
    host->reader.LoadHPGridFiles = true;
    host->reader.CompressOnLoad = compress;
    EXPECT_TRUE(host->run()) << host->problem();
    EXPECT_EQ(host->reader.NumberGrids(), 2);
    return host;
  };
  const auto again = load();
  EXPECT_TRUE(again->reader.HPGFileTest());
  EXPECT_EQ(std::filesystem::path(again->reader.HPGChosenFile).filename(), "HPGRUN.gfile");
  for (const std::int32_t n : {1, 2}) {
    EXPECT_EQ(activeRows(*again->grid(n)), activeRows(*first.grid(n)));
    EXPECT_THAT(again->grid(n)->connections(), ::testing::ElementsAreArray(first.grid(n)->connections()));
    EXPECT_EQ(again->grid(n)->zName, first.grid(n)->zName);
  }
  EXPECT_THAT(again->grid(2)->hostCells(), ElementsAre(1, 2, 5, 3));
  EXPECT_THAT(load(false)->problem(), HasSubstr("not that of the file and the options"));

  std::vector<std::byte> whole(std::filesystem::file_size(cached));
  std::ifstream(cached, std::ios::binary)
      .read(reinterpret_cast<char*>(whole.data()), static_cast<std::streamsize>(whole.size()));
  for (std::size_t at = 0; at < whole.size(); at += 37) {
    auto bad = whole;
    bad[at] ^= std::byte{4};
    if (at % 2 == 1) bad.resize(at);
    writeFile(cached, bad);
    const auto host = load();
    EXPECT_TRUE(host->reader.HPGChosenFile.empty()) << "byte " << at;
    EXPECT_THAT(host->problem(), HasSubstr("cache")) << "byte " << at;
  }

  writeFile(cached, whole);
  auto changed = run.builder;
  changed.lean = 2;
  const auto time = std::filesystem::last_write_time(run.path);
  writeFile(run.path, changed.egrid(bigEndian));
  std::filesystem::last_write_time(run.path, time);  // same size, same time: the sum tells
  EXPECT_THAT(load()->problem(), HasSubstr("not that of the file"));
}

}  // namespace

}  // namespace lumbarn::test
