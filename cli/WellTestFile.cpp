#include "WellTestFile.h"

#include <numeric>
#include <utility>

#include <fmt/format.h>

#include "reader/qvEclipseReader.h"
#include "shapes/HeaderLayout.h"

namespace lumbarn::cli {
namespace {

/// The columns of a table as a host gets it.
std::vector<TestColumn> columnsOf(const XYData& values, const ByteTable& headers) {
  std::vector<TestColumn> columns;
  for (std::size_t i = 1; i <= headers.entries(); ++i) {
    const auto column = values.column(i);
    columns.push_back({ExtractAttribute(attributeVariable, headers, i),
                       ExtractAttribute(attributeUnits, headers, i),
                       std::vector<float>(column.begin(), column.end()), ""});
  }
  return columns;
}

/// A test without such data is none that was asked for by mistake of the program.
[[noreturn]] void hasNone(const TestSummary& test, std::string_view what) {
  throw Failure(Usage, fmt::format("test {} has no {}", test.number, what));
}

void checkBranch(const TestSummary& test, std::int32_t branch, std::int32_t count, std::string_view what) {
  if (count == 0) hasNone(test, fmt::format("{}es", what));
  if (branch >= 1 && branch <= count) return;
  throw Failure(Usage, fmt::format("test {} has {} {}{}, there is no number {}", test.number, count, what,
                                   count == 1 ? "" : "es", branch));
}

/// Faults that end part of a test are told as diagnoses too, in words that mean more to people.
bool load(qvEclipseReader& reader, const std::string& path, FileKind kind, Console& console) {
  reader.FileName = path;
  reader.whichtype = whichtypeOf(kind);
  const auto reporter = std::exchange(console.session().faultReporter, nullptr);
  bool qOK = false;
  reader.ECLReadData(qOK);
  console.session().faultReporter = reporter;
  console.checkCancelled();
  return qOK;
}

class SimulatorTests final : public WellTestFile {
 public:
  SimulatorTests(const std::string& path, Console& console) : path_(path), console_(console) {
    if (!load(reader_, path, FileKind::Rft, console))
      console.giveUp(path, "no well tests can be read from it");
    // The second way through the file meets what the first has told.
    const auto sink = std::exchange(console.session().diagnosisSink, nullptr);
    bool qOK = false;
    records_ = reader_.ListRFTTests(qOK);
    console.session().diagnosisSink = sink;
    console.checkCancelled();
    const auto count = std::min(records_.size(), static_cast<std::size_t>(reader_.NumberRFTTests()));
    for (std::size_t i = 0; i < count; ++i) tests_.push_back(summaryOf(records_[i]));
  }

  bool isUsers() const override { return false; }

  std::vector<TestColumn> table(const TestSummary& test, TestTableKind kind, std::int32_t branch) override {
    switch (kind) {
      case TestTableKind::Segments:
        return segments(test);
      case TestTableKind::Everything:
        return everything(test);
      case TestTableKind::PltBranch:
        checkBranch(test, branch, test.pltBranches, "PLT branch");
        break;
      case TestTableKind::Branch:
        checkBranch(test, branch, test.branches, "branch");
        break;
      case TestTableKind::Icd:
        checkBranch(test, branch, test.icdBranches, "ICD branch");
        break;
      case TestTableKind::Rft:
        if (!test.has("RFT")) hasNone(test, "RFT data");
        break;
      case TestTableKind::Plt:
        if (!test.has("PLT")) hasNone(test, "PLT data");
        break;
    }
    return asked(test.number, kind, branch);
  }

 private:
  TestSummary summaryOf(const WellTest& test) {
    TestSummary summary{.number = test.number,
                        .well = test.well,
                        .date = test.date,
                        .numberInWell = test.numberInWell,
                        .grid = test.grid,
                        .rows = test.connections.rows,
                        .pltBranches = reader_.NumberPLTBranches(test.number),
                        .branches = reader_.NumberBranches(test.number),
                        .icdBranches = reader_.NumberICDBranches(test.number)};
    bool qRFT = false, qPLT = false, qSEG = false, qOK = false;
    reader_.getRFTTestInfo(test.number, qRFT, qPLT, qSEG, qOK);
    const auto add = [&](bool qHas, const char* kind) {
      if (qHas) summary.kinds += (summary.kinds.empty() ? "" : " ") + std::string(kind);
    };
    add(qRFT, "RFT");
    add(qPLT, "PLT");
    add(qSEG, "SEG");
    return summary;
  }

