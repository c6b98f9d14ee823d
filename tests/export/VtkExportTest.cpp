#include <cmath>
#include <filesystem>
#include <fstream>
#include <hdf5.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HdfFile.h"
#include "VtkExport.h"
#include "VtkWriter.h"
#include "export/ReadBack.h"
#include "grid/GridBlocks.h"
#include "grid/GridLoad.h"
#include "grid/RadialGrid.h"
#include "support/GridBuilder.h"
#include "support/TemporaryFolder.h"

namespace lumbarn::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class VtkExport : public ::testing::Test {
 protected:
  template <class Grids>
  bool write(const Grids& grids, std::span<const CellArray> arrays = {}, const VtkOptions& options = {}) {
    bool qOK = false;
    exportVtk(grids, arrays, options, path, session, qOK);
    return qOK;
  }
  template <class Number>
  std::vector<Number> read(const std::string& array) const {
    return test::readDataset<Number>(path, "VTKHDF/" + array);
  }
  const test::TemporaryFolder folder;
  std::string path = folder.file("out.vtkhdf");
  /// The grids of a run, from an EGRID file.
  const std::vector<std::shared_ptr<Hadrick>>& gridsOf(const test::GridBuilder& builder) {
    EXPECT_TRUE(load.read(builder.egrid(test::bigEndian), test::bigEndian)) << load.lastDiagnosis().text();
    return load.reader.xGrids;
  }
  test::GridLoad load{true};
  Session& session = load.session;
};

/// The value of cell n at step s is 1000 s + n, n from 0 among the active cells.
CellArray numbered(const std::string& name, bool changes) {
  return {.name = name,
          .read = CellReader<double>([](std::size_t step, std::size_t first, std::span<double> values) {
            for (double& value : values) value = static_cast<double>(1000 * step + first++);
          }),
          .changes = changes};
}

TEST_F(VtkExport, WhateverStopsItLeavesTheFolderAsItWas) {
  std::ofstream(path) << "before";
  const Hadrick grid = distortedBlock({2, 2, 2}, 0, 0);
  const CellReader<float> broken = [](std::size_t, std::size_t, std::span<float>) {
    throw BadRecord({.message = Message::RecordDamaged, .path = "RUN.INIT"});
  };
  const CellReader<float> canceling = [&](std::size_t, std::size_t, std::span<float>) {
    session.CancelLoad = true;
  };
  const CellArray good = numbered("A", false);
  const std::vector<CellArray> failures[] = {
      {good, {.name = "BROKEN", .read = broken}}, {good, good}, {{.name = "SLOW", .read = canceling}, good}};
  ::testing::internal::CaptureStderr();
  for (const auto& arrays : failures) {
    EXPECT_FALSE(write(grid, arrays));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.file("")), {}), 1);
    EXPECT_EQ(std::filesystem::file_size(path), 6);
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  ASSERT_EQ(session.diagnoses().size(), 2);  // nothing is wrong when it is cancelled
  EXPECT_EQ(session.diagnoses()[0].path, "RUN.INIT");
  EXPECT_THAT(session.diagnoses()[1].text(), HasSubstr(path + ": cannot be written"));

  session.CancelLoad = false;
  session.clearDiagnoses();
  for (const std::string& impossible : {folder.file("no/such/folder.vtkhdf"), folder.file("")}) {
    path = impossible;
    EXPECT_FALSE(write(grid));
    ASSERT_FALSE(session.diagnoses().empty());
    EXPECT_THAT(session.diagnoses().back().text(), HasSubstr(impossible + ": cannot be written"));
  }
}

/// Keeps a file in memory; its n-th write fails.
class FailingStorage : public HdfStorage {
 public:
  explicit FailingStorage(int failAt) : failAt_(failAt) {}
  bool writeAt(std::uint64_t position, std::span<const std::byte> bytes) noexcept override {
    bytes_.resize(std::max(bytes_.size(), static_cast<std::size_t>(position) + bytes.size()));
    std::ranges::copy(bytes, bytes_.begin() + static_cast<std::ptrdiff_t>(position));
    return ++writes_ != failAt_;
  }
  bool readAt(std::uint64_t position, std::span<std::byte> out) noexcept override {
    for (std::size_t i = 0; i < out.size(); ++i)
      out[i] = position + i < bytes_.size() ? bytes_[position + i] : std::byte{0};
    return true;
  }
  std::string error() const override { return "No space left on device"; }
  bool failed() const { return writes_ >= failAt_; }

 private:
  std::vector<std::byte> bytes_;
  int writes_ = 0;
  int failAt_;
};

TEST_F(VtkExport, AnyWriteThatFailsIsReported) {
  const auto grids = gridsOf({});
  bool told = true;
  for (int n = 1; told; ++n) {
    FailingStorage storage(n);
    told = false;
    try {
      writeVtk(grids, {}, {}, storage, session);
      EXPECT_FALSE(storage.failed()) << "write " << n;
    } catch (const BadRecord& failure) {
      told = true;
      EXPECT_THAT(failure.diagnosis().text(), HasSubstr("cannot be written: No space left"));
    }
  }
}

