#include "qvEclipseINIT.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "../shapes/HeaderLayout.h"
#include "../shapes/OnlyList.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseINIT";

template <class Value>
bool give(std::optional<Value> from, Value& to) {
  if (from) to = std::move(*from);
  return from.has_value();
}

}  // namespace

void qvEclipseINIT::setINITFileTypeProps(cFILETYPE& cFile, bool& qOK) const {
  constexpr std::int32_t fileKindCode = 13;  // deliberate: that of a summary
  cFile.setFlags(*this);
  cFile.IOMethod = session().IOMethod;
  cFile.UseBufferedInput = usesBufferedInput(fileKindCode);
  qOK = true;
}

void qvEclipseINIT::getEclipseINITArrays(bool& qOK) {
  guarded(session(), qOK, className, "getEclipseINITArrays", [&] { return load(); });
  xTAB.take(std::move(tables));
}

void qvEclipseINIT::GetInitVectorList(std::int32_t& nVectors, std::vector<std::string>& zVectors, bool& qOK,
                                      bool qList) {
  guarded(session(), qOK, className, "GetInitVectorList", [&] {
    auto found = listArrays();
    if (!found) return false;
    nVectors = static_cast<std::int32_t>(found->names.size());
    zVectors = qList ? std::move(found->names) : std::vector<std::string>();
    return found->complete;
  });
}

std::int32_t qvEclipseINIT::EstimateVectorCount(std::int32_t nCells, std::uint64_t fileBytes) {
  constexpr std::int32_t usual = 10;
  constexpr std::uint64_t least = 10'000, most = 100'000;
  if (nCells < 1) return usual;
  // Four decimals of the length over 10,000 are the length itself, so the quotient in ten-thousandths is the
  // count of values of the file for each cell. Deliberate: it is taken as it is, not over 10,000.
  const std::uint64_t quotient = (fileBytes + 2) / 4 / static_cast<std::uint64_t>(nCells);
  return quotient < least || quotient > most ? usual : static_cast<std::int32_t>(quotient);
}

void qvEclipseINIT::setONLYList(const std::vector<std::string>& zOnly, bool qOnly, bool& qOK) {
  guarded(session(), qOK, className, "setONLYList", [&] {
    setEclipseONLYList(session(), zOnly, qOnly);
    Only = !zOnly.empty();
  });
}

void qvEclipseINIT::getONLYList(std::vector<std::string>& zOnly, bool& qOnly, bool& qOK) const {
  guarded(session(), qOK, className, "getONLYList", [&] { getEclipseONLYList(session(), zOnly, qOnly); });
}

void qvEclipseINIT::GetData(XYData& xyData, bool& qOK) {
  guarded(session(), qOK, className, "GetData", [&] {
    auto* held = find(iGrid);
    if (!held || held->arrays.empty()) return false;
    if (LoadData && !held->zScratchFile.empty()) {
      bool qRead = true;
      if (!SaveScratchFile) getINITDataFromScratchFile(xyData, qRead);
      return qRead;
    }
    return give(takeValues(), xyData) && !held->arrays.empty();
  });
}

void qvEclipseINIT::getINITDataFromScratchFile(XYData& xyData, bool& qOK) {
  guarded(session(), qOK, className, "getINITDataFromScratchFile",
          [&] { return give(takeScratchValues(), xyData); });
}

std::string qvEclipseINIT::zScratchFile() const {
  return iGrid >= 1 && iGrid <= nGrids() ? grid().zScratchFile : std::string();
}

void qvEclipseINIT::getHeaders(ByteTable& bHeaders, bool& qOK) const {
  guarded(session(), qOK, className, "getHeaders", [&] {
    const auto& from = grid();
    ByteTable headers(headerWidth, from.arrays.size());
    for (std::size_t i = 1; i <= from.arrays.size(); ++i) {
      const auto& array = from.arrays[i - 1];
      setAttribute(attributeDataKind, headers, i, "INIT");
      setAttribute(attributeUnits, headers, i, array.unit);
      setAttribute(attributeVariable, headers, i, array.name);
      setAttribute(attributeVerbose, headers, i, array.name);  // static arrays have no other description
      if (nGrids() == 1) continue;
      setAttribute(attributeLGRName, headers, i, from.GridName);
      setAttribute(attributeMember, headers, i, iGrid == 1 ? "BLOCKS" : "LGR");
    }
    bHeaders = std::move(headers);
    return true;
  });
}

