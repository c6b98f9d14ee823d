#include "MarkedCodec.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <fmt/format.h>

#include "Swap.h"

namespace lumbarn {

namespace {

constexpr std::uint32_t headerBytes = 16;

template <class Word>
Word loadWord(const std::byte* from, bool swap) {
  Word word;
  std::memcpy(&word, from, sizeof word);
  if (swap) {
    if constexpr (sizeof(Word) == 2)
      word = static_cast<Word>(__builtin_bswap16(static_cast<std::uint16_t>(word)));
    if constexpr (sizeof(Word) == 4)
      word = static_cast<Word>(__builtin_bswap32(static_cast<std::uint32_t>(word)));
  }
  return word;
}

std::string_view letters(const std::byte* from, std::size_t count) {
  return {reinterpret_cast<const char*>(from), count};
}

std::uint64_t blockLength(const RecordHeader& header) {
  return static_cast<std::uint64_t>(elementsPerBlock(header.type)) * static_cast<std::uint64_t>(header.width);
}

std::uint64_t dataLength(const RecordHeader& header) {
  return static_cast<std::uint64_t>(header.count) * static_cast<std::uint64_t>(header.width);
}

std::uint64_t piecesOf(std::uint64_t bytes) {
  return (bytes + MarkedCodec::pieceBytes - 1) / MarkedCodec::pieceBytes;
}

[[noreturn]] void throwTooShort(std::uint64_t offset, std::uint64_t expected, std::uint64_t found) {
  throwTruncated(offset, fmt::format("{} bytes", expected), fmt::format("{}", found));
}

[[noreturn]] void throwMarksDisagree(std::uint64_t position, std::uint32_t expected, std::uint32_t found) {
  throwBadRecord("block marks disagree", position, fmt::format("{}", expected), fmt::format("{}", found));
}

}  // namespace

std::uint32_t MarkedCodec::readMark(Window& window, std::uint64_t position, std::uint64_t wanted) const {
  const auto size = static_cast<std::size_t>(markBytes_);
  const auto bytes = window.at(position, size, wanted);
  if (bytes.size() < size) throwTooShort(position, size, bytes.size());
  return loadMark(bytes.data());
}

std::uint32_t MarkedCodec::loadMark(const std::byte* from) const {
  return markBytes_ == 1 ? std::to_integer<std::uint32_t>(*from) : loadWord<std::uint32_t>(from, swap_);
}

/// A mark that is at hand and stands at this position of the file.
void MarkedCodec::checkMark(const std::byte* at, std::uint64_t position, std::uint32_t expected) const {
  if (const auto found = loadMark(at); found != expected) throwMarksDisagree(position, expected, found);
}

void MarkedCodec::checkMark(Window& window, std::uint64_t position, std::uint32_t expected,
                            std::uint64_t wanted) const {
  const auto found = readMark(window, position, wanted);
  if (found != expected) throwMarksDisagree(position, expected, found);
}

/// A length as a mark of this file can hold it.
std::uint32_t MarkedCodec::shortened(std::uint64_t bytes) const {
  return static_cast<std::uint32_t>(markBytes_ == 1 ? bytes & 0xFF : bytes);
}

bool MarkedCodec::readHeader(Window& window, std::uint64_t position, RecordHeader& header) const {
  if (position == window.size()) return false;
  const auto mark = static_cast<std::size_t>(markBytes_);
  const std::size_t whole = headerBytes + 2 * mark;
  const auto bytes = window.at(position, whole);
  if (bytes.size() < whole) throwTooShort(position, whole, bytes.size());
  checkMark(bytes.data(), position, headerBytes);
  checkMark(bytes.data() + mark + headerBytes, position + mark + headerBytes, headerBytes);
  const auto* body = bytes.data() + mark;
  if (!setHeaderWords(header, letters(body, 8), letters(body + 12, 4))) {
    throwBadRecord("no record header", position + mark, "keyword and type", "other bytes");
  }
  header.count = loadWord<std::int32_t>(body + 8, swap_);
  header.headerAt = position;
  header.dataAt = position + whole;
  return true;
}

DataLayout MarkedCodec::locate(Window& window, const RecordHeader& header) const {
  DataLayout layout;
  layout.end = header.dataAt;
  if (header.count == 0 || header.type == ElementType::None) return layout;
  if (header.type == ElementType::Unknown) return walkUnknown(window, header);

  const std::uint64_t left = window.size() - std::min(window.size(), header.dataAt);
  if (static_cast<std::uint64_t>(header.count) > left / static_cast<std::uint64_t>(header.width)) {
    throwTruncated(header.dataAt, fmt::format("{} elements", header.count), fmt::format("{} bytes", left));
  }
  const std::uint64_t bytes = dataLength(header);
  const std::uint64_t firstBlock = std::min(bytes, blockLength(header));
  const std::uint64_t blocks = (bytes + blockLength(header) - 1) / blockLength(header);
  const std::uint64_t lastBlock = bytes - (blocks - 1) * blockLength(header);
  const auto mark = static_cast<std::uint64_t>(markBytes_);
  const auto opening = readMark(window, header.dataAt);

  if (markBytes_ == 1 && firstBlock > pieceBytes && opening == pieceContinues) {
    layout.kind = DataLayout::Kind::Chunked;
    const std::uint64_t pieces = (blocks - 1) * piecesOf(firstBlock) + piecesOf(lastBlock);
    layout.end += bytes + 2 * pieces;
    if (layout.end > window.size()) throwTooShort(header.dataAt, bytes + 2 * pieces, left);
    checkMark(window, layout.end - 1, static_cast<std::uint32_t>((lastBlock - 1) % pieceBytes + 1));
    return layout;
  }
  layout.end += bytes + 2 * mark * blocks;
  if (opening == shortened(firstBlock) && layout.end <= window.size() &&
      readMark(window, layout.end - mark) == shortened(lastBlock)) {
    return layout;
  }
  return walkBlocks(window, header);
}

/// Follows the marks: finds blocks of unusual sizes, or the place where the record is damaged.
DataLayout MarkedCodec::walkBlocks(Window& window, const RecordHeader& header) const {
  DataLayout layout;
  layout.kind = DataLayout::Kind::Table;
  layout.end = header.dataAt;
  const auto mark = static_cast<std::uint64_t>(markBytes_);
  const auto width = static_cast<std::uint64_t>(header.width);
  const std::uint64_t bytes = dataLength(header);
  for (std::uint64_t done = 0; done < bytes;) {
    const std::uint64_t length = readMark(window, layout.end);
    if (length == 0 || length % width != 0 || length > bytes - done) {
      throwBadRecord("block length is wrong", layout.end,
                     fmt::format("{}", std::min(bytes - done, blockLength(header))),
                     fmt::format("{}", length));
    }
    const std::uint64_t left = window.size() - layout.end;
    if (length + 2 * mark > left) throwTooShort(layout.end, length + 2 * mark, left);
    checkMark(window, layout.end + mark + length, shortened(length));
    layout.table.push_back({done, layout.end + mark, length});
    layout.end += length + 2 * mark;
    done += length;
  }
  return layout;
}

/// The element width of an unknown type is not known, so its blocks are followed until a header stands there.
DataLayout MarkedCodec::walkUnknown(Window& window, const RecordHeader& header) const {
  DataLayout layout;
  layout.end = header.dataAt;
  const auto mark = static_cast<std::uint64_t>(markBytes_);
  RecordHeader following;
  while (layout.end < window.size()) {
    const std::uint32_t opening = readMark(window, layout.end);
    if (opening == headerBytes) {
      const auto bytes = window.at(layout.end + mark, headerBytes);
      if (bytes.size() >= headerBytes &&
          setHeaderWords(following, letters(bytes.data(), 8), letters(bytes.data() + 12, 4)) &&
          (following.type != ElementType::Unknown || following.typeWord == "X231")) {
        break;
      }
    }
    const std::uint64_t length = markBytes_ == 1 && opening == pieceContinues ? pieceBytes : opening;
    const std::uint64_t left = window.size() - layout.end;
    if (length + 2 * mark > left) throwTooShort(layout.end, length + 2 * mark, left);
    checkMark(window, layout.end + mark + length, opening);
    layout.end += length + 2 * mark;
  }
  return layout;
}

/// Whether bytes, which go on to the end of the file or farther than one block, are a header with marks that
/// agree and the marks of its first block, or those of the next header where it has no data.
bool MarkedCodec::isHeader(std::span<const std::byte> bytes) const {
  const auto mark = static_cast<std::size_t>(markBytes_);
  const auto* body = bytes.data() + mark;
  RecordHeader header;
  if (loadMark(bytes.data()) != headerBytes || loadMark(body + headerBytes) != headerBytes ||
      !setHeaderWords(header, letters(body, 8), letters(body + 12, 4))) {
    return false;
  }
  header.count = loadWord<std::int32_t>(body + 8, swap_);
  if (!isPlausible(header)) return false;
  const auto behind = bytes.subspan(headerBytes + 2 * mark);
  if (behind.size() < mark) return true;  // a file that ends here
  const std::uint32_t opening = loadMark(behind.data());
  if (header.count <= 0 || header.type == ElementType::None) return opening == headerBytes;
  const std::uint64_t all = dataLength(header);
  const std::uint64_t first = std::min(all, blockLength(header));
  if (markBytes_ == 1 && first > pieceBytes && opening == pieceContinues) return true;
  if (opening != shortened(first)) return opening == shortened(all);  // all in one block
  const std::size_t closing = mark + static_cast<std::size_t>(first);
  return behind.size() < closing + mark || loadMark(behind.data() + closing) == opening;
}

std::uint64_t MarkedCodec::findHeader(Window& window, std::uint64_t position) const {
  const std::size_t whole = headerBytes + 2 * static_cast<std::size_t>(markBytes_);
  constexpr std::size_t lookAhead = std::size_t{16} << 10;  // a header and its first block
  while (position < window.size() && window.size() - position >= whole) {
    const auto left = static_cast<std::size_t>(std::min<std::uint64_t>(window.size() - position, lookAhead));
    const auto bytes = window.at(position, left, Window::capacity);
    const bool last = position + bytes.size() >= window.size();
    const std::size_t end = bytes.size() - (last ? whole : left) + 1;
    for (std::size_t i = 0; i < end; ++i) {
      if (loadMark(bytes.data() + i) == headerBytes && isHeader(bytes.subspan(i))) return position + i;
    }
    position += end;
  }
  return window.size();
}

MarkedCodec::Piece MarkedCodec::pieceAt(const RecordHeader& header, const DataLayout& layout,
                                        std::uint64_t byte) const {
  if (layout.kind == DataLayout::Kind::Table) {
    const auto behind = std::ranges::upper_bound(layout.table, byte, {}, &DataBlock::firstByte);
    const auto& block = *std::prev(behind);
    return {block.dataAt, block.bytes, byte - block.firstByte, shortened(block.bytes)};
  }
  const std::uint64_t block = blockLength(header);
  const std::uint64_t number = byte / block;
  const std::uint64_t within = byte % block;
  const std::uint64_t length = std::min(block, dataLength(header) - number * block);
  const auto mark = static_cast<std::uint64_t>(markBytes_);
  if (layout.kind != DataLayout::Kind::Chunked) {
    return {header.dataAt + number * (block + 2 * mark) + mark, length, within, shortened(length)};
  }
  const std::uint64_t piece = within / pieceBytes;
  const std::uint64_t start =
      header.dataAt + number * (block + 2 * piecesOf(block)) + piece * (pieceBytes + 2) + 1;
  const std::uint64_t rest = length - piece * pieceBytes;
  const bool continues = rest > pieceBytes;
  return {start, continues ? pieceBytes : rest, within % pieceBytes,
          continues ? pieceContinues : static_cast<std::uint32_t>(rest)};
}

void MarkedCodec::convert(ElementType type, const std::byte* in, std::size_t count, std::byte* out) const {
  switch (type) {
    case ElementType::Integer:
    case ElementType::Single:
      swap_ ? copySwapped4(out, in, count) : static_cast<void>(std::memcpy(out, in, 4 * count));
      break;
    case ElementType::Double:
      swap_ ? copySwapped8(out, in, count) : static_cast<void>(std::memcpy(out, in, 8 * count));
      break;
    case ElementType::Logical:  // writers disagree on the word for true: -1, 1 and others are seen; 0 is
                                // false
      for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t value = loadWord<std::uint32_t>(in + 4 * i, false) != 0 ? -1 : 0;
        std::memcpy(out + 4 * i, &value, 4);
      }
      break;
    case ElementType::Short:
      for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t value = loadWord<std::int16_t>(in + 2 * i, swap_);
        std::memcpy(out + 4 * i, &value, 4);
      }
      break;
    default:
      std::memcpy(out, in, count);  // text: count is in bytes
  }
}

