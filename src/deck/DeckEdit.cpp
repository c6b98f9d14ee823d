#include "DeckEdit.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <span>

#include <fmt/format.h>

#include "../frame/Write.h"
#include "../support/Text.h"
#include "../text/DeckRecords.h"

namespace lumbarn {

namespace {

/// Bytes of a file to be replaced.
struct Edit {
  std::uint32_t file = 0;
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  std::string text;
};

[[noreturn]] void refuse(std::string_view text) {
  throw Error(Error::Kind::BadRequest,
              {.message = Message::RequestRefused,
               .problem = fmt::format("a change is given as WELSPECS[3].5=2400, not \"{}\"", text)});
}

std::int64_t number(std::string_view part, std::string_view all) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), value);
  if (error != std::errc() || end != part.data() + part.size() || value < 1) refuse(all);
  return value;
}

std::string quotedIf(const std::string& value, bool quoted) {
  const bool blanks = value.find_first_of(" \t,/") != value.npos;
  return quoted || blanks ? "'" + value + "'" : value;
}

/// A word as often as it stands, or nothing.
std::string times(std::int64_t count, std::string_view word) {
  if (count == 0) return {};
  if (word.empty()) return fmt::format("{}*", count);
  return count == 1 ? std::string(word) : fmt::format("{}*{}", count, word);
}

/// The word of an item with the value at a place in it, from 0, changed.
std::string changedWord(const DeckRecord& record, const DeckItem& item, std::int64_t place,
                        const std::string& value) {
  const std::string old = item.given ? quotedIf(std::string(record.value(item)), item.quoted) : std::string();
  std::string text = times(place, old);
  for (const std::string& part : {quotedIf(value, item.quoted), times(item.count - place - 1, old)}) {
    if (!text.empty() && !part.empty()) text += ' ';
    text += part;
  }
  return text;
}

Edit editOf(const DeckRecord& record, const DeckChange& change) {
  std::int64_t place = change.item - 1;
  for (const DeckItem& item : record.items) {
    if (place < item.count)
      return {record.file, item.offset, item.offset + item.length,
              changedWord(record, item, place, change.value)};
    place -= item.count;
  }
  std::string text = times(place, "");
  if (!text.empty()) text += ' ';
  return {record.file, record.end, record.end, fmt::format(" {}{} ", text, quotedIf(change.value, false))};
}

Edit find(const Deck& deck, const DeckChange& change) {
  std::int64_t left = change.record;
  for (const std::size_t place : deck.chosen({.keywords = {change.keyword}})) {
    const DeckKeyword& keyword = deck.keywords()[place];
    if (keyword.form == DeckForm::Line || keyword.form == DeckForm::Array) continue;
    DeckRecords records(deck.files(), keyword);
    DeckRecord record;
    while (records.next(record)) {
      if (--left == 0) return editOf(record, change);
    }
  }
  throw Error(Error::Kind::NotFound, {.message = Message::RequestMissing,
                                      .path = deck.path(),
                                      .problem = fmt::format("{} has {} records, not {}", change.keyword,
                                                             change.record - left, change.record)});
}

}  // namespace

DeckChange DeckChange::parse(std::string_view text) {
  const std::size_t open = text.find('[');
  const std::size_t close = text.find("].");
  const std::size_t equals = text.find('=');
  if (open == 0 || open == text.npos || close == text.npos || close < open || equals == text.npos ||
      equals < close)
    refuse(text);
  return {.keyword = upper(text.substr(0, open)),
          .record = number(text.substr(open + 1, close - open - 1), text),
          .item = number(text.substr(close + 2, equals - close - 2), text),
          .value = std::string(text.substr(equals + 1))};
}

std::string fileOfChange(const Deck& deck, const DeckChange& change) {
  return deck.files()[find(deck, change).file].path;
}

void writeChanged(const Deck& deck, const DeckChange& change, Sink& sink) {
  try {
    const Edit edit = find(deck, change);
    TextWindow window(deck.files().open(edit.file));
    const auto copy = [&](std::uint64_t from, std::uint64_t to) {
      while (from < to) {
        std::string_view text = window.from(from);
        if (text.empty()) break;
        text = text.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(text.size(), to - from)));
        sink.write(std::as_bytes(std::span(text)));
        from += text.size();
      }
    };
    copy(0, edit.begin);
    sink.write(std::as_bytes(std::span(edit.text)));
    copy(edit.end, window.size());
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
