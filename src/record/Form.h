#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "ByteSource.h"

namespace lumbarn {

/// The on-disk form of a record file.
enum class Framing {
  Formatted,      ///< text lines
  FourByteMarks,  ///< unformatted, each block between two 4-byte lengths
  OneByteMarks,   ///< unformatted, each block between two 1-byte lengths
};

struct Form {
  Framing framing = Framing::FourByteMarks;
  bool byteSwap = true;  ///< numbers in the other byte order than this machine's

  bool operator==(const Form&) const = default;
  bool formatted() const { return framing == Framing::Formatted; }
  /// "formatted", "unformatted, 4-byte marks, big-endian" and the like.
  std::string description() const;
};

/// The form of a file and the keyword of its first record.
struct DetectedForm {
  Form form;
  std::string keyword;  ///< trimmed, upper case
};

/// Looks at the first bytes: a keyword at byte 3 (counting from 1) says formatted, at byte 5 4-byte marks, at
/// byte 2 1-byte marks, tried in this order, since a short text header could satisfy a later probe. With
/// `keywords` only those count; without, any first header that is sound as a whole.
std::optional<DetectedForm> detectForm(const ByteSource& source,
                                       std::span<const std::string_view> keywords = {});

}  // namespace lumbarn
