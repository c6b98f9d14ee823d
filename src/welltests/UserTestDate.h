#pragma once

#include <optional>
#include <string_view>

#include "../support/Dates.h"

namespace lumbarn {

/// The day that a DATE of a user test file means; `text` is upper case. "TH", "RD", "ND", "ST" and commas are
/// left out, and what then stands between "/", "-" and blanks are day, month and year, in the order that the
/// format begins with: "MM" month first, "YY" year first, anything else day first. Letters of the format may
/// be of either case. A month may be a name, of which the first three letters count. A year of one or two
/// digits is one from 1930 to 2029. Nothing when there are not three parts, or no such day.
std::optional<Moment> parseUserTestDate(std::string_view text, std::string_view format);

}  // namespace lumbarn
