#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "../record/ByteSource.h"
#include "../record/RecordCursor.h"

namespace lumbarn {

/// One cell of a GRID file: the first words of its COORDS record, and its corners.
struct CellRecord {
  std::array<std::int32_t, 7> words{};
  std::size_t count = 0;            ///< words that the record has, at most 7
  std::array<float, 24> corners{};  ///< when they are not raw
  const std::byte* raw = nullptr;   ///< corners as they stand in the file
  bool swap = false;                ///< and whether their bytes are to be turned

  /// A record too short to say so is that of an active cell.
  bool active() const { return count < 5 || words[4] >= 1; }
  void copyCorners(float* row) const;
};

/// The small records of cells behind a first pair of them, in an unformatted file. All pairs have the same
/// bytes but for their values, so a pair is compared with the first one and taken apart without a look at
/// single headers.
class CellRecords {
 public:
  /// With the headers of a pair that the cursor has read and the place behind it.
  CellRecords(std::shared_ptr<const ByteSource> source, const Form& form, const RecordHeader& coords,
              const RecordHeader& corners, std::uint64_t end);
  /// The next pair; the corners it shows hold until the next call. False when what follows looks different;
  /// then `position` is where it begins.
  bool next(CellRecord& cell);
  std::uint64_t position() const { return position_; }
  std::int64_t taken() const { return taken_; }

 private:
  bool likeFirst(const std::byte* pair) const;

  std::shared_ptr<const ByteSource> source_;
  bool swap_;
  std::size_t stride_ = 0;  // bytes of a pair; 0: pairs are not laid out as usual
  std::size_t words_ = 0;
  std::size_t wordsAt_ = 0;
  std::size_t cornersAt_ = 0;
  std::vector<std::byte> first_;
  std::vector<std::byte> buffer_;
  std::size_t at_ = 0;
  std::size_t filled_ = 0;
  std::uint64_t position_;
  std::int64_t taken_ = 0;
};

}  // namespace lumbarn
