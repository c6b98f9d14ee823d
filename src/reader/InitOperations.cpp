#include <utility>

#include "ReaderLoad.h"

namespace lumbarn {

void qvEclipseReader::ReadINITFile(bool& qOK) {
  load(parts_->init, "ReadINITFile", qOK, [&] { parts_->init.load(); });
}

void qvEclipseReader::GetINITData(XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData,
                                  ByteTable& bOnlyUsed, bool& qOK) {
  fetch(parts_->init, "GetINITData", qOK, [&](InitPart& init) {
    auto& file = init.fileAtGrid();
    bOnlyUsed = bOnly;
    require([&](bool& qDone) { file.GetData(xyData, qDone); });
    require([&](bool& qDone) { file.getHeaders(bHeaders, qDone); });
    vSourceData = init.source();
  });
}

void qvEclipseReader::getINITDataFOD(XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData,
                                     ByteTable& bOnlyUsed, ColumnTable<std::int32_t>& iFOD,
                                     std::array<bool, 5>& qFileTypeSettings, bool& qFOD, bool& qOK) {
  bool qData = false;
  GetINITData(xyData, bHeaders, vSourceData, bOnlyUsed, qData);
  fetch(parts_->init, "getINITDataFOD", qOK, [&](InitPart& init, bool& qDone) {
    auto& file = init.fileAtGrid();
    bool qPlaces = false, qSettings = false;
    file.GetINITFODPointers(iFOD, qPlaces);
    file.getEclipseINITFODInfo(qFileTypeSettings, qSettings);
    qFOD = !file.LoadData;
    qDone = qData && qPlaces && qSettings;
  });
}

void qvEclipseReader::GetINITNNCData(std::int32_t iType, XYData& xyData, ByteTable& bHeaders, bool& qOK) {
  fetch(parts_->init, "GetINITNNCData", qOK, [&](InitPart& init) {
    auto& file = init.fileAtGrid();
    require([&](bool& qDone) { file.GetNNCData(iType, xyData, qDone); });
    require([&](bool& qDone) { file.getNNCHeaders(iType, bHeaders, qDone); });
  });
}

std::vector<Connection> qvEclipseReader::InitConnections(std::int32_t iType, bool& qOK) {
  std::vector<Connection> pairs;
  fetch(parts_->init, "InitConnections", qOK, [&](InitPart& init) {
    init.fileAtGrid();
    requireHeld(parts_->grid);
    pairs = init.connections(iType, parts_->grid);
  });
  return pairs;
}

void qvEclipseReader::GetINITNxNyNz(std::int32_t& Nx, std::int32_t& Ny, std::int32_t& Nz, bool& qOK) {
  Nx = Ny = Nz = -1;
  fetch(parts_->init, "GetINITNxNyNz", qOK, [&](InitPart& init) {
    const auto& grid = init.fileAtGrid().grid();
    Nx = grid.Nx;
    Ny = grid.Ny;
    Nz = grid.Nz;
  });
}

void qvEclipseReader::GetINITA2N(std::vector<std::int32_t>& iA2N, bool& qOK) {
  fetch(parts_->init, "GetINITA2N", qOK,
        [&](InitPart& init, bool& qDone) { init.fileAtGrid().GetINITA2N(iA2N, qDone); });
}

void qvEclipseReader::GetINITTableData(std::string_view zTable, std::int32_t iTable, XYData& xyData,
                                       ByteTable& bHeaders, SourceData& vSourceData, bool& qOK) {
  fetch(parts_->init, "GetINITTableData", qOK, [&](InitPart& init) {
    init.fileAtGrid();
    PlainTable table = init.table(zTable, iTable);
    xyData = std::move(table.values);
    bHeaders = std::move(table.headers);
    vSourceData = init.source();
  });
}

void qvEclipseReader::getTable(std::string_view zTable, std::int32_t iTable, std::vector<float>& dTable,
                               std::vector<std::int32_t>& iDimens, std::int32_t& nDims, bool& qOK,
                               bool qDefault) {
  qOK = false;
  if (Init()) Init()->xTAB.getTable(zTable, iTable, dTable, iDimens, nDims, qOK, qDefault);
}

void qvEclipseReader::GetTableTypes(std::vector<std::string>& zTables, std::int32_t& nTables,
                                    bool& qOK) const {
  qOK = parts_->init.held();
  zTables.clear();
  nTables = 0;
  if (qOK) Init()->xTAB.getTableNames(zTables, nTables);
}

std::int32_t qvEclipseReader::NumberTables(std::string_view zTable) const {
  return Init() ? Init()->getNumberTables(zTable) : 0;
}

bool qvEclipseReader::IsINITTableData() const { return Init() && Init()->qHaveTables(); }

void qvEclipseReader::DeleteInitData(bool& qOK) {
  parts_->init.release();
  qOK = true;
}

std::string qvEclipseReader::InitScratchFileName() const { return parts_->init.scratchFile(); }

bool qvEclipseReader::modelFlag(bool ModelFlags::*flag) const {
  return (parts_->deck.answersFor(parts_->init) ? parts_->deck.flags() : parts_->init.flags()).*flag;
}

std::int32_t qvEclipseReader::NumberPhases() const {
  return static_cast<std::int32_t>(Oil()) + static_cast<std::int32_t>(Water()) +
         static_cast<std::int32_t>(Gas());
}

std::int32_t qvEclipseReader::Units() const {
  return parts_->deck.answersFor(parts_->init) ? parts_->deck.units() : parts_->init.units();
}

qvEclipseINIT* qvEclipseReader::Init() { return parts_->init.file(); }

const qvEclipseINIT* qvEclipseReader::Init() const { return parts_->init.file(); }

void qvEclipseReader::GetINITArray(std::string_view zName, bool qAllCells, std::vector<float>& sValues,
                                   bool& qOK) {
  fetch(parts_->init, "GetINITArray", qOK, [&](InitPart& init, bool& qDone) {
    init.fileAtGrid().GetArray(iGridNumber, init.arrayNumber(zName), qAllCells, sValues, qDone);
  });
}

PhysicalTable qvEclipseReader::GetINITPhysicalTable(std::string_view zTable, std::int32_t iTable,
                                                    bool& qOK) const {
  qOK = false;
  return Init() ? Init()->xTAB.physicalTable(zTable, iTable, Units(), qOK) : PhysicalTable();
}

}  // namespace lumbarn
