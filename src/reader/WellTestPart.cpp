#include "WellTestPart.h"

#include <utility>

#include "../files/FileChoice.h"
#include "../files/Recogniser.h"

namespace lumbarn {

void WellTestPart::load() {
  yield();
  auto file = std::make_unique<qvEclipseRFT>(session());
  const std::string path = fileOfRun(options().FileName, FileKind::Rft);
  if (!file->CheckRFTFile(path)) failWith(refusal(path, FileKind::Rft));
  setForm(*file);
  file->ProcessPLT = options().ProcessPLT;
  file->ScaledPLT = options().ScaledPLT;
  file->SortedPLT = options().SortedPLT;
  file_ = std::move(file);
  bool qRead = false;
  file_->getRFTData(qRead);
  setOrigin();
  if (!qRead) throw ReportedFailure();
}

std::vector<WellTest> WellTestPart::list() const {
  auto tests = readWellTests(fileOfRun(options().FileName, FileKind::Rft), session());
  if (tests.empty()) throw ReportedFailure();
  return tests;
}

void UserTestPart::load(UserTestKind kind) {
  yield();
  auto file = std::make_unique<qvUserRFT>(session());
  const bool rft = kind == UserTestKind::Rft;
  const std::string& path = options().FileName;
  if (!(rft ? file->CheckRFTFile(path) : file->CheckPLTFile(path))) throw ReportedFailure();
  file_ = std::move(file);
  kind_ = kind;
  bool qRead = false;
  rft ? file_->getRFTData(qRead) : file_->getPLTData(qRead);
  setOrigin();
  if (!qRead) throw ReportedFailure();
}

}  // namespace lumbarn
