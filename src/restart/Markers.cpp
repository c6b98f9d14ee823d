#include "Markers.h"

#include <utility>

#include "../support/Guarded.h"
#include "qvEclipseSEQUENCE.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseSEQUENCE";

}  // namespace

void qvEclipseSEQUENCE::setMarkerMethod(std::int32_t iMethod) {
  const MarkerMethod method(iMethod);
  iMarkerMethod = method.iForm;
  qByteForm = method.qLong;
  if (method.iForm == 2) qMarkers = true;
}

void qvEclipseSEQUENCE::getMarkerData(MarkerTable& vMarkers, std::int32_t& nMarkers, bool& qOK) const {
  nMarkers = 0;
  guarded(*session_, qOK, className, "getMarkerData", [&] {
    bool qValid = false;
    if (!checkWellData(qValid) || !grid().qIWEL) return false;
    vMarkers = markerTable(grid(), qMarkers, *session_);
    nMarkers = static_cast<std::int32_t>(vMarkers.used());
    return true;
  });
}

void qvEclipseSEQUENCE::getMarkerDatab(std::vector<std::byte>& bMarkers, std::int32_t& nMarkers,
                                       bool& qOK) const {
  nMarkers = 0;
  guarded(*session_, qOK, className, "getMarkerDatab", [&] {
    bool qValid = false;
    if (!checkWellData(qValid) || !grid().qIWEL) return false;
    const MarkerPacking packing{.iForm = iMarkerMethod, .qLong = qByteForm};
    bMarkers = packMarkers(grid(), qMarkers, packing, *session_);
    nMarkers = static_cast<std::int32_t>(MarkerCounts(grid()).rows());
    return true;
  });
}

void qvEclipseSEQUENCE::NumMarkers(std::int32_t number, std::int32_t& nWells, std::int32_t& nPerfs,
                                   bool& qOK) const {
  guarded(*session_, qOK, className, "NumMarkers", [&] {
    const RESTARTGRID& counted = grid(number);
    std::int64_t perfs = counted.nConnections;
    if (perfs < 1) {
      perfs = 0;
      for (std::size_t i = 1; i <= counted.iWELL.rows(); ++i) perfs += counted.iWELL(i, 5);
    }
    if (!std::in_range<std::int32_t>(perfs)) throw Fault(FaultNumber::Overflow);
    nWells = counted.nWells;
    nPerfs = static_cast<std::int32_t>(perfs);
  });
}

}  // namespace lumbarn
