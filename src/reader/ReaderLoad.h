#pragma once

#include <algorithm>
#include <type_traits>

#include "../support/Guarded.h"
#include "ReaderParts.h"
#include "qvEclipseReader.h"

namespace lumbarn {

/// Runs an operation; a fault in it is reported with the file too, which the fault's own text does not name,
/// unless a diagnosis of damage has reported already what happened to the file.
template <class Body>
void qvEclipseReader::perform(const char* routine, bool& qOK, Body body) const {
  constexpr const char* className = "qvEclipseReader";
  const auto faults = session_->faults();
  const std::size_t before = session_->diagnoses().size();
  guarded(*session_, qOK, className, routine, [&] {
    try {
      if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
        body();
        return true;
      } else {
        return static_cast<bool>(body());
      }
    } catch (const ReportedFailure&) {
      return false;
    }
  });
  const auto& diagnoses = session_->diagnoses();
  const auto isDamage = [](const Diagnosis& diagnosis) { return diagnosis.severity() == Severity::Damage; };
  if (session_->faults() == faults || std::any_of(diagnoses.begin() + before, diagnoses.end(), isDamage))
    return;
  bool qReported = false;
  guarded(*session_, qReported, className, routine, [&] {
    session_->diagnose(Diagnosis{.message = Message::SystemFault, .path = FileName, .action = "stopped"});
  });
}

template <class Read>
void qvEclipseReader::load(ReaderPart& part, const char* routine, bool& qOK, Read read) {
  parts_->beginLoad(part);
  perform(routine, qOK, read);
  parts_->endLoad();
}

/// Asks a part that must hold something. `ask` takes the part and throws, or takes qOK as well.
template <class Part, class Ask>
void qvEclipseReader::fetch(Part& part, const char* routine, bool& qOK, Ask ask) const {
  perform(routine, qOK, [&] {
    requireHeld(part);
    if constexpr (std::is_invocable_v<Ask, Part&, bool&>) {
      require([&](bool& qDone) { ask(part, qDone); });
    } else {
      ask(part);
    }
  });
}

}  // namespace lumbarn
