#include "qvEclipseINSPEC.h"

#include <algorithm>

#include "../support/Guarded.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseINSPECFile";
constexpr std::int32_t fileKindCode = 27;

}  // namespace

void RemoveUnwantedHeaders(std::vector<std::string>& zNames) {
  const auto wanted = std::ranges::find_if(zNames, [](const std::string& name) {
    return name.find("INTEHEAD") == name.npos && name.find("TABDIMS") == name.npos &&
           name.find("TRANNNC") == name.npos;
  });
  zNames.erase(zNames.begin(), wanted);
}

void qvEclipseINSPEC::GetINITNames(std::string_view zGrid, std::vector<std::string>& zNames,
                                   bool& qOK) const {
  const IndexFileGrid* grid = findGrid(grids, zGrid);
  zNames = grid ? grid->names() : std::vector<std::string>();
  RemoveUnwantedHeaders(zNames);
  qOK = grid != nullptr;
}

void qvEclipseINSPEC::GetPointersToINITNames(std::string_view zGrid, std::string_view zName,
                                             std::vector<std::uint64_t>& positions, bool& qOK) const {
  const IndexFileGrid* grid = findGrid(grids, zGrid);
  positions = grid ? grid->positions(zName) : std::vector<std::uint64_t>();
  qOK = !positions.empty();
}

void qvEclipseINSPECFile::CheckINSPECFile(std::string_view zFile, bool& qOK) {
  guarded(*session_, qOK, className, "CheckINSPECFile", [&] { return takeIndexFile(zFile, *this); });
}

void qvEclipseINSPECFile::setINSPECFileTypeProps(cFILETYPE& xFile, bool& qOK) const {
  setIndexFileTypeProps(*this, fileKindCode, *session_, xFile);
  qOK = true;
}

void qvEclipseINSPECFile::getINSPECData(bool& qOK) {
  guarded(*session_, qOK, className, "getINSPECData", [&] {
    head = {.init = true};
    passes.clear();
    return readInspec(FileName, form(), *session_, head,
                      [&](IndexFilePass&& pass) { passes.emplace_back(std::move(pass)); });
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

}  // namespace lumbarn
