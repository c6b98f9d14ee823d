#pragma once

#include "Codec.h"

namespace lumbarn {

/// Unformatted records. Each block of data stands between two marks that hold its length: 4-byte marks, or
/// 1-byte marks as some PC compilers write them. As a 1-byte mark cannot hold the length of a full block,
/// such files cut a block into pieces of 128 bytes whose marks are 129 when more of the block follows; some
/// keep the block whole and give the low byte of its length. Both are read.
class MarkedCodec final : public Codec {
 public:
  MarkedCodec(int markBytes, bool swap) : markBytes_(markBytes), swap_(swap) {}

  bool readHeader(Window& window, std::uint64_t position, RecordHeader& header) const override;
  DataLayout locate(Window& window, const RecordHeader& header) const override;
  void decode(Window& window, const RecordHeader& header, const DataLayout& layout, std::int64_t first,
              std::size_t count, std::byte* out) const override;
  std::uint64_t findHeader(Window& window, std::uint64_t position) const override;
  void gather(Window& window, const RecordHeader& header, const DataLayout& layout,
              std::span<const std::uint32_t> elements, std::byte* out) const override;
  void checkStart(Window& window, const RecordHeader& header, const DataLayout& layout) const override;

  static constexpr std::uint64_t pieceBytes = 128;
  static constexpr std::uint32_t pieceContinues = 129;

 private:
  template <class Word>
  void gatherWords(Window& window, const RecordHeader& header, const DataLayout& layout,
                   std::span<const std::uint32_t> elements, std::byte* out) const;
  /// A run of data bytes between two marks, and a place in it.
  struct Piece {
    std::uint64_t dataAt = 0;  // byte offset in the file
    std::uint64_t bytes = 0;
    std::uint64_t before = 0;  // bytes of it that lie before the place asked for
    std::uint32_t mark = 0;    // what its marks should say
  };
  Piece pieceAt(const RecordHeader& header, const DataLayout& layout, std::uint64_t byte) const;
  std::uint32_t readMark(Window& window, std::uint64_t position, std::uint64_t wanted = 0) const;
  std::uint32_t loadMark(const std::byte* from) const;
  void checkMark(const std::byte* at, std::uint64_t position, std::uint32_t expected) const;
  void checkMark(Window& window, std::uint64_t position, std::uint32_t expected,
                 std::uint64_t wanted = 0) const;
  bool isHeader(std::span<const std::byte> bytes) const;
  std::uint32_t shortened(std::uint64_t bytes) const;
  DataLayout walkBlocks(Window& window, const RecordHeader& header) const;
  DataLayout walkUnknown(Window& window, const RecordHeader& header) const;
  bool decodeSmall(Window& window, const RecordHeader& header, const DataLayout& layout, std::size_t count,
                   std::byte* out) const;
  void convert(ElementType type, const std::byte* in, std::size_t count, std::byte* out) const;

  int markBytes_;
  bool swap_;
};

}  // namespace lumbarn
