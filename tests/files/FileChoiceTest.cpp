#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/FileChoice.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using test::TemporaryFolder;
using Names = std::vector<std::string>;
namespace fs = std::filesystem;

/// Files by name, each with the time it was written, in seconds.
using Times = std::vector<std::pair<std::string, int>>;

void write(const TemporaryFolder& folder, const Times& files) {
  const fs::file_time_type epoch{};
  for (const auto& [name, seconds] : files) {
    folder.add({name});
    fs::last_write_time(folder.file(name), epoch + std::chrono::seconds(seconds));
  }
}

Names namesOf(const TemporaryFolder& folder, const Names& paths) {
  Names names;
  for (const std::string& path : paths) names.push_back(path.substr(folder.file("").size()));
  return names;
}

// Reruns leave the files of both kinds of output; unpacked copies of one run differ by milliseconds.
TEST(ChooseFiles, TakesTheNamedFilesOrTheUnifiedFileUnlessAllStepsAreNewer) {
  using enum FileKind;
  const Times oldSteps{{"R.UNRST", 600}, {"R.X0001", 0}, {"R.X0002", 1}, {"R.RSSPEC", 600}};
  const Times newSteps{{"R.UNRST", 0}, {"R.X0001", 60}, {"R.X0002", 61}};
  const Times mixed{{"R.UNRST", 0}, {"R.X0001", 59}, {"R.X0002", 61}};
  const Times stepsOnly{{"R.SMSPEC", 0}, {"R.S0001", 0}, {"R.S0002", 0}};
  const Times both{{"R.SMSPEC", 0}, {"R.S0001", 0}, {"R.UNSMRY", 600}, {"R.INIT", 0}, {"R.X0001", 0}};
  const Names steps{"R.X0001", "R.X0002"};
  struct Row {
    Times files;
    std::string named;
    FileKind kind;
    std::optional<bool> unified;  // set by the host
    Names expected;
    std::int32_t namedStep;
    std::string remark;
  };
  const Row rows[] = {
      {oldSteps, "R", Restart, {}, {"R.UNRST"}, -1, "read the unified file"},
      {oldSteps, "R.UNRST", Restart, {}, {"R.UNRST"}, -1, ""},
      {oldSteps, "R.X0002", Restart, {}, steps, 2, ""},
      {oldSteps, "R", Restart, false, steps, -1, ""},
      {newSteps, "R", Restart, {}, steps, -1, "read the step files, which are newer"},
      {newSteps, "R", Restart, true, {"R.UNRST"}, -1, ""},
      {mixed, "R", Restart, {}, {"R.UNRST"}, -1, "read the unified file"},
      {stepsOnly, "R.SMSPEC", Summary, {}, {"R.S0001", "R.S0002"}, -1, ""},
      {both, "R.SMSPEC", Summary, {}, {"R.UNSMRY"}, -1, "read the unified file"},
      {both, "R.INIT", Restart, {}, {"R.X0001"}, -1, ""},
      {{{"R.V2.X0000", 0}}, "R.V2", Restart, {}, {"R.V2.X0000"}, -1, ""},
      {{{"R.DATA", 0}, {"R.FUNRST", 0}, {"R.UNRST", 0}}, "R.DATA", Restart, {}, {"R.UNRST"}, -1, ""},
      {{{"r.unrst", 0}, {"r.fur", 0}}, "r", Restart, {}, {"r.unrst"}, -1, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.named + " of " + row.files.front().first);
    TemporaryFolder folder;
    write(folder, row.files);
    Session session;
    const FileChoice choice = chooseFiles(session, folder.file(row.named), row.kind, row.unified);
    EXPECT_EQ(namesOf(folder, choice.files), row.expected);
    EXPECT_EQ(choice.unified, row.expected.empty() || !isStepFile(row.expected.front()));
    EXPECT_EQ(choice.namedStep, row.namedStep);
    ASSERT_EQ(session.diagnoses().size(), row.remark.empty() ? 0U : 1U);
    if (row.remark.empty()) continue;
    EXPECT_EQ(session.diagnoses()[0].action, row.remark);
    EXPECT_EQ(session.diagnoses()[0].severity(), Severity::Remark);
  }
}

}  // namespace
}  // namespace lumbarn
