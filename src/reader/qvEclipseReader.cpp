#include "qvEclipseReader.h"

#include <array>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include "../files/Extensions.h"
#include "../files/FileChoice.h"
#include "../files/FileSets.h"
#include "../shapes/HeaderLayout.h"
#include "../summary/VectorSelection.h"
#include "../support/Diagnosis.h"
#include "../support/Text.h"
#include "../vocabulary/Units.h"
#include "ReaderLoad.h"

namespace lumbarn {

namespace {

constexpr std::int32_t initCode = 15;

/// Step numbers stand in slots of 16 bits; beyond them the slot widens rather than lie.
Variant stepSlot(std::int32_t step) {
  if (std::in_range<std::int16_t>(step)) return static_cast<std::int16_t>(step);
  return step;
}

/// The specification that a summary load reads: a data file or the root name of a run leads to it.
std::string specificationOf(const std::string& zFile) {
  constexpr FileKind leads[] = {FileKind::Summary};
  return fileOfRun(zFile, FileKind::SummarySpec, leads);
}

}  // namespace

/// What one summary load has found out before it reads.
struct qvEclipseReader::SummaryLoad {
  std::string path;  ///< of the specification
  std::unique_ptr<qvEclipseSPEC> spec;
  std::int32_t nFiles = 0;
  std::vector<std::string> zFiles;
};

qvEclipseReader::qvEclipseReader(Session& session)
    : IOMethod(session.IOMethod),
      NullValue(session.NullValue),
      UseNullValue(session.UseNullValue),
      session_(&session) {
  InitEclipseReader();
}

void qvEclipseReader::InitEclipseReader() {
  static_cast<ReaderOptions&>(*this) = ReaderOptions{};
  IOMethod = 1;
  NullValue = -999;
  UseNullValue = 1;
  optionsBefore_.reset();
  bool qReset = false;
  InitEclipseINFO(session_->part<SelectionState>().xInfo, qReset);
}

void qvEclipseReader::ECLReadData(bool& qOK) {
  readByCode(qOK);
  nOnly = session_->part<SelectionState>().nOnly;
}

void qvEclipseReader::readByCode(bool& qOK) {
  qOK = false;
  session_->part<SelectionState>().nOnly = 0;
  switch (whichtype) {
    case 12:
    case 13:
      return ReadSummaryFile(qOK);
    case 18:
      return ReadRFTFile(qOK);
    case 76:
      return ReadUserRFTFile(qOK);
    case 77:
      return ReadUserPLTFile(qOK);
    case 14:
    case 23:
      return ReadGridOrEGridFile(whichtype, qOK);
    case 11:
    case 16:
      return ReadSolutionFile(qOK);
    case initCode:
      return ReadINITFile(qOK);
    default:
      session_->diagnose(Diagnosis{.message = Message::FileCode,
                                   .path = FileName,
                                   .expected = "11 to 16, 18, 23, 76 or 77",
                                   .found = std::to_string(whichtype),
                                   .action = "read nothing"});
  }
}

void qvEclipseReader::restoreOptions() {
  if (!optionsBefore_) return;
  const auto restore = [](auto& option, const auto& before, const auto& after) {
    if (option == after) option = before;
  };
  restore(Unified, optionsBefore_->Unified, optionsAfter_.Unified);
  restore(AllData, optionsBefore_->AllData, optionsAfter_.AllData);
  restore(zOrigin, optionsBefore_->zOrigin, optionsAfter_.zOrigin);
  restore(HPGFileName, optionsBefore_->HPGFileName, optionsAfter_.HPGFileName);
}

bool qvEclipseReader::requireLoaded(bool loaded, std::string_view type) const {
  if (loaded) return true;
  session_->diagnose(Diagnosis{.message = Message::NotLoaded,
                               .path = FileName,
                               .expected = fmt::format("a load of {} data", type),
                               .action = "returned nothing"});
  return false;
}

/// Restart and INIT files begin alike, so the check of either accepts the other. A name that fits the code is
/// enough: a step file may contain static arrays.
bool qvEclipseReader::isOfOtherType(const std::string& path, FileKind kind) const {
  if (meaningOf(lumbarn::FileName(path).extension).kind == kind) return false;
  const Recognised found = recogniseFile(path);
  return found.byContent && found.kind != kind;
}

void qvEclipseReader::ReadSummaryFile(bool& qOK) {
  load(Loaded::Summary, "ReadSummaryFile", qOK, [&] { return readSummary(); });
}

bool qvEclipseReader::readSummary() {
  summary_.reset();  // a load that fails leaves nothing to fetch
  if (session_->yield()) return false;
  SummaryLoad load;
  load.path = specificationOf(FileName);
  load.spec = std::make_unique<qvEclipseSPEC>(*session_);
  if (!load.spec->CheckSPECFile(load.path)) {
    session_->diagnose(refusal(load.path, FileKind::SummarySpec));
    return false;
  }
  Formatted = load.spec->Formatted;
  UNIX = load.spec->UNIX;
  byteSwap = load.spec->byteSwap;
  const bool chosen = Silent || !dialog_ ? chooseSilently(load) : chooseByDialog(load);
  if (!chosen || session_->yield()) return false;
  return loadSummary(load);
}

bool qvEclipseReader::chooseSilently(SummaryLoad& load) {
  bool qOK = false;
  auto& shared = session_->part<SelectionState>().xInfo;
  if (!isEmptyOnlyList(bOnly)) {
    load.spec->ReadEclipseSPECFile(qOK);
    if (!qOK && !(AcceptDamaged && load.spec->qDamaged)) return false;
    const auto vectors = load.spec->keptVectors();
    setECLIPSEINFOFromOnly(*session_, load.spec->xStore, vectors, bOnly, qOnly, shared, qOK);
    if (!qOK) return false;
  } else {
    load.spec->qScanOnly = true;
    InitEclipseINFO(shared, qOK);
  }
  FileChoice choice =
      chooseFiles(*session_, FileName, FileKind::Summary, Unified ? std::optional<bool>(true) : std::nullopt);
  Unified = choice.unified;
  load.zFiles = std::move(choice.files);
  load.nFiles = static_cast<std::int32_t>(load.zFiles.size());
  // A range that holds none of the step files is a set without rows.
  GetFileListUsingStartAndEnd(iStart, iEnd, Formatted, Unified, {}, load.nFiles, load.zFiles, qOK);
  return qOK;
}

bool qvEclipseReader::chooseByDialog(SummaryLoad& load) {
  bool qOK = false;
  load.spec->ReadEclipseSPECFile(qOK);
  if (!qOK) return false;
  auto& shared = session_->part<SelectionState>().xInfo;
  InitEclipseINFO(shared, qOK);
  const auto vectors = load.spec->keptVectors();
  setByteECLIPSEINFO(load.spec->xStore, vectors, shared, qOK);
  setByteECLIPSECLASS(load.spec->xStore, vectors, shared, qOK);

  LoadDialogSettings settings;
  settings.Unified = Unified;
  settings.Formatted = Formatted;
  settings.byteSwap = byteSwap;
  settings.FileName = FileName;
  settings.zFileType = "SUMMARY";
  settings.hasLengths = load.spec->querySPECRecord("LENGTHS");
  if (!dialog_->show(*load.spec, shared, settings)) return false;

  CreateOnlyList(13, shared, bOnly, qOnly, qOK);
  if (!qOK) return false;
  iStart = settings.iStart;
  iEnd = settings.iEnd;
  Unified = settings.Unified;
  zOrigin = settings.zOrigin;
  NoRestart = !settings.Restart;
  HorizWell = settings.HorizWell;
  MiniSteps = settings.MiniSteps;
  InFlow = settings.InFlow;
  Connect = settings.Connect;
  if (!Unified) {
    load.zFiles = settings.zFiles;
    load.nFiles = static_cast<std::int32_t>(load.zFiles.size());
  }
  return true;
}

bool qvEclipseReader::loadSummary(SummaryLoad& load) {
  SetOriginFromFileName();
  summary_ = std::make_unique<qvEclipseSUMMARYFile>(*session_);
  auto& file = *summary_;
  file.zFileName = load.path;
  file.Formatted = Formatted;
  file.UNIX = UNIX;
  file.byteSwap = byteSwap;
  file.SetbOnly(bOnly, qOnly);
  file.iStart = iStart;
  file.iEnd = iEnd;
  if (Unified) {
    file.iPosition = ReadPosition64.low;
    file.iPositionHigh = ReadPosition64.high;
  }
  bool qOK = false;
  file.setMultList(load.nFiles, load.zFiles, qOK);
  file.Unified = Unified;
  file.zOrigin = zOrigin;
  file.NoRestart = NoRestart;
  file.SaveScratchFile = SaveScratchFiles;
  file.AcceptDamaged = AcceptDamaged;
  takePatterns(file);
  file.xSPEC.push_back(std::move(load.spec));
  file.ReadSUMMARYData(qOK);
  if (iStart != -1) AllData = false;
  if (qOK && HorizWell) file.getHorizontalData(InFlow, Connect, MiniSteps, qOK);
  return qOK;
}

/// The text options and the lists of patterns choose together; the session's text list follows the text
/// options.
void qvEclipseReader::takePatterns(qvEclipseSUMMARYFile& file) const {
  file.onlyPatterns = VectorPatterns;
  file.exceptPatterns = ExceptPatterns;
  if (!zOnly.empty()) file.onlyPatterns.push_back(zOnly);
  if (!zExcept.empty()) file.exceptPatterns.push_back(zExcept);
  const bool positive = !zOnly.empty() || zExcept.empty();
  setEclipseONLYList(*session_, splitPatterns(positive ? zOnly : zExcept), positive);
}

void qvEclipseReader::SetOriginFromFileName() {
  if (zOrigin.empty()) zOrigin = lumbarn::FileName(FileName).base;
}

bool qvEclipseReader::CheckifEclipse(FileDescriptor& uFileDesc) {
  bool qKnown = false;
  perform("CheckifEclipse", qKnown, [&] {
    const auto recognised = recogniseFile(uFileDesc.zFile);
    if (recognised.whichtype() == 0) return false;
    uFileDesc.iType = recognised.whichtype();
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
  switch (iFileType) {
    case 12:
    case 13:  // the summary reader asks for the specification under both codes
      return qvEclipseSPEC(*session_).CheckSPECFile(zFileName);
    case 14:
      return qvGRIDReader(*session_).CheckGRIDFile(zFileName);
    case 23:
      return qvGRIDReader(*session_).CheckEGRIDFile(zFileName);
    case 11:
    case 16:
      return qvEclipseSOLUTION(*session_).CheckRESTARTFile(zFileName);
    case 15:
      return qvEclipseINIT(*session_).CheckINITFile(zFileName);
    case 28: {
      bool qIndex = false;
      qvEclipseRSSPEC(*session_).CheckRESTARTFile(zFileName, qIndex);
      return qIndex;
    }
    default:
      return iFileType >= 11 && iFileType <= 154 && recogniseFile(zFileName).whichtype() == iFileType;
  }
}

bool qvEclipseReader::IsInitialised(std::int32_t iType) const {
  switch (iType) {
    case 11:
      return solution_ != nullptr;
    case 13:
      return summary_ != nullptr;
    case 14:  // whichever file the grid came from; code 23 is none of those that hosts ask for
      return grid_ != nullptr;
    case 18:
      return tests_ != nullptr;
    case 28:
      return rsspec_ != nullptr;
    case 76:
      return userTests_ != nullptr;
    case initCode:
      return init_ != nullptr;
    default:
      return false;
  }
}

void qvEclipseReader::release(Loaded loaded) {
  if (loaded == Loaded::Summary) summary_.reset();
  if (loaded == Loaded::Restart) solution_.reset();
  if (loaded == Loaded::Grid) grid_.reset();
  if (loaded == Loaded::Init) init_.reset();
  if (loaded == Loaded::Tests) tests_.reset();
  if (loaded == Loaded::UserTests) userTests_.reset();
}

bool qvEclipseReader::DeleteObject(std::int32_t iType) {
  if (iType == 11) solution_.reset();
  if (iType == 13) summary_.reset();
  if (iType == 14) grid_.reset();
  if (iType == 18) tests_.reset();
  if (iType == 28) rsspec_.reset();
  if (iType == 76) userTests_.reset();
  if (iType == initCode) init_.reset();
  return true;
}

void qvEclipseReader::fillSourceData(const qvEclipseSUMMARYFile& file, SourceData& vSourceData,
                                     bool& qOK) const {
  file.getFileInfo(vSourceData, qOK);
  if (!qOK) return;
  vSourceData(1) = zOrigin;
  vSourceData(6) = std::string("SUMMARY");
  vSourceData(9) = stepSlot(iStart);
  vSourceData(10) = stepSlot(iEnd);
  vSourceData(11) = NoRestart;
  vSourceData(12) = Unified;
  vSourceData(13) = Formatted;
  vSourceData(27) = qOnly;
  vSourceData(32) = AllData;
  vSourceData(34) = NullValue;
  vSourceData(35) = UseNullValue;
}

/// What both forms of fetching share.
template <class Fetch>
void qvEclipseReader::fetchSummary(const char* routine, Fetch fetch, SourceData& vSourceData,
                                   ByteTable& bOnlyUsed, bool& qOK) {
  // Deliberate: for other codes, 13 among them, nothing is handed out and the answer is True. Hosts test the
  // code.
  if (whichtype != 12) {
    session_->diagnose(Diagnosis{.message = Message::OtherCode,
                                 .path = FileName,
                                 .expected = "12",
                                 .found = std::to_string(whichtype),
                                 .action = "returned nothing"});
    qOK = true;
    return;
  }
  perform(routine, qOK, [&] {
    if (!requireLoaded(summary_ != nullptr, "summary")) return false;
    if (summaryFetched_) {
      session_->diagnose(Diagnosis{.message = Message::FetchedBefore,
                                   .path = FileName,
                                   .expected = "one fetch for each load",
                                   .action = "returned nothing"});
      return false;
    }
    summary_->SaveScratchFile = SaveScratchFiles;
    bool qDone = false;
    fetch(*summary_, qDone);
    if (!qDone) return false;
    summaryFetched_ = true;
    fillSourceData(*summary_, vSourceData, qDone);
    bOnlyUsed = bOnly;
    return qDone;
  });
}

void qvEclipseReader::GetSUMMARYData(XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData,
                                     ByteTable& bOnlyUsed, bool& qOK) {
  const auto fetch = [&](qvEclipseSUMMARYFile& file, bool& qDone) {
    file.GetSUMMARYData(xyData, bHeaders, qDone);
  };
  fetchSummary("GetSUMMARYData", fetch, vSourceData, bOnlyUsed, qOK);
}

void qvEclipseReader::GetStoreSUMMARYData(XYData& xyData, AttributeStores& xStore, ByteTable& bPointers,
                                          SourceData& vSourceData, ByteTable& bOnlyUsed, bool& qOK) {
  const auto fetch = [&](qvEclipseSUMMARYFile& file, bool& qDone) {
    file.GetStoreSUMMARYData(xyData, xStore, bPointers, qDone);
  };
  fetchSummary("GetStoreSUMMARYData", fetch, vSourceData, bOnlyUsed, qOK);
}

void qvEclipseReader::getSUMMARYHorizontalData(std::int32_t iStep, bool qInflow, XYData& xyData,
                                               ByteTable& bHeaders, SourceData& vSourceData, bool& qOK) {
  if (!HorizWell) {  // deliberate: nothing was asked for, so nothing is missing
    qOK = true;
    return;
  }
  perform("getSUMMARYHorizontalData", qOK, [&] {
    if (!summary_) return false;
    bool qDone = false;
    std::string zDate;
    summary_->getHorizontalData(iStep, qInflow, xyData, bHeaders, zDate, qDone);
    if (!qDone) return false;
    fillSourceData(*summary_, vSourceData, qDone);
    if (!qDone) return false;
    const auto number = toInteger(ExtractAttribute(attributeIndex, bHeaders, 1));
    vSourceData(4) = zDate;
    vSourceData(6) = std::string(qInflow ? "Inflow" : "Connect");
    vSourceData(8) = stepSlot(static_cast<std::int32_t>(number.value_or(0)));
    return true;
  });
}

void qvEclipseReader::InitSummaryKeys(bool& qOK) {
  qOK = summary_ != nullptr;
  if (qOK) summary_->SetKeys();
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

std::int32_t qvEclipseReader::Count() const { return summary_ ? summary_->columns() : 0; }

std::int32_t qvEclipseReader::NumberTimeSteps() const { return static_cast<std::int32_t>(Rows().size()); }

std::string qvEclipseReader::SummaryScratchFileName() const { return summary_ ? summary_->zScratchFile : ""; }

std::vector<SummaryVector> qvEclipseReader::ListSummaryVectors(bool& qOK) {
  std::vector<SummaryVector> found;
  perform("ListSummaryVectors", qOK, [&] {
    qvEclipseSPEC spec(*session_);
    const std::string path = specificationOf(FileName);
    if (!spec.CheckSPECFile(path)) {
      session_->diagnose(refusal(path, FileKind::SummarySpec));
      return false;
    }
    bool qRead = false;
    spec.ReadEclipseSPECFile(qRead);
    if (!qRead && !(AcceptDamaged && spec.qDamaged)) return false;
    found = summaryVectors(spec);
    return true;
  });
  return found;
}

const std::vector<SummaryVector>& qvEclipseReader::Vectors() const {
  static const std::vector<SummaryVector> none;
  return summary_ ? summary_->vectors() : none;
}

const std::vector<SummaryRow>& qvEclipseReader::Rows() const {
  static const std::vector<SummaryRow> none;
  return summary_ ? summary_->rows() : none;
}

std::vector<bool> qvEclipseReader::RowsWithValues(std::int32_t iVector) const {
  if (!summary_ || iVector < 1) return {};
  return summary_->rowsWithValues(static_cast<std::size_t>(iVector));
}

std::vector<Moment> qvEclipseReader::RowDates(const XYData& xyData) const {
  std::vector<Moment> dates;
  const auto start = StartDate();
  if (!start || xyData.empty() || Vectors().empty() || Vectors().front().mnemonic != "TIME") return dates;
  const double perDay = unitsPerDay(Vectors().front().units);
  for (const float time : xyData.column(1)) {
    const auto moment = momentAfter(*start, time, perDay);
    if (!moment) return {};
    dates.push_back(*moment);
  }
  return dates;
}

std::optional<Moment> qvEclipseReader::StartDate() const {
  return summary_ ? summary_->start() : std::nullopt;
}

std::vector<std::string> qvEclipseReader::UnmatchedPatterns() const {
  if (loaded_ == Loaded::Restart && solution_) return solution_->selection.unmatched();
  if (loaded_ == Loaded::Init && init_) return init_->selection.unmatched();
  if (loaded_ == Loaded::Summary && summary_) return summary_->unmatched;
  return {};
}

bool qvEclipseReader::Damaged() const {
  switch (loaded_) {
    case Loaded::Summary:
      return summary_ && summary_->qDamaged;
    case Loaded::Restart:
      return solution_ && solution_->qDamaged;
    case Loaded::Grid:
      return grid_ && grid_->qDamaged;
    case Loaded::Init:
      return init_ && init_->qDamaged;
    case Loaded::Tests:
      return tests_ && tests_->qDamaged;
    case Loaded::UserTests:
      return userTests_ && userTests_->qDamaged;
    case Loaded::None:
      break;
  }
  return false;
}

}  // namespace lumbarn
