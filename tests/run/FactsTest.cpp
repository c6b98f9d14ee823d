#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/Error.h"
#include "run/Facts.h"
#include "run/Run.h"
#include "support/Forms.h"
#include "support/ModelRun.h"

namespace lumbarn::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Pair;

/// Facts by "group.property"; of a list the items side by side.
std::map<std::string, std::string> byName(Stream stream) {
  const Batch all = std::move(stream).collect();
  std::map<std::string, std::string> facts;
  for (std::size_t row = 0; row < all.rows(); ++row) {
    const std::string group(all["group"].text(row));
    std::string& value = facts[(group.empty() ? "" : group + ".") + std::string(all["property"].text(row))];
    value += (value.empty() ? "" : ",") + std::string(all["value"].text(row));
  }
  return facts;
}

TEST(Facts, OfOneFileDoNotHideThoseOfOthers) {
  const test::ModelRun run(test::everyWriter[0], test::bigEndian);
  test::writeFile(run.gridPath, test::bytesOf("nothing"));
  std::string reports;
  ReadOptions options;
  options.report = [&](const Diagnosis& report) { reports += report.text() + '\n'; };
  options.keepPartial = true;
  const auto facts = byName(Run::open(run.root()).facts(options));
  EXPECT_EQ(facts.at("restart.steps"), std::to_string(run.model.restartSteps().size()));
  EXPECT_EQ(facts.at("init.active_cells"), std::to_string(run.model.activeCells().size()));
  EXPECT_FALSE(facts.contains("grid.grid"));
  EXPECT_THAT(reports, HasSubstr(run.gridPath + ": does not begin with"));
  EXPECT_THROW(byName(Run::open(run.root()).facts()), Error) << "something is missing";
}

TEST(Facts, OfFilesUnderAnyName) {
  const test::ModelRun run(test::everyWriter[0], test::bigEndian);
  const test::TemporaryFolder folder;
  const std::string copy = folder.file("copy");
  std::filesystem::copy_file(run.gridPath, copy);
  auto facts = byName(lumbarn::facts(copy));
  EXPECT_EQ(facts["kind"], "EGRID");
  EXPECT_EQ(facts["grid.active_cells"], std::to_string(run.model.activeInGrid()));
  std::vector<std::byte> bytes;
  RecordWriter(memorySink(bytes), test::bigEndian).integers("FOREIGN", std::array{1});
  test::writeFile(copy, bytes);
  ReadOptions partial;
  partial.keepPartial = true;
  facts = byName(lumbarn::facts(copy, partial));
  EXPECT_EQ(facts["kind"] + " " + facts["first_record"] + " " + facts["bytes"], "unknown FOREIGN 36");
  EXPECT_THROW(Run::open(run.root()).fileFacts(), Error);
}

TEST(Facts, FilesThatAnotherGenerationReplacesAreNotInUse) {
  const test::TemporaryFolder folder;
  test::RestartBuilder restart;
  restart.steps = {{.number = 2}, {.number = 3}};
  for (const bool unified : {false, true}) restart.write(folder, "RUN", test::bigEndian, unified);
  test::writeFile(folder.file("RUN.DATA"), test::bytesOf("RUNSPEC\nDIMENS\n 1 1 1 /\n"));
  const Batch files = Run::open(folder.file("RUN")).files().collect();
  std::map<std::string, std::string> uses;
  for (std::size_t row = 0; row < files.rows(); ++row) {
    const auto number = [&](const char* name) {
      return files[name].valid(row) ? std::to_string(files[name].values<std::int32_t>()[row]) : "";
    };
    uses[std::string(files["name"].text(row))] = number("first_step") + ":" + number("last_step") +
                                                 (!files["in_use"].valid(row)    ? ""
                                                  : files["in_use"].boolean(row) ? " in use"
                                                                                 : " not in use");
  }
  EXPECT_THAT(uses, ElementsAre(Pair("RUN.DATA", ":"), Pair("RUN.UNRST", "2:3 in use"),
                                Pair("RUN.X0002", "2:2 not in use"), Pair("RUN.X0003", "3:3 not in use")));
}

}  // namespace
}  // namespace lumbarn::testing
