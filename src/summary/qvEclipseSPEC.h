#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../record/FormFlags.h"
#include "../record/cFILETYPE.h"
#include "../shapes/AttributeStore.h"
#include "../shapes/ByteTable.h"
#include "../shapes/VectorData.h"
#include "../support/Dates.h"
#include "../support/Session.h"

namespace lumbarn {

/// One specification file of a summary: which vector each column of the summary holds. Reads the file, keeps
/// one compact header per column with all texts in the attribute stores, and hands headers out.
///
/// Vectors and columns count from 1 across operations; the arrays here are ordinary ones from 0. "Dummy" is a
/// well, group, segment or node vector that the simulator reserved for an owner that does not exist.
///
/// Nothing in the file is trusted but KEYWORDS: it says how many vectors there are. Arrays beside it that are
/// shorter or longer are used as far as they go (what is missing reads as an empty text or 0), and each
/// irregularity is told as a Diagnosis.
class qvEclipseSPEC : public FormFlags {
 public:
  explicit qvEclipseSPEC(Session& session = Session::process()) : session_(&session) {}

  // What to read and how. `CheckSPECFile` sets the name and the form.
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
  bool qDamaged = false;  ///< the file is damaged behind a whole KEYWORDS record, see ReadEclipseSPECFile
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

  /// True when the file is a summary specification: its first record is RESTART, or INTEHEAD and its second
  /// RESTART or DIMENS (newer writers put INTEHEAD in front; restart and INIT files begin with it too). Sets
  /// the form and remembers the name; on False the object is as it was.
  bool CheckSPECFile(std::string_view zFile);

  /// Reads the file. qOK False when it is not there, damaged, or the load was cancelled. When the damage lies
  /// behind a whole KEYWORDS record, qDamaged is set and all operations below work on what was read before
  /// it; otherwise nothing is held. With qScanOnly only the record list is filled, and no headers can be had.
  void ReadEclipseSPECFile(bool& qOK);

  /// Sets a descriptor from this object's flags.
  void setSPECFileTypeProps(cFILETYPE& xFile, bool& qOK) const;

  void querySPECRecords(std::vector<std::string>& zNames, std::int32_t& nNames, bool& qOK) const;
  /// True when a record of that name, in any case, stands in the file.
  bool querySPECRecord(std::string_view zName) const;

  /// Headers of the vectors with mask True, 233 bytes each. Sets the session's count of only-list entries to
  /// their number. Empty after a failure.
  void getHeaders(ByteTable& bHeaders, bool& qOK);
  /// Headers of all connection vectors (mnemonics in C and LC), dummies too, whatever the key mask. qMask
  /// gets one entry per vector of the file. qOK False, with nothing in bHeaders, when there are none.
  void getHorizontalHeaders(ByteTable& bHeaders, std::vector<bool>& qMask, bool& qOK);
  /// LENGTHS of the vectors that the last `getHorizontalHeaders` gave (before it, of those with mask True),
  /// and the unit of length. qOK False when LENGTHS has not one value per vector.
  void getHorizontalLengths(std::vector<float>& sLengths, std::string& zUnits, bool& qOK);
  /// The stores, and 24 bytes of string numbers into them for each vector with mask True.
  void getStoreHeaders(AttributeStores& xStores, ByteTable& bPointers, bool& qOK);

  std::vector<bool> getKeyMask() const { return qKeyMask; }
  /// Refines the mask: each vector that is still in takes the next element of qMask. A vector that is out
  /// stays out. Fewer than 2 elements change nothing. Too few elements for the vectors that are in are a
  /// fault; the mask is then as it was.
  void setKeyMask(const std::vector<bool>& qMask, bool& qOK);

  /// For each cell number the text "i j k", empty for one that is not in the grid. With fewer than 4 elements
  /// in iDIMENS, one empty text.
  void ConvertCellIndices(std::span<const std::int32_t> vIndices, std::span<const std::int32_t> iDimens,
                          std::vector<std::string>& vCells, bool& qOK) const;

  // Beyond what hosts ask for.
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
  Session& session() const { return *session_; }
  /// For a specification that outlives its session: only the operations under "Beyond what hosts ask for" may
  /// follow.
  void releaseSession() { session_ = nullptr; }

 private:
  void clear();
  bool readRecords();
  void addSource();
  struct HeaderTexts;
  void fillHeader(ByteTable& bHeaders, std::size_t iEntry, const VECTORDATA& xVector,
                  std::string_view variable, HeaderTexts& texts) const;
  void ReturnHeaders(ByteTable& bHeaders, std::vector<bool>& qMask, bool& qOK, bool qHorizontal);

  Session* session_;
  bool qLoaded_ = false;
  std::vector<bool> qHorizontalMask_;
};

/// The text "i j k" of a cell number for c "B" and "C", the number itself for "R", "A" and "S", else empty. A
/// cell that is not in the grid of iDIMENS (words 2 to 4 are NX, NY, NZ) gives an empty text.
std::string createVectorIndex(char c, std::int32_t n, std::span<const std::int32_t> iDIMENS);

}  // namespace lumbarn
