#include <algorithm>
#include <utility>

#include "../support/Guarded.h"
#include "qvEclipseSOLUTION.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSOLUTION";

/// Hosts expect step numbers and grid numbers as 16-bit values; larger ones are stored as 32-bit values.
Variant shortSlot(std::int32_t number) {
  if (std::in_range<std::int16_t>(number)) return static_cast<std::int16_t>(number);
  return number;
}

}  // namespace

/// The step with the grid asked for made its current one.
qvEclipseSEQUENCE& qvEclipseSOLUTION::select(std::int32_t iSeqnum) {
  auto& one = step(iSeqnum);
  one.iGrid = std::max(iGridNumber, 1);
  one.grid();  // must be there
  return one;
}

void qvEclipseSOLUTION::fillSourceData(const qvEclipseSEQUENCE& from, SourceData& vSourceData) const {
  bool qDone = false;
  const RESTARTGRID& grid = from.grid();
  InitSourceData(vSourceData, qDone);
  vSourceData(1) = grid.Origin;
  vSourceData(2) = from.FileName;
  vSourceData(3) = std::string("ECLIPSE");
  vSourceData(4) = grid.zDate;
  vSourceData(6) = std::string("SOLUTION");
  vSourceData(7) = shortSlot(grid.iUnits);
  vSourceData(8) = shortSlot(from.iSeqnum);
  vSourceData(12) = Unified;
  vSourceData(13) = Formatted;
  vSourceData(14) = std::int32_t{11};
  vSourceData(23) = std::int32_t{11};
  vSourceData(29) = grid.GridName;
  vSourceData(30) = std::string("ROOT");
  vSourceData(34) = session_->NullValue;
  vSourceData(35) = session_->UseNullValue;
  vSourceData(63) = grid.iPhases;
}

/// Slots that only the variants with packed markers fill.
void qvEclipseSOLUTION::fillExtended(const qvEclipseSEQUENCE& from, SourceData& vSourceData) const {
  vSourceData(33) = from.grid().qLogi15;
  vSourceData(40) = from.grid().dTime;
}

/// What all variants have in common. Only a step that has data gives anything.
bool qvEclipseSOLUTION::fetchStep(const qvEclipseSEQUENCE& from, XYData& xyData, ByteTable& bHeaders,
                                  SourceData& vSourceData) const {
  fillSourceData(from, vSourceData);
  bool qDone = false;
  from.getSEQUENCEData(xyData, qDone);
  if (qDone) from.getSEQUENCEHeaders(bHeaders, qDone);
  return qDone;
}

void qvEclipseSOLUTION::GetSingleSEQUENCE(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                          SourceData& vSourceData, MarkerTable& vMarkers,
                                          std::int32_t& nMarkers, bool& qOK) {
  guarded(*session_, qOK, className, "GetSingleSEQUENCE", [&] {
    const auto& from = select(iSeqnum);
    const bool qDone = fetchStep(from, xyData, bHeaders, vSourceData);
    takeMarkers(from, vMarkers, nMarkers, vSourceData);
    return qDone;
  });
}

void qvEclipseSOLUTION::GetSingleSEQUENCEb(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                           SourceData& vSourceData, std::vector<std::byte>& bMarkers,
                                           std::int32_t& nMarkers, bool& qOK) {
  guarded(*session_, qOK, className, "GetSingleSEQUENCEb", [&] {
    auto& from = select(iSeqnum);
    const bool qDone = fetchStep(from, xyData, bHeaders, vSourceData);
    fillExtended(from, vSourceData);
    takeMarkers(from, bMarkers, nMarkers, vSourceData);
    return qDone;
  });
}

void qvEclipseSOLUTION::GetSingleSEQUENCEFOD(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                             SourceData& vSourceData, MarkerTable& vMarkers,
                                             std::int32_t& nMarkers, ColumnTable<std::int32_t>& iFOD,
                                             bool& qFOD, bool& qOK) {
  guarded(*session_, qOK, className, "GetSingleSEQUENCEFOD", [&] {
    const auto& from = select(iSeqnum);
    const bool qDone = fetchStep(from, xyData, bHeaders, vSourceData);
    takePlaces(from, iFOD, qFOD);
    takeMarkers(from, vMarkers, nMarkers, vSourceData);
    return qDone;
  });
}

void qvEclipseSOLUTION::GetSingleSEQUENCEFODb(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                              SourceData& vSourceData, std::vector<std::byte>& bMarkers,
                                              std::int32_t& nMarkers, ColumnTable<std::int32_t>& iFOD,
                                              bool& qFOD, bool& qOK) {
  guarded(*session_, qOK, className, "GetSingleSEQUENCEFODb", [&] {
    auto& from = select(iSeqnum);
    const bool qDone = fetchStep(from, xyData, bHeaders, vSourceData);
    fillExtended(from, vSourceData);
    vSourceData(64) = from.grid().Nx;
    vSourceData(65) = from.grid().Ny;
    vSourceData(66) = from.grid().Nz;
    takePlaces(from, iFOD, qFOD);
    takeMarkers(from, bMarkers, nMarkers, vSourceData);
    return qDone;
  });
}

void qvEclipseSOLUTION::takePlaces(const qvEclipseSEQUENCE& from, ColumnTable<std::int32_t>& iFOD,
                                   bool& qFOD) const {
  qFOD = !from.LoadData;
  iFOD = from.grid().arrays.iFOD();
}

/// A step without well data has no markers; the fetch still succeeds.
void qvEclipseSOLUTION::takeMarkers(const qvEclipseSEQUENCE& from, MarkerTable& vMarkers,
                                    std::int32_t& nMarkers, SourceData& vSourceData) const {
  bool qDone = false;
  nMarkers = 0;
  from.getMarkerData(vMarkers, nMarkers, qDone);
  vSourceData(26) = shortSlot(nMarkers);
}

void qvEclipseSOLUTION::takeMarkers(qvEclipseSEQUENCE& from, std::vector<std::byte>& bMarkers,
                                    std::int32_t& nMarkers, SourceData& vSourceData) const {
  bool qDone = false;
  nMarkers = 0;
  from.setMarkerMethod(iMarkerMethod);
  from.getMarkerDatab(bMarkers, nMarkers, qDone);
  vSourceData(26) = shortSlot(nMarkers);
}

}  // namespace lumbarn
