#include "DeckEdit.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <fmt/format.h>

#include "../frame/Write.h"
#include "../support/Text.h"
#include "../text/DeckRecords.h"

namespace lumbarn {

namespace {

constexpr std::int64_t mostItems = 10000;

/// Bytes of a file to be replaced.
struct Edit {
  std::size_t keyword = 0;  // index into `Deck::keywords`
  std::int64_t record = 0;  // of the keyword, from 0
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

/// "3*word", "word" for a count of 1, nothing for 0.
std::string times(std::int64_t count, std::string_view word) {
  if (count == 0) return {};
  if (word.empty()) return fmt::format("{}*", count);
  return count == 1 ? std::string(word) : fmt::format("{}*{}", count, word);
}

/// The text of an item with the value at an index, from 0, changed.
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

/// The bytes to replace in the file of the record.
Edit editOf(const DeckRecord& record, const DeckChange& change) {
  std::int64_t place = change.item - 1;
  for (const DeckItem& item : record.items) {
    if (place < item.count)
      return {.file = record.file,
              .begin = item.offset,
              .end = item.offset + item.length,
              .text = changedWord(record, item, place, change.value)};
    place -= item.count;
  }
  std::string text = times(place, "");
  if (!text.empty()) text += ' ';
  return {.file = record.file,
          .begin = record.end,
          .end = record.end,
          .text = fmt::format(" {}{} ", text, quotedIf(change.value, false))};
}

Edit find(const Deck& deck, const DeckChange& change) {
  std::int64_t left = change.record;
  for (const std::size_t place : deck.chosen({.keywords = {change.keyword}})) {
    const DeckKeyword& keyword = deck.keywords()[place];
    if (keyword.form == DeckForm::Line || keyword.form == DeckForm::Array) continue;
    DeckRecords records(deck.files(), keyword);
    DeckRecord record;
    for (std::int64_t n = 0; records.next(record); ++n) {
      if (--left > 0) continue;
      Edit edit = editOf(record, change);
      edit.keyword = place;
      edit.record = n;
      return edit;
    }
  }
  throw Error(Error::Kind::NotFound, {.message = Message::RequestMissing,
                                      .path = deck.path(),
                                      .problem = fmt::format("{} has {} records, not {}", change.keyword,
                                                             change.record - left, change.record)});
}

/// Passes on the bytes of a range of a file, with a change if it is within the range.
template <class Put>
void copyText(TextWindow& window, std::uint64_t begin, std::uint64_t end, const Edit* edit, const Put& put) {
  const auto copy = [&](std::uint64_t from, std::uint64_t to) {
    while (from < to) {
      const std::string_view text = window.from(from);
      if (text.empty()) break;
      put(text.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(text.size(), to - from))));
      from += text.size();
    }
  };
  if (edit) {
    copy(begin, edit->begin);
    put(edit->text);
    begin = edit->end;
  }
  copy(begin, end);
}

/// The values of one record of a keyword, nothing for defaults.
using Values = std::vector<std::optional<std::string>>;
Values valuesOf(const DeckFiles& files, const DeckKeyword& keyword, std::int64_t number) {
  DeckRecords records(files, keyword);
  DeckRecord record;
  while (number >= 0 && records.next(record)) --number;
  Values values;
  for (std::int64_t i = 0; i < std::min(record.size(), mostItems); ++i) {
    const auto value = record[i];
    values.push_back(value ? std::optional<std::string>(*value) : std::nullopt);
  }
  return values;
}

/// Parses the changed text again: the record must have the new value, and all others as before. A quote in a
/// value, or a "/" in a text that is not quoted, would break it.
void verify(const Deck& deck, const DeckChange& change, const Edit& edit) {
  const DeckKeyword& keyword = deck.keywords()[edit.keyword];
  std::vector<std::byte> changed;
  const auto append = [&](std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    changed.insert(changed.end(), bytes.begin(), bytes.end());
  };
  DeckKeyword copy = keyword;
  copy.data.clear();
  for (const DeckPiece& piece : keyword.data) {
    TextWindow window(deck.files().open(piece.file));
    const std::size_t begin = changed.size();
    const bool here = piece.file == edit.file && edit.begin >= piece.begin && edit.end <= piece.end;
    copyText(window, piece.begin, piece.end, here ? &edit : nullptr, append);
    copy.data.push_back({0, begin, changed.size(), 1});
  }
  DeckFiles files;
  files.add({});
  files.keep(std::make_shared<MemorySource>(std::move(changed)));
  Values wanted = valuesOf(deck.files(), keyword, edit.record);
  wanted.resize(std::max(wanted.size(), static_cast<std::size_t>(change.item)));
  wanted[static_cast<std::size_t>(change.item) - 1] = change.value;
  if (valuesOf(files, copy, edit.record) == wanted) return;
  throw Error(Error::Kind::BadRequest, {.message = Message::RequestRefused,
                                        .path = deck.path(),
                                        .problem = fmt::format("\"{}\" cannot be written as item {} of {}",
                                                               change.value, change.item, change.keyword)});
}

}  // namespace

DeckChange DeckChange::parse(std::string_view text) {
  const std::size_t open = text.find('[');
  const std::size_t close = text.find("].");
  const std::size_t equals = text.find('=');
  if (open == 0 || open == text.npos || close == text.npos || close < open || equals == text.npos ||
      equals < close)
    refuse(text);
  const std::int64_t item = number(text.substr(close + 2, equals - close - 2), text);
  if (item > mostItems) refuse(text);
  return {.keyword = upper(text.substr(0, open)),
          .record = number(text.substr(open + 1, close - open - 1), text),
          .item = item,
          .value = std::string(text.substr(equals + 1))};
}

std::string fileOfChange(const Deck& deck, const DeckChange& change) {
  return deck.files()[find(deck, change).file].path;
}

void writeChanged(const Deck& deck, const DeckChange& change, Sink& sink) {
  try {
    const Edit edit = find(deck, change);
    verify(deck, change, edit);
    TextWindow window(deck.files().open(edit.file));
    copyText(window, 0, window.size(), &edit,
             [&](std::string_view text) { sink.write(std::as_bytes(std::span(text))); });
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
