#pragma once

#include <string>

namespace lumbarn::cli {

/// The one record file that an argument means. Throws Failure.
std::string recordFile(const std::string& argument);

}  // namespace lumbarn::cli
