#include "RowIndex.h"

#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "../files/Extensions.h"
#include "../files/FileChoice.h"
#include "../support/Diagnosis.h"
#include "RowSteps.h"

namespace lumbarn {

namespace {

constexpr std::int32_t rowsBetweenYields = 1000;

/// Reports rows that do not pair up with ministeps in one file, each sort once.
class MinistepPairs {
 public:
  MinistepPairs(Session& session, const RecordCursor& cursor) : session_(session), cursor_(cursor) {}

  /// True when the ministep before it has no row.
  bool ministep() {
    const bool open = end("MINISTEP");
    state_ = State::Open;
    openAt_ = cursor_.header().headerAt;
    occurrence_ = cursor_.occurrence();
    return open;
  }
  /// True for the second row of one ministep. Rows without any ministep are accepted.
  bool row() {
    const bool twice = state_ == State::Closed;
    if (twice && !std::exchange(twiceReported_, true)) {
      session_.diagnose({.message = Message::SummaryRowTwice,
                         .path = cursor_.path(),
                         .keyword = "PARAMS",
                         .occurrence = cursor_.occurrence(),
                         .offset = cursor_.header().headerAt,
                         .expected = "MINISTEP",
                         .found = "PARAMS",
                         .action = "kept the row",
                         .certainty = Certainty::Likely});
    }
    if (state_ == State::Open) state_ = State::Closed;
    return twice;
  }
  /// True when the last ministep has no row.
  bool end(std::string_view found, std::string_view action = "omitted the row") {
    const bool open = state_ == State::Open;
    state_ = State::None;
    if (open && !std::exchange(openReported_, true)) {
      session_.diagnose({.message = Message::SummaryRowMissing,
                         .path = cursor_.path(),
                         .keyword = "MINISTEP",
                         .occurrence = occurrence_,
                         .offset = openAt_,
                         .expected = "PARAMS",
                         .found = std::string(found),
                         .action = std::string(action)});
    }
    return open;
  }

 private:
  enum class State { None, Open, Closed };
  Session& session_;
  const RecordCursor& cursor_;
  State state_ = State::None;
  std::uint64_t openAt_ = 0;
  std::int64_t occurrence_ = 0;
  bool openReported_ = false;
  bool twiceReported_ = false;
};

class RowWalk {
 public:
  RowWalk(const RowIndexRequest& request, Session& session)
      : request_(request), session_(session), steps_(request.unified, request.iRestartStep) {
    index_.resume = request.resume;
    index_.opened = request.zFiles.empty();
  }

  RowIndex run() {
    for (std::size_t i = 0; i < request_.zFiles.size() && !stop_; ++i) {
      if (const auto cursor = openSummaryData(request_.zFiles[i], request_.form, session_,
                                              index_.stamps.emplace_back(), request_.sparse)) {
        index_.opened = true;
        walkFile(*cursor, static_cast<std::int32_t>(i));
      } else {
        index_.damaged = true;
      }
      if (session_.Container && request_.zFiles.size() > 1) session_.Container->fileDone();
    }
    if (!request_.unified) {
      reportOlderStepFiles(session_, std::span(request_.zFiles).first(index_.stamps.size()));
    }
    numberRows();
    return std::move(index_);
  }

 private:
  void walkFile(RecordCursor& cursor, std::int32_t iFile) {
    iStep_ = 0;
    const std::size_t rowsBefore = index_.rows.size();
    const bool lastFile = static_cast<std::size_t>(iFile) + 1 == request_.zFiles.size();
    if (request_.resume.isSet()) cursor.seek(fromWords(request_.resume) - 1);
    MinistepPairs pairs(session_, cursor);
    try {
      while (!stop_ && cursor.next()) {
        takeRecord(cursor, iFile, pairs);
        if (session_.cancelled()) index_.cancelled = stop_ = true;
      }
      cursor.checkUnchanged();
      if (stop_) return;
      if (pairs.end("end of file", keptRows())) (lastFile ? index_.cutOff : index_.faulty) = true;
      if (!request_.unified && index_.rows.size() == rowsBefore) reportNoRows(cursor);
    } catch (BadRecord& damage) {
      reportDamage(damage.diagnosis(), cursor, lastFile);
    }
  }

  void takeRecord(RecordCursor& cursor, std::int32_t iFile, MinistepPairs& pairs) {
    const auto& header = cursor.header();
    if (header.is("PARAMS", ElementType::Single)) {
      if (pairs.row()) index_.faulty = true;
      if (inRange_) takeRow(cursor, iFile);
    } else if (header.is("MINISTEP", ElementType::Integer)) {
      if (pairs.ministep()) index_.faulty = true;
    } else if (header.is("SEQHDR", ElementType::Integer)) {
      if (pairs.end("SEQHDR")) index_.faulty = true;
      startStep(cursor);
    }
  }

