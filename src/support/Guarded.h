#pragma once

#include <exception>
#include <type_traits>
#include <utility>

#include "Session.h"

namespace lumbarn {

/// Reports the exception in flight in the one form "Error:" text " (No." number ") In [Class (Code)
/// (Routine)] "; damage met by the record layer goes to the diagnoses instead, as it is no fault of the
/// program.
void reportCurrentException(Session& session, const char* className, const char* routine) noexcept;

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

}  // namespace lumbarn
