#include <cmath>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Hdf.h"
#include "PointMerger.h"
#include "VtkExport.h"
#include "VtkWriter.h"
#include "grid/CellGeometry.h"
#include "grid/GridBlocks.h"
#include "grid/GridLoad.h"
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
    const auto name = "VTKHDF/" + array;
    const hdf::Handle file(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), H5Fclose, path);
    const hdf::Handle dataset(H5Dopen2(file.id(), name.c_str(), H5P_DEFAULT), H5Dclose, name);
    const hdf::Handle space(H5Dget_space(dataset.id()), H5Sclose, name);
    std::vector<Number> values(static_cast<std::size_t>(H5Sget_simple_extent_npoints(space.id())));
    H5Dread(dataset.id(), hdf::typeOf<Number>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data());
    return values;
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

std::vector<std::string> filesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

/// The value of cell n at step s is 1000 s + n, n from 0 among the active cells.
CellArray numbered(const std::string& name, bool changes) {
  return {.name = name,
          .read = CellReader<double>([](std::size_t step, std::size_t first, std::span<double> values) {
            for (double& value : values) value = static_cast<double>(1000 * step + first++);
          }),
          .changes = changes};
}

TEST_F(VtkExport, StepsShareOneGeometry) {
  Hadrick grid = distortedBlock({2, 2, 2}, 0.1F, 0);
  grid.setActive({1, 1, 0, 1, 1, 1, 1, 0});
  const CellArray arrays[] = {numbered("1/BO", true), numbered("FIXED", false)};
  ASSERT_TRUE(write(grid, arrays, {.times = {0, 31.5}}));
  EXPECT_THAT(read<std::int32_t>("CellData/CELL"), ElementsAre(1, 2, 4, 5, 6, 7));
  EXPECT_THAT(read<std::int64_t>("Offsets"), ElementsAre(0, 8, 16, 24, 32, 40, 48));
  EXPECT_THAT(read<double>("CellData/1_BO"),
              ElementsAre(0, 1, 2, 3, 4, 5, 1000, 1001, 1002, 1003, 1004, 1005));
  EXPECT_THAT(read<double>("CellData/FIXED"), ElementsAre(0, 1, 2, 3, 4, 5));
  EXPECT_THAT(read<double>("Steps/Values"), ElementsAre(0, 31.5));
  EXPECT_THAT(read<std::int64_t>("Steps/CellDataOffsets/1_BO"), ElementsAre(0, 6));
  for (const char* constant : {"CellDataOffsets/FIXED", "CellDataOffsets/I", "PartOffsets", "PointOffsets",
                               "CellOffsets", "ConnectivityIdOffsets"}) {
    EXPECT_THAT(read<std::int64_t>(std::string("Steps/") + constant), ElementsAre(0, 0)) << constant;
  }
  // Of 27 nodes that 8 cells share, the active ones leave out two that only inactive cells have.
  EXPECT_THAT(read<std::int64_t>("NumberOfPoints"), ElementsAre(25));
}

TEST_F(VtkExport, SeveralPiecesAreOneGrid) {
  const Hadrick grid = distortedBlock({100, 100, 8}, 0, 0);
  ASSERT_TRUE(write(grid));
  const auto points = read<float>("Points");
  const auto connectivity = read<std::int64_t>("Connectivity");
  ASSERT_EQ(points.size(), 3 * 101 * 101 * 9);
  ASSERT_EQ(connectivity.size(), 8 * 80000);
  constexpr std::array<std::size_t, 8> order{0, 1, 3, 2, 4, 5, 7, 6};
  std::array<float, 24> row;
  for (std::int32_t iCell = 1; iCell <= grid.nCells(); iCell += 9) {
    grid.corners(iCell, row);
    for (std::size_t n = 0; n < 8; ++n) {
      const auto point = static_cast<std::size_t>(connectivity[8 * static_cast<std::size_t>(iCell - 1) + n]);
      ASSERT_TRUE(std::equal(&points[3 * point], &points[3 * point] + 3, &row[3 * order[n]])) << iCell;
    }
  }
}

