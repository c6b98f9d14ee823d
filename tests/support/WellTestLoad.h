#pragma once

#include <string>
#include <vector>

#include "WellTestBuilder.h"
#include "shapes/HeaderLayout.h"
#include "welltests/qvEclipseRFT.h"

namespace lumbarn::test {

/// A file of well tests, loaded with a session of its own, and what it answered last.
struct WellTestLoad {
  WellTestLoad() {
    session.faultReporter = [this](std::string_view text) { faults.emplace_back(text); };
  }
  explicit WellTestLoad(const std::string& path) : WellTestLoad() { load(path); }
  explicit WellTestLoad(const WellTestBuilder& builder, Form form = bigEndian) : WellTestLoad() {
    load(builder.write(folder, form));
  }

  bool load(const std::string& path) {
    bool qOK = file.CheckRFTFile(path);
    if (qOK) file.getRFTData(qOK);
    return loaded = qOK;
  }
  bool rft(std::int32_t iTest) {
    bool qOK = false;
    file.GetRFTtest(iTest, table, headers, number, date, well, grid, origin, qOK);
    return qOK;
  }
  bool plt(std::int32_t iTest) {
    bool qOK = false;
    file.GetPLTtest(iTest, table, headers, number, date, well, grid, qOK);
    return qOK;
  }
  bool pltBranch(std::int32_t iTest, std::int32_t iBranch) {
    bool qOK = false;
    file.GetPLTBRANCHtest(iTest, table, headers, number, date, well, grid, qOK, iBranch);
    return qOK;
  }
  bool branch(std::int32_t iTest, std::int32_t iBranch) {
    bool qOK = false;
    file.GetBRANCHtest(iTest, table, headers, number, date, well, grid, qOK, iBranch);
    return qOK;
  }
  bool icdBranch(std::int32_t iTest, std::int32_t iBranch) {
    bool qOK = false;
    file.GetICDBRANCHtest(iTest, table, headers, number, date, well, grid, qOK, iBranch);
    return qOK;
  }

  /// One field of each header.
  std::vector<std::string> fields(std::int32_t iAttribute) const {
    std::vector<std::string> all;
    for (std::size_t i = 1; i <= headers.entries(); ++i) {
      all.push_back(ExtractAttribute(iAttribute, headers, i));
    }
    return all;
  }
  std::vector<std::string> names() const { return fields(attributeVariable); }
  /// A column by its name; empty when it is not there.
  std::vector<float> column(const std::string& name) const {
    const auto all = names();
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (all[i] != name) continue;
      const auto values = table.column(i + 1);
      return {values.begin(), values.end()};
    }
    return {};
  }
  std::string unit(const std::string& name) const {
    const auto all = names();
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (all[i] == name) return fields(attributeUnits)[i];
    }
    return "no such column";
  }
  /// Empty when there was none, so that a test that misses it fails by name.
  Diagnosis lastDiagnosis() const {
    return session.diagnoses().empty() ? Diagnosis{.message = Message::NotLoaded}
                                       : session.diagnoses().back();
  }

  TemporaryFolder folder;
  Session session;
  std::vector<std::string> faults;
  qvEclipseRFT file{session};
  bool loaded = false;
  XYData table;
  ByteTable headers;
  std::int32_t number = 0;
  std::string date, well, grid, origin;
};

/// The report of a subscript error that ended a routine of a test.
inline std::string subscriptFaultIn(const std::string& routine) {
  return "Error:Subscript out of range (No.9) In [QVEclipseRFTtest (Code) (" + routine + ")] ";
}

}  // namespace lumbarn::test
