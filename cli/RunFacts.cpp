#include "RunFacts.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <optional>
#include <set>
#include <utility>

#include <nlohmann/json.hpp>

#include "InitFile.h"
#include "RunIndex.h"
#include "arrays/ActiveCells.h"
#include "files/Recogniser.h"
#include "index/ActiveCount.h"
#include "index/RestartIndex.h"
#include "index/RestartIndexHeads.h"
#include "index/SectionTracker.h"
#include "record/RecordCursor.h"
#include "run/RecordData.h"
#include "support/Dates.h"
#include "support/Text.h"
#include "vocabulary/Units.h"
#include "welltests/TestFile.h"

namespace lumbarn::cli {
namespace {

/// Calls `visit` for each record of a file, its data not read.
void walk(const RunMember& file, Console& console, const std::function<void(RecordCursor&)>& visit) {
  std::string why;
  const auto cursor = openRecords(file.path, why);
  if (!cursor) return console.tell(refusal(file.path, file.kind));
  try {
    while (cursor->next()) {
      console.checkCancelled();
      showProgress(*cursor, console.session());
      visit(*cursor);
    }
  } catch (const BadRecord& damage) {
    Diagnosis diagnosis = damage.diagnosis();
    diagnosis.action = "reported the records before it";
    console.session().diagnose(std::move(diagnosis));
  }
}

/// The first words of a record of integers; fewer when it has fewer.
std::vector<std::int32_t> firstWords(RecordCursor& cursor, std::int64_t count) {
  if (cursor.header().type != ElementType::Integer) return {};
  std::vector<std::int32_t> words(static_cast<std::size_t>(std::min(count, cursor.header().count)));
  cursor.read(std::span(words));
  return words;
}

/// What the headers of an INIT file state. Those of local grids state nothing about the run.
class HeaderFacts {
 public:
  void visit(RecordCursor& cursor) {
    const SectionMark mark = section_.take(cursor);
    const RecordHeader& header = cursor.header();
    if (mark == SectionMark::LocalGrid && localGrids_.insert(section_.grid()).second)
      localGridsInOrder_.push_back(section_.grid());
    if (section_.inLocalGrid()) return;
    if (header.is("INTEHEAD", ElementType::Integer)) {
      takeHead(headWords(cursor));
    } else if (header.count > 0 && mayBeCellArray(header.type, header.keyword)) {
      lengths_.add(header.count);
    }
  }
  void addTo(Facts& facts) const {
    if (date_) facts["date"] = isoText(*date_, true);
    if (head_.size() >= 11) facts["grid"] = {head_[8], head_[9], head_[10]};
    if (head_.size() >= 12) facts["active_cells"] = lengths_.decideActive(gridCells(head_, true));
    if (head_.size() >= 3) facts["units"] = unitSystemName(head_[2]);
    if (!localGridsInOrder_.empty()) facts["local_grids"] = localGridsInOrder_;
  }

 private:
  void takeHead(const std::vector<std::int32_t>& head) {
    if (head_.empty()) head_ = head;
    if (head.size() >= 67 && !date_) date_ = makeMoment(head[66], head[65], head[64]);
  }

