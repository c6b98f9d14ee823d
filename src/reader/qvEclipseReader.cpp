#include "qvEclipseReader.h"

#include <utility>

#include <fmt/format.h>

#include "../files/FileSets.h"
#include "../files/Recogniser.h"
#include "FileCodes.h"
#include "LoadDialog.h"
#include "ReaderLoad.h"

namespace lumbarn {

namespace {

constexpr std::int32_t deckCode = 25;

}  // namespace

LoadDialog::~LoadDialog() = default;

qvEclipseReader::qvEclipseReader(Session& session)
    : IOMethod(session.IOMethod),
      NullValue(session.NullValue),
      UseNullValue(session.UseNullValue),
      session_(&session),
      parts_(std::make_unique<ReaderParts>(session, *this)) {
  InitEclipseReader();
}

qvEclipseReader::qvEclipseReader(qvEclipseReader&& other) noexcept
    : ReaderOptions(std::move(other)),
      IOMethod(other.IOMethod),
      NullValue(other.NullValue),
      UseNullValue(other.UseNullValue),
      session_(other.session_),
      parts_(std::move(other.parts_)) {
  if (parts_) parts_->context.options = this;
}

qvEclipseReader::~qvEclipseReader() = default;

void qvEclipseReader::InitEclipseReader() {
  static_cast<ReaderOptions&>(*this) = ReaderOptions{};
  IOMethod = 1;
  NullValue = -999;
  UseNullValue = 1;
  parts_->forgetLoad();
  bool qReset = false;
  InitEclipseINFO(session_->part<SelectionState>().xInfo, qReset);
}

void qvEclipseReader::setLoadDialog(LoadDialog* dialog) { parts_->context.dialog = dialog; }

void qvEclipseReader::ECLReadData(bool& qOK) {
  readByCode(qOK);
  nOnly = session_->part<SelectionState>().nOnly;
}

void qvEclipseReader::readByCode(bool& qOK) {
  qOK = false;
  session_->part<SelectionState>().nOnly = 0;
  const FileCode* row = findFileCode(whichtype);
  if (row && row->load) return (this->*row->load)(qOK);
  session_->diagnose(Diagnosis{.message = Message::FileCode,
                               .path = FileName,
                               .expected = loadableCodes(),
                               .found = std::to_string(whichtype),
                               .action = "read nothing"});
}

void qvEclipseReader::requireHeld(const ReaderPart& part) const {
  if (part.held()) return;
  session_->diagnose(Diagnosis{.message = Message::NotLoaded,
                               .path = FileName,
                               .expected = fmt::format("a load of {} data", nameOf(*parts_, part)),
                               .action = "returned nothing"});
  throw ReportedFailure();
}

bool qvEclipseReader::CheckifEclipse(FileDescriptor& uFileDesc) {
  bool qKnown = false;
  perform("CheckifEclipse", qKnown, [&] {
    const auto recognised = recogniseFile(uFileDesc.zFile);
    std::int32_t iType = recognised.whichtype();
    // What hosts take for a deck is one, whatever else the text may be.
    if (!recognised.form && isOfType(uFileDesc.zFile, deckCode)) iType = deckCode;
    if (iType == 0) return false;
    uFileDesc.iType = iType;
    whichtype = uFileDesc.iType;
    return true;
  });
  return qKnown;
}

bool qvEclipseReader::CheckECLIPSEFileType(const std::string& zFileName, std::int32_t iFileType) {
  bool qOfType = false;
  perform("CheckECLIPSEFileType", qOfType, [&] { return isOfType(zFileName, iFileType); });
  return qOfType;
}

bool qvEclipseReader::isOfType(const std::string& zFileName, std::int32_t iFileType) const {
  const FileCode* row = findFileCode(iFileType);
  if (!row) return false;
  return row->check ? row->check(zFileName, *session_) : recogniseFile(zFileName).whichtype() == iFileType;
}

bool qvEclipseReader::IsInitialised(std::int32_t iType) const {
  const FileCode* row = findFileCode(iType);
  return row && row->answersHeld && row->part(*parts_).held();
}

bool qvEclipseReader::DeleteObject(std::int32_t iType) {
  const FileCode* row = findFileCode(iType);
  if (row && row->answersHeld) row->part(*parts_).release();
  return true;
}

void qvEclipseReader::GetbOnly(ByteTable& only, bool& qSense, bool& qOK) const {
  only = bOnly;
  qSense = qOnly;
  qOK = true;
}

void qvEclipseReader::SetbOnly(const ByteTable& only, bool qSense, bool& qOK) {
  bOnly = only;
  qOnly = qSense;
  qOK = true;
}

void qvEclipseReader::setEclipseSequenceLimits_M(std::string_view zKind, std::int32_t& iFirst,
                                                 std::int32_t& iLast, bool& qOK) const {
  setEclipseSequenceLimits(zKind, Unified, iStart, iEnd, iFirst, iLast, qOK);
}

std::vector<std::string> qvEclipseReader::UnmatchedPatterns() const {
  return parts_->last ? parts_->last->unmatched() : std::vector<std::string>();
}

bool qvEclipseReader::Damaged() const { return parts_->last && parts_->last->damaged(); }

}  // namespace lumbarn
