#pragma once

#include "Transforms.h"

namespace lumbarn {

/// Converts the values of tables that have the unit of each row in a column "unit", as long forms and
/// statistics do. Other tables remain as they are. `convertUnits` calls it.
Stream convertRowUnits(Stream stream, Units units);

}  // namespace lumbarn