  SectionTracker section_;
  ArrayLengths lengths_;  // of the global grid
  std::vector<std::int32_t> head_;
  std::optional<Moment> date_;
  std::set<std::string> localGrids_;
  std::vector<std::string> localGridsInOrder_;
};

void addDates(Facts& facts, const RestartIndex& index) {
  const auto dated = [](const IndexStep& step) { return step.date.has_value(); };
  const auto first = std::ranges::find_if(index.steps, dated);
  if (first == index.steps.end()) return;
  const auto last = std::find_if(index.steps.rbegin(), index.steps.rend(), dated);
  const auto day = [](Moment date) { return isoText(std::chrono::floor<std::chrono::days>(date), true); };
  facts.update({{"first_date", day(*first->date)}, {"last_date", day(*last->date)}});
}

void addGrids(Facts& facts, const RestartIndex& index) {
  const GridCells global = index.steps.front().cellsOf({});
  if (global.known()) facts.update({{"grid", global.size}, {"active_cells", global.active}});
  std::vector<std::string> localGrids;  // in the order of the file
  for (const IndexStep& step : index.steps) {
    for (const IndexGroup& group : step.groups) {
      if (!isGlobalGrid(group.grid) && std::ranges::count(localGrids, group.grid) == 0)
        localGrids.push_back(group.grid);
    }
  }
  if (!localGrids.empty()) facts["local_grids"] = localGrids;
}

}  // namespace

Facts restartFacts(const RunFamily& run, Console& console) {
  const RestartIndex index = walkRestart(console.session(), restartFiles(run, console.session()));
  console.checkCancelled();
  Facts facts = {{"steps", index.steps.size()}};
  if (!index.steps.empty()) {
    facts.update({{"first_step", index.steps.front().number}, {"last_step", index.steps.back().number}});
    addDates(facts, index);
    addGrids(facts, index);
  }
  if (index.header.size() >= 3) facts["units"] = unitSystemName(index.header[2]);
  return facts;
}

Facts initFacts(const RunFamily& run, Console& console) {
  HeaderFacts headers;
  std::int64_t records = 0;
  walk(*run.find(FileKind::Init), console, [&](RecordCursor& cursor) {
    ++records;
    headers.visit(cursor);
  });
  Facts facts = {{"records", records}};
  headers.addTo(facts);
  addInitContent(facts, run.find(FileKind::Init)->path, console);
  return facts;
}

Facts gridFacts(const RunFamily& run, FileKind kind, Console& console) {
  Facts facts = Facts::object();
  std::vector<std::string> localGrids;
  std::optional<std::int64_t> active;  // of the global grid
  std::optional<std::int64_t> cells;
  bool told = false;
  bool dual = false;  // two porosity systems, of which the file has the layers of the first
  walk(*run.find(kind), console, [&](RecordCursor& cursor) {
    const RecordHeader& header = cursor.header();
    if (header.is("LGR", ElementType::Text)) {
      const auto names = cursor.texts();  // in a GRID file the name of the parent follows
      if (!names.empty()) localGrids.push_back(names.front());
    } else if (header.keyword == "FILEHEAD") {
      const auto words = firstWords(cursor, 6);
      dual = words.size() == 6 && words[5] >= 1;
    } else if (header.keyword == "ACTNUM" && localGrids.empty()) {
      told = true;
      const bool half = dual && 2 * header.count == cells;
      if (!half && header.count != cells) return;  // of a part of a radial grid
      auto words = firstWords(cursor, header.count);
      if (half) words = expandActnum(std::move(words));
      active = std::ranges::count_if(words, [](auto number) { return number > 0; });
    } else if (header.keyword == "COORDS" && localGrids.empty()) {
      const auto words = firstWords(cursor, 5);  // I, J, K, number, 1 for an active cell
      active = active.value_or(0) + (words.size() < 5 || words[4] > 0 ? 1 : 0);
    } else if (header.is("GRIDUNIT", ElementType::Text) && header.count > 0) {
      facts["length_unit"] = cursor.texts()[0];
    } else if (header.keyword == "GRIDHEAD" && !facts.contains("grid")) {
      const auto words = firstWords(cursor, 4);
      if (words.size() < 4) return;
      const std::int64_t layers = std::int64_t{words[3]} * (dual ? 2 : 1);
      facts["grid"] = {words[1], words[2], layers};
      cells = std::int64_t{words[1]} * words[2] * layers;
    } else if (header.keyword == "DIMENS" && !facts.contains("grid")) {
      const auto words = firstWords(cursor, 3);
      if (words.size() == 3) facts["grid"] = words;
    }
  });
  if (!told && !active) active = cells;  // ACTNUM is omitted when all are
  if (active) facts["active_cells"] = *active;
  if (!localGrids.empty()) facts["local_grids"] = localGrids;
  return facts;
}

Facts testFacts(const RunFamily& run, Console& console) {
  RunMember file = *run.find(FileKind::Rft);
  file.kind = recogniseFile(file.path).kind;
  if (isText(file.kind)) return userTestFacts(file, console);
  constexpr std::size_t wellName = 1;  // place in WELLETC, from 0
  std::int64_t tests = 0;
  std::set<std::string> wells;
  std::optional<Moment> first;
  std::optional<Moment> last;
  walk(file, console, [&](RecordCursor& cursor) {
    const RecordHeader& header = cursor.header();
    if (header.keyword == "TIME") ++tests;
    if (header.is("WELLETC", ElementType::Text) && header.count > std::int64_t{wellName}) {
      wells.emplace(trim(cursor.texts()[wellName]));
    }
    if (header.keyword != "DATE") return;
    const auto date = firstWords(cursor, 3);
    if (date.size() < 3) return;
    const auto day = makeMoment(date[2], date[1], date[0]);
    if (!day) return;
    first = first ? std::min(first, day) : day;
    last = std::max(last, day);
  });
  Facts facts = {{"tests", tests}, {"wells", wells}};
  if (first) facts["first_date"] = isoText(*first, true);
  if (last) facts["last_date"] = isoText(*last, true);
  return facts;
}

Facts userTestFacts(const RunMember& file, Console& console) {
  // What ends a part of a test gives a diagnosis too.
  const auto reporter = std::exchange(console.session().faultReporter, nullptr);
  const auto tests = TestFile::open(file.path, file.kind, TestPart::Rft, console.session());
  console.session().faultReporter = reporter;
  console.checkCancelled();
  if (!tests) console.giveUp(file.path, "no tests can be read from it");
  std::int64_t count = 0;
  std::set<std::string> wells;
  std::optional<Moment> first;
  std::optional<Moment> last;
  std::size_t rows = 0;
  for (TestSummary test; tests->next(test); ++count) {
    wells.insert(test.well);
    rows += test.rows;
    if (!test.date) continue;
    first = first ? std::min(first, test.date) : test.date;
    last = std::max(last, test.date);
  }
  Facts facts = {{"tests", count}, {"wells", wells}, {"rows", rows}};
  if (first) facts["first_date"] = isoText(*first, true);
  if (last) facts["last_date"] = isoText(*last, true);
  return facts;
}

}  // namespace lumbarn::cli
