#include "InitFile.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include "init/qvEclipseINIT.h"
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

}  // namespace lumbarn::cli
