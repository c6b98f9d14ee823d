#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/Error.h"
#include "run/Run.h"
#include "support/ModelRun.h"
#include "support/Paths.h"
#include "support/Text.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

struct RunTests : ::testing::Test {
  lumbarn::Run write(std::vector<WellTestBuilder::Test> tests) const {
    return lumbarn::Run::open(WellTestBuilder{std::move(tests)}.write(folder_, bigEndian));
  }
  static std::string refusal(const lumbarn::Run& run, const TestSelection& selection, Error::Kind kind) {
    try {
      run.testRows(selection);
    } catch (const Error& error) {
      EXPECT_EQ(error.kind(), kind) << error.what();
      return error.what();
    }
    return "nothing refused";
  }

  const TemporaryFolder folder_;
};

std::vector<std::string> texts(const Batch& table, std::string_view name) {
  const Column column = table[name];
  std::vector<std::string> all;
  for (std::size_t row = 0; row < column.size(); ++row) all.emplace_back(column.text(row));
  return all;
}

std::vector<std::string> namesAndUnits(const Schema& schema) {
  std::vector<std::string> all;
  for (const Field& field : schema) all.push_back(field.name + (field.unit.empty() ? "" : " " + field.unit));
  return all;
}

TEST_F(RunTests, AreThoseOfEveryWriter) {
  for (const Writer& writer : everyWriter) {
    for (const NamedForm& form : {everyForm[0], everyForm[1]}) {
      SCOPED_TRACE(std::string(writer.name) + form.name);
      const ModelRun model(writer, form.form);
      const auto run = lumbarn::Run::open(model.root());
      const bool two = writer.measured == Writer::Measured::TwoTests;
      const Batch list = run.tests().collect();
      ASSERT_EQ(list.rows(), two ? 2U : 1U);
      EXPECT_EQ(list["well"].text(0), toUtf8(writer.wells[0]));
      EXPECT_EQ(list["kinds"].text(0), two ? "RFT" : "RFT PLT");
      EXPECT_EQ(list["date"].values<std::int64_t>()[0],
                parseMoment("2015-01-11T06:00").time_since_epoch().count());
      const Batch rows = run.testRows({.numbers = {1}}).collect();
      for (const char* name : {"DEPTH", "PRESSURE", "SWAT"})
        EXPECT_THAT(rows[name].values<float>(), ElementsAre(modelValue(name, 0, 1), modelValue(name, 0, 2)));
      const Batch rates = run.testRows({.part = TestPart::Plt}).collect();
      EXPECT_EQ(rates["test"].values<std::int32_t>()[0], two ? 2 : 1);
      EXPECT_EQ(rates["CONWRAT"].values<float>()[1], modelValue("CONWRAT", 0, 2));
    }
  }
}

/// Three tests of A and one of B, a year apart; the last of A has other arrays, and B another unit.
TEST_F(RunTests, StandInOneTableWithTheArraysThatAnyHas) {
  auto other = WellTestBuilder::usualWelletc("B", "");
  other[4] = "ATMA";
  const auto run = write({{.well = "A", .arrays = arraysOf("DEPTH 1 2; PRESSURE 10 20")},
                          {.well = "A", .arrays = arraysOf("DEPTH 3; PRESSURE 30"), .date = {11, 6, 2015}},
                          {.well = "B", .arrays = arraysOf("DEPTH 4; PRESSURE 40"), .welletc = other},
                          {.well = "A", .arrays = arraysOf("DEPTH 5; SGAS 0.5"), .date = {11, 1, 2016}}});
  const Batch all = run.testRows().collect();
  EXPECT_THAT(namesAndUnits(all.schema()),
              ElementsAre("test", "well", "date", "DEPTH METRES", "PRESSURE BARSA", "SOIL", "COMPLETION",
                          "PRESSURE#2 ATMA", "SGAS"));
  EXPECT_THAT(texts(all, "well"), ElementsAre("A", "A", "A", "B", "A"));
  EXPECT_EQ(all["PRESSURE"].nullCount(), 2U);
  EXPECT_EQ(all["PRESSURE#2"].values<float>()[3], 40);

  const auto numbers = [&](const TestSelection& selection) {
    const Column column = run.tests(selection).collect()["test"];
    const auto rows = column.values<std::int32_t>();
    return std::vector<std::int32_t>(rows.begin(), rows.end());
  };
  TimeSelection yearly{.every = Every::Year};
  EXPECT_THAT(numbers({.time = {.last = true}}), ElementsAre(3, 4)) << "of each well";
  EXPECT_THAT(numbers({.time = yearly}), ElementsAre(2, 3, 4));
  EXPECT_THAT(numbers({.wells = {"a"}, .time = {.at = parseMoment("2015-12-31")}}), ElementsAre(2));
  EXPECT_THAT(numbers({.time = {.from = parseMoment("2015-06-01")}}), ElementsAre(2, 4));
  EXPECT_THAT(numbers({.numbers = {2, 3}}), ElementsAre(2, 3));

  constexpr auto missing = Error::Kind::NotFound;
  EXPECT_THAT(refusal(run, {.wells = {"X"}}, missing), HasSubstr("has no well \"X\"; it has A, B"));
  EXPECT_THAT(refusal(run, {.numbers = {5}}, missing), HasSubstr("has 4 tests, there is no test 5"));
  EXPECT_THAT(refusal(run, {.part = TestPart::Plt}, missing), HasSubstr("no PLT data"));
  EXPECT_THAT(refusal(run, {.time = {.from = parseMoment("2020-01-01")}}, missing),
              HasSubstr("2015-01-11T00:00:00 to 2016-01-11T00:00:00"));
  EXPECT_THAT(refusal(run, {.time = TimeSelection::parse("3")}, Error::Kind::BadRequest),
              HasSubstr("by date"));
}

