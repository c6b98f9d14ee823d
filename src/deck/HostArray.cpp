#include "HostArray.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>

#include "../support/Fault.h"
#include "ECLCommonFunctions.h"
#include "HostNumbers.h"

namespace lumbarn {

template <class T>
HostArray<T>::HostArray(std::vector<T>& array, std::size_t at, std::size_t end, const Session& session,
                        std::size_t expected)
    : array_(&array), at_(at), end_(end), session_(&session) {
  if (at > array.size()) throw Fault(FaultNumber::Subscript);
  makeRoom(std::min(expected, end));
}

template <class T>
void HostArray<T>::makeRoom(std::size_t size) {
  if (size <= array_->capacity()) return;
  const std::size_t room = std::max(size, std::min(end_, 2 * array_->capacity()));
  session_->checkMemory(room * sizeof(T));
  array_->reserve(room);
}

template <class T>
void HostArray<T>::takeLine(std::string_view line) {
  line = line.substr(0, line.find('/'));
  for (std::size_t at = line.find_first_not_of(' '); at < line.size();) {
    std::size_t end = at;
    if constexpr (!std::is_integral_v<T>) {
      // Nearly all words: one number and a blank, in an array that has room.
      T value = 0;
      end += takeHostNumber(line.substr(at), value);
      if (end > at && (end == line.size() || line[end] == ' ') && roomForOne() && std::isfinite(value)) {
        array_->push_back(value);
        ++at_;
        at = line.find_first_not_of(' ', end);
        continue;
      }
    }
    end = std::min(line.find(' ', end), line.size());
    takeWord(line.substr(at, end - at));
    at = line.find_first_not_of(' ', end);
  }
}

template <class T>
void HostArray<T>::takeWord(std::string_view word) {
  bool whole = true;
  const std::size_t star = word.find('*');
  if (star == word.npos) {
    const T value = valueOf(word, whole);
    if (!whole && changed_.empty()) changed_ = word;
    put(1, value);
    return;
  }
  const std::int32_t count = hostRounded(hostDouble(word.substr(0, star), whole));
  const std::string_view text = word.substr(star + 1);
  T value = 0;
  if constexpr (std::is_integral_v<T>) {
    const auto number = hostNumber(text);
    if (!number) throw Fault(FaultNumber::TypeMismatch);
    value = hostRounded(*number);
  } else if (!text.empty()) {
    value = valueOf(text, whole);
  }
  if (!whole && changed_.empty()) changed_ = word;
  put(count, value);
}

template <class T>
T HostArray<T>::valueOf(std::string_view word, bool& whole) const {
  if constexpr (std::is_same_v<T, float>) {
    return hostSingle(word, whole);
  } else if constexpr (std::is_same_v<T, double>) {
    return hostDouble(word, whole);
  } else {
    const auto number = hostNumber(word);
    if (!number) whole = false;
    return number ? hostRounded(*number) : deckDefault;
  }
}

template <class T>
void HostArray<T>::put(std::int64_t count, T value) {
  if (count < 1) return;
  // Deliberate: only arrays of integers grow.
  const std::size_t end = std::is_integral_v<T> ? std::max(end_, at_) + hostArrayOverrun : end_;
  const auto wanted = static_cast<std::size_t>(count);
  const std::size_t fits = std::min(wanted, end - std::min(end, at_));
  const std::size_t over = std::min(fits, array_->size() - at_);
  std::fill_n(array_->begin() + static_cast<std::ptrdiff_t>(at_), over, value);
  const std::size_t size = at_ + fits;
  makeRoom(size);
  if (size > array_->size()) array_->resize(size, value);
  at_ = size;
  if (fits == wanted) return;
  throw Fault(std::is_integral_v<T> ? FaultNumber::OutOfMemory : FaultNumber::Subscript);
}

template <class T>
std::string_view HostArray<T>::changed() {
  return std::exchange(changed_, {});
}

template class HostArray<float>;
template class HostArray<double>;
template class HostArray<std::int32_t>;

}  // namespace lumbarn
