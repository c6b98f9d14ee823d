#include <chrono>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "grid/GridCache.h"
#include "grid/GridLoad.h"
#include "support/GridBuilder.h"
#include "support/Host.h"
#include "support/TemporaryFolder.h"

namespace lumbarn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::shared_ptr<Hadrick> gridOf(Host& host, std::int32_t n = 1) {
  std::shared_ptr<Hadrick> found;
  bool qOK = false;
  host.reader.GetGRIDData(n, found, qOK);
  return found;
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
  Host host(run.path, 23);
  bool qOK = true;
  std::int32_t nActive = 0;
  host.reader.getCorners(1, host.table, nActive, qOK);
  EXPECT_FALSE(qOK) << "nothing is loaded";
  EXPECT_FALSE(host.load(run.path, 14));
  EXPECT_THAT(host.lastDiagnosis().text(), HasSubstr("is an EGRID file, not a GRID file"));
  host.reader.ReadEGridFile(qOK);
  EXPECT_TRUE(qOK);
  for (const std::int32_t n : {2, 3}) {
    host.reader.CreateCorners(n, qOK);
    EXPECT_EQ(qOK, n == 2);
    EXPECT_EQ(gridOf(host, n) != nullptr, n == 2);
  }
  host.reader.DeleteObject(14);
  EXPECT_EQ(host.reader.NumberGrids(), 0);
}

TEST(GridOperations, SetACTNUMReplacesTheActivityOfWhatWasKept) {
  const SmallRun run;
  for (const bool compress : {false, true}) {
    Host host(run.path, 23);
    host.reader.CompressOnLoad = compress;
    ASSERT_TRUE(host.run());
    const auto before = activeRows(*gridOf(host));
    bool qOK = false;
    host.reader.SetACTNUM(1, {1, 1}, qOK);
    EXPECT_TRUE(qOK) << "another length is no failure";
    EXPECT_EQ(gridOf(host)->nActive(), 9);
    host.reader.SetACTNUM(1, {0, 1, 0, 5, 0, 0, 0, 0, 0, 0, 0, -3}, qOK);
    EXPECT_TRUE(qOK);
    EXPECT_EQ(gridOf(host)->nActive(), compress ? 1 : 2);
    EXPECT_EQ(gridOf(host)->activeOf(2), compress ? 0 : 1) << "its geometry was not kept";
    EXPECT_EQ(host.session.diagnoses().empty(), !compress);
    const auto after = activeRows(*gridOf(host));
    EXPECT_TRUE(std::equal(after.end() - 24, after.end(), before.begin() + 48)) << "cell 4 was the third";
  }
}

TEST(GridCache, GivesTheSameGridsUntilTheFileOrTheCacheChanges) {
  const SmallRun run;
  const auto cached = run.folder.file("HPGRUN.gfile");
  Host first(run.path, 23);
  first.reader.SaveHPGridFiles = true;
  ASSERT_TRUE(first.run());
  EXPECT_FALSE(std::filesystem::exists(cached)) << "no folder is named";
  first.reader.HPGFolder = run.folder.file("");
  ASSERT_TRUE(first.run());
  ASSERT_TRUE(std::filesystem::exists(cached));

  const auto load = [&](bool compress = true) {
    auto host = std::make_unique<Host>(run.path, 23);
    host->reader.HPGFolder = run.folder.file("");
    host->reader.LoadHPGridFiles = true;
    host->reader.CompressOnLoad = compress;
    EXPECT_TRUE(host->run());
    EXPECT_EQ(host->reader.NumberGrids(), 2);
    return host;
  };
  const auto again = load();
  EXPECT_TRUE(again->reader.HPGFileTest());
  EXPECT_EQ(std::filesystem::path(again->reader.HPGChosenFile).filename(), "HPGRUN.gfile");
  for (const std::int32_t n : {1, 2}) {
    EXPECT_EQ(activeRows(*gridOf(*again, n)), activeRows(*gridOf(first, n)));
    EXPECT_THAT(gridOf(*again, n)->connections(),
                ::testing::ElementsAreArray(gridOf(first, n)->connections()));
  }
  EXPECT_THAT(gridOf(*again, 2)->hostCells(), ElementsAre(1, 2, 5, 3));
  EXPECT_THAT(load(false)->lastDiagnosis().text(), HasSubstr("not that of the file and the options"));

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
    EXPECT_THAT(host->lastDiagnosis().text(), HasSubstr("cache")) << "byte " << at;
  }

  writeFile(cached, whole);
  qvGRIDReader reader;
  reader.FileName = run.path;
  const GridCache late(run.folder.file("late"), reader, first.session);
  std::filesystem::last_write_time(run.path,
                                   std::filesystem::last_write_time(cached) + std::chrono::hours(1));
  EXPECT_FALSE(late.save({})) << "the grid file has changed since it was opened";
  auto changed = run.builder;
  changed.lean = 2;
  const auto time = std::filesystem::last_write_time(run.path);
  writeFile(run.path, changed.egrid(bigEndian));
  std::filesystem::last_write_time(run.path, time);  // same size, same time: only the sum differs
  EXPECT_THAT(load()->lastDiagnosis().text(), HasSubstr("not that of the file"));
}

}  // namespace
}  // namespace lumbarn::test
