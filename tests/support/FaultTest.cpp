#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/Fault.h"
#include "support/Guarded.h"

namespace lumbarn {
namespace {

TEST(Guarded, EveryWayOutOfARoutineLeavesItsTrace) {
  Session session;
  std::vector<std::string> reports;
  session.faultReporter = [&](std::string_view text) { reports.emplace_back(text); };
  bool qOK = true;

  guarded(session, qOK, "qvX", "Read", [] { return false; });
  EXPECT_FALSE(qOK);
  EXPECT_TRUE(reports.empty()) << "a plain no is no fault";

  guarded(session, qOK, "qvX", "Read", [] {});
  EXPECT_TRUE(qOK);

  guarded(session, qOK, "qvX", "Read", [] { throw Fault(FaultNumber::Subscript); });
  EXPECT_FALSE(qOK);
  guarded(session, qOK, "qvX", "Read", [] { throw std::bad_alloc(); });
  guarded(session, qOK, "qvX", "Read", [] {
    throw BadRecord(Diagnosis{.message = Message::RecordDamaged, .path = "F", .problem = "bad"});
  });
  EXPECT_FALSE(qOK);
  ASSERT_EQ(reports.size(), 2U) << "damage in a file is a diagnosis, not a fault";
  EXPECT_EQ(reports[0], "Error:Subscript out of range (No.9) In [qvX (Code) (Read)] ");
  EXPECT_EQ(reports[1], "Error:Out of memory (No.7) In [qvX (Code) (Read)] ");
  EXPECT_EQ(session.faults(), 2);
  ASSERT_EQ(session.diagnoses().size(), 1U);
  EXPECT_EQ(session.diagnoses()[0].path, "F");
}

TEST(Diagnosis, TextHasEveryCoordinateThatIsKnown) {
  Diagnosis d{.message = Message::RecordDamaged,
              .path = "A.UNRST",
              .problem = "block marks disagree",
              .keyword = "PRESSURE",
              .occurrence = 3};
  d.offset = 512;
  d.expected = "4000";
  d.found = "17";
  d.action = "kept 2 steps";
  EXPECT_EQ(d.text(),
            "A.UNRST: block marks disagree (PRESSURE, occurrence 3, byte 512: expected 4000, found 17); kept "
            "2 steps");
  EXPECT_EQ((Diagnosis{.message = Message::FileOpen, .path = "A", .problem = "no such file"}).text(),
            "A: no such file");
}

}  // namespace
}  // namespace lumbarn