TEST_F(VtkExport, AllGridsAreInOneFileAndRefinedCellsAreMarked) {
  test::GridBuilder builder;
  builder.grids[0].activity = {1, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
  builder.grids.push_back({.size = {2, 2, 1}, .name = "INNER", .hosts = {1, 1, 2, 5}});
  const auto& grids = gridsOf(builder);
  const CellArray arrays[] = {numbered("A", false)};
  ASSERT_TRUE(write(grids, arrays));
  EXPECT_THAT(read<std::int32_t>("CellData/CELL"),
              ElementsAre(1, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 1, 2, 3, 4));
  EXPECT_THAT(read<std::uint8_t>("CellData/vtkGhostType"),
              ElementsAre(40, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(read<double>("CellData/A").back(), 14) << "cells count over all grids";
  // Points of the two grids are apart.
  const auto connectivity = read<std::int64_t>("Connectivity");
  EXPECT_LT(*std::max_element(connectivity.begin(), connectivity.begin() + 8 * 11),
            *std::min_element(connectivity.begin() + 8 * 11, connectivity.end()));

  ASSERT_TRUE(write(grids, arrays, {.iGrid = 1}));
  EXPECT_THAT(read<std::int32_t>("CellData/GRID"), ::testing::Each(1));
  const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
  EXPECT_EQ(H5Lexists(file, "VTKHDF/CellData/vtkGhostType", H5P_DEFAULT), 0) << "nothing overlaps";
  H5Fclose(file);
  builder.grids[1].hosts = {};
  builder.grids[1].place = {2, 1, 1, 3, 2, 1};  // a box in place of host cells
  ASSERT_TRUE(write(gridsOf(builder)));
  EXPECT_THAT(read<std::uint8_t>("CellData/vtkGhostType"),
              ElementsAre(0, 40, 0, 40, 40, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST_F(VtkExport, BothPorositySystemsAreDistinguished) {
  test::GridBuilder builder;
  builder.dualPorosity = 1;
  builder.grids[0].size = {2, 1, 2};
  builder.grids[0].activity = {1, 3};
  ASSERT_TRUE(write(gridsOf(builder)));
  EXPECT_THAT(read<std::int32_t>("CellData/SYSTEM"), ElementsAre(1, 1, 2));
}

/// A radial grid of two radii and `angles` sectors of a full circle inside cell 5 of 3 x 3.
std::vector<std::shared_ptr<Hadrick>> radialRun(std::int32_t angles, float turn = 0) {
  auto parent = std::make_shared<Hadrick>(distortedBlock({3, 3, 1}, 0, 0));
  auto radial = std::make_shared<Hadrick>();
  radial->zParent = "ROOT";
  radial->iParent = 1;
  radial->iGridType = 3;
  radial->setSize(2, angles, 1);
  std::vector<float> coord;
  for (std::int32_t j = 0; j <= angles; ++j) {
    for (const float r : {1.0F, 10.0F, 40.0F}) {
      const float theta = 360.0F / static_cast<float>(angles) * static_cast<float>(j) + turn;
      coord.insert(coord.end(), {r, theta, 1000, r, theta, 1010});
    }
  }
  radial->setPillars(std::move(coord));
  const auto cells = static_cast<std::size_t>(radial->nCells());
  XYData depths(8, cells, Session::process());
  std::ranges::fill(depths.values().first(4 * cells), 1000.0F);
  std::ranges::fill(depths.values().last(4 * cells), 1010.0F);
  radial->setDepths(std::move(depths), false);
  radial->setHostCells(std::vector<std::int32_t>(cells, 5));
  return {parent, radial};
}

TEST_F(VtkExport, RadialGridsAreClosedCylindersInTheMiddleOfTheirHost) {
  for (const std::int32_t angles : {1, 4, 7, 36}) {
    const auto grids = radialRun(angles);
    const CellArray arrays[] = {numbered("A", false)};
    ASSERT_TRUE(write(grids, arrays, {.iGrid = 2})) << angles;
    const int parts = angles >= 24 ? 1 : angles == 1 ? 24 : angles == 4 ? 6 : 4;
    const auto around = static_cast<std::size_t>(angles * parts);
    const auto points = read<float>("Points");
    EXPECT_EQ(points.size(), 3 * 3 * around * 2) << "the last sector shares its points with the first";
    const Point center = cellCentre(test::cornersOf(*grids[0], 5));
    const Box box = extentOf(grids, *grids[1]);
    EXPECT_NEAR(box.low.x, center.x - 40, 1e-9);
    EXPECT_NEAR(box.high.x, center.x + 40, 1e-9);
    EXPECT_NEAR(box.high.y - box.low.y, 80, 1e-9);
    EXPECT_EQ(box.high.z, 1010);
    for (std::size_t p = 0; p < points.size(); p += 3) {
      const double r = std::hypot(points[p] - center.x, points[p + 1] - center.y);
      EXPECT_LT(std::min({std::abs(r - 1), std::abs(r - 10), std::abs(r - 40)}), 1e-3);
    }
    const auto numbers = read<std::int32_t>("CellData/CELL");
    const auto values = read<double>("CellData/A");
    ASSERT_EQ(numbers.size(), 2 * around);
    for (std::size_t n = 0; n < numbers.size(); ++n) {
      EXPECT_EQ(numbers[n], static_cast<std::int32_t>(n / static_cast<std::size_t>(parts)) + 1);
      EXPECT_EQ(values[n], numbers[n] - 1);
    }
  }
  // To an angle this large, 90 degrees add nothing.
  const auto damaged = radialRun(4, std::ldexp(90.0F, 60));
  EXPECT_EQ(extentOf(damaged, *damaged[1]).high.z, 1010);
}

}  // namespace
}  // namespace lumbarn::testing
