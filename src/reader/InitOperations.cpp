#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../files/FileChoice.h"
#include "../index/IndexFile.h"
#include "../index/RestartIndex.h"
#include "../init/qvEclipseINIT.h"
#include "../shapes/OnlyList.h"
#include "../support/Diagnosis.h"
#include "../support/Text.h"
#include "ReaderLoad.h"

namespace lumbarn {

namespace {

constexpr std::int32_t initCode = 15;

/// The INIT file that a load reads: its index or the root name of the run leads to it.
std::string initFileOf(const std::string& zFile) {
  constexpr FileKind leads[] = {FileKind::Inspec};
  return fileOfRun(zFile, FileKind::Init, leads);
}

/// Names of bytes 1 to 16 of each entry.
std::vector<std::string> namesOf(const ByteTable& bOnly) {
  std::vector<std::string> names;
  if (isEmptyOnlyList(bOnly)) return names;
  for (std::size_t i = 1; i <= bOnly.entries(); ++i) names.emplace_back(bOnly.get(i, 1, onlyNameWidth));
  return names;
}

}  // namespace

void qvEclipseReader::ReadINITFile(bool& qOK) {
  load(Loaded::Init, "ReadINITFile", qOK, [&] { return readInit(); });
}

bool qvEclipseReader::readInit() {
  init_.reset();  // what an earlier call read must not be fetched as this file's
  if (session_->yield()) return false;
  FileName = initFileOf(FileName);
  auto file = std::make_unique<qvEclipseINIT>(*session_);
  if (!file->CheckINITFile(FileName) || isOfOtherType(FileName, FileKind::Init)) {
    session_->diagnose(refusal(FileName, FileKind::Init));
    return false;
  }
  Formatted = file->Formatted;
  UNIX = file->UNIX;
  byteSwap = file->byteSwap;
  bool qWriteIndex = !IndexFolder.empty();
  if (!Silent && dialog_ && !chooseInitArrays(qWriteIndex)) return false;
  if (session_->yield()) return false;
  prepareInit(*file);
  init_ = std::move(file);
  bool qOK = false;
  init_->getEclipseINITArrays(qOK);
  if (session_->cancelled()) init_.reset();
  if (qOK && qWriteIndex && hasIndexFolder(FileName)) {
    WriteEclipseInspecFile(walkInit(*session_, FileName), indexPath(FileName, "INSPEC"), qOK, *session_);
  }
  return qOK;
}

bool qvEclipseReader::chooseInitArrays(bool& qWriteIndex) {
  qvEclipseINIT offer(*session_);
  bool qOK = false;
  offer.CheckINITFile(FileName);
  offer.AcceptDamaged = AcceptDamaged;
  offer.setONLYList({}, true, qOK);
  std::int32_t nVectors = 0;
  std::vector<std::string> names;
  offer.GetInitVectorList(nVectors, names, qOK, true);
  if (!qOK) return false;

  auto& shared = session_->part<SelectionState>().xInfo;
  InitEclipseINFO(shared, qOK);
  shared.nSolutionVectors = nVectors;
  shared.bSolutionNames = ByteTable(onlyNameWidth, names.size());
  shared.qSolutionChosen.assign(names.size(), true);
  for (std::size_t i = 0; i < names.size(); ++i) shared.bSolutionNames.put(i + 1, 1, onlyNameWidth, names[i]);

  LoadDialogSettings settings;
  settings.Formatted = Formatted;
  settings.byteSwap = byteSwap;
  settings.FileName = FileName;
  settings.zFileType = "INIT";
  if (!dialog_->showArrays(shared, settings)) return false;
  CreateOnlyList(initCode, shared, bOnly, qOnly, qOK);
  zOrigin = settings.zOrigin;
  qWriteIndex = qWriteIndex || settings.writeIndex;
  return qOK;
}

void qvEclipseReader::prepareInit(qvEclipseINIT& file) {
  bool qOK = false;
  file.setONLYList(namesOf(bOnly), qOnly, qOK);
  auto only = VectorPatterns;
  auto except = ExceptPatterns;
  if (!zOnly.empty()) only.push_back(zOnly);
  if (!zExcept.empty()) except.push_back(zExcept);
  file.selection = ArraySelection(only, except);
  SetOriginFromFileName();
  file.Origin = zOrigin;
  file.LoadData = LoadData;
  file.Tables = InitTables;
  file.SaveScratchFile = SaveScratchFiles;
  file.AcceptDamaged = AcceptDamaged;
}

/// What all fetches have in common: an object, its grid, one report.
template <class Fetch>
void qvEclipseReader::fetchInit(const char* routine, bool& qOK, Fetch fetch) {
  perform(routine, qOK, [&] {
    if (!requireLoaded(init_ != nullptr, "INIT")) return false;
    if (iGridNumber < 1 || iGridNumber > init_->nGrids()) {
      session_->diagnose(Diagnosis{.message = Message::NotLoaded,
                                   .path = FileName,
                                   .problem = "no grid with this number",
                                   .expected = fmt::format("1 to {}", init_->nGrids()),
                                   .found = std::to_string(iGridNumber),
                                   .action = "returned nothing"});
      return false;
    }
    init_->iGrid = iGridNumber;
    init_->SaveScratchFile = SaveScratchFiles;
    return static_cast<bool>(fetch(*init_));
  });
}

/// Slot 13 stays what the file says: it is not the form of the file here.
bool qvEclipseReader::fillInitSource(SourceData& vSourceData) const {
  bool qOK = false;
  init_->getFileInfo(vSourceData, qOK);
  if (!qOK) return false;
  vSourceData(1) = zOrigin;
  vSourceData(27) = qOnly;
  vSourceData(32) = AllData;
  vSourceData(34) = NullValue;
  vSourceData(35) = UseNullValue;
  return true;
}

void qvEclipseReader::GetINITData(XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData,
                                  ByteTable& bOnlyUsed, bool& qOK) {
  fetchInit("GetINITData", qOK, [&](qvEclipseINIT& file) {
    bool qDone = false;
    file.GetData(xyData, qDone);
    if (qDone) file.getHeaders(bHeaders, qDone);
    bOnlyUsed = bOnly;
    return qDone && fillInitSource(vSourceData);
  });
}

void qvEclipseReader::getINITDataFOD(XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData,
                                     ByteTable& bOnlyUsed, ColumnTable<std::int32_t>& iFOD,
                                     std::array<bool, 5>& qFileTypeSettings, bool& qFOD, bool& qOK) {
  bool qData = false;
  GetINITData(xyData, bHeaders, vSourceData, bOnlyUsed, qData);
  fetchInit("getINITDataFOD", qOK, [&](qvEclipseINIT& file) {
    bool qDone = false, qSettings = false;
    file.GetINITFODPointers(iFOD, qDone);
    file.getEclipseINITFODInfo(qFileTypeSettings, qSettings);
    qFOD = !file.LoadData;
    return qData && qDone && qSettings;
  });
}

void qvEclipseReader::GetINITNNCData(std::int32_t iType, XYData& xyData, ByteTable& bHeaders, bool& qOK) {
  fetchInit("GetINITNNCData", qOK, [&](qvEclipseINIT& file) {
    bool qDone = false;
    file.GetNNCData(iType, xyData, qDone);
    if (qDone) file.getNNCHeaders(iType, bHeaders, qDone);
    return qDone;
  });
}

std::vector<Connection> qvEclipseReader::InitConnections(std::int32_t iType, bool& qOK) {
  std::vector<Connection> pairs;
  fetchInit("InitConnections", qOK, [&](qvEclipseINIT& file) {
    constexpr GridConnection::Kind kinds[] = {GridConnection::Kind::Inside, GridConnection::Kind::LocalGlobal,
                                              GridConnection::Kind::Amalgamated};
    if (!requireLoaded(grid_ != nullptr, "grid")) return false;
    bool qDone = false;
    XYData values;
    file.GetNNCData(iType, values, qDone);
    if (!qDone) return false;
    const auto& grids = grid_->xGrids;
    const auto found = std::ranges::find_if(
        grids, [&](const auto& grid) { return upper(grid->zName) == upper(file.grid().GridName); });
    if (found == grids.end()) return false;
    std::vector<std::int32_t> first;
    std::vector<std::int32_t> second;
    for (const GridConnection& connection : (*found)->connections()) {
      if (connection.kind != kinds[iType - 1]) continue;
      first.push_back(connection.iCell1);
      second.push_back(connection.iCell2);
    }
    pairs = pairConnections(first, second, values, qDone);
    return qDone;
  });
  return pairs;
}

void qvEclipseReader::GetINITNxNyNz(std::int32_t& Nx, std::int32_t& Ny, std::int32_t& Nz, bool& qOK) {
  Nx = Ny = Nz = -1;
  fetchInit("GetINITNxNyNz", qOK, [&](qvEclipseINIT& file) {
    Nx = file.grid().Nx;
    Ny = file.grid().Ny;
    Nz = file.grid().Nz;
    return true;
  });
}

void qvEclipseReader::GetINITA2N(std::vector<std::int32_t>& iA2N, bool& qOK) {
  fetchInit("GetINITA2N", qOK, [&](qvEclipseINIT& file) {
    bool qDone = false;
    file.GetINITA2N(iA2N, qDone);
    return qDone;
  });
}

void qvEclipseReader::GetINITTableData(std::string_view zTable, std::int32_t iTable, XYData& xyData,
                                       ByteTable& bHeaders, SourceData& vSourceData, bool& qOK) {
  fetchInit("GetINITTableData", qOK, [&](qvEclipseINIT& file) {
    std::vector<float> values;
    std::vector<std::int32_t> iDimens;
    std::int32_t nDims = 0;
    bool qDone = false;
    file.xTAB.getTable2d(zTable, iTable, values, iDimens, nDims, qDone);
    if (!qDone || nDims != 2) return false;
    XYData table(static_cast<std::size_t>(iDimens[0]), static_cast<std::size_t>(iDimens[1]), *session_);
    std::ranges::copy(values, table.values().begin());
    file.xTAB.getTableHeaders2D(zTable, file.grid(1).iUnits, bHeaders, qDone);
    xyData = std::move(table);
    return qDone && fillInitSource(vSourceData);
  });
}

void qvEclipseReader::getTable(std::string_view zTable, std::int32_t iTable, std::vector<float>& dTable,
                               std::vector<std::int32_t>& iDimens, std::int32_t& nDims, bool& qOK,
                               bool qDefault) {
  qOK = false;
  if (init_) init_->xTAB.getTable(zTable, iTable, dTable, iDimens, nDims, qOK, qDefault);
}

void qvEclipseReader::GetTableTypes(std::vector<std::string>& zTables, std::int32_t& nTables,
                                    bool& qOK) const {
  qOK = init_ != nullptr;
  zTables.clear();
  nTables = 0;
  if (init_) init_->xTAB.getTableNames(zTables, nTables);
}

std::int32_t qvEclipseReader::NumberTables(std::string_view zTable) const {
  return init_ ? init_->getNumberTables(zTable) : 0;
}

bool qvEclipseReader::IsINITTableData() const { return init_ && init_->qHaveTables(); }

void qvEclipseReader::DeleteInitData(bool& qOK) {
  init_.reset();
  qOK = true;
}

std::string qvEclipseReader::InitScratchFileName() const { return init_ ? init_->zScratchFile() : ""; }

bool qvEclipseReader::modelFlag(bool ModelFlags::*flag) const {
  return init_ && init_->nGrids() > 0 && init_->grid(1).flags.*flag;
}

std::int32_t qvEclipseReader::NumberPhases() const {
  return static_cast<std::int32_t>(Oil()) + static_cast<std::int32_t>(Water()) +
         static_cast<std::int32_t>(Gas());
}

std::int32_t qvEclipseReader::Units() const {
  return init_ && init_->nGrids() > 0 ? init_->grid(1).iUnits : 0;
}

void qvEclipseReader::GetINITArray(std::string_view zName, bool qAllCells, std::vector<float>& sValues,
                                   bool& qOK) {
  fetchInit("GetINITArray", qOK, [&](qvEclipseINIT& file) {
    const auto& arrays = file.grid().arrays;
    const auto found = std::ranges::find(arrays, upper(trim(zName)), &KeptArray::name);  // kept in upper case
    if (found == arrays.end()) return false;
    bool qDone = false;
    const auto place = static_cast<std::int32_t>(found - arrays.begin()) + 1;
    file.GetArray(iGridNumber, place, qAllCells, sValues, qDone);
    return qDone;
  });
}

PhysicalTable qvEclipseReader::GetINITPhysicalTable(std::string_view zTable, std::int32_t iTable,
                                                    bool& qOK) const {
  qOK = false;
  return init_ ? init_->xTAB.physicalTable(zTable, iTable, Units(), qOK) : PhysicalTable();
}

}  // namespace lumbarn
