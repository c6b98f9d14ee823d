#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "../support/Export.h"
#include "Stream.h"

namespace lumbarn {

/// Forms in which a stream can be written.
enum class Format : std::uint8_t {
  /// Aligned columns for people, units in a second header line. Float64 with the metadata "display" "float32"
  /// has the digits of a single.
  Table,
  Csv,          ///< RFC 4180: one header line, lines end in CR LF, no value is an empty field
  Json,         ///< an array with one object for each row
  Ndjson,       ///< one object for each line
  ArrowFile,    ///< Arrow's IPC file, with types, units and all else that is known of the columns
  ArrowStream,  ///< the same to be read while it is written
};

struct WriteOptions {
  Format format = Format::Csv;
  bool unitRow = false;  ///< csv: a second header line; json: {"units": {...}, "rows": [...]}
  unsigned threads = 0;  ///< that make text of numbers; 0: one for each core, 8 at most
};

/// Where the bytes go.
class LUMBARN_API Sink {
 public:
  virtual ~Sink();
  /// Takes all bytes; throws Error System when it cannot.
  virtual void write(std::span<const std::byte> bytes) = 0;
  /// Called where rows are complete and more may take long.
  virtual void flush() {}
};

/// Writes a stream to its end, a batch at a time. Numbers are in the shortest form that reads back to the
/// same value of their type. Values that are not numbers are an empty field in csv and null in json, as are
/// infinities in json. A FixedList has a column for each of its values, named by its metadata "items"
/// (separated by commas), or by its name with ".1" and so on; in json it is an array.
///
/// Where the stream ends in an Error, the rows before it are written and the Error is thrown; what was
/// written is then no complete json text or Arrow file, so that nobody takes it for all there is.
LUMBARN_API void write(Stream&& stream, Sink& sink, const WriteOptions& options = {});

/// The same to a file, which appears under its name when it is complete. Where the stream ends in an Error
/// there is no new file, and one that was there before is unchanged.
LUMBARN_API void write(Stream&& stream, const std::string& path, const WriteOptions& options = {});

/// A moment as ISO text, "2001-07-01T06:30:00", with a fraction of a second only where it has one.
LUMBARN_API std::string isoText(LocalMoment moment);

}  // namespace lumbarn
