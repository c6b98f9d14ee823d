#include "DeckLine.h"

#include <algorithm>

namespace lumbarn {

namespace {

void setCode(DeckLine& result, std::string_view line, std::size_t end) {
  std::size_t begin = 0;
  while (begin < end && isDeckBlank(line[begin])) ++begin;
  while (end > begin && isDeckBlank(line[end - 1])) --end;
  result.code = line.substr(begin, end - begin);
  result.codeAt = begin;
}

bool isBlank(std::string_view text) { return std::all_of(text.begin(), text.end(), isDeckBlank); }

}  // namespace

DeckLine deckLine(std::string_view line) {
  DeckLine result;
  std::size_t i = 0;
  for (; i < line.size(); ++i) {
    const char c = line[i];
    if (c > '/') continue;  // most characters: digits and letters
    if (c == '/') {
      result.slash = true;
      ++i;
      break;
    }
    if (isDeckQuote(c)) {
      const std::size_t close = line.find(c, i + 1);
      result.openQuote = close == line.npos;
      i = result.openQuote ? line.size() - 1 : close;
    } else if (c == '-' && i + 1 < line.size() && line[i + 1] == '-') {
      break;
    }
  }
  setCode(result, line, i);
  result.comment = !isBlank(line.substr(i));
  return result;
}

DeckLine deckTextLine(std::string_view line) {
  DeckLine result;
  std::size_t i = 0;
  for (; i < line.size(); ++i) {
    const char c = line[i];
    if (isDeckQuote(c)) {
      const std::size_t close = line.find(c, i + 1);
      result.openQuote = close == line.npos;
      i = result.openQuote ? line.size() - 1 : close;
    } else if (c == '-' && i + 1 < line.size() && line[i + 1] == '-') {
      break;
    }
  }
  setCode(result, line, i);
  result.slash = result.code.ends_with('/');
  result.comment = i < line.size();
  return result;
}

std::string_view firstWord(std::string_view code) {
  const auto* end = std::find_if(code.data(), code.data() + code.size(),
                                 [](char c) { return isDeckBlank(c) || c == ',' || c == '/'; });
  return code.substr(0, static_cast<std::size_t>(end - code.data()));
}

bool isKeywordWord(std::string_view word) {
  if (word.empty() || !isDeckLetter(word[0])) return false;
  return std::all_of(word.begin(), word.end(), [](char c) {
    return isDeckLetter(c) || isDeckDigit(c) || c == '+' || c == '-' || c == '_' || c == '=';
  });
}

}  // namespace lumbarn
