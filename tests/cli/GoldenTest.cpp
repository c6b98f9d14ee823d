#include <cstdlib>

#include <gtest/gtest.h>

#include "CommandRun.h"
#include "support/Paths.h"

namespace lumbarn::cli::testing {
namespace {

/// What people see. LUMBARN_UPDATE_GOLDEN=1 in the environment writes the files anew, for a person to read.
struct Golden {
  const char* name;
  std::vector<std::string> args;  // the last one is a path in the samples
};

const Golden goldens[] = {
    {"records", {"records", "ARBOR/ARBOR.EGRID"}},
    {"check", {"check", "ARBORM/ARBORM.X0002"}},
    {"vectors", {"vectors", "HOLLIN"}},
    {"summary", {"summary", "--dates", "--vectors", "FOP*,WBHP:P?,BPR:12,8,4", "--except", "FOPT", "HOLLIN"}},
    {"rft", {"rft", "HOLLIN"}},
    {"rft-test", {"rft", "--test", "1", "HOLLIN"}},
    {"rft-user", {"rft", "measured/rft.txt"}},
    {"info-user", {"info", "--format", "json", "measured/rft.txt"}},
    {"grid", {"grid", "HOLLIN"}},
    {"wells", {"wells", "--step", "5", "ARBOR"}},
    {"wells-object", {"wells", "--format", "json", "--step", "3", "HOLLIN/HOLLIN.UNRST"}},
    {"restart", {"restart", "ARBORM"}},
    {"restart-csv", {"restart", "--step", "3", "--format", "csv", "HOLLIN"}},
    {"restart-array", {"restart", "--step", "2", "--array", "SWAT,PRESSURE", "--ijk", "CEDAR/CEDAR"}},
    {"init", {"init", "HOLLIN"}},
    {"init-array", {"init", "--array", "PORO,FIPNUM", "--all", "--format", "csv", "CEDAR/CEDAR"}},
    {"grid-corners", {"grid", "--corners", "--format", "csv", "CEDAR/CEDAR"}},
    {"records-stats", {"records", "--stats", "--format", "csv", "CEDAR/CEDAR.INIT"}},
    {"tables-one", {"tables", "--table", "PVDG", "ARBOR"}},
    {"summary-csv", {"summary", "--vectors", "F?PR", "--report-steps", "--format", "csv", "ARBORM"}},
    {"init-nnc", {"init", "--nnc", "HOLLIN"}},
    {"init-flags", {"init", "--flags", "--format", "csv", "ARBORF"}},
    {"tables", {"tables", "ARBOR"}},
    {"info-run", {"info", "HOLLIN"}},
    {"info-grid", {"info", "--format", "json", "ARBORF/ARBORF.FEGRID"}},
};

TEST(GoldenOutput, IsAsBefore) {
  for (const auto& [name, line] : goldens) {
    auto args = line;
    args.back() = sample(args.back());
    const Outcome run = command(args);
    EXPECT_EQ(run.status, 0) << name;
    EXPECT_EQ(run.err, "");
    std::string out = run.out;
    for (auto at = out.find(sample("")); at != out.npos; at = out.find(sample("")))
      out.erase(at, sample("").size());
    const std::string path = goldenPath("/") + name + ".txt";
    if (std::getenv("LUMBARN_UPDATE_GOLDEN")) store(path, out);
    EXPECT_EQ(out, content(path));
  }
}

}  // namespace
}  // namespace lumbarn::cli::testing
