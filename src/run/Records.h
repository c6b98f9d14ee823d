#pragma once

#include <string>

#include "../frame/Stream.h"
#include "Selections.h"

namespace lumbarn {

/// The file of records that a path means: itself, or for a root name or a folder the only file of the run.
/// Throws Error NotFound if there is none, BadRequest with `candidates` if the path can mean several.
std::string recordFile(const std::string& path);

/// The records of a file, in their order: `keyword`, `type`, `count` and `offset`, the byte, from 0, at which
/// the header stands. Damage is passed over where records stand behind it. Throws Error NotFound, or Damaged
/// when the file has no record that can be read.
Stream records(const std::string& file, const ReadOptions& options = {});

/// The same with all data read: also `min` and `max`, which are null for records without numbers, or of which
/// the data are damaged. Of singles they have the digits of the single, not those of its exact value.
Stream recordStatistics(const std::string& file, const ReadOptions& options = {});

/// The elements of some records, one for each row: `keyword`, `occurrence`, `offset` of the header, `index`
/// of the element from 1, and `value`. The values have the type of the selected records where all have the
/// same; otherwise they are texts, each number in the shortest form of its own type. Texts have no blanks at
/// their end. Throws Error NotFound when nothing is selected, with similar keywords.
Stream recordValues(const RecordSelection& selection, const ReadOptions& options = {});

}  // namespace lumbarn
