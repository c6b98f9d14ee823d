#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "Forms.h"

namespace lumbarn::test {

/// Makes the grids of a run, as an EGRID file or as a GRID file. Cells are boxes of 100 by 50 by 10, but
/// pillars lean by `lean` for each 10 of depth; the depth of the top is 1000 plus 5 for each column along I,
/// so that neighbours do not meet.
struct GridBuilder {
  struct Grid {
    std::array<std::int32_t, 3> size = {3, 2, 2};
    std::vector<std::int32_t> activity = {};  ///< as ACTNUM; empty: none is written
    std::string name = {};                    ///< empty: the global grid
    std::string parent = {};
    std::vector<std::int32_t> hosts = {};
    std::vector<std::int32_t> coarse = {};
    std::int32_t angles = 0;                                   ///< word 27 of GRIDHEAD
    std::array<std::int32_t, 6> place = {};                    ///< words 28 to 33
    std::vector<std::array<std::int32_t, 2>> reservoirs = {};  ///< layers of each; empty: one, untold
    bool halfDepths = false;                                   ///< depths of the upper half only
    float x = 0;                                               ///< of the first pillar
    std::vector<std::int32_t> nnc1 = {}, nnc2 = {}, nncl = {}, nncg = {};

    std::int32_t cells() const { return size[0] * size[1] * size[2]; }
    bool isActive(std::int32_t cell) const {
      return activity.empty() || activity[static_cast<std::size_t>(cell)] > 0;
    }
  };
  std::vector<Grid> grids = {Grid{}};
  std::int32_t fileType = 0;                  ///< word 5 of FILEHEAD
  std::int32_t dualPorosity = 0;              ///< word 6
  std::array<std::int32_t, 3> headSize = {};  ///< when set, what the last GRIDHEAD says instead
  bool endGrid = true;
  std::vector<std::int32_t> nna1 = {}, nna2 = {};  ///< between the last local grid and the one before
  float lean = 1;
  std::vector<float> mapAxes = {};
  std::vector<std::string> gridUnit = {"METRES", ""};
  std::string mapUnit = {};
  bool orientation = false;    ///< GDORIENT is written
  bool omitsInactive = false;  ///< inactive cells have no records in a GRID file

  static float top(std::int32_t i, std::int32_t k) {
    return 1000.0F + 5.0F * static_cast<float>(i) + 10.0F * static_cast<float>(k);
  }
  /// x, y, z of a corner of cell i, j, k (from 0), worked out without pillars.
  std::array<double, 3> corner(const Grid& grid, std::int32_t i, std::int32_t j, std::int32_t k,
                               int n) const {
    const double z = static_cast<double>(top(i, k)) + ((n >> 2) != 0 ? 10 : 0);
    const double x =
        static_cast<double>(grid.x) + 100.0 * (i + (n & 1)) + static_cast<double>(lean) * (z - 900) / 10;
    return {x, 50.0 * (j + (n >> 1 & 1)), z};
  }

  std::vector<float> coord(const Grid& grid) const {
    std::vector<float> values;
    const std::size_t sets = grid.reservoirs.empty() ? 1 : grid.reservoirs.size();
    for (std::size_t r = 0; r < sets; ++r) {
      // Each further reservoir lies 10,000 to the side, so that mixing them up shows.
      const float x0 = grid.x + 10000.0F * static_cast<float>(r);
      for (std::int32_t j = 0; j <= grid.size[1]; ++j) {
        for (std::int32_t i = 0; i <= grid.size[0]; ++i) {
          const float x = x0 + 100.0F * static_cast<float>(i);
          const float y = 50.0F * static_cast<float>(j);
          values.insert(values.end(), {x, y, 900.0F, x + 20 * lean, y, 1100.0F});
        }
      }
    }
    return values;
  }
  std::vector<float> zcorn(const Grid& grid) const {
    std::vector<float> values;
    const std::int32_t layers = grid.halfDepths ? grid.size[2] / 2 : grid.size[2];
    for (std::int32_t plane = 0; plane < 2 * layers; ++plane) {
      for (std::int32_t line = 0; line < 2 * grid.size[1]; ++line) {
        for (std::int32_t p = 0; p < 2 * grid.size[0]; ++p) {
          values.push_back(top(p / 2, plane / 2) + (plane % 2 != 0 ? 10.0F : 0.0F));
        }
      }
    }
    return values;
  }

