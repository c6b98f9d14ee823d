#include "FormattedCodec.h"

#include <algorithm>
#include <cstring>

#include <fmt/format.h>

#include "TextNumbers.h"

namespace lumbarn {

namespace {

constexpr std::size_t longestToken = 80;

/// No writer needs more. Shorter than what is at hand when a number is read, so that the answer does not hang
/// on how much of the file happens to be.
constexpr std::size_t longestNumber = 64;

/// Blanks, line ends and what else separates fields. Not zeros: those are the holes of a file that was never
/// written there.
bool isBlank(char c) { return c != '\0' && static_cast<unsigned char>(c) <= ' '; }

/// More blanks than any writer leaves between two fields or in front of a header.
constexpr std::uint64_t mostBlanks = 4096;

std::string shown(std::string_view text) {
  text = text.substr(0, std::min<std::size_t>(text.find_first_of("\r\n"), 24));
  std::string printable;
  for (const char c : text) printable += c >= ' ' && c <= '~' ? c : '?';
  return '"' + printable + '"';
}

/// Reads characters of a file in order, through the window.
class TextScanner {
 public:
  TextScanner(Window& window, std::uint64_t position, std::uint64_t wanted)
      : window_(&window), position_(position), wanted_(wanted) {}

  std::uint64_t position() const { return position_ + at_; }

  /// Moves to the next character that is no blank and brings at least a token's length, or what is left of
  /// the file, to hand. False at the end of the file.
  bool skipBlanks(std::size_t token = longestToken) {
    const std::size_t first = at_;
    skipBlanksAtHand();
    return text_.size() - at_ >= token || skipMoreBlanks(position_ + first, token);
  }
  /// Whether there are only blanks up to a position; else moves to what is there.
  bool blankTo(std::uint64_t end) {
    while (position() < end && (at_ < text_.size() || refill(1))) {
      if (!isBlank(text_[at_])) return false;
      ++at_;
    }
    return true;
  }
  /// Moves behind the end of the current line if only blanks are left on it.
  void skipLineEnd() {
    while (at_ < text_.size() || refill(1)) {
      const char c = text_[at_];
      if (!isBlank(c)) return;
      ++at_;
      if (c == '\n') return;
    }
  }
  /// The rest of the current line, as far as a header line may be long.
  std::string_view line() {
    if (rest().size() < longestToken) refill(longestToken);
    const auto text = rest().substr(0, longestToken);
    return text.substr(0, text.find('\n'));
  }
  /// Moves to the start of the next line. False at the end of the file.
  bool nextLine() {
    while (at_ < text_.size() || refill(1)) {
      if (text_[at_++] == '\n') return true;
    }
    return false;
  }

  std::string_view rest() const { return text_.substr(at_); }

  /// Tells that what stands here is not what should. In the last line of a file that has no line end it is
  /// what a writer that was stopped leaves.
  [[noreturn]] void fail(const char* problem, const char* expected) const {
    const bool lastLine = rest().find('\n') == std::string_view::npos;
    if (lastLine && position() + rest().size() >= window_->size())
      throwTruncated(position(), expected, shown(rest()));
    throwBadRecord(problem, position(), expected, shown(rest()));
  }
  void take(std::size_t count) { at_ += count; }

