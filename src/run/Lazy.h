#pragma once

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "../frame/Stream.h"
#include "../support/Session.h"

namespace lumbarn {

/// Something that is read from a run's files when it is first needed, once, and shared by all questions. What
/// was reported when it was read is reported to each question that uses it. Questions of several threads wait
/// for the first one; a read that fails or is stopped is tried again by the next.
template <class T>
class Lazy {
 public:
  /// `read` takes the session of the question and gives a T; it may throw.
  template <class Read>
  std::shared_ptr<const T> get(StreamContext& context, Read&& read) const {
    const std::lock_guard lock(mutex_);
    if (value_) {
      for (const Diagnosis& report : reports_) context.note(report);
      return value_;
    }
    std::vector<Diagnosis> reports;
    auto value =
        context.recorded(reports, [&] { return std::make_shared<const T>(read(context.session())); });
    if (context.session().cancelled()) throw LoadCanceled();
    value_ = std::move(value);
    reports_ = std::move(reports);
    return value_;
  }

 private:
  mutable std::mutex mutex_;
  mutable std::shared_ptr<const T> value_;
  mutable std::vector<Diagnosis> reports_;
};

}  // namespace lumbarn
