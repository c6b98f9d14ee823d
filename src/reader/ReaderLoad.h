#pragma once

#include <algorithm>

#include "../support/Guarded.h"
#include "qvEclipseReader.h"

namespace lumbarn {

/// Runs an operation; a fault in it is reported with the file too, which the fault's own text does not name,
/// unless a diagnosis of damage has reported already what happened to the file.
template <class Body>
void qvEclipseReader::perform(const char* routine, bool& qOK, Body body) const {
  constexpr const char* className = "qvEclipseReader";
  const auto faults = session_->faults();
  const std::size_t before = session_->diagnoses().size();
  guarded(*session_, qOK, className, routine, body);
  const auto& diagnoses = session_->diagnoses();
  const auto isDamage = [](const Diagnosis& diagnosis) { return diagnosis.severity() == Severity::Damage; };
  if (session_->faults() == faults || std::any_of(diagnoses.begin() + before, diagnoses.end(), isDamage))
    return;
  bool qReported = false;
  guarded(*session_, qReported, className, routine, [&] {
    session_->diagnose(Diagnosis{.message = Message::SystemFault, .path = FileName, .action = "stopped"});
  });
}

/// What all loads share: what was held of the type is released and what an earlier load set among the options
/// is set back, so that nothing of one file is returned as that of another, also when the load fails.
template <class Read>
void qvEclipseReader::load(Loaded loaded, const char* routine, bool& qOK, Read read) {
  loaded_ = loaded;
  release(loaded);
  restoreOptions();
  optionsBefore_ = foundOptions();
  if (loaded == Loaded::Summary) summaryFetched_ = false;
  perform(routine, qOK, read);
  optionsAfter_ = foundOptions();
}

}  // namespace lumbarn
