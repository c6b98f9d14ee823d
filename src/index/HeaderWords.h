#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace lumbarn {

/// The words of an `INTEHEAD` record. They count from 1; old files have fewer words than new ones, so a word
/// may be absent.
class HeaderWords {
 public:
  HeaderWords() = default;
  explicit HeaderWords(std::vector<std::int32_t> words) : words_(std::move(words)) {}

  std::size_t count() const { return words_.size(); }
  bool has(std::size_t iWord) const { return iWord >= 1 && iWord <= words_.size(); }
  /// The word, or what stands for an absent one.
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

/// Nx times Ny times Nz. Throws Fault 6 when 32 bits do not hold the product.
std::int32_t cellCount(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz);

/// The active cells of a grid of an INIT file: word 12, but word 4 of the simulator with code 300 when that
/// is above 0. In a restart file it is word 12 always.
std::int32_t activeCellsOfInit(const HeaderWords& iHeader);

/// What can be told from a header alone: the active cells, where the simulator with code 300 has them in word
/// 4 (when that is above 0 and word 96 below 1) and all others in word 12, and the cells. Absent words count
/// as 0. Throws Fault 6 when the cell count overflows.
void PreprocessINTEHEAD(const HeaderWords& iHeader, std::int32_t& nActive, std::int32_t& nCells);

}  // namespace lumbarn
