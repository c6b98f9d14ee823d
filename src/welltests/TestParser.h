#pragma once

#include <cstdint>
#include <optional>

#include "../support/Diagnosis.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "RecordWalk.h"
#include "TestHeader.h"

namespace lumbarn {

/// Receives the records of one well test in the order of the file. What it throws ends the test.
class LUMBARN_API TestSink {
 public:
  virtual ~TestSink();
  /// After each TIME, DATE and WELLETC, whose data are in the header by then.
  virtual void headerRecord(const RecordHeader&) {}
  /// Any other record of a type that its keyword can have, with the cursor at its data.
  virtual void array(RecordCursor& cursor) = 0;
};

/// How the records of a test ended.
struct ParsedTest {
  enum class End : std::uint8_t { NextTest, File, Canceled, Damage };
  End end = End::File;
  bool any = false;                 ///< there was at least one record
  bool complete = true;             ///< no record of the test is missing
  std::optional<Diagnosis> damage;  ///< not reported yet
};

/// Reads the records of one well test: those from one TIME up to the next, or to the end of the file. Damage
/// ends the test; the walk must pass it before the next one (`RecordWalk::skipToTest`).
LUMBARN_API ParsedTest parseTest(RecordWalk& walk, Session& session, TestHeader& header, TestSink& sink);

}  // namespace lumbarn
