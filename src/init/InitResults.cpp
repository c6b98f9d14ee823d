// What is fetched of an INIT file: arrays, headers, places, ranges.

#include <algorithm>
#include <cmath>
#include <utility>

#include "../shapes/HeaderLayout.h"
#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "qvEclipseINIT.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseINIT";

}  // namespace

const GRIDINFO& qvEclipseINIT::grid(std::int32_t number) const {
  if (number < 1 || number > nGrids()) throw Fault(FaultNumber::Subscript);
  return tGrids_[static_cast<std::size_t>(number) - 1];
}

GRIDINFO* qvEclipseINIT::find(std::int32_t number) {
  return number < 1 || number > nGrids() ? nullptr : &tGrids_[static_cast<std::size_t>(number) - 1];
}

std::string qvEclipseINIT::GridName(std::int32_t number) const {
  return number < 1 || number > nGrids() ? std::string() : grid(number).GridName;
}

std::int32_t qvEclipseINIT::GridNumber(std::string_view zGrid) const {
  const auto found = std::ranges::find(tGrids_, trim(zGrid), &GRIDINFO::GridName);
  return found == tGrids_.end() ? 0 : static_cast<std::int32_t>(found - tGrids_.begin()) + 1;
}

void qvEclipseINIT::GetData(XYData& xyData, bool& qOK) {
  guarded(*session_, qOK, className, "GetData", [&] {
    auto* held = find(iGrid);
    if (!held || held->arrays.empty()) return false;
    if (!LoadData) {
      XYData none(1, held->arrays.size(), *session_);
      std::ranges::fill(none.values(), 0.0F);
      none(1, 1) = -1;
      xyData = std::move(none);
      return true;
    }
    bool qRead = true;
    if (!held->zScratchFile.empty()) {
      if (!SaveScratchFile) getINITDataFromScratchFile(xyData, qRead);
      return qRead;
    }
    if (held->sData.empty()) {
      const auto cursor = open();
      if (!cursor || !loadValues(*cursor, *held)) return false;
    }
    XYData values = std::move(held->sData);
    if (values.columns() > held->arrays.size()) {  // arrays were dropped on the way
      XYData fewer(values.rows(), held->arrays.size(), *session_);
      std::ranges::copy(values.values().first(fewer.values().size()), fewer.values().begin());
      values = std::move(fewer);
    }
    xyData = std::move(values);
    return !held->arrays.empty();
  });
}

void qvEclipseINIT::getHeaders(ByteTable& bHeaders, bool& qOK) const {
  guarded(*session_, qOK, className, "getHeaders", [&] {
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
  guarded(*session_, qOK, className, "getFileInfo", [&] {
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
  guarded(*session_, qOK, className, "GetINITFODPointers", [&] {
    const auto& arrays = grid().arrays;
    iFODPointers = ColumnTable<std::int32_t>(5, arrays.size());
    for (std::size_t i = 1; i <= arrays.size(); ++i) {
      const auto& array = arrays[i - 1];
      const auto place = toWords(array.header.dataAt + 1);
      iFODPointers(1, i) = static_cast<std::int32_t>(array.header.count);
      iFODPointers(2, i) = static_cast<std::int32_t>(array.kind);
      iFODPointers(3, i) = place.low;
      iFODPointers(4, i) = place.high;
      iFODPointers(5, i) = 1;
    }
    return true;
  });
}

void qvEclipseINIT::getEclipseINITFODInfo(std::array<bool, 5>& qFileTypeSettings, bool& qOK) const {
  constexpr std::int32_t methodWithMark = 8;
  qFileTypeSettings = {FORTRAN, Formatted, UNIX, byteSwap, session_->IOMethod == methodWithMark};
  qOK = true;
}

void qvEclipseINIT::ranges(std::vector<float>& values, bool wantMin, bool& qOK) {
  guarded(*session_, qOK, className, wantMin ? "GetArrayMin" : "GetArrayMax", [&] {
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
  guarded(*session_, qOK, className, "GetA2N", [&] {
    auto* held = find(iGridNumber);
    if (!held) return false;
    if (!held->active) {
      const auto cursor = held->PORV ? open() : nullptr;
      if (!cursor || !activeOf(*cursor, *held)) return false;
    }
    iA2N = held->active->iA2N;
    return true;
  });
}

void qvEclipseINIT::GetArray(std::int32_t iGridNumber, std::int32_t iArray, bool qAllCells,
                             std::vector<float>& sValues, bool& qOK) {
  guarded(*session_, qOK, className, "GetArray", [&] {
    auto* held = find(iGridNumber);
    if (!held || iArray < 1 || iArray > held->nVectors() || held->nActive < 0) return false;
    const auto& array = held->arrays[static_cast<std::size_t>(iArray) - 1];
    const bool everyCell = qAllCells && held->nActive != held->nCells;
    const bool longer = array.header.count == held->nCells && array.header.count > held->nActive;
    if (array.header.count != held->nActive && !longer) {
      tellDropped(array, *held);
      return false;
    }
    const bool inMemory = !held->sData.empty();
    const auto cursor = inMemory && (!everyCell || held->active) ? nullptr : open();
    if (!cursor && !inMemory) return false;
    const auto numbered = [&] {
      if (!held->active && cursor) activeOf(*cursor, *held);
      return held->active && held->active->agrees;
    };
    std::vector<float> values(static_cast<std::size_t>(held->nActive));
    if (inMemory) std::ranges::copy(held->sData.column(static_cast<std::size_t>(iArray)), values.begin());
    if ((!inMemory && !readArray(*cursor, *held, array, values)) || (everyCell && !numbered())) {
      tellUnnumbered(*held);
      return false;
    }
    if (everyCell) {
      std::vector<float> all(static_cast<std::size_t>(held->nCells), static_cast<float>(session_->NullValue));
      const auto& iA2N = held->active->iA2N;
      for (std::size_t i = 0; i < iA2N.size(); ++i) all[static_cast<std::size_t>(iA2N[i]) - 1] = values[i];
      values = std::move(all);
    }
    sValues = std::move(values);
    return true;
  });
}

}  // namespace lumbarn
