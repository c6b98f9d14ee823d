#pragma once

#include "Codec.h"

namespace lumbarn {

/// Formatted records: text lines of fixed-width fields. Lines of the usual lengths are skipped by arithmetic;
/// any others are read token by token, fields that touch included.
class FormattedCodec final : public Codec {
 public:
  bool readHeader(Window& window, std::uint64_t position, RecordHeader& header) const override;
  DataLayout locate(Window& window, const RecordHeader& header) const override;
  void decode(Window& window, const RecordHeader& header, const DataLayout& layout, std::int64_t first,
              std::size_t count, std::byte* out) const override;
  std::uint64_t findHeader(Window& window, std::uint64_t position) const override;
  void gather(Window& window, const RecordHeader& header, const DataLayout& layout,
              std::span<const std::uint32_t> elements, std::byte* out) const override;
};

/// Fields of one line of a formatted record.
struct LineShape {
  std::uint64_t perLine = 1;
  std::uint64_t fieldWidth = 1;
};
LineShape lineShape(ElementType type, std::int32_t width);

}  // namespace lumbarn
