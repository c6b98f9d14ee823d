#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "Forms.h"
#include "TemporaryFolder.h"
#include "Writer.h"

namespace lumbarn::test {

/// Makes restart files, unified or multiple, in any form.
struct RestartBuilder {
  struct Array {
    std::string name;
    std::vector<float> values;
    bool integers = false;
  };
  struct Well {
    std::string name;
    std::vector<std::array<std::int32_t, 3>> connections;
    std::map<std::size_t, std::int32_t> iwel;  ///< words of its IWEL block, beside 1, 2 and 5
  };
  struct Grid {
    std::string name;  ///< of a local grid; empty: the global grid
    std::array<std::int32_t, 3> size = {2, 2, 1};
    std::int32_t nActive = 4;
    std::vector<Array> arrays;
    std::vector<Well> wells;
    bool solution = true;  ///< False: headers and wells only
  };
  struct Step {
    std::int32_t number = 0;
    double days = 0;
    std::array<std::int32_t, 3> date = {1, 1, 2015};
    std::vector<Grid> grids = {Grid()};
    std::int32_t headNumber = -1;  ///< word 69 when it differs from the number
  };
  using GridEnd = Writer::GridEnd;

  std::vector<Step> steps;
  std::int32_t units = 1;
  std::int32_t phases = 7;
  std::size_t headerWords = 411;
  std::map<std::size_t, std::int32_t> head;  ///< words of every INTEHEAD; these win over all others
  bool seqnum = true;                        ///< in a unified file
  bool dualPorosity = false;
  GridEnd gridEnd = GridEnd::Message;
  std::int32_t nIWELZ = 30;
  std::int32_t nSWELZ = 75;
  std::int32_t nXWELZ = 90;
  std::int32_t nZWELZ = 3;
  std::int32_t nICONZ = 25;
  std::int32_t nSCONZ = 40;
  std::int32_t nCWMAX = 3;
  Writer writer = {};  ///< habits beside these

  /// Word `word` of block `block` in SWEL, XWEL and SCON, both from 1.
  static float blockWord(std::size_t block, std::size_t word) {
    return static_cast<float>(block * 1000 + word);
  }
  /// A unified file.
  std::vector<std::byte> bytes(Form form) const {
    std::vector<std::byte> all;
    RecordWriter out(memorySink(all), form);
    if (writer.ownRecord) out.texts(writer.ownRecord, std::array<std::string, 1>{writer.ownRecord});
    for (const Step& step : steps) {
      if (seqnum) out.integers("SEQNUM", std::array{step.number});
      write(out, step);
    }
    return all;
  }
  /// The file of one step of a multiple set.
  std::vector<std::byte> bytes(Form form, const Step& step) const {
    std::vector<std::byte> all;
    RecordWriter out(memorySink(all), form);
    if (writer.seqnumInStepFiles) out.integers("SEQNUM", std::array{step.number});
    write(out, step);
    return all;
  }

  /// Writes ROOT.UNRST, or ROOT.X0001 and so on, with the extensions that go with the form. Gives the path of
  /// the unified file or of the first step's.
  std::string write(const TemporaryFolder& folder, const std::string& root, Form form,
                    bool unified = true) const {
    if (unified) {
      const std::string path = folder.file(root + (form.formatted() ? ".FUNRST" : ".UNRST"));
      writeFile(path, bytes(form));
      return path;
    }
    const char* letter = form.formatted() ? "F" : "X";
    for (const Step& step : steps) writeFile(folder.stepFile(root, letter, step.number), bytes(form, step));
    return folder.stepFile(root, letter, steps.at(0).number);
  }

  std::vector<std::int32_t> intehead(const Step& step, const Grid& grid) const {
    const auto wells = static_cast<std::int32_t>(grid.wells.size());
    const auto number = step.headNumber < 0 ? step.number : step.headNumber;
    const auto& [nx, ny, nz] = grid.size;
    const auto& [day, month, year] = step.date;
    std::map<std::size_t, std::int32_t> words = {{3, units},
                                                 {9, nx},
                                                 {10, ny},
                                                 {11, nz},
                                                 {12, grid.nActive},
                                                 {15, phases},
                                                 {17, wells},
                                                 {18, nCWMAX},
                                                 {19, wells > 0},
                                                 {25, nIWELZ},
                                                 {26, nSWELZ},
                                                 {27, nXWELZ},
                                                 {28, nZWELZ},
                                                 {33, nICONZ},
                                                 {34, nSCONZ},
                                                 {35, 1},
                                                 {40, 2},
                                                 {65, day},
                                                 {66, month},
                                                 {67, year},
                                                 {69, number},
                                                 {95, writer.program}};
    for (const auto& [word, value] : head) words[word] = value;
    std::vector<std::int32_t> header(headerWords);
    for (const auto& [word, value] : words) {
      if (word <= headerWords) header[word - 1] = value;
    }
    return header;
  }

