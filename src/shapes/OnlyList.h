#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Session.h"
#include "ByteTable.h"
#include "EclipseInfo.h"

namespace lumbarn {

constexpr std::size_t onlyWidth = 56;      ///< bytes of one entry of `bOnly`
constexpr std::size_t onlyNameWidth = 16;  ///< of which the name; the rest is the member

/// Selection state that one session keeps: the `ECLIPSEINFO` of the load in progress and the text list of
/// `zOnly`.
struct SelectionState {
  ECLIPSEINFO xInfo;
  std::vector<std::string> zOnly;
  bool qOnly = true;
  std::int32_t nOnly =
      0;  ///< entries of zOnly that count; overwritten by the number of headers last handed out
};

/// `bOnly` with nothing in it: one row of blanks.
ByteTable emptyOnlyList();
/// True when bytes 1..16 of entry 1 are blank, or an entry has fewer than 16 bytes, or there is none.
bool isEmptyOnlyList(const ByteTable& bOnly);

void CreateOnlyList(std::int32_t iType, ECLIPSEINFO& xInfo, ByteTable& bOnly, bool& qOnly, bool& qOK);
std::int32_t ActualInOnlyList(std::int32_t iType, ECLIPSEINFO& xInfo);
std::int32_t ActualInExceptList(std::int32_t iType, ECLIPSEINFO& xInfo);
void OnlyList(std::int32_t iType, ECLIPSEINFO& xInfo, ByteTable& bOnly, bool& qOK);
void ExceptList(std::int32_t iType, ECLIPSEINFO& xInfo, ByteTable& bOnly, bool& qOK);
void setECLIPSEINFOFromOnly(Session& session, const AttributeStores& xStore,
                            std::span<const VECTORDATA> xVectors, const ByteTable& bOnly, bool qOnly,
                            ECLIPSEINFO& xInfo, bool& qOK);
void ExpandOnlyList(Session& session, const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                    const ByteTable& bOnly, bool qOnly, ECLIPSEINFO& xInfo, bool& qOK);
bool checkMembersInOnly(const ByteTable& bOnly);
/// Keeps the derived saturation chosen in step with the other two; True when nothing had to be done.
bool CheckDerivedSaturations(ECLIPSEINFO& xInfo);

void setEclipseONLYList(Session& session, std::span<const std::string> zOnly, bool qOnly);
void getEclipseONLYList(const Session& session, std::vector<std::string>& zOnly, bool& qOnly);
/// Whether a vector with that name is to be loaded. Looks at the first nOnly items only.
bool checkEclipseONLYList(Session& session, std::string_view zName);

/// What one item of the text list is made of.
struct OnlyItem {
  std::string_view zClass;     ///< class word
  std::string_view zLGRClass;  ///< class within the LGR, for class "LGR"
  std::string_view zName;      ///< mnemonic
  std::string_view zMember;
  std::string_view zIndex;  ///< cell, region or aquifer numbers, blanks between
  std::string_view zLGR;    ///< LGR name
};
/// The text of an item, as it stands in `zOnly`: "COPR CELL 1 2 3 P1", "RPR REGN 2", ...
std::string AddToOnlyList(const OnlyItem& item);

}  // namespace lumbarn