TEST_F(VtkExport, WhateverStopsItLeavesTheFolderAsItWas) {
  std::ofstream(path) << "before";
  const Hadrick grid = distortedBlock({2, 2, 2}, 0, 0);
  CellArray broken = numbered("BROKEN", false);
  broken.read = CellReader<float>([](std::size_t, std::size_t, std::span<float>) {
    throw BadRecord({.message = Message::RecordDamaged, .path = "RUN.INIT"});
  });
  CellArray cancelling = numbered("SLOW", false);
  cancelling.read =
      CellReader<float>([&](std::size_t, std::size_t, std::span<float>) { session.CancelLoad = true; });
  const std::vector<CellArray> failures[] = {{numbered("A", false), broken},
                                             {numbered("A", false), numbered("A", false)},
                                             {cancelling, numbered("A", false)}};
  for (const auto& arrays : failures) {
    EXPECT_FALSE(write(grid, arrays));
    EXPECT_THAT(filesIn(folder.file("")), ElementsAre("out.vtkhdf"));
    EXPECT_EQ(std::filesystem::file_size(path), 6);
  }
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

/// Bytes in memory. The n-th call fails, from 0, and so do all that follow, as on a full disk.
class FailingStorage : public hdf::Storage {
 public:
  explicit FailingStorage(std::size_t failsAt) : failsAt_(failsAt) {}
  bool writeAt(std::uint64_t position, std::span<const std::byte> from) noexcept override {
    if (calls++ >= failsAt_) return false;
    if (bytes.size() < position + from.size()) bytes.resize(position + from.size());
    std::ranges::copy(from, bytes.begin() + static_cast<std::ptrdiff_t>(position));
    return true;
  }
  bool readAt(std::uint64_t position, std::span<std::byte> out) noexcept override {
    std::ranges::fill(out, std::byte{0});
    if (position < bytes.size())
      std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(position),
                  std::min(out.size(), bytes.size() - position), out.begin());
    return true;
  }
  std::string error() const override { return "disk full"; }

  std::vector<std::byte> bytes;
  std::size_t calls = 0;

 private:
  std::size_t failsAt_;
};

TEST_F(VtkExport, EachWriteThatFailsIsReportedAndLeavesHdf5Closed) {
  // Some writes come in the middle, others when datasets and the file are closed.
  const auto grid = std::make_shared<Hadrick>(distortedBlock({24, 24, 3}, 0.1F, 0));
  const CellArray arrays[] = {numbered("A", true), numbered("B", false)};
  const auto writeTo = [&](FailingStorage& storage) {
    writeVtk(std::span(&grid, 1), arrays, {.times = {0, 1}}, storage, session);
  };
  FailingStorage complete(SIZE_MAX);
  writeTo(complete);
  ASSERT_GT(complete.calls, 20);
  for (std::size_t n = 0; n < complete.calls; ++n) {
    FailingStorage storage(n);
    try {
      writeTo(storage);
      ADD_FAILURE() << "write " << n << " failed without an exception";
    } catch (const BadRecord& failure) {
      EXPECT_THAT(failure.diagnosis().text(), HasSubstr("cannot be written: disk full")) << n;
      EXPECT_TRUE(failure.diagnosis().offset) << n;
    }
    ASSERT_EQ(H5Fget_obj_count(H5F_OBJ_ALL, H5F_OBJ_ALL), 0) << n;
  }
}

TEST_F(VtkExport, AllGridsAreInOneFileAndRefinedCellsAreMarked) {
  test::GridBuilder builder;
  builder.grids[0].activity = {1, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
  builder.grids.push_back({.size = {2, 2, 1}, .name = "INNER", .hosts = {1, 1, 2, 5}});
  const auto& grids = gridsOf(builder);
  const CellArray arrays[] = {numbered("A", false)};
  ASSERT_TRUE(write(grids, arrays));
  EXPECT_THAT(read<std::int32_t>("CellData/GRID"), ElementsAre(1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2));
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
  const hdf::Handle file(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), H5Fclose, path);
  EXPECT_EQ(H5Lexists(file.id(), "VTKHDF/CellData/vtkGhostType", H5P_DEFAULT), 0) << "nothing overlaps";
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
std::vector<std::shared_ptr<Hadrick>> radialRun(std::int32_t angles) {
  auto parent = std::make_shared<Hadrick>(distortedBlock({3, 3, 1}, 0, 0));
  auto radial = std::make_shared<Hadrick>();
  radial->zParent = "ROOT";
  radial->iParent = 1;
  radial->iGridType = 3;
  radial->setSize(2, angles, 1);
  std::vector<float> coord;
  for (std::int32_t j = 0; j <= angles; ++j) {
    for (const float r : {1.0F, 10.0F, 40.0F}) {
      const float theta = 360.0F / static_cast<float>(angles) * static_cast<float>(j);
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
    std::array<float, 24> host;
    grids[0]->corners(5, host);
    const Point center = cellCentre(host);
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
}

TEST(PointMerger, SharesPointsAcrossPinchedLayersAndKeepsFaultsApart) {
  PointMerger merger(2);
  const float top[] = {0, 0, 10};
  const float bottom[] = {0, 0, 20};
  const float none[] = {0, 0, NAN};
  EXPECT_EQ(merger.number(0, top), 0);
  EXPECT_EQ(merger.number(0, bottom), 1);
  EXPECT_EQ(merger.number(0, bottom), 1);
  EXPECT_EQ(merger.number(1, top), 2);  // another pillar at the same place, as where a radial grid closes
  EXPECT_EQ(merger.number(0, none), 3);
  EXPECT_EQ(merger.number(0, none), 4);
  for (float depth = 21; depth < 26; ++depth) merger.number(0, std::array{0.0F, 0.0F, depth}.data());
  EXPECT_EQ(merger.number(0, bottom), 1);
  EXPECT_EQ(merger.take().size(), 3 * merger.count());
}

}  // namespace
}  // namespace lumbarn::testing
