#include <cstdlib>

#include <gtest/gtest.h>

#include "CommandRun.h"

namespace lumbarn::cli::testing {
namespace {

/// What people see. LUMBARN_UPDATE_GOLDEN=1 in the environment writes the files anew, for a person to read.
struct Golden {
  const char* name;
  std::vector<std::string> args;  // the last one is a path in the samples
};

void PrintTo(const Golden& golden, std::ostream* out) { *out << golden.name; }

const Golden goldens[] = {
    {"records", {"records", "ARBOR/ARBOR.EGRID"}},
    {"records-stats", {"records", "--stats", "ARBORFM/ARBORFM.A0003"}},
    {"check", {"check", "ARBORM/ARBORM.X0002"}},
    {"vectors", {"vectors", "HOLLIN"}},
    {"summary", {"summary", "--dates", "--vectors", "FOP*,WBHP:P?,BPR:12,8,4", "--except", "FOPT", "HOLLIN"}},
    {"init", {"init", "HOLLIN"}},
    {"init-nnc", {"init", "--nnc", "HOLLIN"}},
    {"init-flags", {"init", "--flags", "--format", "csv", "ARBORF"}},
    {"tables", {"tables", "ARBOR"}},
    {"tables-pvto", {"tables", "--table", "PVTO", "ARBORF"}},
    {"info-run", {"info", "HOLLIN"}},
    {"info-summary", {"info", "CEDAR/CEDAR_R2.UNSMRY"}},
    {"info-steps", {"info", "--format", "csv", "ARBORFM/ARBORFM.F0003"}},
    {"info-grid", {"info", "--format", "json", "ARBORF/ARBORF.FEGRID"}},
};

struct GoldenOutput : ::testing::TestWithParam<Golden> {};

TEST_P(GoldenOutput, IsAsBefore) {
  auto args = GetParam().args;
  args.back() = sample(args.back());
  const Outcome run = command(args);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  std::string out = run.out;
  for (auto at = out.find(sample("")); at != out.npos; at = out.find(sample("")))
    out.erase(at, sample("").size());
  const std::string path = std::string(LUMBARN_GOLDEN "/") + GetParam().name + ".txt";
  if (std::getenv("LUMBARN_UPDATE_GOLDEN")) store(path, out);
  EXPECT_EQ(out, content(path));
}

INSTANTIATE_TEST_SUITE_P(Samples, GoldenOutput, ::testing::ValuesIn(goldens), [](const auto& row) {
  std::string name = row.param.name;
  std::erase(name, '-');
  return name;
});

}  // namespace
}  // namespace lumbarn::cli::testing
