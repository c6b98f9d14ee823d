#include "qvEclipseRSSPEC.h"

#include <algorithm>
#include <memory>

#include "../record/RecordCursor.h"
#include "../support/Dates.h"
#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "ActiveCount.h"
#include "IndexFileReading.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseRSSPEC";

bool opensStep(const RecordHeader& header) { return header.is("TIME", ElementType::Double); }

}  // namespace

void qvEclipseRSSPECSequence::getEclipseSEQUENCE(RecordCursor& cursor) {
  bool opened = false;
  while (cursor.next()) {
    const RecordHeader& header = cursor.header();
    if (opensStep(header)) {
      if (opened) {
        cursor.seek(header.headerAt);  // the next step's
        return;
      }
      opened = true;
      if (header.count > 0) cursor.read(std::span(&dTime, 1));
    } else if (header.is("ITIME", ElementType::Integer)) {
      iTime = cursor.integers();
      if (iTime.size() > 3) {
        iStep = iTime[0];
        iDay = iTime[1];
        iMonth = iTime[2];
        iYear = iTime[3];
      }
    } else if (header.is("NAME", ElementType::Text)) {
      grids.back().takeNames(cursor);
    } else if (header.is("LGRNAME", ElementType::Text)) {
      grids.emplace_back().zGrid = header.count > 0 ? firstText(cursor) : "";
    } else {
      grids.back().take(cursor);
    }
  }
}

void qvEclipseRSSPECSequence::GetSolutionNames(std::string_view zGrid, std::vector<std::string>& zNames,
                                               bool& qOK) const {
  const std::int32_t grid = GridIndex(zGrid);
  qOK = grid > 0;
  zNames = qOK ? grids[static_cast<std::size_t>(grid - 1)].names() : std::vector<std::string>();
}

void qvEclipseRSSPECSequence::GetPointersToSolutionNames(std::string_view zGrid, std::string_view zName,
                                                         std::vector<std::uint64_t>& positions,
                                                         bool& qOK) const {
  const std::int32_t grid = GridIndex(zGrid);
  positions.clear();
  if (grid > 0) positions = grids[static_cast<std::size_t>(grid - 1)].positions(zName);
  qOK = !positions.empty();
}

void IndexFileHead::processINTEHEAD(std::vector<std::int32_t> words) {
  const HeaderWords header(words);
  header.take(3, iUnits);
  header.take(9, Nx);
  header.take(10, Ny);
  header.take(11, Nz);
  if (header.has(12)) nActive = static_cast<std::int32_t>(statedActiveCells(header, init).active);
  header.take(15, iPhases);
  header.take(65, iDay);
  header.take(66, iMonth);
  header.take(67, iYear);
  header.take(95, iProgram);
  iHeader = std::move(words);
}

void qvEclipseRSSPEC::CheckRESTARTFile(std::string_view zFile, bool& qOK) {
  guarded(*session_, qOK, className, "CheckRESTARTFile", [&] { return checkIndexFile(zFile, *this); });
}

void qvEclipseRSSPEC::setRSSPECFileTypeProps(cFILETYPE& xFile, bool& qOK) const {
  setIndexFileTypeProps(*this, 28, *session_, xFile);
  qOK = true;
}

void qvEclipseRSSPEC::getRSSPECData(bool& qOK) {
  steps.clear();
  readSteps([&](qvEclipseRSSPECSequence& step) { addSEQUENCE(std::move(step)); }, qOK);
}

void qvEclipseRSSPEC::readSteps(const std::function<void(qvEclipseRSSPECSequence&)>& take, bool& qOK) {
  guarded(*session_, qOK, className, "getRSSPECData", [&] {
    head = {};
    cFILETYPE xFile(*session_);
    bool qSet = false;
    setRSSPECFileTypeProps(xFile, qSet);
    const auto cursor = openIndexFile(FileName, xFile, *session_);
    if (!cursor) return false;
    return readIndexFile(*cursor, *session_, head, [&](const RecordHeader& header) {
      if (!opensStep(header)) return;
      cursor->seek(header.headerAt);
      qvEclipseRSSPECSequence step;
      try {
        step.getEclipseSEQUENCE(*cursor);
      } catch (const BadRecord&) {
        take(step);  // as far as it came
        throw;
      }
      take(step);
    });
  });
}

void qvEclipseRSSPEC::GetVectors(std::int32_t iSequence, std::vector<std::string>& zVectors,
                                 bool& qOK) const {
  guarded(*session_, qOK, className, "GetVectors", [&] {
    zVectors.clear();
    if (iSequence < 1 || static_cast<std::size_t>(iSequence) > steps.size())
      throw Fault(FaultNumber::Subscript);
    for (const auto& grid : steps[static_cast<std::size_t>(iSequence - 1)].grids)
      addNewNames(grid.names(), zVectors);
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
    for (const auto& step : steps) {
      const auto date = makeMoment(step.iYear, step.iMonth, step.iDay);
      zDates.push_back(date ? dayMonthYear(*date) : "");
    }
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
