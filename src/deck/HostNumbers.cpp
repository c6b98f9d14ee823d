#include "HostNumbers.h"

#include <array>
#include <cmath>
#include <limits>

#include <fast_float/fast_float.h>

#include "../support/Fault.h"
#include "../text/DeckLine.h"

namespace lumbarn {

namespace {

/// How long a number may be whose exponent begins with D; none in use comes near.
constexpr std::size_t longestCopy = 64;

std::size_t digitsAt(std::string_view text, std::size_t at) {
  std::size_t end = at;
  while (end < text.size() && isDeckDigit(text[end])) ++end;
  return end - at;
}

/// Where a number begins in a text: behind tabs and a "+". Texts such as "inf" are none.
std::size_t numberAt(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of('\t'), text.size());
  std::size_t at = begin;
  const bool sign = at < text.size() && (text[at] == '+' || text[at] == '-');
  if (sign) ++at;
  const std::size_t digit = at < text.size() && text[at] == '.' ? at + 1 : at;
  if (digitsAt(text, digit) == 0) return text.npos;
  return sign && text[begin] == '+' ? at : begin;
}

/// The length of an exponent such as "D+05" in front of a text.
std::size_t exponentOfD(std::string_view text) {
  if (text.empty() || (text[0] != 'D' && text[0] != 'd')) return 0;
  const std::size_t at = text.size() > 1 && (text[1] == '+' || text[1] == '-') ? 2 : 1;
  const std::size_t digits = digitsAt(text, at);
  return digits == 0 ? 0 : at + digits;
}

template <class Real>
std::size_t take(std::string_view text, Real& value) {
  value = 0;
  const std::size_t begin = !text.empty() && isDeckDigit(text[0]) ? 0 : numberAt(text);
  if (begin == text.npos) return 0;
  const char* first = text.data() + begin;
  const char* stop = fast_float::from_chars(first, text.data() + text.size(), value).ptr;
  const auto length = static_cast<std::size_t>(stop - first);
  const std::size_t odd = begin + length < text.size() ? exponentOfD(text.substr(begin + length)) : 0;
  if (odd == 0 || length + odd > longestCopy) return begin + length;
  std::array<char, longestCopy> copy{};
  std::copy(first, first + length + odd, copy.begin());
  copy[length] = 'E';
  // A number that has an exponent already keeps it.
  const auto again = fast_float::from_chars(copy.data(), copy.data() + length + odd, value);
  return begin + static_cast<std::size_t>(again.ptr - copy.data());
}

template <class Real>
Real valueOf(std::string_view word, bool& whole) {
  Real value = 0;
  const std::size_t taken = take(word, value);
  if (std::isinf(value)) throw Fault(FaultNumber::Overflow);
  if (taken == 0 || word.find_first_not_of('\t', taken) != word.npos) whole = false;
  return value;
}

}  // namespace

std::size_t takeHostNumber(std::string_view text, float& value) { return take(text, value); }
std::size_t takeHostNumber(std::string_view text, double& value) { return take(text, value); }
float hostSingle(std::string_view word, bool& whole) { return valueOf<float>(word, whole); }
double hostDouble(std::string_view word, bool& whole) { return valueOf<double>(word, whole); }

std::optional<double> hostNumber(std::string_view text) {
  const std::size_t end = text.find_last_not_of(" \t");
  const std::size_t begin = text.find_first_not_of(" \t");
  if (begin == text.npos) return std::nullopt;
  text = text.substr(begin, end + 1 - begin);
  double value = 0;
  if (take(text, value) != text.size() || std::isinf(value)) return std::nullopt;
  return value;
}

std::int32_t hostRounded(double value) {
  const double rounded = std::nearbyint(value);
  if (!(rounded >= std::numeric_limits<std::int32_t>::min() &&
        rounded <= std::numeric_limits<std::int32_t>::max()))
    throw Fault(FaultNumber::Overflow);
  return static_cast<std::int32_t>(rounded);
}

std::string_view trimBlanks(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == text.npos) return {};
  return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

}  // namespace lumbarn
