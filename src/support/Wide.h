#pragma once

namespace lumbarn {

/// For loops that are compiled a second time for processors with 256-bit registers: LUMBARN_WIDE marks that
/// version, and `hasWide` tells whether it may be called.
#if defined(__x86_64__) && defined(__GNUC__)
#define LUMBARN_WIDE __attribute__((target("avx2")))
inline bool hasWide() { return __builtin_cpu_supports("avx2") != 0; }
#else
#define LUMBARN_WIDE
inline bool hasWide() { return false; }
#endif

}  // namespace lumbarn
