#pragma once

#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <string_view>

namespace lumbarn {

/// A number as text: the fewest digits that read back to the same value of its type.
class NumberText {
 public:
  template <std::integral Number>
  explicit NumberText(Number value, bool = true) {
    end(std::to_chars(begin(), begin() + text_.size(), value));
  }
  /// For people with an exponent only where they expect one: 100000, not 1e+05. Otherwise in the shortest
  /// form.
  template <std::floating_point Number>
  explicit NumberText(Number value, bool forPeople = true) {
    const Number size = std::abs(value);
    const bool plain = forPeople && size >= Number{1e-4F} && size < Number{1e9F};
    end(plain ? std::to_chars(begin(), begin() + text_.size(), value, std::chars_format::fixed)
              : std::to_chars(begin(), begin() + text_.size(), value));
  }
  std::string_view view() const { return {text_.data(), length_}; }

 private:
  char* begin() { return text_.data(); }
  void end(std::to_chars_result result) { length_ = static_cast<std::size_t>(result.ptr - text_.data()); }

  std::array<char, 32> text_;  // the longest is a double, "-2.2250738585072014e-308"
  std::size_t length_;
};

}  // namespace lumbarn
