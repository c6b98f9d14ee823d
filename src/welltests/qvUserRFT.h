#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "../shapes/ByteTable.h"
#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "UserTest.h"
#include "qvUserRFTtest.h"

namespace lumbarn {

/// A text file of measured well tests, RFT or PLT, as a user writes it: tests in the order of the file,
/// numbered well by well. Reads the file whole; every answer comes from one of the tests. Tests count from 1
/// (`iTest`); a number out of range is fault 9.
///
/// After qOK False, outputs are what they were before.
class LUMBARN_API qvUserRFT {
 public:
  explicit qvUserRFT(Session& session = Session::process()) : session_(&session) {}

  std::string FileName;

  /// True, and the name is taken, for a text file that can be read as one of the kind: one without command is
  /// too, as it is a single test. False, with a Diagnosis, for a file that is not there, is empty, consists
  /// of records or of bytes that are no text, or is one of the other kind.
  bool CheckRFTFile(const std::string& zFile) { return checkFile(UserTestKind::Rft, zFile); }
  bool CheckPLTFile(const std::string& zFile) { return checkFile(UserTestKind::Plt, zFile); }

  /// Reads the file into tests behind those that are held and numbers them. A row with too few numbers ends
  /// its test with a report; the next test is read, qOK is True and qDamaged is set. qOK is False when the
  /// file cannot be opened or read on, or when the load was cancelled; then the tests read so far stay,
  /// without numbers.
  void getRFTData(bool& qOK) { qOK = readFile(UserTestKind::Rft); }
  void getPLTData(bool& qOK) { qOK = readFile(UserTestKind::Plt); }
  bool qDamaged = false;  ///< a test of the last of these two ended at a row with too few numbers

  std::int32_t NumTests() const { return static_cast<std::int32_t>(tests_.size()); }
  /// Appends a test, which is shared from then on.
  void addRFTtest(std::shared_ptr<qvUserRFTtest> xRFTtest, bool& qOK);
  /// Numbers the tests of each well, from 1, in file order. Names of wells are compared as they are. qOK
  /// False when there are no tests.
  void setRFTtestNumbers(bool& qOK);

  /// The table of one test of a file that `getRFTData` read, and what the test is called. zDate has the time
  /// of day behind it, "15 JUL 2003 06:30", unless TIME is a whole number of days. A test of a file of the
  /// other kind has an empty table.
  void GetRFTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iRFTtest,
                  std::string& zDate, std::string& zWell, std::string& zGrid, std::string& zOrigin,
                  bool& qOK);
  /// The same for a file that `getPLTData` read.
  void GetPLTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iPLTtest,
                  std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK);

  // For callers within the library.
  /// `getRFTData` or `getPLTData`.
  bool readFile(UserTestKind kind);
  /// One test. Throws Fault 9 for a number that is not there.
  const qvUserRFTtest& test(std::int32_t iTest) const;
  /// All tests of a file of the kind, as data.
  std::vector<UserTest> tests(UserTestKind kind) const;

 private:
  struct Outputs;
  bool checkFile(UserTestKind kind, const std::string& zFile);
  bool readTests(UserTestKind kind, LineReader& reader);
  bool numberTests();
  bool fetch(UserTestKind kind, std::int32_t iTest, Outputs out) const;

  Session* session_;
  std::vector<std::shared_ptr<qvUserRFTtest>> tests_;
};

}  // namespace lumbarn
