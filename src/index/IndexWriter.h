#pragma once

#include <string>

#include "../support/Session.h"
#include "RestartIndex.h"

namespace lumbarn {

/// Writes an index to a file, RSSPEC or INSPEC by what it is the index of; see IndexFile.h. Throws BadRecord,
/// Fault and LoadCanceled.
void writeIndexFile(const RestartIndex& index, const std::string& zFile, Session& session);

}  // namespace lumbarn
