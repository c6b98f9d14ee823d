#include <bit>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/Error.h"
#include "run/Run.h"
#include "support/Host.h"
#include "support/ModelRun.h"
#include "support/WriterCase.h"

namespace lumbarn::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

using Bits = std::vector<std::uint32_t>;

Bits bitsOf(std::span<const float> values) {
  Bits bits;
  for (const float value : values) bits.push_back(std::bit_cast<std::uint32_t>(value));
  return bits;
}

std::vector<std::string> namesOf(const Schema& schema) {
  std::vector<std::string> names;
  for (const Field& field : schema) names.push_back(field.name);
  return names;
}

class RunSummary : public ::testing::TestWithParam<WriterCase> {
 protected:
  const Writer& writer_ = GetParam().writer;
  const ModelRun files_{writer_, GetParam().form.form};
  const lumbarn::Run run_ = lumbarn::Run::open(files_.specificationPath);
  /// Batches of two rows, and the good rows of a run in progress.
  const ReadOptions options_{.limits = {.rows = 2}, .keepPartial = true};
};
INSTANTIATE_TEST_SUITE_P(Writers, RunSummary, ::testing::ValuesIn(everyCase()), [](const auto& one) {
  return std::string(one.param.writer.name) + one.param.form.name;
});

TEST_P(RunSummary, IsTheTableThatHostsFetch) {
  for (const bool chain : {false, true}) {
    Host host;
    host.reader.AcceptDamaged = true;
    host.reader.NoRestart = !chain;
    host.reader.zExcept = "COPR*";  // a table with connections has no rows of earlier runs
    ASSERT_TRUE(host.load(files_.specificationPath, 12) && host.fetchSummary());
    SummarySelection selection{.except = {"COPR*"}, .chain = chain, .keepDuplicates = true, .dates = true};
    auto stream = run_.summary(selection, options_);
    const Batch table = std::move(stream).collect();
    ASSERT_EQ(table.columns(), host.table.columns() + 1);
    ASSERT_EQ(table.rows(), host.table.rows());
    const auto& vectors = host.reader.Vectors();
    for (std::size_t i = 0; i < vectors.size(); ++i) {
      const Column column = table[i + 1];
      EXPECT_EQ(bitsOf(column.values<float>()), bitsOf(host.table.column(i + 1))) << vectors[i].name;
      EXPECT_EQ(column.field().unit, vectors[i].units);
      EXPECT_THAT(column.field().metadata,
                  Contains(std::pair<std::string, std::string>("mnemonic", vectors[i].mnemonic)));
    }
    const auto dates = host.reader.RowDates(host.table);
    for (std::size_t row = 0; row < dates.size(); ++row)
      EXPECT_EQ(table[0].values<std::int64_t>()[row], dates[row].time_since_epoch().count());

    selection.keys = true;
    const Batch keyed = run_.summary(selection, options_).collect();
    EXPECT_EQ(keyed.columns(), table.columns() + 1) << "step, date and days instead of DATE and TIME";
    for (std::size_t row = 0; row < keyed.rows(); ++row) {
      EXPECT_EQ(keyed["step"].values<std::int32_t>()[row], host.reader.Rows()[row].iReportStep);
      const float days = host.table(row + 1, 1) / (writer_.units == 3 ? 24.0F : 1.0F);
      EXPECT_EQ(keyed["days"].values<float>()[row], days);
    }
  }
}

TEST_P(RunSummary, HasARowAtTheDateOfEachReportStep) {
  const Batch table = run_.summary({.dates = true}, options_).collect();
  const auto moments = table["DATE"].values<std::int64_t>();
  const std::vector<std::int64_t> dates(moments.begin(), moments.end());
  auto steps = run_.steps(options_);
  if (writer_.running) steps.pop_back();  // its row is not complete
  for (const StepInfo& step : steps) {
    if (step.number == 0) continue;  // the initial state
    ASSERT_TRUE(step.date);
    EXPECT_THAT(dates, Contains(step.date->time_since_epoch().count())) << step.number;
  }
}

TEST_P(RunSummary, ColumnsAreInTheOrderRequested) {
  const auto shown = [&](std::vector<std::string> vectors, std::vector<std::string> except = {}) {
    auto all = namesOf(run_.summary({.vectors = std::move(vectors), .except = std::move(except)}).schema());
    return all;
  };
  EXPECT_THAT(shown({"W?PR:*", "fopr"}).back(), "FOPR");
  EXPECT_THAT(shown({"FOPR,TIME"}), ElementsAre("TIME", "FOPR"));
  EXPECT_THAT(shown({"FOPR"}, {"TIME"}), ElementsAre("FOPR"));
  EXPECT_THAT(namesOf(run_.summary({.vectors = {"FOPR"}, .keys = true}).schema()),
              ElementsAre("step", "date", "days", "FOPR"));
  const Batch listed = run_.vectors().collect();
  const auto columns = run_.summary().schema();
  ASSERT_EQ(listed.rows(), columns.size());
  for (std::size_t i = 0; i < listed.rows(); ++i) EXPECT_EQ(listed["name"].text(i), columns[i].name);
}

