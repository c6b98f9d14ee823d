#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Answer.h"
#include "CommandRun.h"
#include "support/TemporaryFolder.h"

namespace lumbarn::cli::testing {
namespace {

using ::testing::HasSubstr;

/// The steps of a run, with a pressure that is the number of the step in psi.
Stream stepsOf(const Run& run, const ReadOptions& options) {
  const auto steps = run.steps(options);
  Schema schema{{.name = "step", .type = Type::Int32},
                {.name = "PRESSURE", .type = Type::Float32, .unit = "PSIA"}};
  return streamOfRows(std::move(schema), std::make_shared<StreamContext>(options), [=](BatchBuilder& rows) {
    for (std::size_t i = 0; i < 2; ++i) {
      rows.set(0, steps[i].number);
      rows.set(1, static_cast<float>(steps[i].number));
      rows.endRow();
    }
    return false;
  });
}

Outcome ask(const RunOptions& runs, const OutputOptions& output) {
  std::ostringstream out, err;
  const std::atomic<bool> stop = false;
  Outcome outcome;
  {
    Console console(out, err, stop, false);
    outcome.status = answer(runs, output, console, stepsOf);
  }
  outcome.out = out.str();
  outcome.err = err.str();
  std::erase(outcome.out, '\r');
  return outcome;
}

TEST(Answers, OfOneRunOrSeveralInTheFormAndUnitsAskedFor) {
  const std::string hollin = sample("HOLLIN/HOLLIN"), cedar = sample("CEDAR/CEDAR");
  EXPECT_EQ(ask({{hollin}}, {.format = Format::Csv, .unitRow = true}).out,
            "step,PRESSURE\n,PSIA\n0,0\n1,1\n");
  EXPECT_EQ(ask({{hollin}}, {.format = Format::Csv, .units = Units::Metric, .longForm = true}).out,
            "run,step,array,value,unit\nHOLLIN,0,PRESSURE,0,BARSA\nHOLLIN,1,PRESSURE,0.068947576,BARSA\n");
  EXPECT_EQ(ask({{hollin, hollin}}, {.format = Format::Csv}).out.substr(0, 18), "run,step,PRESSURE\n");
  EXPECT_THROW(ask({{hollin}}, {.format = Format::Ndjson, .unitRow = true}), Failure);

  const Outcome some = ask({{hollin, "/no/such/run", cedar}}, {.format = Format::Csv});
  EXPECT_EQ(some.status, Partial);
  EXPECT_THAT(some.err, HasSubstr("/no/such/run"));
  EXPECT_THAT(some.out, HasSubstr("HOLLIN,1,1\nCEDAR,"));
  EXPECT_THROW(ask({{"/no/such/run", "/nor/this"}}, {}), Error);

  const Outcome each = ask({{sample("CEDAR")}, true}, {.format = Format::Csv});
  EXPECT_EQ(each.status, Done);
  EXPECT_THAT(each.out, HasSubstr("CEDAR_R2,"));
}

TEST(Answers, OfRunsOfOneNameHaveTheirFolder) {
  const test::TemporaryFolder folder;
  const std::string other = folder.file("HOLLIN.UNRST");
  store(other, content(sample("HOLLIN/HOLLIN.UNRST")));
  const Outcome both = ask({{sample("HOLLIN/HOLLIN"), other}}, {.format = Format::Csv});
  EXPECT_THAT(both.out, HasSubstr(other.substr(0, other.size() - 6) + ",0,0\n"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
