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
  bool whole = false;          ///< of whole numbers
};

/// What a deck makes of an array: the keywords that set it and EQUALS, COPY, ADD, MULTIPLY, OPERATE,
/// EQUALREG, ADDREG, MULTIREG, COPYREG, OPERATER, COPYBOX, MINVALUE and MAXVALUE in deck order, within BOX or
/// the box of their records. A box that a record leaves out is that of the record before; of the first, the
/// one in effect. Cells that nothing sets have what the simulator takes for them where that is known: 1 for
/// NTG, multipliers and regions.
///
/// Operations that are not understood, and arrays of another length than their box, are told to the session.
/// Throws Error NotFound when nothing sets the array, BadRequest without a grid's size, and BadRecord.
DeckArray effectiveArray(const Deck& deck, const std::string& name, Session& session,
                         const std::string& grid = "ROOT");

/// The values that one keyword gives, in its order; NaN for defaults. Throws Error Damaged for more
/// than any array of the deck's grids can have.
std::vector<double> arrayAsWritten(const Deck& deck, const DeckKeyword& keyword);

}  // namespace lumbarn
