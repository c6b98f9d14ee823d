#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "../support/Session.h"

namespace lumbarn {

/// Fills an array from the words of a deck. It is as long as there are values, so that a deck which states a
/// large grid and has few values takes little memory.
template <class T>
class HostArray {
 public:
  /// Values go behind the first `at`; `end` is how many the array may have. Room for `expected` of them is
  /// made at once, for others as they come, all within the limit of the session.
  HostArray(std::vector<T>& array, std::size_t at, std::size_t end, const Session& session,
            std::size_t expected = 0);

  /// The words of a line up to its "/", divided by blanks. Throws Fault 9 behind the last value that the
  /// array may have, where integers go on, and Fault 13 for a count of integers without a value.
  void takeLine(std::string_view line);
  void takeWord(std::string_view word);

  std::size_t placed() const { return at_; }
  bool full() const { return at_ >= end_; }
  /// The first word since the last call that is not a number as a whole; empty when there was none.
  std::string_view changed();

 private:
  void put(std::int64_t count, T value);
  void makeRoom(std::size_t size);
  bool roomForOne() const { return at_ == array_->size() && at_ < end_ && at_ < array_->capacity(); }
  T valueOf(std::string_view word, bool& whole) const;

  std::vector<T>* array_;
  std::size_t at_;
  std::size_t end_;
  const Session* session_;
  std::string_view changed_;
};

/// How many values of integers may be placed behind the end of an array.
inline constexpr std::size_t hostArrayOverrun = 1'000'000;

}  // namespace lumbarn
