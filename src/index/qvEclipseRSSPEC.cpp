#include "qvEclipseRSSPEC.h"

#include "../support/Dates.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseRSSPEC";
constexpr std::int32_t fileKindCode = 28;

std::string dateOf(const IndexFileStep& step) {
  const auto date = makeMoment(step.iYear, step.iMonth, step.iDay);
  return date ? dayMonthYear(*date) : "";
}

}  // namespace

void qvEclipseRSSPECSequence::GetSolutionNames(std::string_view zGrid, std::vector<std::string>& zNames,
                                               bool& qOK) const {
  const IndexFileGrid* grid = findGrid(grids, zGrid);
  zNames = grid ? grid->names() : std::vector<std::string>();
  qOK = grid != nullptr;
}

void qvEclipseRSSPECSequence::GetPointersToSolutionNames(std::string_view zGrid, std::string_view zName,
                                                         std::vector<std::uint64_t>& positions,
                                                         bool& qOK) const {
  const IndexFileGrid* grid = findGrid(grids, zGrid);
  positions = grid ? grid->positions(zName) : std::vector<std::uint64_t>();
  qOK = !positions.empty();
}

void qvEclipseRSSPEC::CheckRESTARTFile(std::string_view zFile, bool& qOK) {
  guarded(*session_, qOK, className, "CheckRESTARTFile", [&] { return takeIndexFile(zFile, *this); });
}

void qvEclipseRSSPEC::setRSSPECFileTypeProps(cFILETYPE& xFile, bool& qOK) const {
  setIndexFileTypeProps(*this, fileKindCode, *session_, xFile);
  qOK = true;
}

void qvEclipseRSSPEC::getRSSPECData(bool& qOK) {
  guarded(*session_, qOK, className, "getRSSPECData", [&] {
    steps.clear();
    head = {};
    return readRsspec(FileName, form(), *session_, head,
                      [&](IndexFileStep&& step) { addSEQUENCE(qvEclipseRSSPECSequence(std::move(step))); });
  });
}

const qvEclipseRSSPECSequence& qvEclipseRSSPEC::step(std::int32_t iSequence) const {
  if (iSequence < 1 || static_cast<std::size_t>(iSequence) > steps.size())
    throw Fault(FaultNumber::Subscript);
  return steps[static_cast<std::size_t>(iSequence - 1)];
}

void qvEclipseRSSPEC::GetVectors(std::int32_t iSequence, std::vector<std::string>& zVectors,
                                 bool& qOK) const {
  guarded(*session_, qOK, className, "GetVectors", [&] {
    zVectors.clear();
    for (const auto& grid : step(iSequence).grids) addNewNames(grid.names(), zVectors);
  });
}

void qvEclipseRSSPEC::GetListofAllSolutionVectors(std::vector<std::string>& zVectors, bool& qOK) const {
  guarded(*session_, qOK, className, "GetListofAllSolutionVectors", [&] {
    zVectors.clear();
    for (const auto& step : steps) {
      for (const auto& grid : step.grids) addNewNames(grid.names(), zVectors);
    }
  });
}

void qvEclipseRSSPEC::GetDates(std::vector<std::string>& zDates, bool& qOK) const {
  guarded(*session_, qOK, className, "GetDates", [&] {
    zDates.clear();
    for (const auto& step : steps) zDates.push_back(dateOf(step));
  });
}

void qvEclipseRSSPEC::GetSequences(std::vector<std::int32_t>& iSequences, bool& qOK) const {
  guarded(*session_, qOK, className, "GetSequences", [&] {
    iSequences.clear();
    for (const auto& step : steps) iSequences.push_back(step.iStep);
  });
}

std::int32_t qvEclipseRSSPEC::GetNumberOfGrids() const {
  std::vector<std::string> names;
  for (const auto& step : steps) {
    for (const auto& grid : step.grids) addNewNames({isGlobalGrid(grid.zGrid) ? "" : grid.zGrid}, names);
  }
  return static_cast<std::int32_t>(names.size());
}

}  // namespace lumbarn
