#include <fmt/format.h>
#include <gtest/gtest.h>

#include "files/Recogniser.h"
#include "support/Dates.h"
#include "support/Text.h"
#include "support/WellTestLoad.h"
#include "welltests/qvUserRFT.h"

namespace lumbarn {
namespace {

using namespace test;
using enum UserTestKind;

/// Loads texts in a session whose today is 15 July 2003.
class UserFile {
 public:
  UserFile() {
    session.now = [] { return *makeMoment(2003, 7, 15, 12); };
    session.faultReporter = [this](std::string_view text) { reports.emplace_back(text); };
  }
  qvUserRFT load(std::string_view text, UserTestKind kind = Rft, bool qExpected = true) {
    writeFile(path, bytesOf(text));
    qvUserRFT file(session);
    file.FileName = path;
    bool qOK = !qExpected;
    kind == Rft ? file.getRFTData(qOK) : file.getPLTData(qOK);
    EXPECT_EQ(qOK, qExpected) << text;
    return file;
  }
  /// Tests as "WELL#NUMBER GRID date: NAME/UNIT NAME/UNIT = row; row", "|" between them, from what hosts get.
  std::string shown(qvUserRFT& file, UserTestKind kind = Rft) const {
    std::string all;
    for (std::int32_t iTest = 1; iTest <= file.NumTests(); ++iTest) {
      XYData values;
      ByteTable headers;
      std::int32_t iNumber = 0;
      std::string zDate, zWell, zGrid, zOrigin;
      bool qOK = false;
      kind == Rft ? file.GetRFTtest(iTest, values, headers, iNumber, zDate, zWell, zGrid, zOrigin, qOK)
                  : file.GetPLTtest(iTest, values, headers, iNumber, zDate, zWell, zGrid, qOK);
      EXPECT_TRUE(qOK);
      const auto table = tableText(headers, values);
      all += fmt::format("{}{}#{} {}:{}{}", iTest == 1 ? "" : " | ", zWell, iNumber, zDate,
                         table.empty() ? "" : " ", table);
    }
    return all;
  }

