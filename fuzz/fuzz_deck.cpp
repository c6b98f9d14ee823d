#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "Checks.h"
#include "deck/DeckReading.h"
#include "deck/ECLCommonFunctions.h"
#include "deck/EclipseDictionary.h"
#include "deck/qvEclipseData.h"
#include "support/Text.h"
#include "text/DeckRecords.h"

namespace {

using namespace lumbarn;
using Words = std::vector<std::string>;

std::shared_ptr<const ByteSource> sourceOf(std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  return std::make_shared<MemorySource>(std::vector<std::byte>(bytes.begin(), bytes.end()));
}

/// What holds for every line.
void checkLine(const std::string& line) {
  Session session;
  const std::string clean = processEclipseLine(line, true);
  fuzz::check(processEclipseLine(clean, true) == clean, "a clean line stays as it is");
  fuzz::check(ExtractKeyword(clean).size() <= 8, "a keyword has 8 characters at most");
  const std::string record = processSlashes(clean);
  fuzz::check(clean.starts_with(record), "a record is the beginning of its line");
  fuzz::check(processSlashes(record).size() <= record.size(), "nothing is added to a record");
  processCaseLine(line);

  Words arguments;
  std::int32_t count = 0;
  bool qOK = false;
  processEclipseArgumentLine(record, arguments, count, qOK, session);
  fuzz::check(count == static_cast<std::int32_t>(arguments.size()), "the arguments are counted");
  std::vector<float> values;
  processNumericEclipseArgumentLine(record, values, count, qOK, session);
  fuzz::check(values.size() >= static_cast<std::size_t>(std::max(count, 1)), "the values have room");
  for (const std::string& argument : arguments) {
    const float single = getSingleArgument(argument);
    const std::int32_t integer = getIntegerArgument(argument);
    fuzz::check(single == single, "an argument is a number or the default");
    fuzz::check(integer == deckDefault || single != static_cast<float>(deckDefault),
                "what is an integer is a single");
    UpdateEclipseStringArgument(argument, "X");
  }
  std::string name;
  getIncludeFileName({record}, 1, name, qOK, true, {{"A", "b"}}, session);
  fuzz::check(name.find('/') == name.npos, "every divider is turned round");
  std::int32_t row = 0, keySection = 0, iClass = 0, section = 0;
  lookupKeyword(ExtractKeyword(clean), row, keySection, iClass, section, qOK, session);
  fuzz::check(qOK && row >= 0 && section >= 0 && section <= 8, "a lookup succeeds");
}

/// Whether one word means the same in both forms: see docs/formats/deck.md for those that do not.
bool isPlainWord(std::string_view word) {
  const std::size_t star = word.find('*');
  if (star == word.npos || star == 0) return true;
  const auto digits = word.substr(0, star);
  return isDeckLetter(word[0]) || std::all_of(digits.begin(), digits.end(), isDeckDigit);
}

/// Whether the host form and the modern form agree on a line of a record.
bool isPlain(const std::string& line) {
  // A CR may end a line, a byte order mark is left out, and other such characters are blanks or not.
  const auto controls = [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t'; };
  if (std::any_of(line.begin(), line.end(), controls) || line.starts_with('\xEF')) return false;
  const std::string_view code = deckLine(line).code;
  bool quoted = false;
  for (std::size_t i = 0; i < code.size(); ++i) {
    const char c = code[i];
    if (c == '"' || (quoted && (c == ',' || c == '\t' || c == '*' || c == '/' || c == '-'))) return false;
    if (c != '\'') continue;
    if (i + 1 < code.size() && !quoted && code[i + 1] == '\'') return false;
    if (!quoted && i > 0 && code[i - 1] == '*') return false;
    quoted = !quoted;
  }
  if (quoted || code.find("**") != code.npos || code.find("==") != code.npos) return false;
  std::string words(code);
  std::replace_if(
      words.begin(), words.end(), [](char c) { return c == ',' || c == '\'' || c == '/'; }, ' ');
  const auto all = lumbarn::words(words);
  return std::all_of(all.begin(), all.end(), isPlainWord) &&
         !EclipseDictionary::shared().find(ExtractKeyword(processEclipseLine(line, false)), 0);
}

Words modernWords(const std::string& text) {
  DeckFiles files;
  files.add({.path = "deck"});
  files.keep(sourceOf(text));
  DeckKeyword keyword{.name = "X", .form = DeckForm::Records, .records = 1, .data = {{0, 0, text.size(), 1}}};
  DeckRecords records(files, keyword);
  DeckRecord record;
  Words result;
  if (!records.next(record)) return result;
  for (const DeckItem& item : record.items) {
    std::string value = item.given ? std::string(trim(record.value(item))) : "*";
    if (item.count > 300'000) return {};  // more than the host form takes
    result.insert(result.end(), static_cast<std::size_t>(item.count), value);
  }
  return result;
}

/// Both forms of a record, and of an array.
void compareForms(const Words& lines) {
  std::string text;
  for (const std::string& line : lines) {
    if (isPlain(line)) text += line + '\n';
  }
  text += "/\n";
  Session session;
  DeckReading reading(session);
  DeckLines deck(sourceOf(text));
  Words arguments;
  std::int32_t count = 0;
  bool qOK = false;
  reading.getArgumentList(deck, arguments, count, qOK, false);
  if (session.faults() > 0) return;
  fuzz::check(qOK, "a closed record is read");
  const Words modern = modernWords(text);
  fuzz::check(arguments == modern, "both forms split a record alike");
}

void readArrays(const std::string& text, std::int32_t wanted) {
  Session session;
  DeckReading reading(session);
  const auto source = sourceOf(text);
  bool qOK = false;
  std::int32_t count = wanted;
  std::vector<float> singles;
  DeckLines first(source);
  reading.readEclipseSingleArray(first, count, singles, qOK);
  fuzz::check(count >= 0 && count <= wanted, "an array does not outgrow its count");
  fuzz::check(singles.size() == static_cast<std::size_t>(count), "values are counted");
  std::vector<double> doubles;
  std::int32_t wide = wanted;
  bool wideOK = false;
  DeckLines second(source);
  reading.readEclipseDoubleArray(second, wide, doubles, wideOK);
  if (qOK) fuzz::check(wideOK && wide == count, "singles and doubles are the same values");
  std::vector<std::int32_t> longs;
  count = wanted;
  DeckLines third(source);
  reading.readEclipseLongArray(third, count, longs, qOK);
}

void readKeywords(const std::string& text) {
  Session session;
  for (const std::string_view terminator : {"/", ""}) {
    DeckReading reading(session);
    DeckLines deck(sourceOf(text));
    Words lines;
    std::int32_t count = 0;
    bool qOK = false;
    std::string skipped;
    while (deck.hasMoreData()) {
      const std::int64_t before = deck.currentLine();
      reading.readKeywordArguments(deck, lines, count, qOK, terminator, true);
      fuzz::check(qOK, "what has data can be read");
      if (deck.currentLine() == before) deck.readLine(skipped);
      fuzz::check(deck.currentLine() > before, "a keyword is in front or behind, not in between");
    }
    DeckLines again(sourceOf(text));
    reading.ReadMultiLineKeywordArguments(again, lines, count, qOK, terminator, true);
    DeckLines names(sourceOf(text));
    reading.readFileNameArguments(names, lines, count, qOK);
  }
}

}  // namespace

/// The first byte: how many values an array may have. The rest is text of a deck.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const Words lines = split(text, '\n');
  for (const std::string& line : lines) checkLine(line);
  compareForms(lines);
  readArrays(text, 64 * data[0]);
  readKeywords(text);
  return 0;
}
