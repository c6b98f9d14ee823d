#include "Paths.h"

namespace lumbarn {

std::string examplePath(const std::string& below) { return LUMBARN_EXAMPLES + below; }
#ifdef LUMBARN_COMMAND
std::string goldenPath(const std::string& below) { return LUMBARN_GOLDEN + below; }
std::string commandPath() { return LUMBARN_COMMAND; }
#endif

}  // namespace lumbarn
