#include "ContentCheck.h"

#include <utility>

#include "../files/FileChoice.h"
#include "../grid/GridFile.h"
#include "../index/RestartIndex.h"
#include "../index/RestartIndexAgreement.h"
#include "../init/InitFile.h"
#include "../restart/qvEclipseSAVE.h"
#include "../summary/RestartChain.h"
#include "../summary/qvEclipseSPEC.h"
#include "../support/Session.h"
#include "../welltests/qvEclipseRFT.h"
#include "../welltests/qvUserRFT.h"
#include "Diagnosed.h"

namespace lumbarn {

namespace {

/// Reports go to another sink as long as it lives.
class ShownTo {
 public:
  ShownTo(Session& session, const FindingSink& report)
      : session_(session), before_(std::exchange(session.diagnosisSink, report)) {}
  ~ShownTo() { session_.diagnosisSink = std::move(before_); }
  ShownTo(const ShownTo&) = delete;
  ShownTo& operator=(const ShownTo&) = delete;

 private:
  Session& session_;
  decltype(Session::diagnosisSink) before_;
};

void checkArrays(const std::string& path, Session& session) {
  InitFile init(session);
  init.LoadData = false;
  if (!init.check(path) || !diagnosed(session, [&] { return init.load(); })) return;
  for (std::int32_t grid = 1; grid <= init.nGrids(); ++grid) {
    const auto& info = init.grid(grid);
    bool numbered = true;  // one array of all cells that is not says what they all would
    for (std::int32_t array = 1; array <= info.nVectors(); ++array) {
      if (session.cancelled()) return;
      // Only arrays of all cells can turn out not to fit.
      const auto count = info.arrays[static_cast<std::size_t>(array) - 1].header.count;
      if (!numbered || count == info.nActive) continue;
      const auto values = diagnosed(session, [&] { return init.arrayValues(grid, array, false); });
      numbered = values || count != info.nCells;
    }
  }
}

}  // namespace

void checkInit(const std::string& path, Session& session, const FindingSink& report) {
  const ShownTo shown(session, report);
  checkArrays(path, session);
}

void checkGrid(const RunMember& file, Session& session, const FindingSink& report) {
  const ShownTo shown(session, report);
  const auto grid = recogniseGridFile(file.path, file.kind == FileKind::EGrid);
  GridFileContent content;
  if (grid) diagnosed(session, [&] { return readGridFile(*grid, grid->open(), {}, session, content); });
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

namespace {

/// Reads all tests of a file, and gives their count.
std::optional<std::int64_t> readTests(const std::string& path, FileKind kind, Session& session) {
  const auto count = [](const auto& file) { return std::optional<std::int64_t>(file.NumTests()); };
  if (kind == FileKind::Rft) {
    qvEclipseRFT file(session);
    return file.CheckRFTFile(path) && file.readFile() ? count(file) : std::nullopt;
  }
  qvUserRFT file(session);
  const bool rft = kind == FileKind::UserRft;
  if (!(rft ? file.CheckRFTFile(path) : file.CheckPLTFile(path))) return std::nullopt;
  return file.readFile(rft ? UserTestKind::Rft : UserTestKind::Plt) ? count(file) : std::nullopt;
}

}  // namespace

std::optional<std::int64_t> checkWellTests(const std::string& path, FileKind kind, Session& session,
                                           const FindingSink& report) {
  const auto shown = std::exchange(session.diagnosisSink, report);
  const auto said = std::exchange(session.faultReporter, nullptr);  // faults come as diagnoses too
  const auto tests = readTests(path, kind, session);
  session.faultReporter = said;
  session.diagnosisSink = shown;
  return tests;
}

void checkSteps(const RunFamily& run, const RunMember& file, Session& session, const FindingSink& report) {
  const auto shown = std::exchange(session.diagnosisSink, nullptr);
  const auto files = chooseFiles(session, run, FileKind::Restart).files;
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
    indexOfRestart(session, chooseFiles(session, run, FileKind::Restart).files, file.path);
  }
  session.diagnosisSink = shown;
}

}  // namespace lumbarn
