#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "AttributeStore.h"
#include "VectorData.h"

namespace lumbarn {

constexpr std::int32_t nClassSlots = 12;
constexpr std::int32_t miscellaneousSlot = 7;

/// One member (well, group, ...) of a class.
struct MEMBERDATA {
  std::string zMember;
  std::int32_t nMemberVectors = 0;
  std::vector<std::int32_t> iPointers;  ///< zeros, of the same length as iVectors: kept for a dialog
  std::vector<std::int32_t> iVectors;   ///< vector numbers, from 1
};

/// One class of vectors. The counts say how much of an array holds; an array may be longer, as the one
/// element of each in a class that has nothing, or the members of a class whose count `setPlotClassList` took
/// away.
struct LUMBARN_API ECLIPSECLASS {
  std::string zClass;
  std::int32_t nMembers = 0;
  std::int32_t nVectors = 0;
  std::vector<std::int32_t> iVectors = std::vector<std::int32_t>(1);  ///< from 1, in header order
  std::vector<bool> qVectors = std::vector<bool>(1, true);            ///< one for each vector of the class
  std::vector<MEMBERDATA> xMember = std::vector<MEMBERDATA>(1);
  std::vector<bool> qMemberChosen = std::vector<bool>(1);

  /// nMembers, but no more than the arrays hold.
  std::size_t members() const;
};

/// The 12 classes with their words and nothing in them.
LUMBARN_API std::array<ECLIPSECLASS, nClassSlots> namedClasses();

/// What a file set offers and what the caller chose. Class slots count from 1; use `slot`.
struct ECLIPSEINFO {
  bool qValid = false;
  bool qAllClasses = true;  ///< no class that is present was left out; kept by the routines that choose
  std::int32_t nClasses = 0;
  std::int32_t nVectors = 0;
  bool qAllMembers = true;
  std::array<bool, nClassSlots> qClassPresent{};
  std::array<bool, nClassSlots> qClassChosen{};
  std::array<ECLIPSECLASS, nClassSlots> xClass = namedClasses();
  std::int32_t nPlotVectors = 0;
  std::vector<std::string> zPlotVectors;
  std::vector<bool> qPlotChosen;
  std::int32_t nSolutionVectors = 0;
  ByteTable bSolutionNames;  ///< item width up to 16
  std::vector<bool> qSolutionChosen;
};

/// Slot of a class word, from 1; 0 for a word that is none. Slot 11 has no name, so an empty word gives 0
/// too.
LUMBARN_API std::int32_t getClassIndex(std::string_view zClass);
/// Class word of a slot, empty for slot 11 and numbers outside 1..12.
LUMBARN_API std::string_view classWord(std::int32_t iClass);
/// Place of a class slot in the arrays of `ECLIPSEINFO`. Throws Fault 9 outside 1..12, so for what
/// `getClassIndex` gives for a word that is none.
LUMBARN_API std::size_t slot(std::int32_t iClass);

/// Fills the classes from vectors; all present classes chosen, what the record held of other vectors goes.
/// Vectors whose class is not in the table are in no class list. Without class strings only nVectors is set
/// and qValid False.
LUMBARN_API void fillClasses(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                             ECLIPSEINFO& xInfo);
/// Fills the members of each class, in the order of the member store; all chosen. Does nothing unless qValid.
/// Throws Fault 9 when vectors have members and there is no member store.
LUMBARN_API void fillMembers(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                             ECLIPSEINFO& xInfo);
/// Carries the selection of xSource over to another file's classes; with qCopyMembers, and unless all members
/// of xSource are taken, that of members too, and qAllMembers of xTarget is then False. A class that is left
/// with no member chosen, so also one that has none, is then not chosen. Classes passed in the search for a
/// class word lose their member count.
LUMBARN_API void carrySelection(const ECLIPSEINFO& xSource, ECLIPSEINFO& xTarget, bool qCopyMembers);

/// Calling forms: the first two make a record or a class new, the others are the three above.
LUMBARN_API void InitEclipseINFO(ECLIPSEINFO& xInfo, bool& qOK);
LUMBARN_API void InitECLIPSECLASS(ECLIPSECLASS& xClass, bool& qOK);
LUMBARN_API void setByteECLIPSEINFO(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                                    ECLIPSEINFO& xInfo, bool& qOK);
LUMBARN_API void setByteECLIPSECLASS(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                                     ECLIPSEINFO& xInfo, bool& qOK);
LUMBARN_API void setPlotClassList(const ECLIPSEINFO& xSource, ECLIPSEINFO& xTarget, bool& qOK,
                                  bool qCopyMembers);

/// The vectors that the selection keeps, nVectors of them; one True when xInfo is not valid. Marks
/// "MISCELLANEOUS", where present, as chosen; no list can leave out any of its vectors. Throws Fault 9 for a
/// record that lists vectors beyond nVectors.
LUMBARN_API std::vector<bool> vectorMask(ECLIPSEINFO& xInfo);
/// Brings qAllClasses in step with the classes chosen.
LUMBARN_API void noteAllClasses(ECLIPSEINFO& xInfo);

}  // namespace lumbarn
