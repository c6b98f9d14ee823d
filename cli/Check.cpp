#include <memory>

#include <fmt/format.h>

#include "Commands.h"
#include "FileCheck.h"
#include "InitFile.h"
#include "Output.h"
#include "PathArgument.h"

namespace lumbarn::cli {
namespace {

struct CheckOptions {
  std::string path;
  OutputOptions output;
};

/// Writes findings as they are made: lines for people, with one more for each file, or rows.
class FindingReport {
 public:
  FindingReport(Format format, std::ostream& out) : out_(out) {
    if (format == Format::Table) return;
    const std::vector<Column> columns{{"file"},         {"problem"},  {"keyword"}, {"occurrence", true},
                                      {"offset", true}, {"expected"}, {"found"},   {"action"}};
    table_ = TableWriter::make(format, columns, out);
  }

  void add(const Diagnosis& finding) {
    if (!table_) {
      out_ << printable(finding.text()) << "\n";
      return;
    }
    table_->text(finding.path);
    table_->text(finding.what());
    table_->text(finding.keyword);
    finding.occurrence > 0 ? table_->number(finding.occurrence) : table_->empty();
    finding.offset ? table_->number(*finding.offset) : table_->empty();
    table_->text(finding.expected);
    table_->text(finding.found);
    table_->text(finding.action);
  }
  void file(const std::string& path, const FileCheck& check) {
    if (table_) return;
    out_ << fmt::format("{}: {} {}{}, {}\n", printable(path), check.records, check.unit,
                        check.records == 1 ? "" : "s",
                        check.findings == 0   ? "clean"
                        : check.findings == 1 ? "1 finding"
                                              : fmt::format("{} findings", check.findings));
    out_.flush();
  }
  void finish() {
    if (table_) table_->finish();
  }

 private:
  std::ostream& out_;
  std::unique_ptr<TableWriter> table_;
};

/// The files of a run that consist of records, or of tests. A file whose name tells nothing counts when it
/// was asked for.
std::vector<const RunMember*> recordFiles(const RunFamily& run) {
  std::vector<const RunMember*> files;
  for (const RunMember& member : run.members) {
    const bool text = member.kind == FileKind::Deck || member.kind == FileKind::Rsm;
    if (text || (member.kind == FileKind::Unknown && &member != run.givenMember())) continue;
    files.push_back(&member);
  }
  return files;
}

/// Checks the files of a run one after the other. Specifications come before the data that they describe, as
/// families list them in this order.
class RunCheck {
 public:
  RunCheck(Console& console, FindingReport& report) : console_(console), report_(report) {}

  ExitStatus check(const RunFamily& run) {
    const auto files = recordFiles(run);
    if (files.empty()) throw Failure(Usage, run.folder + run.base + ": has no record files");
    console_.progress().files(static_cast<int>(files.size()));
    for (const RunMember* file : files) {
      check(run, *file);
      console_.progress().fileDone();
    }
    checkPair(run, FileKind::SummarySpec, FileKind::Summary, "no summary data go with it");
    checkPair(run, FileKind::Summary, FileKind::SummarySpec, "no specification goes with it");
    if (!anyRecord_) return Unreadable;
    return incomplete_ ? Partial : Done;
  }

 private:
  void checkPair(const RunFamily& run, FileKind kind, FileKind other, const char* problem) {
    if (!run.find(kind) || run.find(other)) return;
    add({.message = Message::RunMember, .path = run.find(kind)->path, .problem = problem});
  }

  void add(const Diagnosis& finding) {
    incomplete_ = incomplete_ || finding.severity() != Severity::Remark;
    report_.add(finding);
  }

  void check(const RunFamily& run, const RunMember& file) {
    auto& vectors = vectors_[file.formatted ? 1 : 0];
    const FindingSink add = [this](const Diagnosis& finding) { this->add(finding); };
    FileCheck result =
        checkFile(file, file.kind == FileKind::Summary ? vectors : std::nullopt, console_, add);
    if (result.findings == 0) {
      checkContent(run, file, result, vectors, [&](const Diagnosis& finding) {
        ++result.findings;
        add(finding);
      });
    }
    console_.checkCancelled();
    anyRecord_ = anyRecord_ || result.readable;
    console_.progress().hide();
    report_.file(file.path, result);
  }

  /// What the records of a sound file say: whether it fits together.
  void checkContent(const RunFamily& run, const RunMember& file, const FileCheck& result,
                    std::optional<std::int64_t>& vectors, const FindingSink& report) {
    Session& session = console_.session();
    switch (file.kind) {
      case FileKind::SummarySpec:
        vectors = checkSpecification(file, session, report);
        break;
      case FileKind::Restart:
        checkSteps(run, file, session, report);
        break;
      case FileKind::Save:
        checkSave(file, session, report);
        break;
      case FileKind::Init:
        checkInit(file.path, session, report);
        break;
      case FileKind::Grid:
      case FileKind::EGrid:
        checkGrid(file, session, report);
        break;
      case FileKind::Rsspec:
      case FileKind::Inspec:
        checkIndex(run, file, session, report);
        break;
      case FileKind::Rft:
        if (result.unit == std::string_view("record")) checkWellTests(file.path, file.kind, session, report);
        break;
      default:
        break;
    }
  }

  Console& console_;
  FindingReport& report_;
  std::optional<std::int64_t> vectors_[2];  // of the unformatted and the formatted specification
  bool anyRecord_ = false;
  bool incomplete_ = false;  // something was found that is more than a remark
};

ExitStatus checkRun(const CheckOptions& options, Console& console) {
  const RunFamily run = findRun(options.path);
  Output output(options.output, console.out(), pathsOf(run));
  FindingReport report(options.output.format, output.stream());
  const ExitStatus status = RunCheck(console, report).check(run);
  report.finish();
  output.commit();
  return status;
}

}  // namespace

void addCheck(CommandLine& line) {
  Subcommand command(line, "check", "Read every file of a run and report all that is wrong");
  CheckOptions& options = command.performs(checkRun);
  command.path(options.path);
  command.output(options.output);
  command.footer(
      "Exit status: 0 clean or remarks only, 3 incomplete or damaged, 1 no record could be read.\nExample:\n"
      "  lumbarn check RUN");
}

}  // namespace lumbarn::cli
