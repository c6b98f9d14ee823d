#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "../shapes/ByteTable.h"
#include "../support/Export.h"
#include "SummarySpec.h"

namespace lumbarn {

/// One summary vector, its header taken apart. Texts are empty and numbers absent where a vector of its class
/// has none.
struct SummaryVector {
  std::size_t column = 0;  ///< number, from 1, in the specification or the header array it comes from
  std::string mnemonic;
  std::string classWord;  ///< "WELLS", "FIELD", ..., "LGR", "MISCELLANEOUS"
  std::string lgr;        ///< name of the local grid, for class "LGR"
  std::string lgrClass;   ///< class within it
  std::string member;     ///< well, group or node; for other classes a name that tells the vector from others
  std::optional<std::array<std::int32_t, 3>> cell;                  ///< i, j, k of its grid, from 1
  std::optional<std::int32_t> number;                               ///< region, aquifer or segment
  std::optional<std::pair<std::int32_t, std::int32_t>> regionPair;  ///< flow from the first to the second
  std::string index;  ///< cell, number or pair as the header has it: "10 4 3", "2", "1-2"
  std::string units;
  std::string description;
  /// The full name as the field writes it: mnemonic, then LGR, member and index with ":" before each:
  /// "WOPR:OP_1", "COPR:OP_1:10,4,3", "ROFT:1-2", "LBPR:LGR1:2,2,1".
  std::string name;
};

/// The vectors that the specification's mask keeps, in order; these are the columns of its data.
LUMBARN_API std::vector<SummaryVector> summaryVectors(const SummarySpec& spec);
/// Those of them whose element of `chosen` is true; it has one for each vector that the mask keeps.
LUMBARN_API std::vector<SummaryVector> summaryVectors(const SummarySpec& spec,
                                                      const std::vector<bool>& chosen);
/// Their full names alone; an empty text for a vector whose mnemonic is not wanted.
LUMBARN_API std::vector<std::string> summaryNames(
    const SummarySpec& spec, const std::function<bool(std::string_view mnemonic)>& wanted);
/// The vectors of a header array, merged ones too.
LUMBARN_API std::vector<SummaryVector> summaryVectors(const ByteTable& bHeaders);

}  // namespace lumbarn
