#include "RunFacts.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>

#include <nlohmann/json.hpp>

#include "InitFile.h"
#include "RecordData.h"
#include "RunIndex.h"
#include "WellTestFile.h"
#include "arrays/ActiveCells.h"
#include "files/FileChoice.h"
#include "files/Recogniser.h"
#include "index/ActiveCount.h"
#include "index/RestartIndexHeads.h"
#include "index/SectionTracker.h"
#include "record/RecordCursor.h"
#include "support/Dates.h"
#include "support/Text.h"
#include "vocabulary/Units.h"

namespace lumbarn::cli {
namespace {

/// Calls `visit` for each record of a file, its data not read.
void walk(const std::string& path, Console& console, const std::function<void(RecordCursor&)>& visit) {
  std::string why;
  const auto cursor = openRecords(path, why);
  if (!cursor) {
    console.tell(
        {.message = Message::FileOpen, .path = path, .problem = why, .action = "read nothing of it"});
    return;
  }
  try {
    while (cursor->next()) {
      console.checkCancelled();
      showProgress(*cursor, console);
      visit(*cursor);
    }
  } catch (const BadRecord& damage) {
    Diagnosis diagnosis = damage.diagnosis();
    diagnosis.action = "told what stands before it";
    console.tell(diagnosis);
  }
}

/// The first words of a record of integers; fewer when it has fewer.
std::vector<std::int32_t> firstWords(RecordCursor& cursor, std::int64_t count) {
  if (cursor.header().type != ElementType::Integer) return {};
  std::vector<std::int32_t> words(static_cast<std::size_t>(std::min(count, cursor.header().count)));
  cursor.read(std::span(words));
  return words;
}

/// What the headers of a restart or INIT file state. Those of local grids state nothing about the run.
class HeaderFacts {
 public:
  explicit HeaderFacts(bool init) : init_(init) {}

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
  void addTo(Facts& facts, bool manyDates) const {
    if (firstDate_) facts[manyDates ? "first_date" : "date"] = isoText(*firstDate_, true);
    if (lastDate_ && manyDates) facts["last_date"] = isoText(*lastDate_, true);
    if (head_.size() >= 11) facts["grid"] = {head_[8], head_[9], head_[10]};
    if (head_.size() >= 12) facts["active_cells"] = lengths_.decideActive(gridCells(head_, init_));
    if (head_.size() >= 3) facts["units"] = unitSystemName(head_[2]);
    if (!localGridsInOrder_.empty()) facts["local_grids"] = localGridsInOrder_;
  }

 private:
  void takeHead(const std::vector<std::int32_t>& head) {
    if (head_.empty()) head_ = head;
    if (head.size() < 67) return;
    lastDate_ = makeMoment(head[66], head[65], head[64]);
    if (!firstDate_) firstDate_ = lastDate_;
  }

  bool init_;
  SectionTracker section_;
  ArrayLengths lengths_;  // of the global grid
  std::vector<std::int32_t> head_;
  std::optional<Moment> firstDate_;
  std::optional<Moment> lastDate_;
  std::set<std::string> localGrids_;
  std::vector<std::string> localGridsInOrder_;
};

}  // namespace

Facts restartFacts(const RunFamily& run, Console& console) {
  HeaderFacts headers(false);
  std::vector<std::int32_t> steps;
  for (const std::string& file : restartFiles(run, console.session())) {
    const bool oneStep = isStepFile(file);
    if (oneStep) steps.push_back(GetNumericPartOfFileName(file));
    walk(file, console, [&](RecordCursor& cursor) {
      headers.visit(cursor);
      if (oneStep || cursor.header().keyword != "SEQNUM") return;
      for (const auto step : firstWords(cursor, 1)) steps.push_back(step);
    });
  }
  Facts facts = {{"steps", steps.size()}};
  if (!steps.empty()) facts.update({{"first_step", steps.front()}, {"last_step", steps.back()}});
  headers.addTo(facts, true);
  return facts;
}

Facts initFacts(const RunFamily& run, Console& console) {
  HeaderFacts headers(true);
  std::int64_t records = 0;
  walk(run.find(FileKind::Init)->path, console, [&](RecordCursor& cursor) {
    ++records;
    headers.visit(cursor);
  });
  Facts facts = {{"records", records}};
  headers.addTo(facts, false);
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
  walk(run.find(kind)->path, console, [&](RecordCursor& cursor) {
    const RecordHeader& header = cursor.header();
    if (header.is("LGR", ElementType::Text)) {
      for (const auto& name : cursor.texts()) localGrids.push_back(name);
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
  walk(file.path, console, [&](RecordCursor& cursor) {
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
  const auto tests = WellTestFile::open(file.path, file.kind, console);
  std::set<std::string> wells;
  std::optional<Moment> first;
  std::optional<Moment> last;
  std::size_t rows = 0;
  for (const TestSummary& test : tests->tests()) {
    wells.insert(test.well);
    rows += test.rows;
    if (!test.date) continue;
    first = first ? std::min(first, test.date) : test.date;
    last = std::max(last, test.date);
  }
  Facts facts = {{"tests", tests->tests().size()}, {"wells", wells}, {"rows", rows}};
  if (first) facts["first_date"] = isoText(*first, true);
  if (last) facts["last_date"] = isoText(*last, true);
  return facts;
}

}  // namespace lumbarn::cli