void qvEclipseINIT::getFileInfo(SourceData& vSourceData, bool& qOK) const {
  guarded(session(), qOK, className, "getFileInfo", [&] {
    constexpr std::int32_t initCode = 15;
    const auto& from = grid();
    bool qInit = false;
    InitSourceData(vSourceData, qInit);
    if (!qInit) return false;
    vSourceData(1) = Origin;
    vSourceData(2) = FileName;
    vSourceData(3) = std::string("ECLIPSE");
    vSourceData(4) = from.zDate;
    vSourceData(6) = std::string("INIT");
    vSourceData(7) = static_cast<std::int16_t>(from.iUnits);
    vSourceData(13) = from.flags.qRadial;  // deliberate: hosts find it here, where others have `Formatted`
    vSourceData(14) = initCode;
    vSourceData(23) = initCode;
    vSourceData(29) = from.GridName;
    vSourceData(30) = std::string("ROOT");
    vSourceData(31) = iGrid;
    vSourceData(64) = from.Nx;
    vSourceData(65) = from.Ny;
    vSourceData(66) = from.Nz;
    return true;
  });
}

void qvEclipseINIT::GetINITFODPointers(ColumnTable<std::int32_t>& iFODPointers, bool& qOK) const {
  guarded(session(), qOK, className, "GetINITFODPointers", [&] { iFODPointers = fetchTable(grid().arrays); });
}

void qvEclipseINIT::getEclipseINITFODInfo(std::array<bool, 5>& qFileTypeSettings, bool& qOK) const {
  constexpr std::int32_t methodWithMark = 8;
  qFileTypeSettings = {FORTRAN, Formatted, UNIX, byteSwap, session().IOMethod == methodWithMark};
  qOK = true;
}

void qvEclipseINIT::ranges(std::vector<float>& values, bool wantMin, bool& qOK) {
  guarded(session(), qOK, className, wantMin ? "GetArrayMin" : "GetArrayMax", [&] {
    constexpr float start = 1e10F;
    if (!LoadData) {
      values.assign(1, -1);
      return true;
    }
    const auto arrays = grid().nVectors();
    std::vector<float> found, array;
    for (std::int32_t i = 1; i <= arrays; ++i) {
      bool qGot = false;
      GetArray(iGrid, i, false, array, qGot);
      if (!qGot) return false;
      float extreme = wantMin ? start : -start;
      for (const float value : array)
        extreme = wantMin ? std::fmin(extreme, value) : std::fmax(extreme, value);
      found.push_back(extreme);
    }
    values = std::move(found);
    return true;
  });
}

void qvEclipseINIT::GetArrayMin(std::vector<float>& sMin, bool& qOK) { ranges(sMin, true, qOK); }
void qvEclipseINIT::GetArrayMax(std::vector<float>& sMax, bool& qOK) { ranges(sMax, false, qOK); }

void qvEclipseINIT::GetA2N(std::vector<std::int32_t>& iA2N, bool& qOK, std::int32_t iGridNumber) {
  guarded(session(), qOK, className, "GetA2N", [&] {
    const auto* cells = activeCells(iGridNumber);
    if (cells) iA2N = *cells;
    return cells != nullptr;
  });
}

void qvEclipseINIT::GetArray(std::int32_t iGridNumber, std::int32_t iArray, bool qAllCells,
                             std::vector<float>& sValues, bool& qOK) {
  guarded(session(), qOK, className, "GetArray",
          [&] { return give(arrayValues(iGridNumber, iArray, qAllCells), sValues); });
}

std::int32_t qvEclipseINIT::getNUMNNC(std::int32_t iType) const {
  const tNNC* record = connections(iType);
  return record ? record->nItems : 0;
}

std::int32_t qvEclipseINIT::getNNCTypes(std::int32_t iType) const {
  const tNNC* record = connections(iType);
  return record ? record->nArrays : 0;
}

void qvEclipseINIT::GetNNCData(std::int32_t iType, XYData& xyData, bool& qOK) {
  guarded(session(), qOK, className, "GetNNCData", [&] { return give(connectionValues(iType), xyData); });
}

void qvEclipseINIT::getNNCHeaders(std::int32_t iType, ByteTable& bHeaders, bool& qOK) const {
  guarded(session(), qOK, className, "getNNCHeaders", [&] {
    if (iType < 1 || iType > 3) return false;
    const auto& from = grid().xNNC[static_cast<std::size_t>(iType) - 1];
    ByteTable headers(headerWidth, from.zArrays.size());
    for (std::size_t i = 1; i <= from.zArrays.size(); ++i) {
      setAttribute(attributeDataKind, headers, i, "INIT");
      setAttribute(attributeVariable, headers, i, from.zArrays[i - 1]);
      setAttribute(attributeVerbose, headers, i, from.zArrays[i - 1]);
      setAttribute(attributeMember, headers, i, from.zNNCType);
      if (nGrids() > 1) setAttribute(attributeLGRName, headers, i, grid().GridName);
    }
    bHeaders = std::move(headers);
    return true;
  });
}

}  // namespace lumbarn
