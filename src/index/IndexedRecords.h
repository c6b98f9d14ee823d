#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "../record/RecordCursor.h"
#include "RestartIndex.h"

namespace lumbarn {

class Session;

/// Single records of the files of an index, of which it keeps the last one open.
class IndexedRecords {
 public:
  explicit IndexedRecords(const Session& session) : session_(&session) {}

  /// Throws BadRecord when the file cannot be read.
  RecordCursor& open(const std::string& path);
  /// Makes the record of an entry the current one of a cursor. Throws BadRecord when its file cannot be read,
  /// is not as it was when it was indexed, or has another record there. The record that is the current one
  /// already is not looked for again.
  RecordCursor& moveTo(const RestartIndex& index, const IndexStep& step, const IndexEntry& entry);

 private:
  const Session* session_;
  std::unique_ptr<RecordCursor> cursor_;
  std::optional<std::uint64_t> current_;  // position of the record that `moveTo` moved the cursor to
};

}  // namespace lumbarn
