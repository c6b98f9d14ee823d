#include "TestFile.h"

#include <memory_resource>
#include <numeric>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "../shapes/HeaderLayout.h"
#include "QVEclipseRFTtest.h"
#include "qvUserRFT.h"

namespace lumbarn {
namespace {

std::string hasNone(const TestSummary& test, std::string_view what) {
  return fmt::format("test {} has no {}", test.number, what);
}

/// Why a test has no such branch; empty when it has.
std::string noBranch(const TestSummary& test, std::int32_t branch, std::int32_t count,
                     std::string_view what) {
  if (count == 0) return hasNone(test, fmt::format("{}es", what));
  if (branch >= 1 && branch <= count) return {};
  return fmt::format("test {} has {} {}{}, there is no number {}", test.number, count, what,
                     count == 1 ? "" : "es", branch);
}

/// The tests of a simulator with what is worked out from them.
class ProcessedTests final : public TestFile {
 public:
  ProcessedTests(std::unique_ptr<RecordWalk> records, TestPart part, Session& session)
      : records_(std::move(records)), part_(part), session_(session) {}

  bool next(TestSummary& summary) override {
    if (!more_ || session_.cancelled()) return false;
    test_.reset();
    memory_.release();
    test_ = std::make_unique<QVEclipseRFTtest>(session_, &memory_);
    test_->read(*records_);
    // A test that a fault ended leaves its other records behind; the next test begins with its own TIME.
    more_ = !session_.cancelled() && records_->skipToTest(session_);
    if (session_.cancelled() || (records_->damaged() && records_->recordsRead == 0)) return false;
    showProgress();
    summary_ = {.number = ++number_,
                .well = std::string(test_->well()),
                .date = test_->date(),
                .numberInWell = 0,
                .grid = std::string(test_->grid()),
                .rows = static_cast<std::size_t>(test_->nConnections()),
                .pltBranches = test_->nPLTBranches(),
                .branches = test_->nBranches(),
                .icdBranches = test_->nICDBranches()};
    summary_.numberInWell = ++numberOf_[summary_.well];
    addKind(test_->qRFT(), "RFT");
    addKind(test_->qPLT(), "PLT");
    addKind(test_->qSEG(), "SEG");
    summary = summary_;
    return true;
  }

  std::vector<TestColumn> columns(std::int32_t branch, std::string& why) override {
    why = whyNot(branch);
    if (!why.empty()) return {};
    const auto result = test_->table(part_, branch);
    if (!result) {
      why = part_ == TestPart::PltBranch
                ? fmt::format("test {} has no connections to show of PLT branch {}", summary_.number, branch)
                : fmt::format("test {} cannot be read", summary_.number);
      return {};
    }
    std::vector<TestColumn> columns;
    for (std::size_t i = 1; i <= result->headers.entries(); ++i) {
      const auto column = result->values.column(i);
      columns.push_back({ExtractAttribute(attributeVariable, result->headers, i),
                         ExtractAttribute(attributeUnits, result->headers, i),
                         std::vector<float>(column.begin(), column.end()), ""});
    }
    if (part_ == TestPart::Branch || part_ == TestPart::Devices) clearUnknown(columns);
    return columns;
  }

 private:
  void showProgress() {
    if (!session_.Container) return;
    session_.Container->fraction(static_cast<double>(records_->cursor().nextPosition()) /
                                 static_cast<double>(records_->cursor().fileSize()));
  }

  void addKind(bool has, const char* kind) {
    if (has) summary_.kinds += (summary_.kinds.empty() ? "" : " ") + std::string(kind);
  }

  std::string whyNot(std::int32_t branch) const {
    switch (part_) {
      case TestPart::Rft:
        return summary_.has("RFT") ? "" : hasNone(summary_, "RFT data");
      case TestPart::Plt:
        return summary_.has("PLT") ? "" : hasNone(summary_, "PLT data");
      case TestPart::PltBranch:
        return noBranch(summary_, branch, summary_.pltBranches, "PLT branch");
      case TestPart::Branch:
        return noBranch(summary_, branch, summary_.branches, "branch");
      default:
        return noBranch(summary_, branch, summary_.icdBranches, "ICD branch");
    }
  }

  /// Hosts get whole numbers that no array gives as -1, and 0 for the rates of connections of devices.
  void clearUnknown(std::vector<TestColumn>& columns) const {
    constexpr std::size_t branchNumber = 20, nextSegment = 21, connectionRates = 23;
    for (const std::size_t i : {branchNumber, nextSegment})
      std::ranges::replace(std::get<std::vector<float>>(columns[i].values), -1.0F, none);
    for (std::size_t i = connectionRates; part_ == TestPart::Devices && i < columns.size(); ++i)
      std::ranges::fill(std::get<std::vector<float>>(columns[i].values), none);
  }

