#include "RestartIndexAgreement.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "../files/Extensions.h"
#include "../record/FormattedCodec.h"
#include "../record/RecordCursor.h"
#include "ActiveCount.h"
#include "RestartIndexHeads.h"
#include "SectionTracker.h"

namespace lumbarn {
namespace {

/// An index that is not one of its files; the text says why.
struct Disagreement : std::runtime_error {
  using std::runtime_error::runtime_error;
};

template <class... Values>
void require(bool holds, fmt::format_string<const Values&...> text, const Values&... values) {
  if (!holds) throw Disagreement(fmt::format(text, values...));
}

Moment dayOf(Moment date) { return std::chrono::floor<std::chrono::days>(date); }

std::string dayText(const std::optional<Moment>& date) {
  return date ? isoText(dayOf(*date), true) : "no date";
}

/// The fewest bytes that a record can take in a file, header and all.
class LeastBytes {
 public:
  explicit LeastBytes(const Form& form) : form_(form) { learn(typeWord_); }

  std::uint64_t of(const IndexEntry& entry) {
    // Mostly the type of the entry before, about which all is known.
    if (entry.typeWord != typeWord_) learn(entry.typeWord);
    return headerBytes_ + (entry.count > 0 ? marks_ + static_cast<std::uint64_t>(entry.count) * width_ : 0);
  }

 private:
  void learn(const FixedText<4>& typeWord) {
    typeWord_ = typeWord;
    const auto [type, width] = typeInfo(typeWord.view());
    if (form_.formatted()) {
      headerBytes_ = 1 + 10 + 12 + 7;  // one line
      width_ = width > 0 ? lineShape(type, width).fieldWidth : 0;
      return;
    }
    const std::uint64_t marks = form_.framing == Framing::FourByteMarks ? 8 : 2;
    headerBytes_ = 16 + marks;
    width_ = static_cast<std::uint64_t>(width);
    marks_ = width > 0 ? marks : 0;
  }

  Form form_;
  FixedText<4> typeWord_;
  std::uint64_t headerBytes_ = 0;
  std::uint64_t marks_ = 0;  // of data
  std::uint64_t width_ = 0;  // of an element; 0 when it is not known
};

/// Compares an index with one of its files.
class FileAgreement {
 public:
  FileAgreement(RestartIndex& index, std::size_t file) : index_(index), file_(file) {
    std::string why;
    cursor_ = openRecords(index.files[file], why);
    require(cursor_ != nullptr, "{}: {}", index.files[file], why);
    for (IndexStep& step : index.steps) {
      if (step.file == file) steps_.push_back(&step);
    }
  }

  void check() {
    if (file_ == 0) index_.form = cursor_->form();
    checkPositions();
    if (steps_.empty()) return;
    checkStarts();
    checkTail(*steps_.back());
    for (IndexStep* step : {steps_.front(), steps_.back()}) checkHeads(*step);
    fillCells();
  }

 private:
  static const IndexEntry& first(const IndexStep& step) { return step.groups.front().entries.front(); }
  static const IndexEntry& last(const IndexStep& step) { return step.groups.back().entries.back(); }

  void checkPositions() {
    LeastBytes leastBytes(cursor_->form());
    std::uint64_t least = 0;
    const std::uint64_t size = cursor_->fileSize();
    for (const IndexStep* step : steps_) {
      require(!step->groups.empty(), "step {} has no arrays", step->number);
      for (const IndexGroup& group : step->groups) {
        for (const IndexEntry& entry : group.entries) {
          const std::uint64_t bytes = leastBytes.of(entry);
          const bool inside = entry.position <= size && static_cast<std::uint64_t>(entry.count) <= size &&
                              bytes <= size - entry.position;
          if (entry.count < 0 || entry.position < least || !inside)
            explainPosition(*step, group, entry, least, size);
          least = entry.position + bytes;
        }
      }
    }
  }

  /// Apart from the loop, which has no time to spare for texts that are not wanted.
  [[noreturn]] static void explainPosition(const IndexStep& step, const IndexGroup& group,
                                           const IndexEntry& entry, std::uint64_t least, std::uint64_t size) {
    const auto where =
        fmt::format("{} of grid {} of step {}", entry.keyword.view(), nameOf(group), step.number);
    require(entry.count >= 0, "{} has {} elements", where, entry.count);
    require(entry.position >= least, "{} at byte {} lies inside of the record before it", where,
            entry.position);
    throw Disagreement(
        fmt::format("{} at byte {} ends behind the file's {} bytes", where, entry.position, size));
  }

