#include "VtkExport.h"

#include "VtkWriter.h"
#include "grid/Hadrick.h"
#include "support/Guarded.h"
#include "support/PendingFile.h"

namespace lumbarn {
void exportVtk(std::span<const std::shared_ptr<Hadrick>> grids, std::span<const CellArray> arrays,
               const VtkOptions& options, const std::string& path, Session& session, bool& qOK) {
  guarded(session, qOK, "VtkExport", "exportVtk", [&] {
    try {
      PendingFile file(path);
      writeVtk(grids, arrays, options, file.out(), session);
      file.commit();
      return true;
    } catch (const ExportCanceled&) {
      return false;
    } catch (BadRecord& failure) {
      if (failure.diagnosis().path.empty()) failure.diagnosis().path = path;
      throw;
    }
  });
}

void exportVtk(const Hadrick& grid, std::span<const CellArray> arrays, const VtkOptions& options,
               const std::string& path, Session& session, bool& qOK) {
  // Not owned: the caller's grid outlives the call. Its parent is not known here.
  const std::shared_ptr<Hadrick> one(std::shared_ptr<void>(), const_cast<Hadrick*>(&grid));
  exportVtk(std::span(&one, 1), arrays, options, path, session, qOK);
}

}  // namespace lumbarn
