#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "AttributeStore.h"
#include "VectorData.h"

namespace lumbarn {

constexpr std::int32_t nClassSlots = 12;
constexpr std::int32_t miscellaneousSlot = 7;

/// One member (well, group, ...) of a class.
struct MEMBERDATA {
  std::string zMember;
  std::int32_t nMemberVectors = 0;
  std::vector<std::int32_t> iPointers;  ///< kept for a dialog, of the same length as iVectors
  std::vector<std::int32_t> iVectors;   ///< vector numbers, from 1
};

/// One class of vectors.
struct ECLIPSECLASS {
  std::string zClass;
  std::int32_t nMembers = 0;
  std::int32_t nVectors = 0;
  std::vector<std::int32_t> iVectors;  ///< vector numbers, from 1, in header order
  std::vector<bool> qVectors;          ///< one for each vector of the class
  std::vector<MEMBERDATA> xMember;
  std::vector<bool> qMemberChosen;
};

/// What a file set offers and what the caller chose. Class slots count from 1; use `slot`.
struct ECLIPSEINFO {
  bool qValid = false;
  bool qAllClasses = true;
  std::int32_t nClasses = 0;
  std::int32_t nVectors = 0;
  bool qAllMembers = true;
  std::array<bool, nClassSlots> qClassPresent{};
  std::array<bool, nClassSlots> qClassChosen{};
  std::array<ECLIPSECLASS, nClassSlots> xClass;
  std::int32_t nPlotVectors = 0;
  std::vector<std::string> zPlotVectors;
  std::vector<bool> qPlotChosen;
  std::int32_t nSolutionVectors = 0;
  ByteTable bSolutionNames;  ///< item width up to 16
  std::vector<bool> qSolutionChosen;
};

/// Slot of a class word, from 1; 0 for a word that is none. Slot 11 has no name, so an empty word gives 0
/// too.
std::int32_t getClassIndex(std::string_view zClass);
/// Class word of a slot, empty for slot 11 and numbers outside 1..12.
std::string_view classWord(std::int32_t iClass);

/// Resets to nothing present, with the 12 class words in place.
void InitEclipseINFO(ECLIPSEINFO& xInfo, bool& qOK);
void InitECLIPSECLASS(ECLIPSECLASS& xClass, bool& qOK);
/// Fills the classes from vectors; all present classes chosen. Without class strings qValid is False and the
/// rest is left as it was.
void setByteECLIPSEINFO(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                        ECLIPSEINFO& xInfo, bool& qOK);
/// Fills the members of each class; all chosen. Does nothing unless qValid.
void setByteECLIPSECLASS(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                         ECLIPSEINFO& xInfo, bool& qOK);
/// Carries the selection of xSource over to another file's classes.
void setPlotClassList(const ECLIPSEINFO& xSource, ECLIPSEINFO& xTarget, bool& qOK, bool qCopyMembers);
/// The vectors that the selection keeps; one True when xInfo is not valid. Marks "MISCELLANEOUS" as chosen.
std::vector<bool> vectorMask(ECLIPSEINFO& xInfo);

}  // namespace lumbarn
