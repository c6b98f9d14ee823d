#include <cmath>
#include <cstdlib>
#include <limits>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CommandRun.h"
#include "support/SummaryBuilder.h"

namespace lumbarn::cli::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

/// As precise as the tables of the independent reader are, which tells any single apart.
std::string nineDigits(const std::string& number, const std::string& type) {
  const double value =
      type == "REAL" ? std::strtof(number.c_str(), nullptr) : std::strtod(number.c_str(), nullptr);
  return fmt::format("{:.9g}", value);
}

struct RecordsSample : ::testing::TestWithParam<std::string> {};

TEST_P(RecordsSample, AgreeWithTheIndependentReader) {
  const auto expected = parseCsv(content(sample("expected/" + GetParam() + ".records.csv")));
  const std::string run = GetParam().substr(0, GetParam().find('.'));
  const auto listed = command({"records", "--stats", "--format", "csv", sample(run + "/" + GetParam())});
  ASSERT_EQ(listed.status, 0) << listed.err;
  const auto rows = parseCsv(listed.out);
  ASSERT_EQ(rows.size(), expected.size());
  for (std::size_t i = 1; i < rows.size(); ++i) {
    const auto& [row, wanted] = std::tie(rows[i], expected[i]);
    ASSERT_EQ((std::vector{row[0], row[1], row[2]}), (std::vector{wanted[0], wanted[1], wanted[2]}));
    for (const int side : {0, 1}) {
      const std::string& text = row[4 + side];
      ASSERT_EQ(text.empty(), wanted[3 + side].empty()) << row[0];
      if (text.empty()) continue;
      ASSERT_EQ(nineDigits(text, row[1]), nineDigits(wanted[3 + side], row[1])) << row[0];
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Samples, RecordsSample,
                         ::testing::Values("ARBOR.EGRID", "ARBOR.INIT", "ARBOR.UNRST", "ARBORF.FEGRID",
                                           "ARBORF.FINIT", "ARBORF.FRFT", "ARBORF.FUNRST", "ARBORFM.A0003",
                                           "ARBORFM.F0003", "ARBORM.S0003", "ARBORM.X0003", "HOLLIN.RFT"),
                         [](const auto& row) {
                           std::string name = row.param;
                           name[name.find('.')] = '_';
                           return name;
                         });

TEST(Records, OffsetsLeadToTheHeaders) {
  const std::string file = content(sample("ARBOR/ARBOR.UNRST"));
  const auto rows = parseCsv(command({"records", "--format", "csv", sample("ARBOR/ARBOR.UNRST")}).out);
  for (std::size_t i = 1; i < rows.size(); ++i) {
    const auto at = std::stoul(rows[i][3]);
    ASSERT_EQ(file.substr(at + 4, rows[i][0].size()), rows[i][0]);
    ASSERT_EQ(file.substr(at + 16, 4), rows[i][1]);
  }
}

TEST(Records, ValuesThatAreNoNumbersLeaveTheOthersTheirExtremes) {
  const test::TemporaryFolder folder;
  const float none = std::numeric_limits<float>::quiet_NaN();
  const float beyond = std::numeric_limits<float>::infinity();
  std::vector<std::byte> bytes;
  RecordWriter writer(memorySink(bytes), test::everyForm[1].form);
  writer.singles("MIXED", std::vector{none, 2.5F, none, -1.0F});
  writer.singles("NONE", std::vector{none, none});
  writer.singles("BEYOND", std::vector{1.0F, beyond});
  writer.singles("EMPTY", {});
  test::writeFile(folder.file("ANY.BIN"), bytes);

  const auto csv = command({"records", "--stats", "--format", "csv", folder.file("ANY.BIN")});
  EXPECT_EQ(csv.out,
            "keyword,type,count,offset,min,max\r\n"
            "MIXED,REAL,4,0,-1,2.5\r\n"
            "NONE,REAL,2,48,,\r\n"
            "BEYOND,REAL,2,88,1,inf\r\n"
            "EMPTY,REAL,0,128,,\r\n");
  const auto json =
      nlohmann::json::parse(command({"records", "--stats", "--format", "json", folder.file("ANY.BIN")}).out);
  ASSERT_EQ(json.size(), 4);
  EXPECT_EQ(
      json[0],
      (nlohmann::json{
          {"keyword", "MIXED"}, {"type", "REAL"}, {"count", 4}, {"offset", 0}, {"min", -1}, {"max", 2.5}}));
  EXPECT_TRUE(json[2]["max"].is_null());
}

/// Damage at `byte` in copies of ARBOR.INIT (INTEHEAD of 411 words, LOGIHEAD, DOUBHEAD, PORV from 4056 on).
struct Damage {
  const char* what;
  std::size_t keep;  // bytes of the file
  std::size_t flip;  // byte to invert; 0: none
  int status;
  std::size_t rows;
  const char* message;
};

TEST(Records, DamagedFilesGiveTheirWholeRecords) {
  const std::string whole = content(sample("ARBOR/ARBOR.INIT"));
  const std::vector<Damage> damages{
      {"cut in data", 5000, 0, 3, 3,
       "record is cut off (PORV, occurrence 1, byte 4080: expected 300 elements, found 920 bytes); listed "
       "the 3 "
       "records before it"},
      {"cut in a header", 4060, 0, 3, 3,
       "record is cut off (byte 4056: expected 24 bytes, found 4); listed the 3 records before it"},
      {"cut in the first record", 100, 0, 1, 0,
       "record is cut off (INTEHEAD, occurrence 1, byte 24: expected 411 elements, found 76 bytes); nothing "
       "can "
       "be listed"},
      {"mark of a header", whole.size(), 4059, 3, 21,  // all but PORV
       "block marks disagree (byte 4056: expected 16, found 239); skipped bytes 4056 to "},
  };
  const test::TemporaryFolder folder;
  const std::string path = folder.file("BAD.INIT");
  for (const Damage& damage : damages) {
    SCOPED_TRACE(damage.what);
    std::string bytes = whole.substr(0, damage.keep);
    if (damage.flip) bytes[damage.flip] = static_cast<char>(~bytes[damage.flip]);
    store(path, bytes);
    const auto listed = command({"records", "--format", "csv", path});
    EXPECT_EQ(listed.status, damage.status);
    EXPECT_EQ(parseCsv(listed.out).size(), 1 + damage.rows);
    EXPECT_THAT(listed.err, StartsWith("lumbarn: " + path + ": " + damage.message));
    EXPECT_EQ(std::ranges::count(listed.err, '\n'), 1);
  }
}

TEST(Records, DamageInsideOfARecordLeavesItsNumbersOutAndGoesOn) {
  std::string bytes = content(sample("HOLLIN/HOLLIN.EGRID"));
  const auto rows =
      parseCsv(command({"records", "--stats", "--format", "csv", sample("HOLLIN/HOLLIN.EGRID")}).out);
  const auto zcorn = std::ranges::find_if(rows, [](const auto& row) { return row[0] == "ZCORN"; });
  bytes[std::stoul((*zcorn)[3]) + 24 + 4 + 4000 + 3] ^= 1;  // closing mark of its first block
  const test::TemporaryFolder folder;
  store(folder.file("BAD.EGRID"), bytes);

  EXPECT_EQ(command({"records", folder.file("BAD.EGRID")}).status, 0) << "headers only";
  const auto listed = command({"records", "--stats", "--format", "csv", folder.file("BAD.EGRID")});
  EXPECT_EQ(listed.status, 3);
  EXPECT_THAT(listed.err, HasSubstr("block marks disagree (ZCORN, occurrence 1, byte"));
  auto expected = rows;
  auto& row = expected[static_cast<std::size_t>(zcorn - rows.begin())];
  row[4] = row[5] = "";
  EXPECT_EQ(parseCsv(listed.out), expected);
}

TEST(Records, FilesThatAreNone) {
  const test::TemporaryFolder folder;
  store(folder.file("EMPTY.INIT"), "");
  store(folder.file("TEXT.INIT"), "no records in here, only words and more words\n");
  EXPECT_EQ(command({"records", folder.file("EMPTY.INIT")}).status, 1);
  EXPECT_EQ(command({"records", folder.file("TEXT.INIT")}).err,
            "lumbarn: " + (folder.file("TEXT.INIT")) + ": is no record file\n");
  EXPECT_EQ(command({"records", folder.file("NOT.THERE")}).status, 2);
}

}  // namespace
}  // namespace lumbarn::cli::testing
