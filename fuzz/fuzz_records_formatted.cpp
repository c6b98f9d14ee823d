#include "Checks.h"

/// The input is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumbarn;
  fuzz::checkRecords(fuzz::bytesOf({data, size}), {Framing::Formatted, false});
  return 0;
}
