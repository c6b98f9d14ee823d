#include <array>
#include <thread>

#include <gtest/gtest.h>

#include "support/Paths.h"
#include "support/SummaryLoad.h"

namespace lumbarn {
namespace {

using test::SummaryLoad;
const std::string data = examplePath("/data/");

/// A thread to each session: a race would show under load as other values, or to a sanitizer.
TEST(SampleRunSessions, LoadSideBySide) {
  const std::string files[] = {"ARBOR/ARBOR.SMSPEC", "CEDAR/CEDAR_R2.SMSPEC", "HOLLIN/HOLLIN.SMSPEC"};
  std::array<std::vector<float>, 6> values;
  const auto loadOften = [&](std::size_t number) {
    for (int round = 0; round < 10; ++round) {
      SummaryLoad load(data + files[number % 3]);
      load.reader.zExcept = "CO*,CW*,CG*,CPR*";
      load.reader.NoRestart = false;
      if (!load.run()) return;
      values[number].assign(load.table.values().begin(), load.table.values().end());
    }
  };
  {
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < values.size(); ++i) threads.emplace_back(loadOften, i);
  }
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_GT(values[i].size(), 100U);
    EXPECT_EQ(values[i], values[i + 3]);
  }
}

}  // namespace
}  // namespace lumbarn
