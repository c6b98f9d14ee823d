#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "../support/Session.h"
#include "Families.h"

namespace lumbarn {

/// The files that a load of summary or restart data reads.
struct FileChoice {
  bool unified = true;
  std::vector<std::string> files;  ///< the unified file, or the step files in order of step; may be empty
  std::int32_t namedStep = -1;     ///< the step of the step file that was named; -1: none was named
};

/// Decides which files to read when a run has both a unified file and step files, as a rerun leaves them when
/// its output was changed from one to the other:
/// - a file that was named is read; of a step file, the set that it belongs to;
/// - with `unified` set by the host or by recognition, that form;
/// - otherwise the unified file, unless every step file is at least a minute newer. A remark states which.
///
/// `kind` is Summary or Restart. `named` is a member of the run or its root name.
FileChoice chooseFiles(Session& session, const std::string& named, FileKind kind,
                       std::optional<bool> unified = std::nullopt);
FileChoice chooseFiles(Session& session, const RunFamily& run, FileKind kind);

/// Whether the name is that of one step's file, which then holds that step only. Some writers begin each of
/// these files with SEQNUM, as unified files begin, so the content does not decide this.
bool isStepFile(const std::string& path);

/// The file of a type that a path leads to: the path itself when it is a file, unless its name makes it a
/// file of another type listed in `leads` (a data file that leads to its specification, an index that leads
/// to its data); otherwise the file of that type of the run whose root name or folder it is. The path itself
/// when there is none.
std::string fileOfRun(const std::string& path, FileKind kind, std::span<const FileKind> leads = {});

/// Reports each step file that is more than a minute older than the one before it: a rerun with fewer steps
/// leaves the last files of the earlier run. Files that were unpacked may be out of order by milliseconds.
void reportOlderStepFiles(Session& session, std::span<const std::string> files);

}  // namespace lumbarn