  void write(RecordWriter& out, const Step& step) const {
    for (const Grid& grid : step.grids) {
      if (!grid.name.empty()) out.texts("LGR", std::array{grid.name});
      out.integers("INTEHEAD", intehead(step, grid));
      if (writer.logicalWords > 0) writeLogicals(out);
      if (writer.doubleWords > 0) writeDoubles(out, step);
      if (!grid.wells.empty()) writeWells(out, grid);
      if (writer.solutionMarks && grid.solution) out.message("STARTSOL");
      for (const Array& array : grid.arrays) write(out, array);
      if (writer.solutionMarks && grid.solution) out.message("ENDSOL");
      if (!grid.name.empty()) endGrid(out, gridEnd);
    }
  }
  static void endGrid(RecordWriter& out, GridEnd end) {
    if (end == GridEnd::Message) return out.message("ENDLGR");
    out.integers("ENDLGR", std::vector<std::int32_t>(end == GridEnd::OneInteger ? 1 : 0));
  }

 private:
  static void write(RecordWriter& out, const Array& array) {
    if (array.integers) {
      out.integers(array.name, std::vector<std::int32_t>(array.values.begin(), array.values.end()));
    } else {
      out.singles(array.name, array.values);
    }
  }
  void writeLogicals(RecordWriter& out) const {
    std::array<bool, 150> words{};
    words[14] = dualPorosity;
    out.logicals("LOGIHEAD", std::span(words).first(writer.logicalWords));
  }
  void writeDoubles(RecordWriter& out, const Step& step) const {
    std::vector<double> words(writer.doubleWords);
    words.at(0) = step.days;
    out.doubles("DOUBHEAD", words);
  }

  template <class T>
  static std::vector<T> blocks(std::size_t count, std::int32_t words) {
    std::vector<T> all;
    for (std::size_t block = 1; block <= count; ++block) {
      for (std::size_t word = 1; word <= static_cast<std::size_t>(words); ++word) {
        all.push_back(static_cast<T>(blockWord(block, word)));
      }
    }
    return all;
  }
  std::vector<std::int32_t> iwel(const Grid& grid) const {
    std::vector<std::int32_t> all;
    for (const Well& well : grid.wells) {
      std::vector<std::int32_t> block(static_cast<std::size_t>(nIWELZ));
      const auto set = [&](std::size_t word, std::int32_t value) {
        if (word <= block.size()) block[word - 1] = value;
      };
      if (!well.connections.empty()) set(1, well.connections[0][0]), set(2, well.connections[0][1]);
      set(5, static_cast<std::int32_t>(well.connections.size()));
      for (const auto& [word, value] : well.iwel) set(word, value);
      all.insert(all.end(), block.begin(), block.end());
    }
    return all;
  }
  std::vector<std::int32_t> connectionWords(const Grid& grid) const {
    const auto slots = static_cast<std::size_t>(nCWMAX);
    const auto words = static_cast<std::size_t>(nICONZ);
    std::vector<std::int32_t> all(grid.wells.size() * slots * words);
    for (std::size_t well = 0; well < grid.wells.size(); ++well) {
      const auto& connections = grid.wells[well].connections;
      for (std::size_t slot = 0; slot < std::min(slots, connections.size()); ++slot) {
        const auto block = std::span(all).subspan((well * slots + slot) * words, words);
        for (std::size_t word = 1; word <= words; ++word) {
          const bool cell = word >= 2 && word <= 4;
          block[word - 1] = cell ? connections[slot][word - 2]
                                 : static_cast<std::int32_t>((well + 1) * 10000 + (slot + 1) * 100 + word);
        }
      }
    }
    return all;
  }
  std::vector<std::string> zwel(const Grid& grid) const {
    std::vector<std::string> all;
    for (const Well& well : grid.wells) {
      for (std::int32_t word = 0; word < nZWELZ; ++word) all.push_back(word == 0 ? well.name : "");
    }
    return all;
  }
  void writeWells(RecordWriter& out, const Grid& grid) const {
    const std::size_t wells = grid.wells.size();
    if (writer.doubleGroups) out.doubles("SGRP", std::array{1.5, 2.5});
    out.texts("ZGRP", std::array<std::string, 2>{"FIELD", ""});
    out.integers("IWEL", iwel(grid));
    out.singles("SWEL", blocks<float>(wells, nSWELZ));
    out.doubles("XWEL", blocks<double>(wells, nXWELZ));
    out.texts("ZWEL", zwel(grid), writer.nameWidth);
    if (!writer.icon) return;
    out.integers("ICON", connectionWords(grid));
    out.singles("SCON", blocks<float>(wells * static_cast<std::size_t>(nCWMAX), nSCONZ));
  }
};

}  // namespace lumbarn::test
