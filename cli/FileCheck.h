#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "Console.h"
#include "files/Families.h"
#include "record/RecordCursor.h"

namespace lumbarn::cli {

using FindingSink = std::function<void(Diagnosis)>;

/// What a walk over a file gives.
struct FileCheck {
  bool readable = false;     ///< it is a record file, and its first record is whole
  std::int64_t records = 0;  ///< whole ones
  const char* unit = "record";
  std::int64_t findings = 0;
};

/// Reads every record of a file with all its data, and reports what is wrong with any. Damage inside of a
/// record's data lets the walk go on behind it, damage to the headers ends it. Also reports numbers that
/// should rise and do not: `SEQNUM` of a restart, `SEQHDR` and `MINISTEP` of a summary; rows of a summary
/// that are not whole or have not `vectors` values. Throws Failure when cancelled.
/// A text of well tests is read as such, and its tests are counted.
FileCheck checkFile(const RunMember& file, std::optional<std::int64_t> vectors, Console& console,
                    const FindingSink& report);

/// Reports what keeps a save file whose records are whole from telling its steps.
void checkSave(const RunMember& file, Session& session, const FindingSink& report);

/// Reports what does not fit together in a summary specification, and a run that it names as the one it
/// restarted from but that cannot be found. Gives the count of its vectors, if it can be read.
std::optional<std::int64_t> checkSpecification(const RunMember& file, Session& session,
                                               const FindingSink& report);

/// Reports what does not fit together in a grid file: arrays and sizes, parents, host cells, connections.
void checkGrid(const RunMember& file, Session& session, const FindingSink& report);

/// Loads a file of well tests as kind says, and reports what of it makes no sense. Gives the count of tests,
/// if it can be read.
std::optional<std::int64_t> checkWellTests(const std::string& path, FileKind kind, Session& session,
                                           const FindingSink& report);
/// Reports the steps of a restart file that are not complete.
void checkSteps(const RunFamily& run, const RunMember& file, Session& session, const FindingSink& report);
/// Reports why an index file (RSSPEC, INSPEC) is not that of the run's restart or INIT file, if it has one.
void checkIndex(const RunFamily& run, const RunMember& file, Session& session, const FindingSink& report);

}  // namespace lumbarn::cli
