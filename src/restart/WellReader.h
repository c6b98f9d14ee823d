#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "../index/IndexedRecords.h"
#include "../index/RestartIndex.h"
#include "../support/Session.h"
#include "WellRecords.h"

namespace lumbarn {

struct StepData;

/// Reads the wells of report steps at the places that an index has, and nothing else of the steps.
class WellReader {
 public:
  WellReader(std::shared_ptr<const RestartIndex> index, Session& session)
      : session_(&session), index_(std::move(index)), records_(session) {}

  /// The wells of one grid of a step of the index, with the extended records, in the order of the file; the
  /// empty name is the global grid. Rates that the file does not have are no numbers. A record that is
  /// damaged or does not fit the header is reported and counts as one that is missing. Throws BadRecord when
  /// the file cannot be read or was changed.
  std::vector<WellRecord> read(const IndexStep& step, std::string_view grid);

 private:
  void report(Diagnosis diagnosis);
  void take(StepData& wells, const IndexStep& step, const IndexEntry& entry);

  Session* session_;
  std::shared_ptr<const RestartIndex> index_;
  IndexedRecords records_;
};

}  // namespace lumbarn
