#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "../files/Families.h"
#include "FileCheck.h"

namespace lumbarn {

// What the records of a sound file say: whether it fits together. Each reports what does not.

/// Arrays, pore volumes and simulation tables of an INIT file.
void checkInit(const std::string& path, Session& session, const FindingSink& report);

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

}  // namespace lumbarn
