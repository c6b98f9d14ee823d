#pragma once

#include <string>

#include "Console.h"
#include "Facts.h"
#include "FileCheck.h"
#include "files/Families.h"
#include "reader/qvEclipseReader.h"

namespace lumbarn::cli {

/// While it lives, the session's diagnoses go to `report`, other than those of tables that are likely not in
/// use: where they matter they are told by a note.
class DiagnosesWithoutLeftovers {
 public:
  DiagnosesWithoutLeftovers(Session& session, FindingSink report);
  ~DiagnosesWithoutLeftovers() { session_.diagnosisSink = before_; }
  DiagnosesWithoutLeftovers(const DiagnosesWithoutLeftovers&) = delete;
  DiagnosesWithoutLeftovers& operator=(const DiagnosesWithoutLeftovers&) = delete;

 private:
  Session& session_;
  FindingSink before_;
};

/// Reports arrays, pore volumes and simulation tables of an INIT file that do not fit together.
void checkInit(const std::string& path, Session& session, const FindingSink& report);

/// Phases, counts of arrays and connections, and simulation tables of an INIT file.
void addInitContent(Facts& facts, const std::string& path, Console& console);

/// The INIT file of a run, walked and not read, in `reader`. Throws Failure when there is none or nothing of
/// it can be read.
void openInit(qvEclipseReader& reader, const RunFamily& run, bool tables, Console& console);

/// The number of the grid that an option names; empty means the global one. Throws Failure, with the grids
/// that there are.
std::int32_t gridNumber(const qvEclipseINIT& init, const std::string& name);

}  // namespace lumbarn::cli
