#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "../record/RecordCursor.h"
#include "../support/Export.h"
#include "../support/Session.h"

namespace lumbarn {

/// The records of one file in order, with one step back: where a test ends is known only from the record that
/// begins the next.
class LUMBARN_API RecordWalk {
 public:
  explicit RecordWalk(RecordCursor cursor) : cursor_(std::move(cursor)) {}

  /// Moves to the next record. False at the end of the file. Throws BadRecord.
  bool next() {
    const bool there = more();
    ahead_ = false;
    return there;
  }
  /// The current record becomes the next one again.
  void stepBack() { ahead_ = true; }
  /// True when another record follows; it is looked at already, so the current one is to be done with.
  bool more() { return ahead_ = ahead_ || cursor_.next(); }
  /// Moves on until the next record is a TIME of singles, over damage too, which is reported with what is
  /// lost. False when there is none.
  bool skipToTest(Session& session);
  /// At the end of the file: reports when it is no longer the file that was opened.
  void checkUnchanged(Session& session);
  /// Reports the current record when its keyword has another type in files of well tests.
  bool reportType(Session& session) const;

  RecordCursor& cursor() { return cursor_; }
  const RecordHeader& header() const { return cursor_.header(); }

  /// To be called for each BadRecord: the cursor must pass the damage before it can be used again.
  void setDamaged() { damaged_ = atDamage_ = true; }
  bool atDamage() const { return atDamage_; }  ///< `skipToTest` comes first
  bool damaged() const { return damaged_; }    ///< some record so far was

  std::size_t recordsRead = 0;  ///< whole ones, by the tests

  // Room that the tests use one after the other.
  /// An array of connection indices, held apart until the table that it goes into is known.
  struct IndexArray {
    std::vector<float> values;  ///< empty: not read, and counts as one 0
    std::uint64_t headerAt = 0;
  };
  std::array<IndexArray, 3> indices;  ///< CONIPOS, CONJPOS, CONKPOS
  std::vector<std::int32_t> integers;
  std::vector<float> singles;

 private:
  bool passDamage(Session& session);
  void setDamaged(BadRecord& damage, Session& session);

  RecordCursor cursor_;
  bool ahead_ = false;
  bool damaged_ = false;
  bool atDamage_ = false;
};

/// A walk over a file in a known form. Null, with the reason in `why`, when it cannot be opened. The file is
/// read in order and in large pieces, as tests are many and their records small.
LUMBARN_API std::unique_ptr<RecordWalk> openWalk(const std::string& path, const Form& form, std::string& why);
/// The same with the form found by content.
LUMBARN_API std::unique_ptr<RecordWalk> openWalk(const std::string& path, std::string& why);

}  // namespace lumbarn
