#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "SummaryVector.h"

namespace lumbarn {

/// The patterns of a list, blanks around each removed, empty ones left out. A comma separates two patterns
/// unless it stands inside the numbers of a cell: behind a ":", three items in a row that are made of digits,
/// `*` and `?` only are one cell. So "BPR:10,4,3,FOPR" is "BPR:10,4,3" and "FOPR".
std::vector<std::string> splitPatterns(std::string_view list);

/// Which mnemonics any of the lists can choose at all, so that the names of all others need not be made.
class MnemonicFilter {
 public:
  MnemonicFilter(std::span<const std::string> only, std::span<const std::string> except);
  bool operator()(std::string_view mnemonic) const;

 private:
  void add(std::string_view pattern);

  struct Beginning {
    std::string letters;  ///< upper case, up to the first wildcard or ":"
    bool whole = false;   ///< it is a whole mnemonic
  };
  std::vector<Beginning> beginnings_;
};

/// What patterns choose out of vectors.
struct VectorSelection {
  std::vector<bool> mask;              ///< one entry per vector
  std::vector<std::int32_t> rank;      ///< orders vectors by the first pattern to keep that fits; -1: none
  std::vector<std::string> unmatched;  ///< patterns that fit no vector, as given, those to keep first
};

/// Chooses vectors by their full names (`summaryNames`), without regard to case, in UTF-8 or Latin-1; `*`
/// stands for any characters and `?` for one. Each text of `only` and `except` is a list as `splitPatterns`
/// takes it. Keeps what fits a pattern of `only`, or everything when that is empty, less what fits one of
/// `except`. A text that is the full name of a vector letter by letter means that vector, whatever commas or
/// wildcards the name holds.
VectorSelection selectVectors(std::span<const std::string> vectorNames, std::span<const std::string> only,
                              std::span<const std::string> except);

/// The same for vectors that have been taken apart already.
VectorSelection selectVectors(std::span<const SummaryVector> vectors, std::span<const std::string> only,
                              std::span<const std::string> except);

}  // namespace lumbarn
