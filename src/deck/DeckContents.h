#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "DeckGrid.h"
#include "DeckRunspec.h"
#include "KeywordStore.h"

namespace lumbarn {

class DeckScheduleStore;

/// Lines of a deck as they stand in it, for hosts that work on the text.
struct LUMBARN_API DeckLineStores {
  bool qCaptureSchedule = false;         ///< the current line goes into zSchedule
  bool qCaptureReportStep = false;       ///< the current line goes into zReportStep
  bool qInEDIT = false;                  ///< the current line goes into zEDIT
  std::vector<std::string> zSchedule;    ///< SUMMARY and SCHEDULE
  std::vector<std::string> zReportStep;  ///< keywords of the current report step
  std::vector<std::string> zEDIT;
  /// Lines of zSchedule up to the one that begins each section, with it; the ninth is that of END.
  std::array<std::int32_t, 9> iSectionLine{};

  std::int32_t nSchedule() const { return static_cast<std::int32_t>(zSchedule.size()); }
  /// A line of a keyword's data.
  void capture(std::string_view zLine) {
    if (qCaptureSchedule) zSchedule.emplace_back(zLine);
    if (qCaptureReportStep) zReportStep.emplace_back(zLine);
  }
};

/// All that the host form keeps of a deck.
struct LUMBARN_API DeckContents {
  DeckRunspec runspec;
  DeckGrids grids;
  KeywordStore keywords;
  DeckLineStores lines;
  std::vector<DeckKeywordRecord> summary;  ///< F and W keywords of SUMMARY
  std::vector<std::string> zIncludes;      ///< files that are named and were not read
};

/// How a deck is read.
struct LUMBARN_API DeckLoadOptions {
  bool RecordScheduleDeck = false;
  bool RecordReportStepKeywords = false;
  bool RUNSPECOnly = false;
  bool ProcessCorners = true;
  bool ProcessAll = false;                ///< follow INCLUDE in GRID, EDIT and REGIONS too
  std::vector<std::string> zExcludes;     ///< patterns of names of files not to read
  DeckScheduleStore* schedule = nullptr;  ///< not owned
};

}  // namespace lumbarn