  TemporaryFolder folder;
  const std::string path = folder.file("measured.txt");
  Session session;
  std::vector<std::string> reports;
};

struct Example {
  UserTestKind kind;
  const char *text, *shown, *told = "";
};

constexpr const char* noDate = "line 1: no date can be made of it@0 ";
const Example examples[] = {
    // The layout, and what may stand around it.
    {Rft, "RFT\nWELLNAME P1\nDATE 1 JAN 1990\nDEPTH PRESSURE\nFT PSIA\n5000 3000\n5100.5 3.1E3\n",
     "P1#1 1 JAN 1990: DEPTH/FT PRESSURE/PSIA = 5000 3000; 5100.5 3100"},
    {Rft,
     "\xEF\xBB\xBFrft\r\n-- by hand\r\n\tWellname\tp1\r\n\r\n--qv\r\n \t depth\tpressure \r\n1\t-2.5\r\n  -- "
     "x",
     "P1#1 : DEPTH PRESSURE = 1 -2.5"},
    {Rft, "RFT\rWELLNAME P\xE9\rDEPTH\r1D1", "P\xE9#1 : DEPTH = 10"},
    {Rft, "", "#1 :"},
    // Tests follow each other and are counted well by well.
    {Rft, "RFT\nWELLNAME A\nD\n1\nRFT\nWELLNAME B\nD\n2\nWELLNAME A\nD\n3\n",
     "A#1 : D = 1 | B#1 : D = 2 | A#2 : D = 3"},
    {Rft, "RFT\nRFT P1\nWELLNAME\nTIME 10.5\nDEPTH", "#1  12:00: DEPTH"},
    // A file without a command is one test; numbers in front of the names are none of it.
    {Rft, "1 2 3\nDEPTH SWAT\n5 0.5\n", "#1 : DEPTH SWAT = 5 0.5"},
    // Words and numbers as they look: units that begin with a digit are a row, later words nothing.
    {Rft, "D K\nM 1/M\n1 2\nWORDS\n3 4 5", "#1 : D/M K/1/M = 1 2; 3 4", "line 4: words among the rows@14 "},
    {Rft, "K D\n1/M FT\nX\n3 4", "#1 : K/X D = 1 0; 3 4", "line 2: not a number@4 "},
    {Rft, "D P S\nFT\n1 NAN ***\n-.5 +5 1E", "#1 : D/FT P S = 1 0 0; -0.5 5 1", "line 3: not a number@9 "},
    // Remarks of the programs that write such files; the last one may name the columns.
    {Rft, "# logged by hand\n; twice\nWELLNAME P1\nDEPTH PRESSURE\n5000 3000\n",
     "P1#1 : DEPTH PRESSURE = 5000 3000"},
    {Rft, "# log\n# DEPTH PRESSURE\n5000 3000\n", "#1 : DEPTH PRESSURE = 5000 3000"},
    // GRIDNAME is a line of column names; it ends the commands, so that DATE opens the next test.
    {Rft, "RFT\nGRIDNAME LGR1\nDATE 1 JAN 1990\nD\n1", "#1 : GRIDNAME LGR1 | #2 1 JAN 1990: D = 1",
     "line 2: GRIDNAME counts as a line of column names@4 "},
    // Commands without a blank behind the word.
    {Rft, "RFT1\nWELLNAMEP1 P2\nTIME1.25\nDATE1 JAN 1990\nD", "P1#1 1 JAN 1990 06:00: D"},
    // The depth column comes first, those before it last.
    {Rft, "A MD DEPTH TVD DEPTH B\nU1 U2 U3\n1 2 3 4 5 6",
     "#1 : DEPTH B A/U1 MD/U2 DEPTH/U3 TVD = 5 6 1 2 3 4"},
    {Rft, "A TVD MDEPTH MD\n1 2 3 4", "#1 : MDEPTH MD A TVD = 3 4 1 2"},
    {Rft, "A TVD WTVD\n1 2 3", "#1 : TVD WTVD A = 2 3 1"},
    {Plt, "PLT\nDEPTH LENGTH Q\n1 2 3", "#1 : LENGTH Q DEPTH = 2 3 1"},
    {Plt, "LENGTH CONLEN Q\n1 2 3", "#1 : CONLEN Q LENGTH = 2 3 1"},
    {Plt, "Q MD DEPTH\n1 2 3", "#1 : MD DEPTH Q = 2 3 1"},
    {Plt, "Q WTVD\n1 2\nPLT\nQ\nRFT\n3", "#1 : WTVD Q = 2 1 | #2 : Q/RFT = 3"},
    // Dates, of which impossible ones give the day of today.
    {Rft, "DATE 1ST JAN, 1990", "#1 1 JAN 1990:"},
    {Rft, "DATE 22ND-AUGUST-1990", "#1 22 AUG 1990:"},
    {Rft, "DATE 3RD / july / 90", "#1 3 JUL 1990:"},
    {Rft, "DATEFORMATMM-DD\nDATE 02/03/1990", "#1 3 FEB 1990:"},
    {Rft, "DATE 02/03/1990\nDATEFORMAT MM-DD-YYYY", "#1 2 MAR 1990:"},
    {Rft, "DATE 02 03 1990 FORMAT MM-DD-YYYY", "#1 3 FEB 1990:"},
    {Rft, "DATEFORMAT MM\nDATE 02 03 1990 FORMAT DD-MM-YYYY\nTIME 0.99999", "#1 2 MAR 1990:"},
    {Rft, "DATE 29 FEB 2000\nTIME 3.0007", "#1 29 FEB 2000 00:01:"},
    {Rft, "DATE 29 FEB 1900", "#1 15 JUL 2003:", noDate},
    {Rft, "DATE 1 JAN 1990 FORMAT", "#1 15 JUL 2003:", noDate},
    {Rft, "DATE", "#1 15 JUL 2003:", noDate},
    {Rft, "DATE 1 1 99999999999999999999", "#1 15 JUL 2003:", noDate},
    {Rft, "DATE 1 JAN 1990\nTIME NOON", "#1 1 JAN 1990:", "line 2: the time is no number@16 "},
    {Rft, "DATE 1 JAN 1990\nTIME 1E999", "#1 1 JAN 1990:"},
    // What is taken otherwise than it may be meant.
    {Rft, "RFT\nGRIDNAME X\n", "#1 : GRIDNAME X", "line 2: GRIDNAME counts as a line of column names@4 "},
    {Rft, "D P\r\nM\r\n1 N/A\r\nN/A 1\r\n2 N/A\r\nN/A\r\n", "#1 : D/M P = 1 0; 2 0",
     "line 3: not a number@8 line 4: words among the rows@15 "},
    {Rft, "RFT\nD\n1\nPLT\nRFT\nD P S\n1 2 3\n4 5\n6 7\nX\nRFT\nD\n9\n",
     "#1 : D/PLT = 1 | #2 : D P S = 1 2 3; 4 5 0 | #3 : D = 9", "line 8: row has too few numbers@28 "},
};

TEST(UserRFT, ReadsWhatLinesSay) {
  UserFile file;
  for (const Example& example : examples) {
    SCOPED_TRACE(example.text);
    file.session.clearDiagnoses();
    file.reports.clear();
    auto loaded = file.load(example.text, example.kind);
    EXPECT_EQ(file.shown(loaded, example.kind), example.shown);
    std::string told;
    for (const Diagnosis& one : file.session.diagnoses())
      told += fmt::format("{}@{} ", one.problem, *one.offset);
    EXPECT_EQ(told, example.told);
    EXPECT_EQ(loaded.qDamaged, told.find("too few") != told.npos);
    EXPECT_EQ(file.reports.size(), loaded.qDamaged ? 1U : 0U);
  }
}

TEST(UserRFT, CancelLeavesTestsWithoutNumbers) {
  UserFile file;
  std::string text;
  for (int i = 0; i < 5; ++i) text += "RFT\nDATE X\nD\n1\n";
  file.session.diagnosisSink = [&](const Diagnosis&) { file.session.CancelLoad = true; };
  const auto loaded = file.load(text, Rft, false);
  EXPECT_EQ(loaded.NumTests(), 1);
  EXPECT_EQ(loaded.test(1).iTest, 0);
}

TEST(UserRFT, IsRecognizedByItsColumnsWhereNoCommandOpensIt) {
  UserFile file;
  const std::tuple<std::string_view, FileKind, bool, bool> rows[] = {
      // kind, and as which it can be read
      {"# log\nRFT\nDEPTH\n1", FileKind::UserRft, true, false},
      {"; log\nPLT\nDEPTH\n1", FileKind::UserPlt, false, true},
      {"DEPTH PRESSURE\nM BARSA\n5000 300", FileKind::UserRft, true, true},
      {"WELLNAME P1\nMD CONORAT\n5000 300", FileKind::UserPlt, true, true},
      {"X Y TVD MD\n1 2 3 4", FileKind::Unknown, true, true},
      {"DEPTH PRESSURE\nare words", FileKind::Unknown, true, true},
      {"RUNSPEC\nDIMENS\n1 2 3 /", FileKind::Deck, true, true},
      {"", FileKind::Unknown, false, false},
      {{"RFT\0\n", 5}, FileKind::Unknown, false, false},
      {" 'TIME    '           1 'REAL'\n   0.10000000E+01\n", FileKind::Rft, false, false}};
  for (const auto& [text, kind, rft, plt] : rows) {
    writeFile(file.path, bytesOf(text));
    EXPECT_EQ(recogniseFile(file.path).kind, kind) << text;
    qvUserRFT checked(file.session);
    EXPECT_EQ(checked.CheckRFTFile(file.path), rft) << text;
    EXPECT_EQ(checked.FileName, rft ? file.path : "");
    EXPECT_EQ(checked.CheckPLTFile(file.path), plt) << text;
  }
  EXPECT_FALSE(qvUserRFT(file.session).CheckRFTFile(file.folder.file("none")));
  EXPECT_EQ(file.session.diagnoses().back().problem, "No such file or directory");
}

}  // namespace
}  // namespace lumbarn