 private:
  void skipBlanksAtHand() {
    while (at_ < text_.size() && isBlank(text_[at_])) ++at_;
  }
  bool skipMoreBlanks(std::uint64_t start, std::size_t token) {
    while (!ended_) {
      if (position() - start > mostBlanks) {
        throwBadRecord("blanks instead of a record", start, fmt::format("at most {} blanks", mostBlanks),
                       "more");
      }
      refill(token);
      skipBlanksAtHand();
      if (text_.size() - at_ >= token) return true;
    }
    return at_ < text_.size();
  }
  bool refill(std::size_t needed) {
    const std::uint64_t done = at_;
    position_ += done;
    wanted_ -= std::min(wanted_, done);
    at_ = 0;
    const auto bytes = window_->at(position_, needed, wanted_);
    text_ = {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    ended_ = bytes.size() < needed;
    return !text_.empty();
  }

  Window* window_;
  std::uint64_t position_;  // of text_[0]
  std::uint64_t wanted_;    // characters from position_ on that will be read
  std::string_view text_;
  std::size_t at_ = 0;
  bool ended_ = false;
};

/// The text between quotes at the start of `text`: `width` characters, or fewer from a writer that does not
/// pad. Gives the characters taken, quotes included; 0 when there is no such text.
std::size_t quoted(std::string_view text, std::size_t width, std::string_view& content) {
  if (text.size() < 2 || text[0] != '\'') return 0;
  std::size_t end = width + 1;
  const bool padded = end < text.size() && text[end] == '\'' && text.substr(0, end).find('\n') == text.npos;
  if (!padded) end = text.substr(0, end).find('\'', 1);
  if (end == std::string_view::npos) return 0;
  content = text.substr(1, end - 1);
  return end + 1;
}

/// Takes a header at the start of `text`: 'KEYWORD ' count 'TYPE'. Gives the characters taken, 0 when there
/// is none.
std::size_t parseHeader(std::string_view text, RecordHeader& header) {
  std::string_view keyword;
  std::size_t at = quoted(text, 8, keyword);
  if (at == 0) return 0;
  const auto skip = [&] {
    while (at < text.size() && text[at] == ' ') ++at;
  };
  skip();
  std::int32_t count = 0;
  const std::size_t digits = parseNumber(text.substr(at), count);
  if (digits == 0) return 0;
  at += digits;
  skip();
  std::string_view typeWord;
  const std::size_t letters = quoted(text.substr(at), 4, typeWord);
  if (letters == 0 || !setHeaderWords(header, keyword, typeWord)) return 0;
  header.count = count;
  return at + letters;
}

std::uint64_t blockBytes(const LineShape& shape, std::uint64_t elements, std::uint64_t lineEnd) {
  const std::uint64_t lines = (elements + shape.perLine - 1) / shape.perLine;
  return elements * shape.fieldWidth + lines * lineEnd;
}

/// A number ends at a blank, or at the sign or the stars of a field that touches it.
bool endsNumber(std::string_view behind) {
  return behind.empty() || isBlank(behind[0]) || behind[0] == '-' || behind[0] == '+' || behind[0] == '*';
}

/// Takes one element at the scanner's place to `out`, or passes over it when out is null.
template <class T>
void takeNumber(TextScanner& scanner, std::byte* out) {
  T value{};
  const auto taken = parseNumber(scanner.rest(), value);
  if (taken == 0 || taken > longestNumber || !endsNumber(scanner.rest().substr(taken))) {
    scanner.fail("no number", "a number");
  }
  if (out) std::memcpy(out, &value, sizeof value);
  scanner.take(taken);
}

void takeLogical(TextScanner& scanner, std::byte* out) {
  const char letter = scanner.rest()[0];
  if (letter != 'T' && letter != 'F') {
    scanner.fail("no logical value", "T or F");
  }
  const std::int32_t value = letter == 'T' ? -1 : 0;
  if (out) std::memcpy(out, &value, sizeof value);
  scanner.take(1);
}

void takeText(TextScanner& scanner, std::size_t width, std::byte* out) {
  std::string_view content;
  const auto taken = quoted(scanner.rest(), width, content);
  if (taken == 0) scanner.fail("no text", "a text in quotes");
  if (out) {
    std::memset(out, ' ', width);
    std::memcpy(out, content.data(), content.size());
  }
  scanner.take(taken);
}

/// The places at which the fields of a regular record stand, one after the other from the start of a line.
class FieldPlaces {
 public:
  /// Of lines that go by no rule.
  FieldPlaces() = default;
  FieldPlaces(const LineShape& shape, std::uint64_t perBlock, std::uint64_t lineEnd, std::uint64_t start,
              std::uint64_t element)
      : shape_(shape),
        perBlock_(perBlock),
        lineEnd_(lineEnd),
        end_(start + shape.fieldWidth),
        leftOnLine_(shape.perLine),
        leftInBlock_(perBlock - element % perBlock) {}

  /// Checks where an element was found. What stands across two fields tells that a line has lost or gained
  /// something and that others make up for its length, so that places follow from arithmetic no more.
  void next(std::uint64_t begin, std::uint64_t end) {
    if (end_ == 0) return;
    if (begin + shape_.fieldWidth < end_ || end > end_) {
      throwBadRecord("field is out of place", begin,
                     fmt::format("a field in bytes {} to {}", end_ - shape_.fieldWidth, end_ - 1),
                     fmt::format("bytes {} to {}", begin, end - 1));
    }
    end_ += shape_.fieldWidth;
    const bool blockEnds = --leftInBlock_ == 0;
    if (--leftOnLine_ != 0 && !blockEnds) return;
    end_ += lineEnd_;
    leftOnLine_ = shape_.perLine;
    if (blockEnds) leftInBlock_ = perBlock_;
  }