class OddSummary : public ::testing::Test {
 protected:
  /// Rows of 1,500 values, so that each row has two blocks: three steps of two rows, in one file or in three.
  void write(bool unified) {
    SummaryBuilder builder;
    builder.vectors = {{"TIME", "", 0, "DAYS"}};
    for (int i = 1; i < 1500; ++i) builder.vectors.push_back({"WOPR", "P" + std::to_string(i)});
    for (int row = 0; row < 6; ++row) {
      std::vector<float> values(1500, static_cast<float>(row));
      builder.rows.push_back({std::move(values), row % 2 == 0});
    }
    builder.write(folder_, "RUN", bigEndian, unified);
  }
  /// Damages the mark between the two blocks of a row of a file.
  void damage(const std::string& name, std::int64_t row) {
    std::string why;
    auto records = openRecords(folder_.file(name), why);
    while (records->next() && !(records->header().keyword == "PARAMS" && records->occurrence() == row)) {
    }
    const std::uint64_t mark = records->header().dataAt + 4 + 4000;
    std::fstream file(folder_.file(name), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(mark));
    file.write("\x7F", 1);
  }
  /// The times of the rows that a stream delivers, and the kind of error that ends it.
  std::pair<std::vector<float>, std::optional<Error::Kind>> timesOf(const SummarySelection& selection,
                                                                    const ReadOptions& options = {}) {
    std::vector<float> times;
    try {
      auto stream = lumbarn::Run::open(folder_.file("RUN")).summary(selection, options);
      while (const auto batch = stream.next()) {
        const auto values = (*batch)[0].values<float>();
        times.insert(times.end(), values.begin(), values.end());
        if (times.size() == stopAt_) stop_.request_stop();
      }
    } catch (const Error& error) {
      return {times, error.kind()};
    }
    return {times, std::nullopt};
  }

  const TemporaryFolder folder_;
  std::stop_source stop_;
  std::size_t stopAt_ = 0;
};

TEST_F(OddSummary, DeliversTheGoodRowsBeforeTheErrorOfDamage) {
  const ReadOptions small{.limits = {.rows = 4}};
  write(true);
  damage("RUN.UNSMRY", 4);
  EXPECT_EQ(timesOf({}, small), std::pair(std::vector<float>{0, 1, 2}, std::optional(Error::Kind::Damaged)));
  EXPECT_EQ(timesOf({}, {.keepPartial = true}).second, std::nullopt);
  EXPECT_EQ(timesOf({.time = {.steps = {{1, 1}}}}, small).second, std::nullopt) << "rows that are not read";
  std::filesystem::remove(folder_.file("RUN.UNSMRY"));
  write(false);
  damage("RUN.S0002", 2);
  EXPECT_EQ(timesOf({}, small),
            std::pair(std::vector<float>{0, 1, 2, 4, 5}, std::optional(Error::Kind::Damaged)));
}

TEST_F(OddSummary, EndsWhenAStopIsRequested) {
  write(true);
  stopAt_ = 2;
  EXPECT_EQ(timesOf({}, {.stop = stop_.get_token(), .limits = {.rows = 2}}),
            std::pair(std::vector<float>{0, 1}, std::optional(Error::Kind::Cancelled)));
}

TEST_F(OddSummary, AnswersSeveralThreads) {
  write(false);
  const lumbarn::Run run = lumbarn::Run::open(folder_.file("RUN"));
  std::array<Bits, 4> answers;
  {
    std::vector<std::jthread> threads;
    for (std::size_t n = 0; n < answers.size(); ++n) {
      threads.emplace_back([&, n] {
        for (int round = 0; round < 20; ++round) {
          const std::string name = "WOPR:P" + std::to_string(n + 1);
          const Batch table = run.summary({.vectors = {name}}, {.limits = {.rows = 1}}).collect();
          answers[n] = bitsOf(table[name].values<float>());
        }
      });
    }
  }
  for (const Bits& answer : answers) EXPECT_EQ(answer, bitsOf(std::array<float, 6>{0, 1, 2, 3, 4, 5}));
}

TEST_F(OddSummary, RefusesWhatItCannotAnswer) {
  write(true);
  const struct {
    SummarySelection selection;
    Error::Kind kind;
    const char* text;
  } rows[] = {
      {{.vectors = {"FOPR"}}, Error::Kind::NotFound, "no vector matches \"FOPR\""},
      {{.vectors = {"WOPR:P1", " , "}}, Error::Kind::BadRequest, "empty"},
      {{.vectors = {"WOPR:P1"}, .except = {"*"}}, Error::Kind::BadRequest, "all vectors are omitted"},
      {{.time = {.steps = {{7, 9}}}}, Error::Kind::NotFound, "it has 1:3"},
      {{.time = {.at = parseMoment("2014-12-31")}}, Error::Kind::NotFound, "from 2015-01-01T00:00:00"},
  };
  for (const auto& row : rows) {
    try {
      lumbarn::Run::open(folder_.file("RUN")).summary(row.selection);
      ADD_FAILURE() << row.text;
    } catch (const Error& error) {
      EXPECT_EQ(error.kind(), row.kind) << row.text;
      EXPECT_THAT(error.what(), ::testing::HasSubstr(row.text));
    }
  }
}

}  // namespace
}  // namespace lumbarn::test
