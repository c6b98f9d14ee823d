#pragma once

#include <cstddef>

namespace lumbarn {

/// Copies n words of 4 or 8 bytes from anywhere to an aligned place, turning the bytes of each around. Ranges
/// do not overlap.
void copySwapped4(void* out, const void* in, std::size_t n);
void copySwapped8(void* out, const void* in, std::size_t n);

}  // namespace lumbarn
