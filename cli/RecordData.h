#pragma once

#include <optional>

#include "Console.h"
#include "TableWriter.h"
#include "record/RecordCursor.h"

namespace lumbarn::cli {

/// Smallest and largest value of a record of numbers. A double holds each type's values exactly.
struct Extremes {
  ElementType type = ElementType::None;
  double smallest = 0;
  double largest = 0;
};

/// Reads all data of the current record, a part at a time, which verifies its inner structure too. Nothing
/// for records without numbers, and when none of the values is one. Throws BadRecord on damage, Failure when
/// cancelled.
std::optional<Extremes> readExtremes(RecordCursor& cursor, Console& console);

/// After damage: moves behind it, states in the action what was skipped, and returns true; false with this
/// other action where no further record can be found.
bool continueBehind(RecordCursor& cursor, Diagnosis& damage, std::string otherwise);

/// Tells the console's progress display how far in the file the cursor is.
void showProgress(const RecordCursor& cursor, Console& console);

}  // namespace lumbarn::cli
