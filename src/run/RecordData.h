#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "../record/RecordCursor.h"
#include "../support/Diagnosis.h"

namespace lumbarn {

class Session;

/// Smallest and largest value of a record of numbers. A double holds each type's values exactly.
struct Extremes {
  ElementType type = ElementType::None;
  double smallest = 0;
  double largest = 0;
};

/// Elements that are read at once of a record that may be of any size.
constexpr std::int64_t partElements = std::int64_t{1} << 18;

/// Reads all data of the current record, a part at a time, which verifies its inner structure too. Nothing
/// for records without numbers, and when none of the values is one. Throws BadRecord on damage, LoadCanceled
/// after a stop.
std::optional<Extremes> readExtremes(RecordCursor& cursor, Session& session);

/// After damage: moves behind it, states in the action what was skipped, and returns true; false with this
/// other action where no further record can be found.
bool continueBehind(RecordCursor& cursor, Diagnosis& damage, std::string otherwise);

/// Moves to the next record, over damage where there is one behind it. `otherwise` gives the action for
/// damage behind which nothing is found, `report` takes each diagnosis.
template <class Action, class Report>
bool nextRecord(RecordCursor& cursor, Action&& otherwise, Report&& report) {
  while (true) {
    try {
      return cursor.next();
    } catch (BadRecord& damage) {
      const bool more = continueBehind(cursor, damage.diagnosis(), otherwise());
      report(damage.diagnosis());
      if (!more) return false;
    }
  }
}

/// Tells the host's progress display how far in the file the cursor is.
void showProgress(const RecordCursor& cursor, Session& session);

/// A single as the double that has its shortest digits, so that 0.1 is not shown as 0.10000000149011612.
double sameDigits(float value);

/// A cursor on a file of records. Throws BadRecord, which tells what the file is instead.
std::unique_ptr<RecordCursor> openRecordFile(const std::string& path);

}  // namespace lumbarn
