#include "Session.h"

#include "Fault.h"

namespace lumbarn {

Progress::~Progress() = default;

const char* LoadCanceled::what() const noexcept { return "canceled"; }

Session& Session::process() {
  static Session session;
  return session;
}

void Session::diagnose(Diagnosis diagnosis) {
  if (diagnosisSink) diagnosisSink(diagnosis);
  if (diagnoses_.size() == keptDiagnoses) diagnoses_.pop_front();
  diagnoses_.push_back(std::move(diagnosis));
}

void Session::checkMemory(std::size_t bytes) const {
  if (memoryLimit != 0 && bytes > memoryLimit) throw Fault(FaultNumber::OutOfMemory);
}

}  // namespace lumbarn
