#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../record/RecordCursor.h"
#include "../support/Diagnosis.h"
#include "GridFile.h"

namespace lumbarn {

/// The grids of a file while they are read: what both kinds of grid file have in common.
class GridSet {
 public:
  GridSet(RecordCursor& cursor, const GridReadOptions& options, Session& session);

  /// Complete grids, in the order of the file.
  std::vector<std::shared_ptr<Hadrick>> grids;

  Hadrick& current() { return *current_; }
  /// A new current grid; one that is not complete is dropped.
  void start(std::string_view zName);
  /// Sets the sizes of the current grid, by which other arrays are measured. Ends the read (BadRecord) when
  /// no grid can have them.
  void setSize(std::int64_t nx, std::int64_t ny, std::int64_t nz);
  bool sized() const { return current_->Nx() > 0; }
  /// The current grid is complete.
  void complete();
  /// The current grid is dropped for damage. Numbers of local grids in connections no longer tell which grids
  /// are meant.
  void passGap();

  /// Records that can stand in both kinds of file: MAPAXES, MAPUNITS, GRIDUNIT, LGRPARNT and those of
  /// connections. False when the cursor's record is none of them.
  bool takeShared();
  /// Names the current grid and its parent from an LGR record.
  void takeLgr();
  /// The blocks of an array that has a number for each cell: cells of one number above 0 form a block, which
  /// must be a whole box.
  std::vector<CoarseBlock> coarseBlocks(std::span<const std::int32_t> numbers) const;

  /// After the last record: units, axes, parents and connections, for which all grids must be known. Each
  /// thing that does not hold is told once and left out.
  void join();

  /// Ends the read with a fact about the cursor's record.
  [[noreturn]] void fail(Message message, std::string_view expected, std::string_view found) const;
  [[noreturn]] void fail(Message message, std::int64_t expected, std::int64_t found) const;
  /// Reports an irregularity that does not end the read.
  void report(Message message, std::string_view expected, std::string_view found, std::string_view action,
              Certainty certainty = Certainty::Likely) const;
  /// Reports how many values of the current record are not numbers, if any.
  void reportNotFinite(std::size_t count) const;

  RecordCursor& cursor() { return *cursor_; }
  Session& session() { return *session_; }
  const GridReadOptions& options() const { return *options_; }

 private:
  struct PairRecord {
    std::string_view first, second;
    GridConnection::Kind kind;
  };
  void takeMapAxes();
  void takeConnections(const PairRecord& record, bool second);
  void joinParents();
  void joinHosts();
  void joinConnections();
  std::int32_t parentNumber(std::size_t n) const;
  bool cellExists(std::int32_t iGrid, std::int32_t iCell) const;
  Diagnosis here(Message message, std::string_view expected, std::string_view found) const;
  void reportGrid(std::size_t n, Message message, std::string_view keyword, std::string_view problem,
                  std::string_view expected, std::string_view found, std::string_view action) const;

  RecordCursor* cursor_;
  const GridReadOptions* options_;
  Session* session_;
  std::shared_ptr<Hadrick> current_;
  std::optional<std::array<double, 6>> mapAxes_;
  std::vector<std::string> gridUnit_;
  std::string mapUnit_;
  std::vector<std::int32_t> firstCells_;  // of the pair record whose second part is to come
  std::string firstKeyword_;
  std::array<std::int32_t, 2> connected_{1, 1};  // grids that the next connections join
  bool gap_ = false;
  std::vector<GridConnection> connections_;
  std::optional<std::uint64_t> connectionsAt_;  // byte of the first record of connections
  std::uint64_t sizesAt_ = 0;                   // byte of the record with the sizes of the current grid
  std::vector<std::uint64_t> offsets_;          // and of each complete one
};

}  // namespace lumbarn
