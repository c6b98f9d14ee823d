#include "qvEclipseSPEC.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "../record/ByteSource.h"
#include "../record/RecordCursor.h"
#include "../shapes/HeaderLayout.h"
#include "../shapes/OnlyList.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "SpecProcessing.h"
#include "SpecRecords.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseSPEC";
constexpr std::size_t yieldInterval = 1000;

/// RESTART and INIT files begin with INTEHEAD too; the second record tells them from a specification.
bool secondRecordFits(std::shared_ptr<const ByteSource> source, const Form& form, const std::string& path) {
  RecordCursor cursor(std::move(source), form, path);
  if (!cursor.next() || !cursor.next()) return false;
  const std::string& keyword = cursor.header().keyword;
  return keyword == "RESTART" || keyword == "DIMENS";
}

bool isConnectionMnemonic(std::string_view mnemonic) {
  const std::string letters = upper(mnemonic.substr(0, 2));
  return letters.starts_with('C') || letters == "LC";
}

}  // namespace

bool qvEclipseSPEC::CheckSPECFile(std::string_view zFile) {
  bool qOK = false;
  guarded(*session_, qOK, className, "CheckSPECFile", [&] {
    const std::string path(zFile);
    std::string error;
    const std::shared_ptr<const ByteSource> source = FileSource::open(path, error);
    if (!source) return false;
    constexpr std::string_view firstKeywords[] = {"RESTART", "INTEHEAD"};
    const auto detected = detectForm(*source, firstKeywords);
    if (!detected) return false;
    if (detected->keyword == "INTEHEAD") {
      try {
        if (!secondRecordFits(source, detected->form, path)) return false;
      } catch (const BadRecord& damage) {
        if (damage.diagnosis().message == Message::FileRead) throw;
        return false;  // a question was asked, and the answer is no: nothing to tell
      }
    }
    zFileName = path;
    setForm(detected->form);
    FORTRAN = true;
    return true;
  });
  return qOK;
}

void qvEclipseSPEC::setSPECFileTypeProps(cFILETYPE& xFile, bool& qOK) const {
  xFile.setFlags(*this);
  xFile.IOMethod = session_->IOMethod;
  xFile.UseBufferedInput = UseBufferedInput;
  qOK = true;
}

/// Forgets what was read; what to read and how stays.
void qvEclipseSPEC::clear() {
  qvEclipseSPEC empty(*session_);
  empty.zFileName = std::move(zFileName);
  empty.setFlags(*this);
  empty.Unified = Unified;
  empty.qScanOnly = qScanOnly;
  empty.UseBufferedInput = UseBufferedInput;
  empty.zOrigin = std::move(zOrigin);
  *this = std::move(empty);
  bool qOK = false;
  InitByteStorage(!qScanOnly, xStore, qOK);
}

void qvEclipseSPEC::ReadEclipseSPECFile(bool& qOK) {
  guarded(*session_, qOK, className, "ReadEclipseSPECFile", [&] {
    clear();
    try {
      const bool whole = readRecords();
      if (!whole && !qDamaged) clear();
      return whole;
    } catch (...) {
      clear();
      throw;
    }
  });
}

