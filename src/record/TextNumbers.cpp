#include "TextNumbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <limits>
#include <type_traits>

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

/// The value of eight characters, all of which must be digits: sums of neighbours, of pairs, of fours.
bool eightDigits(std::uint64_t word, std::uint64_t& value) {
  constexpr std::uint64_t zeros = 0x3030303030303030;
  if (((word + 0x4646464646464646) | (word - zeros)) & 0x8080808080808080) return false;
  word -= zeros;
  word = (word * 10 + (word >> 8)) & 0x00FF00FF00FF00FF;
  word = (word * 100 + (word >> 16)) & 0x0000FFFF0000FFFF;
  value = (word * 10000 + (word >> 32)) & 0xFFFFFFFF;
  return true;
}

std::uint64_t wordAt(const char* text) {
  std::uint64_t word;
  std::memcpy(&word, text, sizeof word);
  return word;
}

/// The digits behind the point of `0.ddd`: 8 of a single, 14 of a double.
template <class Real>
bool usualDigits(const char* text, std::uint64_t& digits) {
  if constexpr (std::is_same_v<Real, float>) return eightDigits(wordAt(text + 2), digits);
  constexpr std::uint64_t pointToZero = std::uint64_t{'.' ^ '0'} << 8;
  std::uint64_t first;  // "0.dddddd", read as "00dddddd"
  if (!eightDigits(wordAt(text) ^ pointToZero, first) || !eightDigits(wordAt(text + 8), digits)) return false;
  digits += first * 100'000'000;
  return true;
}

/// Reads the one dress in which nearly all numbers of formatted files come, a sign or none, `0.12345678E+01`
/// or `0.12345678901234D+01`, in a fraction of the time that a reader of all dresses takes. The digits and
/// the power of ten are exact doubles here, so that one operation gives the value rounded once. A single is
/// rounded a second time; that this never shows has been tried for all digits and powers. Gives 0 for
/// anything else.
template <class Real>
std::size_t parseUsual(std::string_view text, Real& value) {
  constexpr bool single = std::is_same_v<Real, float>;
  constexpr std::size_t digitCount = single ? 8 : 14;
  constexpr std::size_t length = digitCount + 6;
  constexpr std::array powers{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                              1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  if constexpr (std::endian::native != std::endian::little) return 0;
  const std::size_t minus = !text.empty() && text[0] == '-' ? 1 : 0;
  if (text.size() < minus + length) return 0;
  const char* at = text.data() + minus;
  const char* exponent = at + 2 + digitCount;
  std::uint64_t digits = 0;
  if (at[0] != '0' || at[1] != '.' || !usualDigits<Real>(at, digits)) return 0;
  if (exponent[0] != (single ? 'E' : 'D') || !isSign(exponent[1])) return 0;
  if (!isDigit(exponent[2]) || !isDigit(exponent[3])) return 0;
  if (text.size() > minus + length && isDigit(exponent[4])) return 0;
  const int size = 10 * (exponent[2] - '0') + (exponent[3] - '0');
  const int power = (exponent[1] == '-' ? -size : size) - static_cast<int>(digitCount);
  if (power < -22 || power > 22) return 0;
  const double scale = powers[static_cast<std::size_t>(power < 0 ? -power : power)];
  double product = static_cast<double>(digits);
  product = power < 0 ? product / scale : product * scale;
  value = static_cast<Real>(minus ? -product : product);
  return minus + length;
}

template <class Real>
std::size_t parseReal(std::string_view text, Real& value) {
  if (const auto usual = parseUsual(text, value); usual != 0) return usual;
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
