#include <algorithm>
#include <chrono>
#include <cmath>
#include <exception>

#include <fmt/format.h>

#include "../files/Extensions.h"
#include "../record/RecordCursor.h"
#include "RestartIndex.h"
#include "RestartIndexHeads.h"

namespace lumbarn {
namespace {

/// Steps and groups as the records come.
class Builder {
 public:
  explicit Builder(RestartIndex& index) : index_(index) {}

  void beginFile(std::size_t file, const std::string& path) {
    file_ = file;
    numberOfFile_ = index_.init ? -1 : GetNumericPartOfFileName(path);
  }

  void take(RecordCursor& cursor) {
    const RecordHeader& header = cursor.header();
    const bool newStep = header.is("SEQNUM", ElementType::Integer) && header.count > 0;
    if (newStep && hasNumber_) endStep();
    if (!open_) beginStep(header.headerAt);
    if (newStep) {
      hasNumber_ = true;
      seqnum_ = firstInteger(cursor);
    } else if (header.is("LGR", ElementType::Text) && header.count > 0) {
      beginGroup(firstText(cursor));
    } else if (header.keyword == "LGRSGONE") {
      beginGroup("");
    } else if (header.is("INTEHEAD", ElementType::Integer)) {
      takeHead(headWords(cursor));
    } else if (header.is("DOUBHEAD", ElementType::Double) && header.count > 0 && step_.groups.size() == 1 &&
               !index_.init) {
      cursor.read(std::span(&step_.days, 1));
    }
    if (header.count > 0) {
      step_.groups.back().entries.push_back(
          {FixedText<8>(header.keyword), FixedText<4>(header.typeWord), header.count, header.headerAt});
    }
  }

  void endStep() {
    if (!open_) return;
    std::erase_if(step_.groups, [](const IndexGroup& group) { return group.entries.empty(); });
    setNumberAndDate();
    for (IndexGroup& group : step_.groups) {
      if (!group.cells.known()) group.cells = step_.cellsOf(group.grid);
      group.entries.shrink_to_fit();
    }
    records_ = step_.groups.empty() ? 0 : step_.groups.front().entries.size();
    index_.steps.push_back(std::move(step_));
    open_ = false;
  }

 private:
  void beginStep(std::uint64_t position) {
    step_ = {};
    step_.file = file_;
    step_.position = position;
    head_.clear();
    hasNumber_ = false;
    seqnum_ = -1;
    open_ = true;
    beginGroup("");
  }

  void beginGroup(std::string grid) {
    step_.groups.emplace_back().grid = std::move(grid);
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

  void setNumberAndDate() {
    const std::int32_t ofHead = stepOfHead(head_);
    step_.number = index_.init          ? -1
                   : ofHead >= 1        ? ofHead
                   : hasNumber_         ? seqnum_
                   : numberOfFile_ >= 0 ? numberOfFile_
                                        : ofHead;
    step_.date = dateOfHead(head_, step_.days);
  }

  RestartIndex& index_;
  IndexStep step_;
  std::vector<std::int32_t> head_;  // the step's, of the global grid
  std::size_t file_ = 0;
  std::size_t records_ = 0;
  std::int32_t numberOfFile_ = -1;
  std::int32_t seqnum_ = -1;
  bool hasNumber_ = false;
  bool open_ = false;
};

/// False when the load was cancelled. Throws BadRecord.
bool walkFile(Session& session, const std::string& path, std::size_t number, RestartIndex& index,
              Builder& builder) {
  std::string why;
  const auto cursor = openRecords(path, why);
  if (!cursor) throw BadRecord({.path = path, .problem = why});
  if (number == 0) index.form = cursor->form();
  builder.beginFile(number, path);
  while (cursor->next()) {
    if (session.cancelled()) return false;
    builder.take(*cursor);
    if (session.Container && index.files.size() == 1) {
      session.Container->fraction(static_cast<double>(cursor->nextPosition()) /
                                  static_cast<double>(cursor->fileSize()));
    }
  }
  builder.endStep();
  if (session.Container && index.files.size() > 1) session.Container->fileDone();
  return true;
}

RestartIndex walk(Session& session, RestartIndex index) {
  Builder builder(index);
  if (session.Container && index.files.size() > 1) {
    session.Container->files(static_cast<int>(index.files.size()));
  }
  try {
    for (std::size_t i = 0; i < index.files.size() && index.whole; ++i) {
      index.whole = walkFile(session, index.files[i], i, index, builder);
    }
  } catch (BadRecord& damage) {
    Diagnosis diagnosis = std::move(damage.diagnosis());
    if (index.init) {
      builder.endStep();
      diagnosis.action = "listed what stands before it";
    } else {
      diagnosis.action = fmt::format("listed {} steps", index.steps.size());
    }
    index.whole = false;
    session.diagnose(std::move(diagnosis));
  }
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
