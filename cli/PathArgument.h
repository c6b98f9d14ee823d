#pragma once

#include <string>
#include <vector>

#include "files/Families.h"

namespace lumbarn::cli {

/// The one run that an argument means: a member of its files, its root name or its folder. Throws Failure,
/// with the list of runs when several fit.
RunFamily findRun(const std::string& argument);

/// The summary specification of a run. Throws Failure when it has none.
RunMember summarySpecification(const RunFamily& run);

/// The file to load a run's summary by: its data file if that was named, which is then the one that is read,
/// otherwise its specification.
std::string summaryFile(const RunFamily& run);

/// The paths of a run's files.
std::vector<std::string> pathsOf(const RunFamily& run);

/// A file's name without its folder.
std::string nameOfFile(const std::string& path);

}  // namespace lumbarn::cli
