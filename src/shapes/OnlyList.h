#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "../support/Session.h"
#include "ByteTable.h"
#include "EclipseInfo.h"

namespace lumbarn {

constexpr std::size_t onlyWidth = 56;      ///< bytes of one entry of `bOnly`
constexpr std::size_t onlyNameWidth = 16;  ///< of which the name; the rest is the member

/// Selection state that one session keeps: the `ECLIPSEINFO` of the load in progress and the text list of
/// `zOnly`, which only `setEclipseONLYList` fills.
struct SelectionState {
  ECLIPSEINFO xInfo;
  std::vector<std::string> zOnly;
  std::map<std::string, std::size_t, std::less<>> placeOf;  ///< first place of each text in zOnly, from 0
  bool qOnly = true;
  /// Entries of zOnly that count; overwritten by the number of headers last handed out.
  std::int32_t nOnly = 0;
};

/// `bOnly` with nothing in it: one row of blanks.
LUMBARN_API ByteTable emptyOnlyList();
/// True when bytes 1..16 of entry 1 are blank, or an entry has fewer than 16 bytes, or there is none.
LUMBARN_API bool isEmptyOnlyList(const ByteTable& bOnly);

/// The lists of a selection by data kind iType: 13 summary (class word, member or "ALL"), 11 restart and 15
/// INIT (vector name). Other kinds have no entries.
///
/// Makes bOnly in whichever sense has fewer entries, the positive at a tie: qOnly True names what to load. A
/// selection of all gives the negative sense with nothing in it, one of nothing the positive sense with
/// nothing in it, which counts as no list; both are one row of blanks. Members with a blank name cannot be
/// named by a list. Derived saturations of restarts are brought in step first.
struct ChosenList {
  ByteTable bOnly;
  bool qOnly = true;
};
LUMBARN_API ChosenList makeOnlyList(std::int32_t iType, ECLIPSEINFO& xInfo);
/// Calling form of the same.
LUMBARN_API void CreateOnlyList(std::int32_t iType, ECLIPSEINFO& xInfo, ByteTable& bOnly, bool& qOnly,
                                bool& qOK);
/// Number of entries that the positive or the negative list needs.
LUMBARN_API std::int32_t ActualInOnlyList(std::int32_t iType, ECLIPSEINFO& xInfo);
LUMBARN_API std::int32_t ActualInExceptList(std::int32_t iType, ECLIPSEINFO& xInfo);
/// Write the entries from the first row on; rows beyond stay as they were. qOK False when rows have fewer
/// than 56 bytes (nothing is written) or there are too few rows (what was written stays).
LUMBARN_API void OnlyList(std::int32_t iType, ECLIPSEINFO& xInfo, ByteTable& bOnly, bool& qOK);
LUMBARN_API void ExceptList(std::int32_t iType, ECLIPSEINFO& xInfo, ByteTable& bOnly, bool& qOK);

/// The selection of a list for a file's vectors: a new record, filled with their classes, then
/// `applyOnlyList`.
LUMBARN_API bool selectByOnlyList(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                                  const ByteTable& bOnly, bool qOnly, ECLIPSEINFO& xInfo);
/// Applies a summary list to a filled record; an empty list leaves it as it is. A member text stands for each
/// member of that name and, as a pattern of `matchesPattern`, for each that it matches, without regard to
/// case; "ALL" and "*" for the whole class. As entries hold 40 characters of a member, longer names are
/// compared by these. Entries without a class word or without a member text are ignored. Throws Fault 9 for a
/// class word that is none of the 12; the entries before it are applied. False, with nothing changed, when
/// entries have 16 to 55 bytes.
LUMBARN_API bool applyOnlyList(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                               const ByteTable& bOnly, bool qOnly, ECLIPSEINFO& xInfo);
/// Calling forms of the same.
LUMBARN_API void setECLIPSEINFOFromOnly(Session& session, const AttributeStores& xStore,
                                        std::span<const VECTORDATA> xVectors, const ByteTable& bOnly,
                                        bool qOnly, ECLIPSEINFO& xInfo, bool& qOK);
LUMBARN_API void ExpandOnlyList(Session& session, const AttributeStores& xStore,
                                std::span<const VECTORDATA> xVectors, const ByteTable& bOnly, bool qOnly,
                                ECLIPSEINFO& xInfo, bool& qOK);
/// True when some entry names a member other than "ALL"; False for entries of fewer than 56 bytes.
LUMBARN_API bool checkMembersInOnly(const ByteTable& bOnly);
/// With any of "SOIL", "SGAS" and "SWAT" chosen among the solution vectors, chooses all three (the first
/// vector of each name), so that a derived one finds its sources. True in all cases.
LUMBARN_API bool CheckDerivedSaturations(ECLIPSEINFO& xInfo);

LUMBARN_API void setEclipseONLYList(Session& session, std::span<const std::string> zOnly, bool qOnly);
/// The list as it was set, whatever has become of its count.
LUMBARN_API void getEclipseONLYList(Session& session, std::vector<std::string>& zOnly, bool& qOnly);
/// Whether a vector with that name is to be loaded; True for all when the list is empty. Looks at the first
/// nOnly items only. Blanks around names do not count; a list of blank items only is empty.
LUMBARN_API bool checkEclipseONLYList(Session& session, std::string_view zName);

/// What one item of the text list is made of.
struct OnlyItem {
  std::string_view zClass;     ///< class word
  std::string_view zLGRClass;  ///< class within the LGR, for class "LGR"
  std::string_view zName;      ///< mnemonic
  std::string_view zMember;
  std::string_view zIndex;  ///< cell, region or aquifer numbers, blanks between
  std::string_view zLGR;    ///< LGR name
};
/// The text of an item, as it stands in `zOnly`: "COPR CELL 1 2 3 P1", "RPR REGN 2", ... Parts that are empty
/// are left out. Classes without a form of their own give the name, the member and the index; within an LGR,
/// those other than blocks and completions have the form of a well.
LUMBARN_API std::string AddToOnlyList(const OnlyItem& item);

}  // namespace lumbarn
