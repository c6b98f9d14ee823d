#pragma once

#include <array>
#include <memory>
#include <vector>

#include "grid/qvGRIDReader.h"
#include "support/Forms.h"
#include "support/Guarded.h"

namespace lumbarn::test {

/// A reader with a session of its own, reading from memory.
struct GridLoad {
  Session session;
  qvGRIDReader reader{session};

  explicit GridLoad(bool egrid, bool compress = false) {
    reader.FileType = egrid ? 2 : 1;
    reader.CompressOnLoad = compress;
    reader.FileName = "memory";
  }
  bool read(std::vector<std::byte> bytes, const Form& form) {
    reader.Formatted = form.formatted();
    reader.UNIX = form.framing != Framing::OneByteMarks;
    reader.byteSwap = form.byteSwap;
    bool qOK = false;
    guarded(session, qOK, "qvGRIDReader", "readGrids",
            [&] { return reader.readGrids(std::make_shared<MemorySource>(std::move(bytes))); });
    return qOK;
  }
  const Hadrick& grid(std::size_t n = 0) const { return *reader.xGrids.at(n); }
  /// Empty when there was none, so that a test that misses it fails by name.
  Diagnosis lastDiagnosis() const {
    return session.diagnoses().empty() ? Diagnosis{.message = Message::NotLoaded}
                                       : session.diagnoses().back();
  }
};

inline std::array<float, 24> cornersOf(const Hadrick& grid, std::int32_t iCell,
                                       GridFrame frame = GridFrame::File) {
  std::array<float, 24> row{};
  grid.corners(iCell, row, frame);
  return row;
}

/// The rows of all active cells.
inline std::vector<float> activeRows(const Hadrick& grid) {
  std::vector<float> rows(24 * static_cast<std::size_t>(grid.nActive()));
  if (!rows.empty()) grid.activeCorners(1, rows);
  return rows;
}

}  // namespace lumbarn::test
