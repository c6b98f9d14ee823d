#include <algorithm>
#include <charconv>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "reader/qvEclipseReader.h"

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
  std::ifstream in(LUMBARN_EXAMPLES "/data/expected/" + file);
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

class SampleRuns : public ::testing::TestWithParam<Sample> {
 protected:
  void load(const std::vector<std::string>& patterns = {}) {
    reader_.FileName = std::string(LUMBARN_EXAMPLES "/data/") + GetParam().file;
    reader_.whichtype = 12;
    reader_.Silent = true;
    reader_.NoRestart = !GetParam().chain;
    reader_.VectorPatterns = patterns;
    reader_.ECLReadData(qOK_);
    ASSERT_TRUE(qOK_);
    reader_.GetSUMMARYData(xyData_, bHeaders_, vSourceData_, bOnly_, qOK_);
    ASSERT_TRUE(qOK_);
  }

  Session session_;
  qvEclipseReader reader_{session_};
  bool qOK_ = false;
  XYData xyData_;
  ByteTable bHeaders_;
  ByteTable bOnly_;
  SourceData vSourceData_;
};

TEST_P(SampleRuns, EveryValueIsThatOfTheIndependentReaderToTheLastBit) {
  load();
  const auto expected = expectedTable(GetParam().expected);
  ASSERT_EQ(xyData_.rows(), expected.rows.size());
  const auto& vectors = reader_.Vectors();
  for (std::size_t column = 0; column < expected.names.size(); ++column) {
    const auto found = std::ranges::find(vectors, expected.names[column], &SummaryVector::name);
    ASSERT_NE(found, vectors.end()) << expected.names[column];
    for (std::size_t row = 0; row < expected.rows.size(); ++row) {
      ASSERT_EQ(xyData_(row + 1, found->column), expected.rows[row][column])
          << found->name << " row " << row + 1;
    }
  }
  EXPECT_TRUE(session_.diagnoses().empty()) << session_.diagnoses().front().text();
}

TEST_P(SampleRuns, ASelectionGivesTheSameColumnsAndTheTime) {
  load({"W*PR:PROD,W?PR:P1", "FOP?"});
  const auto expected = expectedTable(GetParam().expected);
  ASSERT_EQ(xyData_.rows(), expected.rows.size());
  EXPECT_EQ(reader_.Vectors().front().name, "TIME");
  EXPECT_GT(reader_.Vectors().size(), 3U);
  for (const auto& vector : reader_.Vectors()) {
    const auto column = std::ranges::find(expected.names, vector.name) - expected.names.begin();
    for (std::size_t row = 0; row < expected.rows.size(); ++row) {
      ASSERT_EQ(xyData_(row + 1, vector.column), expected.rows[row][static_cast<std::size_t>(column)])
          << vector.name;
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
  std::vector<XYData> tables;
  for (const char* file : {"ARBORM/ARBORM.SMSPEC", "ARBORF/ARBORF.FSMSPEC", "ARBORFM/ARBORFM.FSMSPEC"}) {
    Session session;
    qvEclipseReader reader(session);
    reader.FileName = std::string(LUMBARN_EXAMPLES "/data/") + file;
    reader.whichtype = 12;
    reader.Silent = true;
    bool qOK = false;
    reader.ECLReadData(qOK);
    ASSERT_TRUE(qOK) << file;
    EXPECT_EQ(reader.Unified, std::string_view(file).find("FM") == std::string_view::npos &&
                                  std::string_view(file).find("M/") == std::string_view::npos);
    ByteTable headers, only;
    SourceData source;
    reader.GetSUMMARYData(tables.emplace_back(), headers, source, only, qOK);
    ASSERT_TRUE(qOK) << file;
    EXPECT_EQ(isoText(reader.RowDates(tables.back()).back()).substr(0, 4), "2016");
  }
  ASSERT_EQ(tables[1].rows(), tables[2].rows());
  EXPECT_TRUE(std::ranges::equal(tables[1].values(), tables[2].values()));
  ASSERT_EQ(tables[0].columns(), tables[1].columns());
}

TEST(SampleRunDates, TheTimeOfDayIsWhatTheDeckSays) {
  Session session;
  qvEclipseReader reader(session);
  reader.FileName = LUMBARN_EXAMPLES "/data/HOLLIN/HOLLIN.SMSPEC";
  reader.whichtype = 12;
  reader.Silent = true;
  bool qOK = false;
  reader.ECLReadData(qOK);
  XYData table;
  ByteTable headers, only;
  SourceData source;
  reader.GetSUMMARYData(table, headers, source, only, qOK);
  ASSERT_TRUE(qOK);
  const auto dates = reader.RowDates(table);
  ASSERT_EQ(dates.size(), table.rows());
  EXPECT_EQ(isoText(dates.front()), "2001-07-02T00:00:00");
  EXPECT_EQ(isoText(dates.back()), "2003-07-15T06:30:00");
  EXPECT_EQ(std::get<std::string>(source(4)), "1 JUL 2001");
  EXPECT_EQ(std::get<std::int16_t>(source(7)), 1);
}

}  // namespace
}  // namespace lumbarn
