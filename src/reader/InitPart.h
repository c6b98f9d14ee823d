#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "../init/Connections.h"
#include "../init/qvEclipseINIT.h"
#include "ReaderPart.h"

namespace lumbarn {

class GridPart;

/// A simulation table as a plain table, with a header for each column.
struct PlainTable {
  XYData values;
  ByteTable headers;
};

/// The arrays and simulation tables of an INIT file.
class InitPart : public ReaderPart {
 public:
  using ReaderPart::ReaderPart;

  bool held() const override { return file_ != nullptr; }
  void release() override { file_.reset(); }
  bool damaged() const override { return file_ && file_->qDamaged; }
  std::vector<std::string> unmatched() const override;

  void load();
  qvEclipseINIT* file() const { return file_.get(); }
  /// The file, with the grid of the options chosen. Fails when it has no such grid.
  qvEclipseINIT& fileAtGrid() const;

  SourceData source() const;
  PlainTable table(std::string_view zTable, std::int32_t iTable) const;
  /// Number of an array of the current grid, from 1, by its name without regard to case.
  std::int32_t arrayNumber(std::string_view zName) const;
  /// The connection arrays of a kind, 1 to 3, of the current grid, paired with the cells that the grid of the
  /// same name joins.
  std::vector<Connection> connections(std::int32_t iType, const GridPart& grids) const;

  /// Those of the global grid; all False without a file.
  ModelFlags flags() const;
  std::int32_t units() const;
  std::string scratchFile() const { return file_ ? file_->zScratchFile() : ""; }

 private:
  bool chooseByDialog() const;
  void setOptions(qvEclipseINIT& file) const;

  std::unique_ptr<qvEclipseINIT> file_;
};

}  // namespace lumbarn
