#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "Host.h"
#include "WellTestBuilder.h"
#include "welltests/qvEclipseRFT.h"

namespace lumbarn::test {

/// A table as hosts get it: "NAME/UNIT NAME = row; row".
inline std::string tableText(const ByteTable& headers, const XYData& values) {
  std::string all;
  for (std::size_t i = 1; i <= headers.entries(); ++i) {
    const auto units = ExtractAttribute(attributeUnits, headers, i);
    all += fmt::format("{}{}{}{}", i == 1 ? "" : " ", ExtractAttribute(attributeVariable, headers, i),
                       units.empty() ? "" : "/", units);
  }
  for (std::size_t row = 1; row <= values.rows(); ++row) {
    all += row == 1 ? " =" : ";";
    for (std::size_t i = 1; i <= values.columns(); ++i) all += fmt::format(" {}", values(row, i));
  }
  return all;
}

/// A file of well tests, loaded without a reader, and what it answered last.
struct WellTestLoad : Host {
  WellTestLoad() = default;
  explicit WellTestLoad(const std::string& path) { load(path); }
  explicit WellTestLoad(const WellTestBuilder& builder, Form form = bigEndian) {
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
    return branchBy(&qvEclipseRFT::GetPLTBRANCHtest, iTest, iBranch);
  }
  bool branch(std::int32_t iTest, std::int32_t iBranch) {
    return branchBy(&qvEclipseRFT::GetBRANCHtest, iTest, iBranch);
  }
  bool icdBranch(std::int32_t iTest, std::int32_t iBranch) {
    return branchBy(&qvEclipseRFT::GetICDBRANCHtest, iTest, iBranch);
  }
  template <class Fetch>
  bool branchBy(Fetch fetch, std::int32_t iTest, std::int32_t iBranch) {
    bool qOK = false;
    (file.*fetch)(iTest, table, headers, number, date, well, grid, qOK, iBranch);
    return qOK;
  }

  std::string shown() const { return tableText(headers, table); }
  /// One field of each header.
  std::vector<std::string> fields(std::int32_t iAttribute) const {
    std::vector<std::string> all;
    for (std::size_t i = 1; i <= headers.entries(); ++i)
      all.push_back(ExtractAttribute(iAttribute, headers, i));
    return all;
  }
  std::vector<std::string> names() const { return fields(attributeVariable); }
  std::string unit(const std::string& name) const {
    const auto all = names();
    const auto at = static_cast<std::size_t>(std::ranges::find(all, name) - all.begin());
    return at < all.size() ? fields(attributeUnits)[at] : "no such column";
  }

  TemporaryFolder folder;
  qvEclipseRFT file{session};
  bool loaded = false;
};

/// The report of a subscript error that ended a routine of a test.
inline std::string subscriptFaultIn(const std::string& routine) {
  return "Error:Subscript out of range (No.9) In [QVEclipseRFTtest (Code) (" + routine + ")] ";
}

}  // namespace lumbarn::test
