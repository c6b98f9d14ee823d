#include <algorithm>
#include <fstream>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fast_float/fast_float.h>
#include <fmt/format.h>

#include "Baseline.h"
#include "Cases.h"
#include "deck/CellArrays.h"
#include "deck/Deck.h"
#include "deck/DeckGeometry.h"
#include "deck/DeckNumbers.h"
#include "support/Session.h"
#include "text/TextWindow.h"

namespace lumbarn::bench {

namespace {

constexpr std::size_t numbers = 10'000'000;
constexpr std::size_t side = 100;  // of the grid of a million cells
constexpr std::size_t wells = 1000;
constexpr std::size_t dates = 200;

template <class Write>
void writeOnce(const std::filesystem::path& path, Write write) {
  if (std::filesystem::exists(path)) return;
  std::ofstream out(path, std::ios::binary);
  write(out);
  out.close();
  require(out.good(), "a deck cannot be written");
}

/// Ten million numbers, eight on a line.
void writeArray(const std::filesystem::path& folder) {
  writeOnce(folder / "numbers.inc", [](std::ostream& out) {
    out << "PERMX\n";
    std::string line;
    for (std::size_t i = 0; i < numbers; ++i) {
      line += fmt::format("{:.4f}{}", static_cast<double>((i * 7919) % 100000) / 7, i % 8 == 7 ? "\n" : " ");
      if (line.size() > 65536) out << line, line.clear();
    }
    out << line << "/\n";
  });
  writeOnce(folder / "ARRAY.DATA", [](std::ostream& out) {
    out << "RUNSPEC\nDIMENS\n 1000 1000 10 /\nGRID\nINCLUDE\n 'numbers.inc' /\nPROPS\nREGIONS\n";
  });
  writeOnce(folder / "REPEATS.DATA", [](std::ostream& out) {
    out << "RUNSPEC\nDIMENS\n 1000 1000 10 /\nGRID\nPERMX\n";
    for (std::size_t i = 0; i < numbers / 1000; ++i) out << "1000*" << i << "\n";
    out << "/\n";
  });
}

void writeGrid(const std::filesystem::path& folder) {
  writeOnce(folder / "CORNERS.DATA", [](std::ostream& out) {
    out << fmt::format("RUNSPEC\nDIMENS\n {} {} {} /\nGRID\nCOORD\n", side, side, side);
    for (std::size_t j = 0; j <= side; ++j) {
      for (std::size_t i = 0; i <= side; ++i)
        out << fmt::format(" {}.25 {}.5 2000 {}.75 {}.5 3000\n", 100 * i, 100 * j, 100 * i, 100 * j);
    }
    out << "/\nZCORN\n";
    std::string line;
    for (std::size_t k = 0; k < 2 * side; ++k) {
      for (std::size_t corner = 0; corner < 4 * side * side; ++corner)
        line += fmt::format("{:.2f}{}",
                            2000 + 5.0 * static_cast<double>(k) + static_cast<double>(corner % 97) / 10,
                            corner % 8 == 7 ? "\n" : " ");
      out << line, line.clear();
    }
    out << "/\n";
  });
}

void writeSchedule(const std::filesystem::path& folder) {
  writeOnce(folder / "SCHEDULE.DATA", [](std::ostream& out) {
    out << "RUNSPEC\nSCHEDULE\n";
    for (std::size_t date = 0; date < dates; ++date) {
      out << "WCONHIST\n";
      for (std::size_t well = 0; well < wells; ++well)
        out << fmt::format(" 'W{}' OPEN ORAT {}.25 {} {} 1* 1* {} /\n", well, 500 + date, well, 40000 + well,
                           100 + date);
      out << fmt::format("/\nDATES\n 1 JAN {} /\n/\n", 1990 + date);
    }
  });
}

/// The same bytes through the same window, with line ends counted.
void countLines(const std::filesystem::path& path) {
  std::string why;
  TextWindow window(FileSource::open(path.string(), why));
  std::int64_t lines = 0;
  for (std::uint64_t at = 0; at < window.size();) {
    const std::string_view text = window.from(at);
    lines += std::count(text.begin(), text.end(), '\n');
    at += text.size();
  }
  benchmark::DoNotOptimize(lines);
}

/// The ends of all words, and what of them is a number; nothing is kept.
void parseWords(const std::filesystem::path& path) {
  std::string why;
  TextWindow window(FileSource::open(path.string(), why));
  double sum = 0;
  for (std::uint64_t at = 0; at < window.size();) {
    const std::string_view text = window.from(at);
    const char* end = text.data() + text.size();
    for (const char* word = text.data(); word != end;) {
      const char* behind = word;
      while (behind != end && static_cast<unsigned char>(*behind) > ' ') ++behind;
      double value = 0;
      if (behind != word) fast_float::from_chars(word, behind, value);
      sum += value;
      word = behind == end ? end : behind + 1;
    }
    at += text.size();
  }
  benchmark::DoNotOptimize(sum);
}

void list(const std::filesystem::path& path) {
  require(Deck::open(path.string()).keywords().size() == 6, "not all keywords came");
}

/// One pass over the numbers of the array, into singles.
void readArray(const std::filesystem::path& path) {
  const Deck deck = Deck::open(path.string());
  std::vector<float> values;
  values.reserve(numbers);
  for (const DeckKeyword& keyword : deck.keywords()) {
    if (keyword.name != "PERMX") continue;
    DeckNumbers all(deck.files(), keyword);
    for (auto runs = all.next(); !runs.empty(); runs = all.next()) {
      for (const DeckRun& run : runs)
        values.insert(values.end(), static_cast<std::size_t>(run.count), static_cast<float>(run.value));
    }
  }
  require(values.size() == numbers, "not all numbers came");
}

void fill() {
  std::vector<float> values(numbers);
  std::iota(values.begin(), values.end(), 0.0F);
  benchmark::DoNotOptimize(values.data());
}

void corners(const std::filesystem::path& path) {
  Session session;
  const auto rows = deckGeometry(Deck::open(path.string()), session).corners();
  require(rows.size() == 24 * side * side * side, "not all corners came");
}

void records(const std::filesystem::path& path) {
  Stream stream = Deck::open(path.string()).records("WCONHIST");
  std::size_t rows = 0;
  while (const auto batch = stream.next()) rows += batch->rows();
  require(rows == wells * dates, "not all records came");
}

}  // namespace

Family deckFamily(const std::filesystem::path& folder) {
  const auto file = [&](const char* name) { return folder / name; };
  Family family{.name = "deck",
                .writeFiles =
                    [folder] {
                      writeArray(folder);
                      writeGrid(folder);
                      writeSchedule(folder);
                    },
                .cases = {}};
  family.cases = {
      {.name = "deck/list",
       .against = "line ends counted",
       .goal = 1.3,
       .memoryGoal = 4 << 20,
       .body = [path = file("ARRAY.DATA")] { list(path); },
       .baseline = [path = file("numbers.inc")] { countLines(path); }},
      {.name = "deck/array",
       .against = "words parsed",
       .goal = 1.2,
       .body = [path = file("ARRAY.DATA")] { readArray(path); },
       .baseline = [path = file("numbers.inc")] { parseWords(path); }},
      {.name = "deck/repeats",
       .against = "40 MB filled",
       .goal = 1.3,
       .body = [path = file("REPEATS.DATA")] { readArray(path); },
       .baseline = [] { fill(); }},
      {.name = "deck/corners",
       .against = "words parsed",
       .body = [path = file("CORNERS.DATA")] { corners(path); },
       .baseline = [path = file("CORNERS.DATA")] { parseWords(path); }},
      {.name = "deck/records",
       .against = "words parsed",
       .goal = 2,
       .body = [path = file("SCHEDULE.DATA")] { records(path); },
       .baseline = [path = file("SCHEDULE.DATA")] { parseWords(path); }},
  };
  return family;
}

}  // namespace lumbarn::bench
