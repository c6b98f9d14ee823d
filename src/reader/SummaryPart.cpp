#include "SummaryPart.h"

#include <utility>

#include "../files/FileChoice.h"
#include "../files/FileSets.h"
#include "../files/Recogniser.h"
#include "../shapes/HeaderLayout.h"
#include "../summary/VectorSelection.h"
#include "../support/Text.h"
#include "../vocabulary/Units.h"
#include "LoadDialog.h"

namespace lumbarn {

namespace {

/// Step numbers stand in slots of 16 bits; beyond them the slot widens rather than lie.
Variant stepSlot(std::int32_t step) {
  if (std::in_range<std::int16_t>(step)) return static_cast<std::int16_t>(step);
  return step;
}

/// The specification that a summary load reads: a data file or the root name of a run leads to it.
std::string specificationOf(const std::string& path) {
  constexpr FileKind leads[] = {FileKind::Summary};
  return fileOfRun(path, FileKind::SummarySpec, leads);
}

}  // namespace

/// What was chosen before the data are read.
struct SummaryPart::Choice {
  std::string path;  ///< of the specification
  std::unique_ptr<qvEclipseSPEC> spec;
  std::int32_t nFiles = 0;
  std::vector<std::string> zFiles;
};

void SummaryPart::release() {
  file_.reset();
  fetched_ = false;
}

std::vector<std::string> SummaryPart::unmatched() const {
  return file_ ? file_->unmatched : std::vector<std::string>();
}

void SummaryPart::load() {
  yield();
  Choice choice;
  choice.path = specificationOf(options().FileName);
  choice.spec = std::make_unique<qvEclipseSPEC>(session());
  if (!choice.spec->CheckSPECFile(choice.path)) failWith(refusal(choice.path, FileKind::SummarySpec));
  setForm(*choice.spec);
  dialog() ? chooseByDialog(choice) : chooseSilently(choice);
  yield();
  read(choice);
}

void SummaryPart::chooseSilently(Choice& choice) const {
  auto& spec = *choice.spec;
  auto& shared = sharedSelection();
  bool qOK = false;
  if (!isEmptyOnlyList(options().bOnly)) {
    spec.ReadEclipseSPECFile(qOK);
    if (!qOK && !(options().AcceptDamaged && spec.qDamaged)) throw ReportedFailure();
    require([&](bool& qSet) {
      setECLIPSEINFOFromOnly(session(), spec.xStore, spec.keptVectors(), options().bOnly, options().qOnly,
                             shared, qSet);
    });
  } else {
    spec.qScanOnly = true;
    InitEclipseINFO(shared, qOK);
  }
  FileChoice files = chooseFiles(session(), options().FileName, FileKind::Summary,
                                 options().Unified ? std::optional<bool>(true) : std::nullopt);
  options().Unified = files.unified;
  choice.zFiles = std::move(files.files);
  choice.nFiles = static_cast<std::int32_t>(choice.zFiles.size());
  // A range that holds none of the step files is a set without rows.
  require([&](bool& qListed) {
    GetFileListUsingStartAndEnd(options().iStart, options().iEnd, options().Formatted, options().Unified, {},
                                choice.nFiles, choice.zFiles, qListed);
  });
}

void SummaryPart::chooseByDialog(Choice& choice) const {
  auto& spec = *choice.spec;
  require([&](bool& qRead) { spec.ReadEclipseSPECFile(qRead); });
  bool qOK = false;
  auto& shared = sharedSelection();
  InitEclipseINFO(shared, qOK);
  const auto vectors = spec.keptVectors();
  setByteECLIPSEINFO(spec.xStore, vectors, shared, qOK);
  setByteECLIPSECLASS(spec.xStore, vectors, shared, qOK);

  LoadDialogSettings settings;
  settings.Unified = options().Unified;
  settings.Formatted = options().Formatted;
  settings.byteSwap = options().byteSwap;
  settings.FileName = options().FileName;
  settings.zFileType = "SUMMARY";
  settings.hasLengths = spec.querySPECRecord("LENGTHS");
  if (!dialog()->show(spec, shared, settings)) throw LoadCanceled();

  require([&](bool& qMade) { CreateOnlyList(13, shared, options().bOnly, options().qOnly, qMade); });
  options().iStart = settings.iStart;
  options().iEnd = settings.iEnd;
  options().Unified = settings.Unified;
  options().zOrigin = settings.zOrigin;
  options().NoRestart = !settings.Restart;
  options().HorizWell = settings.HorizWell;
  options().MiniSteps = settings.MiniSteps;
  options().InFlow = settings.InFlow;
  options().Connect = settings.Connect;
  if (options().Unified) return;
  choice.zFiles = settings.zFiles;
  choice.nFiles = static_cast<std::int32_t>(choice.zFiles.size());
}

void SummaryPart::read(Choice& choice) {
  setOrigin();
  file_ = std::make_unique<qvEclipseSUMMARYFile>(session());
  auto& file = *file_;
  bool qOK = false;
  file.zFileName = choice.path;
  setOptions(file);
  file.setMultList(choice.nFiles, choice.zFiles, qOK);
  file.Unified = options().Unified;
  file.xSPEC.push_back(std::move(choice.spec));
  file.ReadSUMMARYData(qOK);
  if (options().iStart != -1) options().AllData = false;
  if (!qOK) throw ReportedFailure();
  if (!options().HorizWell) return;
  require([&](bool& qBuilt) {
    file.getHorizontalData(options().InFlow, options().Connect, options().MiniSteps, qBuilt);
  });
}

void SummaryPart::setOptions(qvEclipseSUMMARYFile& file) const {
  file.Formatted = options().Formatted;
  file.UNIX = options().UNIX;
  file.byteSwap = options().byteSwap;
  file.SetbOnly(options().bOnly, options().qOnly);
  file.iStart = options().iStart;
  file.iEnd = options().iEnd;
  if (options().Unified) {
    file.iPosition = options().ReadPosition64.low;
    file.iPositionHigh = options().ReadPosition64.high;
  }
  file.zOrigin = options().zOrigin;
  file.NoRestart = options().NoRestart;
  file.SaveScratchFile = options().SaveScratchFiles;
  file.AcceptDamaged = options().AcceptDamaged;
  file.onlyPatterns = onlyPatterns();
  file.exceptPatterns = exceptPatterns();
  // The session's text list follows the text options.
  const bool positive = !options().zOnly.empty() || options().zExcept.empty();
  setEclipseONLYList(session(), splitPatterns(positive ? options().zOnly : options().zExcept), positive);
}

std::vector<SummaryVector> SummaryPart::list() const {
  qvEclipseSPEC spec(session());
  const std::string path = specificationOf(options().FileName);
  if (!spec.CheckSPECFile(path)) failWith(refusal(path, FileKind::SummarySpec));
  bool qRead = false;
  spec.ReadEclipseSPECFile(qRead);
  if (!qRead && !(options().AcceptDamaged && spec.qDamaged)) throw ReportedFailure();
  return summaryVectors(spec);
}

qvEclipseSUMMARYFile& SummaryPart::beginFetch() const {
  if (fetched_) {
    failWith(Diagnosis{.message = Message::FetchedBefore,
                       .path = options().FileName,
                       .expected = "one fetch for each load",
                       .action = "returned nothing"});
  }
  file_->SaveScratchFile = options().SaveScratchFiles;
  return *file_;
}

SourceData SummaryPart::endFetch() {
  fetched_ = true;
  return source();
}

SourceData SummaryPart::source() const {
  SourceData source;
  require([&](bool& qOK) { file_->getFileInfo(source, qOK); });
  source(1) = options().zOrigin;
  source(6) = std::string("SUMMARY");
  source(9) = stepSlot(options().iStart);
  source(10) = stepSlot(options().iEnd);
  source(11) = options().NoRestart;
  source(12) = options().Unified;
  source(13) = options().Formatted;
  source(27) = options().qOnly;
  source(32) = options().AllData;
  source(34) = session().NullValue;
  source(35) = session().UseNullValue;
  return source;
}

SourceData SummaryPart::profile(std::int32_t iStep, bool qInflow, XYData& xyData, ByteTable& bHeaders) const {
  if (!file_) throw ReportedFailure();
  std::string zDate;
  require([&](bool& qOK) { file_->getHorizontalData(iStep, qInflow, xyData, bHeaders, zDate, qOK); });
  SourceData from = source();
  const auto number = toInteger(ExtractAttribute(attributeIndex, bHeaders, 1));
  from(4) = zDate;
  from(6) = std::string(qInflow ? "Inflow" : "Connect");
  from(8) = stepSlot(static_cast<std::int32_t>(number.value_or(0)));
  return from;
}

const std::vector<SummaryVector>& SummaryPart::vectors() const {
  static const std::vector<SummaryVector> none;
  return file_ ? file_->vectors() : none;
}

const std::vector<SummaryRow>& SummaryPart::rows() const {
  static const std::vector<SummaryRow> none;
  return file_ ? file_->rows() : none;
}

std::vector<bool> SummaryPart::rowsWithValues(std::int32_t iVector) const {
  if (!file_ || iVector < 1) return {};
  return file_->rowsWithValues(static_cast<std::size_t>(iVector));
}

std::vector<Moment> SummaryPart::rowDates(const XYData& table) const {
  std::vector<Moment> dates;
  const auto from = start();
  if (!from || table.empty() || vectors().empty() || vectors().front().mnemonic != "TIME") return dates;
  const double perDay = unitsPerDay(vectors().front().units);
  for (const float time : table.column(1)) {
    const auto moment = momentAfter(*from, time, perDay);
    if (!moment) return {};
    dates.push_back(*moment);
  }
  return dates;
}

}  // namespace lumbarn
