#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DeckScanner.h"

namespace lumbarn {

/// One word of a record.
struct DeckItem {
  std::int64_t count = 1;  ///< how often: 3 of "3*0.5"
  bool given = true;       ///< False for defaults: "*", "2*"
  bool quoted = false;
  std::uint32_t begin = 0;  ///< of the value in `DeckRecord::text`, without quotes and count
  std::uint32_t size = 0;
  std::int32_t column = 1;  ///< of the word in its line, from 1
  std::int64_t line = 0;
  std::uint64_t offset = 0;  ///< of the word in its file, with quotes and count
  std::uint32_t length = 0;  ///< likewise
};

/// One record of a keyword, from one "/" to the next.
struct DeckRecord {
  std::string text;  ///< its lines without comments
  std::vector<DeckItem> items;
  std::uint32_t file = 0;
  std::int64_t line = 0;     ///< of its first word
  std::uint64_t offset = 0;  ///< likewise
  std::uint64_t end = 0;     ///< of the "/", or behind the last line
  bool closed = true;        ///< by a "/"

  std::string_view value(const DeckItem& item) const {
    return std::string_view(text).substr(item.begin, item.size);
  }
  /// The item at an index, from 0, with repeat counts expanded; null for a default and beyond the last.
  const DeckItem* at(std::int64_t place) const;
  /// The value at an index; empty for a default and beyond the last.
  std::optional<std::string_view> operator[](std::int64_t place) const;
  /// How many values the record has, defaults included.
  std::int64_t size() const;
};

/// The records of a keyword, read anew from its files. The record that closes a list is none. Of TITLE, the
/// record is one item.
class DeckRecords {
 public:
  /// Both must outlive this object.
  DeckRecords(const DeckFiles& files, const DeckKeyword& keyword) : files_(&files), keyword_(&keyword) {}
  /// Throws BadRecord when a file cannot be read.
  bool next(DeckRecord& record);

 private:
  bool nextLine();
  void takeItems(DeckRecord& record, std::string_view code, std::size_t codeAt) const;

  const DeckFiles* files_;
  const DeckKeyword* keyword_;
  std::unique_ptr<TextWindow> window_;
  std::uint32_t windowFile_ = std::numeric_limits<std::uint32_t>::max();
  std::int64_t taken_ = 0;
  std::size_t piece_ = 0;  // of the keyword, counted from 1 while one is read
  std::uint64_t position_ = 0;
  std::int64_t line_ = 0;
  std::string_view all_;  // the line that was taken last
};

/// The repeat count of a word, as in "3*"; empty if it has none. Larger counts are clamped to the largest
/// number.
std::optional<std::int64_t> deckRepeat(std::string_view word, std::size_t& star);

/// The value of a number in a deck: "1.5", "2.5D+2", ".5", "1e3". Empty for any other text.
std::optional<double> deckNumber(std::string_view text);

}  // namespace lumbarn
