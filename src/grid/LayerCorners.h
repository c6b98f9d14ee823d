#pragma once

#include <cstdint>
#include <optional>

#include "../shapes/XYData.h"
#include "../support/Session.h"

namespace lumbarn {

class Hadrick;

/// Corner rows, of 24 singles each, of the cells of layers from 1, both ends included, or of their active
/// cells. Nothing for a grid without geometry.
std::optional<XYData> cornersOfLayers(const Hadrick& grid, std::int32_t first, std::int32_t last,
                                      bool activeOnly, Session& session);
/// The same of the layers of a reservoir, from 1. Nothing for one that is not there, too.
std::optional<XYData> cornersOfReservoir(const Hadrick& grid, std::int32_t iRange, bool activeOnly,
                                         Session& session);

}  // namespace lumbarn
