#include "InitFile.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "support/Text.h"

namespace lumbarn::cli {

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
