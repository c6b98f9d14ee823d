#pragma once

#include <span>
#include <string>

#include "RestartIndex.h"

namespace lumbarn {

/// Whether an index that was read from a file describes the files that it names, as far as this can be
/// checked without walking them. Empty if it does, otherwise the reason. Adds what only the files state: the
/// form, and the cells of each grid.
///
/// All positions must rise, leave room for the records between them, and lie inside the file. At the start of
/// the file, in front of some 64 steps spread over it, and behind the last the headers are read: the records
/// there must be those of the index, without further report steps between or after them, and with the number
/// that the index has. Numbers and times of all steps must rise. The headers of
/// the first and the last step must have the date and time that the index has, and the last step must be
/// complete.
///
/// A wrong position elsewhere is found when the record is read.
std::string disagreement(RestartIndex& index);

/// The name of a group's grid, as people are told it.
std::string nameOf(const IndexGroup& group);

/// The index of a restart set: read from `rsspec` if that is not empty and agrees with the files, otherwise
/// made by walking them. An index that does not agree is reported as a diagnosis.
RestartIndex indexOfRestart(Session& session, std::span<const std::string> files, const std::string& rsspec);
/// The same for an INIT file and its `inspec`.
RestartIndex indexOfInit(Session& session, const std::string& file, const std::string& inspec);

}  // namespace lumbarn
