#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "grid/Hadrick.h"
#include "index/qvEclipseRSSPEC.h"
#include "init/qvEclipseINIT.h"
#include "reader/qvEclipseReader.h"
#include "restart/qvEclipseSOLUTION.h"
#include "shapes/HeaderLayout.h"
#include "summary/qvEclipseSUMMARYFile.h"

namespace lumbarn::test {

/// A host with one reader and a session of its own: loads without a dialog, and keeps what fetches return and
/// what was reported.
struct Host {
  explicit Host(const std::string& path = {}, std::int32_t whichtype = 0) {
    reader.FileName = path;
    reader.whichtype = whichtype;
    reader.Silent = true;
    session.faultReporter = [this](std::string_view text) { faults.emplace_back(text); };
  }
  bool load(const std::string& path, std::int32_t whichtype) {
    reader.FileName = path;
    reader.whichtype = whichtype;
    return run();
  }
  bool run() {
    bool qOK = false;
    reader.ECLReadData(qOK);
    return qOK;
  }
  bool fetchSummary() {
    bool qOK = false;
    reader.GetSUMMARYData(table, headers, source, only, qOK);
    return qOK;
  }
  bool fetchInit() {
    bool qOK = false;
    reader.GetINITData(table, headers, source, only, qOK);
    return qOK;
  }
  bool fetchTest(std::int32_t iTest, bool plt = false) {
    bool qOK = false;
    if (plt)
      reader.GetPLTtest(iTest, table, headers, number, date, well, grid, qOK);
    else
      reader.GetRFTtest(iTest, table, headers, number, date, well, grid, origin, qOK);
    return qOK;
  }
  /// A column of the table that was fetched last, by its place from 1 or by its name; empty without one.
  std::vector<float> column(std::size_t iVector) const {
    const auto values = table.column(iVector);
    return {values.begin(), values.end()};
  }
  std::vector<float> column(std::string_view name) const {
    for (std::size_t i = 1; i <= headers.entries(); ++i) {
      if (ExtractAttribute(attributeVariable, headers, i) == name) return column(i);
    }
    return {};
  }
  /// Everything that was reported beyond remarks: data that are missing, damage, and faults.
  std::vector<std::string> complaints() const {
    std::vector<std::string> all = faults;
    for (const auto& diagnosis : session.diagnoses()) {
      if (diagnosis.severity() != Severity::Remark) all.push_back(diagnosis.text());
    }
    return all;
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
  ByteTable headers, only;
  SourceData source;
  std::int32_t number = 0;
  std::string date, well, grid, origin;
};

}  // namespace lumbarn::test
