#include <cstdlib>
#include <limits>

#include <fmt/format.h>

#include "CommandTest.h"

namespace lumbarn::cli::testing {
namespace {

struct Records : CommandTest {};

/// As precise as the tables of the independent reader are, which tells any single apart.
std::string nineDigits(const std::string& number, const std::string& type) {
  const double value =
      type == "REAL" ? std::strtof(number.c_str(), nullptr) : std::strtod(number.c_str(), nullptr);
  return number.empty() ? "" : fmt::format("{:.9g}", value);
}

TEST_F(Records, AgreeWithTheIndependentReader) {
  for (const std::string name :
       {"ARBOR.EGRID", "ARBOR.INIT", "ARBOR.UNRST", "ARBORF.FEGRID", "ARBORF.FINIT", "ARBORF.FRFT",
        "ARBORF.FUNRST", "ARBORFM.A0003", "ARBORFM.F0003", "ARBORM.S0003", "ARBORM.X0003", "HOLLIN.RFT"}) {
    SCOPED_TRACE(name);
    const auto expected = parseCsv(content(sample("expected/" + name + ".records.csv")));
    const auto rows = csv("records --stats @" + name.substr(0, name.find('.')) + "/" + name);
    ASSERT_EQ(rows.size(), expected.size());
    for (std::size_t i = 1; i < rows.size(); ++i) {
      const auto& [row, wanted] = std::tie(rows[i], expected[i]);
      ASSERT_EQ((std::vector{row[0], row[1], row[2]}), (std::vector{wanted[0], wanted[1], wanted[2]}));
      for (const std::size_t side : {0U, 1U})
        ASSERT_EQ(nineDigits(row[4 + side], row[1]), nineDigits(wanted[3 + side], row[1])) << row[0];
    }
  }
}

TEST_F(Records, ValuesThatAreNoNumbersLeaveTheOthersTheirExtremes) {
  constexpr float none = std::numeric_limits<float>::quiet_NaN();
  std::vector<std::byte> bytes;
  RecordWriter writer(memorySink(bytes), test::bigEndian);
  writer.singles("MIXED", std::array{none, 2.5F, none, -1.0F});
  writer.singles("NONE", std::array{none, none});
  writer.singles("BEYOND", std::array{1.0F, std::numeric_limits<float>::infinity()});
  write("ANY.BIN", bytes);
  EXPECT_THAT(run("records --stats --format csv ~ANY.BIN").out,
              HasSubstr("MIXED,REAL,4,0,-1,2.5\r\nNONE,REAL,2,48,,\r\nBEYOND,REAL,2,88,1,inf\r\n"));
  EXPECT_TRUE(json("records --stats ~ANY.BIN")[2]["max"].is_null());
}

/// Damage at `flip` in copies of ARBOR.INIT (INTEHEAD of 411 words, LOGIHEAD, DOUBHEAD, PORV from 4056 on).
TEST_F(Records, DamagedFilesGiveTheirWholeRecords) {
  const std::string whole = content(sample("ARBOR/ARBOR.INIT"));
  const struct {
    std::size_t keep, flip;  // bytes of the file; byte to invert, 0: none
    int status;
    std::size_t rows;
    const char* message;
  } damages[] = {
      {5000, 0, 3, 3,
       "(PORV, occurrence 1, byte 4080: expected 300 elements, found 920 bytes); listed the 3"},
      {4060, 0, 3, 3, "record truncated (byte 4056: expected 24 bytes, found 4); listed the 3 records"},
      {100, 0, 1, 0, "byte 24: expected 411 elements, found 76 bytes); nothing can be listed"},
      {whole.size(), 4059, 3, 21, "(byte 4056: expected 16, found 239); skipped bytes 4056 to "},
      {0, 0, 1, 0, "BAD.INIT: "},
  };
  for (const auto& damage : damages) {
    std::string bytes = whole.substr(0, damage.keep);
    if (damage.flip) bytes[damage.flip] = static_cast<char>(~bytes[damage.flip]);
    store(file("BAD.INIT"), bytes);
    const auto listed = run("records --stats --format csv ~BAD.INIT");
    EXPECT_EQ(listed.status, damage.status);
    EXPECT_EQ(std::ranges::count(listed.out, '\n'), damage.rows + (damage.rows > 0)) << damage.message;
    EXPECT_THAT(listed.err, HasSubstr(damage.message));
    EXPECT_EQ(std::ranges::count(listed.err, '\n'), 1);
  }
  std::string grid = content(sample("HOLLIN/HOLLIN.EGRID"));
  grid[grid.find("ZCORN") + 24 + 4003] ^= 1;  // closing mark of its first block
  store(file("BAD.EGRID"), grid);
  EXPECT_EQ(run("records ~BAD.EGRID").status, 0) << "headers only";
  const auto partial = run("records --stats --format csv ~BAD.EGRID");
  EXPECT_EQ(partial.status, 3);
  EXPECT_THAT(partial.err, HasSubstr("block marks disagree (ZCORN, occurrence 1, byte"));
  EXPECT_THAT(partial.out, ::testing::ContainsRegex("ZCORN,REAL,[0-9]+,[0-9]+,,\r\nACTNUM"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
