#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "../support/Export.h"
#include "ByteSource.h"

namespace lumbarn {

class Session;

/// The on-disk form of a record file.
enum class Framing {
  Formatted,      ///< text lines
  FourByteMarks,  ///< unformatted, each block between two 4-byte lengths
  OneByteMarks,   ///< unformatted, each block between two 1-byte lengths
};

struct LUMBARN_API Form {
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

/// The form in which a file begins with a sound record header: tried as formatted, with 4-byte and with
/// 1-byte marks, in this order, since a short text header could satisfy a later probe. Whatever its keyword
/// is: files begin with a writer's own records too. Throws BadRecord when the file cannot be read.
LUMBARN_API std::optional<DetectedForm> detectForm(const ByteSource& source);

/// For operations that ask whether a file is of a type: the form, if the first keyword is one of these.
LUMBARN_API std::optional<DetectedForm> detectForm(const ByteSource& source,
                                                   std::span<const std::string_view> keywords);
/// The same for operations that throw nothing: a file that cannot be read is reported and not accepted.
LUMBARN_API std::optional<DetectedForm> detectForm(const ByteSource& source,
                                                   std::span<const std::string_view> keywords,
                                                   Session& session);

}  // namespace lumbarn
