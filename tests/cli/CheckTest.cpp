#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CommandRun.h"
#include "support/SummaryBuilder.h"

namespace lumbarn::cli::testing {
namespace {

using ::testing::HasSubstr;

/// A small run that is clean, in any form.
test::SummaryBuilder cleanRun() {
  test::SummaryBuilder run;
  run.vectors = {{"TIME", "", 0, "DAYS"}, {"FOPR", "", 0, "SM3/DAY"}};
  run.rows = {{{1, 2}}, {{2, 3}, false}, {{3, 4}}};
  return run;
}

nlohmann::json findingsOf(const std::string& path, int status) {
  const Outcome run = command({"check", "--format", "json", path});
  EXPECT_EQ(run.status, status) << run.out << run.err;
  EXPECT_EQ(run.err, "");
  return nlohmann::json::parse(run.out);
}

struct CheckForms : ::testing::TestWithParam<test::NamedForm> {};

TEST_P(CheckForms, RowsThatDoNotFitTheirRun) {
  const Form form = GetParam().form;
  const test::TemporaryFolder folder;
  const std::string spec = cleanRun().write(folder, "RUN", form);
  EXPECT_EQ(findingsOf(spec, 0), nlohmann::json::array());

  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), form);
  out.integers("SEQHDR", std::array{2});
  out.integers("MINISTEP", std::array{0});
  out.singles("PARAMS", std::array{1.0F, 2.0F, 3.0F});
  out.integers("MINISTEP", std::array{0});
  out.singles("PARAMS", std::array{1.0F, 2.0F});
  out.singles("PARAMS", std::array{0.5F, 2.0F});
  out.integers("MINISTEP", std::array{1});
  out.integers("SEQHDR", std::array{1});
  out.integers("MINISTEP", std::array{2});
  test::writeFile(folder.file(form.formatted() ? "RUN.FUNSMRY" : "RUN.UNSMRY"), bytes);

  std::vector<std::string> found;
  for (const auto& finding : findingsOf(folder.file("RUN"), 3)) {
    found.push_back(fmt::format("{} {}: {}, {}", finding["keyword"].get<std::string>(),
                                finding["occurrence"].dump(), finding["problem"].get<std::string>(),
                                finding["found"].get<std::string>()));
    EXPECT_TRUE(finding["offset"].is_number());
  }
  EXPECT_THAT(found, ::testing::ElementsAre("PARAMS 1: summary row does not fit its specification, 3",
                                            "PARAMS 3: TIME decreases, 0.5",
                                            "PARAMS 3: summary row without a number, ",
                                            "SEQHDR 2: summary row is not whole, SEQHDR",
                                            "MINISTEP null: summary row is not whole, end of file"));
}

INSTANTIATE_TEST_SUITE_P(Forms, CheckForms, ::testing::ValuesIn(test::everyForm),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Check, DamageInOneFileDoesNotHideTheOthers) {
  const test::TemporaryFolder folder;
  for (const char* extension : {".SMSPEC", ".UNSMRY", ".EGRID", ".RFT"}) {
    store(folder.file(std::string("RUN") + extension),
          content(sample(std::string("ARBOR/ARBOR") + extension)));
  }
  EXPECT_EQ(command({"check", folder.file("")}).status, 0);

  std::string grid = content(sample("ARBOR/ARBOR.EGRID"));
  grid[3848 + 24 + 4 + 4000 + 3] ^= 1;  // closing mark of the first block of ZCORN
  store(folder.file("RUN.EGRID"), grid);
  const std::string summary = content(sample("ARBOR/ARBOR.UNSMRY"));
  store(folder.file("RUN.UNSMRY"), summary.substr(0, 5000));
  const Outcome some = command({"check", folder.file("RUN")});
  EXPECT_EQ(some.status, 3);
  EXPECT_EQ(
      some.out,
      folder.file("RUN.SMSPEC") + ": 8 records, clean\n" +  //
          folder.file("RUN.UNSMRY") +
          ": record is cut off (PARAMS, occurrence 8, byte 4816: expected 149 elements, found 184 bytes); "
          "stopped behind 18 records\n" +
          folder.file("RUN.UNSMRY") + ": 18 records, 1 finding\n" +  //
          folder.file("RUN.EGRID") +
          ": block marks disagree (ZCORN, occurrence 1, byte 7876: expected 4000, found 4001); went on "
          "behind the record\n" +
          folder.file("RUN.EGRID") + ": 7 records, 1 finding\n" +  //
          folder.file("RUN.RFT") + ": 33 records, clean\n");

  store(folder.file("RUN.INIT"), "");
  EXPECT_EQ(command({"check", folder.file("RUN")}).status, 3) << "other files of the run can be read";
}

TEST(Check, StepsThatAreNotCompleteAreNoSteps) {
  const test::TemporaryFolder folder;
  std::string restart = content(sample("ARBOR/ARBOR.UNRST"));
  const auto end = restart.rfind("ENDSOL");
  restart.resize(end - 4);  // the mark in front of the header
  store(folder.file("RUN.UNRST"), restart);
  const Outcome check = command({"check", folder.file("RUN")});
  EXPECT_EQ(check.status, 3);
  EXPECT_THAT(check.out, HasSubstr("ENDSOL"));
  const auto steps = [](const std::string& path) {
    const Outcome info = command({"info", path, "--format", "json"});
    return nlohmann::json::parse(info.out)["restart"]["steps"].get<int>();
  };
  EXPECT_EQ(steps(folder.file("RUN")), steps(sample("ARBOR")) - 1);
}

TEST(Check, FilesThatDoNotBelongTogether) {
  const test::TemporaryFolder folder;
  const auto only = [&](const char* name) {
    const auto findings = findingsOf(folder.file(name), 3);
    EXPECT_EQ(findings.size(), 1) << findings;
    return findings.at(0).at("problem").get<std::string>();
  };
  auto later = cleanRun();
  later.restart = "GONE";
  later.write(folder, "LATER", test::everyForm[1].form);
  EXPECT_THAT(findingsOf(folder.file("LATER"), 3).dump(), HasSubstr("GONE"));

  store(folder.file("ALONE.SMSPEC"), content(sample("ARBOR/ARBOR.SMSPEC")));
  EXPECT_EQ(only("ALONE"), "no summary data go with it");
  store(folder.file("DATA.UNSMRY"), content(sample("ARBOR/ARBOR.UNSMRY")));
  EXPECT_EQ(only("DATA"), "no specification goes with it");
  store(folder.file("WRONG.INIT"), content(sample("ARBOR/ARBOR.EGRID")));
  EXPECT_EQ(only("WRONG"), "content is not what the name says");
}

}  // namespace
}  // namespace lumbarn::cli::testing
