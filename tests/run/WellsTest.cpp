#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/Error.h"
#include "run/Run.h"
#include "support/ModelRun.h"
#include "support/Text.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// One column of a table, as text where it is one, empty where there is no value.
std::vector<std::string> texts(const Batch& table, std::string_view name) {
  const Column column = table[name];
  std::vector<std::string> all;
  for (std::size_t row = 0; row < column.size(); ++row) all.emplace_back(column.text(row));
  return all;
}

/// A global grid with well A, and a local one with well B.
RestartBuilder twoGrids() {
  RestartBuilder run;
  const RestartBuilder::Grid global{.arrays = {{"SWAT", {0, 0, 0, 1}}},
                                    .wells = {{"A", {{1, 2, 1}}, {{7, 1}}}, {"\xD8-1", {{2, 2, 1}}, {}}}};
  auto local = global;
  local.name = "FINE";
  local.wells = {{"B", {{2, 2, 1}}, {{7, 4}}}};
  for (const std::int32_t number : {1, 2, 4})
    run.steps.push_back({.number = number, .grids = {global, local}});
  return run;
}

TEST(RunWells, HaveTheValuesOfEveryWriterAtEveryStep) {
  for (const Writer& writer : everyWriter) {
    for (const NamedForm& form : {everyForm[0], everyForm[1]}) {
      SCOPED_TRACE(std::string(writer.name) + form.name);
      const ModelRun model(writer, form.form);
      const auto steps = model.model.restartSteps();
      const auto run = lumbarn::Run::open(model.root());
      const Batch wells = run.wells().collect();
      ASSERT_EQ(wells.rows(), 2 * steps.size());
      const auto rate = wells["gas_rate"].values<double>();
      const auto connections = run.connections().collect();
      std::size_t line = 0;
      for (std::size_t row = 0; row < wells.rows(); ++row) {
        const std::size_t well = row % 2;
        const std::int32_t step = steps[row / 2];
        EXPECT_EQ(wells["step"].values<std::int32_t>()[row], step);
        if (writer.doubleWords > 0) {
          EXPECT_EQ(wells["days"].values<double>()[row], model.model.daysAt(step));
        }
        EXPECT_EQ(wells["well"].text(row), toUtf8(writer.wells[well]));
        EXPECT_EQ(wells["type"].text(row), well == 0 ? "producer" : "water injector");
        EXPECT_EQ(rate[row], static_cast<double>(RestartBuilder::blockWord(well + 1, 3)));
        EXPECT_FALSE(wells["pvt_table"].valid(row)) << "0 is no table";
        const auto cells = model.model.connections(well);
        for (std::size_t slot = 0; writer.icon && slot < cells.size(); ++slot, ++line) {
          EXPECT_EQ(connections["well"].text(line), toUtf8(writer.wells[well]));
          EXPECT_EQ(connections["k"].values<std::int32_t>()[line], cells[slot][2]);
          const auto block = well * static_cast<std::size_t>(writer.connectionSlots) + slot + 1;
          EXPECT_EQ(connections["kh"].values<float>()[line], RestartBuilder::blockWord(block, 4));
        }
      }
      EXPECT_EQ(connections.rows(), line);
      constexpr std::array units = {"RM3/DAY", "RB/DAY", "RCC/HR"};
      EXPECT_EQ(wells["reservoir_rate"].field().unit, units.at(static_cast<std::size_t>(writer.units - 1)));
    }
  }
}

TEST(RunWells, AreSelectedByNameGridAndStep) {
  const TemporaryFolder folder;
  const auto run = lumbarn::Run::open(twoGrids().write(folder, "W", bigEndian));
  EXPECT_THAT(texts(run.wells({.grid = "*", .time = TimeSelection::parse("2:3")}).collect(), "well"),
              ElementsAre("A", "\xC3\x98-1", "B"));
  const Batch fine = run.wells({.wells = {"b"}, .grid = "f*", .connections = true}).collect();
  EXPECT_THAT(texts(fine, "grid"), ElementsAre("FINE", "FINE", "FINE"));
  EXPECT_THAT(fine["step"].values<std::int32_t>(), ElementsAre(1, 2, 4));
  EXPECT_THAT(fine["j"].values<std::int32_t>(), ElementsAre(2, 2, 2));
  // Latin-1 in the file, UTF-8 on the command line.
  EXPECT_EQ(run.wells({.wells = {"\xC3\x98*"}}).collect().rows(), 3U);
  const auto refused = [&](const WellSelection& selection, Error::Kind kind) -> std::string {
    try {
      run.wells(selection);
    } catch (const Error& error) {
      EXPECT_EQ(error.kind(), kind);
      return error.what();
    }
    return "nothing refused";
  };
  EXPECT_THAT(refused({.wells = {"Q*"}}, Error::Kind::NotFound), HasSubstr("it has A, \xC3\x98-1"));
  EXPECT_THAT(refused({.grid = "RODT"}, Error::Kind::NotFound), HasSubstr("has no grid \"RODT\""));
  EXPECT_THAT(refused({.time = TimeSelection::parse("7")}, Error::Kind::NotFound), HasSubstr("1, 2, 4"));
  EXPECT_THAT(refused({.wells = {""}}, Error::Kind::BadRequest), HasSubstr("pattern"));
}

TEST(RunWells, HaveNoRateWhereTheSimulatorLeftAHugeNumber) {
  const TemporaryFolder folder;
  auto bytes = twoGrids().bytes(bigEndian);
  const auto name = bytesOf("XWEL    ");
  const auto words = std::search(bytes.begin(), bytes.end(), name.begin(), name.end()) + 24;
  words[2 * sizeof(double)] = std::byte{0x7E};  // exponent of the gas rate of the first well
  writeFile(folder.file("W.UNRST"), bytes);
  const Batch wells = lumbarn::Run::open(folder.file("W.UNRST")).wells().collect();
  EXPECT_EQ(wells["gas_rate"].nullCount(), 1U);
  EXPECT_FALSE(wells["gas_rate"].valid(0));
}

TEST(RunWells, HaveNoNumbersOfARecordThatDoesNotFit) {
  const TemporaryFolder folder;
  auto builder = twoGrids();
  builder.head = {{34, 7}};
  auto stream = lumbarn::Run::open(builder.write(folder, "W", bigEndian)).connections();
  const auto rows = stream.next();
  ASSERT_TRUE(rows);
  EXPECT_EQ(rows->rows(), 6U);
  EXPECT_EQ((*rows)["kh"].nullCount(), 6U);
  EXPECT_THAT((*rows)["j"].values<std::int32_t>(), ElementsAre(2, 2, 2, 2, 2, 2));
  try {
    stream.next();
    FAIL() << "the damage is not told";
  } catch (const Error& error) {
    EXPECT_EQ(error.diagnosis().keyword, "SCON");
    EXPECT_TRUE(error.diagnosis().offset);
  }
}

}  // namespace
}  // namespace lumbarn
