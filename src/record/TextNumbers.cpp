#include "TextNumbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>

#include <fast_float/fast_float.h>

namespace lumbarn {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isSign(char c) { return c == '+' || c == '-'; }

std::size_t digitsAt(std::string_view text, std::size_t at) {
  std::size_t end = at;
  while (end < text.size() && isDigit(text[end])) ++end;
  return end - at;
}

/// Length of an exponent that a plain number reader does not take: `D+01`, or a sign and three digits with
/// neither a fraction nor more digits behind, since that would be a number of its own.
std::size_t oddExponent(std::string_view text) {
  if (text.empty()) return 0;
  if (text[0] == 'D' || text[0] == 'd') {
    const std::size_t sign = text.size() > 1 && isSign(text[1]) ? 1 : 0;
    const std::size_t digits = digitsAt(text, 1 + sign);
    return digits == 0 ? 0 : 1 + sign + digits;
  }
  if (!isSign(text[0]) || digitsAt(text, 1) != 3) return 0;
  return text.size() > 4 && text[4] == '.' ? 0 : 4;
}

template <class Real>
std::size_t parseWithOddExponent(std::string_view mantissa, std::string_view exponent, Real& value) {
  std::array<char, 80> copy;
  if (mantissa.size() + exponent.size() + 1 > copy.size()) return 0;
  char* end = std::ranges::copy(mantissa, copy.begin()).out;
  *end++ = 'E';
  end = std::ranges::copy(isSign(exponent[0]) ? exponent : exponent.substr(1), end).out;
  fast_float::from_chars(copy.data(), end, value);
  return mantissa.size() + exponent.size();
}

template <class Real>
std::size_t parseReal(std::string_view text, Real& value) {
  const std::size_t plus = !text.empty() && text[0] == '+' ? 1 : 0;
  const char* begin = text.data() + plus;
  const char* end = text.data() + text.size();
  const auto [stop, error] = fast_float::from_chars(begin, end, value);
  if (stop == begin || (error != std::errc{} && error != std::errc::result_out_of_range)) {
    const auto stars = std::min(text.find_first_not_of('*'), text.size());
    if (stars > 0) value = std::numeric_limits<Real>::quiet_NaN();
    return stars;
  }
  const auto taken = static_cast<std::size_t>(stop - text.data());
  if (stop == end || (*stop != 'D' && *stop != 'd' && !isSign(*stop))) return taken;
  const std::string_view mantissa = text.substr(plus, taken - plus);
  const std::size_t odd = oddExponent(text.substr(taken));
  if (odd == 0 || mantissa.find_first_of("Ee") != std::string_view::npos) return taken;
  const auto whole = parseWithOddExponent(mantissa, text.substr(taken, odd), value);
  return whole == 0 ? 0 : whole + plus;
}

}  // namespace

std::size_t parseNumber(std::string_view text, float& value) { return parseReal(text, value); }
std::size_t parseNumber(std::string_view text, double& value) { return parseReal(text, value); }

std::size_t parseNumber(std::string_view text, std::int32_t& value) {
  const std::size_t plus = text.size() > 1 && text[0] == '+' && isDigit(text[1]) ? 1 : 0;
  const char* begin = text.data() + plus;
  const auto [stop, error] = std::from_chars(begin, text.data() + text.size(), value);
  return error == std::errc{} ? static_cast<std::size_t>(stop - text.data()) : 0;
}

}  // namespace lumbarn
