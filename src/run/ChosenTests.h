#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../welltests/TestFile.h"
#include "RunState.h"
#include "Selections.h"
#include "TimeChoice.h"
#include "WellNames.h"

namespace lumbarn {

/// A test with the columns that are asked for.
struct ChosenTest {
  TestSummary test;
  std::vector<TestColumn> columns;
};

/// The tests of a run that a selection keeps, in the order of the file, which is read once.
class ChosenTests {
 public:
  /// Throws Error NotFound when there is no file of tests or no test of it is kept, BadRequest for report
  /// steps, Damaged when nothing of the file can be read.
  ChosenTests(const RunState& run, const TestSelection& selection, bool withColumns, StreamContext& context);

  bool isUsers() const { return file_.kind != FileKind::Rft; }
  /// The next test; nothing after the last one.
  std::optional<ChosenTest> next();

 private:
  std::optional<ChosenTest> read();
  void take(ChosenTest&& test);
  void giveHeld();
  bool wants(const TestSummary& test);
  bool isPastLast() const;
  [[noreturn]] void throwNone();

  TestSelection selection_;
  bool withColumns_;
  StreamContext& context_;
  RunMember file_;
  WellNames names_;
  std::unique_ptr<TestFile> tests_;
  std::int32_t count_ = 0;          // of tests read
  bool any_ = false;                // test was kept
  std::vector<TimePoint> outside_;  // of tests that are not, as long as none is
  std::int32_t withoutPart_ = 0;
  std::string why_;                         // the first of them has none
  std::map<std::string, ChosenTest> held_;  // by well: kept unless a later one takes its place
  std::deque<ChosenTest> ready_;
};

}  // namespace lumbarn
