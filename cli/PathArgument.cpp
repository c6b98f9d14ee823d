#include "PathArgument.h"

#include "Failure.h"
#include "files/Folder.h"

namespace lumbarn::cli {

std::string recordFile(const std::string& argument) {
  if (isFile(argument)) return argument;
  throw Failure(Usage, argument + ": no such file");
}

}  // namespace lumbarn::cli
