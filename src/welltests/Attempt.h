#pragma once

#include <optional>
#include <type_traits>
#include <utility>

#include "../support/Guarded.h"

namespace lumbarn {

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
