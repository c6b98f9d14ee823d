#include "InitFile.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include "support/Text.h"

namespace lumbarn::cli {

void addInitContent(Facts& facts, const std::string& path, Console& console) {
  qvEclipseINIT init(console.session());
  init.LoadData = false;
  init.AcceptDamaged = true;
  // Damage to records has been reported by the walk that counted them.
  Session& session = console.session();
  const auto reported = session.diagnoses();
  const auto shown = session.diagnosisSink;
  session.diagnosisSink = [&](const Diagnosis& one) {
    const bool known = std::ranges::any_of(reported, [&](const Diagnosis& other) {
      return other.message == one.message && other.path == one.path && other.offset == one.offset;
    });
    if (!known && shown) shown(one);
  };
  bool qOK = init.CheckINITFile(path);
  if (qOK) init.getEclipseINITArrays(qOK);
  session.diagnosisSink = shown;
  console.checkCancelled();
  if (!qOK) return;
  const auto& flags = init.grid(1).flags;
  Facts phases = Facts::array();
  if (flags.Oil) phases.push_back("oil");
  if (flags.Water) phases.push_back("water");
  if (flags.Gas) phases.push_back("gas");
  facts["phases"] = phases;
  std::int64_t arrays = 0, connections = 0;
  for (std::int32_t grid = 1; grid <= init.nGrids(); ++grid) {
    arrays += init.grid(grid).nVectors();
    for (const auto& record : init.grid(grid).xNNC) connections += record.nItems;
  }
  facts["arrays"] = arrays;
  facts["nnc"] = connections;
  Facts tables = Facts::array();
  for (const auto& table : init.xTAB.tables()) tables.push_back(table.zTable);
  facts["tables"] = tables;
}

void openInit(qvEclipseReader& reader, const RunFamily& run, bool tables, Console& console) {
  const RunMember* file = run.find(FileKind::Init);
  if (!file) throw Failure(Usage, run.folder + run.base + ": has no INIT file");
  reader.FileName = file->path;
  reader.whichtype = 15;
  reader.Silent = true;
  reader.LoadData = false;
  reader.AcceptDamaged = true;
  reader.InitTables = tables;
  bool qOK = false;
  reader.ECLReadData(qOK);
  console.checkCancelled();
  if (!qOK || !reader.Init()) console.giveUp(file->path, "nothing of it can be read");
}

std::int32_t gridNumber(const qvEclipseINIT& init, const std::string& name) {
  if (name.empty()) return 1;
  std::vector<std::string> names;
  for (std::int32_t grid = 1; grid <= init.nGrids(); ++grid) {
    if (equalNoCase(init.GridName(grid), name)) return grid;
    names.push_back(init.GridName(grid));
  }
  throw Failure(Usage, fmt::format("no grid \"{}\"; it has {}", name, fmt::join(names, ", ")));
}

}  // namespace lumbarn::cli
