#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "../grid/qvGRIDReader.h"
#include "../shapes/XYData.h"
#include "ReaderPart.h"

namespace lumbarn {

/// The grids of a GRID or EGRID file.
class GridPart : public ReaderPart {
 public:
  using ReaderPart::ReaderPart;

  bool held() const override { return reader_ != nullptr; }
  void release() override { reader_.reset(); }
  bool damaged() const override { return reader_ && reader_->qDamaged; }

  /// `kind` is Grid or EGrid.
  void load(FileKind kind);
  /// Whether there is a cache file for the grid file that can be used.
  bool hasUsableCache() const;

  std::int32_t nGrids() const { return reader_ ? reader_->nGrids : 0; }
  /// A grid by its number, from 1; null when there is none.
  std::shared_ptr<Hadrick> grid(std::int32_t iGrid) const;
  /// The same by name, without regard to case.
  std::shared_ptr<Hadrick> grid(std::string_view zName) const;
  /// Null for a grid without geometry, too.
  std::shared_ptr<const Hadrick> gridWithGeometry(std::int32_t iGrid) const;
  qvGRIDReader& reader() const { return *reader_; }

  /// Fills corners of 24 rows, a column for each active cell; a table of that size is kept.
  void fillCorners(const Hadrick& grid, XYData& sCorners) const;
  /// Cells whose geometry was not kept stay inactive, which is reported.
  void setActivity(Hadrick& grid, const std::vector<std::int32_t>& iACTNUM) const;

 private:
  void setFileProps() const;
  void setOptions(qvGRIDReader& reader) const;

  std::unique_ptr<qvGRIDReader> reader_;
};

}  // namespace lumbarn
