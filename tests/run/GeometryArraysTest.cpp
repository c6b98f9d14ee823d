#include <chrono>
#include <cmath>
#include <filesystem>
#include <numbers>

#include <gmock/gmock.h>

#include "frame/Error.h"
#include "frame/Write.h"
#include "grid/RadialGrid.h"
#include "run/Run.h"
#include "support/Paths.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;
using ::testing::FloatEq;
namespace fs = std::filesystem;

template <class Number>
std::span<const Number> valuesOf(const Dense& dense) {
  return {static_cast<const Number*>(dense.data.get()), static_cast<std::size_t>(dense.values())};
}
bool isActive(const Dense& dense, std::size_t cell) {
  return !dense.active || ((dense.active.get()[cell / 8] >> (cell % 8)) & 1) != 0;
}

/// The simulator's own volumes and depths, and the least and greatest depth of data/expected.
TEST(GeometryArrays, AgreeWithTheSimulator) {
  constexpr double cubicFeetInBarrel = 5.614583;
  const struct {
    const char* path;
    double poreVolumeUnit;
    const char* unit;
    std::int64_t inactive;
    float top, bottom;
  } samples[] = {{"/data/HOLLIN", 1, "M3", 63, 1988.04395F, 2099.21509F},
                 {"/data/ARBOR", cubicFeetInBarrel, "FT3", 3, 8325, 8425}};
  for (const auto& sample : samples) {
    SCOPED_TRACE(sample.path);
    const auto run = lumbarn::Run::open(examplePath(sample.path));
    const Dense volumes = run.volumes(), centres = run.centres(), corners = run.cornerArray();
    const Dense porv = run.cellArray("PORV", {}), poro = run.cellArray("PORO", {}),
                ntg = run.cellArray("NTG", {}), depth = run.cellArray("DEPTH", {});
    EXPECT_EQ(volumes.unit, sample.unit);
    EXPECT_EQ(volumes.shape, porv.shape);
    EXPECT_EQ(corners.values(), 24 * porv.cells());
    std::int64_t inactive = 0;
    float top = INFINITY, bottom = -INFINITY;
    for (std::size_t cell = 0; cell < static_cast<std::size_t>(porv.cells()); ++cell) {
      for (std::size_t z = 2; z < 24; z += 3) {
        top = std::min(top, valuesOf<float>(corners)[24 * cell + z]);
        bottom = std::max(bottom, valuesOf<float>(corners)[24 * cell + z]);
      }
      ASSERT_EQ(isActive(volumes, cell), isActive(poro, cell));
      if (!isActive(poro, cell)) {
        ++inactive;
        continue;
      }
      const double bulk = valuesOf<float>(porv)[cell] * sample.poreVolumeUnit /
                          (double{valuesOf<float>(poro)[cell]} * valuesOf<float>(ntg)[cell]);
      EXPECT_NEAR(valuesOf<double>(volumes)[cell] / bulk, 1, 1e-4) << cell;
      EXPECT_NEAR(valuesOf<double>(centres)[3 * cell + 2], valuesOf<float>(depth)[cell], 1e-3) << cell;
    }
    EXPECT_EQ(inactive, sample.inactive);
    EXPECT_THAT(std::pair(top, bottom), ::testing::Pair(FloatEq(sample.top), FloatEq(sample.bottom)));
  }
}

TEST(GeometryArrays, OfABoxAreThoseOfItsCells) {
  const auto run = lumbarn::Run::open(examplePath("/data/HOLLIN"));
  const CellBox box{{3, 2, 2}, {4, 4, 3}};
  const Dense volumes = run.volumes(), centres = run.centres(), corners = run.cornerArray("ROOT", true);
  const Dense someVolumes = run.volumes("", box), someCentres = run.centres("root", box),
              someCorners = run.cornerArray("ROOT", true, box);
  EXPECT_THAT(someCorners.shape, ElementsAre(2, 3, 2));
  const auto nx = static_cast<std::size_t>(volumes.shape[2]), ny = static_cast<std::size_t>(volumes.shape[1]);
  for (std::size_t i = 0; i < 12; ++i) {
    const std::size_t cell = ((i / 6 + 1) * ny + i / 2 % 3 + 1) * nx + i % 2 + 2;
    EXPECT_EQ(isActive(someVolumes, i), isActive(volumes, cell));
    EXPECT_EQ(valuesOf<double>(someVolumes)[i], valuesOf<double>(volumes)[cell]);
    for (std::size_t axis = 0; axis < 3; ++axis)
      EXPECT_EQ(valuesOf<double>(someCentres)[3 * i + axis], valuesOf<double>(centres)[3 * cell + axis]);
    for (std::size_t item = 0; item < 24; ++item)
      EXPECT_EQ(valuesOf<float>(someCorners)[24 * i + item], valuesOf<float>(corners)[24 * cell + item]);
  }
  EXPECT_THROW(run.centres("ROOT", CellBox{{1, 1, 1}, {1, 1, 99}}), Error);
  EXPECT_THROW(run.volumes("LGR1"), Error);
  struct : Sink {
    void write(std::span<const std::byte>) override {}
  } sink;
  EXPECT_THROW(writeGrdecl(someCentres, "CENTRES", sink), Error);
}

TEST(GeometryArrays, RadialCellsAreRings) {
  Session session;
  Hadrick grid(session);
  grid.iGridType = 3;
  grid.setSize(2, 1, 1);
  std::vector<float> coord;
  for (const float theta : {0.0F, 360.0F}) {
    for (const float r : {0.0F, 1.0F, 3.0F}) coord.insert(coord.end(), {r, theta, 0, r, theta, 10});
  }
  grid.setPillars(std::move(coord));
  XYData depths(16, 1, session);
  for (std::size_t i = 1; i <= 16; ++i) depths(i, 1) = i <= 8 ? 5 : 7;
  grid.setDepths(std::move(depths), false);
  std::vector<double> volumes(2);
  radialVolumes(grid, 1, volumes);
  EXPECT_NEAR(volumes[0], std::numbers::pi * 2, 1e-9);
  EXPECT_NEAR(volumes[1], std::numbers::pi * (9 - 1) * 2, 1e-9);
}

TEST(RunFiles, AreChangedUnlessTheyOnlyGrow) {
  using namespace std::chrono_literals;
  const auto rewrite = [](const std::string& path, auto change) {
    const test::TemporaryFolder folder;
    const std::string file = folder.file("HOLLIN.EGRID");
    fs::copy_file(path, file);
    const auto run = lumbarn::Run::open(file);
    EXPECT_FALSE(run.changed());
    change(file);
    return run.changed();
  };
  const std::string path = examplePath("/data/HOLLIN/HOLLIN.EGRID");
  EXPECT_FALSE(rewrite(path, [](const auto& file) { std::ofstream(file, std::ios::app) << "more"; }));
  EXPECT_FALSE(rewrite(path, [](const auto& file) { fs::permissions(file, fs::perms::owner_read); }));
  EXPECT_TRUE(rewrite(path, [](const auto& file) { fs::resize_file(file, fs::file_size(file) - 1); }));
  EXPECT_TRUE(
      rewrite(path, [](const auto& file) { fs::last_write_time(file, fs::last_write_time(file) + 5ms); }));
  EXPECT_TRUE(rewrite(path, [](const auto& file) {
    const auto time = fs::last_write_time(file);
    fs::copy_file(file, file + "2");
    fs::last_write_time(file + "2", time);
    fs::rename(file + "2", file);
  }));
  EXPECT_TRUE(rewrite(path, [](const auto& file) { fs::remove(file); }));
}

}  // namespace
}  // namespace lumbarn
