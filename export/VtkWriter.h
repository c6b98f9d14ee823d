#pragma once

#include <memory>
#include <span>

#include "HdfDriver.h"
#include "VtkExport.h"

namespace lumbarn {

/// Thrown to leave all loops when the load is canceled.
struct ExportCanceled {};

/// Writes the file of `exportVtk` into a storage. Throws BadRecord, Fault or ExportCanceled.
void writeVtk(std::span<const std::shared_ptr<Hadrick>> grids, std::span<const CellArray> arrays,
              const VtkOptions& options, hdf::Storage& storage, Session& session);

}  // namespace lumbarn
