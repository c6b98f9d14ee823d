#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/JoinRuns.h"
#include "frame/Transforms.h"
#include "frame/Write.h"

namespace lumbarn::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class TextSink final : public Sink {
 public:
  void write(std::span<const std::byte> bytes) override {
    text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  }
  std::string text;
};

std::string csv(Stream stream, bool unitRow = false) {
  TextSink sink;
  write(std::move(stream), sink, {.format = Format::Csv, .unitRow = unitRow});
  std::erase(sink.text, '\r');
  return sink.text;
}

LocalMoment moment(int month, int day, int hour = 0) {
  using namespace std::chrono;
  return local_days(year(2001) / month / day) + hours(hour);
}

struct Row {
  std::int32_t step;
  LocalMoment date;
  std::optional<float> pressure;
  double rate;
};

const std::vector<Row> usual{{0, moment(1, 1), 4796.636F, 0},
                             {1, moment(1, 31), std::nullopt, 10},
                             {1, moment(1, 31, 12), 4000, 20},
                             {2, moment(2, 1), 3900, 20000},
                             {3, moment(5, 1), 3800, 5}};

/// A small table as a summary or a well question gives it; two rows a batch.
Stream table(const std::vector<Row>& rows, const std::string& pressureUnit = "PSIA",
             const ReadOptions& options = {.limits = {.rows = 2}}) {
  Schema schema{
      {.name = "step", .type = Type::Int32},
      {.name = "date", .type = Type::Timestamp},
      {.name = "days", .type = Type::Float64, .unit = "DAYS"},
      {.name = "WBHP:P1",
       .type = Type::Float32,
       .unit = pressureUnit,
       .metadata = {{"mnemonic", "WBHP"}, {"member", "P1"}}},
      {.name = "FGPR", .type = Type::Float64, .unit = "SM3/DAY", .metadata = {{"mnemonic", "FGPR"}}}};
  auto next = std::make_shared<std::size_t>(0);
  return streamOfRows(std::move(schema), std::make_shared<StreamContext>(options), [=](BatchBuilder& out) {
    for (; *next < rows.size() && !out.full(); ++*next) {
      const Row& row = rows[*next];
      out.set(0, row.step);
      out.set(1, row.date);
      out.set(2, static_cast<double>((row.date - moment(1, 1)).count()) / 86400e6);
      if (row.pressure) out.set(3, *row.pressure);
      out.set(4, row.rate);
      out.endRow();
    }
    return *next < rows.size();
  });
}

