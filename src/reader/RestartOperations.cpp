#include "ReaderLoad.h"

namespace lumbarn {

void qvEclipseReader::ReadSolutionFile(bool& qOK) {
  load(parts_->restart, "ReadSolutionFile", qOK, [&] { parts_->restart.load(); });
}

void qvEclipseReader::GetRESTARTSEQUENCE(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                         SourceData& vSourceData, MarkerTable& vMarkers,
                                         std::int32_t& nMarkers, bool& qOK) {
  fetch(parts_->restart, "GetRESTARTSEQUENCE", qOK, [&](RestartPart& restart, bool& qDone) {
    restart.set().GetSingleSEQUENCE(iSeqnum, xyData, bHeaders, vSourceData, vMarkers, nMarkers, qDone);
  });
}

void qvEclipseReader::GetRESTARTSEQUENCEb(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                          SourceData& vSourceData, std::vector<std::byte>& bMarkers,
                                          std::int32_t& nMarkers, bool& qOK) {
  fetch(parts_->restart, "GetRESTARTSEQUENCEb", qOK, [&](RestartPart& restart, bool& qDone) {
    restart.set().GetSingleSEQUENCEb(iSeqnum, xyData, bHeaders, vSourceData, bMarkers, nMarkers, qDone);
  });
}

void qvEclipseReader::GetRESTARTSEQUENCEFOD(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                            SourceData& vSourceData, MarkerTable& vMarkers,
                                            std::int32_t& nMarkers, ColumnTable<std::int32_t>& iFOD,
                                            bool& qFOD, bool& qOK) {
  fetch(parts_->restart, "GetRESTARTSEQUENCEFOD", qOK, [&](RestartPart& restart, bool& qDone) {
    restart.set().GetSingleSEQUENCEFOD(iSeqnum, xyData, bHeaders, vSourceData, vMarkers, nMarkers, iFOD, qFOD,
                                       qDone);
  });
}

void qvEclipseReader::GetRESTARTSEQUENCEFODb(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                             SourceData& vSourceData, std::vector<std::byte>& bMarkers,
                                             std::int32_t& nMarkers, ColumnTable<std::int32_t>& iFOD,
                                             bool& qFOD, bool& qOK) {
  fetch(parts_->restart, "GetRESTARTSEQUENCEFODb", qOK, [&](RestartPart& restart, bool& qDone) {
    restart.set().GetSingleSEQUENCEFODb(iSeqnum, xyData, bHeaders, vSourceData, bMarkers, nMarkers, iFOD,
                                        qFOD, qDone);
  });
}

void qvEclipseReader::DeleteRESTARTSEQUENCE(std::int32_t iSeqnum, bool& qOK) {
  fetch(parts_->restart, "DeleteRESTARTSEQUENCE", qOK,
        [&](RestartPart& restart, bool& qDone) { restart.set().DeleteSingleSEQUENCE(iSeqnum, qDone); });
}

void qvEclipseReader::GetRESTARTSEQUENCENxNyNz(std::int32_t iSeqnum, SourceData& vSourceData, bool& qOK) {
  fetch(parts_->restart, "GetRESTARTSEQUENCENxNyNz", qOK,
        [&](RestartPart& restart, bool& qDone) { restart.set().getNxNyNzInfo(iSeqnum, vSourceData, qDone); });
}

void qvEclipseReader::getEclipseFODInfo(std::array<bool, 5>& qFileTypeSettings, bool& qOK) {
  fetch(parts_->restart, "getEclipseFODInfo", qOK, [&](RestartPart& restart, bool& qDone) {
    restart.set().getEclipseSOLFODInfo(qFileTypeSettings, qDone);
  });
}

std::int32_t qvEclipseReader::getWellPVTNum(std::string_view zWell, bool& qOK, std::int32_t iWellIndex) {
  std::int32_t number = -1;
  fetch(parts_->restart, "getWellPVTNum", qOK, [&](RestartPart& restart, bool& qDone) {
    number = restart.set().getWellPVTNum(zWell, qDone, iWellIndex);
  });
  return number;
}

const qvEclipseRSSPEC* qvEclipseReader::RestartIndexFile() const { return parts_->restartIndex.index(); }

std::vector<RestartStep> qvEclipseReader::RestartSteps() const { return parts_->restart.steps(); }

const RESTARTGRID* qvEclipseReader::RestartGrid(std::int32_t iSeqnum, std::int32_t iGrid) const {
  return parts_->restart.grid(iSeqnum, iGrid);
}

std::span<const float> qvEclipseReader::RestartValues(std::int32_t iSeqnum, std::int32_t iGrid,
                                                      std::int32_t iVector) const {
  return parts_->restart.values(iSeqnum, iGrid, iVector);
}

std::span<const float> qvEclipseReader::RestartValues(std::int32_t iSeqnum, std::int32_t iGrid,
                                                      std::string_view zName) const {
  return parts_->restart.values(iSeqnum, iGrid, zName);
}

std::vector<WellRecord> qvEclipseReader::RestartWells(std::int32_t iSeqnum, std::int32_t iGrid,
                                                      bool& qOK) const {
  std::vector<WellRecord> wells;
  perform("RestartWells", qOK, [&] {
    const RESTARTGRID* grid = RestartGrid(iSeqnum, iGrid);
    if (grid) wells = wellRecords(*grid);
    return grid != nullptr;
  });
  return wells;
}

}  // namespace lumbarn
