#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumbarn {

/// A vector name without the blanks around it and without what stands before its first letter A to Z. Leading
/// digits and lower-case letters go, and a name without a capital letter becomes empty: deliberate, as
/// derived arrays are found by what is left.
std::string_view cleanVectorName(std::string_view zName);
/// The same for each name of a list.
void CleanUpVectorNames(std::vector<std::string>& zNames, bool& qOK);

}  // namespace lumbarn
