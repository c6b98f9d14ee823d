#include "Extensions.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "../support/Text.h"
#include "Folder.h"

namespace lumbarn {
namespace {

using enum FileKind;

constexpr ExtensionSet sets[] = {
    // kind, described by, formatted, short, spec, unified, pattern of, digits, stems
    {Summary, SummarySpec, false, false, "smspec", "unsmry", "smspec", 4, {"s"}},
    {Summary, SummarySpec, true, false, "fsmspec", "funsmry", "fsmspec", 4, {"a"}},
    {Restart, Rsspec, false, false, "rsspec", "unrst", "unrst", 4, {"x"}},
    {Restart, Rsspec, true, false, "frsspec", "funrst", "funrst", 4, {"f"}},
    {Save, Unknown, false, false, "", "save", "", 4, {"v"}},
    {Save, Unknown, true, false, "", "fsave", "", 4, {"d"}},
    {Streamline, StreamlineSpec, false, false, "slnspec", "", "slnspec", 4, {"sln"}},
    {Summary, SummarySpec, false, true, "sms", "usy", "sms", 2, {"s", "t", "u"}},
    {Summary, SummarySpec, true, true, "fsm", "fus", "fsm", 2, {"a", "b", "c"}},
    {Restart, Rsspec, false, true, "", "urs", "urs", 2, {"x", "y", "z"}},
    {Restart, Rsspec, true, true, "", "fur", "fur", 2, {"f", "g", "h"}},
    {Save, Unknown, false, true, "", "sav", "", 2, {"v", "w", "k"}},
    {Save, Unknown, true, true, "", "fsa", "", 2, {"d", "e", "i"}},
};

struct SingleExtension {
  std::string_view extension;
  FileKind kind;
  bool formatted;
};
constexpr SingleExtension singles[] = {
    {"data", Deck, true},      {"init", Init, false},   {"finit", Init, true},   {"inspec", Inspec, false},
    {"finspec", Inspec, true}, {"egrid", EGrid, false}, {"fegrid", EGrid, true}, {"grid", Grid, false},
    {"fgrid", Grid, true},     {"rft", Rft, false},     {"frft", Rft, true},     {"rsm", Rsm, true},
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

std::string inCase(std::string_view text, bool isUpper) { return isUpper ? upper(text) : std::string(text); }

// One pattern for each stem: "RUN.s??;RUN.t??". Only what is ours takes the case, the lead stays.
std::string joinPatterns(const ExtensionSet& set, std::string_view lead, char digit, bool isUpper) {
  std::string list;
  for (const std::string_view stem : set.stems) {
    if (stem.empty()) break;
    if (!list.empty()) list += ';';
    list += lead;
    list += inCase(stem, isUpper);
    list.append(static_cast<std::size_t>(set.digits), digit);
  }
  return list;
}

const ExtensionSet* findPatternRow(std::string_view extension) {
  const auto* row = std::ranges::find_if(sets, [&](const ExtensionSet& set) {
    return !set.patternOf.empty() && equalNoCase(set.patternOf, extension);
  });
  return row == std::end(sets) ? nullptr : row;
}

// The set whose patterns the two public pattern routines give. Of the multiple extensions they know the first
// letters of restart sets only, and a "B" with long digits that no table of names has; both deliberate.
const ExtensionSet* findPatterns(std::string_view extension) {
  static constexpr ExtensionSet longB{Summary, SummarySpec, true, false, "", "", "", 4, {"b"}};
  if (const ExtensionSet* row = findPatternRow(extension)) return row;
  std::string letter;
  std::int32_t number = -1;
  const std::int32_t digits = checkMultipleExtension(extension, letter, number);
  if (digits == 0) return nullptr;
  letter = lower(letter);
  if (letter == "f" || letter == "x") return findExtensionSet(Restart, letter == "f", digits == 2);
  return letter == "b" && digits >= 3 ? &longB : nullptr;
}

}  // namespace

std::int32_t whichtypeOf(FileKind kind) {
  switch (kind) {
    case Restart:
      return 11;
    case SummarySpec:
      return 12;
    case Summary:
      return 13;
    case Grid:
      return 14;
    case Init:
    case Inspec:
      return 15;
    case Rft:
      return 18;
    case Rsm:
      return 19;
    case EGrid:
      return 23;
    case Deck:
      return 25;
    case Rsspec:
      return 28;
    case UserRft:
      return 76;
    case UserPlt:
      return 77;
    case Streamline:
    case StreamlineSpec:
      return 152;
    case Save:
    case Unknown:
      break;
  }
  return 0;
}

std::string_view nameOf(FileKind kind) {
  switch (kind) {
    case Unknown:
      break;
    case Deck:
      return "data deck";
    case SummarySpec:
      return "summary specification";
    case Summary:
      return "summary";
    case Restart:
      return "restart";
    case Rsspec:
      return "restart index";
    case Init:
      return "INIT";
    case Inspec:
      return "INIT index";
    case EGrid:
      return "EGRID";
    case Grid:
      return "GRID";
    case Rft:
      return "RFT";
    case Save:
      return "save";
    case StreamlineSpec:
      return "streamline specification";
    case Streamline:
      return "streamlines";
    case Rsm:
      return "summary text table";
    case UserRft:
      return "user RFT";
    case UserPlt:
      return "user PLT";
  }
  return "unknown";
}

bool isText(FileKind kind) { return kind == Deck || kind == Rsm || kind == UserRft || kind == UserPlt; }

FileName::FileName(std::string_view zFile) {
  const std::size_t nameAt = zFile.find_last_of(folderSeparators()) + 1;  // npos + 1 is 0
  folder = zFile.substr(0, nameAt);
  const std::string_view name = zFile.substr(nameAt);
  const std::size_t dot = name.rfind('.');
  base = name.substr(0, dot);
  if (dot != std::string_view::npos) extension = name.substr(dot + 1);
}

std::optional<std::int32_t> ExtensionSet::stepOf(std::string_view extension) const {
  const auto count = static_cast<std::size_t>(digits);
  if (extension.size() <= count) return std::nullopt;
  const std::string_view stem = extension.substr(0, extension.size() - count);
  const std::string_view number = extension.substr(stem.size());
  if (!std::ranges::all_of(number, isDigit)) return std::nullopt;
  for (std::size_t i = 0; i < stems.size(); ++i) {
    if (!stems[i].empty() && equalNoCase(stems[i], stem)) {
      return static_cast<std::int32_t>(*toInteger(number)) + static_cast<std::int32_t>(i) * 100;
    }
  }
  return std::nullopt;
}

std::string ExtensionSet::extensionOf(std::int32_t step) const {
  if (step < 0 || step >= (shortNames ? 300 : 10000)) return {};
  if (shortNames) return fmt::format("{}{:02}", stems[static_cast<std::size_t>(step / 100)], step % 100);
  return fmt::format("{}{:04}", stems[0], step);
}

std::span<const ExtensionSet> extensionSets() { return sets; }

const ExtensionSet* findExtensionSet(FileKind kind, bool formatted, bool shortNames) {
  const auto* row = std::ranges::find_if(sets, [&](const ExtensionSet& set) {
    return set.kind == kind && set.formatted == formatted && set.shortNames == shortNames;
  });
  return row == std::end(sets) ? nullptr : row;
}

ExtensionMeaning meaningOf(std::string_view extension) {
  if (extension.empty()) return {};
  for (const ExtensionSet& set : sets) {
    if (equalNoCase(set.spec, extension)) return {set.specKind, set.formatted, -1, &set};
    if (equalNoCase(set.unified, extension)) return {set.kind, set.formatted, -1, &set};
    if (const auto step = set.stepOf(extension)) return {set.kind, set.formatted, *step, &set};
  }
  for (const SingleExtension& single : singles) {
    if (equalNoCase(single.extension, extension)) return {single.kind, single.formatted, -1, nullptr};
  }
  return {};
}

bool isUpperCase(std::string_view extension) {
  return std::ranges::none_of(extension, [](char c) { return c >= 'a' && c <= 'z'; });
}

std::string RestartExtension(std::int32_t iStep, bool qShort, bool qUnified, bool qFormatted, bool qUpper,
                             std::int32_t iKind, bool& qOK, bool qSave, bool qQuestion) {
  qOK = true;
  const ExtensionSet& set = *findExtensionSet(qSave ? Save : Restart, qFormatted, qShort);
  const std::string_view holder = qQuestion ? "????" : "####";
  const auto withDigits = [&] {
    if (!qShort) {
      const std::string definite = set.extensionOf(iStep);
      return definite.empty() ? fmt::format("{}{}", set.stems[0], holder) : definite;
    }
    const std::int32_t hundreds = iStep / 100;
    std::string letter(set.stems[static_cast<std::size_t>(std::clamp(hundreds, 0, 2))]);
    // What letter a step from 300 on has is not settled, so that a list pattern must take all three; a search
    // pattern without sets makes do with the first.
    if (hundreds >= 3) {
      letter = qQuestion ? std::string(set.stems[0]) : fmt::format("[{}]", fmt::join(set.stems, ""));
    }
    // Steps below 100 have no digits of their own here, deliberately: hosts list them all by the pattern.
    if (hundreds < 1 || hundreds > 3) return fmt::format("{}{}", letter, holder.substr(0, 2));
    return fmt::format("{}{:02}", letter, iStep % 100);
  };
  const bool unified = qUnified || (iKind == 1 && qSave);
  return inCase(unified ? std::string(set.unified) : withDigits(), qUpper);
}

std::int32_t GetNumericPartOfFileName(std::string_view zFile) {
  const FileName name(zFile);
  if (const ExtensionMeaning meaning = meaningOf(name.extension); meaning.multiple()) return meaning.step;
  std::string letter;
  std::int32_t number = -1;
  checkMultipleExtension(name.extension, letter, number);  // a letter that is in no table tells no hundreds
  return number;
}

std::int32_t checkMultipleExtension(std::string_view zExtension, std::string& zLetter,
                                    std::int32_t& nDigits) {
  const std::string extension(zExtension);  // zLetter may be where zExtension stands
  zLetter.clear();
  nDigits = -1;
  const auto letters =
      static_cast<std::size_t>(std::ranges::find_if_not(extension, isLetter) - extension.begin());
  const std::string_view number = std::string_view(extension).substr(letters);
  const bool oneLetter = letters == 1 && (number.size() == 2 || number.size() == 4);
  const bool streamline =
      equalNoCase(std::string_view(extension).substr(0, letters), "sln") && number.size() == 4;
  if (!(oneLetter || streamline) || !std::ranges::all_of(number, isDigit)) return 0;
  zLetter = extension.substr(0, letters);
  nDigits = static_cast<std::int32_t>(*toInteger(number));
  return static_cast<std::int32_t>(number.size());
}

std::string GetFilePatterns(std::string_view zExtension) {
  const ExtensionSet* set = findPatterns(zExtension);
  return set ? joinPatterns(*set, "", '0', true) : std::string();
}

std::string GetFilePatternsForListBox(std::string_view zBase, std::string_view zExtension) {
  const ExtensionSet* set = findPatterns(zExtension);
  return set ? joinPatterns(*set, std::string(zBase) + '.', '?', isUpperCase(zExtension)) : std::string();
}

void GetExtensionPattern(std::string_view zFile, std::string& zMult, const FileName& cFile) {
  const ExtensionSet* set = findPatternRow(cFile.extension);
  const bool isUpper = set && isUpperCase(cFile.extension);
  // Whatever is not in the table counts as a short lower-case summary, deliberately.
  if (!set) set = findExtensionSet(Summary, false, true);
  zMult = joinPatterns(*set, std::string(zFile) + '.', '#', isUpper);
}

}  // namespace lumbarn
