#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "HeaderWords.h"

namespace lumbarn {

struct GridCells;
struct IndexStep;

// How many cells of a grid are active. Headers state it, in words that depend on the simulator, and some
// writers state another number than their arrays have: then the length that most of the arrays have decides.
// Which cells these are is decided by `ActiveCells`.

/// What the words of an INTEHEAD state.
struct StatedActive {
  std::int64_t active = 0;  ///< word 12; for the simulator with code 300 word 4 where it is above 0, in
                            ///< restart files only if word 96 is below 1
  std::int64_t other = 0;   ///< the other word of that simulator; 0 for all others
};
StatedActive statedActiveCells(const HeaderWords& iHeader, bool init);

/// How many arrays of a grid have which length.
class ArrayLengths {
 public:
  void add(std::int64_t length);
  std::int64_t arrays(std::int64_t length) const;
  /// Whether no other length has more arrays.
  bool isMostCommon(std::int64_t length) const;
  /// The number of active cells: that of the header, unless more arrays have another length. Such a length is
  /// that of the header's other word, or one that at least two arrays have and most of those that are shorter
  /// than the grid. Arrays with a value for each cell agree with any number below.
  std::int64_t decideActive(const GridCells& cells) const;

 private:
  std::vector<std::pair<std::int64_t, std::int64_t>> counts_;  // length, arrays; few in any file
};

/// Decides the active cells of each grid of a step whose records are all known.
void decideActiveCounts(IndexStep& step);

}  // namespace lumbarn
