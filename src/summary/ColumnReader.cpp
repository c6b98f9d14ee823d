#include "ColumnReader.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "../support/Fault.h"

namespace lumbarn {

namespace {

/// A tile should stay in the cache between being read and being turned.
constexpr std::size_t tileBytes = std::size_t{4} << 20;
constexpr std::size_t mostTileRows = 1024;

/// Picking single values costs about this many times what decoding one in a row costs.
constexpr std::size_t costOfPicking = 16;

std::size_t tileRowsFor(std::size_t columns) {
  const std::size_t fitting = tileBytes / sizeof(float) / std::max<std::size_t>(columns, 1);
  return std::clamp<std::size_t>(fitting / 16 * 16, 16, mostTileRows);
}

using FourValues [[gnu::vector_size(16)]] = float;

FourValues load(const float* from) {
  FourValues values;
  std::memcpy(&values, from, sizeof values);
  return values;
}

/// Transposes a block of 4 by 4 values in registers, which takes half the time of copying value by value.
void turnBlock(const float* in, std::size_t inStride, float* const* out, std::size_t row) {
  const FourValues a = load(in), b = load(in + inStride);
  const FourValues c = load(in + 2 * inStride), d = load(in + 3 * inStride);
  const FourValues lowAB = __builtin_shufflevector(a, b, 0, 4, 1, 5);
  const FourValues highAB = __builtin_shufflevector(a, b, 2, 6, 3, 7);
  const FourValues lowCD = __builtin_shufflevector(c, d, 0, 4, 1, 5);
  const FourValues highCD = __builtin_shufflevector(c, d, 2, 6, 3, 7);
  const FourValues turned[] = {__builtin_shufflevector(lowAB, lowCD, 0, 1, 4, 5),
                               __builtin_shufflevector(lowAB, lowCD, 2, 3, 6, 7),
                               __builtin_shufflevector(highAB, highCD, 0, 1, 4, 5),
                               __builtin_shufflevector(highAB, highCD, 2, 3, 6, 7)};
  for (std::size_t i = 0; i < 4; ++i) std::memcpy(out[i] + row, &turned[i], sizeof turned[i]);
}

}  // namespace

void turnTile(std::span<const float> tile, std::size_t rows, std::size_t firstRow,
              std::span<float* const> out) {
  const std::size_t columns = out.size();
  const std::size_t blockRows = rows / 4 * 4;
  const std::size_t blockColumns = columns / 4 * 4;
  constexpr std::size_t lineValues = 16;  // one cache line of the tile serves as many columns
  for (std::size_t j0 = 0; j0 < blockColumns; j0 += lineValues) {
    for (std::size_t i = 0; i < blockRows; i += 4) {
      for (std::size_t j = j0; j < std::min(j0 + lineValues, blockColumns); j += 4)
        turnBlock(tile.data() + i * columns + j, columns, out.data() + j, firstRow + i);
    }
  }
  for (std::size_t j = 0; j < columns; ++j) {
    for (std::size_t i = j < blockColumns ? blockRows : 0; i < rows; ++i) {
      out[j][firstRow + i] = tile[i * columns + j];
    }
  }
}

bool readsSparsely(std::size_t wanted, std::size_t all) {
  constexpr std::size_t page = 4096;
  return 2 * page * (wanted + 1) <= sizeof(float) * all;  // one more for the headers
}

void describeLoss(Diagnosis& damage, std::size_t kept, bool oneFile, bool continues) {
  damage.action = "kept " + std::to_string(kept) + " rows";
  if (oneFile) damage.occurrence = static_cast<std::int64_t>(kept) + 1;
  if (continues) damage.action += ", continued with the next file";
}

void ColumnReader::read(std::span<const RowPlace> rows, std::span<const std::int32_t> vectors,
                        std::span<float* const> columns) {
  if (columns.size() != vectors.size()) throw Fault(FaultNumber::InvalidCall);
  rowsDone_ = 0;
  vectors_ = vectors;
  sparse_ = readsSparsely(vectors.size(), static_cast<std::size_t>(nValues_));
  const auto all = static_cast<std::size_t>(nValues_);
  elements_.clear();
  wholeRow_.clear();
  if (vectors.size() * costOfPicking < all) {
    for (const auto vector : vectors) elements_.push_back(static_cast<std::uint32_t>(vector - 1));
  } else if (vectors.size() < all) {
    wholeRow_.resize(all);
  }
  header_ = {};
  header_.keyword = "PARAMS";
  header_.typeWord = "REAL";
  header_.type = ElementType::Single;
  header_.width = 4;
  header_.count = nValues_;

  const std::size_t tileRows = tileRowsFor(vectors.size());
  std::vector<float> tile(std::min(tileRows, rows.size()) * vectors.size());
  while (rowsDone_ < rows.size() && !session_.cancelled()) {
    const std::size_t count = std::min(tileRows, rows.size() - rowsDone_);
    std::size_t read = 0;
    const auto turn = [&] {
      turnTile(tile, read, rowsDone_, columns);
      rowsDone_ += read;
    };
    try {
      for (; read < count; ++read) {
        readRow(rows[rowsDone_ + read], std::span(tile).subspan(read * vectors.size(), vectors.size()));
      }
    } catch (const BadRecord&) {
      turn();
      throw;
    }
    turn();
    if (session_.Container) {
      const double share = static_cast<double>(rowsDone_) / static_cast<double>(rows.size());
      session_.Container->fraction(shareBefore_ + (shareAfter_ - shareBefore_) * share);
    }
    session_.yield();
  }
  if (cursor_) cursor_->checkUnchanged();
}

void ColumnReader::readRow(const RowPlace& row, std::span<float> values) {
  if (values.empty()) return;
  if (row.iFile != iFile_) openFile(row.iFile);
  header_.dataAt = row.dataAt;
  cursor_->setCurrent(header_, row.regular);
  if (!elements_.empty()) {
    // The time is part of nearly every choice; taking it from the index saves a transfer for each row.
    const std::size_t known = elements_.front() == 0 ? 1 : 0;
    if (known == 1) values[0] = row.first;
    cursor_->gather(std::span(elements_).subspan(known), values.subspan(known));
  } else if (wholeRow_.empty()) {
    cursor_->read(values);
  } else {
    cursor_->read(std::span<float>(wholeRow_));
    for (std::size_t i = 0; i < vectors_.size(); ++i) {
      values[i] = wholeRow_[static_cast<std::size_t>(vectors_[i] - 1)];
    }
  }
}

void ColumnReader::openFile(std::int32_t iFile) {
  if (cursor_) cursor_->checkUnchanged();
  const auto file = static_cast<std::size_t>(iFile);
  std::optional<FileStamp> stamp;
  cursor_ = openSummaryData(files_[file], form_, session_, stamp, sparse_);
  if (!cursor_) throw Fault(FaultNumber::FileNotFound);
  if (stamps_[file]) {
    if (auto change = changedSince(*stamps_[file], files_[file])) throw BadRecord(std::move(*change));
  }
  iFile_ = iFile;
}

}  // namespace lumbarn
