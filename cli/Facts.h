#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

#include "TableWriter.h"

namespace lumbarn::cli {

/// Named facts in order: numbers, texts, lists of them, groups of facts, and lists of groups. Sources that
/// make some include <nlohmann/json.hpp>; it is dear to compile.
using Facts = nlohmann::ordered_json;

/// A text as a JSON string. What is no UTF-8 is replaced, as names in files may be in any encoding.
std::string quotedJson(std::string_view text);

/// Writes facts as one JSON object; as rows `property,value` with the names of groups in front; or for
/// people, with one heading for each group.
void writeFacts(const Facts& facts, Format format, std::ostream& out);

}  // namespace lumbarn::cli
