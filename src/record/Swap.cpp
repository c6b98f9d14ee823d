#include "Swap.h"

#include <cstdint>
#include <cstring>

#include "../support/Wide.h"

namespace lumbarn {

namespace {

inline std::uint32_t turned(std::uint32_t word) { return __builtin_bswap32(word); }
inline std::uint64_t turned(std::uint64_t word) { return __builtin_bswap64(word); }

template <class Word>
[[gnu::always_inline]] inline void copyTurned(void* out, const void* in, std::size_t n) {
  auto* to = static_cast<unsigned char*>(out);
  const auto* from = static_cast<const unsigned char*>(in);
  for (std::size_t i = 0; i < n; ++i) {
    Word word;
    std::memcpy(&word, from + i * sizeof(Word), sizeof(Word));
    word = turned(word);
    std::memcpy(to + i * sizeof(Word), &word, sizeof(Word));
  }
}

// The same loop twice: compiled for any machine, and for those with wide registers.
template <class Word>
void copyPlain(void* out, const void* in, std::size_t n) {
  copyTurned<Word>(out, in, n);
}
template <class Word>
LUMBARN_WIDE void copyWide(void* out, const void* in, std::size_t n) {
  copyTurned<Word>(out, in, n);
}

}  // namespace

void copySwapped4(void* out, const void* in, std::size_t n) {
  hasWide() ? copyWide<std::uint32_t>(out, in, n) : copyPlain<std::uint32_t>(out, in, n);
}

void copySwapped8(void* out, const void* in, std::size_t n) {
  hasWide() ? copyWide<std::uint64_t>(out, in, n) : copyPlain<std::uint64_t>(out, in, n);
}

}  // namespace lumbarn
