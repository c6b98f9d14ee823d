#include <gmock/gmock.h>

#include "frame/Error.h"
#include "run/Run.h"
#include "support/Paths.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;

const Run hollin = Run::open(examplePath("/data/HOLLIN"));

TEST(InitQuestions, ConnectionsHaveTheirCells) {
  const Batch list = hollin.nncArrays().collect();
  EXPECT_EQ(list["array"].text(0), "TRANNNC");
  EXPECT_EQ(list["count"].values<std::int64_t>()[0], 89);
  EXPECT_FLOAT_EQ(list["min"].values<float>()[0], 0.5405843F);
  Stream stream = hollin.nnc({.arrays = {"tran*"}});
  EXPECT_EQ(stream.schema()[7].unit, "CPM3/D/BAR");
  const Batch rows = std::move(stream).collect();
  ASSERT_EQ(rows.rows(), 89U);
  std::vector<std::int32_t> cells;
  for (const char* index : {"i1", "j1", "k1", "i2", "j2", "k2"})
    cells.push_back(rows[index].values<std::int32_t>()[1]);
  EXPECT_THAT(cells, ElementsAre(10, 1, 1, 9, 1, 4));
  EXPECT_FLOAT_EQ(rows["TRANNNC"].values<float>()[88], 2.3006082F);
  EXPECT_THROW(hollin.nnc({.arrays = {"X*"}}), Error);
  EXPECT_THROW(hollin.nnc({.grid = "LGR1"}), Error);
}

TEST(InitQuestions, FlagsAreOfTheGrid) {
  const Batch flags = hollin.flags("ROOT").collect();
  EXPECT_TRUE(flags["flag"].text(0) == "Oil" && flags["value"].boolean(0));
  EXPECT_THROW(hollin.flags("LGR1"), Error);
}

}  // namespace
}  // namespace lumbarn
