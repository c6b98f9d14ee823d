#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "../support/Export.h"
#include "ByteSource.h"
#include "Form.h"
#include "KeywordCounts.h"
#include "KeywordTypes.h"
#include "RecordHeader.h"

namespace lumbarn {

class Codec;
class Session;
class Window;
struct DataLayout;

/// A stretch of a file in which no record was found, as byte offsets; `to` is the size of the file when no
/// record follows.
struct Gap {
  std::uint64_t from = 0;
  std::uint64_t to = 0;
};

/// Walks the records of one file. `next` moves from header to header and skips data that was not read, in
/// time that does not depend on its size; `read` decodes the data of the current record straight into the
/// caller's array, and may be called for parts, in any order, any number of times. Whatever is wrong with the
/// file ends in BadRecord, with path, keyword, occurrence, byte offset, what was expected and what was found.
class LUMBARN_API RecordCursor {
 public:
  RecordCursor(std::shared_ptr<const ByteSource> source, Form form, std::string path);
  ~RecordCursor();
  RecordCursor(RecordCursor&&) noexcept;
  RecordCursor& operator=(RecordCursor&&) noexcept;

  /// Sets the type of the file, so that `next` throws BadRecord at a keyword whose type or length is not what
  /// that type of file has (KeywordTypes.h), and the session whose cancel flag is polled within long records:
  /// then anything here may throw LoadCanceled.
  void attach(const Session& session, RecordFile file = RecordFile::Any);

  /// Moves to the next header. False at the end of the file. Checks that the data that the header announces
  /// can be there, so that `header().count` is safe to allocate for.
  bool next();
  const RecordHeader& header() const { return header_; }
  /// How often the current keyword has been met by `next` so far, this record included.
  std::int64_t occurrence() const { return occurrence_; }

  /// The byte offset, from 0, at which `next` will look: the end of the current record's data.
  std::uint64_t nextPosition() const { return next_; }
  /// Makes `next` look at this byte offset, from 0.
  void seek(std::uint64_t headerPosition) { next_ = headerPosition; }
  /// Tells that all of the file will be read, in order, so that it comes in large pieces: right for files of
  /// many small records, wrong where data are skipped.
  void readAhead();
  /// After BadRecord: makes `next` continue at the next sound header behind the damage, or at the end of the
  /// file, and gives what was passed over, from the damaged record on.
  Gap skipDamage();
  /// Throws BadRecord (FileChanged) when the file is not the one that was opened, or was truncated or
  /// rewritten since. To be called at the end of a load, and before a file is read again. Growth is not a
  /// change.
  void checkUnchanged() const;
  /// Makes `next` find the current record once more, as if it had not been met.
  void unread();
  /// Where the cursor stands and what it has met, to come back to after a look ahead.
  struct Mark {
    std::uint64_t next = 0;
    KeywordCounts met;
  };
  /// What `next` meets from here on until `goBack` is remembered, so that the second walk does not read it
  /// again.
  Mark mark();
  void goBack(Mark mark);
  std::uint64_t fileSize() const { return source_->size(); }
  const std::string& path() const { return path_; }
  const Form& form() const { return form_; }

  /// Elements [first, first + out.size()) of the current record, which must be of the type that goes with the
  /// array: Single, Double, Integer or Short. Throws Fault 13 for another type, Fault 9 for elements that are
  /// not there.
  void read(std::span<float> out, std::int64_t first = 0);
  void read(std::span<double> out, std::int64_t first = 0);
  void read(std::span<std::int32_t> out, std::int64_t first = 0);
  /// Logicals as -1 and 0.
  void readLogicals(std::span<std::int16_t> out, std::int64_t first = 0);
  /// Texts as they stand, `header().width` bytes each, one after the other.
  void readText(std::span<char> out, std::int64_t first = 0);
  /// The elements with these numbers (from 0, ascending) of a record whose type goes with the array: Single,
  /// Double or Integer. Reads no more of the file than it must.
  void gather(std::span<const std::uint32_t> elements, std::span<float> out);
  void gather(std::span<const std::uint32_t> elements, std::span<double> out);
  void gather(std::span<const std::uint32_t> elements, std::span<std::int32_t> out);

  /// The whole data of the current record.
  std::vector<std::int32_t> integers();
  std::vector<float> singles();
  std::vector<double> doubles();
  std::vector<std::string> texts();  ///< trimmed on both sides

  /// True when the current record's data are laid out as the format has it, so that places follow from
  /// arithmetic.
  bool regular() const;
  /// Takes a header that is known from elsewhere as the current one. `checked` tells that `next` has walked
  /// over this record before and found it regular: then nothing is read here, and `next` does not move behind
  /// it.
  void setCurrent(const RecordHeader& header, bool checked = false);

 private:
  template <class Body>
  auto located(Body&& body);
  bool readHeader(std::uint64_t position);
  bool takeAhead();
  void gather(ElementType wanted, std::span<const std::uint32_t> elements, std::size_t room, std::byte* out);
  void decode(ElementType wanted, std::int64_t first, std::size_t count, void* out);

  std::shared_ptr<const ByteSource> source_;
  Form form_;
  std::string path_;
  std::unique_ptr<Window> window_;
  std::unique_ptr<const Codec> codec_;
  std::unique_ptr<DataLayout> layout_;  // of the current record
  RecordHeader header_;
  RecordFile file_ = RecordFile::Any;
  std::uint64_t start_ = 0;  // where `next` looked last
  std::uint64_t next_ = 0;
  std::int64_t occurrence_ = 0;
  std::uint32_t gathers_ = 0;
  KeywordCounts met_;

  struct Ahead;
  std::vector<Ahead> ahead_;  // records met between `mark` and `goBack`, in the order of the file
  std::size_t nextAhead_ = 0;
  bool lookingAhead_ = false;
};

/// A cursor on a file, its form found by content. On failure null, with the reason in `why`.
LUMBARN_API std::unique_ptr<RecordCursor> openRecords(const std::string& path, std::string& why);

}  // namespace lumbarn
