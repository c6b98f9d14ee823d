#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../shapes/ByteTable.h"
#include "../shapes/XYData.h"
#include "../support/Dates.h"
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

class HorizontalData {
 public:
  explicit HorizontalData(Session& session = Session::process()) : session_(&session) {}

  std::int32_t nHorizVectors = 0;         ///< different mnemonics
  std::int32_t nHorizSteps = 0;           ///< time steps kept
  std::vector<std::int32_t> iHorizSteps;  ///< their row numbers in the summary
  HorizontalTable Inflow;                 ///< accumulated along the well, from 0 at distance 0
  HorizontalTable Connect;                ///< value per connection

  /// Builds the tables that are asked for. qOK False, with nothing kept and nothing said, when there are not
  /// as many lengths as vectors or not all mnemonics have as many connections as the first.
  void getHorizontalData(const HorizontalSource& source, bool qInflow, bool qConnect, bool qMiniSteps,
                         bool& qOK);

  /// Cuts step iStep, from 1 among the kept ones, out of a table: sData(iColumn, iRow) with the lengths in
  /// row 1 and one row per mnemonic, and a header for each. A step or a table that is not there is a fault;
  /// the results are then empty.
  void getHoriz(bool qInflow, std::int32_t iStep, XYData& sData, ByteTable& bHeaders, bool& qOK) const;

 private:
  Session* session_;
};

/// The different mnemonics and where each begins; of sLengths only the first mnemonic's stay, as all others
/// are taken to have the same connections. Only the last mnemonic is compared, so one that comes back after
/// another counts anew: deliberate. qOK False when there is not one length per header, or no header.
void ExtractDifferentVectors(Session& session, const ByteTable& bHeaders, std::vector<float>& sLengths,
                             std::vector<std::string>& zVectors, std::vector<std::int32_t>& iVectorStart,
                             std::int32_t& nVectors, bool& qOK);

/// The rows that are used: all of them, or without qMiniSteps the last of each run of equal report steps.
void GetTimeStepsUsed(Session& session, std::span<const std::int32_t> iReportSteps, bool qMiniSteps,
                      std::vector<std::int32_t>& iSteps, std::int32_t& nSteps, bool& qOK);

/// Builds one table.
void StoreHorizontalDataArray(Session& session, const HorizontalSource& source,
                              const HorizontalLayout& layout, bool qInflow, bool qMiniSteps,
                              HorizontalTable& table, bool& qOK);
/// The parts of it: row 1, all other rows, all headers.
void SetHorizLengthData(Session& session, const HorizontalLayout& layout, bool qInflow, XYData& sOut,
                        bool& qOK);
void SetHorizData(Session& session, const HorizontalLayout& layout, const XYData& sData, bool qInflow,
                  XYData& sOut, bool& qOK);
void SetHorizDataHeaders(Session& session, const HorizontalLayout& layout, const HorizontalSource& source,
                         bool qInflow, bool qMiniSteps, ByteTable& bOut, bool& qOK);

/// The date, "15 JUL 2003", of a time since a start given as "day month year", in a unit of which
/// `unitsPerDay` make a day. qOK False for a text that is no date, or a time beyond all dates.
void GetDateStamp(Session& session, std::string_view zStartDate, double unitsPerDay, float sTime,
                  std::string& zDate, bool& qOK);
/// The same from a start with its time of day.
void GetDateStamp(Session& session, Moment start, double unitsPerDay, float sTime, std::string& zDate,
                  bool& qOK);

}  // namespace lumbarn
