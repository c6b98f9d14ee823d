#pragma once

#include <string_view>

namespace lumbarn {

/// True when the whole text matches the pattern, without regard to case: `*` any characters, `?` one
/// character, `#` one digit, `[A-CX]` one character of a set, `[!A-C]` one not in it. A `[` without its `]`
/// stands for itself. Takes time that grows with the product of both lengths at worst, never more.
bool matchesPattern(std::string_view text, std::string_view pattern);

}  // namespace lumbarn
