#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "DeckGrid.h"
#include "DeckRunspec.h"
#include "KeywordStore.h"

namespace lumbarn {

/// What kind of run a deck is of.
enum class DeckRunKind : std::uint8_t { BlackOil = 1, Compositional = 2, FrontSim = 3 };

/// Receives what the loader reads of a schedule. The loader works without one; keywords that affect nothing
/// but the schedule are then ignored.
class LUMBARN_API DeckScheduleStore {
 public:
  virtual ~DeckScheduleStore() = default;

  virtual void deckFile(const std::string& zFile) = 0;
  /// OIL, GAS, WATER, DISGAS, VAPOIL and BLACKOIL; not called for the other phases.
  virtual void phase(std::string_view zKeyword) = 0;
  /// FMTIN, FMTOUT, FMTSAVE, MULTIN, UNIFOUT and the like, SAVE, RPTRST, SKIPREST.
  virtual void fileForm(std::string_view zKeyword, std::int32_t iLine) = 0;
  virtual void tableSizes(const DeckTableSizes& sizes) = 0;
  virtual void wellCount(std::int32_t nWells) = 0;
  virtual void groupCount(std::int32_t nGroups) = 0;
  virtual void startDate(const DeckDate& date) = 0;
  virtual void componentCount(std::int32_t nComponents) = 0;
  virtual void componentNames(std::span<const std::string> zNames) = 0;
  virtual void domainCount(std::int32_t nDomains) = 0;
  virtual void localGrid(const DeckGridRecord& grid) = 0;
  /// Where a run begins; gives the restart file's full name.
  virtual std::string restart(const DeckRestartSource& source) = 0;
  virtual void restartDate(const DeckDate& date) = 0;
  /// The lines of the keywords of one report step, before the schedule line iLine.
  virtual void reportStepLines(std::span<const std::string> zLines, std::int32_t iLine) = 0;

  // At the end of a deck, in this order.
  virtual void finish() = 0;
  virtual void lines(std::span<const std::string> zLines, std::span<const std::int32_t, 9> iSectionLine) = 0;
  /// What `parseSUMMARYKeyWord` kept: section 7, the wells of a W keyword as arguments.
  virtual void summaryKeywords(std::span<const DeckKeywordRecord> records) = 0;
  /// A run with components also has gas and oil, black oil with BLACKOIL gas and dissolved gas.
  virtual void runKind(DeckRunKind kind) = 0;
};

}  // namespace lumbarn
