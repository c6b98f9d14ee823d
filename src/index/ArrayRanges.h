#pragma once

#include <utility>

#include "../support/Session.h"
#include "IndexedRecords.h"
#include "RestartIndex.h"

namespace lumbarn {

/// Smallest and largest values of the records of an index, as singles; 0 when none of the values is a number.
/// Those that the index does not have are found by reading, a piece at a time.
class ArrayRanges {
 public:
  ArrayRanges(const RestartIndex& index, const Session& session)
      : index_(index), session_(session), records_(session) {}

  /// Throws BadRecord and LoadCanceled.
  std::pair<float, float> of(const IndexStep& step, const IndexEntry& entry);

 private:
  RecordCursor& moveTo(const IndexStep& step, const IndexEntry& entry);

  const RestartIndex& index_;
  const Session& session_;
  IndexedRecords records_;
};

}  // namespace lumbarn
