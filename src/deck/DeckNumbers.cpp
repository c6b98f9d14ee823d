#include "DeckNumbers.h"

#include <algorithm>
#include <limits>

#include <fast_float/fast_float.h>

#include "../support/Text.h"
#include "../text/DeckRecords.h"

namespace lumbarn {

namespace {

constexpr std::size_t runsAtOnce = 2048;

bool isGap(char c) { return isDeckBlank(c) || c == ','; }
bool endsWord(const char* at, const char* end) { return at == end || isGap(*at) || *at == '/'; }

}  // namespace

bool DeckNumbers::nextLine() {
  while (piece_ == 0 || position_ >= keyword_->data[piece_ - 1].end) {
    if (piece_ == keyword_->data.size()) return false;
    const DeckPiece& piece = keyword_->data[piece_];
    if (piece_ == 0 || piece.file != keyword_->data[piece_ - 1].file)
      window_ = std::make_unique<TextWindow>(files_->open(piece.file));
    ++piece_;
    position_ = piece.begin;
    line_ = piece.line - 1;
  }
  all_ = window_->line(position_);
  position_ += std::max<std::size_t>(all_.size(), 1);
  ++line_;
  return true;
}

std::span<const DeckRun> DeckNumbers::next() {
  runs_.clear();
  runs_.reserve(2 * runsAtOnce);
  while (!ended_ && runs_.size() < runsAtOnce) {
    if (damage_) {
      ended_ = true;
      throw BadRecord(*damage_);
    }
    if (!nextLine()) {
      ended_ = true;
      break;
    }
    takeLine();
    if (damage_ && !runs_.empty()) break;  // the numbers before it first
  }
  return runs_;
}

void DeckNumbers::takeLine() {
  const char* end = all_.data() + all_.size();
  for (const char* at = all_.data(); at != end;) {
    if (isGap(*at)) {
      ++at;
    } else if (*at == '/') {
      ended_ = keyword_->form == DeckForm::Array;
      return;
    } else if (*at == '-' && at + 1 != end && at[1] == '-') {
      return;
    } else {
      at = takeWord(at, end);
      if (damage_) return;
    }
  }
}

/// Takes a number, "3*0.5" or "3*"; gives the end of the word.
const char* DeckNumbers::takeWord(const char* at, const char* end) {
  DeckRun run;
  const auto take = [&](const char* text) {
    const auto [behind, error] = fast_float::from_chars(text, end, run.value);
    return error == std::errc() ? behind : text;
  };
  const char* behind = take(at);
  if (behind != at && endsWord(behind, end) && !isDeckLetter(*at)) {
    runs_.push_back(run);
    return behind;
  }
  const char* wordEnd = at;
  while (!endsWord(wordEnd, end)) ++wordEnd;
  const std::string_view word(at, static_cast<std::size_t>(wordEnd - at));
  std::string_view value = word;
  std::size_t star = 0;
  if (const auto count = deckRepeat(word, star)) {
    run.count = *count;
    value = word.substr(star + 1);
  } else if (word == "*") {
    value = {};
  }
  run.given = !value.empty();
  if (run.given) {
    const auto number = deckNumber(value);
    if (!number) {
      noteDamage(word);
      return wordEnd;
    }
    run.value = *number;
  }
  if (run.count > 0) runs_.push_back(run);
  return wordEnd;
}

void DeckNumbers::noteDamage(std::string_view word) {
  const auto column = static_cast<std::uint64_t>(word.data() - all_.data());
  damage_ = Diagnosis{.message = Message::DeckValue,
                      .path = (*files_)[keyword_->data[piece_ - 1].file].path,
                      .keyword = keyword_->name,
                      .offset = position_ - all_.size() + column,
                      .line = line_,
                      .expected = "a number",
                      .found = toUtf8(word)};
}

std::int64_t countOf(const DeckFiles& files, const DeckKeyword& keyword) {
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  std::int64_t count = 0;
  DeckNumbers numbers(files, keyword);
  for (auto runs = numbers.next(); !runs.empty(); runs = numbers.next()) {
    for (const DeckRun& run : runs) count = run.count > most - count ? most : count + run.count;
  }
  return count;
}

}  // namespace lumbarn
