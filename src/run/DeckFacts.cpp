#include <algorithm>
#include <set>

#include "../deck/BoxTracker.h"
#include "../deck/DeckTime.h"
#include "../support/Text.h"
#include "../vocabulary/Units.h"
#include "RunFacts.h"

namespace lumbarn {

namespace {

/// Names of the first items of all records of a keyword.
void addNames(std::set<std::string>& names, const Deck& deck, const DeckKeyword& keyword) {
  DeckRecords records(deck.files(), keyword);
  DeckRecord record;
  while (records.next(record)) {
    if (const auto name = record[0]) names.insert(std::string(*name));
  }
}

}  // namespace

void addDeckFacts(FactList& facts, const RunState& run, StreamContext& context) {
  const auto deck = run.deck(context);
  std::vector<std::string> phases;
  std::set<std::string> wells;
  std::string title;
  for (const DeckKeyword& keyword : deck->keywords()) {
    const bool phase = keyword.name == "OIL" || keyword.name == "WATER" || keyword.name == "GAS";
    if (phase && keyword.section == 1) phases.push_back(lower(keyword.name));
    if (keyword.name == "WELSPECS" || keyword.name == "WELSPECL") addNames(wells, *deck, keyword);
    DeckRecord record;
    if (keyword.name == "TITLE" && DeckRecords(deck->files(), keyword).next(record))
      title = trim(record.text);
  }
  if (!title.empty()) facts.text("title", toUtf8(title));
  const auto sizes = gridSizes(*deck);
  if (const auto root = sizes.find("ROOT"); root != sizes.end()) facts.size("size", root->second);
  std::vector<std::string> locals;
  for (const auto& [name, size] : sizes) {
    if (name != "ROOT") locals.push_back(toUtf8(name));
  }
  facts.texts("local_grids", locals);
  facts.texts("phases", phases);
  facts.text("units", unitSystemName(deck->unitSystem()));
  const DeckCalendar calendar = calendarOf(*deck);
  facts.date("start", calendar.start);
  facts.number("report_steps", static_cast<std::int64_t>(calendar.steps.size()));
  if (!calendar.steps.empty()) {
    const std::chrono::duration<double, std::ratio<86400>> length(calendar.steps.back().days);
    facts.date("last_date", calendar.start + std::chrono::round<std::chrono::microseconds>(length));
  }
  facts.number("wells", static_cast<std::int64_t>(wells.size()));
  facts.number("keywords", static_cast<std::int64_t>(deck->keywords().size()));
  facts.number("includes", static_cast<std::int64_t>(deck->files().size()) - 1);
  std::vector<std::string> missing;
  for (const DeckFile& file : deck->files().all()) {
    if (file.state == DeckFile::State::Missing) missing.push_back(toUtf8(file.name));
  }
  facts.texts("missing_includes", missing);
}

}  // namespace lumbarn
