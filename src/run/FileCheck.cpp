#include "FileCheck.h"

#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include "../files/Recogniser.h"
#include "../record/RecordCursor.h"
#include "../support/Session.h"
#include "ContentCheck.h"
#include "RecordData.h"

namespace lumbarn {
namespace {

/// The table of keyword types for files of a kind.
RecordFile recordFileOf(FileKind kind) {
  switch (kind) {
    case FileKind::SummarySpec:
      return RecordFile::Specification;
    case FileKind::Summary:
      return RecordFile::Summary;
    case FileKind::Restart:
      return RecordFile::Restart;
    case FileKind::Rsspec:
      return RecordFile::RestartIndex;
    case FileKind::Init:
      return RecordFile::Init;
    case FileKind::Inspec:
      return RecordFile::InitIndex;
    case FileKind::Grid:
      return RecordFile::Grid;
    case FileKind::EGrid:
      return RecordFile::EGrid;
    case FileKind::Rft:
      return RecordFile::WellTest;
    default:
      return RecordFile::Any;
  }
}

/// A record of one number that orders what follows it.
struct OrderRule {
  std::string_view keyword;
  std::int64_t last = std::numeric_limits<std::int64_t>::min();
};

class Walk {
 public:
  Walk(RecordCursor& cursor, bool summary, const CheckRequest& request, Session& session,
       const FindingSink& report)
      : cursor_(cursor), summary_(summary), request_(request), session_(session), report_(report) {}

  void walk() {
    while (next()) {
      if (session_.yield()) throw LoadCanceled();
      ++records_;
      checkRecord();
      if (records_ % 256 == 0 || request_.values) showProgress(cursor_, session_);
    }
    if (openMinistep_) {
      add({.message = Message::SummaryRowOrder,
           .problem = "summary row is not whole",
           .keyword = "MINISTEP",
           .offset = ministepAt_,
           .expected = "PARAMS behind it",
           .found = "end of file"},
          "the row is left out");
    }
  }
  std::int64_t records() const { return records_; }

 private:
  /// Moves to the next record, over damage where there is one behind it.
  bool next() {
    return nextRecord(
        cursor_, [&] { return fmt::format("stopped behind {} records", records_); },
        [&](Diagnosis& damage) {
          openMinistep_ = false;  // what becomes of the row is part of this damage
          const std::string action = damage.action;
          add(std::move(damage), action);
        });
  }

  void checkRecord() {
    try {
      if (request_.values) readExtremes(cursor_, session_);
      checkOrder(sequence_);
      if (summary_) checkTime();
    } catch (const BadRecord& damage) {
      add(damage.diagnosis(), "went on behind the record");
    }
    if (summary_) checkRow();
  }

  void checkOrder(OrderRule& rule) {
    const RecordHeader& header = cursor_.header();
    if (!header.is(rule.keyword, ElementType::Integer) || header.count < 1) return;
    std::int32_t number = 0;
    cursor_.read(std::span(&number, 1));
    if (number <= rule.last) {
      addHere("number does not rise", fmt::format("more than {}", rule.last), fmt::format("{}", number));
    }
    rule.last = number;
  }

  void checkRow() {
    const RecordHeader& header = cursor_.header();
    if (header.keyword == "PARAMS") {
      if (!openMinistep_) addHere("summary row without a number", "MINISTEP before it", "");
      if (request_.vectors && header.count != *request_.vectors) {
        addHere("summary row does not fit its specification", fmt::format("{} values", *request_.vectors),
                fmt::format("{}", header.count));
      }
      openMinistep_ = false;
    } else if (header.keyword == "MINISTEP" || header.keyword == "SEQHDR") {
      if (openMinistep_) addHere("summary row is not whole", "PARAMS", header.keyword);
      openMinistep_ = header.keyword == "MINISTEP";
      ministepAt_ = header.headerAt;
    }
  }

  /// Ministeps may skip or repeat a number, and report steps are numbered as writers like: only TIME, which
  /// is nearly always the first value, orders rows.
  void checkTime() {
    if (!cursor_.header().is("PARAMS", ElementType::Single) || cursor_.header().count < 1) return;
    float time = 0;
    cursor_.read(std::span(&time, 1));
    if (time < lastTime_) {
      addHere("TIME decreases", fmt::format("at least {}", lastTime_), fmt::format("{}", time));
    }
    lastTime_ = time;
  }

  void addHere(std::string problem, std::string expected, std::string found) {
    add({.message = Message::RecordOrder,
         .problem = std::move(problem),
         .keyword = cursor_.header().keyword,
         .occurrence = cursor_.occurrence(),
         .offset = cursor_.header().headerAt,
         .expected = std::move(expected),
         .found = std::move(found)},
        "");
  }
  void add(Diagnosis finding, std::string action) {
    finding.path = cursor_.path();
    finding.action = std::move(action);
    report_(std::move(finding));
  }

  RecordCursor& cursor_;
  bool summary_;
  const CheckRequest& request_;
  Session& session_;
  const FindingSink& report_;
  std::int64_t records_ = 0;
  bool openMinistep_ = false;
  std::uint64_t ministepAt_ = 0;
  float lastTime_ = std::numeric_limits<float>::lowest();
  OrderRule sequence_{"SEQNUM"};  // of a summary, writers number steps and ministeps as they like
};

}  // namespace

FileCheck checkFile(const RunMember& file, const CheckRequest& request, Session& session,
                    const FindingSink& report) {
  FileCheck result;
  const FindingSink count = [&](Diagnosis finding) {
    ++result.findings;
    report(std::move(finding));
  };
  const Recognised recognised = recogniseFile(file.path);
  if (recognised.kind == FileKind::UserRft || recognised.kind == FileKind::UserPlt) {
    const auto tests = checkWellTests(file.path, recognised.kind, session, count);
    result.readable = tests.has_value();
    result.records = tests.value_or(0);
    result.unit = "test";
    return result;
  }
  std::string why;
  const auto cursor = openRecords(file.path, why);
  if (!cursor) {
    count(refusal(file.path, file.kind));
    return result;
  }
  if (recognised.byContent && file.kind != FileKind::Unknown && recognised.kind != file.kind) {
    count({.message = Message::FileContent,
           .path = file.path,
           .problem = "content is not what the name says",
           .keyword = recognised.keyword,
           .occurrence = 1,
           .offset = recognised.offset,
           .expected = std::string(nameOf(file.kind)),
           .found = std::string(nameOf(recognised.kind))});
  }
  cursor->attach(session, recordFileOf(file.kind));
  Walk walk(*cursor, file.kind == FileKind::Summary, request, session, count);
  walk.walk();
  result.records = walk.records();
  result.readable = result.records > 0;
  return result;
}

}  // namespace lumbarn
