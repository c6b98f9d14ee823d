#include "../files/FileChoice.h"
#include "../support/Diagnosis.h"
#include "ReaderLoad.h"

namespace lumbarn {

void qvEclipseReader::ReadRFTFile(bool& qOK) {
  load(Loaded::Tests, "ReadRFTFile", qOK, [&] {
    if (session_->yield()) return false;
    auto file = std::make_unique<qvEclipseRFT>(*session_);
    const std::string path = fileOfRun(FileName, FileKind::Rft);
    if (!file->CheckRFTFile(path)) {
      session_->diagnose(refusal(path, FileKind::Rft));
      return false;
    }
    Formatted = file->Formatted;
    UNIX = file->UNIX;
    byteSwap = file->byteSwap;
    file->ProcessPLT = ProcessPLT;
    file->ScaledPLT = ScaledPLT;
    file->SortedPLT = SortedPLT;
    bool qRead = false;
    tests_ = std::move(file);
    tests_->getRFTData(qRead);
    SetOriginFromFileName();
    return qRead;
  });
}

void qvEclipseReader::ReadUserRFTFile(bool& qOK) { readUserTests(UserTestKind::Rft, qOK); }

void qvEclipseReader::ReadUserPLTFile(bool& qOK) { readUserTests(UserTestKind::Plt, qOK); }

void qvEclipseReader::readUserTests(UserTestKind kind, bool& qOK) {
  const bool rft = kind == UserTestKind::Rft;
  load(Loaded::UserTests, rft ? "ReadUserRFTFile" : "ReadUserPLTFile", qOK, [&] {
    if (session_->yield()) return false;
    auto file = std::make_unique<qvUserRFT>(*session_);
    if (!(rft ? file->CheckRFTFile(FileName) : file->CheckPLTFile(FileName))) return false;
    bool qRead = false;
    userTests_ = std::move(file);
    userKind_ = kind;
    rft ? userTests_->getRFTData(qRead) : userTests_->getPLTData(qRead);
    SetOriginFromFileName();
    return qRead;
  });
}

/// A question to a file of tests; fails when none is held.
template <class Source, class Ask>
void qvEclipseReader::askTests(const std::unique_ptr<Source>& source, const char* routine, bool& qOK,
                               Ask ask) {
  perform(routine, qOK, [&] {
    bool qDone = false;
    if (requireLoaded(source != nullptr, "well test")) ask(*source, qDone);
    return qDone;
  });
}

void qvEclipseReader::getRFTTestInfo(std::int32_t iTest, bool& qRFT, bool& qPLT, bool& qSEG, bool& qOK) {
  askTests(tests_, "getRFTTestInfo", qOK,
           [&](auto& file, bool& qDone) { file.getRFTTestInfo(iTest, qRFT, qPLT, qSEG, qDone); });
}

void qvEclipseReader::GetRFTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                 std::int32_t& iRFTtest, std::string& zDate, std::string& zWell,
                                 std::string& zGrid, std::string& zTestOrigin, bool& qOK) {
  askTests(tests_, "GetRFTtest", qOK, [&](auto& file, bool& qDone) {
    file.GetRFTtest(iTest, xyData, bHeaders, iRFTtest, zDate, zWell, zGrid, zTestOrigin, qDone);
  });
}

void qvEclipseReader::GetPLTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                 std::int32_t& iPLTtest, std::string& zDate, std::string& zWell,
                                 std::string& zGrid, bool& qOK) {
  askTests(tests_, "GetPLTtest", qOK, [&](auto& file, bool& qDone) {
    file.GetPLTtest(iTest, xyData, bHeaders, iPLTtest, zDate, zWell, zGrid, qDone);
  });
}

void qvEclipseReader::GetPLTBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                       std::int32_t& iPLTtest, std::string& zDate, std::string& zWell,
                                       std::string& zGrid, bool& qOK, std::int32_t iBranch) {
  askTests(tests_, "GetPLTBRANCHtest", qOK, [&](auto& file, bool& qDone) {
    file.GetPLTBRANCHtest(iTest, xyData, bHeaders, iPLTtest, zDate, zWell, zGrid, qDone, iBranch);
  });
}

void qvEclipseReader::GetBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                    std::int32_t& iSEGtest, std::string& zDate, std::string& zWell,
                                    std::string& zGrid, bool& qOK, std::int32_t iBranch) {
  askTests(tests_, "GetBRANCHtest", qOK, [&](auto& file, bool& qDone) {
    file.GetBRANCHtest(iTest, xyData, bHeaders, iSEGtest, zDate, zWell, zGrid, qDone, iBranch);
  });
}

void qvEclipseReader::GetICDBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                       std::int32_t& iSEGtest, std::string& zDate, std::string& zWell,
                                       std::string& zGrid, bool& qOK, std::int32_t iBranch) {
  askTests(tests_, "GetICDBRANCHtest", qOK, [&](auto& file, bool& qDone) {
    file.GetICDBRANCHtest(iTest, xyData, bHeaders, iSEGtest, zDate, zWell, zGrid, qDone, iBranch);
  });
}

void qvEclipseReader::getRFTtestGrid(std::int32_t iTest, std::vector<char>& bGrids, bool& qOK) {
  askTests(tests_, "getRFTtestGrid", qOK,
           [&](auto& file, bool& qDone) { file.getRFTtestGrid(iTest, bGrids, qDone); });
}

std::int32_t qvEclipseReader::NumberPLTBranches(std::int32_t iTest) const {
  return tests_ ? tests_->NumberPLTBranches(iTest) : 0;
}

std::int32_t qvEclipseReader::NumberBranches(std::int32_t iTest) const {
  return tests_ ? tests_->NumberBranches(iTest) : 0;
}

std::int32_t qvEclipseReader::NumberICDBranches(std::int32_t iTest) const {
  return tests_ ? tests_->NumberICDBranches(iTest) : 0;
}

void qvEclipseReader::getUserRFTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                     std::int32_t& iRFTtest, std::string& zDate, std::string& zWell,
                                     std::string& zGrid, std::string& zTestOrigin, bool& qOK) {
  askTests(userTests_, "getUserRFTtest", qOK, [&](auto& file, bool& qDone) {
    file.GetRFTtest(iTest, xyData, bHeaders, iRFTtest, zDate, zWell, zGrid, zTestOrigin, qDone);
  });
}

void qvEclipseReader::getUserPLTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                     std::int32_t& iPLTtest, std::string& zDate, std::string& zWell,
                                     std::string& zGrid, bool& qOK) {
  askTests(userTests_, "getUserPLTtest", qOK, [&](auto& file, bool& qDone) {
    file.GetPLTtest(iTest, xyData, bHeaders, iPLTtest, zDate, zWell, zGrid, qDone);
  });
}

std::int32_t qvEclipseReader::NumberRFTTests() const { return tests_ ? tests_->NumTests() : 0; }

std::int32_t qvEclipseReader::NumberUserTests() const { return userTests_ ? userTests_->NumTests() : 0; }

std::vector<WellTest> qvEclipseReader::ListRFTTests(bool& qOK) const {
  std::vector<WellTest> tests;
  perform("ListRFTTests", qOK, [&] {
    tests = readWellTests(fileOfRun(FileName, FileKind::Rft), *session_);
    return !tests.empty();
  });
  return tests;
}

std::vector<UserTest> qvEclipseReader::ListUserTests() const {
  return userTests_ ? userTests_->tests(userKind_) : std::vector<UserTest>{};
}

}  // namespace lumbarn
