#include "DeckRecords.h"

#include <algorithm>
#include <charconv>

#include "../record/TextNumbers.h"
#include "../support/Text.h"

namespace lumbarn {

const DeckItem* DeckRecord::at(std::int64_t place) const {
  for (const DeckItem& item : items) {
    if (place < item.count) return item.given ? &item : nullptr;
    place -= item.count;
  }
  return nullptr;
}

std::optional<std::string_view> DeckRecord::operator[](std::int64_t place) const {
  const DeckItem* item = at(place);
  return item ? std::optional(value(*item)) : std::nullopt;
}

std::int64_t DeckRecord::size() const {
  std::int64_t sum = 0;
  for (const DeckItem& item : items) {
    if (item.count > std::numeric_limits<std::int64_t>::max() - sum)
      return std::numeric_limits<std::int64_t>::max();
    sum += item.count;
  }
  return sum;
}

bool DeckRecords::nextLine() {
  while (piece_ == 0 || position_ >= keyword_->data[piece_ - 1].end) {
    if (piece_ == keyword_->data.size()) return false;
    const DeckPiece& piece = keyword_->data[piece_++];
    if (piece.file != windowFile_) {
      window_ = std::make_unique<TextWindow>(files_->open(piece.file));
      windowFile_ = piece.file;
    }
    position_ = piece.begin;
    line_ = piece.line - 1;
  }
  all_ = window_->line(position_);
  if (all_.empty()) {  // the file has become shorter
    position_ = keyword_->data[piece_ - 1].end;
    return nextLine();
  }
  position_ += all_.size();
  ++line_;
  return true;
}

bool DeckRecords::next(DeckRecord& record) {
  record.text.clear();
  record.items.clear();
  record.closed = true;
  const DeckForm form = keyword_->form;
  if (taken_ == keyword_->records) return false;
  bool any = false;
  while (nextLine()) {
    const std::uint64_t lineAt = position_ - all_.size();
    const DeckLine line = form == DeckForm::Line   ? DeckLine{.code = trim(all_), .slash = true}
                          : form == DeckForm::Text ? deckTextLine(all_)
                                                   : deckLine(all_);
    if (line.code.empty() && form != DeckForm::Line) continue;
    if (!any) {
      record.file = windowFile_;
      record.line = line_;
      record.offset = lineAt + line.codeAt;
    }
    std::string_view code = line.code;
    const bool empty = !any && code == "/";
    if (line.slash && form != DeckForm::Line) code.remove_suffix(1);
    if (form == DeckForm::Line) {
      record.items.push_back({.begin = 0, .size = static_cast<std::uint32_t>(code.size()), .line = line_});
      record.text = code;
    } else {
      takeItems(record, code, line.codeAt);
    }
    any = true;
    record.end = line.slash ? lineAt + line.codeAt + line.code.size() - 1 : position_;
    if (!line.slash) continue;
    const bool counts = form != DeckForm::List && form != DeckForm::Text && form != DeckForm::Open;
    if (!empty || counts) {
      ++taken_;
      return true;
    }
    any = false;  // it closes a list, or a table
  }
  record.closed = false;
  taken_ = keyword_->records;
  return any;
}

void DeckRecords::takeItems(DeckRecord& record, std::string_view code, std::size_t codeAt) const {
  if (!record.text.empty()) record.text += ' ';
  const auto base = static_cast<std::uint32_t>(record.text.size());
  record.text += code;
  const bool repeats = keyword_->form != DeckForm::Text;
  const auto isGap = [](char c) { return isDeckBlank(c) || c == ','; };
  for (std::size_t i = 0; i < code.size();) {
    if (isGap(code[i])) {
      ++i;
      continue;
    }
    DeckItem item{.column = static_cast<std::int32_t>(codeAt + i + 1),
                  .line = line_,
                  .offset = position_ - all_.size() + codeAt + i};
    const std::size_t wordAt = i;
    std::size_t begin = i;
    std::size_t star = 0;
    if (!isDeckQuote(code[i]) && repeats) {
      if (const auto count = deckRepeat(code.substr(i), star)) {
        item.count = *count;
        begin = i + star + 1;
      }
    }
    std::size_t end = begin;
    if (begin < code.size() && isDeckQuote(code[begin])) {
      item.quoted = true;
      end = std::min(code.find(code[begin], begin + 1), code.size());
      i = std::min(end + 1, code.size());
      ++begin;
    } else {
      while (end < code.size() && !isGap(code[end]) && !(isDeckQuote(code[end]) && repeats)) ++end;
      i = end;
      item.given = !(repeats && (end == begin || code.substr(begin, end - begin) == "*"));
    }
    item.length = static_cast<std::uint32_t>(i - wordAt);
    item.begin = base + static_cast<std::uint32_t>(begin);
    item.size = static_cast<std::uint32_t>(end - begin);
    if (item.count > 0) record.items.push_back(item);
  }
}

std::optional<std::int64_t> deckRepeat(std::string_view word, std::size_t& star) {
  if (word.empty() || !isDeckDigit(word[0])) return std::nullopt;
  std::int64_t count = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), count);
  star = static_cast<std::size_t>(end - word.data());
  if (star >= word.size() || word[star] != '*') return std::nullopt;
  return error == std::errc::result_out_of_range ? std::numeric_limits<std::int64_t>::max() : count;
}

std::optional<double> deckNumber(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  const std::size_t first = text.find_first_not_of('-');
  const bool digits =
      first <= 1 && (isDeckDigit(text[first]) || text[first] == '.');  // neither "inf" nor "nan"
  double value = 0;
  const bool number = digits && parseNumber(text, value) == text.size();
  return number ? std::optional(value) : std::nullopt;
}

}  // namespace lumbarn
