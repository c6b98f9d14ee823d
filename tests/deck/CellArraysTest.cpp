#include <bit>
#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "deck/CellArrays.h"
#include "run/Decks.h"
#include "support/Paths.h"
#include "support/TemporaryFolder.h"

namespace lumbarn::test {
namespace {

constexpr const char* samples[] = {"ARBOR/ARBOR",     "ARBORF/ARBORF", "ARBORM/ARBORM",
                                   "ARBORFM/ARBORFM", "CEDAR/CEDAR",   "CEDAR/CEDAR_R1",
                                   "CEDAR/CEDAR_R2",  "HOLLIN/HOLLIN", "MAPLE/MAPLE"};

/// Units in the last place of singles between two numbers.
std::int64_t distance(float a, float b) {
  const auto order = [](float value) {
    const auto bits = std::bit_cast<std::int32_t>(value);
    return bits < 0 ? std::int64_t{std::numeric_limits<std::int32_t>::min()} - bits : std::int64_t{bits};
  };
  return std::abs(order(a) - order(b));
}

struct Loaded {
  Session session;
  std::string said;
  explicit Loaded() {
    session.diagnosisSink = [this](const Diagnosis& diagnosis) { said += diagnosis.text() + "\n"; };
  }
};

TEST(DeckArrays, AreThoseThatTheSimulatorComputedFromTheDeck) {
  for (const std::string sample : samples) {
    const std::string path = examplePath("/data/") + sample;
    const Deck deck = Deck::open(path + ".DATA");
    const lumbarn::Run run = lumbarn::Run::open(path);
    for (const std::string name :
         {"PORO", "NTG", "PERMX", "PERMY", "PERMZ", "SATNUM", "PVTNUM", "EQLNUM", "FIPNUM"}) {
      Loaded loaded;
      const DeckArray array = effectiveArray(deck, name, loaded.session);
      EXPECT_EQ(loaded.said, "") << sample << name;
      const Batch init = run.cells({.arrays = {name}, .init = true, .ijk = true}).collect();
      const auto cells = std::array{init["i"].doubles(), init["j"].doubles(), init["k"].doubles()};
      const auto values = init[name].doubles();
      for (std::size_t row = 0; row < values.size(); ++row) {
        const auto cell =
            ((cells[2][row] - 1) * array.size[1] + cells[1][row] - 1) * array.size[0] + cells[0][row] - 1;
        const double value = array.values[static_cast<std::size_t>(cell)];
        ASSERT_LE(distance(static_cast<float>(value), static_cast<float>(values[row])), 1)
            << sample << name << row;
      }
    }
  }
}

TEST(DeckArrays, CornersAreThoseOfTheGridFile) {
  for (const std::string sample : samples) {
    const std::string path = examplePath("/data/") + sample;
    const Dense grid = deckCorners(Deck::open(path + ".DATA"));
    ASSERT_EQ(grid.components, 24);
    const auto* corners = static_cast<const float*>(grid.data.get());
    const Batch file = lumbarn::Run::open(path).corners().collect();
    const auto cells = std::array{file["i"].doubles(), file["j"].doubles(), file["k"].doubles()};
    const auto wanted = file["corners"].values<float>();
    for (std::size_t row = 0; row < file.rows(); ++row) {
      const auto cell = static_cast<std::size_t>(
          ((cells[2][row] - 1) * static_cast<double>(grid.shape[1]) + cells[1][row] - 1) *
              static_cast<double>(grid.shape[2]) +
          cells[0][row] - 1);
      for (std::size_t i = 0; i < 24; ++i)
        ASSERT_LE(distance(corners[24 * cell + i], wanted[24 * row + i]), 1) << sample << " row " << row;
    }
  }
}

/// A grid of 3 x 2 x 2 cells with some more text, and what becomes of its PORO.
struct Case {
  const char* text;
  std::vector<double> values;  ///< -1: nothing sets it
  const char* said;            ///< a part of what is reported
};

TEST(DeckArrays, OperationsApplyInTheirBoxes) {
  const std::string front = "DIMENS\n 3 2 2 /\nGRID\n";
  const Case cases[] = {
      {"PORO\n6*1 3*2 3* /\n", {1, 1, 1, 1, 1, 1, 2, 2, 2, -1, -1, -1}, ""},
      {"BOX\n 2 3 1 1 2 2 /\nPORO\n5 6 /\nENDBOX\nADD\n PORO 1 3 3 1 1 2 2 /\n PORO 1 /\n/\n",
       {-1, -1, -1, -1, -1, -1, -1, 5, 8, -1, -1, -1},
       ""},
      // The box of the record before, item by item; that of another keyword does not count.
      {"EQUALS\n PORO 1 /\n PORO 2 1 1 1* 2 2 2 /\n poro 3 /\n/\nMULTIPLY\n PORO 2 /\n/\n",
       {2, 2, 2, 2, 2, 2, 6, 2, 2, 6, 2, 2},
       ""},
      {"EQUALS\n PERMX 4 /\n FLUXNUM 1 /\n FLUXNUM 2 1 3 2 2 1 2 /\n/\nCOPYREG\n PERMX PORO 2 F "
       "/\n/\nADDREG\n PORO 1 1 F/\n"
       " PORO 1 2 FLUXNUM /\n/\nMULTIREG\n PORO 2 2 F /\n/\n",
       {-1, -1, -1, 10, 10, 10, -1, -1, -1, 10, 10, 10},
       ""},
      {"EQUALS\n PERMX 4 /\n/\nOPERATE\n PORO 1 3 1 2 1 1 'MULTA' PERMX 2 1 /\n PORO 1 3 1 2 2 2 MULTX PERMX "
       "3 /\n"
       " PORO 6* NONSENSE PERMX /\n/\n",
       {9, 9, 9, 9, 9, 9, 12, 12, 12, 12, 12, 12},
       "found NONSENSE"},
      {"EQUALS\n PORO 1 /\n PORO 5 1 1 1 1 1 1 /\n/\nCOPYBOX\n PORO 1 1 1 1 1 1 3 3 2 2 2 2 /\n/\nMAXVALUE\n "
       "PORO 4 /\n/\n"
       "MINVALUE\n PORO 2 2 2 1 1 1 1/\n/\n",
       {4, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1, 4},
       ""},
      {"PORO\n 11*1 /\n", {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, -1}, "line 4, byte 21: expected 12, found 11"},
      {"PORO\n 1000000000000000000*1 /\n", {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, "expected 12, found more"},
      {"EQUALS\n PORO 1 /\n PORO 2 1 4 1 1 1 1 /\n/\n",
       {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1},
       "found PORO 2 1 4 1 1 1 1"},
      {"PORO\n 4*1 2 x 7 /\n",
       {1, 1, 1, 1, 2, -1, -1, -1, -1, -1, -1, -1},
       "line 5, byte 33: expected a number, found x"},
      {"RADFIN\n R 1 1 1 1 2 1 1 /\nPORO\n2*7 /\nENDFIN\nPORO\n12*3 /\n",
       {3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3},
       ""},
      {"CARFIN\n L 1 1 1 1 1 1 2 1 1 /\nPORO\n2*7 /\nENDFIN\nPORO\n12*3 /\n",
       {3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3},
       ""},
  };
  const TemporaryFolder folder;
  for (const Case& row : cases) {
    std::ofstream(folder.file("R.DATA")) << front << row.text;
    Loaded loaded;
    const Deck deck = Deck::open(folder.file("R.DATA"));
    std::vector<double> values = effectiveArray(deck, "poro", loaded.session).values;
    for (double& value : values) value = std::isnan(value) ? -1 : value;
    EXPECT_EQ(values, row.values) << row.text;
    EXPECT_TRUE(*row.said ? loaded.said.find(row.said) != std::string::npos : loaded.said.empty())
        << loaded.said;
  }
  for (const auto& [row, grid] : {std::pair(10, "R"), std::pair(11, "L")}) {
    std::ofstream(folder.file("R.DATA")) << front << cases[row].text;
    Loaded loaded;
    EXPECT_EQ(effectiveArray(Deck::open(folder.file("R.DATA")), "PORO", loaded.session, grid).values,
              (std::vector<double>{7, 7}));
  }
}

TEST(DeckArrays, NumbersAreReadAsTheyAreWritten) {
  const TemporaryFolder folder;
  const auto read = [&](const std::string& text, std::string& said) {
    std::ofstream(folder.file("R.DATA")) << "DIMENS\n9 1 1 /\nGRID\nPORO\n" << text;
    Stream stream = Deck::open(folder.file("R.DATA"))
                        .arrayAsWritten("PORO", {.report = [&](const Diagnosis& one) { said += one.text(); },
                                                 .keepPartial = true});
    std::vector<double> values;
    while (const auto batch = stream.next()) {
      for (const double value : (*batch)["PORO"].doubles()) values.push_back(std::isnan(value) ? -9 : value);
    }
    return values;
  };
  struct Row {
    const char* text;
    std::vector<double> values;
    const char* said;
  };
  for (const Row& row : {Row{"1,2\t.5 1D1 -- 7\n2*2.5D1 1e-1/ 8\n", {1, 2, 0.5, 10, 25, 25, 0.1}, ""},
                         Row{"1 2\r\n-3 4", {1, 2, -3, 4}, ""}, Row{"1* 2 /\n", {-9, 2}, ""},
                         Row{"1 x2 3 /\n", {1}, "line 5, byte 27: expected a number, found x2"},
                         Row{"1\n99999999999999999999*1 /\n", {1}, "a repeat count of"}}) {
    std::string said;
    EXPECT_EQ(read(row.text, said), row.values) << row.text;
    EXPECT_EQ(*row.said == 0, said.empty()) << said;
    EXPECT_NE(said.find(row.said), std::string::npos) << said;
  }
}

}  // namespace
}  // namespace lumbarn::test
