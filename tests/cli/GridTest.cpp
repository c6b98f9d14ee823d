#include "CommandTest.h"
#include "support/GridBuilder.h"

namespace lumbarn::cli::testing {
namespace {

struct GridCommand : CommandTest {};

TEST_F(GridCommand, RadialGridsHaveAnglesAndRefinedCellsAreCounted) {
  test::GridBuilder grid;
  grid.grids[0].activity = {0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
  grid.grids.push_back({.size = {2, 2, 1}, .name = "WELL", .hosts = {1, 2, 2, 5}, .angles = 2});
  write("RUN.EGRID", grid.egrid(Form{}));
  const auto grids = csv("grid ~RUN");
  ASSERT_EQ(grids.size(), 3);
  EXPECT_EQ(grids[0][7], "refined");
  EXPECT_EQ(grids[1][7], "2") << "of three refined cells one is inactive";
  const auto rows = csv("grid --grid WELL --corners ~RUN");
  EXPECT_THAT(std::vector(rows[0].begin() + 3, rows[0].begin() + 7), ElementsAre("r1", "theta1", "z1", "r2"));
}

TEST_F(GridCommand, DamageIsReported) {
  store(file("BAD.EGRID"), "FILEHAED");
  const Outcome bad = run("grid ~BAD.EGRID");
  EXPECT_EQ(bad.status, 1);
  EXPECT_THAT(bad.err, HasSubstr("BAD.EGRID: does not begin with FILEHEAD"));

  copy("HOLLIN/HOLLIN.EGRID", "HOLLIN.EGRID");
  copy("HOLLIN/HOLLIN.UNRST", "HOLLIN.UNRST", content(sample("HOLLIN/HOLLIN.UNRST")).size() / 2);
  const Outcome half = run("grid --vtk ~out.vtkhdf --array PRESSURE ~HOLLIN");
#ifdef LUMBARN_WITH_HDF5
  EXPECT_EQ(half.status, 3);
  EXPECT_THAT(half.err, HasSubstr("listed 7 steps"));
  EXPECT_TRUE(std::filesystem::exists(file("out.vtkhdf")));
#else
  EXPECT_EQ(half.status, 1);
  EXPECT_THAT(half.err, HasSubstr("liblumbarn_vtk"));
#endif
}

}  // namespace
}  // namespace lumbarn::cli::testing
