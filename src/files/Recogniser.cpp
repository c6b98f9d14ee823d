#include "Recogniser.h"

#include <algorithm>
#include <exception>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "../record/LineReader.h"
#include "../record/RecordCursor.h"
#include "../support/Diagnosis.h"
#include "../support/Text.h"
#include "UserTestText.h"

namespace lumbarn {
namespace {

using enum FileKind;

constexpr int headersLookedAt = 256;

// Keywords that tell a kind wherever they stand among the first records.
constexpr std::pair<std::string_view, FileKind> signs[] = {
    {"PARAMS", Summary}, {"KEYWORDS", SummarySpec}, {"FILEHEAD", EGrid},      {"GRIDHEAD", EGrid},
    {"COORDS", Grid},    {"CORNERS", Grid},         {"GEOMETRY", Streamline}, {"GEOMINDX", Streamline},
    {"WELLETC", Rft},    {"ITIME", Rsspec},         {"NAME", Inspec},         {"LGRNAME", Inspec},
    {"POINTER", Inspec},
};

// Keywords that tell a kind behind INTEHEAD.
constexpr std::pair<std::string_view, FileKind> signsBehindHead[] = {
    {"DIMENS", SummarySpec},
    {"TIME", Rsspec},
    {"IGRP", Restart},
    {"SGRP", Restart},
    {"XGRP", Restart},
    {"ZGRP", Restart},
    {"ISEG", Restart},
    {"RSEG", Restart},
    {"IWEL", Restart},
    {"SWEL", Restart},
    {"XWEL", Restart},
    {"ZWEL", Restart},
    {"ICON", Restart},
    {"SCON", Restart},
    {"XCON", Restart},
    {"STARTSOL", Restart},
    {"ENDSOL", Restart},
    {"PRESSURE", Restart},
    {"SWAT", Restart},
    {"SGAS", Restart},
    {"SOIL", Restart},
    {"RS", Restart},
    {"RV", Restart},
    {"PORV", Init},
    {"DEPTH", Init},
    {"DX", Init},
    {"DY", Init},
    {"DZ", Init},
    {"DR", Init},
    {"DTHETA", Init},
    {"TOPS", Init},
    {"PORO", Init},
    {"PERMX", Init},
    {"PERMR", Init},
    {"NTG", Init},
    {"TRANX", Init},
    {"TRANR", Init},
    {"TABDIMS", Init},
    {"TAB", Init},
    {"EQLNUM", Init},
    {"PVTNUM", Init},
    {"SATNUM", Init},
    {"FIPNUM", Init},
};

template <std::size_t n>
FileKind signOf(const std::pair<std::string_view, FileKind> (&table)[n], std::string_view keyword) {
  const auto* row = std::ranges::find(table, keyword, &std::pair<std::string_view, FileKind>::first);
  return row == std::end(table) ? Unknown : row->second;
}

bool isAnyOf(std::string_view keyword, std::initializer_list<std::string_view> words) {
  return std::ranges::find(words, keyword) != words.end();
}

// Takes the headers of a file one after the other and draws conclusions.
class Evidence {
 public:
  explicit Evidence(FileKind byName) : byName_(byName) {}

  // False once the kind is settled and no further header matters.
  bool take(const RecordHeader& header) {
    const std::string_view keyword = header.keyword;
    const bool first = count_++ == 0;
    if (keyword == "SEQHDR") ++reportSteps_;
    if (kind_ == Unknown) conclude(header, first);
    return (kind_ == Unknown && !foreign_) || (kind_ == Summary && reportSteps_ < 2);
  }

  // What the records tell when no more come.
  FileKind kind() const {
    if (kind_ != Unknown || foreign_) return kind_;
    if (inSummaryStep_) return Summary;
    if (restartRecord_) return byName_ == StreamlineSpec ? StreamlineSpec : SummarySpec;
    if (welltest_) return Rft;
    if (headWords_ == 2) return SummarySpec;
    if ((headWords_ || stepNumber_) && isOpen(byName_)) return byName_;
    if (headWords_ == 10) return Streamline;
    return headWords_ || stepNumber_ ? Restart : Unknown;
  }
  bool stepNumber() const { return stepNumber_; }
  bool severalReportSteps() const { return reportSteps_ > 1; }

 private:
  // Kinds that may go on in any way behind INTEHEAD.
  bool isOpen(FileKind kind) const {
    if (stepNumber_) return kind == Init || kind == Restart;
    return kind == Init || kind == Restart || kind == SummarySpec || kind == Rsspec || kind == Inspec ||
           kind == Streamline;
  }

