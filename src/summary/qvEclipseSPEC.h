#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "../support/Export.h"
#include "../support/Session.h"
#include "SummarySpec.h"

namespace lumbarn {

/// A specification file of a summary as hosts know it: reads the file into the members that it has from
/// `SummarySpec`, and hands headers out.
class LUMBARN_API qvEclipseSPEC : public SummarySpec {
 public:
  explicit qvEclipseSPEC(Session& session = Session::process()) : session_(&session) {}
  qvEclipseSPEC(SummarySpec spec, Session& session) : SummarySpec(std::move(spec)), session_(&session) {}

  /// True when the file is a summary specification: its first record is RESTART, or INTEHEAD and its second
  /// RESTART or DIMENS (newer writers put INTEHEAD in front; restart and INIT files begin with it too). Sets
  /// the form and remembers the name; on False the object is as it was.
  bool CheckSPECFile(std::string_view zFile);

  /// Reads the file by `readSpec`. When qOK is False and qDamaged is set, all operations below work on what
  /// was read before the damage. With qScanOnly no headers can be had.
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
  /// `narrowMask`. Too few elements are a fault.
  void setKeyMask(const std::vector<bool>& qMask, bool& qOK);

  /// For each cell number the text "i j k", empty for one that is not in the grid. With fewer than 4 elements
  /// in iDIMENS, one empty text.
  void ConvertCellIndices(std::span<const std::int32_t> vIndices, std::span<const std::int32_t> iDimens,
                          std::vector<std::string>& vCells, bool& qOK) const;

 private:
  void ReturnHeaders(ByteTable& bHeaders, std::vector<bool>& qMask, bool& qOK, bool qHorizontal);

  Session* session_;
  std::vector<bool> qHorizontalMask_;
};

}  // namespace lumbarn