 private:
  LineShape shape_;
  std::uint64_t perBlock_ = 0;
  std::uint64_t lineEnd_ = 0;
  std::uint64_t end_ = 0;  // byte offset behind the next field; 0 without a rule
  std::uint64_t leftOnLine_ = 0;
  std::uint64_t leftInBlock_ = 0;
};

/// Passes over `skip` elements and takes `count` to out (or passes over them too, when out is null).
template <class Take>
void takeAll(TextScanner& scanner, FieldPlaces places, std::uint64_t skip, std::uint64_t count,
             std::size_t token, std::size_t outWidth, std::byte* out, Take take) {
  for (std::uint64_t i = 0; i < skip + count; ++i) {
    if (!scanner.skipBlanks(token)) {
      throwTruncated(scanner.position(), fmt::format("{} more elements", skip + count - i), "end of file");
    }
    const bool wanted = out && i >= skip;
    const auto begin = scanner.position();
    take(scanner, wanted ? out + (i - skip) * outWidth : nullptr);
    places.next(begin, scanner.position());
  }
}

void scanElements(TextScanner& scanner, const RecordHeader& header, const FieldPlaces& places,
                  std::uint64_t skip, std::uint64_t count, std::byte* out) {
  const auto width = static_cast<std::size_t>(header.width);
  switch (header.type) {
    case ElementType::Integer:
    case ElementType::Short:
      return takeAll(scanner, places, skip, count, longestToken, 4, out, takeNumber<std::int32_t>);
    case ElementType::Single:
      return takeAll(scanner, places, skip, count, longestToken, 4, out, takeNumber<float>);
    case ElementType::Double:
      return takeAll(scanner, places, skip, count, longestToken, 8, out, takeNumber<double>);
    case ElementType::Logical:
      return takeAll(scanner, places, skip, count, 1, 4, out, takeLogical);
    case ElementType::Text:
      return takeAll(scanner, places, skip, count, width + 2, width, out,
                     [width](TextScanner& s, std::byte* to) { takeText(s, width, to); });
    default:
      return;
  }
}

/// A file that ends without a line end may still be whole, but a number that does not fill its field has lost
/// digits.
bool cutInsideField(Window& window, std::uint64_t fieldWidth) {
  const std::uint64_t look = std::min<std::uint64_t>(window.size(), 2 * longestToken);
  const auto bytes = window.at(window.size() - look, static_cast<std::size_t>(look));
  std::uint64_t length = 0;
  while (length < bytes.size() && bytes[bytes.size() - 1 - length] != std::byte{'\n'}) ++length;
  return length % fieldWidth != 0;
}

/// Whether a line is that of a header: blanks, 'KEYWORD ', count, 'TYPE', blanks.
bool isHeaderLine(std::string_view line) {
  RecordHeader header;
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  const std::size_t taken = parseHeader(line, header);
  return taken != 0 && !header.keyword.empty() && std::ranges::all_of(line.substr(taken), isBlank);
}

}  // namespace

LineShape lineShape(ElementType type, std::int32_t width) {
  switch (type) {
    case ElementType::Integer:
    case ElementType::Short:
      return {6, 12};
    case ElementType::Single:
      return {4, 17};
    case ElementType::Double:
      return {3, 23};
    case ElementType::Logical:
      return {25, 3};
    default:
      break;
  }
  const auto field = static_cast<std::uint64_t>(width) + 3;
  return {std::max<std::uint64_t>(1, 80 / field), field};
}

bool FormattedCodec::readHeader(Window& window, std::uint64_t position, RecordHeader& header) const {
  TextScanner scanner(window, position, 0);
  if (!scanner.skipBlanks()) return false;
  const auto quote = scanner.position();
  const auto taken = parseHeader(scanner.rest().substr(0, longestToken), header);
  if (taken == 0) scanner.fail("no record header", "'KEYWORD ' count 'TYPE'");
  scanner.take(taken);
  scanner.skipLineEnd();
  header.headerAt = quote > position ? quote - 1 : quote;
  header.dataAt = scanner.position();
  return true;
}

DataLayout FormattedCodec::locate(Window& window, const RecordHeader& header) const {
  DataLayout layout;
  layout.end = header.dataAt;
  if (header.count == 0 || header.type == ElementType::None) return layout;
  if (header.type == ElementType::Unknown) {
    layout.end = findHeader(window, header.dataAt);
    return layout;
  }
  // Even numbers of one digit take two characters each, with the blank between them.
  const std::uint64_t left = window.size() - std::min(window.size(), header.dataAt);
  const auto count = static_cast<std::uint64_t>(header.count);
  if (count > left / 2 + 1) {
    throwTruncated(header.dataAt, fmt::format("{} elements", count), fmt::format("{} bytes", left));
  }
  const auto before = window.at(header.dataAt - std::min<std::uint64_t>(header.dataAt, 2), 2);
  layout.lineEndBytes = before.size() >= 2 && before[0] == std::byte{'\r'} ? 2 : 1;

  const auto shape = lineShape(header.type, header.width);
  const auto perBlock = static_cast<std::uint64_t>(elementsPerBlock(header.type));
  layout.end += count / perBlock * blockBytes(shape, perBlock, layout.lineEndBytes) +
                blockBytes(shape, count % perBlock, layout.lineEndBytes);
  const auto around = window.at(layout.end - 1, 3);
  const auto letter = [&](std::size_t i) {
    return i < around.size() ? std::to_integer<char>(around[i]) : '\0';
  };
  const bool lineEnds = layout.end <= window.size() && letter(0) == '\n';
  // Some writers begin their headers in column 1, where texts of other widths may begin too.
  const bool headerFollows = around.size() == 1 || (letter(1) == ' ' && letter(2) == '\'') ||
                             (letter(1) == '\'' && isHeaderLine(TextScanner(window, layout.end, 0).line()));
  if (lineEnds && headerFollows) return layout;

  layout.kind = DataLayout::Kind::Scanned;
  TextScanner scanner(window, header.dataAt, left);
  scanElements(scanner, header, {}, 0, count, nullptr);
  if (scanner.position() == window.size() && cutInsideField(window, shape.fieldWidth)) {
    throwTruncated(window.size(), "a whole last line", "end of file");
  }
  scanner.skipLineEnd();
  layout.end = scanner.position();
  return layout;
}

/// The position is that of a line, or within one that is no header.
std::uint64_t FormattedCodec::findHeader(Window& window, std::uint64_t position) const {
  TextScanner scanner(window, position, window.size() - std::min(window.size(), position));
  do {
    if (isHeaderLine(scanner.line())) return scanner.position();
  } while (scanner.nextLine());
  return window.size();
}

void FormattedCodec::decode(Window& window, const RecordHeader& header, const DataLayout& layout,
                            std::int64_t first, std::size_t count, std::byte* out) const {
  std::uint64_t start = header.dataAt;
  auto skip = static_cast<std::uint64_t>(first);
  FieldPlaces places;
  if (layout.kind == DataLayout::Kind::Regular) {
    const auto shape = lineShape(header.type, header.width);
    const auto perBlock = static_cast<std::uint64_t>(elementsPerBlock(header.type));
    const std::uint64_t within = skip % perBlock / shape.perLine * shape.perLine;
    start += skip / perBlock * blockBytes(shape, perBlock, layout.lineEndBytes) +
             blockBytes(shape, within, layout.lineEndBytes);
    skip -= skip / perBlock * perBlock + within;
    places = {shape, perBlock, layout.lineEndBytes, start, static_cast<std::uint64_t>(first) - skip};
  }
  const auto fieldWidth = lineShape(header.type, header.width).fieldWidth + 1;
  TextScanner scanner(window, start, (skip + count) * fieldWidth);
  scanElements(scanner, header, places, skip, count, out);
  if (first + static_cast<std::int64_t>(count) < header.count) return;
  if (!scanner.blankTo(layout.end)) {
    throwBadRecord("more data than the header announces", scanner.position(),
                   fmt::format("{} elements", header.count), shown(scanner.rest()));
  }
}

void FormattedCodec::gather(Window& window, const RecordHeader& header, const DataLayout& layout,
                            std::span<const std::uint32_t> elements, std::byte* out) const {
  const auto width = static_cast<std::size_t>(header.width);
  if (layout.kind == DataLayout::Kind::Regular) {
    for (std::size_t i = 0; i < elements.size(); ++i) {
      decode(window, header, layout, elements[i], 1, out + i * width);
    }
    return;
  }
  std::vector<std::byte> all(static_cast<std::size_t>(header.count) * width);
  decode(window, header, layout, 0, static_cast<std::size_t>(header.count), all.data());
  for (std::size_t i = 0; i < elements.size(); ++i)
    std::memcpy(out + i * width, all.data() + elements[i] * width, width);
}

}  // namespace lumbarn
