#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Form.h"
#include "RecordHeader.h"
#include "Window.h"

namespace lumbarn {

/// One block of an unformatted record that is not cut in the usual way.
struct DataBlock {
  std::uint64_t firstByte = 0;  ///< of the record's data, counted from 0
  std::uint64_t dataAt = 0;     ///< byte offset in the file
  std::uint64_t bytes = 0;
};

/// Where the data of one record stand in the file.
struct DataLayout {
  enum class Kind {
    Regular,  ///< blocks or lines as the format has them; places follow from arithmetic
    Chunked,  ///< 1-byte marks around pieces of 128 bytes
    Table,    ///< unformatted with blocks of other sizes
    Scanned,  ///< formatted with lines of other lengths
  };
  Kind kind = Kind::Regular;
  std::uint64_t end = 0;           ///< byte offset behind the data
  std::uint64_t lineEndBytes = 1;  ///< formatted: 1, or 2 when lines end in CR LF
  std::vector<DataBlock> table;
};

/// One on-disk form. Stateless; throws BadRecord with offset, expected and found, to which the cursor adds
/// the rest.
class Codec {
 public:
  virtual ~Codec() = default;
  /// Reads the header at a position as it stands. False at the end of the file.
  virtual bool readHeader(Window& window, std::uint64_t position, RecordHeader& header) const = 0;
  /// Finds the data of a record, in constant time when they are laid out as usual.
  virtual DataLayout locate(Window& window, const RecordHeader& header) const = 0;
  /// Decodes elements [first, first + count) to native words at out, each of its own width; Logical and Short
  /// become 32 bits, Logical -1 or 0.
  virtual void decode(Window& window, const RecordHeader& header, const DataLayout& layout,
                      std::int64_t first, std::size_t count, std::byte* out) const = 0;
  /// The offset of the first header at or behind a position that is sound and has plausible data behind it;
  /// the size of the file when there is none. For a file that is damaged before: reads on in order, in time
  /// linear in the bytes passed; memory is limited to the window.
  virtual std::uint64_t findHeader(Window& window, std::uint64_t position) const = 0;
  /// The elements with these ascending numbers, of 32 or 64 bits each, as `decode` gives them.
  virtual void gather(Window& window, const RecordHeader& header, const DataLayout& layout,
                      std::span<const std::uint32_t> elements, std::byte* out) const = 0;
  /// Checks that the data of a record whose layout was found earlier still begin with their mark, in forms
  /// that have marks.
  virtual void checkStart(Window& window, const RecordHeader& header, const DataLayout& layout) const {
    (void)window, (void)header, (void)layout;
  }
};

std::unique_ptr<const Codec> makeCodec(const Form& form);

/// Fills keyword and type of a header from the letters in the file. False when they cannot be a header's: the
/// keyword has characters outside of printable ASCII or the type word is no word of letters and digits.
bool setHeaderWords(RecordHeader& header, std::string_view keyword, std::string_view typeWord);

/// Whether a header that was met in the search for one may be meant: a keyword, a known type, and a count
/// that goes with it.
bool isPlausible(const RecordHeader& header);

/// Throws BadRecord with RecordDamaged and this specific text.
[[noreturn]] void throwBadRecord(std::string problem, std::uint64_t offset, std::string expected,
                                 std::string found);

/// Throws RecordTruncated, for a file that ends before its record does.
[[noreturn]] void throwTruncated(std::uint64_t offset, std::string expected, std::string found);

}  // namespace lumbarn
