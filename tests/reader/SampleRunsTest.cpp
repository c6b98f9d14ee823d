#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "support/Paths.h"
#include "support/SummaryLoad.h"

namespace lumbarn {
namespace {

/// One table that an independent reader made of a sample run.
struct ExpectedTable {
  std::vector<std::string> names;
  std::vector<std::vector<float>> rows;
};

std::vector<std::string> csvFields(const std::string& line) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (const char c : line) {
    if (c == '"') {
      quoted = !quoted;
    } else if (c == ',' && !quoted) {
      fields.emplace_back();
    } else if (c != '\r') {
      fields.back() += c;
    }
  }
  return fields;
}

ExpectedTable expectedTable(const std::string& file) {
  ExpectedTable table;
  std::ifstream in(examplePath("/data/expected/") + file);
  std::string line;
  std::getline(in, line);
  table.names = csvFields(line);
  while (std::getline(in, line)) {
    auto& row = table.rows.emplace_back();
    for (const auto& field : csvFields(line)) {
      std::from_chars(field.data(), field.data() + field.size(), row.emplace_back());
    }
  }
  return table;
}

struct Sample {
  const char* file;
  const char* expected;
  bool chain = false;
};

using test::SummaryLoad;
const std::string data = examplePath("/data/");

class SampleRuns : public ::testing::TestWithParam<Sample> {};

/// Every value is that of the independent reader to the last bit, whether all or few vectors are loaded.
TEST_P(SampleRuns, HoldWhatTheIndependentReaderFound) {
  const auto expected = expectedTable(GetParam().expected);
  for (const std::vector<std::string>& patterns :
       {std::vector<std::string>{}, {"W*PR:PROD,W?PR:P1", "FOP?", "TIME"}}) {
    SummaryLoad load(data + GetParam().file);
    load.reader.NoRestart = !GetParam().chain;
    load.reader.VectorPatterns = patterns;
    ASSERT_TRUE(load.run());
    EXPECT_TRUE(load.session.diagnoses().empty()) << load.lastDiagnosis().text();
    ASSERT_EQ(load.table.rows(), expected.rows.size());
    const auto& vectors = load.reader.Vectors();
    EXPECT_EQ(vectors.front().name, "TIME");
    EXPECT_GT(vectors.size(), 3U);
    auto names = load.names();
    std::ranges::sort(names);
    if (patterns.empty()) {
      EXPECT_EQ(names, expected.names);
    }
    for (const auto& vector : vectors) {
      const auto found = std::ranges::find(expected.names, vector.name);
      ASSERT_NE(found, expected.names.end()) << vector.name;
      const auto column = static_cast<std::size_t>(found - expected.names.begin());
      for (std::size_t row = 0; row < expected.rows.size(); ++row) {
        ASSERT_EQ(load.table(row + 1, vector.column), expected.rows[row][column]) << vector.name << row;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Samples, SampleRuns,
                         ::testing::Values(Sample{"ARBOR/ARBOR.SMSPEC", "ARBOR.summary.csv"},
                                           Sample{"HOLLIN/HOLLIN.SMSPEC", "HOLLIN.summary.csv"},
                                           Sample{"CEDAR/CEDAR_R2.SMSPEC", "CEDAR_R2.chain.csv", true}),
                         [](const auto& sample) { return std::string(sample.param.file).substr(0, 5); });

/// Without the file's own rounding: formatted files hold 8 digits.
TEST(SampleRunForms, FormattedAndMultipleSetsHoldTheSameRun) {
  SummaryLoad multiple(data + "ARBORM/ARBORM.SMSPEC"), whole(data + "ARBORF/ARBORF.FSMSPEC"),
      both(data + "ARBORFM/ARBORFM.FSMSPEC");
  for (auto* load : {&multiple, &whole, &both}) {
    ASSERT_TRUE(load->run());
    EXPECT_EQ(load->reader.Unified, load == &whole);
    EXPECT_EQ(isoText(load->reader.RowDates(load->table).back()).substr(0, 4), "2016");
  }
  EXPECT_EQ(whole.table.rows(), both.table.rows());
  EXPECT_TRUE(std::ranges::equal(whole.table.values(), both.table.values()));
  EXPECT_EQ(multiple.table.columns(), whole.table.columns());
}

/// A thread to each session: a race would show under load as other values, or to a sanitizer.
TEST(SampleRunSessions, LoadSideBySide) {
  const std::string files[] = {"ARBOR/ARBOR.SMSPEC", "CEDAR/CEDAR_R2.SMSPEC", "HOLLIN/HOLLIN.SMSPEC"};
  std::array<std::vector<float>, 6> values;
  const auto loadOften = [&](std::size_t number) {
    for (int round = 0; round < 10; ++round) {
      SummaryLoad load(data + files[number % 3]);
      load.reader.zExcept = "CO*,CW*,CG*,CPR*";
      load.reader.NoRestart = false;
      if (!load.run()) return;
      values[number].assign(load.table.values().begin(), load.table.values().end());
    }
  };
  {
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < values.size(); ++i) threads.emplace_back(loadOften, i);
  }
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_GT(values[i].size(), 100U);
    EXPECT_EQ(values[i], values[i + 3]);
  }
}

TEST(SampleRunDates, TheTimeOfDayIsWhatTheDeckSays) {
  SummaryLoad load(data + "HOLLIN/HOLLIN.SMSPEC");
  ASSERT_TRUE(load.run());
  const auto dates = load.reader.RowDates(load.table);
  ASSERT_EQ(dates.size(), load.table.rows());
  EXPECT_EQ(isoText(dates.front()), "2001-07-02T00:00:00");
  EXPECT_EQ(isoText(dates.back()), "2003-07-15T06:30:00");
  EXPECT_EQ(std::get<std::string>(load.source(4)), "1 JUL 2001");
  EXPECT_EQ(std::get<std::int16_t>(load.source(7)), 1);
}

}  // namespace
}  // namespace lumbarn
