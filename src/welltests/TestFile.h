#pragma once

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../files/Extensions.h"
#include "../support/Dates.h"
#include "../support/Session.h"
#include "TestPart.h"
#include "WellTest.h"

namespace lumbarn {

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

/// The tests of a file, the simulator's or a user's, one after the other. A simulator's file is read as the
/// tests are asked for, once and from front to back; no more than one test is held.
class TestFile {
 public:
  /// Stands for "no value" in the columns of singles, when it is the session's null value: no file has it.
  static constexpr float none = std::numeric_limits<float>::lowest();

  /// A file of kind Rft, UserRft or UserPlt, of whose tests one part will be asked for. Null, with a
  /// diagnosis, when nothing of it can be read; throws BadRecord when it cannot be opened. What ends a part
  /// of a test is told as a fault and as a diagnosis.
  static std::unique_ptr<TestFile> open(const std::string& path, FileKind kind, TestPart part,
                                        Session& session);
  virtual ~TestFile() = default;

  /// The next test. False at the end of the file and when the load was cancelled. For the parts Segments and
  /// All of a simulator's file kinds and branches are not known.
  virtual bool next(TestSummary& test) = 0;
  /// The part, of the test that was given last; `branch` is for parts of one branch. Nothing, with the reason
  /// in `why`, when the test has none.
  virtual std::vector<TestColumn> columns(std::int32_t branch, std::string& why) = 0;
};

}  // namespace lumbarn
