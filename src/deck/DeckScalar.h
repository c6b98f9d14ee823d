#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace lumbarn {

/// One value of a deck, of the type that goes with what was asked for.
using DeckScalar = std::variant<std::string, bool, std::int32_t, float>;

}  // namespace lumbarn
