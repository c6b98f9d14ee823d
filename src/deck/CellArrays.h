#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "../support/Session.h"
#include "BoxTracker.h"

namespace lumbarn {

/// An array of cells as the simulator has it, after all operations on it.
struct DeckArray {
  std::string name;
  std::array<std::int32_t, 3> size{};
  std::vector<double> values;  ///< all cells in natural order; NaN where the deck gives none
  bool whole = false;          ///< integer array
};

/// What a deck makes of an array: the keywords that set it and EQUALS, COPY, ADD, MULTIPLY, OPERATE,
/// EQUALREG, ADDREG, MULTIREG, COPYREG, OPERATER, COPYBOX, MINVALUE and MAXVALUE in deck order, within BOX or
/// the box of their records. A defaulted box is that of the previous record; for the first record, the
/// one in effect. Cells that nothing sets have what the simulator takes for them where that is known: 1 for
/// NTG, multipliers and regions.
///
/// Reports to the session: operations that are not understood, which are skipped; arrays whose count of
/// numbers differs from the cells of their box; words that are not numbers, after which the array keeps its
/// values. Throws Error NotFound when nothing sets the array, BadRequest when the deck does not state the
/// size of the grid, and BadRecord when a file cannot be read.
DeckArray effectiveArray(const Deck& deck, const std::string& name, Session& session,
                         const std::string& grid = "ROOT");

/// The largest count of numbers that an array of the deck's grids can have. A repeat count beyond it is an
/// error.
std::int64_t mostNumbers(const Deck& deck);

}  // namespace lumbarn