  /// Moves to an entry's record, which must be what the index says.
  void moveTo(const IndexStep& step, const IndexGroup& group, const IndexEntry& entry) {
    cursor_->seek(entry.position);
    const bool there = cursor_->next();
    const RecordHeader& header = cursor_->header();
    // Names of an index may have lost what makes them none.
    const bool same = there && header.keyword == entry.keyword.view() &&
                      header.typeWord == entry.typeWord.view() && header.count == entry.count;
    require(same, "byte {} has {} of {} {} where {} of {} {} is indexed for grid {} of step {}",
            entry.position, header.keyword, header.count, header.typeWord, entry.keyword.view(), entry.count,
            entry.typeWord.view(), nameOf(group), step.number);
  }
  void moveToFirst(const IndexStep& step) { moveTo(step, step.groups.front(), first(step)); }
  void moveToLast(const IndexStep& step) { moveTo(step, step.groups.back(), last(step)); }
  /// Moves to a grid's header record if it is indexed.
  bool moveToHead(const IndexStep& step, std::string_view keyword, std::string_view grid = {}) {
    for (const IndexGroup& group : step.groups) {
      if (!sameGrid(group.grid, grid)) continue;
      for (const IndexEntry& entry : group.entries) {
        if (entry.keyword.view() != keyword || entry.count < 1) continue;
        moveTo(step, group, entry);
        return true;
      }
    }
    return false;
  }

  /// Moves behind a step's last record. Where its end follows from its length, a header found there is
  /// enough, and its start, which may be far away, need not be read.
  void moveBehind(const IndexStep& step) {
    const IndexEntry& entry = last(step);
    const auto [type, width] = typeInfo(entry.typeWord.view());
    if (cursor_->form().framing == Framing::FourByteMarks && width > 0) {
      const auto count = static_cast<std::uint64_t>(entry.count);
      const auto perBlock = static_cast<std::uint64_t>(elementsPerBlock(type));
      const std::uint64_t end = entry.position + 24 + count * static_cast<std::uint64_t>(width) +
                                8 * ((count + perBlock - 1) / perBlock);
      cursor_->seek(end);
      try {
        if (cursor_->next()) return cursor_->seek(end);
      } catch (const BadRecord& damage) {
        if (damage.diagnosis().message == Message::FileRead) throw;
        // Blocks of an unusual length, or no such record: the header of the last record decides.
      }
    }
    moveToLast(step);
  }

  /// The first and the last step and some between: an index of another run differs everywhere, and a look at
  /// each of many steps would take as long as walking the file.
  void checkStarts() {
    constexpr std::size_t mostBetween = 64;
    const std::size_t stride = steps_.size() / mostBetween + 1;
    for (std::size_t i = 0; i < steps_.size(); ++i) {
      IndexStep& step = *steps_[i];
      step.position = first(step).position;
      if (i % stride == 0 || i + 1 == steps_.size()) checkStart(i == 0 ? nullptr : steps_[i - 1], step);
    }
  }

  /// From the last record of the step before, or the start of the file, the headers must lead to the first of
  /// this step, through one report step number at most, which must be this step's.
  void checkStart(const IndexStep* before, IndexStep& step) {
    constexpr int recordsBetween = 64;
    if (before) {
      moveBehind(*before);
    } else {
      cursor_->seek(0);
    }
    step.position = cursor_->nextPosition();
    int numbers = 0;
    std::optional<std::int32_t> seqnum;
    const auto take = [&] {
      const RecordHeader& header = cursor_->header();
      solutionEnds_ = solutionEnds_ || header.keyword == "ENDSOL";
      if (!SectionTracker::marksStep(header)) return;
      step.position = header.headerAt;
      if (header.type == ElementType::Integer) seqnum = firstInteger(*cursor_);
      ++numbers;
    };
    for (int i = 0; cursor_->nextPosition() < first(step).position && i < recordsBetween; ++i) {
      if (!cursor_->next()) break;
      take();
    }
    require(cursor_->nextPosition() == first(step).position, "byte {} is not the start of the next record",
            first(step).position);
    moveToFirst(step);
    take();
    require(numbers <= 1 && (!before || numbers == 1 || index_.init),
            "{} report steps found where the index has step {}", numbers, step.number);
    if (!index_.init) checkNumber(step, seqnum);
  }

  void checkNumber(const IndexStep& step, std::optional<std::int32_t> seqnum) {
    const std::int32_t ofFile = GetNumericPartOfFileName(index_.files[file_]);
    std::vector<std::int32_t> head;
    if (!seqnum && ofFile < 0 && moveToHead(step, "INTEHEAD")) head = headWords(*cursor_);
    const std::int32_t number = stepNumber(seqnum, ofFile, head);
    require(number == step.number, "step {} is step {} in the index", number, step.number);
  }

