#include "InitContent.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "../files/Recogniser.h"
#include "../frame/Error.h"
#include "../support/Text.h"
#include "Diagnosed.h"

namespace lumbarn {

std::unique_ptr<InitFile> openInit(const RunState& run, StreamContext& context, bool tables) {
  const std::string& path = run.file(FileKind::Init).path;
  auto init = std::make_unique<InitFile>(context.session());
  if (!init->check(path)) throw Error(Error::Kind::Damaged, refusal(path, FileKind::Init));
  init->LoadData = false;
  init->AcceptDamaged = true;
  init->Tables = tables;
  const bool loaded = diagnosed(context.session(), [&] { return init->load(); });
  if (context.session().cancelled()) throw LoadCanceled();
  if (loaded) return init;
  throw Error(Error::Kind::Damaged,
              context.worst().value_or(Diagnosis{
                  .message = Message::RecordDamaged, .path = path, .problem = "nothing can be read"}));
}

std::int32_t gridNumber(const InitFile& init, const std::string& name) {
  if (name.empty()) return 1;
  std::vector<std::string> names;
  for (std::int32_t grid = 1; grid <= init.nGrids(); ++grid) {
    if (equalNoCase(init.GridName(grid), name)) return grid;
    names.push_back(init.GridName(grid));
  }
  throwNotFound(init.FileName, fmt::format("has no grid \"{}\"; it has {}", name, fmt::join(names, ", ")),
                name, names);
}

}  // namespace lumbarn
