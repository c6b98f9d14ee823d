#include "Check.h"

#include <deque>
#include <utility>

#include "../deck/DeckCheck.h"
#include "../files/Families.h"
#include "../support/Session.h"
#include "../support/Text.h"
#include "ContentCheck.h"
#include "Run.h"
#include "RunState.h"

namespace lumbarn {

namespace {

/// The files of a run that consist of records, or of tests, and its deck. A file whose name tells nothing
/// counts when it was asked for. Specifications come before the data that they describe.
std::vector<const RunMember*> recordFiles(const RunFamily& run) {
  std::vector<const RunMember*> files;
  for (const RunMember& member : run.members) {
    if (member.kind == FileKind::Rsm || (member.kind == FileKind::Unknown && &member != run.givenMember()))
      continue;
    files.push_back(&member);
  }
  return files;
}

/// Findings as rows, those of one file after the other.
class FindingRows {
 public:
  explicit FindingRows(std::shared_ptr<RunCheck> check) : check_(std::move(check)) {}

  bool fill(BatchBuilder& rows) {
    while (true) {
      for (; !findings_.empty() && !rows.full(); findings_.pop_front()) add(rows, findings_.front());
      if (rows.full()) return true;
      if (ended_) return false;
      ended_ = !check_->next([this](Diagnosis finding) { findings_.push_back(std::move(finding)); });
    }
  }

 private:
  static void add(BatchBuilder& rows, const Diagnosis& finding) {
    const auto text = [&](std::size_t column, std::string_view value) {
      if (!value.empty()) rows.set(column, toUtf8(value));
    };
    text(0, finding.path);
    text(1, finding.what());
    text(2, finding.keyword);
    if (finding.occurrence > 0) rows.set(3, finding.occurrence);
    if (finding.line > 0) rows.set(4, finding.line);
    if (finding.offset) rows.set(5, *finding.offset);
    text(6, finding.expected);
    text(7, finding.found);
    text(8, finding.action);
    rows.endRow();
  }

  std::shared_ptr<RunCheck> check_;
  std::deque<Diagnosis> findings_;
  bool ended_ = false;
};

}  // namespace

RunCheck::RunCheck(const std::string& path, const CheckOptions& check, const ReadOptions& options)
    : context_(std::make_shared<StreamContext>(options)), how_(check) {
  run_ = Run::open(path).sharedState();
  members_ = recordFiles(run_->family());
  if (members_.empty())
    throw Error(Error::Kind::NotFound,
                {.message = Message::RunFileMissing, .path = run_->root(), .problem = "has no record files"});
  if (Progress* display = options.progress) display->files(static_cast<int>(members_.size()));
}

std::vector<std::string> RunCheck::files() const {
  std::vector<std::string> paths;
  for (const RunMember* member : members_) paths.push_back(member->path);
  return paths;
}

std::optional<CheckedFile> RunCheck::next(const FindingSink& report) {
  const FindingSink add = [&](Diagnosis finding) {
    incomplete_ = incomplete_ || finding.severity() != Severity::Remark;
    report(std::move(finding));
  };
  if (next_ == members_.size()) {
    checkPairs(add);
    return std::nullopt;
  }
  try {
    const RunMember& file = *members_[next_++];
    if (file.kind == FileKind::Deck) return checkKeywords(file, add);
    CheckRequest request{.values = how_.values};
    if (file.kind == FileKind::Summary) request.vectors = vectors_[file.formatted ? 1 : 0];
    CheckedFile result{checkFile(file, request, context_->session(), add), file.path};
    if (result.findings == 0 && result.unit == std::string_view("record")) {
      checkContent(file, [&](Diagnosis finding) {
        ++result.findings;
        add(std::move(finding));
      });
    }
    if (context_->session().cancelled()) throw LoadCanceled();
    anyRecord_ = anyRecord_ || result.readable;
    if (Progress* display = context_->session().Container) display->fileDone();
    return result;
  } catch (...) {
    throw errorInFlight();
  }
}

CheckedFile RunCheck::checkKeywords(const RunMember& file, const FindingSink& report) {
  CheckedFile result{{.unit = "keyword"}, file.path};
  // What the scan reports is among the findings.
  Session& session = context_->session();
  const auto shown = std::exchange(session.diagnosisSink, nullptr);
  const auto add = [&](Diagnosis finding) {
    ++result.findings;
    report(std::move(finding));
  };
  try {
    const Deck deck = Deck::read(file.path, session);
    result.records = static_cast<std::int64_t>(deck.keywords().size());
    result.readable = anyRecord_ = true;
    checkDeck(deck, session, add);
  } catch (const BadRecord& bad) {
    add(bad.diagnosis());
  }
  session.diagnosisSink = shown;
  if (Progress* display = session.Container) display->fileDone();
  return result;
}

void RunCheck::checkPairs(const FindingSink& report) const {
  const RunFamily& run = run_->family();
  const auto pair = [&](FileKind kind, FileKind other, const char* problem) {
    if (!run.find(kind) || run.find(other)) return;
    report({.message = Message::RunMember, .path = run.find(kind)->path, .problem = problem});
  };
  pair(FileKind::SummarySpec, FileKind::Summary, "no summary data go with it");
  pair(FileKind::Summary, FileKind::SummarySpec, "no specification goes with it");
}

void RunCheck::checkContent(const RunMember& file, const FindingSink& report) {
  Session& session = context_->session();
  switch (file.kind) {
    case FileKind::SummarySpec:
      vectors_[file.formatted ? 1 : 0] = checkSpecification(file, session, report);
      break;
    case FileKind::Restart:
      checkSteps(run_->family(), file, session, report);
      break;
    case FileKind::Save:
      checkSave(file, session, report);
      break;
    case FileKind::Init:
      checkInit(file.path, session, report);
      break;
    case FileKind::Grid:
    case FileKind::EGrid:
      if (how_.values) checkGrid(file, session, report);
      break;
    case FileKind::Rsspec:
    case FileKind::Inspec:
      checkIndex(run_->family(), file, session, report);
      break;
    case FileKind::Rft:
      if (how_.values) checkWellTests(file.path, file.kind, session, report);
      break;
    default:
      break;
  }
}

Stream RunCheck::findings(std::shared_ptr<RunCheck> check) {
  auto context = check->context_;
  auto rows = std::make_shared<FindingRows>(std::move(check));
  return streamOfRows({{.name = "file", .type = Type::Utf8, .nullable = false},
                       {.name = "problem", .type = Type::Utf8, .nullable = false},
                       {.name = "keyword", .type = Type::Utf8},
                       {.name = "occurrence", .type = Type::Int64},
                       {.name = "line", .type = Type::Int64},
                       {.name = "offset", .type = Type::Int64},
                       {.name = "expected", .type = Type::Utf8},
                       {.name = "found", .type = Type::Utf8},
                       {.name = "action", .type = Type::Utf8}},
                      std::move(context), [rows](BatchBuilder& builder) { return rows->fill(builder); });
}

Stream check(const std::string& path, const CheckOptions& check, const ReadOptions& options) {
  return RunCheck::findings(std::make_shared<RunCheck>(path, check, options));
}

}  // namespace lumbarn
