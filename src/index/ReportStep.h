#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "../support/Diagnosis.h"
#include "../support/Export.h"

namespace lumbarn {

/// The number of a report step: the value of its `SEQNUM` record, else the number in the name of its file
/// (-1: none), else word 69 of the global grid's `INTEHEAD` unless that is below 0. -1 when there is none of
/// them. Some writers have 1 in word 69 of the initial state, which is step 0 by its `SEQNUM`.
LUMBARN_API std::int32_t stepNumber(std::optional<std::int32_t> seqnum, std::int32_t fileNumber,
                                    std::span<const std::int32_t> intehead);

/// What the records of one report step consist of; `SectionTracker` counts them.
struct StepParts {
  bool header = false;            ///< INTEHEAD of the global grid
  std::int32_t solutions = 0;     ///< STARTSOL records, one for each grid with a solution
  std::int32_t solutionEnds = 0;  ///< ENDSOL records
  std::int32_t localGrids = 0;    ///< LGR records
  bool arrays = false;            ///< records of numbers that may be cell arrays

  bool solutionOpen() const { return solutions > solutionEnds; }
};

/// The record that a step lacks; empty when the step is complete. A complete step has a header, every
/// STARTSOL has its ENDSOL, and the next step begins behind it or the file ends between two records.
///
/// `before` is set for the last step of a unified file or of a set of step files: the step before it, whose
/// solutions and local grids it must have too, as a file that is truncated between two records shows nothing
/// else. It is null for other steps and for a single step. A single step file may have wells and no solution;
/// `onlyOfUnified` is set for the single step of a unified file, which then is still being written.
LUMBARN_API std::string_view missingPart(const StepParts& step, const StepParts* before = nullptr,
                                         bool onlyOfUnified = false);
inline bool isComplete(const StepParts& step, const StepParts* before = nullptr) {
  return missingPart(step, before).empty();
}
/// Whether a step is complete although what follows it cannot be read: the record of that keyword, empty when
/// its header cannot be read either.
LUMBARN_API bool isCompleteBeforeDamage(const StepParts& step, std::string_view keyword,
                                        const StepParts* before);
/// What is reported of a step that is not: `found` is the record at `offset`, empty at the end of the file.
LUMBARN_API Diagnosis incompleteStep(const std::string& path, std::int32_t number, std::string_view missing,
                                     std::uint64_t offset, const std::string& found);

}  // namespace lumbarn