  std::unique_ptr<RecordWalk> records_;
  TestPart part_;
  Session& session_;
  std::pmr::monotonic_buffer_resource memory_;
  std::unique_ptr<QVEclipseRFTtest> test_;
  TestSummary summary_;
  std::int32_t number_ = 0;
  std::unordered_map<std::string, std::int32_t> numberOf_;  // by well
  bool more_ = true;
};

/// The tests of a simulator as the file has them.
class StoredTests final : public TestFile {
 public:
  StoredTests(std::unique_ptr<WellTestReader> reader, TestPart part)
      : reader_(std::move(reader)), part_(part) {}

  bool next(TestSummary& summary) override {
    if (!reader_->next(test_)) return false;
    summary = {.number = test_.number,
               .well = test_.well,
               .date = test_.date,
               .numberInWell = test_.numberInWell,
               .grid = test_.grid,
               .rows = test_.connections.rows};
    return true;
  }

  std::vector<TestColumn> columns(std::int32_t, std::string& why) override {
    std::vector<TestColumn> columns;
    const auto add = [&](std::string_view group, std::vector<WellTestColumn>& from) {
      for (WellTestColumn& column : from)
        columns.push_back({column.name, test_.unit(column.name), std::move(column.values), group});
    };
    if (part_ == TestPart::Segments) {
      if (test_.segments.rows == 0) {
        why = fmt::format("test {} has no segments", test_.number);
        return {};
      }
      std::vector<std::int32_t> numbers(test_.segments.rows);
      std::iota(numbers.begin(), numbers.end(), 1);
      columns.push_back({"SEGNO", "", std::move(numbers), ""});
      add("segments", test_.segments.columns);
      return columns;
    }
    add("connections", test_.connections.columns);
    add("segments", test_.segments.columns);
    add("branches", test_.branches.columns);
    add("others", test_.others);
    if (columns.empty()) why = fmt::format("test {} has no arrays", test_.number);
    return columns;
  }

 private:
  std::unique_ptr<WellTestReader> reader_;
  TestPart part_;
  WellTest test_;
};

/// Text files are small, so they are read whole.
class UserTests final : public TestFile {
 public:
  UserTests(std::vector<UserTest> tests, FileKind kind, TestPart part)
      : tests_(std::move(tests)), word_(kind == FileKind::UserRft ? "RFT" : "PLT"), part_(part) {}

  bool next(TestSummary& summary) override {
    if (next_ == tests_.size()) return false;
    const UserTest& test = tests_[next_++];
    summary_ = {.number = test.number,
                .well = test.well,
                .date = test.date,
                .numberInWell = test.numberInWell,
                .grid = test.grid,
                .origin = test.origin,
                .kinds = word_,
                .rows = test.columns.empty() ? 0 : test.columns[0].values.size()};
    summary = summary_;
    return true;
  }

  std::vector<TestColumn> columns(std::int32_t, std::string& why) override {
    const bool branch =
        part_ == TestPart::PltBranch || part_ == TestPart::Branch || part_ == TestPart::Devices;
    std::vector<TestColumn> columns;
    if (part_ == TestPart::Plt && !summary_.has("PLT")) {
      why = hasNone(summary_, "PLT data");
    } else if (branch || part_ == TestPart::Segments) {
      why = hasNone(summary_, branch ? "branches" : "segments");
    } else {
      for (UserTestColumn& column : tests_[next_ - 1].columns)
        columns.push_back({column.name, column.units, std::move(column.values), word_});
      if (columns.empty()) why = hasNone(summary_, "columns");
    }
    return columns;
  }

 private:
  std::vector<UserTest> tests_;
  const char* word_;
  TestPart part_;
  std::size_t next_ = 0;
  TestSummary summary_;
};

std::unique_ptr<TestFile> openUsers(const std::string& path, FileKind kind, TestPart part, Session& session) {
  qvUserRFT file(session);
  const bool rft = kind == FileKind::UserRft;
  if (!(rft ? file.CheckRFTFile(path) : file.CheckPLTFile(path))) return nullptr;
  const auto userKind = rft ? UserTestKind::Rft : UserTestKind::Plt;
  if (!file.readFile(userKind)) return nullptr;
  return std::make_unique<UserTests>(file.tests(userKind), kind, part);
}

}  // namespace

std::unique_ptr<TestFile> TestFile::open(const std::string& path, FileKind kind, TestPart part,
                                         Session& session) {
  if (kind != FileKind::Rft) return openUsers(path, kind, part, session);
  if (part == TestPart::Segments || part == TestPart::All) {
    auto reader = WellTestReader::open(path, session);
    return reader ? std::make_unique<StoredTests>(std::move(reader), part) : nullptr;
  }
  std::string why;
  auto records = openWalk(path, why);
  if (!records) throw BadRecord({.message = Message::FileOpen, .path = path, .problem = why});
  records->cursor().attach(session);
  return std::make_unique<ProcessedTests>(std::move(records), part, session);
}

}  // namespace lumbarn
