#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
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
    const std::pair<std::size_t, std::int32_t> stated[] = {
        {3, 1},     {9, cells[0]}, {10, cells[1]}, {11, cells[2]}, {12, nActive}, {65, 1 + step}, {66, 7},
        {67, 2003}, {69, step},    {95, 100},      {207, 6},       {208, 30},     {411, 1500000}};
    std::vector<std::int32_t> words(411);
    for (const auto& [word, value] : stated) words[word - 1] = value;
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
      beginGrid(out, i);
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
    std::vector<std::string> paths;
    if (unified) paths.push_back(folder.file(base + (form.formatted() ? ".FUNRST" : ".UNRST")));
    std::vector<std::byte> all;
    for (const std::int32_t number : steps) {
      if (!unified) all.clear();
      const auto bytes = step(number, form, unified);
      all.insert(all.end(), bytes.begin(), bytes.end());
      if (!unified) paths.push_back(folder.stepFile(base, form.formatted() ? "F" : "X", number));
      writeFile(paths.back(), all);
    }
    return paths;
  }

 private:
  void beginGrid(RecordWriter& out, std::size_t i) const {
    const auto width = static_cast<int>(std::max<std::size_t>(8, localGrids[i].size()));
    out.texts("LGR", std::array{localGrids[i]}, width);
  }
  template <class Write>
  void eachGrid(RecordWriter& out, Write write) const {
    for (std::size_t i = 0; i < localGrids.size(); ++i) {
      beginGrid(out, i);
      write(i + 1);
    }
    out.message("LGRSGONE");
  }
};

/// A unified file whose second array has a value for each of 65536 x 32769 cells, more than 2^31; all of its
/// data is a hole in the file.
inline std::string writeLargeRestart(const TemporaryFolder& folder) {
  constexpr std::uint64_t count = std::uint64_t{65536} * 32769;
  const std::string path = folder.file("LARGE.UNRST");
  std::vector<std::byte> start, end;
  RecordWriter out(memorySink(start), bigEndian);
  out.integers("SEQNUM", std::array{3});
  out.integers("INTEHEAD", IndexedRun::head({65536, 32769, 1}, 1, 3));
  out.header("PRESSURE", -1, "X231");
  out.header("PRESSURE", 65536, "REAL");
  RecordWriter(memorySink(end), bigEndian).singles("SWAT", std::array{0.5F, 0.25F});
  // The marks of the first and the last block, of 1000 and 184 elements.
  start.insert(start.end(), {std::byte{0}, std::byte{0}, std::byte{0x0F}, std::byte{0xA0}});
  end.insert(end.begin(), {std::byte{0}, std::byte{0}, std::byte{0x02}, std::byte{0xE0}});
  writeFile(path, start);
  const auto size = start.size() + 4 * count + 8 * (count / 1000 + 1) - 8;
  std::filesystem::resize_file(path, size);
  std::ofstream file(path, std::ios::binary | std::ios::app);
  file.write(reinterpret_cast<const char*>(end.data()), static_cast<std::streamsize>(end.size()));
  return path;
}

}  // namespace lumbarn::test
