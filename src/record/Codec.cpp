#include "Codec.h"

#include <algorithm>
#include <cstring>

#include "../support/Diagnosis.h"
#include "../support/Text.h"
#include "FormattedCodec.h"
#include "KeywordCounts.h"
#include "MarkedCodec.h"

namespace lumbarn {

std::unique_ptr<const Codec> makeCodec(const Form& form) {
  switch (form.framing) {
    case Framing::Formatted:
      return std::make_unique<FormattedCodec>();
    case Framing::FourByteMarks:
      return std::make_unique<MarkedCodec>(4, form.byteSwap);
    case Framing::OneByteMarks:
      break;
  }
  return std::make_unique<MarkedCodec>(1, form.byteSwap);
}

namespace {

/// Sets the keyword if it is in upper case with blanks only at its end, as in nearly all files, by comparing
/// its eight bytes at once. Returns false and changes nothing for any other keyword.
bool setUsualKeyword(RecordHeader& header, std::string_view keyword) {
  constexpr std::uint64_t eachByte = 0x0101010101010101, highBits = 0x80 * eachByte, blanks = 0x20 * eachByte;
  if (keyword.size() != 8 || keyword[0] == ' ') return false;
  std::uint64_t letters = 0;
  std::memcpy(&letters, keyword.data(), sizeof letters);
  const bool below = ((letters - blanks) & ~letters & highBits) != 0;   // a control character
  const bool above = ((letters | (letters + blanks)) & highBits) != 0;  // a lower-case letter or above
  if (below || above) return false;
  std::size_t length = 8;
  while (keyword[length - 1] == ' ') --length;
  header.keyword.assign(keyword.data(), length);
  header.key = letters;
  return true;
}

bool setAnyKeyword(RecordHeader& header, std::string_view keyword) {
  const auto printable = [](char c) { return c >= ' ' && c <= '~'; };
  if (!std::ranges::all_of(keyword, printable)) return false;
  header.keyword = trim(keyword);
  for (char& c : header.keyword) c = upperLetter(c);
  header.key = keywordKey(header.keyword);
  return true;
}

}  // namespace

bool setHeaderWords(RecordHeader& header, std::string_view keyword, std::string_view typeWord) {
  const auto wordLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); };
  if (!setUsualKeyword(header, keyword) && !setAnyKeyword(header, keyword)) return false;
  header.typeWord = typeWord;
  for (char& c : header.typeWord) c = upperLetter(c);
  if (header.typeWord.size() != 4 || !std::ranges::all_of(header.typeWord, wordLetter)) return false;
  const auto [type, width] = typeInfo(header.typeWord);
  header.type = type;
  header.width = width;
  return true;
}

bool isPlausible(const RecordHeader& header) {
  if (header.keyword.empty()) return false;
  if (header.typeWord == "X231") return header.count < 0;
  return header.type != ElementType::Unknown && header.count >= 0;
}

void throwBadRecord(std::string problem, std::uint64_t offset, std::string expected, std::string found) {
  throw BadRecord({.message = Message::RecordDamaged,
                   .problem = std::move(problem),
                   .offset = offset,
                   .expected = std::move(expected),
                   .found = std::move(found)});
}

void throwTruncated(std::uint64_t offset, std::string expected, std::string found) {
  throw BadRecord({.message = Message::RecordTruncated,
                   .problem = "record truncated",
                   .offset = offset,
                   .expected = std::move(expected),
                   .found = std::move(found),
                   .cutOff = true});
}

}  // namespace lumbarn
