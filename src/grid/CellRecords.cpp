#include "CellRecords.h"

#include <algorithm>
#include <cstring>

#include "../record/Swap.h"

namespace lumbarn {

namespace {

constexpr std::size_t cornerBytes = 96;
constexpr std::size_t bufferBytes = std::size_t{128} << 10;

void copyWords(void* to, const std::byte* from, std::size_t words, bool swap) {
  if (swap) {
    copySwapped4(to, from, words);
  } else {
    std::memcpy(to, from, 4 * words);
  }
}

}  // namespace

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
  return std::memcmp(pair, first_.data(), wordsAt_) == 0 &&
         std::memcmp(pair + wordsEnd, first_.data() + wordsEnd, cornersAt_ - wordsEnd) == 0 &&
         std::memcmp(pair + cornersEnd, first_.data() + cornersEnd, stride_ - cornersEnd) == 0;
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
  copyWords(cell.corners.data(), pair + cornersAt_, cell.corners.size(), swap_);
  at_ += stride_;
  position_ += stride_;
  ++taken_;
  return true;
}

}  // namespace lumbarn
