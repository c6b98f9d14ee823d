#pragma once

#include <string_view>

namespace lumbarn {

/// True when the whole text matches the pattern, without regard to case: `*` any characters, `?` one
/// character, `#` one digit, `[A-CX]` one character of a set, `[!A-C]` one not in it. A `-` at either end of
/// a set stands for itself, as does a `!` that is all of it. A `[` without its `]`, or with the `]` right
/// behind it, stands for itself. Takes time that grows with the product of both lengths at worst, never more.
bool matchesPattern(std::string_view text, std::string_view pattern);

/// True when the text has a character that `matchesPattern` does not take as itself.
bool hasWildcard(std::string_view pattern);

}  // namespace lumbarn
