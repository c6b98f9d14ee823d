#include "RowIndex.h"

#include <array>
#include <limits>

#include <fmt/format.h>

#include "../files/FileSets.h"
#include "../support/Diagnosis.h"

namespace lumbarn {

namespace {

constexpr std::int32_t rowsBetweenYields = 1000;

class RowWalk {
 public:
  RowWalk(const RowIndexRequest& request, Session& session) : request_(request), session_(session) {
    index_.resume = request.resume;
  }

  RowIndex run() {
    for (std::size_t i = 0; i < request_.zFiles.size() && !stop_; ++i) {
      const auto cursor = openSummaryData(request_.zFiles[i], request_.form, session_);
      if (!cursor) {
        index_.opened = false;
        break;
      }
      walkFile(*cursor, static_cast<std::int32_t>(i));
      if (session_.Container && request_.zFiles.size() > 1) session_.Container->fileDone();
    }
    return std::move(index_);
  }

 private:
  void walkFile(RecordCursor& cursor, std::int32_t iFile) {
    iStep_ = 0;
    if (request_.resume.isSet()) cursor.seek(fromWords(request_.resume) - 1);
    try {
      while (!stop_ && cursor.next()) {
        takeRecord(cursor, iFile);
        if (session_.cancelled()) {
          index_.cancelled = true;
          stop_ = true;
        }
      }
    } catch (BadRecord& damage) {
      tellDamage(damage.diagnosis(), cursor, iFile);
    }
  }

  void takeRecord(RecordCursor& cursor, std::int32_t iFile) {
    const auto& header = cursor.header();
    if (header.is("SEQHDR", ElementType::Integer)) return startStep(cursor);
    if (!qInRange_ || !header.is("PARAMS", ElementType::Single)) return;
    if (header.count != request_.nValues) {
      Diagnosis wrong;
      wrong.problem = "row does not fit the specification";
      wrong.path = cursor.path();
      wrong.keyword = header.keyword;
      wrong.occurrence = cursor.occurrence();
      wrong.offset = header.headerAt;
      wrong.expected = fmt::format("{} values", request_.nValues);
      wrong.found = fmt::format("{}", header.count);
      throw BadRecord(std::move(wrong));
    }
    float first = 0;
    if (header.count > 0) cursor.read(std::span(&first, 1));
    index_.rows.push_back({header.dataAt, iFile, iStep_, cursor.regular(), first});
    if (index_.rows.size() % rowsBetweenYields == 0) session_.yield();
  }

  void startStep(RecordCursor& cursor) {
    std::int32_t value = 0;
    if (cursor.header().count > 0) cursor.read(std::span(&value, 1));
    index_.resume = toWords(cursor.header().headerAt + 1);
    ++iStep_;
    bool qPast = false;
    bool qOK = false;
    checkSequence(request_.unified, value, request_.iFirst, request_.iLast, qInRange_, qPast, qOK);
    // In a multiple set a value that falls back belongs to an older run whose files lie in the same folder.
    index_.fellBack = value < lastValue_ && !request_.unified;
    stop_ = stop_ || qPast || index_.fellBack;
    lastValue_ = value;
  }

  /// A last record that is not whole is what a running or a killed simulation leaves: no damage.
  void tellDamage(Diagnosis& diagnosis, const RecordCursor& cursor, std::int32_t iFile) {
    const bool lastFile = static_cast<std::size_t>(iFile) + 1 == request_.zFiles.size();
    const auto& header = cursor.header();
    const bool wildCount = header.keyword == "PARAMS" && header.count != request_.nValues;
    index_.cutOff = lastFile && diagnosis.cutOff && !wildCount;
    index_.damaged = !index_.cutOff;
    stop_ = true;
    diagnosis.path = cursor.path();
    diagnosis.action = fmt::format("kept {} rows", index_.rows.size());
    session_.diagnose(std::move(diagnosis));
  }

  const RowIndexRequest& request_;
  Session& session_;
  RowIndex index_;
  std::int32_t iStep_ = 0;
  std::int32_t lastValue_ = std::numeric_limits<std::int32_t>::min();
  bool qInRange_ = true;
  bool stop_ = false;
};

}  // namespace

RowIndex indexRows(const RowIndexRequest& request, Session& session) {
  return RowWalk(request, session).run();
}

std::unique_ptr<RecordCursor> openSummaryData(const std::string& path, const Form& form, Session& session) {
  constexpr std::array<std::string_view, 3> firstWords{"SEQHDR", "MINISTEP", "PARAMS"};
  std::string why;
  std::shared_ptr<const ByteSource> source = FileSource::open(path, why);
  if (!source) {
    Diagnosis diagnosis;
    diagnosis.path = path;
    diagnosis.problem = "cannot be opened: " + why;
    session.diagnose(std::move(diagnosis));
    return nullptr;
  }
  const auto detected = detectForm(*source, firstWords);
  return std::make_unique<RecordCursor>(std::move(source), detected ? detected->form : form, path);
}

}  // namespace lumbarn
