#include "CellRecords.h"

#include <algorithm>
#include <cstring>

#include "../record/Swap.h"

namespace lumbarn {

namespace {

constexpr std::size_t cornerBytes = 96;
constexpr std::size_t bufferBytes = std::size_t{64} << 10;

void copyWords(void* to, const std::byte* from, std::size_t words, bool swap) {
  if (swap) {
    copySwapped4(to, from, words);
  } else {
    std::memcpy(to, from, 4 * words);
  }
}

}  // namespace

void CellRecord::copyCorners(float* row) const {
  if (raw) {
    copyWords(row, raw, corners.size(), swap);
  } else {
    std::ranges::copy(corners, row);
  }
}

CellRecords::CellRecords(std::shared_ptr<const ByteSource> source, const Form& form,
                         const RecordHeader& coords, const RecordHeader& corners, std::uint64_t end)
    : source_(std::move(source)), swap_(form.byteSwap), position_(end) {
  const std::uint64_t start = coords.headerAt;
  const std::uint64_t mark = form.framing == Framing::OneByteMarks ? 1 : 4;
  const std::uint64_t wordsEnd = coords.dataAt + 2 * mark + 4 * static_cast<std::uint64_t>(coords.count);
  const bool usual = !form.formatted() && coords.count >= 3 && coords.count <= 7 &&
                     corners.headerAt == wordsEnd && end == corners.dataAt + 2 * mark + cornerBytes;
  if (!usual) return;
  words_ = static_cast<std::size_t>(coords.count);
  wordsAt_ = static_cast<std::size_t>(coords.dataAt + mark - start);
  cornersAt_ = static_cast<std::size_t>(corners.dataAt + mark - start);
  first_.resize(static_cast<std::size_t>(end - start));
  if (source_->readAt(start, first_) != first_.size()) return;
  stride_ = first_.size();
  buffer_.resize(bufferBytes / stride_ * stride_);
}

bool CellRecords::likeFirst(const std::byte* pair) const {
  const std::size_t wordsEnd = wordsAt_ + 4 * words_;
  const std::size_t cornersEnd = cornersAt_ + cornerBytes;
  const auto same = [&](std::size_t at, std::size_t bytes) {
    return std::memcmp(pair + at, first_.data() + at, bytes) == 0;
  };
  // With 4-byte marks, which nearly all files have, the sizes are told to the compiler, which then needs no
  // call: header and marks before the words, between words and corners, and the last mark.
  if (wordsAt_ == 28) return same(0, 28) && same(wordsEnd, 32) && same(cornersEnd, 4);
  return same(0, wordsAt_) && same(wordsEnd, cornersAt_ - wordsEnd) && same(cornersEnd, stride_ - cornersEnd);
}

bool CellRecords::next(CellRecord& cell) {
  if (stride_ == 0) return false;
  if (at_ + stride_ > filled_) {
    filled_ = source_->readAt(position_, buffer_);
    at_ = 0;
    if (filled_ < stride_) return false;
  }
  const std::byte* pair = buffer_.data() + at_;
  if (!likeFirst(pair)) return false;
  cell.count = words_;
  copyWords(cell.words.data(), pair + wordsAt_, words_, swap_);
  cell.raw = pair + cornersAt_;
  cell.swap = swap_;
  at_ += stride_;
  position_ += stride_;
  ++taken_;
  return true;
}

}  // namespace lumbarn
