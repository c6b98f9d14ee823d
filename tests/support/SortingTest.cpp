#include <limits>

#include <gmock/gmock.h>

#include "support/Sorting.h"

namespace lumbarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SortPositions, IncreaseAndKeepTheOrderOfEquals) {
  using Limits = std::numeric_limits<float>;
  const float nan = Limits::quiet_NaN();
  EXPECT_THAT(sortPositions({}), IsEmpty());
  EXPECT_THAT(sortPositions(std::vector<float>{3, -1, 3, -2, 0.5F}), ElementsAre(4, 2, 5, 1, 3));
  EXPECT_THAT(sortPositions(std::vector<float>{0, -0.0F, 0, -Limits::denorm_min()}), ElementsAre(4, 1, 2, 3));
  EXPECT_THAT(
      sortPositions(std::vector<float>{-nan, Limits::infinity(), nan, -Limits::infinity(), Limits::max()}),
      ElementsAre(4, 5, 2, 1, 3));
}

}  // namespace
}  // namespace lumbarn
