#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "HorizontalProfiles.h"

namespace lumbarn {

/// The profiles that are kept after a load.
class LUMBARN_API HorizontalData {
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

  // Beyond what hosts ask for: what stands behind these operations.
  bool build(const HorizontalSource& source, bool qInflow, bool qConnect, bool qMiniSteps);
  HorizontalTable step(bool qInflow, std::int32_t iStep) const;

 private:
  Session* session_;
};

/// Calling forms of the functions in HorizontalProfiles.h. Of sLengths only the first mnemonic's stay.
LUMBARN_API void ExtractDifferentVectors(Session& session, const ByteTable& bHeaders,
                                         std::vector<float>& sLengths, std::vector<std::string>& zVectors,
                                         std::vector<std::int32_t>& iVectorStart, std::int32_t& nVectors,
                                         bool& qOK);
LUMBARN_API void GetTimeStepsUsed(Session& session, std::span<const std::int32_t> iReportSteps,
                                  bool qMiniSteps, std::vector<std::int32_t>& iSteps, std::int32_t& nSteps,
                                  bool& qOK);
LUMBARN_API void StoreHorizontalDataArray(Session& session, const HorizontalSource& source,
                                          const HorizontalLayout& layout, bool qInflow, bool qMiniSteps,
                                          HorizontalTable& table, bool& qOK);
LUMBARN_API void SetHorizLengthData(Session& session, const HorizontalLayout& layout, bool qInflow,
                                    XYData& sOut, bool& qOK);
LUMBARN_API void SetHorizData(Session& session, const HorizontalLayout& layout, const XYData& sData,
                              bool qInflow, XYData& sOut, bool& qOK);
LUMBARN_API void SetHorizDataHeaders(Session& session, const HorizontalLayout& layout,
                                     const HorizontalSource& source, bool qInflow, bool qMiniSteps,
                                     ByteTable& bOut, bool& qOK);
LUMBARN_API void GetDateStamp(Session& session, std::string_view zStartDate, double unitsPerDay, float sTime,
                              std::string& zDate, bool& qOK);
LUMBARN_API void GetDateStamp(Session& session, Moment start, double unitsPerDay, float sTime,
                              std::string& zDate, bool& qOK);

}  // namespace lumbarn
