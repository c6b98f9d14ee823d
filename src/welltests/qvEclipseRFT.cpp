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
  bool qOK = false;
  guarded(*session_, qOK, className, "CheckRFTFile", [&] {
    const Recognised found = recogniseFile(std::string(zFile));
    if (found.kind != FileKind::Rft || !found.form) return false;
    FileName = zFile;
    FORTRAN = true;
    setForm(*found.form);
    return true;
  });
  return qOK;
}

cFILETYPE qvEclipseRFT::setSUMMARYFileTypeProps() const {
  cFILETYPE xFile(*session_);
  xFile.setFlags(*this);
  xFile.IOMethod = session_->IOMethod;
  xFile.UseBufferedInput = UseBufferedInput;
  return xFile;
}

void qvEclipseRFT::getRFTData(bool& qOK) {
  guarded(*session_, qOK, className, "getRFTData", [&] {
    qDamaged = false;
    std::string why;
    const auto reader = openWalk(FileName, setSUMMARYFileTypeProps().form(), why);
    if (!reader) {
      session_->diagnose(Diagnosis{.message = Message::FileOpen, .path = FileName, .problem = why});
      return false;
    }
    if (!readTests(*reader)) return false;
    bool qNumbered = false;
    setRFTtestNumbers(qNumbered);
    return !(qDamaged && reader->recordsRead == 0);
  });
}

/// False when the load was cancelled.
bool qvEclipseRFT::readTests(RecordWalk& reader) {
  const FromTestMemory<QVEclipseRFTtest> memory(std::make_shared<TestMemory>());
  bool more = true;
  while (more) {
    const auto test = std::allocate_shared<QVEclipseRFTtest>(memory, *session_, memory.memory()->resource());
    bool qRead = false;  // False for every test but the last, so it tells nothing
    test->getEclipseRFTtest(reader, qRead);
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
  guarded(*session_, qOK, className, "setRFTtestNumbers", [&] {
    std::unordered_map<std::string_view, std::int32_t> numberOf;
    for (const auto& test : tests_) test->setTestNumber(++numberOf[test->well()]);
    return !tests_.empty();
  });
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

/// Which headers go with which data, and what else a host is told.
struct qvEclipseRFT::Answer {
  qvEclipseRFT& file;
  const char* routine;
  std::int32_t iTest;
  XYData& xyData;
  ByteTable& bHeaders;
  std::int32_t& iNumber;
  std::string& zDate;
  std::string& zWell;
  std::string& zGrid;
  bool qTimeOfDay;

  /// `data` and `headers` are asked of the test; `branch` is the number that goes into the headers, 0 for
  /// none.
  template <class Data, class Headers>
  void give(bool& qOK, std::int32_t iBranch, Data data, Headers headers) {
    guarded(*file.session_, qOK, className, routine, [&] {
      const QVEclipseRFTtest& xTest = file.test(iTest);
      bool qDone = false;
      XYData values;
      ByteTable records;
      data(xTest, values, qDone);
      if (qDone) headers(xTest, records, qDone);
      if (qDone) file.SetBranch(iBranch, records, qDone);
      if (!qDone) return false;
      xyData = std::move(values);
      bHeaders = std::move(records);
      zDate = xTest.dateText();
      // TIME counts from the start of the run, so this is right for runs that begin at midnight.
      if (qTimeOfDay) zDate = withTimeOfDay(std::move(zDate), xTest.days());
      zWell = xTest.well();
      zGrid = xTest.grid();
      iNumber = xTest.testNumber();
      return true;
    });
  }
};

/// Only the bytes that the number has are written, so that what stands behind them stays. Deliberate.
void qvEclipseRFT::SetBranch(std::int32_t iBranch, ByteTable& bHeaders, bool& qOK) const {
  guarded(*session_, qOK, className, "SetBranch", [&] {
    if (iBranch < 1) return;
    const std::string number = std::to_string(iBranch);
    for (std::size_t i = 1; i <= bHeaders.entries(); ++i) setAttribute(attributeLGRName, bHeaders, i, number);
  });
}

void qvEclipseRFT::GetRFTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iRFTtest,
                              std::string& zDate, std::string& zWell, std::string& zGrid,
                              std::string& zOrigin, bool& qOK) {
  Answer{*this, "GetRFTtest", iTest, xyData, bHeaders, iRFTtest, zDate, zWell, zGrid, true}.give(
      qOK, 0, [](const auto& test, XYData& values, bool& qDone) { test.getRFTtestData(values, qDone); },
      [](const auto& test, ByteTable& records, bool& qDone) { test.getRFTtestHeaders(records, qDone); });
  if (qOK) zOrigin = test(iTest).origin();
}

void qvEclipseRFT::GetPLTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iPLTtest,
                              std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK) {
  Answer{*this, "GetPLTtest", iTest, xyData, bHeaders, iPLTtest, zDate, zWell, zGrid, true}.give(
      qOK, 0, [](const auto& test, XYData& values, bool& qDone) { test.getPLTtestData(values, qDone); },
      [](const auto& test, ByteTable& records, bool& qDone) {
        test.getPLTtestHeaders(records, qDone, false);
      });
}

