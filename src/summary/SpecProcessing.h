#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Session.h"
#include "SummarySpec.h"

namespace lumbarn {

/// The one pass over the vectors of a specification that was read: class, index, description and mask of
/// each. Remembers what it added last, so that a run of equal texts costs one look-up.
class SpecProcessing {
 public:
  SpecProcessing(SummarySpec& spec, Session& session) : spec_(spec), session_(session) {}

  /// `processSPECRecords`. False when the load was cancelled.
  bool processSPECRecords();

 private:
  /// What follows from a mnemonic alone.
  struct Mnemonic {
    std::int32_t number = -1;  ///< in store 11
    std::string zKey;
    char letter = ' ';  ///< class letter; of the class within the LGR for an LGR vector
    bool miscellaneous = false;
    bool inLGR = false;
    std::string zClass;
    std::int32_t iVerbose = -1;
    std::int32_t iLGRClass = -1;
  };
  /// The text added last to a store and its number.
  struct Last {
    std::optional<std::string> text;
    std::int32_t number = -1;
  };

  void setMnemonic(std::int32_t number);
  void vector(std::size_t i);
  std::string index(std::size_t i) const;
  void setClass(VECTORDATA& xVector, std::string_view zClass);
  void setLGRName(VECTORDATA& xVector);
  void setMember(std::size_t i, std::string_view zIndex);
  bool distinguishes(std::size_t i, std::string_view zIndex) const;
  void setUnitSystem();
  void blankDummies();
  void adjustClassCounts();
  std::int32_t add(std::int32_t iAttribute, Last& last, std::string_view text);

  SummarySpec& spec_;
  Session& session_;
  std::int32_t dummy_ = -1;  // number of the dummy name in store 9
  Mnemonic mnemonic_;
  Last class_, index_, lgrName_;
  std::vector<std::int32_t> classUses_;  // by number in store 6, from 0: vectors of that class
  struct DummyCount {
    char letter;
    std::string_view zClass;
    std::int32_t count = 0;
  };
  std::array<DummyCount, 5> dummies_{
      {{'C', "COMPLETIONS"}, {'G', "GROUPS"}, {'S', "SEGMENTS"}, {'N', "NODES"}, {'W', "WELLS"}}};
};

/// The text "i j k" of a cell number for c "B" and "C", the number itself for "R", "A" and "S", else empty. A
/// cell that is not in the grid of iDIMENS (words 2 to 4 are NX, NY, NZ) gives an empty text.
std::string createVectorIndex(char c, std::int32_t n, std::span<const std::int32_t> iDIMENS);

}  // namespace lumbarn
