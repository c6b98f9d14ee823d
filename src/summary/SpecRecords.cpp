#include "SpecRecords.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <utility>

#include "../shapes/HeaderLayout.h"
#include "../support/Fault.h"
#include "../support/Text.h"
#include "../vocabulary/Units.h"

namespace lumbarn {
namespace {

constexpr std::array<std::string_view, 17> usedRecords = {
    "INTEHEAD", "DIMENS",  "NUMS",     "STARTDAT", "NUMLX", "NUMLY",    "NUMLZ",    "LENGTHS", "RESTART",
    "NAMES",    "WGNAMES", "KEYWORDS", "UNITS",    "LGRS",  "LGRNAMES", "STEPRESN", "LENUNITS"};

std::string startDate(const std::vector<std::int32_t>& words) {
  if (words.size() < 3) return {};
  return std::to_string(words[0]) + ' ' + std::string(monthName(words[1])) + ' ' + std::to_string(words[2]);
}

/// The pieces of 8 as they stand, joined: a blank at the end of one may be inside the path.
std::string restartName(RecordCursor& cursor) {
  const RecordHeader& header = cursor.header();
  std::string name(static_cast<std::size_t>(header.count) * static_cast<std::size_t>(header.width), ' ');
  cursor.readText(name);
  return std::string(trim(cutAtNul(name)));
}

}  // namespace

bool SpecRecords::read() {
  while (cursor_.next()) {
    const RecordHeader& header = cursor_.header();
    spec_.zRecordName.push_back(header.keyword);
    spec_.zRecordType.push_back(header.typeWord);
    ++spec_.nRecords;
    if (!spec_.qScanOnly && wanted()) take();
    if (session_.Container && spec_.UseBufferedInput) {
      session_.Container->fraction(static_cast<double>(header.dataAt) /
                                   static_cast<double>(cursor_.fileSize()));
    }
    if (session_.cancelled()) return false;
  }
  atEnd_ = true;
  return true;
}

bool SpecRecords::wanted() {
  if (std::ranges::find(usedRecords, cursor_.header().keyword) == usedRecords.end()) return false;
  if (cursor_.occurrence() == 1) {
    headerAt_.emplace(cursor_.header().keyword, cursor_.header().headerAt);
    return true;
  }
  report(Message::SpecRecordTwice, cursor_.header().keyword, "used the first one");
  return false;
}

void SpecRecords::take() {
  const RecordHeader& header = cursor_.header();
  if (header.count > std::numeric_limits<std::int32_t>::max()) throw Fault(FaultNumber::Overflow);
  if (header.type == ElementType::Integer) takeNumbers(header.keyword);
  if (header.type == ElementType::Text) takeText(header.keyword);
  if (header.is("LENGTHS", ElementType::Single)) spec_.sLENGTHS = cursor_.singles();
}

void SpecRecords::takeNumbers(std::string_view keyword) {
  const RecordHeader& header = cursor_.header();
  const std::pair<std::string_view, std::vector<std::int32_t>*> arrays[] = {
      {"DIMENS", &spec_.iDIMENS}, {"NUMS", &spec_.iNUMS},   {"STARTDAT", &spec_.iSTARTDAT},
      {"NUMLX", &spec_.iNUMLX},   {"NUMLY", &spec_.iNUMLY}, {"NUMLZ", &spec_.iNUMLZ}};
  for (const auto& [name, array] : arrays) {
    if (name == keyword) *array = cursor_.integers();
  }
  if (keyword == "INTEHEAD" && header.count > 0) {
    std::int32_t system = 0;
    cursor_.read(std::span(&system, 1));
    if (unitSystemOfNumber(system) != 0) spec_.iUnitSystem = system;
  }
  if (keyword == "DIMENS" && spec_.iDIMENS.size() > 5) spec_.iRestartStep = std::max(spec_.iDIMENS[5], 0);
  if (keyword == "STARTDAT") {
    spec_.zStartDate = startDate(spec_.iSTARTDAT);
    if (!spec_.start()) report(Message::SpecStartDate, keyword, "rows have no dates");
  }
}

void SpecRecords::takeText(std::string_view keyword) {
  if (keyword == "RESTART") spec_.zRestartName = restartName(cursor_);
  if (keyword == "LENUNITS") {
    spec_.zLENUNITS = cursor_.texts();
    for (std::string& unit : spec_.zLENUNITS) unit = std::string(trim(unit));
  }
  if (keyword == "STEPRESN") spec_.zSTEPRESN = cursor_.texts();
  if (keyword == "LGRNAMES") spec_.nLGRs = static_cast<std::int32_t>(cursor_.header().count);
  if (keyword == "UNITS") spec_.nUnits = addTexts(attributeUnits);
  if (keyword == "LGRS") addTexts(attributeLGRS);
  // NAMES are the long names of newer writers; where WGNAMES stands beside them, it has them cut to 8.
  if (keyword == "NAMES") {
    spec_.nNameWidth = cursor_.header().width;
    addTexts(attributeMember);
    haveLongNames_ = true;
  }
  if (keyword == "WGNAMES" && !haveLongNames_) {
    spec_.nNameWidth = cursor_.header().width;
    addTexts(attributeMember);
  }
  if (keyword == "KEYWORDS") {
    spec_.nVectors = addTexts(attributeVariable);
    spec_.qKeyMask.assign(static_cast<std::size_t>(spec_.nVectors), true);
    spec_.qSelection = spec_.qKeyMask;
    haveKeywords_ = true;
  }
}

/// Adds all items of the record to their store at once; gives their count.
std::int32_t SpecRecords::addTexts(std::int32_t iAttribute) {
  const RecordHeader& header = cursor_.header();
  const auto count = static_cast<std::int32_t>(header.count);
  std::vector<char> texts(static_cast<std::size_t>(header.count) * static_cast<std::size_t>(header.width));
  cursor_.readText(texts);

  AttributeStore& store = spec_.xStore(iAttribute);
  store = AttributeStore(std::max(defaultAttributeSizes(iAttribute).nWidth, header.width));
  pointers_[static_cast<std::size_t>(iAttribute)] =
      store.addBlock(texts, static_cast<std::size_t>(header.count), static_cast<std::size_t>(header.width));
  store.shrink();
  return count;
}

void SpecRecords::join() {
  const auto vectors = static_cast<std::size_t>(spec_.nVectors);
  spec_.xVectors.assign(vectors, VECTORDATA{});
  for (const std::int32_t iAttribute : {attributeVariable, attributeMember, attributeUnits, attributeLGRS}) {
    const std::vector<std::int32_t>& numbers = pointers_[static_cast<std::size_t>(iAttribute)];
    const std::size_t count = std::min(numbers.size(), vectors);
    for (std::size_t i = 0; i < count; ++i) setPointer(spec_.xVectors[i], iAttribute, numbers[i]);
  }
  if (!haveKeywords_) {
    report(Message::SpecRecordMissing, "KEYWORDS", "found no vectors");
  } else {
    checkCount(haveLongNames_ ? "NAMES" : "WGNAMES", pointers_[attributeMember].size(), true);
    checkCount("UNITS", pointers_[attributeUnits].size(), true);
    checkCount("NUMS", spec_.iNUMS.size(), true);
    checkCount("LGRS", pointers_[attributeLGRS].size(), false);
    checkCount("NUMLX", spec_.iNUMLX.size(), false);
    checkCount("NUMLY", spec_.iNUMLY.size(), false);
    checkCount("NUMLZ", spec_.iNUMLZ.size(), false);
    if (spec_.iSTARTDAT.empty() && atEnd_)
      report(Message::SpecRecordMissing, "STARTDAT", "rows have no dates");
  }
  for (auto* array : {&spec_.iNUMS, &spec_.iNUMLX, &spec_.iNUMLY, &spec_.iNUMLZ}) array->resize(vectors, 0);
}

void SpecRecords::checkCount(std::string_view keyword, std::size_t found, bool needed) {
  const auto expected = static_cast<std::size_t>(spec_.nVectors);
  if (found == expected) return;
  if (found == 0 && (!needed || !atEnd_)) return;  // behind damage, what is missing needs no second word
  const auto at = headerAt_.find(keyword);
  if (at == headerAt_.end()) return report(Message::SpecRecordMissing, keyword, "read as blank or 0");
  session_.diagnose({.message = Message::SpecRecordLength,
                     .path = cursor_.path(),
                     .keyword = std::string(keyword),
                     .occurrence = 1,
                     .offset = at->second,
                     .expected = std::to_string(expected) + " elements",
                     .found = std::to_string(found),
                     .action = "used it as far as it goes",
                     .certainty = Certainty::Likely});
}

void SpecRecords::report(Message message, std::string_view keyword, std::string_view action) const {
  Diagnosis diagnosis{.message = message, .path = cursor_.path(), .keyword = std::string(keyword)};
  diagnosis.action = action;
  if (message == Message::SpecRecordMissing) {
    diagnosis.offset = cursor_.nextPosition();
    diagnosis.found = "end of file";
  } else {
    diagnosis.occurrence = cursor_.occurrence();
    diagnosis.offset = cursor_.header().headerAt;
  }
  session_.diagnose(std::move(diagnosis));
}

}  // namespace lumbarn
