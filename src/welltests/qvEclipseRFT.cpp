#include "qvEclipseRFT.h"

#include <unordered_map>
#include <utility>

#include "../files/Recogniser.h"
#include "../shapes/HeaderLayout.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "TestMemory.h"
#include "TimeOfDay.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseRFT";

}  // namespace

bool qvEclipseRFT::CheckRFTFile(std::string_view zFile) {
  return attempt(*session_, className, "CheckRFTFile", [&] {
    const Recognised found = recogniseFile(std::string(zFile));
    if (found.kind != FileKind::Rft || !found.form) return false;
    FileName = zFile;
    FORTRAN = true;
    setForm(*found.form);
    return true;
  });
}

cFILETYPE qvEclipseRFT::setSUMMARYFileTypeProps() const {
  cFILETYPE xFile(*session_);
  xFile.setFlags(*this);
  xFile.IOMethod = session_->IOMethod;
  xFile.UseBufferedInput = UseBufferedInput;
  return xFile;
}

bool qvEclipseRFT::readFile() {
  return attempt(*session_, className, "getRFTData", [&] {
    qDamaged = false;
    std::string why;
    const auto reader = openWalk(FileName, setSUMMARYFileTypeProps().form(), why);
    if (!reader) {
      session_->diagnose(Diagnosis{.message = Message::FileOpen, .path = FileName, .problem = why});
      return false;
    }
    if (!readTests(*reader)) return false;
    numberTests();
    return !(qDamaged && reader->recordsRead == 0);
  });
}

/// False when the load was canceled.
bool qvEclipseRFT::readTests(RecordWalk& reader) {
  const FromTestMemory<QVEclipseRFTtest> memory(std::make_shared<TestMemory>());
  bool more = true;
  while (more) {
    const auto test = std::allocate_shared<QVEclipseRFTtest>(memory, *session_, memory.memory()->resource());
    test->read(reader);  // True for the last test only
    tests_.push_back(test);
    if (session_->yield()) return false;
    // A test that a fault ended leaves its other records behind; the next test begins with its own TIME.
    more = reader.skipToTest(*session_);
    if (session_->Container && UseBufferedInput) {
      session_->Container->fraction(static_cast<double>(reader.cursor().nextPosition()) /
                                    static_cast<double>(reader.cursor().fileSize()));
    }
  }
  qDamaged = reader.damaged();
  return true;
}

void qvEclipseRFT::addRFTtest(std::shared_ptr<QVEclipseRFTtest> xRFTtest, bool& qOK) {
  guarded(*session_, qOK, className, "addRFTtest", [&] {
    if (!xRFTtest) throw Fault(FaultNumber::InvalidCall);
    tests_.push_back(std::move(xRFTtest));
  });
}

void qvEclipseRFT::setRFTtestNumbers(bool& qOK) {
  guarded(*session_, qOK, className, "setRFTtestNumbers", [&] { return numberTests(); });
}

bool qvEclipseRFT::numberTests() {
  std::unordered_map<std::string_view, std::int32_t> numberOf;
  for (const auto& test : tests_) test->setTestNumber(++numberOf[test->well()]);
  return !tests_.empty();
}

std::string qvEclipseRFT::Origin() {
  FileName.clear();
  return {};
}

const QVEclipseRFTtest& qvEclipseRFT::test(std::int32_t iTest) const {
  if (!validtestnumber(iTest)) throw Fault(FaultNumber::Subscript);
  return *tests_[static_cast<std::size_t>(iTest - 1)];
}

void qvEclipseRFT::getRFTTestInfo(std::int32_t iTest, bool& qRFT, bool& qPLT, bool& qSEG, bool& qOK) {
  guarded(*session_, qOK, className, "getRFTTestInfo", [&] {
    const QVEclipseRFTtest& xTest = test(iTest);
    qRFT = xTest.qRFT();
    qPLT = xTest.qPLT();
    qSEG = xTest.qSEG();
  });
}

struct qvEclipseRFT::Outputs {
  XYData& xyData;
  ByteTable& bHeaders;
  std::int32_t& iNumber;
  std::string& zDate;
  std::string& zWell;
  std::string& zGrid;
};

