#include <cmath>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Hdf.h"
#include "PointMerger.h"
#include "VtkExport.h"
#include "grid/GridBlocks.h"
#include "support/TemporaryFolder.h"

namespace lumbarn::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

template <class Number>
std::vector<Number> read(const std::string& path, const char* name) {
  const hdf::Handle file(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), H5Fclose, path);
  const hdf::Handle dataset(H5Dopen2(file.id(), name, H5P_DEFAULT), H5Dclose, name);
  const hdf::Handle space(H5Dget_space(dataset.id()), H5Sclose, name);
  std::vector<Number> values(static_cast<std::size_t>(H5Sget_simple_extent_npoints(space.id())));
  H5Dread(dataset.id(), hdf::typeOf<Number>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data());
  return values;
}

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

TEST(VtkExport, StepsShareOneGeometry) {
  const test::TemporaryFolder folder;
  const std::string path = folder.file("steps.vtkhdf");
  Hadrick grid = distortedBlock({2, 2, 2}, 0.1F, 0);
  grid.setActive({1, 1, 0, 1, 1, 1, 1, 0});
  const CellArray arrays[] = {numbered("1/BO", true), numbered("FIXED", false)};
  Session session;
  bool qOK = false;
  exportVtk(grid, arrays, {.times = {0, 31.5}}, path, session, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_THAT(read<std::int32_t>(path, "VTKHDF/CellData/CELL"), ElementsAre(1, 2, 4, 5, 6, 7));
  EXPECT_THAT(read<std::int64_t>(path, "VTKHDF/Offsets"), ElementsAre(0, 8, 16, 24, 32, 40, 48));
  EXPECT_THAT(read<double>(path, "VTKHDF/CellData/1_BO"),
              ElementsAre(0, 1, 2, 3, 4, 5, 1000, 1001, 1002, 1003, 1004, 1005));
  EXPECT_THAT(read<double>(path, "VTKHDF/CellData/FIXED"), ElementsAre(0, 1, 2, 3, 4, 5));
  EXPECT_THAT(read<double>(path, "VTKHDF/Steps/Values"), ElementsAre(0, 31.5));
  EXPECT_THAT(read<std::int64_t>(path, "VTKHDF/Steps/CellDataOffsets/1_BO"), ElementsAre(0, 6));
  for (const char* constant : {"CellDataOffsets/FIXED", "CellDataOffsets/I", "PartOffsets", "PointOffsets",
                               "CellOffsets", "ConnectivityIdOffsets"}) {
    EXPECT_THAT(read<std::int64_t>(path, (std::string("VTKHDF/Steps/") + constant).c_str()),
                ElementsAre(0, 0))
        << constant;
  }
  // Of 27 nodes that 8 cells share, the active ones leave out two that only inactive cells have.
  EXPECT_THAT(read<std::int64_t>(path, "VTKHDF/NumberOfPoints"), ElementsAre(25));
}

TEST(VtkExport, SeveralPiecesAreOneGrid) {
  const test::TemporaryFolder folder;
  const std::string path = folder.file("pieces.vtkhdf");
  const Hadrick grid = distortedBlock({100, 100, 8}, 0, 0);
  Session session;
  bool qOK = false;
  exportVtk(grid, {}, {}, path, session, qOK);
  ASSERT_TRUE(qOK);
  const auto points = read<float>(path, "VTKHDF/Points");
  const auto connectivity = read<std::int64_t>(path, "VTKHDF/Connectivity");
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

TEST(VtkExport, WhateverStopsItLeavesTheFolderAsItWas) {
  const test::TemporaryFolder folder;
  const std::string path = folder.file("kept.vtkhdf");
  std::ofstream(path) << "before";
  const Hadrick grid = distortedBlock({2, 2, 2}, 0, 0);
  Session session;
  CellArray broken = numbered("BROKEN", false);
  broken.read = CellReader<float>([](std::size_t, std::size_t, std::span<float>) {
    throw BadRecord({.path = "RUN.INIT", .problem = "damage"});
  });
  CellArray cancelling = numbered("SLOW", false);
  cancelling.read =
      CellReader<float>([&](std::size_t, std::size_t, std::span<float>) { session.CancelLoad = true; });
  const std::vector<CellArray> failures[] = {{numbered("A", false), broken},
                                             {numbered("A", false), numbered("A", false)},
                                             {cancelling, numbered("A", false)}};
  for (const auto& arrays : failures) {
    bool qOK = true;
    exportVtk(grid, arrays, {}, path, session, qOK);
    EXPECT_FALSE(qOK);
    EXPECT_THAT(filesIn(folder.file("")), ElementsAre("kept.vtkhdf"));
    EXPECT_EQ(std::filesystem::file_size(path), 6);
  }
  ASSERT_EQ(session.diagnoses().size(), 2);  // nothing is wrong when it is cancelled
  EXPECT_EQ(session.diagnoses()[0].path, "RUN.INIT");
  EXPECT_THAT(session.diagnoses()[1].text(), HasSubstr(path + ": cannot be written"));

  session.CancelLoad = false;
  session.clearDiagnoses();
  for (const std::string& impossible : {folder.file("no/such/folder.vtkhdf"), folder.file("")}) {
    bool qOK = true;
    exportVtk(grid, {}, {}, impossible, session, qOK);
    EXPECT_FALSE(qOK);
    ASSERT_FALSE(session.diagnoses().empty());
    EXPECT_THAT(session.diagnoses().back().text(), HasSubstr(impossible + ": cannot be written"));
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
