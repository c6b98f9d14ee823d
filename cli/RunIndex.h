#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Console.h"
#include "files/Families.h"
#include "index/RestartIndex.h"

namespace lumbarn::cli {

/// The files of a run's restart set in order of step: one unified file, or one for each step. Throws Failure
/// when it has none.
std::vector<std::string> restartFiles(const RunFamily& run, Session& session);
/// The step of the step file that the run was named by: the default of `--step`.
std::optional<std::int32_t> namedStep(const RunFamily& run);

/// What stands where in a run's restart set, or in its INIT file; by the index file beside it when there is
/// one that agrees. Throws Failure when the run has no such files, when nothing can be read, and when
/// cancelled.
RestartIndex restartIndex(const RunFamily& run, Console& console);
RestartIndex initIndex(const RunFamily& run, Console& console);

/// What to tell whoever asked a file for a report step that it does not have: "RUN.UNRST has no report step
/// 4; it has 0:3, 5".
std::string noStepText(const std::string& file, std::int32_t step, const std::vector<std::int32_t>& steps);

}  // namespace lumbarn::cli
