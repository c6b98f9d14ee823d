#include "MarkerBlock.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "../support/Fault.h"
#include "../support/Text.h"

namespace lumbarn {
namespace {

constexpr std::string_view shortMark = "MK32";
constexpr std::string_view extendedMark = "MKEX";
constexpr std::size_t markBytes = 4;
constexpr std::size_t frontBytes = markBytes + MarkerHeader::bytes;

// Positions of the items in a row: after the kind and the two words whose bits state which items are set.
constexpr std::size_t kindItem = 12;
constexpr std::size_t nameItem = 11;
constexpr std::size_t firstInteger = 3;
constexpr std::size_t integerItems[] = {1, 2, 3, 4, 5, 10, 14, 26, 27, 28, 29, 30, 31};
constexpr std::size_t singleRanges[][2] = {{15, 25}, {32, 54}};
constexpr std::int32_t nIntegers = static_cast<std::int32_t>(firstInteger + std::size(integerItems));
constexpr std::int32_t nSingles = 11 + 23;
constexpr std::int32_t leastWidth = 40;

enum class Slot { None, Integer, Single, Name, Kind };
struct Place {
  Slot slot = Slot::None;
  std::size_t number = 0;  // of the integer or the single within the row
};

constexpr std::array<Place, MarkerTable::nItems + 1> makePlaces() {
  std::array<Place, MarkerTable::nItems + 1> places{};
  std::size_t number = firstInteger;
  for (const std::size_t item : integerItems) places[item] = {Slot::Integer, number++};
  number = 0;
  for (const auto& [first, last] : singleRanges) {
    for (std::size_t item = first; item <= last; ++item) places[item] = {Slot::Single, number++};
  }
  places[nameItem] = {Slot::Name, 0};
  places[kindItem] = {Slot::Kind, 0};
  return places;
}
constexpr auto places = makePlaces();

template <class T>
T load(std::span<const std::byte> row, std::size_t number) {
  T value;
  std::memcpy(&value, row.data() + number * sizeof(T), sizeof(T));
  return value;
}
template <class T>
void store(std::span<std::byte> row, std::size_t number, T value) {
  std::memcpy(row.data() + number * sizeof(T), &value, sizeof(T));
}

std::span<const std::byte> singlesOf(std::span<const std::byte> row) {
  return row.subspan(std::size_t{nIntegers} * sizeof(std::int32_t));
}

bool isSet(std::span<const std::byte> row, std::size_t item) {
  const auto word = load<std::uint32_t>(row, 1 + (item - 1) / 32);
  return (word >> (item - 1) % 32 & 1) != 0;
}

std::size_t rowBytes(const MarkerHeader& header) {
  return static_cast<std::size_t>(header.nIntegers) * sizeof(std::int32_t) +
         static_cast<std::size_t>(header.nSingles) * sizeof(float) + static_cast<std::size_t>(header.nWidth);
}

/// Writes rows where they will stay.
class RowPacker {
 public:
  RowPacker(std::span<std::byte> rows, const MarkerHeader& header) : rest_(rows), header_(header) {}

  void row(MarkerKind kind) {
    row_ = rest_.first(rowBytes(header_));
    rest_ = rest_.subspan(row_.size());
    std::ranges::fill(name(), std::byte{' '});
    store(row_, 0, static_cast<std::int32_t>(kind));
    mark(kindItem);
  }
  void integer(std::size_t item, std::int32_t value) {
    store(row_, places[item].number, value);
    mark(item);
  }
  void single(std::size_t item, float value) {
    store(row_, static_cast<std::size_t>(nIntegers) + places[item].number, value);
    mark(item);
  }
  void text(std::size_t item, std::string_view value) {
    std::memcpy(name().data(), value.data(), std::min(value.size(), name().size()));
    mark(item);
  }

 private:
  std::span<std::byte> name() { return row_.last(static_cast<std::size_t>(header_.nWidth)); }
  void mark(std::size_t item) {
    const std::size_t word = 1 + (item - 1) / 32;
    store(row_, word, load<std::uint32_t>(row_, word) | std::uint32_t{1} << (item - 1) % 32);
  }

