#include "Checks.h"

/// First byte: bit 0 for 1-byte marks, bit 1 for the other byte order. The rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumbarn;
  if (size == 0) return 0;
  const Form form{data[0] & 1 ? Framing::OneByteMarks : Framing::FourByteMarks, (data[0] & 2) != 0};
  fuzz::checkRecords(fuzz::bytesOf({data + 1, size - 1}), form);
  return 0;
}
