#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumbarn::fuzz {

/// Changes a record file as a whole instead of by the byte: one record is dropped, doubled, moved, renamed,
/// made longer or shorter, or gets other values, and all are written anew with sound marks. So damage gets
/// past the record layer. Gives the file as it was when it has no records. The seed decides what is done.
std::vector<std::byte> mutateRecords(const std::vector<std::byte>& file, unsigned seed);

}  // namespace lumbarn::fuzz
