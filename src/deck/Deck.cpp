#include "Deck.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include "../support/Closest.h"
#include "../support/Pattern.h"
#include "../support/Session.h"
#include "../support/Text.h"
#include "KeywordForms.h"

namespace lumbarn {

struct Deck::Index {
  KeywordForms forms;
  std::string path;
  std::vector<DeckKeyword> keywords;
  std::vector<DeckNote> notes;
  DeckFiles files;
  DeckSimulator simulator = DeckSimulator::FromPhases;
};

namespace {

constexpr std::size_t mostNotes = 10000;

struct NoteRow {
  DeckNote::Kind kind;
  Message message;
  bool told;  ///< when a deck is opened; others only when it is checked
};
constexpr NoteRow noteRows[] = {
    {DeckNote::Kind::UnknownKeyword, Message::DeckUnknownKeyword, true},
    {DeckNote::Kind::NotClosed, Message::DeckNotClosed, true},
    {DeckNote::Kind::FileEnds, Message::DeckFileEnds, true},
    {DeckNote::Kind::OpenQuote, Message::DeckOpenQuote, false},
    {DeckNote::Kind::PastColumn128, Message::DeckColumn, false},
    {DeckNote::Kind::Stray, Message::DeckStray, false},
    {DeckNote::Kind::DataOnLine, Message::DeckDataOnLine, false},
    {DeckNote::Kind::NoSlash, Message::DeckNoSlash, false},
    {DeckNote::Kind::MissingFile, Message::DeckMissingFile, true},
    {DeckNote::Kind::OtherCase, Message::DeckOtherCase, true},
    {DeckNote::Kind::OtherFolder, Message::DeckOtherFolder, true},
    {DeckNote::Kind::Cycle, Message::DeckCycle, true},
    {DeckNote::Kind::Binary, Message::DeckBinary, true},
    {DeckNote::Kind::UnknownAlias, Message::DeckAlias, true},
};
const NoteRow& rowOf(DeckNote::Kind kind) {
  return *std::find_if(std::begin(noteRows), std::end(noteRows),
                       [&](const NoteRow& row) { return row.kind == kind; });
}

constexpr std::array stateNames{"read", "missing", "cycle", "not reached"};

/// Texts for a column of few different ones.
std::shared_ptr<const std::vector<std::string>> pathsOf(const DeckFiles& files) {
  auto paths = std::make_shared<std::vector<std::string>>();
  for (const DeckFile& file : files.all()) paths->push_back(toUtf8(file.path));
  return paths;
}

}  // namespace

Diagnosis diagnosisOf(const DeckNote& note, const DeckFiles& files) {
  Diagnosis diagnosis{.message = rowOf(note.kind).message,
                      .path = files[note.file].path,
                      .keyword = note.keyword,
                      .offset = note.offset,
                      .line = note.line,
                      .found = toUtf8(note.text)};
  const bool sections =
      note.kind == DeckNote::Kind::UnknownKeyword && KeywordForms::sectionsOf(note.text) != 0;
  if (sections) diagnosis.message = Message::DeckWrongSection;
  return diagnosis;
}

Deck Deck::open(const std::string& path, const ReadOptions& options, DeckSimulator simulator) {
  try {
    StreamContext context(options);
    return read(path, context.session(), simulator);
  } catch (...) {
    throw errorInFlight();
  }
}

Deck Deck::read(const std::string& path, Session& session, DeckSimulator simulator) {
  auto index = std::make_shared<Index>();
  index->path = path;
  DeckScanner scanner(path, index->forms, session, simulator);
  std::set<std::string> unknown;
  scanner.onNote = [&](const DeckNote& note) {
    if (index->notes.size() < mostNotes) index->notes.push_back(note);
    const bool again = note.kind == DeckNote::Kind::UnknownKeyword && !unknown.insert(note.text).second;
    if (rowOf(note.kind).told && !again) session.diagnose(diagnosisOf(note, scanner.files()));
  };
  DeckKeyword keyword;
  while (scanner.next(keyword)) index->keywords.push_back(std::move(keyword));
  index->files = scanner.files();
  index->simulator = scanner.simulator();
  return Deck(std::move(index));
}

const std::string& Deck::path() const { return index_->path; }
std::span<const DeckKeyword> Deck::keywords() const { return index_->keywords; }
const DeckFiles& Deck::files() const { return index_->files; }
std::span<const DeckNote> Deck::notes() const { return index_->notes; }
DeckSimulator Deck::simulator() const { return index_->simulator; }

std::vector<std::size_t> Deck::chosen(const DeckSelection& selection) const {
  const std::int32_t section = sectionOfDeck(upper(selection.section));
  if (section == 0 && !selection.section.empty()) {
    throw Error(
        Error::Kind::NotFound,
        {.message = Message::RequestMissing, .path = path(), .problem = "no section " + selection.section},
        {deckSections + 1, std::end(deckSections)});
  }
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < index_->keywords.size(); ++i) {
    const DeckKeyword& keyword = index_->keywords[i];
    if (section != 0 && keyword.section != section) continue;
    const bool wanted =
        std::any_of(selection.keywords.begin(), selection.keywords.end(),
                    [&](const std::string& pattern) { return matchesPattern(keyword.name, upper(pattern)); });
    if (wanted || selection.keywords.empty()) places.push_back(i);
  }
  if (!places.empty() || selection.keywords.empty()) return places;
  std::vector<std::string> names;
  for (const DeckKeyword& keyword : index_->keywords) names.push_back(keyword.name);
  const std::string nearest = closest(upper(selection.keywords.front()), names);
  throw Error(Error::Kind::NotFound,
              {.message = Message::RequestMissing,
               .path = path(),
               .problem = "no keyword " + selection.keywords.front()},
              nearest.empty() ? std::vector<std::string>{} : std::vector{nearest});
}

