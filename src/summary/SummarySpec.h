#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../record/FormFlags.h"
#include "../record/cFILETYPE.h"
#include "../shapes/AttributeStore.h"
#include "../shapes/ByteTable.h"
#include "../shapes/VectorData.h"
#include "../support/Dates.h"
#include "../support/Export.h"

namespace lumbarn {

/// What one specification file of a summary says: which vector each column of the summary holds. One compact
/// header per column, with all texts in the attribute stores. Plain data, filled by SpecReader.h.
///
/// Numbers of vectors and columns count from 1; the arrays are ordinary ones from 0. "Dummy" is a well,
/// group, segment or node vector that the simulator reserved for an owner that does not exist.
struct LUMBARN_API SummarySpec : FormFlags {
  // What to read and how.
  std::string zFileName;
  bool Unified = false;    ///< passed through for the owner
  bool qScanOnly = false;  ///< read the list of records only
  bool UseBufferedInput = usesBufferedInput(12);
  std::string zOrigin;  ///< case label; becomes the source of every header

  // What was read.
  std::string zStartDate;         ///< "1 JAN 2015"; empty without STARTDAT
  std::string zRestartName;       ///< root name of the run that this one restarted from, or empty
  std::int32_t iRestartStep = 0;  ///< report step of that restart, 0 if none
  /// 1 metric, 2 field, 3 lab, 4 the atmospheres system: by the units of the vectors, else by INTEHEAD.
  std::int32_t iUnitSystem = 2;
  std::int32_t nVectors = 0;  ///< columns of the summary
  std::int32_t nLGRs = 0;
  std::int32_t nUnits = 0;
  std::int32_t nNameWidth = 8;  ///< characters of a name of a well or group, longer ones are truncated
  std::int32_t nKeysUsed = 0;   ///< vectors whose mask is True
  bool qPerforations = false;   ///< a completion vector was met
  bool qDamaged = false;        ///< the file is damaged behind a whole KEYWORDS record, see `readSpec`
  std::vector<std::int32_t> iDIMENS;
  std::vector<std::int32_t> iNUMS;  ///< released after reading, as the next three
  std::vector<std::int32_t> iNUMLX;
  std::vector<std::int32_t> iNUMLY;
  std::vector<std::int32_t> iNUMLZ;
  std::vector<std::int32_t> iSTARTDAT;
  std::vector<float> sLENGTHS;
  std::vector<std::string> zLENUNITS;
  std::vector<std::string> zSTEPRESN;
  std::vector<std::string> zRecordName;  ///< every record met, in file order
  std::vector<std::string> zRecordType;
  std::int32_t nRecords = 0;
  AttributeStores xStore;
  std::vector<VECTORDATA> xVectors;  ///< one per column
  std::vector<bool> qKeyMask;        ///< which columns the caller wants; dummies are False from the start
  std::vector<bool> qSelection;      ///< the selection as last given
  bool qLoaded = false;              ///< read, and not for its list of records alone

  /// Start of the run with its time of day, if the file gives one.
  std::optional<Moment> start() const;
  /// NX, NY, NZ of the run's grid; nothing unless all three are given and above 0.
  std::optional<std::array<std::int32_t, 3>> gridSize() const;
  /// Text of an attribute of a vector; empty when it is not set.
  std::string_view text(const VECTORDATA& xVector, std::int32_t iAttribute) const {
    return xStore(iAttribute).item(pointer(xVector, iAttribute));
  }
  /// The vectors with mask True, in order.
  std::vector<VECTORDATA> keptVectors() const;
  /// Refines the mask: each vector that is still in takes the next element of qMask. A vector that is out
  /// stays out. Fewer than 2 elements change nothing. Throws Fault 9, with the mask as it was, for too few
  /// elements for the vectors that are in.
  void narrowMask(const std::vector<bool>& qMask);
};

}  // namespace lumbarn
