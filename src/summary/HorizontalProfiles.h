#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../shapes/ByteTable.h"
#include "../shapes/XYData.h"
#include "../support/Dates.h"
#include "../support/Export.h"
#include "../support/Session.h"

namespace lumbarn {

/// Profiles along horizontal wells, made from the connection vectors of a summary: for one time step, one
/// curve per flow quantity over the distance along the well. Made once after a load; each step is then a few
/// block copies away. Numbers of vectors, rows and steps count from 1.

/// What profiles are made from.
struct HorizontalSource {
  const ByteTable& bHeaders;  ///< the connection vectors, in file order, all those of a mnemonic together
  const XYData& sData;        ///< their values, sData(iRow, iVector)
  std::span<const float> sLengths;  ///< one length per vector, in zUnits
  std::string_view zUnits;
  std::span<const std::int32_t> iReportSteps;  ///< report step of each row of the newest run
};

/// One kept table. Row 1 holds the lengths; the row of step t and mnemonic j is (t - 1) * mnemonics + j + 1.
struct HorizontalTable {
  ByteTable bHeaders;  ///< 233 bytes for each row
  XYData sData;        ///< sData(iColumn, iRow), so that a row of the table lies together in memory
};

/// What one source comes down to.
struct HorizontalLayout {
  std::vector<std::string> zVectors;       ///< the different mnemonics, in order of first appearance
  std::vector<std::int32_t> iVectorStart;  ///< number of the first vector of each
  std::vector<float> sLengths;             ///< one length per connection of the first mnemonic
  std::vector<std::int32_t> iOrder;        ///< positions in sLengths by increasing length
  std::vector<std::int32_t> iSteps;        ///< rows of the data that are used
};

/// The different mnemonics, where each begins, and the lengths of the first one, as all others are taken to
/// have the same connections. Only the last mnemonic is compared, so one that comes back after another counts
/// anew: deliberate. Nothing when there is not one length per header, or no header.
LUMBARN_API std::optional<HorizontalLayout> differentVectors(const ByteTable& bHeaders,
                                                             std::span<const float> sLengths);
/// The rows that are used: all of them, or without qMiniSteps the last of each run of equal report steps.
LUMBARN_API std::vector<std::int32_t> stepsUsed(std::span<const std::int32_t> iReportSteps, bool qMiniSteps);
/// The whole layout. Nothing, without a report, where not all mnemonics have as many connections as the first
/// either.
LUMBARN_API std::optional<HorizontalLayout> layoutOf(const HorizontalSource& source, bool qMiniSteps);

/// Builds one table. Throws LoadCanceled too, as its parts do.
LUMBARN_API HorizontalTable makeProfiles(Session& session, const HorizontalSource& source,
                                         const HorizontalLayout& layout, bool qInflow, bool qMiniSteps);
/// The parts of it: row 1, all other rows, all headers.
LUMBARN_API void fillLengths(const HorizontalLayout& layout, bool qInflow, XYData& sOut);
LUMBARN_API void fillProfiles(Session& session, const HorizontalLayout& layout, const XYData& sData,
                              bool qInflow, XYData& sOut);
LUMBARN_API void fillProfileHeaders(Session& session, const HorizontalLayout& layout,
                                    const HorizontalSource& source, bool qInflow, bool qMiniSteps,
                                    ByteTable& bOut);
/// One step of a table, from 0: sData(iColumn, iRow) with the lengths in row 1 and one row per mnemonic, and
/// a header for each.
LUMBARN_API HorizontalTable profilesOfStep(const HorizontalTable& table, std::size_t vectors,
                                           std::size_t step, const Session& session);

/// The date, "15 JUL 2003", of a time since a start given as "day month year", in a unit of which
/// `unitsPerDay` make a day. Nothing for a text that is no date, or a time beyond all dates.
LUMBARN_API std::optional<std::string> dateStamp(std::string_view zStartDate, double unitsPerDay,
                                                 float sTime);
/// The same from a start with its time of day.
LUMBARN_API std::optional<std::string> dateStamp(Moment start, double unitsPerDay, float sTime);

}  // namespace lumbarn
