#include "InitPart.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../files/FileChoice.h"
#include "../files/Recogniser.h"
#include "../index/IndexFile.h"
#include "../index/RestartIndex.h"
#include "../support/Text.h"
#include "GridPart.h"
#include "LoadDialog.h"

namespace lumbarn {

namespace {

constexpr std::int32_t initCode = 15;

/// The INIT file that a load reads: its index or the root name of the run leads to it.
std::string initFileOf(const std::string& path) {
  constexpr FileKind leads[] = {FileKind::Inspec};
  return fileOfRun(path, FileKind::Init, leads);
}

/// Names of bytes 1 to 16 of each entry.
std::vector<std::string> namesOf(const ByteTable& bOnly) {
  std::vector<std::string> names;
  if (isEmptyOnlyList(bOnly)) return names;
  for (std::size_t i = 1; i <= bOnly.entries(); ++i) names.emplace_back(bOnly.get(i, 1, onlyNameWidth));
  return names;
}

}  // namespace

std::vector<std::string> InitPart::unmatched() const {
  return file_ ? file_->selection.unmatched() : std::vector<std::string>();
}

void InitPart::load() {
  yield();
  std::string& path = options().FileName;
  path = initFileOf(path);
  auto file = std::make_unique<qvEclipseINIT>(session());
  if (!file->CheckINITFile(path) || isOfOtherType(path, FileKind::Init))
    failWith(refusal(path, FileKind::Init));
  setForm(*file);
  bool qWriteIndex = !options().IndexFolder.empty();
  if (dialog()) qWriteIndex = chooseByDialog() || qWriteIndex;
  yield();
  setOptions(*file);
  file_ = std::move(file);
  bool qOK = false;
  file_->getEclipseINITArrays(qOK);
  if (session().cancelled()) file_.reset();
  if (!qOK) throw ReportedFailure();
  if (!qWriteIndex || !hasIndexFolder(path)) return;
  require([&](bool& qWritten) {
    WriteEclipseInspecFile(walkInit(session(), path), indexPath(path, "INSPEC"), qWritten, session());
  });
}

/// Whether an index is to be written.
bool InitPart::chooseByDialog() const {
  qvEclipseINIT offer(session());
  bool qOK = false;
  offer.CheckINITFile(options().FileName);
  offer.AcceptDamaged = options().AcceptDamaged;
  offer.setONLYList({}, true, qOK);
  std::int32_t nVectors = 0;
  std::vector<std::string> names;
  require([&](bool& qListed) { offer.GetInitVectorList(nVectors, names, qListed, true); });

  auto& shared = offerArrays(names);
  LoadDialogSettings settings;
  settings.Formatted = options().Formatted;
  settings.byteSwap = options().byteSwap;
  settings.FileName = options().FileName;
  settings.zFileType = "INIT";
  if (!dialog()->showArrays(shared, settings)) throw LoadCanceled();
  CreateOnlyList(initCode, shared, options().bOnly, options().qOnly, qOK);
  options().zOrigin = settings.zOrigin;
  if (!qOK) throw ReportedFailure();
  return settings.writeIndex;
}

void InitPart::setOptions(qvEclipseINIT& file) const {
  bool qOK = false;
  file.setONLYList(namesOf(options().bOnly), options().qOnly, qOK);
  file.selection = ArraySelection(onlyPatterns(), exceptPatterns());
  setOrigin();
  file.Origin = options().zOrigin;
  file.LoadData = options().LoadData;
  file.Tables = options().InitTables;
  file.SaveScratchFile = options().SaveScratchFiles;
  file.AcceptDamaged = options().AcceptDamaged;
}

qvEclipseINIT& InitPart::fileAtGrid() const {
  const std::int32_t iGrid = options().iGridNumber;
  if (iGrid < 1 || iGrid > file_->nGrids()) {
    failWith(Diagnosis{.message = Message::NotLoaded,
                       .path = options().FileName,
                       .problem = "no grid with this number",
                       .expected = fmt::format("1 to {}", file_->nGrids()),
                       .found = std::to_string(iGrid),
                       .action = "returned nothing"});
  }
  file_->iGrid = iGrid;
  file_->SaveScratchFile = options().SaveScratchFiles;
  return *file_;
}

/// Slot 13 stays what the file says: it is not the form of the file here.
SourceData InitPart::source() const {
  SourceData source;
  require([&](bool& qOK) { file_->getFileInfo(source, qOK); });
  source(1) = options().zOrigin;
  source(27) = options().qOnly;
  source(32) = options().AllData;
  source(34) = session().NullValue;
  source(35) = session().UseNullValue;
  return source;
}

PlainTable InitPart::table(std::string_view zTable, std::int32_t iTable) const {
  std::vector<float> values;
  std::vector<std::int32_t> iDimens;
  std::int32_t nDims = 0;
  const auto& tables = file_->xTAB;
  require([&](bool& qOK) {
    tables.getTable2d(zTable, iTable, values, iDimens, nDims, qOK);
    qOK = qOK && nDims == 2;
  });
  PlainTable table{
      XYData(static_cast<std::size_t>(iDimens[0]), static_cast<std::size_t>(iDimens[1]), session()), {}};
  std::ranges::copy(values, table.values.values().begin());
  require([&](bool& qOK) { tables.getTableHeaders2D(zTable, file_->grid(1).iUnits, table.headers, qOK); });
  return table;
}

std::int32_t InitPart::arrayNumber(std::string_view zName) const {
  const auto& arrays = file_->grid().arrays;
  const auto found = std::ranges::find(arrays, upper(trim(zName)), &KeptArray::name);  // kept in upper case
  if (found == arrays.end()) throw ReportedFailure();
  return static_cast<std::int32_t>(found - arrays.begin()) + 1;
}

std::vector<Connection> InitPart::connections(std::int32_t iType, const GridPart& grids) const {
  constexpr GridConnection::Kind kinds[] = {GridConnection::Kind::Inside, GridConnection::Kind::LocalGlobal,
                                            GridConnection::Kind::Amalgamated};
  XYData values;
  require([&](bool& qOK) { file_->GetNNCData(iType, values, qOK); });
  const auto grid = grids.grid(file_->grid().GridName);
  if (!grid) throw ReportedFailure();
  std::vector<std::int32_t> first;
  std::vector<std::int32_t> second;
  for (const GridConnection& connection : grid->connections()) {
    if (connection.kind != kinds[iType - 1]) continue;
    first.push_back(connection.iCell1);
    second.push_back(connection.iCell2);
  }
  std::vector<Connection> pairs;
  require([&](bool& qOK) { pairs = pairConnections(first, second, values, qOK); });
  return pairs;
}

ModelFlags InitPart::flags() const {
  return file_ && file_->nGrids() > 0 ? file_->grid(1).flags : ModelFlags();
}

std::int32_t InitPart::units() const { return file_ && file_->nGrids() > 0 ? file_->grid(1).iUnits : 0; }

}  // namespace lumbarn
