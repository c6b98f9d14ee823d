#include "ReportStep.h"

#include <algorithm>

#include <fmt/format.h>

#include "RestartIndexHeads.h"

namespace lumbarn {

std::int32_t stepNumber(std::optional<std::int32_t> seqnum, std::int32_t fileNumber,
                        std::span<const std::int32_t> intehead) {
  if (seqnum) return *seqnum;
  if (fileNumber >= 0) return fileNumber;
  return std::max(stepOfHead(intehead), -1);
}

std::string_view missingPart(const StepParts& step, const StepParts* before, bool onlyOfUnified) {
  if (!step.header) return "INTEHEAD";
  if (step.solutionOpen()) return "ENDSOL";
  if (onlyOfUnified && step.solutions == 0 && !step.arrays) return "STARTSOL";
  if (!before) return {};
  if (step.localGrids < before->localGrids) return "LGR";
  if (step.solutions < before->solutions) return "STARTSOL";
  return {};
}

bool isCompleteBeforeDamage(const StepParts& step, std::string_view keyword, const StepParts* before) {
  if (keyword == "SEQNUM") return isComplete(step);
  return keyword.empty() && step.solutions > 0 && isComplete(step, before);
}

Diagnosis incompleteStep(const std::string& path, std::int32_t number, std::string_view missing,
                         std::uint64_t offset, const std::string& found) {
  return {.message = Message::StepIncomplete,
          .path = path,
          .problem = number < 0 ? "" : fmt::format("report step {} is not complete", number),
          .offset = offset,
          .expected = std::string(missing),
          .found = found.empty() ? "end of file" : found,
          .action = "skipped the step",
          .cutOff = found.empty()};
}

}  // namespace lumbarn
