#pragma once

#include <string>

namespace lumbarn {

/// Where the files lie that tests use. The work tree's own path is compiled into one source only, so that a
/// compiler cache serves every work tree.
std::string examplePath(const std::string& below);  ///< `below` begins with "/data/" or the like
std::string goldenPath(const std::string& below);
std::string commandPath();

}  // namespace lumbarn
