#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "../record/RecordCursor.h"
#include "../support/Diagnosis.h"
#include "../support/Session.h"
#include "RestartGrid.h"
#include "StepOptions.h"

namespace lumbarn {

/// The phase of a well from words 7 (type) and 9 (control) of its IWEL block: 1 oil, 2 water, 3 gas, 4 the
/// fourth control of a producer; -1 for other words.
std::int32_t EclipseWellPhase(std::int32_t iType, std::int32_t iControl);

/// The host's number of a well type: producer 4, oil injector 6, water injector 2, gas injector 1; -1 for any
/// other word 7.
std::int32_t EclipseToQVWellType(std::int32_t iType);

/// The tables of a grid from the words of one record. False, and no table, for a record that does not consist
/// of the blocks that the grid's header states; then that size becomes 0.
bool takeIWEL(RESTARTGRID& to, std::span<const std::int32_t> words);
bool takeSWEL(RESTARTGRID& to, std::span<const float> words);
bool takeXWEL(RESTARTGRID& to, std::span<const double> words, const StepOptions& options);
bool takeZWEL(RESTARTGRID& to, std::span<const std::string> words);
bool takeICON(RESTARTGRID& to, std::span<const std::int32_t> words, const StepOptions& options);
bool takeSCON(RESTARTGRID& to, std::span<const float> words);
bool takeZGRP(RESTARTGRID& to, std::span<const std::string> words);

/// Takes the current record when it is one of these. Gives what is wrong with one that does not fit.
std::optional<Diagnosis> takeWellRecord(RecordCursor& cursor, RESTARTGRID& grid, const StepOptions& options,
                                        Session& session);

/// Whether the words per well, per connection and per name are all at least 1.
inline bool hasWellData(const RESTARTGRID& grid) {
  return grid.nIWELZ >= 1 && grid.nICONZ >= 1 && grid.nZWELZ >= 1;
}
/// PVT table number of a well by its number, from 1, or with -1 by its name. Nothing for an empty name and
/// for a number that does not exist.
std::optional<std::int32_t> wellPVTNumber(const RESTARTGRID& grid, std::string_view zWell,
                                          std::int32_t iWell);

}  // namespace lumbarn
