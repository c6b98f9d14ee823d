#include "qvEclipseINSPEC.h"

#include <algorithm>

#include "../record/RecordCursor.h"
#include "../shapes/VectorNames.h"
#include "../support/Guarded.h"
#include "IndexFileReading.h"
#include "RestartIndexAgreement.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseINSPECFile";

bool opensPass(const RecordHeader& header) {
  return header.is("TIME", ElementType::Double) || header.is("NAME", ElementType::Text) ||
         header.is("LGRNAME", ElementType::Text);
}

}  // namespace

void RemoveUnwantedHeaders(std::vector<std::string>& zNames) {
  const auto wanted = std::ranges::find_if(zNames, [](const std::string& name) {
    return name.find("INTEHEAD") == name.npos && name.find("TABDIMS") == name.npos &&
           name.find("TRANNNC") == name.npos;
  });
  zNames.erase(zNames.begin(), wanted);
}

void qvEclipseINSPEC::getEclipseINSPEC(RecordCursor& cursor) {
  bool named = false;   // the current grid
  bool opened = false;  // something of this pass was read
  while (cursor.next()) {
    const RecordHeader& header = cursor.header();
    const bool name = header.is("NAME", ElementType::Text);
    if ((name && named) || (opened && header.is("TIME", ElementType::Double))) {
      cursor.seek(header.headerAt);
      return;
    }
    opened = true;
    IndexFileGrid& grid = grids.back();
    if (name) {
      named = true;
      grid.takeNames(cursor);
      auto zClean = cursor.texts();
      bool qClean = false;
      CleanUpVectorNames(zClean, qClean);
      grid.setNames(zClean);
      addNewNames(grid.names(), zAllNames);
    } else if (header.is("LGRNAME", ElementType::Text)) {
      const std::string zGrid = header.count > 0 ? firstText(cursor) : "";
      if (GridIndex(zGrid) > 1) {
        cursor.seek(header.headerAt);
        return;
      }
      named = false;
      grids.emplace_back().zGrid = zGrid;
    } else {
      grid.take(cursor);
    }
    grids.back().nArrays = static_cast<std::int32_t>(grids.back().bNames.entries());
  }
}

void qvEclipseINSPEC::GetINITNames(std::string_view zGrid, std::vector<std::string>& zNames,
                                   bool& qOK) const {
  const std::int32_t grid = GridIndex(zGrid);
  qOK = grid > 0;
  zNames = qOK ? grids[static_cast<std::size_t>(grid - 1)].names() : std::vector<std::string>();
  RemoveUnwantedHeaders(zNames);
}

void qvEclipseINSPEC::GetPointersToINITNames(std::string_view zGrid, std::string_view zName,
                                             std::vector<std::uint64_t>& positions, bool& qOK) const {
  const std::int32_t grid = GridIndex(zGrid);
  positions.clear();
  if (grid > 0) positions = grids[static_cast<std::size_t>(grid - 1)].positions(zName);
  qOK = !positions.empty();
}

void qvEclipseINSPECFile::CheckINSPECFile(std::string_view zFile, bool& qOK) {
  guarded(*session_, qOK, className, "CheckINSPECFile", [&] { return checkIndexFile(zFile, *this); });
}

void qvEclipseINSPECFile::setINSPECFileTypeProps(cFILETYPE& xFile, bool& qOK) const {
  setIndexFileTypeProps(*this, 27, *session_, xFile);
  qOK = true;
}

void qvEclipseINSPECFile::getINSPECData(bool& qOK) {
  guarded(*session_, qOK, className, "getINSPECData", [&] {
    head = {.init = true};
    passes.clear();
    cFILETYPE xFile(*session_);
    bool qSet = false;
    setINSPECFileTypeProps(xFile, qSet);
    const auto cursor = openIndexFile(FileName, xFile, *session_);
    if (!cursor) return false;
    return readIndexFile(*cursor, *session_, head, [&](const RecordHeader& header) {
      if (!opensPass(header)) return;
      cursor->seek(header.headerAt);
      passes.emplace_back().getEclipseINSPEC(*cursor);
    });
  });
}

void qvEclipseINSPECFile::GetVectors(std::vector<std::string>& zVectors, bool& qOK) const {
  guarded(*session_, qOK, className, "GetVectors", [&] {
    zVectors.clear();
    for (const auto& pass : passes) addNewNames(pass.zAllNames, zVectors);
    RemoveUnwantedHeaders(zVectors);
  });
}

void qvEclipseINSPECFile::GetInitVectorList(std::vector<std::string>& zVectors, bool& qOK) const {
  guarded(*session_, qOK, className, "GetInitVectorList", [&] {
    zVectors.clear();
    for (const auto& pass : passes) addNewNames(pass.grids.front().names(), zVectors);
    RemoveUnwantedHeaders(zVectors);
  });
}

const qvEclipseINSPEC* qvEclipseINSPECFile::GetINSPEC(std::int32_t iPass) const {
  return iPass >= 1 && static_cast<std::size_t>(iPass) <= passes.size()
             ? &passes[static_cast<std::size_t>(iPass - 1)]
             : nullptr;
}

RestartIndex indexOfInit(Session& session, const std::string& file, const std::string& inspec) {
  const auto walk = [&] { return walkInit(session, file); };
  if (inspec.empty()) return walk();
  qvEclipseINSPECFile reader(session);
  bool qOK = false;
  reader.CheckINSPECFile(inspec, qOK);
  if (qOK) reader.getINSPECData(qOK);
  RestartIndex read;
  read.setFiles({file});
  read.init = true;
  read.header = reader.head.iHeader;
  IndexStep& step = read.steps.emplace_back();
  step.date = dateOfHead(reader.head.iHeader, 0);
  std::string problem = qOK ? "" : "it cannot be read";
  for (const auto& pass : reader.passes) {
    if (!problem.empty() || !addGroups(pass.grids, step, problem)) break;
  }
  return agreeingIndex(session, inspec, std::move(read), std::move(problem), walk);
}

}  // namespace lumbarn
