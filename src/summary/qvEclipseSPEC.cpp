#include "qvEclipseSPEC.h"

#include <algorithm>

#include "../support/Guarded.h"
#include "../support/Text.h"
#include "SpecHeaders.h"
#include "SpecProcessing.h"
#include "SpecReader.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseSPEC";

}  // namespace

bool qvEclipseSPEC::CheckSPECFile(std::string_view zFile) { return checkSpec(*this, zFile, *session_); }

void qvEclipseSPEC::ReadEclipseSPECFile(bool& qOK) {
  qOK = false;
  qHorizontalMask_.clear();
  qOK = readSpec(*this, *session_);
}

void qvEclipseSPEC::setSPECFileTypeProps(cFILETYPE& xFile, bool& qOK) const {
  xFile.setFlags(*this);
  xFile.IOMethod = session_->IOMethod;
  xFile.UseBufferedInput = UseBufferedInput;
  qOK = true;
}

void qvEclipseSPEC::querySPECRecords(std::vector<std::string>& zNames, std::int32_t& nNames,
                                     bool& qOK) const {
  zNames = zRecordName;
  nNames = nRecords;
  qOK = true;
}

bool qvEclipseSPEC::querySPECRecord(std::string_view zName) const {
  return std::ranges::find(zRecordName, upper(trim(zName))) != zRecordName.end();
}

void qvEclipseSPEC::getHeaders(ByteTable& bHeaders, bool& qOK) {
  ReturnHeaders(bHeaders, qKeyMask, qOK, false);
}

void qvEclipseSPEC::getHorizontalHeaders(ByteTable& bHeaders, std::vector<bool>& qMask, bool& qOK) {
  ReturnHeaders(bHeaders, qMask, qOK, true);
  qHorizontalMask_ = qMask;
}

void qvEclipseSPEC::ReturnHeaders(ByteTable& bHeaders, std::vector<bool>& qMask, bool& qOK,
                                  bool qHorizontal) {
  guarded(*session_, qOK, className, "ReturnHeaders", [&] {
    bHeaders = {};
    auto made =
        qHorizontal ? makeConnectionHeaders(*this, qMask, *session_) : makeHeaders(*this, qMask, *session_);
    if (made) bHeaders = std::move(*made);
    return made.has_value();
  });
}

void qvEclipseSPEC::getHorizontalLengths(std::vector<float>& sLengths, std::string& zUnits, bool& qOK) {
  guarded(*session_, qOK, className, "getHorizontalLengths", [&] {
    sLengths.clear();
    zUnits.clear();
    auto lengths = connectionLengths(*this, qHorizontalMask_.empty() ? qKeyMask : qHorizontalMask_);
    if (!lengths) return false;
    sLengths = std::move(lengths->values);
    zUnits = std::move(lengths->unit);
    return true;
  });
}

void qvEclipseSPEC::getStoreHeaders(AttributeStores& xStores, ByteTable& bPointers, bool& qOK) {
  guarded(*session_, qOK, className, "getStoreHeaders",
          [&] { return giveStoreHeaders(*this, xStores, bPointers, *session_); });
}

void qvEclipseSPEC::setKeyMask(const std::vector<bool>& qMask, bool& qOK) {
  guarded(*session_, qOK, className, "setKeyMask", [&] { narrowMask(qMask); });
}

void qvEclipseSPEC::ConvertCellIndices(std::span<const std::int32_t> vIndices,
                                       std::span<const std::int32_t> iDimens,
                                       std::vector<std::string>& vCells, bool& qOK) const {
  guarded(*session_, qOK, className, "ConvertCellIndices", [&] {
    vCells.assign(1, {});
    if (iDimens.size() < 4) return;
    vCells.clear();
    for (const std::int32_t n : vIndices) vCells.push_back(createVectorIndex('B', n, iDimens));
  });
}

}  // namespace lumbarn