  void conclude(const RecordHeader& header, bool first) {
    const std::string_view keyword = header.keyword;
    if (isForeign(keyword)) {
      foreign_ = true;
    } else if (isAnyOf(keyword, {"SEQHDR", "MINISTEP"})) {
      inSummaryStep_ = true;
    } else if (first && isAnyOf(keyword, {"INITIAL", "SAVEHEAD", "STATIC", "DYNAMIC"})) {
      kind_ = Save;
    } else if (restartRecord_) {
      // A streamline specification begins as that of a summary does.
      if (isAnyOf(keyword, {"NAMES", "EXTENT"})) kind_ = StreamlineSpec;
      if (isAnyOf(keyword, {"DIMENS", "KEYWORDS", "WGNAMES", "NUMS", "UNITS"})) kind_ = SummarySpec;
    } else if (keyword == "RESTART") {
      restartRecord_ = true;
    } else if (keyword == "SEQNUM") {
      stepNumber_ = true;
    } else if (keyword == "INTEHEAD") {
      headWords_ = header.count;
    } else if (!headWords_ && keyword == "DIMENS") {
      kind_ = Grid;
    } else if (!headWords_ && keyword == "TIME") {
      // The index of a restart set has its times as doubles, tests have theirs as singles.
      if (header.type == ElementType::Double) kind_ = Rsspec;
      welltest_ = true;
    } else {
      kind_ = signOf(signs, keyword);
      if (kind_ == Unknown && headWords_) kind_ = signOf(signsBehindHead, keyword);
      // Some writers put a step number in front of an INIT file too, and some restarts hold static arrays.
      if (kind_ == Init && stepNumber_ && byName_ == Restart) kind_ = Restart;
    }
  }

  // FLUX files have steps as summaries have, with other records in them, and some begin with a head of two
  // words. KEYCHECK is in copies of a summary that are arranged by vector, which begin as specifications do.
  bool isForeign(std::string_view keyword) const {
    if (keyword == "KEYCHECK") return true;
    if (byName_ == Summary || byName_ == SummarySpec) return false;
    if (inSummaryStep_) return !isAnyOf(keyword, {"SEQHDR", "MINISTEP", "PARAMS"});
    return headWords_ == 2 && !restartRecord_ && !isAnyOf(keyword, {"RESTART", "DIMENS"});
  }

