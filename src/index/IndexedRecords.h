#pragma once

#include <memory>

#include "../record/RecordCursor.h"
#include "RestartIndex.h"

namespace lumbarn {

class Session;

/// Single records of the files of an index, of which it keeps the last one open.
class IndexedRecords {
 public:
  explicit IndexedRecords(const Session& session) : session_(&session) {}

  /// Makes the record of an entry the current one of a cursor. Throws BadRecord when its file cannot be read,
  /// is not as it was when it was indexed, or has another record there.
  RecordCursor& moveTo(const RestartIndex& index, const IndexStep& step, const IndexEntry& entry);

 private:
  const Session* session_;
  std::unique_ptr<RecordCursor> cursor_;
};

}  // namespace lumbarn
