#pragma once

#include <string>
#include <vector>

#include "reader/qvEclipseReader.h"

namespace lumbarn::test {

/// A reader with a session of its own, set up for a silent summary load, and what it gave.
struct SummaryLoad {
  explicit SummaryLoad(const std::string& specification) {
    reader.FileName = specification;
    reader.whichtype = 12;
    reader.Silent = true;
  }
  /// Loads with the earlier runs; gives the times, none on failure.
  std::vector<float> chainTimes() {
    reader.NoRestart = false;
    return run() ? column(1) : std::vector<float>{};
  }
  /// Loads and fetches.
  bool run() {
    bool qOK = false;
    reader.ECLReadData(qOK);
    if (!qOK) return false;
    reader.GetSUMMARYData(table, headers, source, only, qOK);
    return qOK;
  }
  std::vector<float> column(std::size_t iVector) const {
    const auto values = table.column(iVector);
    return {values.begin(), values.end()};
  }
  /// The columns' names, in order.
  std::vector<std::string> names() {
    std::vector<std::string> all;
    for (const auto& vector : reader.Vectors()) all.push_back(vector.name);
    return all;
  }
  /// Empty when there was none, so that a test that misses it fails by name.
  Diagnosis lastDiagnosis() const {
    return session.diagnoses().empty() ? Diagnosis{.message = Message::NotLoaded}
                                       : session.diagnoses().back();
  }

  Session session;
  qvEclipseReader reader{session};
  XYData table;
  ByteTable headers;
  ByteTable only;
  SourceData source;
};

}  // namespace lumbarn::test
