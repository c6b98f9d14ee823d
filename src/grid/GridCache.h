#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "../record/ByteSource.h"
#include "Hadrick.h"
#include "qvGRIDReader.h"

namespace lumbarn {

/// A file that keeps the grids read from another one, so that they need not be read from it again. It is tied
/// to size, time of the last change and a checksum of that file, and to the options it was read with, and has
/// a checksum of its own. A cache that does not hold is told, not used, and written anew when grids are kept.
/// docs/formats/grid.md tells the layout.
class GridCache {
 public:
  /// The cache file, and the reader with file name and options. To be made before the grid file is read: one
  /// that changes until `save` is not that of the grids.
  GridCache(std::string path, const qvGRIDReader& reader, Session& session);

  /// False, with a diagnosis unless there is no cache file, when it cannot be used. `grids` changes on
  /// success only.
  bool load(std::vector<std::shared_ptr<Hadrick>>& grids) const;
  /// The same question without its data.
  bool usable() const;
  /// False, with a diagnosis, when the file cannot be written; nothing is left there then.
  bool save(const std::vector<std::shared_ptr<Hadrick>>& grids) const;

 private:
  struct Source;
  Source source(FileStamp& stamp) const;
  std::unique_ptr<const ByteSource> open(std::uint64_t& end) const;
  std::unique_ptr<const ByteSource> matching(std::unique_ptr<const ByteSource> file,
                                             std::uint64_t& end) const;
  bool refuse(Diagnosis failure) const;
  bool refuse(std::string_view problem, std::string_view found = {}) const;

  std::string path_;
  const qvGRIDReader* reader_;
  Session* session_;
  FileStamp made_;  // of the grid file before it was read
};

}  // namespace lumbarn
