#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "../files/Families.h"
#include "../support/Diagnosis.h"

namespace lumbarn {

class Session;

using FindingSink = std::function<void(Diagnosis)>;

/// What to look at in a file.
struct CheckRequest {
  bool values = false;                       ///< all data, and so the marks inside of records
  std::optional<std::int64_t> vectors = {};  ///< of a summary: values of a row
};

/// What a walk over a file gives.
struct FileCheck {
  bool readable = false;     ///< it is a record file, and its first record is whole
  std::int64_t records = 0;  ///< whole ones
  const char* unit = "record";
  std::int64_t findings = 0;
};

/// Walks the records of a file, and reports what is wrong with any: its header, and the first and last mark
/// of its data, or all marks and values. Damage inside of a record's data lets the walk go on behind it,
/// damage to the headers ends it. Also reports numbers that should rise and do not: `SEQNUM` of a restart,
/// TIME of a summary; rows of a summary that are not whole or have another count of values than its
/// specification. Throws LoadCanceled. A text of well tests is read as such, and its tests are counted.
FileCheck checkFile(const RunMember& file, const CheckRequest& request, Session& session,
                    const FindingSink& report);

}  // namespace lumbarn