/// False when the file is not there, damaged behind KEYWORDS (qDamaged), or the load was cancelled.
bool qvEclipseSPEC::readRecords() {
  std::string error;
  std::shared_ptr<const ByteSource> source = FileSource::open(zFileName, error);
  if (!source) {
    session_->diagnose(
        {.message = Message::FileOpen, .path = zFileName, .problem = "cannot be opened: " + error});
    return false;
  }
  cFILETYPE xFile(*session_);
  bool qOK = false;
  setSPECFileTypeProps(xFile, qOK);
  RecordCursor cursor(std::move(source), xFile.form(), zFileName);
  cursor.attach(*session_, RecordFile::Specification);
  SpecRecords records(*this, cursor);
  try {
    if (!records.read()) return false;
    cursor.checkUnchanged();
  } catch (BadRecord& damage) {
    if (!records.haveKeywords()) {
      damage.diagnosis().action = "read no vectors";
      throw;
    }
    qDamaged = true;
    Diagnosis diagnosis = damage.diagnosis();
    diagnosis.action = "kept " + std::to_string(nVectors) + " vectors and what stands before the damage";
    session_->diagnose(std::move(diagnosis));
  }
  if (qScanOnly) return true;
  records.join();
  qLoaded_ = SpecProcessing(*this).processSPECRecords();
  if (!qLoaded_) qDamaged = false;  // cancelled: nothing is to be used
  return qLoaded_ && !qDamaged;
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

/// Makes the origin the source of all vectors.
void qvEclipseSPEC::addSource() {
  AttributeStore& store = xStore(attributeSource);
  const AttributeSizes sizes = defaultAttributeSizes(attributeSource);
  bool qOK = false;
  store.StoreInit(sizes.nItems, sizes.nWidth, sizes.nGrow, qOK);
  const std::int32_t number = store.add(zOrigin);
  for (VECTORDATA& xVector : xVectors) setPointer(xVector, attributeSource, number);
}

void qvEclipseSPEC::getHeaders(ByteTable& bHeaders, bool& qOK) {
  std::vector<bool> qMask = qKeyMask;
  ReturnHeaders(bHeaders, qMask, qOK, false);
}

void qvEclipseSPEC::getHorizontalHeaders(ByteTable& bHeaders, std::vector<bool>& qMask, bool& qOK) {
  ReturnHeaders(bHeaders, qMask, qOK, true);
  qHorizontalMask_ = qMask;
}

/// The texts of one attribute. Vectors come in runs with the same unit, class or mnemonic, so the last text
/// is kept.
class AttributeTexts {
 public:
  AttributeTexts(const AttributeStores& stores, std::int32_t iAttribute) : store_(stores(iAttribute)) {}
  std::string_view operator()(std::int32_t number) {
    if (number != number_) text_ = store_.item(number_ = number);
    return text_;
  }

 private:
  const AttributeStore& store_;
  std::int32_t number_ = 0;
  std::string_view text_;
};

struct qvEclipseSPEC::HeaderTexts {
  explicit HeaderTexts(const AttributeStores& stores)
      : source(stores(attributeSource).item(1)),
        kind(stores(attributeDataKind).item(1).substr(0, 8)),
        zClass(stores, attributeClass),
        member(stores, attributeMember),
        index(stores, attributeIndex),
        variable(stores, attributeVariable),
        verbose(stores, attributeVerbose),
        units(stores, attributeUnits) {}

  std::string_view source;
  std::string_view kind;
  AttributeTexts zClass, member, index, variable, verbose, units;
};

void qvEclipseSPEC::ReturnHeaders(ByteTable& bHeaders, std::vector<bool>& qMask, bool& qOK,
                                  bool qHorizontal) {
  guarded(*session_, qOK, className, "ReturnHeaders", [&] {
    bHeaders = {};
    if (!qLoaded_) return false;
    if (qHorizontal) qMask.assign(xVectors.size(), true);
    addSource();
    HeaderTexts texts(xStore);
    ByteTable headers(headerWidth, static_cast<std::size_t>(std::ranges::count(qMask, true)));
    std::size_t entry = 0;
    for (std::size_t i = 0; i < xVectors.size(); ++i) {
      if ((i + 1) % yieldInterval == 0 && session_->yield()) return false;
      if (!qMask[i]) continue;
      std::string_view variable = texts.variable(xVectors[i].iVariable);
      variable = trim(variable.substr(0, variable.find('\t')));
      if (qHorizontal && !isConnectionMnemonic(variable)) {
        qMask[i] = false;
        continue;
      }
      fillHeader(headers, ++entry, xVectors[i], variable, texts);
    }
    if (qHorizontal && entry == 0) return false;
    if (qHorizontal) headers.resize(entry);
    if (!qHorizontal) session_->part<SelectionState>().nOnly = static_cast<std::int32_t>(entry);
    bHeaders = std::move(headers);
    return true;
  });
}

void qvEclipseSPEC::fillHeader(ByteTable& bHeaders, std::size_t iEntry, const VECTORDATA& xVector,
                               std::string_view variable, HeaderTexts& texts) const {
  const auto put = [&](std::int32_t iAttribute, std::string_view value) {
    if (!value.empty()) setAttribute(iAttribute, bHeaders, iEntry, value);
  };
  put(attributeSource, texts.source);
  put(attributeDataKind, texts.kind);
  const std::string_view zClass = texts.zClass(xVector.iClass);
  put(attributeClass, zClass);
  if (nLGRs > 0 && zClass == "LGR") {
    put(attributeLGRName, text(xVector, attributeLGRName));
    put(attributeLGRClass, text(xVector, attributeLGRClass));
  }
  put(attributeMember, texts.member(xVector.iMember));
  put(attributeIndex, texts.index(xVector.iIndex));
  put(attributeVariable, variable);
  put(attributeVerbose, texts.verbose(xVector.iVerbose));
  put(attributeUnits, texts.units(xVector.iUnits));
}

void qvEclipseSPEC::getHorizontalLengths(std::vector<float>& sLengths, std::string& zUnits, bool& qOK) {
  guarded(*session_, qOK, className, "getHorizontalLengths", [&] {
    sLengths.clear();
    zUnits.clear();
    const std::vector<bool>& qMask = qHorizontalMask_.empty() ? qKeyMask : qHorizontalMask_;
    if (sLENGTHS.size() != qMask.size()) return false;
    for (std::size_t i = 0; i < qMask.size(); ++i) {
      if (qMask[i]) sLengths.push_back(sLENGTHS[i]);
    }
    if (!zLENUNITS.empty()) zUnits = zLENUNITS.front();
    return true;
  });
}

void qvEclipseSPEC::getStoreHeaders(AttributeStores& xStores, ByteTable& bPointers, bool& qOK) {
  guarded(*session_, qOK, className, "getStoreHeaders", [&] {
    if (!qLoaded_) return false;
    addSource();
    xStores = xStore;
    bool qDone = false;
    getVECTORDATA(keptVectors(), bPointers, qDone);
    if (!qDone) {
      session_->diagnose({.message = Message::HeaderNumbers,
                          .path = zFileName,
                          .expected = "at most 32767",
                          .found = std::to_string(xStore(attributeMember).count()) + " names and " +
                                   std::to_string(xStore(attributeVariable).count()) + " mnemonics",
                          .action = "returned no headers; headers of 233 bytes have no such limit"});
    }
    return qDone;
  });
}

std::vector<VECTORDATA> qvEclipseSPEC::keptVectors() const {
  std::vector<VECTORDATA> kept;
  kept.reserve(xVectors.size());
  for (std::size_t i = 0; i < xVectors.size(); ++i) {
    if (qKeyMask[i]) kept.push_back(xVectors[i]);
  }
  return kept;
}

void qvEclipseSPEC::setKeyMask(const std::vector<bool>& qMask, bool& qOK) {
  guarded(*session_, qOK, className, "setKeyMask", [&] {
    qSelection = qMask;
    if (qMask.size() < 2) return;
    if (qMask.size() < static_cast<std::size_t>(std::ranges::count(qKeyMask, true))) {
      throw Fault(FaultNumber::Subscript);
    }
    std::size_t next = 0;
    for (std::size_t i = 0; i < qKeyMask.size(); ++i) {
      if (qKeyMask[i]) qKeyMask[i] = qMask[next++];
    }
    nKeysUsed = static_cast<std::int32_t>(std::ranges::count(qKeyMask, true));
  });
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

std::optional<Moment> qvEclipseSPEC::start() const {
  const auto& word = iSTARTDAT;
  if (word.size() < 3) return std::nullopt;
  if (word.size() >= 6) {
    if (auto moment = makeMoment(word[2], word[1], word[0], word[3], word[4], word[5])) return moment;
  }
  return makeMoment(word[2], word[1], word[0]);
}

std::optional<std::array<std::int32_t, 3>> qvEclipseSPEC::gridSize() const {
  if (iDIMENS.size() < 4 ||
      std::ranges::any_of(iDIMENS.begin() + 1, iDIMENS.begin() + 4, [](std::int32_t n) { return n < 1; })) {
    return std::nullopt;
  }
  return std::array{iDIMENS[1], iDIMENS[2], iDIMENS[3]};
}

}  // namespace lumbarn
