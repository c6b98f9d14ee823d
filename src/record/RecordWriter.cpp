#include "RecordWriter.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <fmt/format.h>

#include "FormattedCodec.h"
#include "MarkedCodec.h"
#include "RecordHeader.h"
#include "Swap.h"

namespace lumbarn {

namespace {

/// A number as `0.12345678E+01`: a fraction below 1, and an exponent that loses its letter when it has three
/// digits.
std::string fraction(double value, int digits, char letter) {
  if (!std::isfinite(value)) return fmt::format("{}", value);
  if (value == 0) return fmt::format("{}0.{:0>{}}{}+00", std::signbit(value) ? "-" : "", 0, digits, letter);
  const std::string plain = fmt::format("{:.{}e}", value, digits - 1);  // -1.2345678e+01
  const bool negative = plain[0] == '-';
  const auto e = plain.find('e');
  const std::size_t start = negative ? 1 : 0;
  std::string mantissa = plain.substr(start, e - start);
  mantissa.erase(1, 1);
  const int exponent = std::stoi(plain.substr(e + 1)) + 1;
  const auto power = fmt::format("{}{:02}", exponent < 0 ? '-' : '+', std::abs(exponent));
  return fmt::format("{}0.{}{}{}", negative ? "-" : "", mantissa,
                     power.size() > 3 ? "" : std::string(1, letter), power);
}

std::string cut(std::string_view text, std::size_t width) {
  return fmt::format("{:<{}}", text.substr(0, width), width);
}

template <class Word>
void putWord(std::vector<std::byte>& bytes, Word word, bool swap) {
  std::byte raw[sizeof(Word)];
  std::memcpy(raw, &word, sizeof(Word));
  if (swap) std::reverse(std::begin(raw), std::end(raw));
  bytes.insert(bytes.end(), std::begin(raw), std::end(raw));
}

}  // namespace

/// Cuts the values into blocks, and in a formatted file the blocks into lines.
template <class T, class Format, class Bytes>
void RecordWriter::record(std::string_view keyword, std::span<const T> values, std::string_view typeWord,
                          Format format, Bytes bytes) {
  header(keyword, static_cast<std::int32_t>(values.size()), typeWord);
  const auto [type, width] = typeInfo(typeWord);
  const auto perBlock = static_cast<std::size_t>(elementsPerBlock(type));
  const auto perLine = static_cast<std::size_t>(lineShape(type, width).perLine);
  for (std::size_t at = 0; at < values.size(); at += perBlock) {
    const auto part = values.subspan(at, std::min(perBlock, values.size() - at));
    if (form_.formatted()) {
      for (std::size_t i = 0; i < part.size(); i += perLine) {
        std::string text;
        for (const auto& value : part.subspan(i, std::min(perLine, part.size() - i))) text += format(value);
        line(text);
      }
    } else {
      std::vector<std::byte> data;
      for (const auto& value : part) bytes(data, value);
      block(data);
    }
  }
}

void RecordWriter::integers(std::string_view keyword, std::span<const std::int32_t> values) {
  record(
      keyword, values, "INTE", [](std::int32_t v) { return fmt::format("{:12}", v); },
      [this](auto& data, std::int32_t v) { putWord(data, v, form_.byteSwap); });
}

void RecordWriter::singles(std::string_view keyword, std::span<const float> values) {
  record(
      keyword, values, "REAL", [](float v) { return fmt::format("{:>17}", fraction(v, 8, 'E')); },
      [this](auto& data, float v) { putWord(data, v, form_.byteSwap); });
}

void RecordWriter::doubles(std::string_view keyword, std::span<const double> values) {
  record(
      keyword, values, "DOUB", [](double v) { return fmt::format("{:>23}", fraction(v, 14, 'D')); },
      [this](auto& data, double v) { putWord(data, v, form_.byteSwap); });
}

void RecordWriter::logicals(std::string_view keyword, std::span<const bool> values) {
  record(
      keyword, values, "LOGI", [](bool v) { return std::string(v ? "  T" : "  F"); },
      [this](auto& data, bool v) { putWord(data, std::int32_t{v ? -1 : 0}, form_.byteSwap); });
}

void RecordWriter::texts(std::string_view keyword, std::span<const std::string> values, int width) {
  const auto size = static_cast<std::size_t>(width);
  record(
      keyword, values, width == 8 ? "CHAR" : fmt::format("C{:03}", width),
      [size](const std::string& v) { return " '" + cut(v, size) + "'"; },
      [size](auto& data, const std::string& v) {
        for (const char c : cut(v, size)) data.push_back(static_cast<std::byte>(c));
      });
}

void RecordWriter::message(std::string_view keyword) { header(keyword, 0, "MESS"); }

void RecordWriter::header(std::string_view keyword, std::int32_t count, std::string_view typeWord) {
  if (form_.formatted())
    return line(fmt::format(" '{}'{:12} '{}'", cut(keyword, 8), count, cut(typeWord, 4)));
  std::vector<std::byte> data;
  for (const char c : cut(keyword, 8)) data.push_back(static_cast<std::byte>(c));
  putWord(data, count, form_.byteSwap);
  for (const char c : cut(typeWord, 4)) data.push_back(static_cast<std::byte>(c));
  block(data);
}

/// Puts marks around a block, with 1-byte marks around each piece of it.
void RecordWriter::block(std::span<const std::byte> data) {
  std::vector<std::byte> bytes;
  if (form_.framing == Framing::FourByteMarks) {
    const auto mark = static_cast<std::uint32_t>(data.size());
    putWord(bytes, mark, form_.byteSwap);
    bytes.insert(bytes.end(), data.begin(), data.end());
    putWord(bytes, mark, form_.byteSwap);
    return sink_(bytes);
  }
  while (!data.empty()) {
    const auto piece = data.first(std::min<std::size_t>(data.size(), MarkedCodec::pieceBytes));
    data = data.subspan(piece.size());
    const auto mark = static_cast<std::byte>(data.empty() ? piece.size() : MarkedCodec::pieceContinues);
    bytes.push_back(mark);
    bytes.insert(bytes.end(), piece.begin(), piece.end());
    bytes.push_back(mark);
  }
  sink_(bytes);
}

void RecordWriter::line(std::string text) {
  text += '\n';
  sink_(std::as_bytes(std::span(text)));
}

ByteSink memorySink(std::vector<std::byte>& bytes) {
  return [&bytes](std::span<const std::byte> part) { bytes.insert(bytes.end(), part.begin(), part.end()); };
}

}  // namespace lumbarn