/// Decodes the whole data of a record of one block when they are at hand with both marks, as for nearly all
/// records of a file that has many. False, with nothing done, when they are not.
bool MarkedCodec::decodeSmall(Window& window, const RecordHeader& header, const DataLayout& layout,
                              std::size_t count, std::byte* out) const {
  const auto mark = static_cast<std::size_t>(markBytes_);
  const auto data = static_cast<std::size_t>(dataLength(header));
  const std::size_t whole = data + 2 * mark;
  if (layout.kind != DataLayout::Kind::Regular || data > blockLength(header) || whole > Window::capacity)
    return false;
  const auto bytes = window.at(header.dataAt, whole, whole);
  if (bytes.size() < whole) return false;
  checkMark(bytes.data(), header.dataAt, shortened(data));
  convert(header.type, bytes.data() + mark, header.type == ElementType::Text ? data : count, out);
  checkMark(bytes.data() + mark + data, header.dataAt + mark + data, shortened(data));
  return true;
}

void MarkedCodec::decode(Window& window, const RecordHeader& header, const DataLayout& layout,
                         std::int64_t first, std::size_t count, std::byte* out) const {
  const bool isWhole = first == 0 && count == static_cast<std::size_t>(header.count);
  if (isWhole && decodeSmall(window, header, layout, count, out)) return;
  const bool text = header.type == ElementType::Text;  // may be cut anywhere, so it goes by the byte
  const auto width = static_cast<std::uint64_t>(header.width);
  const std::uint64_t unit = text ? 1 : width;
  const std::uint64_t outUnit = header.type == ElementType::Short ? 4 : unit;
  const auto mark = static_cast<std::uint64_t>(markBytes_);
  std::uint64_t byte = static_cast<std::uint64_t>(first) * width;
  std::uint64_t left = count * width;
  while (left > 0) {
    const Piece piece = pieceAt(header, layout, byte);
    if (piece.before == 0) checkMark(window, piece.dataAt - mark, piece.mark, left + 2 * mark);
    const std::uint64_t open = std::min(piece.bytes - piece.before, left);
    const auto bytes = window.at(piece.dataAt + piece.before, unit, left);
    const std::uint64_t take = std::min<std::uint64_t>(bytes.size(), open) / unit * unit;
    if (take == 0) throwTooShort(piece.dataAt + piece.before, open, bytes.size());
    convert(header.type, bytes.data(), static_cast<std::size_t>(take / unit), out);
    out += take / unit * outUnit;
    byte += take;
    left -= take;
    if (piece.before + take == piece.bytes) {
      checkMark(window, piece.dataAt + piece.bytes, piece.mark, left == 0 ? 0 : left + 2 * mark);
    }
  }
}