  void takeRow(RecordCursor& cursor, std::int32_t iFile) {
    const auto& header = cursor.header();
    if (header.count != request_.nValues) {
      throw BadRecord({.message = Message::SummaryRowLength,
                       .path = cursor.path(),
                       .problem = "row does not fit the specification",
                       .keyword = header.keyword,
                       .occurrence = cursor.occurrence(),
                       .offset = header.headerAt,
                       .expected = fmt::format("{} values", request_.nValues),
                       .found = fmt::format("{}", header.count)});
    }
    float first = 0;
    if (header.count > 0) cursor.read(std::span(&first, 1));
    if (request_.timeFirst && !index_.rows.empty() && first < index_.rows.back().first) {
      reportDecrease(cursor, first);
      if (stop_) return;
    }
    index_.rows.push_back({header.dataAt, iFile, iStep_, steps_.headers(), first, cursor.regular()});
    if (index_.rows.size() % rowsBetweenYields == 0) session_.yield();
  }

  void startStep(RecordCursor& cursor) {
    std::int32_t value = 0;
    if (cursor.header().count > 0) cursor.read(std::span(&value, 1));
    index_.resume = toWords(cursor.header().headerAt + 1);
    ++iStep_;
    steps_.take(value);
    if (!request_.unified || !steps_.settled()) return;
    const std::int32_t step = steps_.step(steps_.headers(), -1);
    inRange_ = request_.limits.contain(step);
    stop_ = stop_ || request_.limits.past(step);
  }

  /// Replaces the count of SEQHDR records by the report step, which is certain only now, and drops the rows
  /// that turn out to be outside the limits.
  void numberRows() {
    std::vector<std::int32_t> fileSteps;
    for (const auto& file : request_.zFiles) fileSteps.push_back(GetNumericPartOfFileName(file));
    for (RowPlace& row : index_.rows) {
      row.iReportStep = steps_.step(row.iReportStep, fileSteps[static_cast<std::size_t>(row.iFile)]);
    }
    if (!request_.unified) return;
    std::erase_if(index_.rows,
                  [this](const RowPlace& row) { return !request_.limits.contain(row.iReportStep); });
  }

  /// Rows of another generation of the run: step files that a rerun with fewer steps left behind, or a
  /// unified file that was written to twice. Of a set the rows before them are the run.
  void reportDecrease(const RecordCursor& cursor, float time) {
    index_.faulty = true;
    stop_ = !request_.unified;
    if (std::exchange(decreaseReported_, true)) return;
    session_.diagnose({.message = Message::SummaryTimeDecreases,
                       .path = cursor.path(),
                       .keyword = "PARAMS",
                       .occurrence = cursor.occurrence(),
                       .offset = cursor.header().headerAt,
                       .expected = fmt::format("at least {}", index_.rows.back().first),
                       .found = fmt::format("{}", time),
                       .action = stop_ ? keptRows() + ", ignored the rest of the set" : "kept all rows",
                       .certainty = stop_ ? Certainty::Likely : Certainty::Guess});
  }

  void reportNoRows(const RecordCursor& cursor) {
    session_.diagnose({.message = Message::SummaryFileNoRows,
                       .path = cursor.path(),
                       .offset = cursor.fileSize(),
                       .expected = "PARAMS",
                       .found = cursor.fileSize() == 0 ? "empty file" : "end of file"});
  }

  /// An incomplete last record is what a running or a killed simulation leaves, which is not damage.
  void reportDamage(Diagnosis& diagnosis, const RecordCursor& cursor, bool lastFile) {
    const auto& header = cursor.header();
    const bool wildCount = header.keyword == "PARAMS" && header.count != request_.nValues;
    const bool cutOff = lastFile && diagnosis.cutOff && !wildCount;
    (cutOff ? index_.cutOff : index_.damaged) = true;
    diagnosis.path = cursor.path();
    diagnosis.action = keptRows();
    if (!lastFile) diagnosis.action += ", continued with the next file";
    session_.diagnose(std::move(diagnosis));
  }

  std::string keptRows() const { return fmt::format("kept {} rows", index_.rows.size()); }

  const RowIndexRequest& request_;
  Session& session_;
  RowIndex index_;
  RowSteps steps_;
  std::int32_t iStep_ = 0;
  bool decreaseReported_ = false;
  bool inRange_ = true;
  bool stop_ = false;
};

}  // namespace

RowIndex indexRows(const RowIndexRequest& request, Session& session) {
  return RowWalk(request, session).run();
}

std::unique_ptr<RecordCursor> openSummaryData(const std::string& path, const Form& form, Session& session,
                                              std::optional<FileStamp>& stamp, bool sparse) {
  std::string why;
  std::shared_ptr<const ByteSource> source = FileSource::open(path, why);
  if (!source) {
    session.diagnose({.message = Message::FileOpen, .path = path, .problem = "cannot be opened: " + why});
    return nullptr;
  }
  stamp = source->stamp();
  if (sparse) source->expectSparseReads();
  try {
    // Some writers put records of their own in front, so any keyword is accepted.
    const auto detected = detectForm(*source);
    auto cursor = std::make_unique<RecordCursor>(std::move(source), detected ? detected->form : form, path);
    cursor->attach(session, RecordFile::Summary);
    return cursor;
  } catch (BadRecord& damage) {
    damage.diagnosis().path = path;
    session.diagnose(std::move(damage.diagnosis()));
    return nullptr;
  }
}

}  // namespace lumbarn
