#pragma once

#include <cstdint>
#include <optional>

#include "../support/Diagnosis.h"
#include "../support/Export.h"
#include "RecordHeader.h"

namespace lumbarn {

/// The types of record files that have rows in the table of keywords.
enum class RecordFile : std::uint8_t {
  Any,  ///< no opinion about any keyword: FLUX files, and files whose type is not known
  Specification,
  Summary,
  Restart,
  RestartIndex,
  Init,
  InitIndex,
  Grid,
  EGrid,
  WellTest,
  Save,
};

/// The damage that a keyword has a type, or fewer elements, than it has in a file of that type: what is read
/// of it would be skipped or misread. Gives offset, keyword, expected and found; empty for a keyword without
/// a row.
LUMBARN_API std::optional<Diagnosis> unexpected(RecordFile file, const RecordHeader& header);

}  // namespace lumbarn
