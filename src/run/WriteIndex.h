#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "../frame/Stream.h"
#include "Run.h"

namespace lumbarn {

/// An index file that was written.
struct WrittenIndex {
  std::string path;
  bool init = false;  ///< of the INIT file, not of the restart files
  std::int64_t steps = 0;
  std::int64_t records = 0;
};

/// Writes index files (RSSPEC, INSPEC) of a run's restart and INIT files to a folder, named and formed as the
/// files are. An index that is there already is replaced only if `replace` says so. None is written of files
/// that cannot be read to their end, which is reported. Throws Error NotFound without such files, BadRequest
/// for a target that is there already, System when nothing can be written.
std::vector<WrittenIndex> writeIndex(const Run& run, const std::string& folder, bool replace = false,
                                     const ReadOptions& options = {});

}  // namespace lumbarn
