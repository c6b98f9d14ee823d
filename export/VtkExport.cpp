#include "VtkExport.h"

#include "HdfFile.h"
#include "VtkWriter.h"
#include "grid/Hadrick.h"
#include "support/Export.h"
#include "support/Guarded.h"
#include "support/PendingFile.h"

namespace lumbarn {
namespace {

class FileStorage final : public HdfStorage {
 public:
  explicit FileStorage(OutputFile& file) : file_(file) {}
  bool writeAt(std::uint64_t position, std::span<const std::byte> bytes) noexcept override {
    return file_.writeAt(position, bytes);
  }
  bool readAt(std::uint64_t position, std::span<std::byte> out) noexcept override {
    return file_.readAt(position, out);
  }
  std::string error() const override { return file_.error(); }

 private:
  OutputFile& file_;
};

}  // namespace
LUMBARN_API void exportVtk(std::span<const std::shared_ptr<Hadrick>> grids, std::span<const CellArray> arrays,
                           const VtkOptions& options, const std::string& path, Session& session, bool& qOK) {
  guarded(session, qOK, "VtkExport", "exportVtk", [&] {
    try {
      PendingFile file(path);
      FileStorage storage(file.out());
      writeVtk(grids, arrays, options, storage, session);
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

LUMBARN_API void exportVtk(const Hadrick& grid, std::span<const CellArray> arrays, const VtkOptions& options,
                           const std::string& path, Session& session, bool& qOK) {
  // Not owned: the caller's grid outlives the call. Its parent is not known here.
  const std::shared_ptr<Hadrick> one(std::shared_ptr<void>(), const_cast<Hadrick*>(&grid));
  exportVtk(std::span(&one, 1), arrays, options, path, session, qOK);
}

}  // namespace lumbarn
