#pragma once

#include <string>
#include <vector>

#include "Host.h"
#include "restart/MarkerTable.h"

namespace lumbarn::test {

/// A host that loads one restart set.
struct RestartLoad : Host {
  explicit RestartLoad(const std::string& file) : Host(file, 11) {}
  /// Fetches one step, from 1, of one grid.
  bool fetch(std::int32_t step, std::int32_t iGrid = 1) {
    bool qOK = false;
    reader.iGridNumber = iGrid;
    reader.GetRESTARTSEQUENCEFODb(step, table, headers, source, markers, nMarkers, places, qFOD, qOK);
    return qOK;
  }
  std::vector<std::int32_t> steps() const {
    std::vector<std::int32_t> numbers;
    for (const auto& step : reader.RestartSteps()) numbers.push_back(step.iSeqnum);
    return numbers;
  }
  std::vector<std::string> names(std::int32_t step = 1, std::int32_t iGrid = 1) const {
    std::vector<std::string> all;
    const auto* held = reader.RestartGrid(step, iGrid);
    if (!held) return all;
    for (const auto& array : held->arrays.arrays()) all.push_back(array.name);
    return all;
  }
  std::vector<float> values(std::string_view name, std::int32_t step = 1, std::int32_t iGrid = 1) const {
    const auto view = reader.RestartValues(step, iGrid, name);
    return {view.begin(), view.end()};
  }

  std::vector<std::byte> markers;
  std::int32_t nMarkers = 0;
  ColumnTable<std::int32_t> places;
  bool qFOD = false;
};

}  // namespace lumbarn::test
