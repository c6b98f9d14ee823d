#include "ReaderLoad.h"

namespace lumbarn {

void qvEclipseReader::ReadSummaryFile(bool& qOK) {
  load(parts_->summary, "ReadSummaryFile", qOK, [&] { parts_->summary.load(); });
}

/// What both forms of fetching share.
template <class Fetch>
void qvEclipseReader::fetchSummary(const char* routine, SourceData& vSourceData, ByteTable& bOnlyUsed,
                                   bool& qOK, Fetch fetchTable) {
  constexpr std::int32_t fetchCode = 12;
  // Deliberate: for other codes, 13 among them, nothing is handed out and the answer is True. Hosts test the
  // code.
  if (whichtype != fetchCode) {
    session_->diagnose(Diagnosis{.message = Message::OtherCode,
                                 .path = FileName,
                                 .expected = std::to_string(fetchCode),
                                 .found = std::to_string(whichtype),
                                 .action = "returned nothing"});
    qOK = true;
    return;
  }
  fetch(parts_->summary, routine, qOK, [&](SummaryPart& summary) {
    auto& file = summary.beginFetch();
    require([&](bool& qDone) { fetchTable(file, qDone); });
    vSourceData = summary.endFetch();
    bOnlyUsed = bOnly;
  });
}

void qvEclipseReader::GetSUMMARYData(XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData,
                                     ByteTable& bOnlyUsed, bool& qOK) {
  fetchSummary("GetSUMMARYData", vSourceData, bOnlyUsed, qOK,
               [&](auto& file, bool& qDone) { file.GetSUMMARYData(xyData, bHeaders, qDone); });
}

void qvEclipseReader::GetStoreSUMMARYData(XYData& xyData, AttributeStores& xStore, ByteTable& bPointers,
                                          SourceData& vSourceData, ByteTable& bOnlyUsed, bool& qOK) {
  fetchSummary("GetStoreSUMMARYData", vSourceData, bOnlyUsed, qOK,
               [&](auto& file, bool& qDone) { file.GetStoreSUMMARYData(xyData, xStore, bPointers, qDone); });
}

void qvEclipseReader::getSUMMARYHorizontalData(std::int32_t iStep, bool qInflow, XYData& xyData,
                                               ByteTable& bHeaders, SourceData& vSourceData, bool& qOK) {
  if (!HorizWell) {  // deliberate: nothing was asked for, so nothing is missing
    qOK = true;
    return;
  }
  perform("getSUMMARYHorizontalData", qOK,
          [&] { vSourceData = parts_->summary.profile(iStep, qInflow, xyData, bHeaders); });
}

void qvEclipseReader::InitSummaryKeys(bool& qOK) {
  qOK = parts_->summary.held();
  if (qOK) parts_->summary.setKeys();
}

std::int32_t qvEclipseReader::Count() const { return parts_->summary.columns(); }

std::int32_t qvEclipseReader::NumberTimeSteps() const { return static_cast<std::int32_t>(Rows().size()); }

std::string qvEclipseReader::SummaryScratchFileName() const { return parts_->summary.scratchFile(); }

std::vector<SummaryVector> qvEclipseReader::ListSummaryVectors(bool& qOK) {
  std::vector<SummaryVector> found;
  perform("ListSummaryVectors", qOK, [&] { found = parts_->summary.list(); });
  return found;
}

const std::vector<SummaryVector>& qvEclipseReader::Vectors() const { return parts_->summary.vectors(); }

const std::vector<SummaryRow>& qvEclipseReader::Rows() const { return parts_->summary.rows(); }

std::vector<bool> qvEclipseReader::RowsWithValues(std::int32_t iVector) const {
  return parts_->summary.rowsWithValues(iVector);
}

std::vector<Moment> qvEclipseReader::RowDates(const XYData& xyData) const {
  return parts_->summary.rowDates(xyData);
}

std::optional<Moment> qvEclipseReader::StartDate() const { return parts_->summary.start(); }

}  // namespace lumbarn
