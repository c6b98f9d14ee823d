#pragma once

#include <string>
#include <vector>

#include "reader/qvEclipseReader.h"
#include "restart/MarkerTable.h"

namespace lumbarn::test {

/// A reader with a session of its own, set up for a silent restart load, and what it gave.
struct RestartLoad {
  explicit RestartLoad(const std::string& file) {
    reader.FileName = file;
    reader.whichtype = 11;
    reader.Silent = true;
    session.faultReporter = [this](std::string_view text) { faults.emplace_back(text); };
  }
  bool run() {
    bool qOK = false;
    reader.ECLReadData(qOK);
    return qOK;
  }
  /// Fetches one step, from 1, of one grid.
  bool fetch(std::int32_t step, std::int32_t grid = 1) {
    bool qOK = false;
    reader.iGridNumber = grid;
    reader.GetRESTARTSEQUENCEFODb(step, table, headers, source, markers, nMarkers, places, qFOD, qOK);
    return qOK;
  }
  std::vector<std::int32_t> steps() const {
    std::vector<std::int32_t> numbers;
    for (const auto& step : reader.RestartSteps()) numbers.push_back(step.iSeqnum);
    return numbers;
  }
  std::vector<std::string> names(std::int32_t step = 1, std::int32_t grid = 1) const {
    std::vector<std::string> all;
    const auto* held = reader.RestartGrid(step, grid);
    if (!held) return all;
    for (const auto& array : held->arrays.arrays()) all.push_back(array.name);
    return all;
  }
  std::vector<float> values(std::string_view name, std::int32_t step = 1, std::int32_t grid = 1) const {
    const auto view = reader.RestartValues(step, grid, name);
    return {view.begin(), view.end()};
  }
  /// Empty when there was none, so that a test that misses it fails by name.
  Diagnosis lastDiagnosis() const {
    return session.diagnoses().empty() ? Diagnosis{.message = Message::NotLoaded}
                                       : session.diagnoses().back();
  }

  Session session;
  qvEclipseReader reader{session};
  std::vector<std::string> faults;
  XYData table;
  ByteTable headers;
  SourceData source;
  std::vector<std::byte> markers;
  std::int32_t nMarkers = 0;
  ColumnTable<std::int32_t> places;
  bool qFOD = false;
};

}  // namespace lumbarn::test
