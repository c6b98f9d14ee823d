#include "qvEclipseSEQUENCE.h"

#include <utility>

#include "../support/Guarded.h"
#include "Markers.h"
#include "StepArrays.h"
#include "StepReader.h"
#include "StepWells.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSEQUENCE";

}  // namespace

void qvEclipseSEQUENCE::getEclipseSEQUENCE(RecordCursor& cFile, bool& qOK) {
  guarded(*session_, qOK, className, "getEclipseSEQUENCE",
          [&] { return !StepReader(*this, *this, *session_).read(cFile).cancelled; });
}

void qvEclipseSEQUENCE::GetINITVectorList(RecordCursor& cFile, std::int32_t& nVectors,
                                          std::vector<std::string>& zVectors, bool& qOK, bool qList) {
  guarded(*session_, qOK, className, "GetINITVectorList", [&] {
    const ArraysAhead ahead = arraysAhead(cFile);
    auto names = keptNames(ahead.candidates, grid(), selection, *session_);
    nVectors = static_cast<std::int32_t>(names.size());
    if (qList) zVectors = std::move(names);
    return ahead.usual;
  });
}

void qvEclipseSEQUENCE::getSEQUENCEData(XYData& xyData, bool& qOK) const {
  guarded(*session_, qOK, className, "getSEQUENCEData", [&] {
    if (grid().arrays.nVectors() == 0) return false;
    xyData = vectorTable(grid(), *session_);
    return true;
  });
}

void qvEclipseSEQUENCE::getSEQUENCEHeaders(ByteTable& bHeaders, bool& qOK) const {
  guarded(*session_, qOK, className, "getSEQUENCEHeaders", [&] { bHeaders = vectorHeaders(*this); });
}

void qvEclipseSEQUENCE::getSEQUENCEFODInfo(ColumnTable<std::int32_t>& iFOD, bool& qOK) const {
  guarded(*session_, qOK, className, "getSEQUENCEFODInfo", [&] { iFOD = grid().arrays.iFOD(); });
}

void qvEclipseSEQUENCE::DeleteSEQUENCEData(bool& qOK) {
  guarded(*session_, qOK, className, "DeleteSEQUENCEData", [&] { grid().dropData(); });
}

void qvEclipseSEQUENCE::GetINTEHEAD(std::vector<std::int32_t>& words, bool& qOK) const {
  qOK = qHaveHeader;
  if (qOK) words = iHeader;
}

void qvEclipseSEQUENCE::getRESTARTDate(std::int32_t& day, std::int32_t& month, std::int32_t& year) const {
  day = iDay;
  month = iMonth;
  year = iYear;
}

std::int32_t qvEclipseSEQUENCE::dimension(std::int32_t number, std::int32_t RESTARTGRID::*field,
                                          bool& qOK) const {
  qOK = number >= 1 && number <= nGrids;
  return qOK ? grid(number).*field : -1;
}

void qvEclipseSEQUENCE::GetVectorDetails(VectorDetails& details, bool& qOK) const {
  guarded(*session_, qOK, className, "GetVectorDetails", [&] { details = vectorDetails(grid()); });
}

void qvEclipseSEQUENCE::processIWEL(std::span<const std::int32_t> words, bool& qOK) {
  guarded(*session_, qOK, className, "processIWEL", [&] { return takeIWEL(grid(), words); });
}

void qvEclipseSEQUENCE::processSWEL(std::span<const float> words, bool& qOK) {
  guarded(*session_, qOK, className, "processSWEL", [&] { return takeSWEL(grid(), words); });
}

void qvEclipseSEQUENCE::processXWEL(std::span<const double> words, bool& qOK) {
  guarded(*session_, qOK, className, "processXWEL", [&] { return takeXWEL(grid(), words, *this); });
}

void qvEclipseSEQUENCE::processZWEL(std::span<const std::string> words, bool& qOK) {
  guarded(*session_, qOK, className, "processZWEL", [&] { return takeZWEL(grid(), words); });
}

void qvEclipseSEQUENCE::processICON(std::span<const std::int32_t> words, bool& qOK) {
  guarded(*session_, qOK, className, "processICON", [&] { return takeICON(grid(), words, *this); });
}

void qvEclipseSEQUENCE::processSCON(std::span<const float> words, bool& qOK) {
  guarded(*session_, qOK, className, "processSCON", [&] { return takeSCON(grid(), words); });
}

void qvEclipseSEQUENCE::processZGRP(std::span<const std::string> words, bool& qOK) {
  guarded(*session_, qOK, className, "processZGRP", [&] { return takeZGRP(grid(), words); });
}

bool qvEclipseSEQUENCE::checkWellData(bool& qOK) const {
  bool qValid = false;
  guarded(*session_, qOK, className, "checkWellData", [&] { qValid = hasWellData(grid()); });
  return qValid;
}

std::int32_t qvEclipseSEQUENCE::getWellPVTNum(std::string_view zWell, bool& qOK,
                                              std::int32_t iWellIndex) const {
  std::optional<std::int32_t> number;
  guarded(*session_, qOK, className, "getWellPVTNum", [&] {
    number = wellPVTNumber(grid(), zWell, iWellIndex);
    return number.has_value();
  });
  return number.value_or(-1);
}

void qvEclipseSEQUENCE::addDerivedData(bool& qOK) {
  guarded(*session_, qOK, className, "addDerivedData",
          [&] { addDerivedSaturations(*this, *this, *session_); });
}

void qvEclipseSEQUENCE::setMarkerMethod(std::int32_t iMethod) {
  const MarkerMethod method(iMethod);
  iMarkerMethod = method.iForm;
  qByteForm = method.qLong;
  if (method.iForm == 2) qMarkers = true;
}

/// A grid that is not there is a fault of the check, which hosts know by its name.
bool qvEclipseSEQUENCE::hasMarkers() const {
  return succeeds(*session_, className, "checkWellData", [&] { return lumbarn::hasMarkers(grid()); });
}

void qvEclipseSEQUENCE::getMarkerData(MarkerTable& vMarkers, std::int32_t& nMarkers, bool& qOK) const {
  nMarkers = 0;
  guarded(*session_, qOK, className, "getMarkerData", [&] {
    if (!hasMarkers()) return false;
    vMarkers = markerTable(grid(), qMarkers, *session_);
    nMarkers = static_cast<std::int32_t>(vMarkers.used());
    return true;
  });
}

void qvEclipseSEQUENCE::getMarkerDatab(std::vector<std::byte>& bMarkers, std::int32_t& nMarkers,
                                       bool& qOK) const {
  nMarkers = 0;
  guarded(*session_, qOK, className, "getMarkerDatab", [&] {
    if (!hasMarkers()) return false;
    bMarkers = packMarkers(grid(), qMarkers, {.iForm = iMarkerMethod, .qLong = qByteForm}, *session_);
    nMarkers = static_cast<std::int32_t>(MarkerCounts(grid()).rows());
    return true;
  });
}

void qvEclipseSEQUENCE::NumMarkers(std::int32_t number, std::int32_t& nWells, std::int32_t& nPerfs,
                                   bool& qOK) const {
  guarded(*session_, qOK, className, "NumMarkers", [&] {
    const WellCounts counts = wellCounts(grid(number));
    nWells = counts.nWells;
    nPerfs = counts.nPerfs;
  });
}

bool qvEclipseSEQUENCE::checkIfRESTARTArray(const RecordHeader& header) const {
  return isKeptArray(header, grid(), selection, *session_);
}

}  // namespace lumbarn
