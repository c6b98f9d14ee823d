#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "support/Fault.h"
#include "support/Guarded.h"

namespace lumbarn {
namespace {

TEST(Guarded, EveryWayOutOfARoutineLeavesItsTrace) {
  Session session;
  std::string report;
  session.faultReporter = [&](std::string_view text) { report = text; };
  const std::pair<std::function<bool()>, const char*> rows[] = {
      {[] { return false; }, ""},  // a plain no is not a fault
      {[]() -> bool { throw BadRecord({.message = Message::RecordDamaged, .path = "F"}); }, ""},
      {[]() -> bool { throw Fault(FaultNumber::Subscript); }, "Subscript out of range (No.9)"},
      {[]() -> bool { throw Fault(FaultNumber::DivisionByZero); }, "Division by zero (No.11)"},
      {[]() -> bool { throw Fault(FaultNumber::PastEnd); }, "Input past end of file (No.62)"},
      {[]() -> bool { throw std::bad_alloc(); }, "Out of memory (No.7)"},
      {[]() -> bool { throw std::length_error("vector"); }, "Out of memory (No.7)"},
      {[]() -> bool { throw std::runtime_error("odd"); }, "odd (No.5)"}};
  int faults = 0;
  for (const auto& [routine, text] : rows) {
    report.clear();
    bool qOK = true;
    guarded(session, qOK, "qvX", "Read", routine);
    EXPECT_FALSE(qOK);
    const std::string_view stated(text);
    EXPECT_EQ(report, stated.empty() ? "" : "Error:" + std::string(text) + " In [qvX (Code) (Read)] ");
    EXPECT_EQ(session.faults(), faults += stated.empty() ? 0 : 1) << text;
  }
  ASSERT_EQ(session.diagnoses().size(), 1U);
  EXPECT_EQ(session.diagnoses()[0].path, "F");
  const auto inner = [&] { return inRoutine("qvX", "Read", rows[5].first); };
  EXPECT_FALSE(succeeds(session, "qvY", "Load", [&] { return inRoutine("qvY", "Find", inner); }));
  EXPECT_EQ(report, "Error:Out of memory (No.7) In [qvX (Code) (Read)] ") << "where it occurred";
  bool qOK = false;
  guarded(session, qOK, "qvX", "Read", [] {});
  EXPECT_TRUE(qOK);
  session.faultReporter = [](std::string_view) { throw std::bad_alloc(); };
  guarded(session, qOK, "qvX", "Read", rows[2].first);
  EXPECT_FALSE(qOK) << "a host's callback throws";
}

}  // namespace
}  // namespace lumbarn