void qvEclipseRFT::GetPLTBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                    std::int32_t& iPLTtest, std::string& zDate, std::string& zWell,
                                    std::string& zGrid, bool& qOK, std::int32_t iBranch) {
  Answer{*this, "GetPLTBRANCHtest", iTest, xyData, bHeaders, iPLTtest, zDate, zWell, zGrid, true}.give(
      qOK, iBranch,
      [&](const auto& test, XYData& values, bool& qDone) {
        test.getPLTBranchtestData(values, qDone, iBranch);
      },
      [](const auto& test, ByteTable& records, bool& qDone) {
        test.getPLTtestHeaders(records, qDone, true);
      });
}

void qvEclipseRFT::GetBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                 std::int32_t& iSEGtest, std::string& zDate, std::string& zWell,
                                 std::string& zGrid, bool& qOK, std::int32_t iBranch) {
  Answer{*this, "GetBRANCHtest", iTest, xyData, bHeaders, iSEGtest, zDate, zWell, zGrid, false}.give(
      qOK, iBranch,
      [&](const auto& test, XYData& values, bool& qDone) { test.getBRANCHtestData(values, qDone, iBranch); },
      [](const auto& test, ByteTable& records, bool& qDone) {
        test.getSEGtestHeaders(records, qDone, 1, "");
      });
}

void qvEclipseRFT::GetICDBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                    std::int32_t& iSEGtest, std::string& zDate, std::string& zWell,
                                    std::string& zGrid, bool& qOK, std::int32_t iBranch) {
  Answer{*this, "GetICDBRANCHtest", iTest, xyData, bHeaders, iSEGtest, zDate, zWell, zGrid, false}.give(
      qOK, iBranch,
      [&](const auto& test, XYData& values, bool& qDone) {
        test.getICDBRANCHtestData(values, qDone, iBranch);
      },
      [](const auto& test, ByteTable& records, bool& qDone) {
        test.getSEGtestHeaders(records, qDone, 1, "ICDBRAN");
      });
}

void qvEclipseRFT::GetSEGMENTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders,
                                  std::int32_t& iSEGtest, std::int32_t& iBranch, std::string& zDate,
                                  std::string& zWell, std::string& zGrid, bool& qOK, std::int32_t iSegment) {
  const std::int32_t number = validtestnumber(iTest) ? test(iTest).BranchNumber(iSegment) : -1;
  Answer{*this, "GetSEGMENTtest", iTest, xyData, bHeaders, iSEGtest, zDate, zWell, zGrid, false}.give(
      qOK, number,
      [&](const auto& test, XYData& values, bool& qDone) {
        test.getSegmenttestData(values, qDone, iSegment);
      },
      [](const auto& test, ByteTable& records, bool& qDone) {
        test.getSEGtestHeaders(records, qDone, 1, "");
      });
  if (qOK) iBranch = number;
}

void qvEclipseRFT::getSEGtest(std::int32_t iTest, XYData& xyData, ByteTable&, std::int32_t& iSEGtest,
                              std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK) {
  ByteTable scratch;  // the host's headers stay as they are. Deliberate.
  Answer{*this, "getSEGtest", iTest, xyData, scratch, iSEGtest, zDate, zWell, zGrid, false}.give(
      qOK, 0,
      [](const auto& test, XYData& values, bool& qDone) { test.getSegmenttestData(values, qDone, 1); },
      [](const auto& test, ByteTable& records, bool& qDone) {
        test.getSEGtestHeaders(records, qDone, 1, "");
      });
}

void qvEclipseRFT::getRFTtestGrid(std::int32_t iTest, std::vector<char>& bGrids, bool& qOK) {
  guarded(*session_, qOK, className, "getRFTtestGrid", [&] {
    bool qDone = false;
    test(iTest).getRFTtestGrids(bGrids, qDone);
    return qDone;
  });
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
