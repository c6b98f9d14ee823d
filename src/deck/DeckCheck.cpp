#include "DeckCheck.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "BoxTracker.h"
#include "DeckNumbers.h"
#include "DeckTime.h"

namespace lumbarn {

namespace {

constexpr std::int64_t zcornOfACell = 8;
constexpr std::int64_t numbersOfAPillar = 6;

class DeckCheck {
 public:
  DeckCheck(const Deck& deck, Session& session, const std::function<void(Diagnosis)>& report)
      : deck_(deck), session_(session), report_(report) {}

  void run() {
    notes();
    arrays();
    dates();
  }

 private:
  Diagnosis at(Message message, const DeckKeyword& keyword) const {
    return {.message = message,
            .path = deck_.files()[keyword.file].path,
            .keyword = keyword.name,
            .offset = keyword.offset,
            .line = keyword.line};
  }

  /// Reports each unknown keyword once, at its first occurrence, with the number of occurrences.
  void notes() {
    std::map<std::string, std::int64_t> times;
    for (const DeckNote& note : deck_.notes()) {
      if (note.kind == DeckNote::Kind::UnknownKeyword) ++times[note.text];
    }
    for (const DeckNote& note : deck_.notes()) {
      Diagnosis finding = diagnosisOf(note, deck_.files());
      if (note.kind == DeckNote::Kind::UnknownKeyword) {
        const std::int64_t count = std::exchange(times[note.text], 0);
        if (count == 0) continue;
        if (count > 1) finding.found += fmt::format(", {} times", count);
      }
      report_(std::move(finding));
    }
  }

  /// How many numbers an array may have.
  std::vector<std::int64_t> countsOf(const DeckKeyword& keyword, const BoxTracker& tracker) const {
    const DeckBox& box = tracker.box();
    const std::int64_t cells = box.cells();
    const std::int64_t ni = box.to[0] - box.from[0] + 1;
    const std::int64_t nj = box.to[1] - box.from[1] + 1;
    if (keyword.name == "ZCORN") return {zcornOfACell * cells};
    if (keyword.name == "COORD") return {numbersOfAPillar * (ni + 1) * (nj + 1) * reservoirs_};
    if (keyword.name == "TOPS") return {ni * nj, cells};
    return {cells};
  }

  void arrays() {
    BoxTracker tracker(deck_);
    bool dual = false;
    for (const DeckKeyword& keyword : deck_.keywords()) {
      if (session_.yield()) throw LoadCanceled();
      dual = dual || keyword.name == "DUALPORO" || keyword.name == "DUALPERM";
      if (keyword.name == "NUMRES") setReservoirs(keyword);
      const bool fits = tracker.take(keyword);
      if (!fits) {
        Diagnosis finding = at(Message::DeckOperation, keyword);
        finding.problem = "the box is not within the grid";
        report_(std::move(finding));
      }
      if (keyword.form != DeckForm::Array || tracker.size()[0] == 0) continue;
      checkCount(keyword, countsOf(keyword, tracker), dual);
    }
  }

  void checkCount(const DeckKeyword& keyword, std::vector<std::int64_t> wanted, bool dual) {
    // With two porosities an array may have numbers for the matrix only.
    if (dual) wanted.push_back(wanted.front() / 2);
    try {
      const std::int64_t count = countOf(deck_.files(), keyword);
      if (std::find(wanted.begin(), wanted.end(), count) != wanted.end()) return;
      Diagnosis finding = at(Message::DeckCount, keyword);
      finding.expected = std::to_string(wanted.front());
      finding.found = std::to_string(count);
      report_(std::move(finding));
    } catch (const BadRecord& bad) {
      report_(bad.diagnosis());
    }
  }

  void setReservoirs(const DeckKeyword& keyword) {
    DeckRecords records(deck_.files(), keyword);
    DeckRecord record;
    if (records.next(record)) reservoirs_ = std::max(1, wholeNumber(record, 0).value_or(1));
  }

  void dates() {
    for (const DeckStep& step : calendarOf(deck_).wrong) {
      Diagnosis finding = at(Message::DeckValue, deck_.keywords()[step.keyword]);
      finding.path = deck_.files()[step.file].path;
      finding.problem = "a report step that is not later than the one before it, or cannot be read";
      finding.line = step.line;
      report_(std::move(finding));
    }
  }

  const Deck& deck_;
  Session& session_;
  const std::function<void(Diagnosis)>& report_;
  std::int64_t reservoirs_ = 1;
};

}  // namespace

void checkDeck(const Deck& deck, Session& session, const std::function<void(Diagnosis)>& report) {
  DeckCheck(deck, session, report).run();
}

}  // namespace lumbarn
