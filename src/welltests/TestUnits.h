#pragma once

#include <string>
#include <string_view>

#include "TestRecords.h"

namespace lumbarn {

/// Unit of an RFT or PLT column by its name, from the texts of WELLETC; rates by length have both with "/"
/// between. Empty for a column without one, and for one that a shorter WELLETC does not have.
std::string connectionUnit(std::string_view zName, const TextArray& welletc);

}  // namespace lumbarn
