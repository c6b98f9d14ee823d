#include "FileCheck.h"

#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include "RecordData.h"
#include "RunIndex.h"
#include "files/Recogniser.h"
#include "grid/qvGRIDReader.h"
#include "index/RestartIndex.h"
#include "index/RestartIndexAgreement.h"
#include "index/qvEclipseINSPEC.h"
#include "reader/qvEclipseReader.h"
#include "restart/qvEclipseSAVE.h"
#include "summary/RestartChain.h"
#include "summary/qvEclipseSPEC.h"

namespace lumbarn::cli {
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
  Walk(RecordCursor& cursor, bool summary, std::optional<std::int64_t> vectors, Console& console,
       const FindingSink& report)
      : cursor_(cursor), summary_(summary), vectors_(vectors), console_(console), report_(report) {}

  void walk() {
    while (next()) {
      console_.checkCancelled();
      ++records_;
      checkRecord();
      showProgress(cursor_, console_);
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
    while (true) {
      try {
        return cursor_.next();
      } catch (BadRecord& damage) {
        openMinistep_ = false;  // what becomes of the row is part of this damage
        const bool more =
            continueBehind(cursor_, damage.diagnosis(), fmt::format("stopped behind {} records", records_));
        const std::string action = damage.diagnosis().action;
        add(std::move(damage.diagnosis()), action);
        if (!more) return false;
      }
    }
  }

  void checkRecord() {
    try {
      readExtremes(cursor_, console_);
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
      if (vectors_ && header.count != *vectors_) {
        addHere("summary row does not fit its specification", fmt::format("{} values", *vectors_),
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
  std::optional<std::int64_t> vectors_;
  Console& console_;
  const FindingSink& report_;
  std::int64_t records_ = 0;
  bool openMinistep_ = false;
  std::uint64_t ministepAt_ = 0;
  float lastTime_ = std::numeric_limits<float>::lowest();
  OrderRule sequence_{"SEQNUM"};  // of a summary, writers number steps and ministeps as they like
};

}  // namespace

FileCheck checkFile(const RunMember& file, std::optional<std::int64_t> vectors, Console& console,
                    const FindingSink& report) {
  FileCheck result;
  const FindingSink count = [&](Diagnosis finding) {
    ++result.findings;
    report(std::move(finding));
  };
  const Recognised recognised = recogniseFile(file.path);
  if (recognised.kind == FileKind::UserRft || recognised.kind == FileKind::UserPlt) {
    const auto tests = checkWellTests(file.path, recognised.kind, console.session(), count);
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
  cursor->attach(console.session(), recordFileOf(file.kind));
  Walk walk(*cursor, file.kind == FileKind::Summary, vectors, console, count);
  walk.walk();
  result.records = walk.records();
  result.readable = result.records > 0;
  return result;
}

void checkGrid(const RunMember& file, Session& session, const FindingSink& report) {
  const auto shown = std::exchange(session.diagnosisSink, report);
  qvGRIDReader reader(session);
  bool qOK = false;
  if (file.kind == FileKind::EGrid && reader.CheckEGRIDFile(file.path)) {
    reader.ReadEclipseEGridFile(qOK);
  } else if (file.kind == FileKind::Grid && reader.CheckGRIDFile(file.path)) {
    reader.ReadEclipseGridFile(qOK);
  }
  session.diagnosisSink = shown;
}

void checkSave(const RunMember& file, Session& session, const FindingSink& report) {
  // What is wrong is reported as a finding; the fault report of the same would only repeat it.
  const auto reporter = std::exchange(session.faultReporter, {});
  const auto shown = std::exchange(session.diagnosisSink, report);
  qvEclipseSAVE save(session);
  bool qOK = false;
  if (save.CheckSAVEFile(file.path)) {
    save.SetMultList(1, {file.path}, qOK);
    save.getSAVEData(qOK);
  }
  session.diagnosisSink = shown;
  session.faultReporter = reporter;
}

std::optional<std::int64_t> checkSpecification(const RunMember& file, Session& session,
                                               const FindingSink& report) {
  const auto shown = std::exchange(session.diagnosisSink, report);
  qvEclipseSPEC spec(session);
  bool qOK = false;
  if (spec.CheckSPECFile(file.path)) spec.ReadEclipseSPECFile(qOK);
  if (qOK && !spec.zRestartName.empty())
    findEarlierRun(spec.zRestartName, file.path, spec.Formatted, session);
  session.diagnosisSink = shown;
  if (!qOK) return std::nullopt;
  return spec.nVectors;
}

std::optional<std::int64_t> checkWellTests(const std::string& path, FileKind kind, Session& session,
                                           const FindingSink& report) {
  const auto shown = std::exchange(session.diagnosisSink, report);
  const auto said = std::exchange(session.faultReporter, nullptr);  // faults come as diagnoses too
  qvEclipseReader reader(session);
  reader.FileName = path;
  reader.whichtype = whichtypeOf(kind);
  bool qOK = false;
  reader.ECLReadData(qOK);
  session.faultReporter = said;
  session.diagnosisSink = shown;
  if (!qOK) return std::nullopt;
  return kind == FileKind::Rft ? reader.NumberRFTTests() : reader.NumberUserTests();
}

void checkSteps(const RunFamily& run, const RunMember& file, Session& session, const FindingSink& report) {
  const auto shown = std::exchange(session.diagnosisSink, nullptr);
  const auto files = restartFiles(run, session);
  std::vector<std::string> walked = {file.path};
  // The last step of a set must have what the one before it has.
  if (files.size() > 1 && files.back() == file.path) walked.insert(walked.begin(), files[files.size() - 2]);
  session.diagnosisSink = [&](const Diagnosis& finding) {
    if (finding.path == file.path) report(finding);
  };
  walkRestart(session, walked);
  session.diagnosisSink = shown;
}

void checkIndex(const RunFamily& run, const RunMember& file, Session& session, const FindingSink& report) {
  const bool init = file.kind == FileKind::Inspec;
  if (!run.find(init ? FileKind::Init : FileKind::Restart)) return;
  const auto shown = std::exchange(session.diagnosisSink, report);
  if (init) {
    indexOfInit(session, run.find(FileKind::Init)->path, file.path);
  } else {
    indexOfRestart(session, restartFiles(run, session), file.path);
  }
  session.diagnosisSink = shown;
}

}  // namespace lumbarn::cli