TEST_F(RunTests, HaveNoValueWhereTheFileHasNone) {
  // -999 is a value like any other here; oil rates of segments and devices are not in the file.
  const auto run =
      write({{.arrays = arraysOf("SEGBRNO: 1 1 2; SEGLENST 0 10 20; SEGLENEN 10 20 20.1; SEGNXT: "
                                 "0 1 2; SEGPRES -999 1 2; BRNST: 1 3; BRNEN: 2 3")}});
  const Batch branch = run.testRows({.part = TestPart::Branch, .branch = 1}).collect();
  EXPECT_THAT(branch["SEGPRES"].values<float>(), ElementsAre(-999, 1));
  EXPECT_EQ(branch["SEGPRES"].nullCount(), 0U);
  EXPECT_EQ(branch["SEGORAT"].nullCount(), 2U);
  const Batch devices = run.testRows({.part = TestPart::Devices, .branch = 1}).collect();
  EXPECT_EQ(devices["SEGCORAT"].nullCount(), devices.rows());
  const Batch segments = run.testRows({.numbers = {1}, .part = TestPart::Segments, .plain = true}).collect();
  EXPECT_EQ(segments.schema()[0].name, "SEGNO");
  EXPECT_THAT(segments["SEGNXT"].values<std::int32_t>(), ElementsAre(0, 1, 2));
  const Batch values = run.testRows({.part = TestPart::All}).collect();
  EXPECT_THAT(texts(values, "value"),
              ElementsAreArray({"1", "1", "2", "0", "10", "20", "10", "20", "20.1", "0", "1", "2", "-999",
                                "1", "2", "1", "3", "2", "3"}));
}

TEST_F(RunTests, BehindDamageAreReadAndTheErrorComesLast) {
  WellTestBuilder builder;
  for (const char* well : {"A", "B", "C"})
    builder.tests.push_back({.well = well, .arrays = arraysOf("DEPTH 1 2; SWAT 0 1")});
  auto bytes = builder.bytes(bigEndian);
  std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 3 + 40), 12, std::byte{0xEE});
  writeFile(folder_.file("RUN.RFT"), bytes);
  const auto run = lumbarn::Run::open(folder_.file("RUN.RFT"));
  for (const TestPart part : {TestPart::Rft, TestPart::All}) {
    auto stream = run.testRows({.part = part});
    const auto batch = stream.next();
    ASSERT_TRUE(batch);
    EXPECT_THAT(texts(*batch, "well").front() + texts(*batch, "well").back(), "AC");
    EXPECT_THROW(stream.next(), Error);
  }
  writeFile(folder_.file("RUN.RFT"), std::vector(bytes.begin() + 30, bytes.begin() + 90));
  EXPECT_THROW(run.tests(), Error) << "nothing can be read";
}

TEST_F(RunTests, OfTextFilesAreAskedInTheSameWay) {
  const auto run = lumbarn::Run::open(examplePath("/data/measured/rft.txt"));
  const Batch list = run.tests({.wells = {"P1"}}).collect();
  EXPECT_THAT(texts(list, "origin"), ElementsAre("WIRELINE"));
  EXPECT_EQ(run.testRows({.wells = {"P?"}}).collect().rows(), 5U);
  EXPECT_THAT(refusal(run, {.part = TestPart::Branch, .branch = 1}, Error::Kind::NotFound),
              HasSubstr("test 1 has no branches"));
}

}  // namespace
}  // namespace lumbarn
