#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Form.h"

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
  /// MESS: a header without data.
  void message(std::string_view keyword);
  /// A header alone, whatever it says; for damaged and unusual files.
  void header(std::string_view keyword, std::int32_t count, std::string_view typeWord);

 private:
  template <class T, class Format, class Bytes>
  void record(std::string_view keyword, std::span<const T> values, std::string_view typeWord, Format format,
              Bytes bytes);
  void block(std::span<const std::byte> data);
  void line(std::string text);

  ByteSink sink_;
  Form form_;
};

/// A sink that appends to `bytes`, which must outlive it.
ByteSink memorySink(std::vector<std::byte>& bytes);

}  // namespace lumbarn
