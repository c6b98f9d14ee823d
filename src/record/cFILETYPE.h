#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "../support/Session.h"
#include "RecordCursor.h"

namespace lumbarn {

/// The file-type descriptor: form, settings and position of one open file. Made new for each file; the
/// operations that open, read and close it are those of `Quarnet`.
class cFILETYPE {
 public:
  explicit cFILETYPE(Session& session = Session::process());

  bool Formatted = false;         ///< text lines
  bool FORTRAN = true;            ///< records have marks; False for raw scratch files
  bool UNIX = true;               ///< 4-byte marks; False: 1-byte marks. Without meaning when Formatted
  bool byteSwap = true;           ///< byte order differs from the machine's
  std::int32_t IOMethod;          ///< from the session; carried, not interpreted
  bool UseBufferedInput = false;  ///< by file kind, see `usesBufferedInput`; steers progress only: input is
                                  ///< always read through one window

  void SetProgressTarget(Progress* target) { progress_ = target; }
  /// A set of n files will be read.
  void SetProgressFiles(std::int32_t n, bool& qOK);
  void StepProgressFile(bool& qOK);
  /// Tells the share of the file that has been read.
  void StepProgress();

  /// Moves to a byte position, counted from 1.
  void SeekByte(std::int32_t iPos);
  /// The same, low and high word; -1 in both leaves the position as it is.
  void SeekByte64(std::int32_t iPos, std::int32_t iPosHigh);
  /// The current position, counted from 1.
  void GetPosition64(std::int32_t& iPos, std::int32_t& iPosHigh);
  /// False once the last record has been read.
  void MoreData(bool& qMore);

  Form form() const;

 private:
  friend class Quarnet;
  std::uint64_t position();

  Session* session_;
  Progress* progress_ = nullptr;
  std::shared_ptr<const ByteSource> source_;
  std::unique_ptr<RecordCursor> cursor_;  // record files
  std::uint64_t rawPosition_ = 0;         // raw access
  bool raw_ = false;                      // the last access was raw: rawPosition_ counts
  std::shared_ptr<OutputFile> output_;
};

/// `UseBufferedInput` by file-kind code: True for 1, 12, 13, 14, 15, 18, 23, 27, 28, 32, 43 and 391.
bool usesBufferedInput(std::int32_t fileKindCode);

/// A 64-bit position as the two words that hosts keep, and back. -1 in both words is no position.
struct PositionWords {
  std::int32_t low = -1;
  std::int32_t high = -1;
};
PositionWords toWords(std::uint64_t position);
std::uint64_t fromWords(PositionWords words);

}  // namespace lumbarn
