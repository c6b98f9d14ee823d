#pragma once

#include <utility>

#include "Guarded.h"

namespace lumbarn {

/// `guarded`, for a part whose failure its operation outlives: reported in the name of that part. The part's
/// answer; False when it failed.
template <class Body>
bool attempted(Session& session, const char* className, const char* routine, Body&& body) noexcept {
  bool qOK = false;
  guarded(session, qOK, className, routine, std::forward<Body>(body));
  return qOK;
}

}  // namespace lumbarn
