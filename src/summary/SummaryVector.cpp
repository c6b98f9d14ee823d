#include "SummaryVector.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <span>
#include <string_view>

#include "../shapes/HeaderLayout.h"
#include "../support/Text.h"

namespace lumbarn {
namespace {

constexpr std::array<std::string_view, 6> classesWithIndex = {"AQUIFERS", "BLOCKS",  "COMPLETIONS",
                                                              "IRF",      "REGIONS", "SEGMENTS"};

bool isOneOf(std::string_view word, std::span<const std::string_view> list) {
  return std::ranges::find(list, word) != list.end();
}

std::optional<std::int32_t> toNumber(std::string_view text) {
  const auto value = toInteger(text);
  using Limits = std::numeric_limits<std::int32_t>;
  if (!value || *value < Limits::min() || *value > Limits::max()) return std::nullopt;
  return static_cast<std::int32_t>(*value);
}

/// A pair needs two regions; where the number in the file was no coded pair, what stands before the "-" is
/// that number.
void readPair(SummaryVector& vector, std::size_t dash) {
  const std::string_view text = vector.index;
  const auto from = toNumber(text.substr(0, dash));
  const auto to = toNumber(text.substr(dash + 1));
  if (!from || !to) return;
  if (*from > 0 && *to > 0) {
    vector.regionPair = {*from, *to};
  } else {
    vector.number = from;
  }
}

/// The three numbers of a cell, blanks between.
std::optional<std::array<std::int32_t, 3>> readCell(std::string_view text) {
  std::array<std::int32_t, 3> cell{};
  for (std::int32_t& number : cell) {
    text = trim(text);
    const auto word = text.substr(0, text.find(' '));
    const auto value = toNumber(word);
    if (!value) return std::nullopt;
    number = *value;
    text.remove_prefix(word.size());
  }
  if (!trim(text).empty()) return std::nullopt;
  return cell;
}

void readIndex(SummaryVector& vector) {
  vector.number.reset();
  vector.regionPair.reset();
  vector.cell = readCell(vector.index);
  if (vector.cell || vector.index.empty()) return;
  if (const auto dash = vector.index.find('-', 1); dash != std::string::npos) {
    readPair(vector, dash);
  } else {
    vector.number = toNumber(vector.index);
  }
}

void appendNumber(std::string& name, std::int32_t number) {
  std::array<char, 12> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  name.append(digits.data(), end);
}

void appendIndex(std::string& name, const SummaryVector& vector) {
  if (vector.cell) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      name += axis == 0 ? ':' : ',';
      appendNumber(name, (*vector.cell)[axis]);
    }
  } else if (vector.regionPair) {
    name += ':';
    appendNumber(name, vector.regionPair->first);
    name += '-';
    appendNumber(name, vector.regionPair->second);
  } else if (vector.number) {
    name += ':';
    appendNumber(name, *vector.number);
  } else if (!vector.index.empty()) {
    name += ':';
    name += vector.index;
  }
}

void makeName(SummaryVector& vector) {
  std::string& name = vector.name;
  name = vector.mnemonic;
  for (const auto* part : {&vector.lgr, &vector.member}) {
    if (part->empty()) continue;
    name += ':';
    name += *part;
  }
  appendIndex(name, vector);
}

/// Without the note that some writers put behind a TAB.
std::string_view mnemonicOf(std::string_view variable) {
  return trim(variable.substr(0, variable.find('\t')));
}

/// Reads what a vector's name is made of, and its name. `text` gives an attribute's text.
template <class Text>
void readName(SummaryVector& vector, Text&& text) {
  vector.mnemonic = mnemonicOf(text(attributeVariable));
  vector.classWord = text(attributeClass);
  const bool inLGR = vector.classWord == "LGR";
  vector.lgr = inLGR ? text(attributeLGRName) : std::string_view();
  vector.lgrClass = inLGR ? text(attributeLGRClass) : std::string_view();
  const std::string_view owner = inLGR ? vector.lgrClass : vector.classWord;
  vector.member = text(attributeMember);  // blank where the vector has none
  vector.index = isOneOf(owner, classesWithIndex) ? text(attributeIndex) : std::string_view();
  readIndex(vector);
  makeName(vector);
}

template <class Text>
SummaryVector makeVector(std::size_t column, Text&& text) {
  SummaryVector vector;
  vector.column = column;
  readName(vector, text);
  vector.units = text(attributeUnits);
  vector.description = text(attributeVerbose);
  return vector;
}

}  // namespace

std::vector<SummaryVector> summaryVectors(const SummarySpec& spec) {
  return summaryVectors(spec, std::vector<bool>(spec.qKeyMask.size(), true));
}

std::vector<SummaryVector> summaryVectors(const SummarySpec& spec, const std::vector<bool>& chosen) {
  std::vector<SummaryVector> vectors;
  vectors.reserve(static_cast<std::size_t>(std::ranges::count(chosen, true)));
  std::size_t kept = 0;
  for (std::size_t i = 0; i < spec.xVectors.size(); ++i) {
    if (!spec.qKeyMask[i] || !chosen[kept++]) continue;
    vectors.push_back(
        makeVector(i + 1, [&](std::int32_t iAttribute) { return spec.text(spec.xVectors[i], iAttribute); }));
  }
  return vectors;
}

std::vector<std::string> summaryNames(const SummarySpec& spec,
                                      const std::function<bool(std::string_view)>& wanted) {
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(spec.nKeysUsed));
  std::vector<std::optional<bool>> answers(static_cast<std::size_t>(spec.xStore(attributeVariable).count()) +
                                           1);
  SummaryVector vector;
  for (std::size_t i = 0; i < spec.xVectors.size(); ++i) {
    if (!spec.qKeyMask[i]) continue;
    const auto text = [&](std::int32_t iAttribute) { return spec.text(spec.xVectors[i], iAttribute); };
    auto& answer = answers[static_cast<std::size_t>(std::max<std::int32_t>(spec.xVectors[i].iVariable, 0))];
    if (!answer) answer = wanted(mnemonicOf(text(attributeVariable)));
    vector.name.clear();
    if (*answer) readName(vector, text);
    names.push_back(vector.name);
  }
  return names;
}

std::vector<SummaryVector> summaryVectors(const ByteTable& bHeaders) {
  std::vector<SummaryVector> vectors;
  vectors.reserve(bHeaders.entries());
  for (std::size_t i = 1; i <= bHeaders.entries(); ++i) {
    vectors.push_back(makeVector(i, [&](std::int32_t iAttribute) {
      const HeaderField field = headerField(iAttribute);
      return bHeaders.get(i, field.firstByte, field.width);
    }));
  }
  return vectors;
}

}  // namespace lumbarn
