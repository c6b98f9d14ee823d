#pragma once

#include <string>

#include "../support/Session.h"
#include "RestartIndex.h"

namespace lumbarn {

/// Writers of index files, in the form of the files that are indexed. Smallest and largest values that the
/// index does not know yet are found by reading the arrays, a piece at a time. The file appears under its
/// name when it is complete; after a failure or a cancel nothing of it is left, and a file that had the name
/// is as it was. Nothing else is written anywhere: whether an index may stand beside the data is for the host
/// to say by the name that it gives.
///
/// qOK False, with a diagnosis, when the index is not whole, an array cannot be read, or the file cannot be
/// written; without one when cancelled.

/// Writes the index of a restart set: RSSPEC.
void WriteEclipseRsspecFile(const RestartIndex& index, const std::string& zFile, bool& qOK,
                            Session& session = Session::process());
/// Writes the index of an INIT file: INSPEC.
void WriteEclipseInspecFile(const RestartIndex& index, const std::string& zFile, bool& qOK,
                            Session& session = Session::process());

}  // namespace lumbarn