  std::vector<std::byte> egrid(const Form& form) const {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), form);
    std::vector<std::int32_t> head(40, 0);
    head[0] = 3;
    head[1] = 2007;
    head[4] = fileType;
    head[5] = dualPorosity;
    out.integers("FILEHEAD", head);
    writeUnits(out);
    for (const Grid& grid : grids) writeEGrid(out, grid);
    writeConnections(out);
    return bytes;
  }

  std::vector<std::byte> grid(const Form& form) const {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), form);
    for (const Grid& one : grids) writeGrid(out, one);
    writeConnections(out);
    return bytes;
  }

 private:
  void writeUnits(RecordWriter& out) const {
    if (!mapUnit.empty()) out.texts("MAPUNITS", std::array{mapUnit});
    if (!mapAxes.empty()) out.singles("MAPAXES", mapAxes);
    out.texts("GRIDUNIT", gridUnit);
    if (orientation) out.texts("GDORIENT", std::array<std::string, 5>{"INC", "INC", "INC", "DOWN", "RIGHT"});
  }
  void writeEGrid(RecordWriter& out, const Grid& grid) const {
    if (!grid.name.empty()) {
      out.texts("LGR", std::array{grid.name});
      out.texts("LGRPARNT", std::array{grid.parent});
    }
    std::vector<std::int32_t> head(40, 0);
    head[0] = 1;
    for (std::size_t n = 0; n < 3; ++n) head[n + 1] = grid.size[n];
    if (headSize != std::array<std::int32_t, 3>{} && &grid == &grids.back()) {
      for (std::size_t n = 0; n < 3; ++n) head[n + 1] = headSize[n];
    }
    if (dualPorosity > 0) head[3] /= 2;
    head[24] = static_cast<std::int32_t>(grid.reservoirs.size());
    head[26] = grid.angles;
    std::ranges::copy(grid.place, head.begin() + 27);
    out.integers("GRIDHEAD", head);
    out.singles("COORD", coord(grid));
    if (!grid.reservoirs.empty()) {
      std::vector<std::int32_t> words;
      for (const auto& [first, last] : grid.reservoirs) words.insert(words.end(), {first, last, 0, 0, 0, 0});
      out.integers("COORDSYS", words);
    }
    out.singles("ZCORN", zcorn(grid));
    if (!grid.activity.empty()) out.integers("ACTNUM", grid.activity);
    if (!grid.coarse.empty()) out.integers("CORSNUM", grid.coarse);
    if (!grid.hosts.empty()) out.integers("HOSTNUM", grid.hosts);
    if (endGrid) out.integers("ENDGRID", {});
    if (!grid.name.empty()) out.integers("ENDLGR", {});
  }
  void writeGrid(RecordWriter& out, const Grid& grid) const {
    if (!grid.name.empty()) {
      out.texts("LGR", std::array{grid.name, grid.parent.empty() ? std::string("global") : grid.parent});
    }
    out.integers("DIMENS", grid.size);
    out.texts("RADIAL", std::array{std::string(grid.angles > 0 ? "TRUE" : "FALSE")});
    writeUnits(out);
    std::int32_t cell = 0;
    for (std::int32_t k = 0; k < grid.size[2]; ++k) {
      for (std::int32_t j = 0; j < grid.size[1]; ++j) {
        for (std::int32_t i = 0; i < grid.size[0]; ++i, ++cell) {
          if (omitsInactive && !grid.isActive(cell)) continue;
          const auto host = grid.hosts.empty() ? 0 : grid.hosts[static_cast<std::size_t>(cell)];
          out.integers("COORDS",
                       std::array{i + 1, j + 1, k + 1, cell + 1, grid.isActive(cell) ? 1 : 0, host, 0});
          std::vector<float> row;
          for (int n = 0; n < 8; ++n) {
            for (const double value : corner(grid, i, j, k, n)) row.push_back(static_cast<float>(value));
          }
          out.singles("CORNERS", row);
        }
      }
    }
  }
  void writeConnections(RecordWriter& out) const {
    std::int32_t number = 0;
    for (const Grid& grid : grids) {
      if (!grid.nnc1.empty() || !grid.nncl.empty()) {
        out.integers("NNCHEAD", std::array{static_cast<std::int32_t>(grid.nnc1.size()), number});
      }
      if (!grid.nnc1.empty()) {
        out.integers("NNC1", grid.nnc1);
        out.integers("NNC2", grid.nnc2);
      }
      if (!grid.nncl.empty()) {
        out.integers("NNCL", grid.nncl);
        out.integers("NNCG", grid.nncg);
      }
      ++number;
    }
    if (nna1.empty()) return;
    out.integers("NNCHEADA", std::array{number - 1, number - 2});
    out.integers("NNA1", nna1);
    out.integers("NNA2", nna2);
  }
};

}  // namespace lumbarn::test
