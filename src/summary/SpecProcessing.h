#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qvEclipseSPEC.h"

namespace lumbarn {

/// The one pass over the vectors of a specification that was read: class, index, description and mask of
/// each. Remembers what it added last, so that a run of equal texts costs one look-up.
class SpecProcessing {
 public:
  explicit SpecProcessing(qvEclipseSPEC& spec) : spec_(spec) {}

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

  qvEclipseSPEC& spec_;
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

}  // namespace lumbarn
