#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Form.h"
#include "RecordHeader.h"

namespace lumbarn {

/// Takes the bytes that a writer makes, in order.
using ByteSink = std::function<void(std::span<const std::byte>)>;

/// Writes keyword records in any of the on-disk forms.
class RecordWriter {
 public:
  RecordWriter(ByteSink sink, Form form) : sink_(std::move(sink)), form_(form) {}

  void integers(std::string_view keyword, std::span<const std::int32_t> values);
  void singles(std::string_view keyword, std::span<const float> values);
  void doubles(std::string_view keyword, std::span<const double> values);
  void logicals(std::string_view keyword, std::span<const bool> values);
  /// CHAR with width 8, C0nn with any other width; texts are cut or padded with blanks.
  void texts(std::string_view keyword, std::span<const std::string> values, int width = 8);
  /// A record whose data follow in parts, of the type that goes with the word. Parts, other than the last,
  /// have a multiple of `partUnit` elements.
  void begin(std::string_view keyword, std::int64_t count, std::string_view typeWord);
  static constexpr std::int64_t partUnit = 21000;  // whole blocks of 1000 and of 105
  void addIntegers(std::span<const std::int32_t> values);
  void addShorts(std::span<const std::int32_t> values);
  void addSingles(std::span<const float> values);
  void addDoubles(std::span<const double> values);
  /// Words as they are; in a formatted file any word but 0 is true.
  void addLogicals(std::span<const std::int32_t> words);
  void addTexts(std::span<const std::string> values, std::int32_t width);

  /// MESS: a header without data.
  void message(std::string_view keyword);
  /// A header alone, whatever it says; for damaged and unusual files.
  void header(std::string_view keyword, std::int32_t count, std::string_view typeWord);

 private:
  template <class T, class Format, class Bytes>
  void add(std::span<const T> values, ElementType type, std::int32_t width, Format format, Bytes bytes);
  template <class Word>
  void putWords(std::vector<std::byte>& data, std::span<const Word> words) const;
  void block(std::span<const std::byte> data);
  void line(std::string text);

  ByteSink sink_;
  Form form_;
};

/// A sink that appends to `bytes`, which must outlive it.
ByteSink memorySink(std::vector<std::byte>& bytes);

}  // namespace lumbarn