Stream Deck::keywordTable(const DeckSelection& selection, const ReadOptions& options) const {
  auto sections =
      std::make_shared<std::vector<std::string>>(std::begin(deckSections), std::end(deckSections));
  Schema schema{{.name = "section", .type = Type::Dictionary, .dictionary = sections},
                {.name = "keyword", .type = Type::Utf8, .nullable = false},
                {.name = "file", .type = Type::Dictionary, .nullable = false, .dictionary = pathsOf(files())},
                {.name = "line", .type = Type::Int64, .nullable = false},
                {.name = "records", .type = Type::Int64, .nullable = false}};
  return streamOfRows(
      std::move(schema), std::make_shared<StreamContext>(options),
      [index = index_, places = chosen(selection), i = std::size_t{0}](BatchBuilder& rows) mutable {
        for (; i < places.size() && !rows.full(); ++i) {
          const DeckKeyword& keyword = index->keywords[places[i]];
          if (keyword.name == "PATHS") continue;
          if (keyword.section > 0) rows.set(0, keyword.section);
          rows.set(1, keyword.name);
          rows.set(2, static_cast<std::int32_t>(keyword.file));
          rows.set(3, keyword.line);
          rows.set(4, keyword.records);
          rows.endRow();
        }
        return i < places.size();
      });
}

Stream Deck::includes(const ReadOptions& options) const {
  auto states = std::make_shared<std::vector<std::string>>(stateNames.begin(), stateNames.end());
  const auto paths = pathsOf(files());
  Schema schema{{.name = "file", .type = Type::Dictionary, .nullable = false, .dictionary = paths},
                {.name = "name", .type = Type::Utf8, .nullable = false, .description = "as the deck has it"},
                {.name = "parent", .type = Type::Dictionary, .dictionary = paths},
                {.name = "line", .type = Type::Int64, .description = "of the parent"},
                {.name = "depth", .type = Type::Int32, .nullable = false},
                {.name = "bytes", .type = Type::Int64},
                {.name = "lines", .type = Type::Int64},
                {.name = "state", .type = Type::Dictionary, .nullable = false, .dictionary = states},
                {.name = "why", .type = Type::Utf8}};
  return streamOfRows(std::move(schema), std::make_shared<StreamContext>(options),
                      [index = index_, i = std::size_t{0}](BatchBuilder& rows) mutable {
                        const auto& files = index->files.all();
                        for (; i < files.size() && !rows.full(); ++i) {
                          const DeckFile& file = files[i];
                          rows.set(0, static_cast<std::int32_t>(i));
                          rows.set(1, toUtf8(file.name));
                          if (file.parent >= 0) {
                            rows.set(2, file.parent);
                            rows.set(3, file.parentLine);
                          }
                          rows.set(4, file.depth);
                          if (file.state == DeckFile::State::Read) {
                            rows.set(5, static_cast<std::int64_t>(file.size));
                            rows.set(6, file.lines);
                          }
                          rows.set(7, static_cast<std::int32_t>(file.state));
                          if (!file.why.empty()) rows.set(8, file.why);
                          rows.endRow();
                        }
                        return i < files.size();
                      });
}

}  // namespace lumbarn