  /// Nothing that is not indexed may follow the last step, and it must be complete: an index may be written
  /// before its data are.
  void checkTail(const IndexStep& step) {
    moveToLast(step);
    bool solutionEnds = false;
    while (cursor_->next()) {
      const RecordHeader& header = cursor_->header();
      solutionEnds = solutionEnds || header.keyword == "ENDSOL";
      require(!SectionTracker::marksStep(header), "a report step at byte {} is not indexed", header.headerAt);
      require(!index_.init || header.count == 0, "{} at byte {} is not indexed", header.keyword,
              header.headerAt);
    }
    if (steps_.size() < 2 || index_.init) return;
    require(solutionEnds || !solutionEnds_, "step {} has no ENDSOL at its end", step.number);
    require(step.groups.size() >= steps_[steps_.size() - 2]->groups.size(),
            "step {} has {} grids, the step before it {}", step.number, step.groups.size(),
            steps_[steps_.size() - 2]->groups.size());
  }

  /// Date and time of a step as its own headers state them, if they are indexed.
  void checkHeads(const IndexStep& step) {
    if (moveToHead(step, "INTEHEAD")) {
      const auto head = headWords(*cursor_);
      const GridCells cells = gridCells(head, index_.init);
      require(cells == gridCells(index_.header, index_.init), "the grid has other cells than the index says");
      if (index_.init) return;
      const auto date = dateOfHead(head, step.days);
      require(!date || !step.date || dayOf(*date) == dayOf(*step.date), "step {} is of {}, not of {}",
              step.number, dayText(date), dayText(step.date));
      if (&step == &index_.steps.front()) addTimesOfDay(head, date);
    }
    if (!index_.init && moveToHead(step, "DOUBHEAD")) {
      double days = 0;
      cursor_->read(std::span(&days, 1));
      const double rounding = 1e-6 * std::max(1.0, std::abs(days));
      require(std::abs(days - step.days) <= rounding, "step {} is at {} days, not at {}", step.number, days,
              step.days);
    }
  }

  /// The index has the days only, so the time of day follows from the start of the run and the report time.
  void addTimesOfDay(std::span<const std::int32_t> head, std::optional<Moment> firstDate) {
    const auto start = startOfRun(head, firstDate, index_.steps.front().days);
    for (IndexStep& step : index_.steps) {
      if (!step.date) continue;
      const auto date = dateOfReport(start, dayOf(*step.date), step.days);
      if (dayOf(date) == dayOf(*step.date)) step.date = date;
    }
  }

  /// The INTEHEAD of a local grid states its cells; one is read for each grid of the file.
  void fillCells() {
    std::map<std::string, GridCells, std::less<>> known{{"", gridCells(index_.header, index_.init)}};
    for (IndexStep* step : steps_) {
      for (IndexGroup& group : step->groups) {
        auto grid = known.find(group.grid);
        if (grid == known.end()) {
          require(moveToHead(*step, "INTEHEAD", group.grid),
                  "the size of the grid {} of step {} is not indexed", group.grid, step->number);
          grid = known.emplace(group.grid, gridCells(headWords(*cursor_), index_.init)).first;
        }
        group.cells = grid->second;
      }
      decideActiveCounts(*step);
    }
  }

  RestartIndex& index_;
  std::size_t file_;
  std::unique_ptr<RecordCursor> cursor_;
  std::vector<IndexStep*> steps_;
  bool solutionEnds_ = false;  // ENDSOL was met between two steps
};

/// Gives each step its file: in a multiple set the one with its number in the name. Steps follow one another
/// in number and time.
void matchFiles(RestartIndex& index) {
  require(!index.steps.empty(), "the index has no steps");
  if (index.init) return;
  for (std::size_t i = 1; i < index.steps.size(); ++i) {
    const IndexStep& before = index.steps[i - 1];
    const IndexStep& step = index.steps[i];
    require(step.number > before.number && step.days >= before.days,
            "step {} at {} days follows step {} at {}", step.number, step.days, before.number, before.days);
  }
  if (index.unified) return;
  require(index.steps.size() == index.files.size(), "the index has {} steps, the set {} files",
          index.steps.size(), index.files.size());
  for (std::size_t i = 0; i < index.files.size(); ++i) {
    const std::int32_t number = GetNumericPartOfFileName(index.files[i]);
    require(index.steps[i].number == number, "the index has step {} where the set has {}",
            index.steps[i].number, number);
    index.steps[i].file = i;
  }
}

}  // namespace

std::string nameOf(const IndexGroup& group) { return group.grid.empty() ? "ROOT" : group.grid; }

std::string disagreement(RestartIndex& index) {
  try {
    matchFiles(index);
    for (std::size_t file = 0; file < index.files.size(); ++file) FileAgreement(index, file).check();
  } catch (const Disagreement& found) {
    return found.what();
  } catch (const BadRecord& damage) {
    return damage.diagnosis().text();
  }
  return {};
}

}  // namespace lumbarn
