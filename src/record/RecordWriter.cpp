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

void RecordWriter::begin(std::string_view keyword, std::int64_t count, std::string_view typeWord) {
  constexpr std::int64_t most = std::int64_t{1} << 31;
  if (count >= most) header(keyword, -static_cast<std::int32_t>(count / most), "X231");
  header(keyword, static_cast<std::int32_t>(count % most), typeWord);
}

/// Cuts the values into blocks, and in a formatted file the blocks into lines.
template <class T, class Format, class Bytes>
void RecordWriter::add(std::span<const T> values, ElementType type, std::int32_t width, Format format,
                       Bytes bytes) {
  const auto perBlock = static_cast<std::size_t>(elementsPerBlock(type));
  const auto perLine = static_cast<std::size_t>(lineShape(type, width).perLine);
  for (std::size_t at = 0; at < values.size(); at += perBlock) {
    const auto part = values.subspan(at, std::min(perBlock, values.size() - at));
    if (form_.formatted()) {
      std::string text;
      for (std::size_t i = 0; i < part.size(); ++i) {
        text += format(part[i]);
        if ((i + 1) % perLine == 0 || i + 1 == part.size()) text += '\n';
      }
      sink_(std::as_bytes(std::span(text)));
    } else {
      std::vector<std::byte> data;
      bytes(data, part);
      block(data);
    }
  }
}

/// Words of 4 or 8 bytes as they are in the file.
template <class Word>
void RecordWriter::putWords(std::vector<std::byte>& data, std::span<const Word> words) const {
  data.resize(words.size_bytes());
  if (!form_.byteSwap) {
    std::memcpy(data.data(), words.data(), data.size());
  } else if constexpr (sizeof(Word) == 4) {
    copySwapped4(data.data(), words.data(), words.size());
  } else {
    copySwapped8(data.data(), words.data(), words.size());
  }
}

void RecordWriter::addIntegers(std::span<const std::int32_t> values) {
  add(
      values, ElementType::Integer, 4, [](std::int32_t v) { return fmt::format("{:12}", v); },
      [this](auto& data, auto part) { putWords(data, part); });
}

void RecordWriter::addShorts(std::span<const std::int32_t> values) {
  add(
      values, ElementType::Short, 2, [](std::int32_t v) { return fmt::format("{:12}", v); },
      [this](auto& data, auto part) {
        for (const std::int32_t value : part) putWord(data, static_cast<std::int16_t>(value), form_.byteSwap);
      });
}

void RecordWriter::addSingles(std::span<const float> values) {
  add(
      values, ElementType::Single, 4, [](float v) { return fmt::format("{:>17}", fraction(v, 8, 'E')); },
      [this](auto& data, auto part) { putWords(data, part); });
}

void RecordWriter::addDoubles(std::span<const double> values) {
  add(
      values, ElementType::Double, 8, [](double v) { return fmt::format("{:>23}", fraction(v, 14, 'D')); },
      [this](auto& data, auto part) { putWords(data, part); });
}

void RecordWriter::addLogicals(std::span<const std::int32_t> words) {
  add(
      words, ElementType::Logical, 4, [](std::int32_t v) { return std::string(v != 0 ? "  T" : "  F"); },
      [this](auto& data, auto part) { putWords(data, part); });
}

void RecordWriter::addTexts(std::span<const std::string> values, std::int32_t width) {
  const auto size = static_cast<std::size_t>(width);
  add(
      values, ElementType::Text, width, [size](const auto& v) { return " '" + cut(v, size) + "'"; },
      [size](auto& data, auto part) {
        for (const auto& value : part) {
          for (const char c : cut(value, size)) data.push_back(static_cast<std::byte>(c));
        }
      });
}

void RecordWriter::integers(std::string_view keyword, std::span<const std::int32_t> values) {
  begin(keyword, static_cast<std::int64_t>(values.size()), "INTE");
  addIntegers(values);
}

void RecordWriter::singles(std::string_view keyword, std::span<const float> values) {
  begin(keyword, static_cast<std::int64_t>(values.size()), "REAL");
  addSingles(values);
}

void RecordWriter::doubles(std::string_view keyword, std::span<const double> values) {
  begin(keyword, static_cast<std::int64_t>(values.size()), "DOUB");
  addDoubles(values);
}

void RecordWriter::logicals(std::string_view keyword, std::span<const bool> values) {
  begin(keyword, static_cast<std::int64_t>(values.size()), "LOGI");
  std::vector<std::int32_t> words;
  for (const bool value : values) words.push_back(value ? -1 : 0);
  addLogicals(words);
}

void RecordWriter::texts(std::string_view keyword, std::span<const std::string> values, int width) {
  begin(keyword, static_cast<std::int64_t>(values.size()),
        width == 8 ? "CHAR" : fmt::format("C{:03}", width));
  addTexts(values, width);
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