void qvEclipseRFT::fetch(TestPart part, const char* routine, std::int32_t iTest, std::int32_t iBranch,
                         Outputs out, bool& qOK) const {
  guarded(*session_, qOK, className, routine, [&] {
    const QVEclipseRFTtest& xTest = test(iTest);
    auto result = xTest.table(part, iBranch);
    if (!result) return false;
    out.xyData = std::move(result->values);
    out.bHeaders = std::move(result->headers);
    out.zDate = xTest.dateText();
    // TIME counts from the start of the run, so this is right for runs that begin at midnight.
    if (part != TestPart::Branch && part != TestPart::Devices)
      out.zDate = withTimeOfDay(std::move(out.zDate), xTest.days());
    out.zWell = xTest.well();
    out.zGrid = xTest.grid();
    out.iNumber = xTest.testNumber();
    return true;
  });
}

void qvEclipseRFT::GetRFTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iRFTtest,
                              std::string& zDate, std::string& zWell, std::string& zGrid,
                              std::string& zOrigin, bool& qOK) {
  fetch(TestPart::Rft, "GetRFTtest", iTest, 0, {xyData, bHeaders, iRFTtest, zDate, zWell, zGrid}, qOK);
  if (qOK) zOrigin = test(iTest).origin();
}

void qvEclipseRFT::GetPLTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iPLTtest,
                              std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK) {
  fetch(TestPart::Plt, "GetPLTtest", iTest, 0, {xyData, bHeaders, iPLTtest, zDate, zWell, zGrid}, qOK);
}

void qvEclipseRFT::GetPLTBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                    std::int32_t& iPLTtest, std::string& zDate, std::string& zWell,
                                    std::string& zGrid, bool& qOK, std::int32_t iBranch) {
  fetch(TestPart::PltBranch, "GetPLTBRANCHtest", iTest, iBranch,
        {xyData, bHeaders, iPLTtest, zDate, zWell, zGrid}, qOK);
}

void qvEclipseRFT::GetBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                 std::int32_t& iSEGtest, std::string& zDate, std::string& zWell,
                                 std::string& zGrid, bool& qOK, std::int32_t iBranch) {
  fetch(TestPart::Branch, "GetBRANCHtest", iTest, iBranch, {xyData, bHeaders, iSEGtest, zDate, zWell, zGrid},
        qOK);
}

void qvEclipseRFT::GetICDBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                    std::int32_t& iSEGtest, std::string& zDate, std::string& zWell,
                                    std::string& zGrid, bool& qOK, std::int32_t iBranch) {
  fetch(TestPart::Devices, "GetICDBRANCHtest", iTest, iBranch,
        {xyData, bHeaders, iSEGtest, zDate, zWell, zGrid}, qOK);
}

void qvEclipseRFT::GetSEGMENTtest(std::int32_t iTest, XYData&, ByteTable&, std::int32_t&, std::int32_t&,
                                  std::string&, std::string&, std::string&, bool& qOK,
                                  std::int32_t iSegment) {
  guarded(*session_, qOK, className, "GetSEGMENTtest",
          [&] { return test(iTest).segmentValues(iSegment).has_value(); });
}

void qvEclipseRFT::getSEGtest(std::int32_t iTest, XYData&, ByteTable&, std::int32_t&, std::string&,
                              std::string&, std::string&, bool& qOK) {
  guarded(*session_, qOK, className, "getSEGtest", [&] { return test(iTest).segmentValues(1).has_value(); });
}

void qvEclipseRFT::getRFTtestGrid(std::int32_t iTest, std::vector<char>& bGrids, bool& qOK) {
  guarded(*session_, qOK, className, "getRFTtestGrid", [&] { return test(iTest).fillGrids(bGrids); });
}

std::int32_t qvEclipseRFT::NumberBranches(std::int32_t iTest) const {
  return validtestnumber(iTest) ? test(iTest).nBranches() : 0;
}

std::int32_t qvEclipseRFT::NumberPLTBranches(std::int32_t iTest) const {
  return validtestnumber(iTest) ? test(iTest).nPLTBranches() : 0;
}

std::int32_t qvEclipseRFT::NumberICDBranches(std::int32_t iTest) const {
  return validtestnumber(iTest) ? test(iTest).nICDBranches() : 0;
}

}  // namespace lumbarn
