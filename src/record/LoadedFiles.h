#pragma once

#include <map>
#include <string>

#include "../support/System.h"

namespace lumbarn {

/// The state of each file, by path, when a session loaded it last: for requests that name a position in the
/// file and not the load. Kept as a part of the session.
struct LoadedFiles {
  std::map<std::string, FileStamp> stamps;
};

}  // namespace lumbarn
