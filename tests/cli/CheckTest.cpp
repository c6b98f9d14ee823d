#include <fmt/format.h>

#include "CommandTest.h"
#include "support/SummaryBuilder.h"

namespace lumbarn::cli::testing {
namespace {

struct Check : CommandTest {
  /// A small run that is clean.
  void writeRun(const std::string& name, const char* restart = "") const {
    test::SummaryBuilder builder;
    builder.vectors = {{"TIME", "", 0, "DAYS"}, {"FOPR", "", 0, "SM3/DAY"}};
    builder.rows = {{{1, 2}}, {{2, 3}, false}, {{3, 4}}};
    builder.restart = restart;
    builder.write(folder_, name, test::bigEndian);
  }
};

TEST_F(Check, RowsThatDoNotFitTheirRun) {
  writeRun("RUN");
  EXPECT_EQ(run("check ~RUN").status, 0);
  EXPECT_EQ(json("check ~RUN"), nlohmann::json::array());

  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), test::bigEndian);
  out.integers("SEQHDR", std::array{2});
  out.integers("MINISTEP", std::array{0});
  out.singles("PARAMS", std::array{1.0F, 2.0F, 3.0F});
  out.integers("MINISTEP", std::array{0});
  out.singles("PARAMS", std::array{1.0F, 2.0F});
  out.singles("PARAMS", std::array{0.5F, 2.0F});
  out.integers("MINISTEP", std::array{1});
  out.integers("SEQHDR", std::array{1});
  out.integers("MINISTEP", std::array{2});
  write("RUN.UNSMRY", bytes);
  const Outcome outcome = run("check ~RUN");
  EXPECT_EQ(outcome.status, 3);
  for (const char* finding :
       {"summary row does not fit its specification (PARAMS, occurrence 1, byte 72: expected 2 values, found "
        "3)",
        "TIME decreases (PARAMS, occurrence 3, byte 192: expected at least 1, found 0.5)",
        "summary row without a number (PARAMS, occurrence 3, byte 192: expected MINISTEP before it)",
        "summary row is not whole (SEQHDR, occurrence 2, byte 268: expected PARAMS, found SEQHDR)",
        "summary row is not whole (MINISTEP, byte 304: expected PARAMS behind it, found end of file)"})
    EXPECT_THAT(outcome.out, HasSubstr(finding));
  EXPECT_THAT(outcome.out, ::testing::Not(HasSubstr("does not rise"))) << "writers number as they like";
}

TEST_F(Check, DamageInOneFileDoesNotHideTheOthers) {
  copy("ARBOR/ARBOR.SMSPEC", "RUN.SMSPEC");
  copy("ARBOR/ARBOR.UNSMRY", "RUN.UNSMRY", 5000);
  const std::string restart = content(sample("ARBOR/ARBOR.UNRST"));
  store(file("RUN.UNRST"), restart + restart);
  store(file("RUN.INIT"), "");
  const Outcome some = run("check ~RUN");
  EXPECT_EQ(some.status, 3);
  const std::string data = file("RUN.UNSMRY");
  EXPECT_THAT(some.out, ::testing::StartsWith(
                            file("RUN.SMSPEC") + ": 8 records, clean\n" + data +
                            ": record truncated (PARAMS, occurrence 8, byte 4816: expected 149 elements, "
                            "found 184 bytes); stopped behind 18 records\n" +
                            data + ": 18 records, 1 finding\n" + file("RUN.UNRST") +
                            ": number does not rise (SEQNUM, occurrence 16, byte " +
                            std::to_string(restart.size()) + ": expected more than 14, found 0)\n"));
}

TEST_F(Check, FilesThatDoNotBelongTogether) {
  writeRun("LATER", "GONE");
  copy("ARBOR/ARBOR.SMSPEC", "ALONE.SMSPEC");
  copy("ARBOR/ARBOR.UNSMRY", "DATA.UNSMRY");
  copy("ARBOR/ARBOR.EGRID", "WRONG.INIT");
  for (const auto& [name, problem] : {std::pair{"LATER", "GONE"},
                                      {"ALONE", "no summary data go with it"},
                                      {"DATA", "no specification goes with it"},
                                      {"WRONG", "content is not what the name says"}}) {
    const Outcome found = run(std::string("check ~") + name);
    EXPECT_EQ(found.status, 3) << name;
    EXPECT_THAT(found.out, HasSubstr(problem));
    EXPECT_LE(std::ranges::count(found.out, '\n'), 3) << "other findings: " << found.out;
  }
}

TEST_F(Check, SaveFilesAndTheirFacts) {
  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), test::bigEndian);
  for (const std::int32_t step : {2, 3, 4}) {
    std::vector<std::int32_t> head(140);
    head[38] = head[84] = step;
    head[85] = 7;
    head[86] = 2031;
    head[139] = 2012;
    out.integers("DYNAMIC", std::array{1});
    out.integers("INTEHEAD", head);
    out.doubles("DOUBHEAD", std::array{30.0});
  }
  write("RUN.SAVE", bytes);
  EXPECT_EQ(json("info ~RUN.SAVE")["save"], nlohmann::json::parse(R"({"steps": 3, "first_step": 2,
      "last_step": 4, "first_date": "2031-07-02", "last_date": "2031-07-04", "simulator": 300,
      "version": 2012})"));
  EXPECT_EQ(run("check ~RUN.SAVE").out, file("RUN.SAVE") + ": 9 records, clean\n");
}

}  // namespace
}  // namespace lumbarn::cli::testing
