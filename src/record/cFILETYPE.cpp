#include "cFILETYPE.h"

#include <algorithm>
#include <array>

namespace lumbarn {

PositionWords toWords(std::uint64_t position) {
  return {static_cast<std::int32_t>(static_cast<std::uint32_t>(position)),
          static_cast<std::int32_t>(static_cast<std::uint32_t>(position >> 32))};
}

std::uint64_t fromWords(PositionWords words) {
  return static_cast<std::uint64_t>(static_cast<std::uint32_t>(words.high)) << 32 |
         static_cast<std::uint32_t>(words.low);
}

void cFILETYPE::SetProgressFiles(std::int32_t n, bool& qOK) {
  if (progress_) progress_->files(n);
  qOK = true;
}

void cFILETYPE::StepProgressFile(bool& qOK) {
  if (progress_) progress_->fileDone();
  qOK = true;
}

void cFILETYPE::StepProgress() {
  if (!progress_ || !source_ || source_->size() == 0) return;
  progress_->fraction(static_cast<double>(position_) / static_cast<double>(source_->size()));
}

void cFILETYPE::SeekByte64(std::int32_t iPos, std::int32_t iPosHigh) {
  const PositionWords words{iPos, iPosHigh};
  if (!words.isSet()) return;
  position_ = std::max<std::uint64_t>(fromWords(words), 1) - 1;
  atData_ = false;
}

void cFILETYPE::GetPosition64(std::int32_t& iPos, std::int32_t& iPosHigh) const {
  const auto words = toWords(position_ + 1);
  iPos = words.low;
  iPosHigh = words.high;
}

void cFILETYPE::MoreData(bool& qMore) const { qMore = source_ && position_ < source_->size(); }

bool usesBufferedInput(std::int32_t fileKindCode) {
  constexpr std::array codes{1, 12, 13, 14, 15, 18, 23, 27, 28, 32, 43, 391};
  return std::ranges::find(codes, fileKindCode) != codes.end();
}

}  // namespace lumbarn
