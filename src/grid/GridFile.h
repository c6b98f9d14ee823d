#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../record/ByteSource.h"
#include "../record/FormFlags.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "Hadrick.h"

namespace lumbarn {

/// How a grid file is read.
struct GridReadOptions {
  std::string zFolder;
  bool byteSwap = false;
  bool compress = false;    ///< keep active cells only
  bool noInactive = false;  ///< all cells of a GRID file count as active
  bool coarsened = true;    ///< make blocks of coarsened cells one cell
};

/// A file of grids: the older GRID file, or the EGRID file.
struct LUMBARN_API GridFile {
  std::string path;
  FormFlags form;
  bool egrid = true;

  /// Throws BadRecord.
  std::shared_ptr<const ByteSource> open() const;
};
/// Nothing unless the first record is DIMENS, or FILEHEAD of an EGRID file.
LUMBARN_API std::optional<GridFile> recogniseGridFile(const std::string& path, bool egrid);

/// What was read of it: the global grid first, then the local ones in the order of the file.
struct GridFileContent {
  std::vector<std::shared_ptr<Hadrick>> grids;
  bool damaged = false;  ///< only grids that are complete
};

/// Reads all grids of a file from a source. False when the load was canceled or a grid was dropped for
/// damage. Throws BadRecord for other damage. In each case `content` has the grids that are complete.
LUMBARN_API bool readGridFile(const GridFile& file, std::shared_ptr<const ByteSource> source,
                              const GridReadOptions& options, Session& session, GridFileContent& content);

}  // namespace lumbarn