void MarkedCodec::gather(Window& window, const RecordHeader& header, const DataLayout& layout,
                         std::span<const std::uint32_t> elements, std::byte* out) const {
  if (header.width == 8 && layout.kind == DataLayout::Kind::Table) {  // a block may end within an element
    for (std::size_t i = 0; i < elements.size(); ++i)
      decode(window, header, layout, elements[i], 1, out + 8 * i);
    return;
  }
  header.width == 8 ? gatherWords<std::uint64_t>(window, header, layout, elements, out)
                    : gatherWords<std::uint32_t>(window, header, layout, elements, out);
}

template <class Word>
void MarkedCodec::gatherWords(Window& window, const RecordHeader& header, const DataLayout& layout,
                              std::span<const std::uint32_t> elements, std::byte* out) const {
  // Elements closer than this are fetched together: a transfer costs about as much as copying that many
  // bytes.
  constexpr std::uint64_t worthOneTransfer = 4096;
  constexpr std::uint64_t width = sizeof(Word);
  const auto place = [&](std::uint32_t element) {
    const Piece piece = pieceAt(header, layout, width * element);
    return piece.dataAt + piece.before;
  };
  std::uint64_t fetchedTo = 0;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const std::uint64_t at = place(elements[i]);
    if (at >= fetchedTo) {
      fetchedTo = at + width;
      for (std::size_t k = i + 1; k < elements.size(); ++k) {
        const std::uint64_t next = place(elements[k]);
        if (next - fetchedTo > worthOneTransfer || next + width - at > Window::capacity) break;
        fetchedTo = next + width;
      }
    }
    const auto bytes = window.at(at, width, fetchedTo - at);
    if (bytes.size() < width) throwTooShort(at, width, bytes.size());
    const auto word = loadWord<Word>(bytes.data(), swap_);
    std::memcpy(out + i * width, &word, width);
  }
}

void MarkedCodec::checkStart(Window& window, const RecordHeader& header, const DataLayout& layout) const {
  const Piece piece = pieceAt(header, layout, 0);
  checkMark(window, piece.dataAt - static_cast<std::uint64_t>(markBytes_), piece.mark);
}

}  // namespace lumbarn
