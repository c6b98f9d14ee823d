#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Session.h"
#include "SummarySpec.h"

namespace lumbarn {

/// Finds the specification file of the run that another one restarted from. `zRoot` is the name that the
/// later run gives: a root without extension, with a path that may be absolute, relative to the later run's
/// folder, cut off by its writer, or of another machine. Tried in order, in each place: the root with each
/// extension of a specification, those of the later run's form first; the root without what follows its last
/// "."; and at last the bare name in the folder of the later run. Gives a specification that has been checked
/// and not read; nothing, with a Diagnosis that names the files looked for, when there is none.
std::optional<SummarySpec> findEarlierRun(std::string_view zRoot, const std::string& zLaterRun,
                                          bool qFormatted, Session& session);

/// The names that are tried, in order.
std::vector<std::string> earlierRunCandidates(std::string_view zRoot, const std::string& zLaterRun,
                                              bool qFormatted);

}  // namespace lumbarn
