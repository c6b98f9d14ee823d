#pragma once

#include <memory>
#include <span>

#include "VtkExport.h"

namespace lumbarn {

class HdfStorage;

/// Thrown to leave all loops when the load is canceled.
struct ExportCanceled {};

/// Writes the file of `exportVtk`. Throws BadRecord, Fault or ExportCanceled.
void writeVtk(std::span<const std::shared_ptr<Hadrick>> grids, std::span<const CellArray> arrays,
              const VtkOptions& options, HdfStorage& storage, Session& session);

}  // namespace lumbarn
