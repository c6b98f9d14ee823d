#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "Forms.h"
#include "TemporaryFolder.h"

namespace lumbarn::test {

/// Makes a file of well tests in any form.
struct WellTestBuilder {
  using Singles = std::vector<float>;
  using Integers = std::vector<std::int32_t>;
  using Texts = std::vector<std::string>;
  struct Array {
    std::string name;
    std::variant<Singles, Integers, Texts> values;
  };
  struct Test {
    std::string well = "A";
    std::vector<Array> arrays = {};
    std::string grid = {};
    float time = 10;
    Integers date = {11, 1, 2015};
    Texts welletc = {};  ///< the whole record; empty: the usual one with well and grid
  };

  std::vector<Test> tests;
  std::string timeUnit = "  DAYS";  ///< word 1 of WELLETC
  int nameWidth = 8;                ///< of the texts of WELLETC

  static Texts usualWelletc(const std::string& well, const std::string& grid,
                            const std::string& timeUnit = "  DAYS") {
    return {timeUnit, well,       grid,       " METRES", " BARSA", "R",        "MULTISEG", "SM3/DAY",
            "SM3/D",  "RM3/DAY ", " M/SEC  ", "",        "   CP",  " KG/SM3 ", "KG/DAY ",  "KG/KG"};
  }

  std::vector<std::byte> bytes(Form form) const {
    std::vector<std::byte> all;
    RecordWriter out(memorySink(all), form);
    for (const Test& test : tests) {
      out.singles("TIME", std::array{test.time});
      out.integers("DATE", test.date);
      out.texts("WELLETC", test.welletc.empty() ? usualWelletc(test.well, test.grid, timeUnit) : test.welletc,
                nameWidth);
      for (const Array& array : test.arrays) {
        if (const auto* singles = std::get_if<Singles>(&array.values)) out.singles(array.name, *singles);
        if (const auto* integers = std::get_if<Integers>(&array.values)) out.integers(array.name, *integers);
        if (const auto* texts = std::get_if<Texts>(&array.values)) out.texts(array.name, *texts);
      }
    }
    return all;
  }

  std::string write(const TemporaryFolder& folder, Form form) const {
    const std::string path = folder.file(form.formatted() ? "RUN.FRFT" : "RUN.RFT");
    writeFile(path, bytes(form));
    return path;
  }
};

/// Arrays from a text such as "DEPTH 1 2.5; CONIPOS: 3 4": those with a colon hold integers.
inline std::vector<WellTestBuilder::Array> arraysOf(const std::string& text) {
  std::vector<WellTestBuilder::Array> arrays;
  std::istringstream parts(text);
  for (std::string part; std::getline(parts, part, ';');) {
    std::istringstream words(part);
    std::string name;
    words >> name;
    std::vector<double> numbers;
    for (double number = 0; words >> number;) numbers.push_back(number);
    if (name.ends_with(':')) {
      name.pop_back();
      arrays.push_back({name, WellTestBuilder::Integers(numbers.begin(), numbers.end())});
    } else {
      arrays.push_back({name, WellTestBuilder::Singles(numbers.begin(), numbers.end())});
    }
  }
  return arrays;
}

}  // namespace lumbarn::test
