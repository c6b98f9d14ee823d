#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "../record/ByteSource.h"
#include "../record/RecordCursor.h"
#include "../support/ReadBuffer.h"

namespace lumbarn {

/// One cell of a GRID file: the first words of its COORDS record, and its corners.
struct CellRecord {
  static constexpr std::size_t mostWords = 7;

  std::array<std::int32_t, mostWords> words{};
  std::size_t count = 0;  ///< words that the record has, at most 7; those behind are not to be used
  std::array<float, 24> corners{};

  /// A record too short to say so is that of an active cell.
  bool active() const { return count < 5 || words[4] >= 1; }
};

/// Cells that follow each other in a line along I: what is wanted of them, and what they are.
struct CellRun {
  static constexpr std::size_t mostCells = 256;

  std::array<std::int32_t, 3> first{};  ///< I, J, K of the first
  std::size_t most = 0;                 ///< of them, at most 256
  bool activeOnly = false;              ///< corners of active cells only
  float* rows = nullptr;                ///< for the corners; room for `most` rows, which may all be used

  std::size_t count = 0;                         ///< of those that were taken
  std::size_t active = 0;                        ///< active ones among them
  std::array<std::int32_t, mostCells> states{};  ///< 1 for an active cell, 0 for others
  std::array<std::int32_t, mostCells> hosts{};   ///< when a record has all 7 words
};

/// The small records of cells behind a first pair of them, in an unformatted file. All pairs have the same
/// bytes but for their values, so a pair is compared with the first one and taken apart without a look at
/// single headers.
class CellRecords {
 public:
  static constexpr std::size_t rowItems = 24;

  /// With the headers of a pair that the cursor has read and the place behind it.
  CellRecords(std::shared_ptr<const ByteSource> source, const Form& form, const RecordHeader& coords,
              const RecordHeader& corners, std::uint64_t end);
  /// The next pairs, as long as they are those of the run.
  void takeRun(CellRun& run);
  /// The next pair, whatever its cell. False when what follows looks different; then `position` is where it
  /// begins.
  bool next(CellRecord& cell);
  std::uint64_t position() const { return position_; }
  std::int64_t taken() const { return taken_; }
  /// Words of each COORDS record that are used.
  std::size_t words() const { return pair_.words; }

  /// Where things are in a pair, and what all pairs have in common.
  struct Pair {
    std::size_t stride = 0;  // bytes of a pair; 0: pairs are not laid out as usual
    std::size_t words = 0;
    std::size_t wordsAt = 0;
    std::size_t cornersAt = 0;
    std::vector<std::byte> first;
  };

 private:
  bool fetch();
  void step(std::size_t pairs);

  std::shared_ptr<const ByteSource> source_;
  bool swap_;
  Pair pair_;
  ReadBuffer buffer_;
  std::size_t pieceAt_ = 0;  // where in the buffer pieces of the file are put
  std::size_t at_ = 0;       // the next pair, and the end of what has been read
  std::size_t filled_ = 0;
  std::uint64_t position_;
  std::int64_t taken_ = 0;
};

}  // namespace lumbarn
