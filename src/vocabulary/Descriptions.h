#pragma once

#include <string>
#include <string_view>

namespace lumbarn {

/// Long descriptions of vectors. Names may be blank padded. A name that no table knows is its own
/// description, trimmed.

/// Description of a summary variable, zVector being the mnemonic that it is part of. A completion vector that
/// is lumped over completions ("COFRL", "LCOFRL") takes the text of its variable without the "L" and
/// " (lumped)" behind it; a variable that the table knows with its "L" is no such vector.
std::string getSummaryLongDescription(std::string_view zVector, std::string_view zVariable);

enum class BranchTable {
  Segments,   ///< variables of segment vectors, without their "SEG"
  Saturation  ///< columns of saturation tables
};
std::string getBranchLongDescription(std::string_view zVector, std::string_view zVariable,
                                     BranchTable table = BranchTable::Segments);

/// Description of a column of a streamline.
std::string getFrontSimLongDescription(std::string_view zName);
/// The name of a streamline vector in upper case and trimmed, whatever its kind.
std::string getFrontSimVector(std::string_view zKind, std::string_view zName);

}  // namespace lumbarn
