#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "../record/RecordCursor.h"
#include "../support/Dates.h"

namespace lumbarn {

/// The words of the current INTEHEAD that can matter; more are not read, however long the record.
std::vector<std::int32_t> headWords(RecordCursor& cursor);
/// First element of the current record, which has one.
std::int32_t firstInteger(RecordCursor& cursor);
/// First text of the current record, which has one, without blanks around it.
std::string firstText(RecordCursor& cursor);

/// Report step number of an INTEHEAD; -1 when it has none.
std::int32_t stepOfHead(std::span<const std::int32_t> intehead);
/// Date of an INTEHEAD, with the time of day that newer headers state; for older ones that of the report
/// time, as days since a start at midnight. Nothing when there is no such day.
std::optional<Moment> dateOfHead(std::span<const std::int32_t> intehead, double days);

/// When the run began, by the header and date of one of its steps; nothing for headers without a time of day.
std::optional<Moment> startOfRun(std::span<const std::int32_t> intehead, std::optional<Moment> date,
                                 double days);
/// The date of a step of which the day is known, with the time of day by start and report time in days.
/// Without a start, as `dateOfHead` gives it for older headers.
Moment dateOfReport(std::optional<Moment> start, Moment day, double days);

}  // namespace lumbarn