  std::span<std::byte> rest_;
  std::span<std::byte> row_;
  const MarkerHeader& header_;
};

std::int32_t widthOfNames(const RESTARTGRID& grid, bool qLong) {
  std::size_t width = leastWidth;
  for (std::size_t i = 1; qLong && i <= grid.iWELL.rows(); ++i)
    width = std::max(width, wellName(grid, i).size());
  return static_cast<std::int32_t>(std::min<std::size_t>(width, 1 << 20));
}

MarkerHeader setMarkerINTEHead(const RESTARTGRID& grid, bool qMarkers, const MarkerPacking& packing,
                               const MarkerCounts& counts) {
  const bool anySingle =
      !grid.sWELL.empty() || !grid.sWELL2.empty() || (qMarkers && counts.perfs > 0 && !grid.sCONN.empty());
  MarkerHeader header;
  header.nIntegers = nIntegers;
  header.nSingles = anySingle || packing.iForm == 2 ? nSingles : 0;
  header.nWidth = widthOfNames(grid, packing.qLong);
  header.nRows = static_cast<std::int32_t>(counts.rows());
  header.nWells = static_cast<std::int32_t>(counts.wells);
  header.nPerfs = static_cast<std::int32_t>(counts.perfs);
  header.nRowBytes = static_cast<std::int32_t>(rowBytes(header));
  header.iForm = packing.iForm;
  header.qExtended = qMarkers ? -1 : 0;
  return header;
}

/// What keeps a header from being one of ours; empty when nothing does.
std::string faultOf(const MarkerHeader& header, std::size_t bytesBehind) {
  if (header.iLayout == std::int32_t{MarkerHeader::layout} << 24)
    return "the block is in the other byte order";
  if (header.iLayout != MarkerHeader::layout) return "the layout is not number 20";
  const bool known = header.nIntegers == nIntegers && (header.nSingles == 0 || header.nSingles == nSingles) &&
                     header.nDoubles == 0 && header.nTexts == 1 && header.nWidth >= leastWidth &&
                     header.nItems == static_cast<std::int32_t>(MarkerTable::nItems);
  if (!known) return "the rows have another shape";
  if (header.nRowBytes < 0 || static_cast<std::size_t>(header.nRowBytes) != rowBytes(header))
    return "the bytes of a row do not fit its counts";
  const bool counts =
      header.nWells >= 0 && header.nPerfs >= 0 && std::int64_t{header.nWells} + header.nPerfs == header.nRows;
  if (!counts) return "the counts of rows do not fit together";
  if (static_cast<std::size_t>(header.nRows) > bytesBehind / rowBytes(header))
    return "the block is shorter than its rows";
  return {};
}

bool isSound(std::span<const std::byte> row) {
  const auto kind = load<std::int32_t>(row, 0);
  return kind == static_cast<std::int32_t>(MarkerKind::Well) ||
         kind == static_cast<std::int32_t>(MarkerKind::Perf);
}

}  // namespace

std::vector<std::byte> packMarkers(const RESTARTGRID& grid, bool qMarkers, const MarkerPacking& packing,
                                   const Session& session) {
  const MarkerCounts counts(grid);
  const MarkerHeader header = setMarkerINTEHead(grid, qMarkers, packing, counts);
  const std::size_t bytes = frontBytes + counts.rows() * rowBytes(header);
  session.checkMemory(bytes);
  std::vector<std::byte> block(bytes);
  const std::string_view mark = packing.iForm == 2 ? extendedMark : shortMark;
  std::memcpy(block.data(), mark.data(), markBytes);
  std::memcpy(block.data() + markBytes, &header, sizeof header);
  RowPacker packer(std::span<std::byte>(block).subspan(frontBytes), header);
  MarkerRows(grid, qMarkers, packer).visit();
  return block;
}

bool MarkerBlock::open(std::span<const std::byte> bMarkers, std::string& zWhy) {
  *this = MarkerBlock();
  if (bMarkers.size() < frontBytes) {
    zWhy = "the block is shorter than its header";
    return false;
  }
  const std::string_view mark(reinterpret_cast<const char*>(bMarkers.data()), markBytes);
  MarkerHeader header;
  std::memcpy(&header, bMarkers.data() + markBytes, sizeof header);
  zWhy = mark == shortMark || mark == extendedMark ? faultOf(header, bMarkers.size() - frontBytes)
                                                   : "the block begins with no mark of markers";
  if (!zWhy.empty()) return false;
  const std::size_t bytes = rowBytes(header);
  std::int32_t wells = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(header.nRows); ++i) {
    const auto row = bMarkers.subspan(frontBytes + i * bytes, bytes);
    if (!isSound(row)) {
      zWhy = "row " + std::to_string(i + 1) + " is of no known kind";
      return false;
    }
    if (load<std::int32_t>(row, 0) == static_cast<std::int32_t>(MarkerKind::Well)) ++wells;
  }
  if (wells != header.nWells) {
    zWhy = "the counts of rows are not those of the rows";
    return false;
  }
  header_ = header;
  rows_ = bMarkers.subspan(frontBytes, static_cast<std::size_t>(header.nRows) * bytes);
  return true;
}

std::span<const std::byte> MarkerBlock::row(std::size_t iRow) const {
  if (iRow < 1 || iRow > rows()) throw Fault(FaultNumber::Subscript);
  const std::size_t bytes = rowBytes(header_);
  return rows_.subspan((iRow - 1) * bytes, bytes);
}

MarkerKind MarkerBlock::kind(std::size_t iRow) const {
  return static_cast<MarkerKind>(load<std::int32_t>(row(iRow), 0));
}

Variant MarkerBlock::operator()(std::size_t iRow, std::size_t iItem) const {
  const auto bytes = row(iRow);
  if (iItem < 1 || iItem > MarkerTable::nItems) throw Fault(FaultNumber::Subscript);
  if (!isSet(bytes, iItem)) return {};
  const Place place = places[iItem];
  switch (place.slot) {
    case Slot::Integer:
      return load<std::int32_t>(bytes, place.number);
    case Slot::Single:
      if (header_.nSingles == 0) return {};
      return double{load<float>(singlesOf(bytes), place.number)};
    case Slot::Name: {
      const auto name = bytes.last(static_cast<std::size_t>(header_.nWidth));
      return std::string(trimRight({reinterpret_cast<const char*>(name.data()), name.size()}));
    }
    case Slot::Kind:
      return std::string(nameOf(kind(iRow)));
    case Slot::None:
      break;
  }
  return {};
}

MarkerTable MarkerBlock::table() const {
  MarkerTable table(rows(), rows());
  for (std::size_t iRow = 1; iRow <= rows(); ++iRow) {
    for (std::size_t iItem = 1; iItem <= MarkerTable::nItems; ++iItem)
      table(iRow, iItem) = (*this)(iRow, iItem);
  }
  return table;
}

}  // namespace lumbarn
