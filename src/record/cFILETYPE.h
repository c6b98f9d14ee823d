#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "../support/Export.h"
#include "../support/Session.h"
#include "FormFlags.h"
#include "RecordCursor.h"

namespace lumbarn {

/// A 64-bit position as the two words that hosts keep. -1 in both words is no position.
struct PositionWords {
  std::int32_t low = -1;
  std::int32_t high = -1;
  bool isSet() const { return low != -1 || high != -1; }
};
LUMBARN_API PositionWords toWords(std::uint64_t position);
LUMBARN_API std::uint64_t fromWords(PositionWords words);

/// The file-type descriptor: form, settings and position of one open file. Made new for each file; `Quarnet`
/// opens, reads and closes it.
class LUMBARN_API cFILETYPE : public FormFlags {
 public:
  explicit cFILETYPE(Session& session = Session::process()) : IOMethod(session.IOMethod) {}

  std::int32_t IOMethod;  ///< carried, not interpreted: there is one way to read, and it is the fast one
  bool UseBufferedInput =
      false;  ///< by file kind; all input is buffered, so this steers progress reports only

  /// The host's progress display; not owned.
  void SetProgressTarget(Progress* target) { progress_ = target; }
  /// A set of n files will be read, and one of them has been.
  void SetProgressFiles(std::int32_t n, bool& qOK);
  void StepProgressFile(bool& qOK);
  /// Tells the share of the file that has been read.
  void StepProgress();

  /// Moves to a byte position, counted from 1.
  void SeekByte(std::int32_t iPos) { SeekByte64(iPos, 0); }
  /// The same, low and high word; -1 in both leaves the position as it is.
  void SeekByte64(std::int32_t iPos, std::int32_t iPosHigh);
  /// The current position, counted from 1.
  void GetPosition64(std::int32_t& iPos, std::int32_t& iPosHigh) const;
  /// False once the last record has been read; blank characters behind it do not count.
  void MoreData(bool& qMore) const;

 private:
  friend class Quarnet;

  Progress* progress_ = nullptr;
  std::string path_;
  std::shared_ptr<const ByteSource> source_;
  std::unique_ptr<RecordCursor> cursor_;
  std::unique_ptr<OutputFile> output_;
  std::uint64_t position_ = 0;  // from 0
  bool atData_ = false;         // the cursor's current record is the one whose data start here
};

/// `UseBufferedInput` by file-kind code: True for 1, 12, 13, 14, 15, 18, 23, 27, 28, 32, 43 and 391.
LUMBARN_API bool usesBufferedInput(std::int32_t fileKindCode);

}  // namespace lumbarn
