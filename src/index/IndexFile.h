#pragma once

#include <string>

#include "../support/Session.h"
#include "RestartIndex.h"

namespace lumbarn {

/// Writers of index files, in the form of the files that are indexed. Smallest and largest values that the
/// index does not know yet are found by reading the arrays, a piece at a time. The file appears under its
/// name when it is complete; after a failure or a cancel nothing of it is left, and an existing file of that
/// name is unchanged. No other file is written: the host chooses the folder by the name that it passes.
///
/// qOK False, with a diagnosis, when the index is not complete, an array cannot be read, or the file cannot
/// be written; without one when cancelled.

/// Writes the index of a restart set: RSSPEC.
void WriteEclipseRsspecFile(const RestartIndex& index, const std::string& zFile, bool& qOK,
                            Session& session = Session::process());
/// Writes the index of an INIT file: INSPEC.
void WriteEclipseInspecFile(const RestartIndex& index, const std::string& zFile, bool& qOK,
                            Session& session = Session::process());

}  // namespace lumbarn