TEST(Transforms, RowsAreChosenAndNeverMade) {
  const auto steps = [](Stream stream) {
    const Batch all = std::move(stream).collect();
    const auto values = all["step"].values<std::int32_t>();
    return std::vector<std::int32_t>(values.begin(), values.end());
  };
  const auto even = [](const Batch& batch, std::size_t row) {
    return batch["step"].values<std::int32_t>()[row] % 2 == 0;
  };
  EXPECT_THAT(steps(where(table(usual), even)), ElementsAre(0, 2));
  EXPECT_THAT(steps(resample(table(usual), Every::Row)), ElementsAre(0, 1, 1, 2, 3));
  EXPECT_THAT(steps(resample(table(usual), Every::Day)), ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(steps(resample(table(usual), Every::Month)), ElementsAre(1, 2, 3));
  EXPECT_THAT(steps(resample(table(usual), Every::Quarter)), ElementsAre(2, 3));
  EXPECT_THAT(steps(resample(table(usual), Every::ReportStep)), ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(steps(resample(table({}), Every::Year)), ElementsAre());
  // All rows of the last moment stay, as those of several wells; each run has its own periods.
  std::vector<Row> twice;
  for (const Row& row : usual) twice.insert(twice.end(), 3, row);
  std::vector<NamedStream> runs;
  runs.push_back({"A", table(twice)});
  runs.push_back({"B", table(usual)});
  EXPECT_THAT(steps(resample(joinRuns(std::move(runs)), Every::Year)), ElementsAre(3, 3, 3, 3));
  EXPECT_THAT(csv(where(toLong(table(usual)), "member", {"P1", "P7"})), Not(HasSubstr("FGPR")));
  EXPECT_THROW(where(table(usual), "step", {"1"}), Error);
  EXPECT_THROW(where(table(usual), "well", {"P1"}), Error);
}

TEST(Transforms, UnitsAreConvertedAndTheLongFormTellsThem) {
  EXPECT_EQ(csv(convertUnits(table({usual[0], usual[1]}), Units::Metric), true),
            "step,date,days,WBHP:P1,FGPR\n,,DAYS,BARSA,SM3/DAY\n"
            "0,2001-01-01T00:00:00,0,330.71643,0\n1,2001-01-31T00:00:00,30,,10\n");
  Stream odd = convertUnits(table(usual, "STB/DAY/"), Units::SI);
  EXPECT_EQ(odd.schema()[3].unit, "STB/DAY/");
  EXPECT_EQ(odd.schema()[2].unit, "DAYS") << "the column is called days";
  ASSERT_EQ(odd.remarks().size(), 1U);
  EXPECT_THAT(odd.remarks()[0].text(), HasSubstr("STB/DAY/"));
  EXPECT_EQ(std::move(odd).collect()["WBHP:P1"].values<float>()[0], 4796.636F);
  Stream gas = convertUnits(table({usual[3]}), Units::Field);
  EXPECT_EQ(gas.schema()[4].unit, "MSCF/DAY");
  // Two types of values, so they are texts, each in the form of its type.
  EXPECT_EQ(csv(toLong(table({usual[0], usual[1]}))),
            "step,date,days,vector,mnemonic,member,value,unit\n"
            "0,2001-01-01T00:00:00,0,WBHP:P1,WBHP,P1,4796.636,PSIA\n"
            "0,2001-01-01T00:00:00,0,FGPR,FGPR,,0,SM3/DAY\n"
            "1,2001-01-31T00:00:00,30,FGPR,FGPR,,10,SM3/DAY\n");
  const Schema cells{{.name = "i", .type = Type::Int32},
                     {.name = "PRESSURE", .type = Type::Float32, .unit = "BARS"},
                     {.name = "SWAT", .type = Type::Float32}};
  const auto oneCell = [&](Schema schema) {
    return streamOfRows(std::move(schema), std::make_shared<StreamContext>(), [](BatchBuilder& out) {
      for (std::size_t c = 0; c < 3; ++c) out.set(c, static_cast<int>(c) + 1);
      out.endRow();
      return false;
    });
  };
  Stream values = toLong(oneCell(cells));
  EXPECT_EQ(values.schema()[2].type, Type::Float32);
  EXPECT_EQ(csv(std::move(values)), "i,array,value,unit\n1,PRESSURE,2,BARS\n1,SWAT,3,\n");
  EXPECT_EQ(csv(convertUnits(toLong(oneCell(cells)), Units::Field)),
            "i,array,value,unit\n1,PRESSURE,29.007547,PSI\n1,SWAT,3,\n");
  Schema told = cells;
  told[1].metadata = {{"role", "key"}};
  EXPECT_EQ(csv(toLong(oneCell(told))), "i,PRESSURE,array,value,unit\n1,2,SWAT,3,\n");
  told[0].metadata = told[1].metadata = told[2].metadata = {{"role", "key"}};
  EXPECT_THROW(toLong(oneCell(told)), Error);
}

Stream grids(const std::vector<std::string>& words, Type count) {
  Schema schema{{.name = "grid",
                 .type = Type::Dictionary,
                 .dictionary = std::make_shared<const std::vector<std::string>>(words)},
                {.name = "cells", .type = count}};
  return streamOfRows(std::move(schema), std::make_shared<StreamContext>(), [=](BatchBuilder& out) {
    for (std::size_t i = 0; i < words.size(); ++i) {
      out.set(0, static_cast<int>(i));
      out.set(1, 0.5 + static_cast<double>(i));
      out.endRow();
    }
    return false;
  });
}

TEST(JoinedRuns, HaveAllColumnsInOneUnitAndType) {
  std::vector<NamedStream> runs;
  runs.push_back({"A", table({usual[0]}, "BARSA")});
  runs.push_back({"B", table({usual[2]}, "PSIA")});
  runs.push_back({"C", grids({"ROOT"}, Type::Int32)});
  Stream joined = joinRuns(std::move(runs));
  EXPECT_EQ(joined.schema()[4].unit, "BARSA");
  const auto context = joined.context();
  EXPECT_EQ(csv(std::move(joined)),
            "run,step,date,days,WBHP:P1,FGPR,grid,cells\n"
            "A,0,2001-01-01T00:00:00,0,4796.636,0,,\n"
            "B,1,2001-01-31T12:00:00,30.5,275.79028,20,,\n"
            "C,,,,,,ROOT,0\n");
  EXPECT_EQ(context->remarks().size(), 1U) << "columns that runs lack are told once";

  std::vector<NamedStream> words;
  words.push_back({"A", grids({"ROOT", "L1"}, Type::Int32)});
  words.push_back({"B", grids({"L2", "ROOT"}, Type::Float32)});
  EXPECT_EQ(csv(joinRuns(std::move(words))), "run,grid,cells\nA,ROOT,0\nA,L1,1\nB,L2,0.5\nB,ROOT,1.5\n");

  std::vector<NamedStream> odd;
  odd.push_back({"A", table({usual[0]}, "BARSA")});
  odd.push_back({"B", table({usual[0]}, "SM3")});
  Stream without = joinRuns(std::move(odd));
  EXPECT_EQ((*without.next())["WBHP:P1"].nullCount(), 0U);
  EXPECT_EQ((*without.next())["WBHP:P1"].nullCount(), 1U);
  EXPECT_THROW(without.next(), Error) << "what does not fit is missing";
}

TEST(JoinedRuns, GoOnBehindDamageWhereTheHostKeepsWhatThereIs) {
  const auto runs = [](bool keep) {
    const auto damaged = [=] {
      return streamOfRows({{.name = "n", .type = Type::Int32}},
                          std::make_shared<StreamContext>(ReadOptions{.keepPartial = keep}),
                          [](BatchBuilder& out) -> bool {
                            out.set(0, 7);
                            out.endRow();
                            throw BadRecord({.message = Message::RecordDamaged, .path = "B.UNRST"});
                          });
    };
    std::vector<NamedStream> all;
    for (const char* name : {"A", "B"}) all.push_back({name, damaged()});
    return joinRuns(std::move(all));
  };
  Stream kept = runs(true);
  TextSink sink;
  write(std::move(kept), sink, {.format = Format::Csv});
  EXPECT_EQ(sink.text, "run,n\r\nA,7\r\nB,7\r\n");
  ASSERT_TRUE(kept.incomplete());
  EXPECT_EQ(kept.incomplete()->path, "B.UNRST");
  Stream bare = runs(false);
  EXPECT_TRUE(bare.next());
  EXPECT_THROW(bare.next(), Error);
}

}  // namespace
}  // namespace lumbarn::test
