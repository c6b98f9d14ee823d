#include "CellRecords.h"

#include <algorithm>
#include <cstring>

#include "../support/Wide.h"

namespace lumbarn {

namespace {

constexpr std::size_t cornerBytes = 96;
/// What is read at once. It begins and ends at multiples of it in the file, as whole pages come faster.
constexpr std::size_t pieceBytes = std::size_t{64} << 10;

using Pair = CellRecords::Pair;

template <class Word>
[[gnu::always_inline]] inline Word wordAt(const std::byte* at) {
  Word word;
  std::memcpy(&word, at, sizeof word);
  return word;
}

template <bool swap>
[[gnu::always_inline]] inline std::int32_t integerAt(const std::byte* at) {
  const auto word = wordAt<std::uint32_t>(at);
  return static_cast<std::int32_t>(swap ? __builtin_bswap32(word) : word);
}

/// Whether two stretches have the same bytes. A call for each of so few bytes would cost more than the look.
template <std::size_t bytes>
[[gnu::always_inline]] inline bool same(const std::byte* a, const std::byte* b) {
  static_assert(bytes % 4 == 0);
  std::uint64_t differ = 0;
  for (std::size_t at = 0; at + 8 <= bytes; at += 8) {
    differ |= wordAt<std::uint64_t>(a + at) ^ wordAt<std::uint64_t>(b + at);
  }
  if (bytes % 8 != 0) differ |= wordAt<std::uint32_t>(a + bytes - 4) ^ wordAt<std::uint32_t>(b + bytes - 4);
  return differ == 0;
}

[[gnu::always_inline]] inline bool isLike(const Pair& shape, const std::byte* pair) {
  const std::byte* first = shape.first.data();
  const std::size_t wordsEnd = shape.wordsAt + 4 * shape.words;
  const std::size_t cornersEnd = shape.cornersAt + cornerBytes;
  // With 4-byte marks, which nearly all files have, the sizes are told to the compiler: header and marks
  // before the words, between words and corners, and the last mark.
  if (shape.wordsAt == 28) {
    return same<28>(pair, first) && same<32>(pair + wordsEnd, first + wordsEnd) &&
           same<4>(pair + cornersEnd, first + cornersEnd);
  }
  const auto sameBytes = [&](std::size_t at, std::size_t bytes) {
    return std::memcmp(pair + at, first + at, bytes) == 0;
  };
  return sameBytes(0, shape.wordsAt) && sameBytes(wordsEnd, shape.cornersAt - wordsEnd) &&
         sameBytes(cornersEnd, shape.stride - cornersEnd);
}

template <bool swap>
[[gnu::always_inline]] inline void copyRow(float* row, const std::byte* from) {
  for (std::size_t n = 0; n < cornerBytes / 4; ++n) {
    const std::int32_t word = integerAt<swap>(from + 4 * n);
    std::memcpy(row + n, &word, sizeof word);
  }
}

template <bool swap>
[[gnu::always_inline]] inline void takePairs(const Pair& shape, const std::byte* pair, std::size_t count,
                                             CellRun& run) {
  const bool tellsState = shape.words >= 5;
  const bool tellsHost = shape.words >= CellRecord::mostWords;
  float* row = run.rows + CellRecords::rowItems * (run.activeOnly ? run.active : run.count);
  for (; count > 0 && run.count < run.most; --count, ++run.count, pair += shape.stride) {
    const std::byte* words = pair + shape.wordsAt;
    if (!isLike(shape, pair) ||
        integerAt<swap>(words) != run.first[0] + static_cast<std::int32_t>(run.count) ||
        integerAt<swap>(words + 4) != run.first[1] || integerAt<swap>(words + 8) != run.first[2]) {
      return;
    }
    const bool active = !tellsState || integerAt<swap>(words + 16) >= 1;
    run.states[run.count] = active ? 1 : 0;
    run.active += active ? 1 : 0;
    if (tellsHost) run.hosts[run.count] = integerAt<swap>(words + 20);
    copyRow<swap>(row, pair + shape.cornersAt);
    if (active || !run.activeOnly) row += CellRecords::rowItems;
  }
}
template <bool swap>
void takePlain(const Pair& shape, const std::byte* pair, std::size_t count, CellRun& run) {
  takePairs<swap>(shape, pair, count, run);
}
template <bool swap>
LUMBARN_WIDE void takeWide(const Pair& shape, const std::byte* pair, std::size_t count, CellRun& run) {
  takePairs<swap>(shape, pair, count, run);
}

}  // namespace

CellRecords::CellRecords(std::shared_ptr<const ByteSource> source, const Form& form,
                         const RecordHeader& coords, const RecordHeader& corners, std::uint64_t end)
    : source_(std::move(source)), swap_(form.byteSwap), position_(end) {
  const std::uint64_t start = coords.headerAt;
  const std::uint64_t mark = form.framing == Framing::OneByteMarks ? 1 : 4;
  const std::uint64_t wordsEnd = coords.dataAt + 2 * mark + 4 * static_cast<std::uint64_t>(coords.count);
  const bool usual = !form.formatted() && coords.count >= 3 &&
                     coords.count <= static_cast<std::int64_t>(CellRecord::mostWords) &&
                     corners.headerAt == wordsEnd && end == corners.dataAt + 2 * mark + cornerBytes;
  if (!usual) return;
  pair_.words = static_cast<std::size_t>(coords.count);
  pair_.wordsAt = static_cast<std::size_t>(coords.dataAt + mark - start);
  pair_.cornersAt = static_cast<std::size_t>(corners.dataAt + mark - start);
  pair_.first.resize(static_cast<std::size_t>(end - start));
  if (source_->readAt(start, pair_.first) != pair_.first.size()) return;
  pair_.stride = pair_.first.size();
  at_ = filled_ = pieceAt_ = (pair_.stride + 63) / 64 * 64;
  buffer_ = ReadBuffer(pieceAt_ + pieceBytes + pair_.stride);
}

/// The next piece, with what is left of the one before right in front of it. False at the end of the file.
bool CellRecords::fetch() {
  const std::size_t left = filled_ - at_;
  std::byte* const piece = buffer_.data() + pieceAt_;
  std::memmove(piece - left, buffer_.data() + at_, left);
  const std::uint64_t from = position_ + left;
  std::size_t wanted = pieceBytes - static_cast<std::size_t>(from % pieceBytes);
  if (wanted < pair_.stride) wanted += pieceBytes;
  at_ = pieceAt_ - left;
  filled_ = pieceAt_ + source_->readAt(from, {piece, wanted});
  return filled_ - at_ >= pair_.stride;
}

void CellRecords::step(std::size_t pairs) {
  at_ += pairs * pair_.stride;
  position_ += pairs * pair_.stride;
  taken_ += static_cast<std::int64_t>(pairs);
}

void CellRecords::takeRun(CellRun& run) {
  run.count = run.active = 0;
  const auto wide = swap_ ? takeWide<true> : takeWide<false>;
  const auto plain = swap_ ? takePlain<true> : takePlain<false>;
  const auto take = hasWide() ? wide : plain;
  while (pair_.stride > 0 && run.count < run.most && (filled_ - at_ >= pair_.stride || fetch())) {
    const std::size_t before = run.count;
    take(pair_, buffer_.data() + at_, (filled_ - at_) / pair_.stride, run);
    step(run.count - before);
    if (filled_ - at_ >= pair_.stride) return;
  }
}

bool CellRecords::next(CellRecord& cell) {
  if (pair_.stride == 0 || (filled_ - at_ < pair_.stride && !fetch())) return false;
  const std::byte* pair = buffer_.data() + at_;
  if (!isLike(pair_, pair)) return false;
  const auto word = swap_ ? integerAt<true> : integerAt<false>;
  cell.count = pair_.words;
  for (std::size_t n = 0; n < cell.count; ++n) cell.words[n] = word(pair + pair_.wordsAt + 4 * n);
  (swap_ ? copyRow<true> : copyRow<false>)(cell.corners.data(), pair + pair_.cornersAt);
  step(1);
  return true;
}

}  // namespace lumbarn
