#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CommandRun.h"
#include "support/Forms.h"
#include "support/TemporaryFolder.h"

namespace lumbarn::cli::testing {
namespace {

using ::testing::HasSubstr;

/// A file of one step for each length of INTEHEAD, with the step in word 39 and the date in 85 to 87.
std::vector<std::byte> saveFile(std::initializer_list<std::size_t> lengths) {
  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), test::bigEndian);
  std::int32_t step = 2;
  for (const std::size_t length : lengths) {
    std::vector<std::int32_t> head(140);
    head[38] = step;
    head[84] = step++;
    head[85] = 7;
    head[86] = 2031;
    head[139] = 2012;
    head.resize(length);
    out.integers("DYNAMIC", std::array{1});
    out.integers("INTEHEAD", head);
    out.doubles("DOUBHEAD", std::array{30.0});
  }
  return bytes;
}

TEST(SaveFiles, InfoTellsTheStepsAndCheckWhatKeepsThemFromBeingTold) {
  const test::TemporaryFolder folder;
  const std::string path = folder.file("RUN.SAVE");
  test::writeFile(path, saveFile({140, 140, 140}));
  const auto facts = nlohmann::json::parse(command({"info", "--format", "json", path}).out);
  EXPECT_EQ(facts["kind"], "save");
  EXPECT_EQ(facts["save"], nlohmann::json::parse(R"({"steps": 3, "first_step": 2, "last_step": 4,
      "first_date": "2031-07-02", "last_date": "2031-07-04", "simulator": 300, "version": 2012})"));
  EXPECT_EQ(command({"check", path}).out, path + ": 9 records, clean\n");

  test::writeFile(path, saveFile({140, 38, 140}));
  const Outcome check = command({"check", path});
  EXPECT_EQ(check.status, 3);
  EXPECT_EQ(check.err, "");
  EXPECT_THAT(check.out, HasSubstr("RUN.SAVE: header is too short (INTEHEAD, occurrence 2, byte"));
  const Outcome info = command({"info", path});
  EXPECT_EQ(info.status, 3);
  EXPECT_THAT(info.out, HasSubstr("steps       1\n")) << "the step before it stays";
  EXPECT_THAT(info.err, HasSubstr("header is too short"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
