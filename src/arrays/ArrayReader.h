#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "../index/IndexedRecords.h"
#include "../index/RestartIndex.h"
#include "../record/RecordCursor.h"
#include "../support/Session.h"

namespace lumbarn {

/// A column of the fetch-on-demand table: items, kind, low and high word of the position of the data, counted
/// from 1, and 1.
using FetchColumn = std::span<const std::int32_t, 5>;

/// Reads arrays of a restart set or an INIT file on demand: each call reads only the elements that it
/// returns. Integers beyond 2^24 and 64-bit numbers lose precision when they are read as 32-bit floating
/// point.
///
/// Names are found in any letter case. A saturation that a step of a restart does not store and that follows
/// from the others (see `derivedArray`) is read like an array of the file.
///
/// A run that is continued into its own file writes some report steps again: the number of such a step means
/// the one written last. If a step has several arrays of one name, the name means the first; a remark reports
/// it. All of them are read by entry: `index().nth(number, position)` is a step by its position among those
/// with the number, and `IndexStep::findAll(name, grid)` lists its arrays of one name.
///
/// Elements count from 0. If qOK is False, outputs are unchanged or partly written, and a diagnosis or the
/// fault report states why.
class ArrayReader {
 public:
  explicit ArrayReader(Session& session = Session::process()) : session_(&session) {}
  /// For arrays by name, at the positions in the index.
  ArrayReader(RestartIndex index, Session& session)
      : ArrayReader(std::make_shared<const RestartIndex>(std::move(index)), session) {}
  ArrayReader(std::shared_ptr<const RestartIndex> index, Session& session)
      : session_(&session), index_(std::move(index)) {}
  ~ArrayReader();
  ArrayReader(const ArrayReader&) = delete;
  ArrayReader& operator=(const ArrayReader&) = delete;

  const RestartIndex& index() const { return *index_; }

  /// By a column of a step's fetch-on-demand table, the file that the step was read from, and the settings
  /// that came with it (FORTRAN, Formatted, 4-byte marks, bytes swapped, I/O method 8): elements
  /// [first, first + values.size()). Kinds 2 (integers), 3 and 11 (32-bit floating point) are in the file;
  /// any other kind, as of a derived array, is a Fault. Throws BadRecord when the file is not as it was when
  /// this reader's session loaded it, or when this reader opened it.
  void readFetched(const std::string& file, const std::array<bool, 5>& qFileTypeSettings, FetchColumn column,
                   std::int64_t first, std::span<float> values);

  /// By name: elements [first, first + values.size()) of an array as stored in the file. The empty grid
  /// name or "ROOT" is the global grid. For an INIT file `step` has no meaning. Throws BadRecord when the
  /// step has no such array, Fault for one that is not of numbers. Number is float or double.
  template <class Number>
  void read(std::int32_t step, std::string_view name, std::string_view grid, std::int64_t first,
            std::span<Number> values);
  /// Elements of an entry of a step of this reader's index, or of one of `derivedArray`, which needs the
  /// grid: [first, first + values.size()), or those with the numbers given, which ascend. Number is
  /// std::int32_t, float or double; 64-bit numbers lose precision as float. Throw BadRecord, Fault and
  /// LoadCanceled.
  template <class Number>
  void fetch(const IndexStep& step, const IndexEntry& entry, std::string_view grid, std::int64_t first,
             std::span<Number> values);
  template <class Number>
  void fetch(const IndexStep& step, const IndexEntry& entry, std::string_view grid,
             std::span<const std::uint32_t> elements, std::span<Number> values);

 private:
  /// An array of the index.
  struct Found {
    const IndexStep* step;
    IndexEntry entry;
    std::string_view grid;
    GridCells cells;
  };
  Found find(std::int32_t step, std::string_view name, std::string_view grid);
  Found foundEntry(const IndexStep& step, const IndexEntry& entry, std::string_view grid) const;
  RecordCursor& moveTo(const Found& array);
  template <class Number>
  void readElements(const Found& array, std::int64_t first, std::span<Number> values);
  template <class Number, class Fetch>
  void derive(const Found& array, std::span<Number> values, Fetch fetchPiece);

  Session* session_;
  std::shared_ptr<const RestartIndex> index_ = std::make_shared<const RestartIndex>();
  IndexedRecords records_{*session_};
  std::unique_ptr<RecordCursor> cursor_;  // of `readFetched`
  bool repeatReported_ = false;
};

}  // namespace lumbarn
