#include "ReaderLoad.h"

namespace lumbarn {

void qvEclipseReader::ReadRFTFile(bool& qOK) {
  load(parts_->tests, "ReadRFTFile", qOK, [&] { parts_->tests.load(); });
}

void qvEclipseReader::ReadUserRFTFile(bool& qOK) {
  load(parts_->userTests, "ReadUserRFTFile", qOK, [&] { parts_->userTests.load(UserTestKind::Rft); });
}

void qvEclipseReader::ReadUserPLTFile(bool& qOK) {
  load(parts_->userTests, "ReadUserPLTFile", qOK, [&] { parts_->userTests.load(UserTestKind::Plt); });
}

void qvEclipseReader::getRFTTestInfo(std::int32_t iTest, bool& qRFT, bool& qPLT, bool& qSEG, bool& qOK) {
  fetch(parts_->tests, "getRFTTestInfo", qOK,
        [&](auto& part, bool& qDone) { part.file().getRFTTestInfo(iTest, qRFT, qPLT, qSEG, qDone); });
}

void qvEclipseReader::GetRFTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                 std::int32_t& iRFTtest, std::string& zDate, std::string& zWell,
                                 std::string& zGrid, std::string& zTestOrigin, bool& qOK) {
  fetch(parts_->tests, "GetRFTtest", qOK, [&](auto& part, bool& qDone) {
    part.file().GetRFTtest(iTest, xyData, bHeaders, iRFTtest, zDate, zWell, zGrid, zTestOrigin, qDone);
  });
}

void qvEclipseReader::GetPLTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                 std::int32_t& iPLTtest, std::string& zDate, std::string& zWell,
                                 std::string& zGrid, bool& qOK) {
  fetch(parts_->tests, "GetPLTtest", qOK, [&](auto& part, bool& qDone) {
    part.file().GetPLTtest(iTest, xyData, bHeaders, iPLTtest, zDate, zWell, zGrid, qDone);
  });
}

void qvEclipseReader::GetPLTBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                       std::int32_t& iPLTtest, std::string& zDate, std::string& zWell,
                                       std::string& zGrid, bool& qOK, std::int32_t iBranch) {
  fetch(parts_->tests, "GetPLTBRANCHtest", qOK, [&](auto& part, bool& qDone) {
    part.file().GetPLTBRANCHtest(iTest, xyData, bHeaders, iPLTtest, zDate, zWell, zGrid, qDone, iBranch);
  });
}

void qvEclipseReader::GetBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                    std::int32_t& iSEGtest, std::string& zDate, std::string& zWell,
                                    std::string& zGrid, bool& qOK, std::int32_t iBranch) {
  fetch(parts_->tests, "GetBRANCHtest", qOK, [&](auto& part, bool& qDone) {
    part.file().GetBRANCHtest(iTest, xyData, bHeaders, iSEGtest, zDate, zWell, zGrid, qDone, iBranch);
  });
}

void qvEclipseReader::GetICDBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                       std::int32_t& iSEGtest, std::string& zDate, std::string& zWell,
                                       std::string& zGrid, bool& qOK, std::int32_t iBranch) {
  fetch(parts_->tests, "GetICDBRANCHtest", qOK, [&](auto& part, bool& qDone) {
    part.file().GetICDBRANCHtest(iTest, xyData, bHeaders, iSEGtest, zDate, zWell, zGrid, qDone, iBranch);
  });
}

void qvEclipseReader::getRFTtestGrid(std::int32_t iTest, std::vector<char>& bGrids, bool& qOK) {
  fetch(parts_->tests, "getRFTtestGrid", qOK,
        [&](auto& part, bool& qDone) { part.file().getRFTtestGrid(iTest, bGrids, qDone); });
}

std::int32_t qvEclipseReader::NumberPLTBranches(std::int32_t iTest) const {
  return parts_->tests.held() ? parts_->tests.file().NumberPLTBranches(iTest) : 0;
}

std::int32_t qvEclipseReader::NumberBranches(std::int32_t iTest) const {
  return parts_->tests.held() ? parts_->tests.file().NumberBranches(iTest) : 0;
}

std::int32_t qvEclipseReader::NumberICDBranches(std::int32_t iTest) const {
  return parts_->tests.held() ? parts_->tests.file().NumberICDBranches(iTest) : 0;
}

void qvEclipseReader::getUserRFTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                     std::int32_t& iRFTtest, std::string& zDate, std::string& zWell,
                                     std::string& zGrid, std::string& zTestOrigin, bool& qOK) {
  fetch(parts_->userTests, "getUserRFTtest", qOK, [&](auto& part, bool& qDone) {
    part.file().GetRFTtest(iTest, xyData, bHeaders, iRFTtest, zDate, zWell, zGrid, zTestOrigin, qDone);
  });
}

void qvEclipseReader::getUserPLTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                     std::int32_t& iPLTtest, std::string& zDate, std::string& zWell,
                                     std::string& zGrid, bool& qOK) {
  fetch(parts_->userTests, "getUserPLTtest", qOK, [&](auto& part, bool& qDone) {
    part.file().GetPLTtest(iTest, xyData, bHeaders, iPLTtest, zDate, zWell, zGrid, qDone);
  });
}

std::int32_t qvEclipseReader::NumberRFTTests() const { return parts_->tests.nTests(); }

std::int32_t qvEclipseReader::NumberUserTests() const { return parts_->userTests.nTests(); }

std::vector<WellTest> qvEclipseReader::ListRFTTests(bool& qOK) const {
  std::vector<WellTest> tests;
  perform("ListRFTTests", qOK, [&] { tests = parts_->tests.list(); });
  return tests;
}

std::vector<UserTest> qvEclipseReader::ListUserTests() const { return parts_->userTests.tests(); }

}  // namespace lumbarn