  FileKind byName_;
  FileKind kind_ = Unknown;
  bool foreign_ = false;        // of no type in the table
  bool inSummaryStep_ = false;  // SEQHDR or MINISTEP has been met
  std::int64_t count_ = 0;
  std::int64_t reportSteps_ = 0;
  std::optional<std::int64_t> headWords_;  // words of INTEHEAD, once it has been met
  bool stepNumber_ = false;                // SEQNUM has been met
  bool restartRecord_ = false;             // RESTART has been met
  bool welltest_ = false;                  // TIME has been met in front
};

std::optional<bool> isUnified(FileKind kind, const Evidence& evidence, const ExtensionMeaning& name) {
  const bool nameSaysMultiple = name.kind == kind && name.multiple();
  switch (kind) {
    case Restart:
      return evidence.stepNumber() && !nameSaysMultiple;  // some writers begin step files with SEQNUM too
    case Summary:
      return evidence.severalReportSteps() || !nameSaysMultiple;
    case Save:
      return !nameSaysMultiple;
    case Streamline:
      return false;
    default:
      return std::nullopt;
  }
}

// Reads headers until the evidence settles the kind, the file ends or its records break off.
void gather(const std::shared_ptr<const ByteSource>& source, const std::string& name, Evidence& evidence,
            Recognised& result) {
  const auto detected = detectForm(*source);
  if (!detected) {
    const bool empty = source->size() == 0;
    result.problem = Diagnosis{.message = empty ? Message::FileEmpty : Message::FileType,
                               .path = name,
                               .problem = empty ? "" : "not a record file",
                               .offset = 0,
                               .expected = empty ? "" : "a record header",
                               .action = "read nothing of it"};
    return;
  }
  result.form = detected->form;
  RecordCursor cursor(source, detected->form, name);
  try {
    for (int taken = 0; taken < headersLookedAt && cursor.next(); ++taken) {
      if (taken == 0) result.keyword = cursor.header().keyword, result.offset = cursor.header().headerAt;
      if (!evidence.take(cursor.header())) return;
    }
  } catch (const BadRecord& bad) {
    result.problem = bad.diagnosis();
    // A sound header counts even when its data are cut off.
    if (cursor.occurrence() > 0) evidence.take(cursor.header());
  }
}

std::vector<std::byte> front(const ByteSource& source) {
  constexpr std::uint64_t textLookedAt = 16384;
  std::vector<std::byte> bytes(static_cast<std::size_t>(std::min(textLookedAt, source.size())));
  bytes.resize(source.readAt(0, bytes));
  return bytes;
}

std::string withArticle(FileKind kind) {
  const std::string_view name = nameOf(kind);
  const bool vowel = std::string_view("AEIOUaeiou").find(name.front()) != std::string_view::npos;
  return fmt::format("{} {}", vowel || kind == Rft ? "an" : "a", name);  // "an RFT"
}

bool isKeyword(std::string_view word) {
  const auto isFirst = [](char c) { return c >= 'A' && c <= 'Z'; };
  const auto isAny = [&](char c) { return isFirst(c) || (c >= '0' && c <= '9'); };
  return !word.empty() && word.size() <= 8 && isFirst(word.front()) && std::ranges::all_of(word, isAny);
}

/// The offset of the first keyword of a text that is a deck or one of its INCLUDE files: a keyword, and a
/// record that a slash ends. Nothing for another text.
std::optional<std::uint64_t> deckTextAt(const ByteSource& source) {
  LineReader reader(std::make_shared<MemorySource>(front(source)), "");
  std::optional<std::uint64_t> keywordAt;
  while (reader.next()) {
    const std::string line = upper(trim(reader.line()));
    if (line.empty() || line.starts_with("--")) continue;
    if (!keywordAt && !isKeyword(words(line).front())) return std::nullopt;
    if (!keywordAt) keywordAt = reader.position();
    if (words(line).back().ends_with('/')) return keywordAt;
  }
  return std::nullopt;
}

/// Sets the kind of a text and the byte that shows it.
void recogniseText(const ByteSource& source, Recognised& result) {
  if (!looksLikeText(source)) return;
  if (const auto tests = recogniseUserTest(source)) {
    result.kind = tests->kind == UserTestKind::Rft ? UserRft : UserPlt;
    result.offset = tests->offset;
  } else if (const auto deckAt = deckTextAt(source)) {
    result.kind = Deck;
    result.offset = *deckAt;
  }
}

}  // namespace

bool looksLikeText(const ByteSource& source) {
  const auto bytes = front(source);
  return std::ranges::find(bytes, std::byte{0}) == bytes.end();
}

Recognised recognise(std::shared_ptr<const ByteSource> source, const std::string& name) {
  const ExtensionMeaning byName = meaningOf(FileName(name).extension);
  Recognised result;
  Evidence evidence(byName.kind);
  try {
    gather(source, name, evidence, result);
    if (!result.form) recogniseText(*source, result);
    if (result.kind != Unknown) result.problem.reset();
  } catch (const BadRecord& bad) {
    result.problem = bad.diagnosis();
  } catch (const std::exception& failure) {
    result.problem = Diagnosis{.message = Message::FileRead, .path = name, .found = failure.what()};
  }
  if (result.kind == Unknown) result.kind = evidence.kind();
  result.byContent = result.kind != Unknown;
  if (result.byContent) {
    result.unified = isUnified(result.kind, evidence, byName);
    return result;
  }
  result.kind = byName.kind;
  if (byName.set && byName.kind == byName.set->kind) result.unified = !byName.multiple();
  return result;
}

Recognised recogniseFile(const std::string& path) {
  std::string problem;
  if (std::shared_ptr<const ByteSource> source = FileSource::open(path, problem))
    return recognise(source, path);
  Recognised result = recognise(std::make_shared<MemorySource>(std::vector<std::byte>()), path);
  result.problem = Diagnosis{
      .message = Message::FileOpen, .path = path, .problem = problem, .action = "read nothing of it"};
  return result;
}

Diagnosis refusal(const std::string& path, FileKind expected) {
  const Recognised found = recogniseFile(path);
  if (found.keyword.empty() && found.problem) return *found.problem;
  Diagnosis diagnosis{.message = Message::FileType,
                      .path = path,
                      .keyword = found.keyword,
                      .occurrence = found.keyword.empty() ? 0 : 1,
                      .offset = found.offset,
                      .expected = std::string(nameOf(expected)),
                      .action = "read nothing of it"};
  diagnosis.problem = fmt::format("not {} file", withArticle(expected));
  diagnosis.found = found.byContent ? nameOf(found.kind) : "a file of unknown type";
  if (found.byContent && found.kind != expected)
    diagnosis.problem = fmt::format("is {} file, {}", withArticle(found.kind), diagnosis.problem);
  return diagnosis;
}

}  // namespace lumbarn
