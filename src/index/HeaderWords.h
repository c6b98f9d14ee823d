#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "../support/Export.h"

namespace lumbarn {

/// The words of an `INTEHEAD` record. They count from 1; old files have fewer words than new ones, so a word
/// may be absent.
class HeaderWords {
 public:
  HeaderWords() = default;
  explicit HeaderWords(std::vector<std::int32_t> words) : words_(std::move(words)) {}

  bool has(std::size_t iWord) const { return iWord >= 1 && iWord <= words_.size(); }
  /// The word, or the default for an absent one.
  std::int32_t operator()(std::size_t iWord, std::int32_t absent = 0) const {
    return has(iWord) ? words_[iWord - 1] : absent;
  }
  /// Gives `field` the word; an absent one leaves it as it was.
  void take(std::size_t iWord, std::int32_t& field) const { field = (*this)(iWord, field); }
  const std::vector<std::int32_t>& words() const { return words_; }

  /// Word 95 says which simulator wrote the file; 300 has headers of its own.
  bool isE300() const { return (*this)(95) == 300; }

 private:
  std::vector<std::int32_t> words_;
};

/// Nx times Ny times Nz. Throws Fault 6 when 64 bits do not hold the product, which is damage: grids of more
/// than 2^31 cells exist, and their wells and arrays of active cells are read like those of any other.
LUMBARN_API std::int64_t cellCount(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz);

/// The number of active cells and of cells that the header of a restart file states; absent words count as 0.
/// Throws Fault 6 when the cell count overflows.
LUMBARN_API void PreprocessINTEHEAD(const HeaderWords& iHeader, std::int32_t& nActive, std::int64_t& nCells);

}  // namespace lumbarn
