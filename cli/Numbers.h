#pragma once

#include <array>
#include <charconv>
#include <string_view>

namespace lumbarn::cli {

/// A number as text in the shortest form that reads back to the same value of its type.
class NumberText {
 public:
  template <class Number>
  explicit NumberText(Number value) {
    const auto result = std::to_chars(text_.data(), text_.data() + text_.size(), value);
    length_ = static_cast<std::size_t>(result.ptr - text_.data());
  }
  std::string_view view() const { return {text_.data(), length_}; }

 private:
  std::array<char, 32> text_;  // the longest is a double, "-2.2250738585072014e-308"
  std::size_t length_;
};

}  // namespace lumbarn::cli
