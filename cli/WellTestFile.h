#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Console.h"
#include "files/Extensions.h"
#include "support/Dates.h"
#include "welltests/WellTest.h"

namespace lumbarn::cli {

/// What the list of tests tells of one.
struct TestSummary {
  std::int32_t number = 0;  ///< in the file, from 1
  std::string well;
  std::optional<Moment> date;
  std::int32_t numberInWell = 0;
  std::string grid;    ///< empty for the main grid
  std::string origin;  ///< as a user's file tells it
  std::string kinds;   ///< "RFT", "PLT", "SEG" with blanks between
  std::size_t rows = 0;
  std::int32_t pltBranches = 0;
  std::int32_t branches = 0;
  std::int32_t icdBranches = 0;

  bool has(std::string_view kind) const { return kinds.find(kind) != kinds.npos; }
};

/// A column of one test.
struct TestColumn {
  std::string name;
  std::string units;
  WellTestColumn::Values values;
  std::string_view group;  ///< of arrays as they stand in the file: "connections", "segments", "branches"
};

/// The tables that a test can give.
enum class TestTableKind { Rft, Plt, PltBranch, Branch, Icd, Segments, Everything };

/// A file of well tests, the simulator's or a user's.
class WellTestFile {
 public:
  /// Loads a file of kind Rft, UserRft or UserPlt. Throws Failure.
  static std::unique_ptr<WellTestFile> open(const std::string& path, FileKind kind, Console& console);
  virtual ~WellTestFile() = default;

  const std::vector<TestSummary>& tests() const { return tests_; }
  virtual bool isUsers() const = 0;
  /// A table of a test that is there; `branch` is for those of one branch. Throws Failure when the test has
  /// no such table.
  virtual std::vector<TestColumn> table(const TestSummary& test, TestTableKind kind, std::int32_t branch) = 0;

 protected:
  std::vector<TestSummary> tests_;
};

}  // namespace lumbarn::cli
