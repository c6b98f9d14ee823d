#pragma once

#include <string>
#include <vector>

#include "../files/Families.h"
#include "../summary/SummaryRun.h"
#include "Lazy.h"

namespace lumbarn {

/// What was read of a run's summary so far. `sparse`: few values of each row will be read. All throw Error
/// NotFound when the run has no such files, Damaged when nothing of them can be read.
class SummaryState {
 public:
  explicit SummaryState(const RunFamily& family) : family_(family) {}

  std::shared_ptr<const SummarySpec> specification(StreamContext& context) const;
  std::shared_ptr<const SummaryRun> run(StreamContext& context, bool sparse) const;
  /// The runs that it restarted from, latest first.
  std::shared_ptr<const std::vector<SummaryRun>> earlierRuns(StreamContext& context, bool sparse) const;

 private:
  std::string specificationPath() const;

  const RunFamily& family_;
  Lazy<std::shared_ptr<const SummarySpec>> specification_;
  Lazy<SummaryRun> run_;
  Lazy<std::vector<SummaryRun>> earlier_;
};

}  // namespace lumbarn
