// Fetches of one step, with what hosts are told of its source.

#include <algorithm>
#include <utility>

#include "../support/Guarded.h"
#include "Markers.h"
#include "qvEclipseSOLUTION.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSOLUTION";
constexpr const char* stepName = "qvEclipseSEQUENCE";  // under which hosts know faults of a step

/// Hosts expect step numbers and grid numbers as 16-bit values; larger ones are stored as 32-bit values.
Variant shortSlot(std::int32_t number) {
  if (std::in_range<std::int16_t>(number)) return static_cast<std::int16_t>(number);
  return number;
}

/// Slots that only the variants with packed markers fill.
void addExtended(const qvEclipseSEQUENCE& from, SourceData& vSourceData) {
  vSourceData(33) = from.grid().qLogi15;
  vSourceData(40) = from.grid().dTime;
}

void takePlaces(const qvEclipseSEQUENCE& from, ColumnTable<std::int32_t>& iFOD, bool& qFOD) {
  qFOD = !from.LoadData;
  iFOD = from.grid().arrays.iFOD();
}

}  // namespace

/// The step with the grid asked for made its current one.
qvEclipseSEQUENCE& qvEclipseSOLUTION::select(std::int32_t iSeqnum) {
  auto& one = step(iSeqnum);
  one.iGrid = std::max(iGridNumber, 1);
  one.grid();  // must be there
  return one;
}

SourceData qvEclipseSOLUTION::sourceDataOf(const qvEclipseSEQUENCE& from) const {
  bool qDone = false;
  SourceData source;
  InitSourceData(source, qDone);
  const RESTARTGRID& grid = from.grid();
  source(1) = grid.Origin;
  source(2) = from.FileName;
  source(3) = std::string("ECLIPSE");
  source(4) = grid.zDate;
  source(6) = std::string("SOLUTION");
  source(7) = shortSlot(grid.iUnits);
  source(8) = shortSlot(from.iSeqnum);
  source(12) = Unified;
  source(13) = Formatted;
  source(14) = std::int32_t{11};
  source(23) = std::int32_t{11};
  source(29) = grid.GridName;
  source(30) = std::string("ROOT");
  source(34) = session_->NullValue;
  source(35) = session_->UseNullValue;
  source(63) = grid.iPhases;
  return source;
}

/// What all variants have in common. Only a step that has arrays gives any; the others leave the fetch to go
/// on with what else there is.
bool qvEclipseSOLUTION::takeArrays(const qvEclipseSEQUENCE& from, XYData& xyData, ByteTable& bHeaders) const {
  if (from.grid().arrays.nVectors() == 0) return false;
  return succeeds(*session_, stepName, "getSEQUENCEData",
                  [&] { xyData = vectorTable(from.grid(), *session_); }) &&
         succeeds(*session_, stepName, "getSEQUENCEHeaders", [&] { bHeaders = vectorHeaders(from); });
}

/// `rest` gives what the variants differ in, and the number of markers.
template <class Rest>
void qvEclipseSOLUTION::fetch(const char* routine, std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                              SourceData& vSourceData, bool& qOK, Rest rest) {
  guarded(*session_, qOK, className, routine, [&] {
    auto& from = select(iSeqnum);
    vSourceData = sourceDataOf(from);
    const bool qDone = takeArrays(from, xyData, bHeaders);
    vSourceData(26) = shortSlot(rest(from));
    return qDone;
  });
}

void qvEclipseSOLUTION::GetSingleSEQUENCE(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                          SourceData& vSourceData, MarkerTable& vMarkers,
                                          std::int32_t& nMarkers, bool& qOK) {
  fetch("GetSingleSEQUENCE", iSeqnum, xyData, bHeaders, vSourceData, qOK,
        [&](const auto& from) { return nMarkers = takeMarkers(from, vMarkers); });
}

void qvEclipseSOLUTION::GetSingleSEQUENCEb(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                           SourceData& vSourceData, std::vector<std::byte>& bMarkers,
                                           std::int32_t& nMarkers, bool& qOK) {
  fetch("GetSingleSEQUENCEb", iSeqnum, xyData, bHeaders, vSourceData, qOK, [&](auto& from) {
    addExtended(from, vSourceData);
    return nMarkers = takeMarkers(from, bMarkers);
  });
}

void qvEclipseSOLUTION::GetSingleSEQUENCEFOD(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                             SourceData& vSourceData, MarkerTable& vMarkers,
                                             std::int32_t& nMarkers, ColumnTable<std::int32_t>& iFOD,
                                             bool& qFOD, bool& qOK) {
  fetch("GetSingleSEQUENCEFOD", iSeqnum, xyData, bHeaders, vSourceData, qOK, [&](const auto& from) {
    takePlaces(from, iFOD, qFOD);
    return nMarkers = takeMarkers(from, vMarkers);
  });
}

void qvEclipseSOLUTION::GetSingleSEQUENCEFODb(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                              SourceData& vSourceData, std::vector<std::byte>& bMarkers,
                                              std::int32_t& nMarkers, ColumnTable<std::int32_t>& iFOD,
                                              bool& qFOD, bool& qOK) {
  fetch("GetSingleSEQUENCEFODb", iSeqnum, xyData, bHeaders, vSourceData, qOK, [&](auto& from) {
    addExtended(from, vSourceData);
    vSourceData(64) = from.grid().Nx;
    vSourceData(65) = from.grid().Ny;
    vSourceData(66) = from.grid().Nz;
    takePlaces(from, iFOD, qFOD);
    return nMarkers = takeMarkers(from, bMarkers);
  });
}

/// A step without well data has no markers; the fetch still succeeds.
std::int32_t qvEclipseSOLUTION::takeMarkers(const qvEclipseSEQUENCE& from, MarkerTable& vMarkers) const {
  std::int32_t nMarkers = 0;
  if (!hasMarkers(from.grid())) return nMarkers;
  succeeds(*session_, stepName, "getMarkerData", [&] {
    vMarkers = markerTable(from.grid(), from.qMarkers, *session_);
    nMarkers = static_cast<std::int32_t>(vMarkers.used());
  });
  return nMarkers;
}

std::int32_t qvEclipseSOLUTION::takeMarkers(qvEclipseSEQUENCE& from, std::vector<std::byte>& bMarkers) const {
  std::int32_t nMarkers = 0;
  from.setMarkerMethod(iMarkerMethod);
  if (!hasMarkers(from.grid())) return nMarkers;
  succeeds(*session_, stepName, "getMarkerDatab", [&] {
    const MarkerPacking packing{.iForm = from.iMarkerMethod, .qLong = from.qByteForm};
    bMarkers = packMarkers(from.grid(), from.qMarkers, packing, *session_);
    nMarkers = static_cast<std::int32_t>(MarkerCounts(from.grid()).rows());
  });
  return nMarkers;
}

}  // namespace lumbarn
