#pragma once

#include <exception>
#include <optional>
#include <type_traits>
#include <utility>

#include "Export.h"
#include "Fault.h"
#include "Session.h"

namespace lumbarn {

/// Reports the exception in flight in the one form "Error:" text " (No." number ") In [Class (Code)
/// (Routine)] "; damage met by the record layer goes to the diagnoses instead, as it is no fault of the
/// program.
LUMBARN_API void reportCurrentException(Session& session, const char* className,
                                        const char* routine) noexcept;

/// Runs the body of an operation that can fail: qOK is False on entry and takes the body's answer as the last
/// act; a body without an answer succeeds by returning. Nothing is thrown beyond this point.
template <class Body>
void guarded(Session& session, bool& qOK, const char* className, const char* routine, Body&& body) noexcept {
  qOK = false;
  try {
    if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
      std::forward<Body>(body)();
      qOK = true;
    } else {
      qOK = std::forward<Body>(body)();
    }
  } catch (...) {
    reportCurrentException(session, className, routine);
  }
}

/// A fault that is to be reported under the name of the routine in which it occurred.
class LUMBARN_API PlacedFault : public Fault {
 public:
  PlacedFault(const Fault& fault, const char* className, const char* routine)
      : Fault(fault), className_(className), routine_(routine) {}
  ~PlacedFault() override;
  const char* className() const { return className_; }
  const char* routine() const { return routine_; }

 private:
  const char* className_;
  const char* routine_;
};

/// Throws the exception in flight on, as a PlacedFault unless it is one or reports itself in another way.
[[noreturn]] LUMBARN_API void throwPlaced(const char* className, const char* routine);

/// Runs the body of a routine with a name of its own inside an operation: hosts know faults in it by that
/// name, not by that of the operation.
template <class Body>
std::invoke_result_t<Body> inRoutine(const char* className, const char* routine, Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    throwPlaced(className, routine);
  }
}

/// Whether the body of such a routine succeeded: for a step after whose failure, which is reported, its
/// caller goes on.
template <class Body>
bool succeeds(Session& session, const char* className, const char* routine, Body&& body) noexcept {
  bool qOK = false;
  guarded(session, qOK, className, routine, std::forward<Body>(body));
  return qOK;
}

/// What a body returns. After an exception an empty result, and a report in the name of the routine: hosts
/// know faults by the routine in which they occur, also within another operation.
template <class Body>
std::invoke_result_t<Body> attempt(Session& session, const char* className, const char* routine,
                                   Body&& body) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    reportCurrentException(session, className, routine);
    return std::invoke_result_t<Body>();
  }
}

/// Output of an operation: unchanged without a result.
template <class Result>
void give(std::optional<Result> result, Result& out, bool& qOK) {
  qOK = result.has_value();
  if (qOK) out = std::move(*result);
}

}  // namespace lumbarn
