#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "../files/Extensions.h"
#include "../files/FileChoice.h"
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
    if (sections_.beginsAnother(header)) endStep(header.headerAt, header.keyword, false);
    if (!open_) beginStep(header.headerAt);
    const SectionMark mark = sections_.take(cursor);
    if (sections_.afterGap()) checkRepeated(header);
    if (sections_.lost()) return;
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

  /// Damage that ends in front of another record.
  void passGap(const RecordHeader& damaged, const Gap& gap) {
    if (!index_.init && sections_.beginsAnother(damaged)) {
      endStep(gap.from, damaged.keyword, false);
      beginStep(gap.from);
      sections_.beginStep(true);
    } else if (open_ && !index_.init) {
      sections_.passGap(damaged, gap);
    }
  }

  /// The end of a file ends its last step. `last`: no more files follow.
  void endFile(const RecordCursor& cursor, bool last) { endStep(cursor.fileSize(), {}, last); }

  /// Damage that nothing follows drops the step unless it is known to be complete; of an INIT file what
  /// precedes the damage is kept.
  void endAtDamage(const std::string& keyword) {
    const StepParts* before = before_ ? &*before_ : nullptr;
    if (index_.init || isCompleteBeforeDamage(sections_.parts(), keyword, before))
      return endStep(0, {}, false);
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
      const auto missing =
          missingPart(parts, last && before_ ? &*before_ : nullptr, last && !before_ && index_.unified);
      if (!missing.empty()) {
        index_.whole = false;
        return session_.diagnose(incompleteStep(index_.files[file_], step_.number, missing, at, next));
      }
      before_ = parts;
    }
    keepStep();
  }

  void checkRepeated(const RecordHeader& header) {
    if (index_.init || header.count <= 0) return;
    const auto& entries = step_.groups.back().entries;
    if (std::ranges::find(entries, FixedText<8>(header.keyword), &IndexEntry::keyword) != entries.end())
      sections_.repeated();
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

/// Walks one file; data behind damage are found again. Throws BadRecord, LoadCanceled.
class FileWalk {
 public:
  FileWalk(Session& session, RestartIndex& index, std::size_t file) : session_(session), index_(index) {
    const std::string& path = index.files[file];
    std::string why;
    cursor_ = openRecords(path, why);
    if (!cursor_) throw BadRecord({.message = Message::FileOpen, .path = path, .problem = why});
    cursor_->attach(session, index.init ? RecordFile::Init : RecordFile::Restart);
    if (file == 0) index.form = cursor_->form();
    last_ = file + 1 == index.files.size();
  }

  void run(Builder& builder) {
    while (next(builder)) {
      if (session_.cancelled()) throw LoadCanceled();
      if (session_.Container && index_.files.size() == 1) {
        session_.Container->fraction(static_cast<double>(cursor_->nextPosition()) /
                                     static_cast<double>(cursor_->fileSize()));
      }
    }
    if (!ended_) builder.endFile(*cursor_, last_);
    cursor_->checkUnchanged();
  }

 private:
  bool next(Builder& builder) {
    try {
      if (!cursor_->next()) return false;
      builder.take(*cursor_);
      return true;
    } catch (BadRecord& damage) {
      return passed(builder, std::move(damage.diagnosis()));
    }
  }

  bool passed(Builder& builder, Diagnosis diagnosis) {
    index_.whole = false;
    const RecordHeader damaged = cursor_->header();
    if (const auto gap = passDamage(*cursor_, diagnosis, session_)) {
      builder.passGap(damaged, *gap);
      session_.diagnose(std::move(diagnosis));
      return true;
    }
    ended_ = true;
    builder.endAtDamage(damaged.keyword);
    diagnosis.action = !last_        ? "continued with the next file"
                       : index_.init ? "kept what precedes it"
                                     : fmt::format("listed {} steps", index_.steps.size());
    session_.diagnose(std::move(diagnosis));
    return false;
  }

  Session& session_;
  RestartIndex& index_;
  std::unique_ptr<RecordCursor> cursor_;
  bool last_ = false;
  bool ended_ = false;  // by damage
};

/// A damaged file does not affect the other files of a set.
void walkFiles(Session& session, RestartIndex& index) {
  Builder builder(index, session);
  if (!index.init && !index.unified) reportOlderStepFiles(session, index.files);
  for (std::size_t file = 0; file < index.files.size(); ++file) {
    try {
      builder.beginFile(file);
      FileWalk(session, index, file).run(builder);
    } catch (const LoadCanceled&) {
      index.whole = false;
      return;
    } catch (BadRecord& damage) {
      index.whole = false;
      damage.diagnosis().action = fmt::format("listed {} steps", index.steps.size());
      session.diagnose(std::move(damage.diagnosis()));
    }
    if (session.Container && index.files.size() > 1) session.Container->fileDone();
  }
}

/// The number of such a step means the one written last; all are reached by position.
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
  index.setFiles({files.begin(), files.end()});
  index.unified = files.size() == 1 && !isStepFile(files[0]);
  return walk(session, std::move(index));
}

RestartIndex walkInit(Session& session, const std::string& file) {
  RestartIndex index;
  index.setFiles({file});
  index.init = true;
  return walk(session, std::move(index));
}

}  // namespace lumbarn
