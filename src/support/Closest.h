#pragma once

#include <span>
#include <string>
#include <string_view>

namespace lumbarn {

/// The known word that a mistyped one most likely stands for; empty when none is close.
std::string closest(std::string_view word, std::span<const std::string> known);

/// The names that there are, for a message: "A, B, C and 12 others".
std::string listText(std::span<const std::string> names);

}  // namespace lumbarn
