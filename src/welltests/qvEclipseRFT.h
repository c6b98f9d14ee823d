#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "../record/FormFlags.h"
#include "../record/cFILETYPE.h"
#include "../shapes/ByteTable.h"
#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "QVEclipseRFTtest.h"

namespace lumbarn {

/// A simulator's RFT file: well tests in the order in which the simulator wrote them, numbered well by well.
/// Reads the file whole; every answer comes from one of the tests. Tests count from 1 (`iTest`); a number out
/// of range is fault 9 unless told otherwise. All shapes are those of `QVEclipseRFTtest`.
///
/// After qOK False, outputs are what they were before.
class LUMBARN_API qvEclipseRFT : public FormFlags {
 public:
  explicit qvEclipseRFT(Session& session = Session::process())
      : FormFlags{.byteSwap = false}, session_(&session) {}

  // The file and its form; `CheckRFTFile` sets them.
  std::string FileName;
  bool UseBufferedInput = usesBufferedInput(18);

  // Kept for the owner and handed to no test: every test works with its own defaults, all True. Deliberate;
  // hosts rely on getting the same tables whatever they set here.
  bool ProcessPLT = true;
  bool SortedPLT = true;
  bool ScaledPLT = true;

  /// True when the file is a record file that begins with records of a well test. Sets the name and the form;
  /// on False the object is as it was.
  bool CheckRFTFile(std::string_view zFile);

  /// Reads the file into tests behind those that are held and numbers them. Faults in a test end that test
  /// only. Damage to the file's frame ends the reading: the tests before it stay, the one that it stands in
  /// is kept with the arrays read so far, qDamaged is set and a Diagnosis tells the place. qOK is False when
  /// the file cannot be opened, when not one record could be read, or when the load was canceled; then the
  /// tests read so far stay, those without numbers.
  void getRFTData(bool& qOK) { qOK = readFile(); }
  bool qDamaged = false;  ///< the last `getRFTData` met damage

  std::int32_t NumTests() const { return static_cast<std::int32_t>(tests_.size()); }
  /// Appends a test, which is shared from then on.
  void addRFTtest(std::shared_ptr<QVEclipseRFTtest> xRFTtest, bool& qOK);
  /// Numbers the tests of each well, from 1, in file order. Names of wells are compared as they are. qOK
  /// False when there are no tests.
  void setRFTtestNumbers(bool& qOK);

  /// Clears `FileName` and answers an empty text. Deliberate: this is how the property has always worked, and
  /// nothing in the system reads it.
  std::string Origin();

  /// Which kinds of data a test holds; all three can be True.
  void getRFTTestInfo(std::int32_t iTest, bool& qRFT, bool& qPLT, bool& qSEG, bool& qOK);
  /// The RFT table. zDate has the time of day behind it, "15 JUL 2003 06:30", unless that is midnight;
  /// zOrigin is always empty.
  void GetRFTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iRFTtest,
                  std::string& zDate, std::string& zWell, std::string& zGrid, std::string& zOrigin,
                  bool& qOK);
  /// The whole PLT table; zDate as above.
  void GetPLTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iPLTtest,
                  std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK);
  /// The PLT rows of one branch; zDate as above. Branch numbers stand in the headers, as below.
  void GetPLTBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iPLTtest,
                        std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK,
                        std::int32_t iBranch = 0);
  /// The segment table of one branch; zDate without a time of day.
  void GetBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iSEGtest,
                     std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK,
                     std::int32_t iBranch = 0);
  /// The table of one device branch; zDate without a time of day.
  void GetICDBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iSEGtest,
                        std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK,
                        std::int32_t iBranch = 0);
  /// One segment. Both always fail, see `QVEclipseRFTtest::getSegmenttestData`, and leave all outputs as they
  /// are; the second asks for segment 1.
  void GetSEGMENTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iSEGtest,
                      std::int32_t& iBranch, std::string& zDate, std::string& zWell, std::string& zGrid,
                      bool& qOK, std::int32_t iSegment = 0);
  void getSEGtest(std::int32_t iTest, XYData& xyData, ByteTable& zHeaders, std::int32_t& iSEGtest,
                  std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK);
  /// The grid of every connection, see `QVEclipseRFTtest::getRFTtestGrids`.
  void getRFTtestGrid(std::int32_t iTest, std::vector<char>& bGrids, bool& qOK);

  // Branches of a test, 0 for a test that is not there.
  std::int32_t NumberBranches(std::int32_t iTest) const;
  std::int32_t NumberPLTBranches(std::int32_t iTest) const;
  std::int32_t NumberICDBranches(std::int32_t iTest) const;

  // For callers within the library.
  /// `getRFTData`.
  bool readFile();
  /// One test. Throws Fault 9 for a number that is not there.
  const QVEclipseRFTtest& test(std::int32_t iTest) const;

 private:
  struct Outputs;
  cFILETYPE setSUMMARYFileTypeProps() const;
  bool validtestnumber(std::int32_t iTest) const { return iTest >= 1 && iTest <= NumTests(); }
  bool readTests(RecordWalk& reader);
  bool numberTests();
  void fetch(TestPart part, const char* routine, std::int32_t iTest, std::int32_t iBranch, Outputs out,
             bool& qOK) const;

  Session* session_;
  std::vector<std::shared_ptr<QVEclipseRFTtest>> tests_;
};

}  // namespace lumbarn
