#pragma once

#include <type_traits>
#include <utility>

#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Session.h"

namespace lumbarn {

/// Does some work. Damage that ends it is reported to the session, and the result is empty: false, nullopt.
template <class Work>
std::invoke_result_t<Work> diagnosed(Session& session, Work&& work) {
  try {
    return std::forward<Work>(work)();
  } catch (BadRecord& damage) {
    session.diagnose(std::move(damage.diagnosis()));
    return {};
  }
}

}  // namespace lumbarn
