#include <set>

#include <gtest/gtest.h>

#include "support/WellTestLoad.h"
#include "welltests/WellTest.h"

namespace lumbarn {
namespace {

using test::WellTestBuilder;
using test::WellTestLoad;
using Singles = std::vector<float>;
using Integers = std::vector<std::int32_t>;

/// A short test that is to be kept, and one with all that can be worked out. Every byte of the second costs a
/// load.
WellTestBuilder smallFile() {
  const std::vector<std::string> welletc{"DAYS", "A",        "",      "METRES", "BARSA",
                                         "R",    "MULTISEG", "SM3/D", "SM3/D"};
  const WellTestBuilder::Test kept{.arrays = {{"DEPTH", Singles{20, 10}}, {"SWAT", Singles{0.25F, 0}}},
                                   .welletc = welletc};
  const WellTestBuilder::Test all{.arrays = {{"CONIPOS", Integers{1, 2}},
                                             {"DEPTH", Singles{20, 10}},
                                             {"SWAT", Singles{0.25F, 0}},
                                             {"CONLENST", Singles{4, 1}},
                                             {"CONLENEN", Singles{8, 3}},
                                             {"CONORAT", Singles{1, 2}},
                                             {"CONWRAT", Singles{1, 2}},
                                             {"CONOTUB", Singles{1, 2}},
                                             {"CONWTUB", Singles{1, 2}},
                                             {"CONBRNO", Integers{1, 2}},
                                             {"CONSEGNO", Integers{2, 1}},
                                             {"SEGNXT", Integers{0, 1, 1}},
                                             {"SEGBRNO", Integers{1, 1, 2}},
                                             {"SEGLENST", Singles{0, 1, 2}},
                                             {"SEGLENEN", Singles{1, 2, 2.1F}},
                                             {"BRNST", Integers{1, 3}},
                                             {"BRNEN", Integers{2, 3}}},
                                  .welletc = welletc};
  return {{kept, all}};
}

/// Where the second test begins.
std::size_t sizeOfKept(const Form& form) {
  return WellTestBuilder{{smallFile().tests[0]}}.bytes(form).size();
}

/// Asks for all that a host can ask for. What comes is of no interest; that all comes back is.
void askForAll(WellTestLoad& run) {
  for (std::int32_t i = 1; i <= run.file.NumTests(); ++i) {
    run.rft(i);
    run.plt(i);
    for (std::int32_t b = 1; b <= 3; ++b) {
      run.pltBranch(i, b);
      run.branch(i, b);
      run.icdBranch(i, b);
    }
    std::vector<char> bGrids;
    bool qOK = false;
    run.file.getRFTtestGrid(i, bGrids, qOK);
  }
}

class DamagedTests : public test::OfForm {
 protected:
  const std::vector<std::byte> whole_ = smallFile().bytes(form_);
  const std::size_t kept_ = sizeOfKept(form_);
  WellTestLoad run_;  // one for all loads, with its folder

  /// Loads bytes, in the form that the file was written in, whatever they look like now.
  void load(std::span<const std::byte> bytes) {
    run_.file = qvEclipseRFT(run_.session);
    run_.session.clearDiagnoses();
    run_.faults.clear();
    run_.file.FileName = run_.folder.file("DAMAGED.RFT");
    run_.file.Formatted = form_.formatted();
    run_.file.UNIX = form_.framing != Framing::OneByteMarks;
    run_.file.byteSwap = form_.byteSwap;
    test::writeFile(run_.file.FileName, bytes);
    run_.file.getRFTData(run_.loaded);
    EXPECT_TRUE(!run_.file.qDamaged || run_.lastDiagnosis().offset);
    askForAll(run_);
    for (const WellTest& one : readWellTests(run_.file.FileName, run_.session)) topologyOf(one);
  }
};
INSTANTIATE_TEST_SUITE_P(Forms, DamagedTests, ::testing::ValuesIn(test::everyForm), test::formName);

TEST_P(DamagedTests, CutOffAtAnyByteKeepTheTestsBefore) {
  std::set<std::uint64_t> ends;  // of records: cut there, the file is whole as far as anyone can tell
  for (RecordCursor cursor = test::cursorOver(whole_, form_); cursor.next();)
    ends.insert(cursor.nextPosition());
  for (std::size_t size = kept_; size < whole_.size(); ++size) {
    SCOPED_TRACE(size);
    load(std::span(whole_).first(size));
    if (!form_.formatted()) {
      ASSERT_EQ(run_.file.qDamaged, !ends.contains(size));
    }
    ASSERT_TRUE(run_.rft(1));
    // Cut in the header behind it, a test may have lost a record or not.
    EXPECT_TRUE(size < kept_ + 32 || run_.column("SOIL") == (Singles{0.75F, 1}));
  }
}

TEST_P(DamagedTests, WithAnyByteChangedAreReadWithoutHarm) {
  std::vector<std::byte> bytes = whole_;
  for (std::size_t at = kept_; at < bytes.size(); ++at) {
    const std::byte flip{static_cast<unsigned char>(at % 2 == 0 ? 0xFF : 0x01)};
    bytes[at] ^= flip;
    SCOPED_TRACE(at);
    load(bytes);
    bytes[at] ^= flip;
    EXPECT_TRUE(run_.rft(1));
  }
}

TEST(DamagedTestFile, CutInTheNextTimeLeavesTheTestWorkedOut) {
  const auto all = smallFile().tests[1];
  const std::size_t one = WellTestBuilder{{all}}.bytes(test::bigEndian).size();
  const auto bytes = WellTestBuilder{{all, all}}.bytes(test::bigEndian);
  WellTestLoad run;
  test::writeFile(run.folder.file("CUT.RFT"), std::span(bytes).first(one + 24 + 5));
  ASSERT_TRUE(run.load(run.folder.file("CUT.RFT")));
  EXPECT_EQ(run.file.NumTests(), 1);
  EXPECT_TRUE(run.plt(1));
  EXPECT_EQ(run.column("CONMD"), (Singles{2, 6}));
  EXPECT_TRUE(run.file.qDamaged);
  EXPECT_EQ(run.lastDiagnosis().keyword, "TIME");
  const auto tests = readWellTests(run.folder.file("CUT.RFT"), run.session);
  ASSERT_EQ(tests.size(), 1U);
  EXPECT_TRUE(tests[0].complete);
}

}  // namespace
}  // namespace lumbarn
