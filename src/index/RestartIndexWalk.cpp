#include <algorithm>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "../files/Extensions.h"
#include "../record/RecordCursor.h"
#include "ActiveCount.h"
#include "RestartIndex.h"
#include "RestartIndexHeads.h"
#include "SectionTracker.h"

namespace lumbarn {
namespace {

/// Steps and groups as the records come.
class Builder {
 public:
  Builder(RestartIndex& index, Session& session) : index_(index), session_(session) {}

  void beginFile(std::size_t file) {
    file_ = file;
    numberOfFile_ = index_.init ? -1 : GetNumericPartOfFileName(index_.files[file]);
  }

  void take(RecordCursor& cursor) {
    const RecordHeader& header = cursor.header();
    // Some writers put an array in front of the first SEQNUM; it belongs to that step.
    const bool another = sections_.seqnum() || sections_.parts().header;
    if (another && SectionTracker::marksStep(header)) endStep(header.headerAt, header.keyword, false);
    if (!open_) beginStep(header.headerAt);
    const SectionMark mark = sections_.take(cursor);
    if (mark == SectionMark::LocalGrid) beginGroup();
    if (header.is("INTEHEAD", ElementType::Integer)) {
      takeHead(headWords(cursor));
    } else if (header.is("DOUBHEAD", ElementType::Double) && header.count > 0 && step_.groups.size() == 1 &&
               !index_.init) {
      cursor.read(std::span(&step_.days, 1));
    }
    if (header.count > 0) {
      step_.groups.back().entries.push_back(
          {FixedText<8>(header.keyword), FixedText<4>(header.typeWord), header.count, header.headerAt});
    }
    if (mark == SectionMark::GlobalGrid && !step_.groups.back().grid.empty()) beginGroup();
  }

  /// The end of a file ends its last step. `last`: no more files follow.
  void endFile(const RecordCursor& cursor, bool last) { endStep(cursor.fileSize(), {}, last); }

  /// Drops the step that damage has ended; of an INIT file what precedes the damage is kept.
  void endAtDamage() {
    if (index_.init) return endStep(0, {}, false);
    open_ = false;
    sections_.beginStep();
  }

 private:
  void beginStep(std::uint64_t position) {
    step_ = {};
    step_.file = file_;
    step_.position = position;
    head_.clear();
    open_ = true;
    beginGroup();
  }

  void endStep(std::uint64_t at, const std::string& next, bool last) {
    if (!open_) return;
    open_ = false;
    const StepParts parts = sections_.parts();
    step_.number = index_.init ? -1 : stepNumber(sections_.seqnum(), numberOfFile_, head_);
    step_.date = dateOfHead(head_, step_.days);
    sections_.beginStep();
    if (!index_.init) {
      const auto missing = missingPart(parts, last && before_ ? &*before_ : nullptr);
      if (!missing.empty()) {
        index_.whole = false;
        return session_.diagnose(incompleteStep(index_.files[file_], step_.number, missing, at, next));
      }
      before_ = parts;
    }
    keepStep();
  }

  void keepStep() {
    std::erase_if(step_.groups, [](const IndexGroup& group) { return group.entries.empty(); });
    for (IndexGroup& group : step_.groups) {
      if (!group.cells.known()) group.cells = step_.cellsOf(group.grid);
      group.entries.shrink_to_fit();
    }
    decideActiveCounts(step_);
    records_ = step_.groups.empty() ? 0 : step_.groups.front().entries.size();
    index_.steps.push_back(std::move(step_));
  }

  void beginGroup() {
    step_.groups.emplace_back().grid = sections_.grid();
    // The next step mostly has as many records as the last.
    if (step_.groups.size() == 1) step_.groups.back().entries.reserve(records_);
  }

  void takeHead(std::vector<std::int32_t> words) {
    IndexGroup& group = step_.groups.back();
    group.cells = gridCells(words, index_.init);
    if (!group.grid.empty() || !head_.empty()) return;
    if (index_.header.empty()) index_.header = words;
    head_ = std::move(words);
  }

  RestartIndex& index_;
  Session& session_;
  SectionTracker sections_;
  IndexStep step_;
  std::vector<std::int32_t> head_;   // the step's, of the global grid
  std::optional<StepParts> before_;  // of the step before
  std::size_t file_ = 0;
  std::size_t records_ = 0;
  std::int32_t numberOfFile_ = -1;
  bool open_ = false;
};

/// False when the load was cancelled. Throws BadRecord.
bool walkFile(Session& session, std::size_t file, RestartIndex& index, Builder& builder) {
  const std::string& path = index.files[file];
  std::string why;
  const auto cursor = openRecords(path, why);
  if (!cursor) throw BadRecord({.message = Message::FileOpen, .path = path, .problem = why});
  if (file == 0) index.form = cursor->form();
  builder.beginFile(file);
  while (cursor->next()) {
    if (session.cancelled()) return false;
    builder.take(*cursor);
    if (session.Container && index.files.size() == 1) {
      session.Container->fraction(static_cast<double>(cursor->nextPosition()) /
                                  static_cast<double>(cursor->fileSize()));
    }
  }
  builder.endFile(*cursor, file + 1 == index.files.size());
  return true;
}

/// Damage of one file of a set says nothing of the others.
void walkFiles(Session& session, RestartIndex& index) {
  Builder builder(index, session);
  for (std::size_t file = 0; file < index.files.size(); ++file) {
    try {
      if (!walkFile(session, file, index, builder)) {
        index.whole = false;
        return;
      }
    } catch (BadRecord& damage) {
      builder.endAtDamage();
      index.whole = false;
      Diagnosis diagnosis = std::move(damage.diagnosis());
      diagnosis.action = index.init                      ? "kept what precedes it"
                         : file + 1 < index.files.size() ? "continued with the next file"
                                                         : fmt::format("listed {} steps", index.steps.size());
      session.diagnose(std::move(diagnosis));
    }
    if (session.Container && index.files.size() > 1) session.Container->fileDone();
  }
}

/// A program that asks for such a step by its number gets the first.
void remarkOnEqualNumbers(Session& session, const RestartIndex& index) {
  std::vector<std::int32_t> numbers;
  for (const IndexStep& step : index.steps) numbers.push_back(step.number);
  std::ranges::sort(numbers);
  const auto twice = std::ranges::adjacent_find(numbers);
  if (twice == numbers.end()) return;
  const auto steps = index.findAll(*twice);
  session.diagnose({.message = Message::StepTwice,
                    .path = index.files[steps[1]->file],
                    .offset = steps[1]->position,
                    .found = fmt::format("{} steps {}", steps.size(), *twice),
                    .action = "listed all"});
}

RestartIndex walk(Session& session, RestartIndex index) {
  if (session.Container && index.files.size() > 1) {
    session.Container->files(static_cast<int>(index.files.size()));
  }
  walkFiles(session, index);
  if (!index.init) remarkOnEqualNumbers(session, index);
  return index;
}

}  // namespace

RestartIndex walkRestart(Session& session, std::span<const std::string> files) {
  RestartIndex index;
  index.files.assign(files.begin(), files.end());
  index.unified = files.size() == 1 && GetNumericPartOfFileName(files[0]) < 0;
  return walk(session, std::move(index));
}

RestartIndex walkInit(Session& session, const std::string& file) {
  RestartIndex index;
  index.files = {file};
  index.init = true;
  return walk(session, std::move(index));
}

}  // namespace lumbarn
