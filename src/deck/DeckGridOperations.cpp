#include <algorithm>

#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "qvEclipseDat.h"

namespace lumbarn {

namespace {

constexpr const char* name = "qvEclipseDat";

std::size_t place(std::int32_t number) { return static_cast<std::size_t>(number) - 1; }

}  // namespace

const DeckGridRecord& qvEclipseDat::grid(std::int32_t iGrid) const {
  if (iGrid < 1 || iGrid > nGrids()) throw Fault(FaultNumber::Subscript);
  return deck_.grids.records[place(iGrid)];
}

void qvEclipseDat::CheckGridIndex(std::int32_t iGrid, bool& qOK) const {
  qOK = iGrid >= 1 && iGrid <= nGrids();
}

void qvEclipseDat::createcorners(std::int32_t iGrid, bool& qOK) {
  guarded(session(), qOK, name, "createcorners", [&] {
    bool qGrid = false;
    CheckGridIndex(iGrid, qGrid);
    if (!qGrid || grid(iGrid).dCoord.empty() || grid(iGrid).sDepths.empty()) return false;
    makeCorners(deck_.grids, place(iGrid), OffSet);
    return true;
  });
}

void qvEclipseDat::getcorners(std::int32_t iGrid, XYData& sCorners, std::int32_t& nCells, bool& qOK) const {
  guarded(session(), qOK, name, "getcorners", [&] {
    bool qGrid = false;
    CheckGridIndex(iGrid, qGrid);
    if (!qGrid || !grid(iGrid).qHaveCorners) return false;
    sCorners = cornerRows(deck_.grids, place(iGrid), session());
    nCells = grid(iGrid).nCells();
    return true;
  });
}

void qvEclipseDat::setACTNUM(std::int32_t iGrid, const std::vector<std::int32_t>& iACTNUM, bool& qOK) {
  guarded(session(), qOK, name, "setACTNUM", [&] {
    if (iACTNUM.size() != static_cast<std::size_t>(grid(iGrid).nCells())) return;
    auto& activity = deck_.grids.records[place(iGrid)].iACTNUM;
    activity.resize(iACTNUM.size());
    std::transform(iACTNUM.begin(), iACTNUM.end(), activity.begin(),
                   [](std::int32_t cell) { return cell < 1 ? 0 : 1; });
  });
}

void qvEclipseDat::getACTNUM(std::int32_t iGrid, std::vector<std::int32_t>& iACTNUM, bool& qOK) const {
  guarded(session(), qOK, name, "getACTNUM", [&] {
    session().checkMemory(static_cast<std::size_t>(grid(iGrid).nCells()) * sizeof(std::int32_t));
    iACTNUM = activityOf(grid(iGrid));
  });
}

void qvEclipseDat::getOffSet(double& dX, double& dY, bool& qOK) const {
  dX = deck_.grids.dOffSetX;
  dY = deck_.grids.dOffSetY;
  qOK = true;
}

void qvEclipseDat::getMAPAXES(std::array<double, 6>& dMapAxes, bool& qOK) const {
  dMapAxes = deck_.grids.dMapAxes;
  qOK = deck_.grids.qMapAxes;
}

void qvEclipseDat::getFAULTS(std::vector<std::string>& zNames, std::int32_t& nFaults,
                             std::vector<std::int32_t>& nSegments, std::vector<float>& sMultipliers,
                             std::int32_t& nMax, bool& qOK) const {
  guarded(session(), qOK, name, "getFAULTS", [&] {
    zNames.clear();
    nSegments.clear();
    sMultipliers.clear();
    nMax = 0;
    for (const DeckFault& fault : deck_.grids.faults) {
      zNames.push_back(fault.zName);
      nSegments.push_back(static_cast<std::int32_t>(fault.segments.size()));
      sMultipliers.push_back(fault.sMultiplier);
      nMax = std::max(nMax, nSegments.back());
    }
    nFaults = static_cast<std::int32_t>(zNames.size());
  });
}

void qvEclipseDat::GetFaultConnections(std::int32_t iFault, std::vector<std::int32_t>& iI1,
                                       std::vector<std::int32_t>& iI2, std::vector<std::int32_t>& iJ1,
                                       std::vector<std::int32_t>& iJ2, std::vector<std::int32_t>& iK1,
                                       std::vector<std::int32_t>& iK2, std::vector<std::string>& zFaces,
                                       bool& qOK) const {
  guarded(session(), qOK, name, "GetFaultConnections", [&] {
    const auto& faults = deck_.grids.faults;
    if (iFault < 1 || place(iFault) >= faults.size()) return false;
    const auto& segments = faults[place(iFault)].segments;
    const auto take = [&](std::int32_t HostBox::*end, std::vector<std::int32_t>& column) {
      column.clear();
      for (const DeckFaultSegment& segment : segments) column.push_back(segment.box.*end);
    };
    take(&HostBox::iI1, iI1);
    take(&HostBox::iI2, iI2);
    take(&HostBox::iJ1, iJ1);
    take(&HostBox::iJ2, iJ2);
    take(&HostBox::iK1, iK1);
    take(&HostBox::iK2, iK2);
    zFaces.clear();
    for (const DeckFaultSegment& segment : segments) zFaces.push_back(segment.zFace);
    return true;
  });
}

void qvEclipseDat::getPINCH(std::int32_t iPinch, float& sThreshold, std::string& zGap, double& dMaxGap,
                            std::string& zTransmissibility, std::string& zMultiplier, bool& qOK) const {
  guarded(session(), qOK, name, "getPINCH", [&] {
    if (iPinch < 1 || iPinch > NumberPINCH()) return false;
    const DeckPinch& pinch = deck_.grids.pinches[place(iPinch)];
    sThreshold = pinch.sThreshold;
    zGap = pinch.zGap;
    dMaxGap = pinch.dMaxGap;
    zTransmissibility = pinch.zTransmissibility;
    zMultiplier = pinch.zMultiplier;
    return true;
  });
}

void qvEclipseDat::getPINCHXY(float& sX, float& sY, bool& qOK) const {
  sX = deck_.grids.sPinchXY[0];
  sY = deck_.grids.sPinchXY[1];
  qOK = deck_.grids.qPinchXY;
}

}  // namespace lumbarn