  std::vector<TestColumn> asked(std::int32_t test, TestTableKind kind, std::int32_t branch) {
    XYData values;
    ByteTable headers;
    std::int32_t iNumber = 0;
    std::string zDate, zWell, zGrid, zOrigin;
    bool qOK = false;
    if (kind == TestTableKind::Rft)
      reader_.GetRFTtest(test, values, headers, iNumber, zDate, zWell, zGrid, zOrigin, qOK);
    if (kind == TestTableKind::Plt)
      reader_.GetPLTtest(test, values, headers, iNumber, zDate, zWell, zGrid, qOK);
    if (kind == TestTableKind::PltBranch)
      reader_.GetPLTBRANCHtest(test, values, headers, iNumber, zDate, zWell, zGrid, qOK, branch);
    if (kind == TestTableKind::Branch)
      reader_.GetBRANCHtest(test, values, headers, iNumber, zDate, zWell, zGrid, qOK, branch);
    if (kind == TestTableKind::Icd)
      reader_.GetICDBRANCHtest(test, values, headers, iNumber, zDate, zWell, zGrid, qOK, branch);
    if (!qOK && kind == TestTableKind::PltBranch)
      throw Failure(Usage, fmt::format("test {} has no connections to show of PLT branch {}", test, branch));
    if (!qOK) console_.giveUp(path_, fmt::format("test {} cannot be read", test));
    return columnsOf(values, headers);
  }

  const WellTest& record(const TestSummary& test) const {
    return records_[static_cast<std::size_t>(test.number - 1)];
  }

  std::vector<TestColumn> segments(const TestSummary& test) const {
    const WellTest& all = record(test);
    if (all.segments.rows == 0) hasNone(test, "segments");
    std::vector<std::int32_t> numbers(all.segments.rows);
    std::iota(numbers.begin(), numbers.end(), 1);
    std::vector<TestColumn> columns{{"SEGNO", "", std::move(numbers), ""}};
    for (const WellTestColumn& column : all.segments.columns)
      columns.push_back({column.name, all.unit(column.name), column.values, ""});
    return columns;
  }

  std::vector<TestColumn> everything(const TestSummary& test) const {
    const WellTest& all = record(test);
    std::vector<TestColumn> columns;
    const auto add = [&](std::string_view group, const std::vector<WellTestColumn>& from) {
      for (const WellTestColumn& column : from)
        columns.push_back({column.name, all.unit(column.name), column.values, group});
    };
    add("connections", all.connections.columns);
    add("segments", all.segments.columns);
    add("branches", all.branches.columns);
    add("others", all.others);
    return columns;
  }

  std::string path_;
  Console& console_;
  qvEclipseReader reader_{console_.session()};
  std::vector<WellTest> records_;
};

class UserTests final : public WellTestFile {
 public:
  UserTests(const std::string& path, FileKind kind, Console& console) : kind_(kind) {
    qvEclipseReader reader(console.session());
    if (!load(reader, path, kind, console)) console.giveUp(path, "no tests can be read from it");
    records_ = reader.ListUserTests();
    for (const UserTest& test : records_) {
      tests_.push_back({.number = test.number,
                        .well = test.well,
                        .date = test.date,
                        .numberInWell = test.numberInWell,
                        .grid = test.grid,
                        .origin = test.origin,
                        .kinds = word(),
                        .rows = test.columns.empty() ? 0 : test.columns[0].values.size()});
    }
  }

  bool isUsers() const override { return true; }

  std::vector<TestColumn> table(const TestSummary& test, TestTableKind kind, std::int32_t) override {
    if (kind == TestTableKind::Plt && kind_ != FileKind::UserPlt) hasNone(test, "PLT data");
    if (kind == TestTableKind::PltBranch || kind == TestTableKind::Branch || kind == TestTableKind::Icd)
      hasNone(test, "branches");
    if (kind == TestTableKind::Segments) hasNone(test, "segments");
    std::vector<TestColumn> columns;
    for (const UserTestColumn& column : records_[static_cast<std::size_t>(test.number - 1)].columns)
      columns.push_back({column.name, column.units, column.values, word()});
    return columns;
  }

 private:
  const char* word() const { return kind_ == FileKind::UserRft ? "RFT" : "PLT"; }

  FileKind kind_;
  std::vector<UserTest> records_;
};

}  // namespace

std::unique_ptr<WellTestFile> WellTestFile::open(const std::string& path, FileKind kind, Console& console) {
  if (kind == FileKind::Rft) return std::make_unique<SimulatorTests>(path, console);
  return std::make_unique<UserTests>(path, kind, console);
}

}  // namespace lumbarn::cli
