#include "SummaryVector.h"

#include <algorithm>
#include <limits>
#include <span>
#include <string_view>

#include "../shapes/HeaderLayout.h"
#include "../support/Text.h"

namespace lumbarn {
namespace {

constexpr std::array<std::string_view, 5> classesWithMember = {"COMPLETIONS", "GROUPS", "NODES", "SEGMENTS",
                                                               "WELLS"};
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

std::optional<std::array<std::int32_t, 3>> toCell(std::string_view text) {
  std::array<std::int32_t, 3> cell;
  for (std::size_t n = 0; n < cell.size(); ++n) {
    text = trim(text);
    const auto end = n + 1 < cell.size() ? text.find(' ') : text.size();
    if (end == std::string_view::npos) return std::nullopt;
    const auto number = toNumber(text.substr(0, end));
    if (!number) return std::nullopt;
    cell[n] = *number;
    text.remove_prefix(end);
  }
  return cell;
}

void readIndex(SummaryVector& vector) {
  vector.cell = toCell(vector.index);
  if (vector.cell) return;
  if (const auto dash = vector.index.find('-', 1); dash != std::string::npos) {
    readPair(vector, dash);
  } else {
    vector.number = toNumber(vector.index);
  }
}

std::string indexName(const SummaryVector& vector) {
  if (vector.cell) {
    const auto& [i, j, k] = *vector.cell;
    return std::to_string(i) + ',' + std::to_string(j) + ',' + std::to_string(k);
  }
  if (vector.regionPair) {
    return std::to_string(vector.regionPair->first) + '-' + std::to_string(vector.regionPair->second);
  }
  return vector.number ? std::to_string(*vector.number) : vector.index;
}

std::string fullName(const SummaryVector& vector) {
  std::string name = vector.mnemonic;
  const auto append = [&name](const std::string& part) {
    if (part.empty()) return;
    name += ':';
    name += part;
  };
  append(vector.lgr);
  append(vector.member);
  append(indexName(vector));
  return name;
}

/// `text` gives an attribute's text.
template <class Text>
SummaryVector makeVector(std::size_t column, Text&& text) {
  SummaryVector vector;
  vector.column = column;
  const std::string_view variable = text(attributeVariable);
  vector.mnemonic = trim(variable.substr(0, variable.find('\t')));
  vector.classWord = text(attributeClass);
  const bool inLGR = vector.classWord == "LGR";
  if (inLGR) {
    vector.lgr = text(attributeLGRName);
    vector.lgrClass = text(attributeLGRClass);
  }
  const std::string_view owner = inLGR ? vector.lgrClass : vector.classWord;
  if (isOneOf(owner, classesWithMember)) vector.member = trim(text(attributeMember));
  if (isOneOf(owner, classesWithIndex)) vector.index = text(attributeIndex);
  if (!vector.index.empty()) readIndex(vector);
  vector.units = text(attributeUnits);
  vector.description = text(attributeVerbose);
  vector.name = fullName(vector);
  return vector;
}

}  // namespace

std::vector<SummaryVector> summaryVectors(const qvEclipseSPEC& spec) {
  std::vector<SummaryVector> vectors;
  vectors.reserve(static_cast<std::size_t>(spec.nKeysUsed));
  for (std::size_t i = 0; i < spec.xVectors.size(); ++i) {
    if (!spec.qKeyMask[i]) continue;
    vectors.push_back(
        makeVector(i + 1, [&](std::int32_t iAttribute) { return spec.text(spec.xVectors[i], iAttribute); }));
  }
  return vectors;
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
