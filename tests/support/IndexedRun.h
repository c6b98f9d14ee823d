#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "Forms.h"
#include "TemporaryFolder.h"

namespace lumbarn::test {

/// A small run with local grids: restart steps and an INIT file of several passes, in any form.
///
/// The global grid has 3 x 2 x 2 cells, of which 3, 7 and 12 are inactive; the local ones 2 x 2 x 1, all
/// active. PRESSURE of active cell n (from 0) in step s is 100 s + n, 1000 more in the first local grid and
/// 2000 more in the second.
struct IndexedRun {
  std::vector<std::int32_t> steps = {1, 2, 5};
  std::vector<std::string> localGrids = {"LGR1", "NEAR WELL"};
  static constexpr std::array<std::int32_t, 3> size{3, 2, 2};
  static constexpr std::int32_t active = 9;

  static std::vector<std::int32_t> head(const std::array<std::int32_t, 3>& cells, std::int32_t nActive,
                                        std::int32_t step) {
    std::vector<std::int32_t> words(411);
    words[2] = 1;
    for (std::size_t axis = 0; axis < 3; ++axis) words[8 + axis] = cells[axis];
    words[11] = nActive;
    words[64] = 1 + step;
    words[65] = 7;
    words[66] = 2003;
    words[68] = step;
    words[94] = 100;
    words[206] = 6;
    words[207] = 30;
    words[410] = 1500000;
    return words;
  }

  static std::vector<float> pressures(std::int32_t step, std::size_t grid, std::int32_t count) {
    std::vector<float> values;
    for (std::int32_t n = 0; n < count; ++n)
      values.push_back(static_cast<float>(100 * step + n) + 1000.0F * static_cast<float>(grid));
    return values;
  }

  std::vector<std::byte> step(std::int32_t number, Form form, bool unified) const {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), form);
    if (unified) out.integers("SEQNUM", std::array{number});
    out.integers("INTEHEAD", head(size, active, number));
    out.logicals("LOGIHEAD", std::array{true, false});
    out.doubles("DOUBHEAD", std::array{number + 0.25, -1e300});
    out.integers("ICON", std::vector<std::int32_t>(12, 7));
    out.texts("ZWEL", std::array<std::string, 2>{"P1", "I1"});
    out.message("STARTSOL");
    out.singles("PRESSURE", pressures(number, 0, active));
    out.integers("REGION", std::array{1, 2, 3, 4, 5, 6, 7, 8, 16777217});
    out.singles("FULL", pressures(number, 0, 12));
    out.message("ENDSOL");
    for (std::size_t i = 0; i < localGrids.size(); ++i) {
      const auto width = static_cast<int>(std::max<std::size_t>(8, localGrids[i].size()));
      out.texts("LGR", std::array{localGrids[i]}, width);
      out.integers("INTEHEAD", head({2, 2, 1}, 4, number));
      out.doubles("DOUBHEAD", std::array{number + 0.25});
      out.singles("PRESSURE", pressures(number, i + 1, 4));
      out.message("ENDLGR");
    }
    return bytes;
  }

  /// Static arrays: global, local grids, global again, local grids without a header, global at last.
  std::vector<std::byte> init(Form form) const {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), form);
    out.integers("INTEHEAD", head(size, active, 0));
    out.singles("PORV", std::array<float, 12>{1, 1, 0, 1, 1, 1, 0, 1, 1, 1, 1, 0});
    out.singles("PORO", pressures(0, 0, active));
    eachGrid(out, [&](std::size_t grid) {
      out.integers("INTEHEAD", head({2, 2, 1}, 4, 0));
      out.singles("PORV", pressures(1, grid, 4));
    });
    out.integers("TABDIMS", std::vector<std::int32_t>(48));
    out.integers("PVTNUM", std::vector<std::int32_t>(active, 3));
    eachGrid(out, [&](std::size_t) { out.integers("PVTNUM", std::vector<std::int32_t>(4, 4)); });
    out.singles("TRANNNC", std::array{0.5F});
    return bytes;
  }

  /// Writes BASE.UNRST, or BASE.X0001 and so on, and gives the paths.
  std::vector<std::string> writeRestart(const TemporaryFolder& folder, const std::string& base, Form form,
                                        bool unified) const {
    std::vector<std::byte> all;
    std::vector<std::string> paths;
    for (const std::int32_t number : steps) {
      const auto bytes = step(number, form, unified);
      all.insert(all.end(), bytes.begin(), bytes.end());
      if (unified) continue;
      paths.push_back(
          folder.file(base + (form.formatted() ? ".F" : ".X") + std::to_string(10000 + number).substr(1)));
      writeFile(paths.back(), bytes);
    }
    if (!unified) return paths;
    paths.push_back(folder.file(base + (form.formatted() ? ".FUNRST" : ".UNRST")));
    writeFile(paths.back(), all);
    return paths;
  }

 private:
  template <class Write>
  void eachGrid(RecordWriter& out, Write write) const {
    for (std::size_t i = 0; i < localGrids.size(); ++i) {
      out.texts("LGR", std::array{localGrids[i]},
                static_cast<int>(std::max<std::size_t>(8, localGrids[i].size())));
      write(i + 1);
    }
    out.message("LGRSGONE");
  }
};

}  // namespace lumbarn::test
