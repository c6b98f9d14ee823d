#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostDeck.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

/// The words of a deck that were taken, by what they set.
std::string seen(const qvEclipseDat& dat) {
  const DeckContents& deck = dat.contents();
  const DeckPhases& phases = deck.runspec.phases;
  return fmt::format("{}{}{}{}{}", phases.Oil ? "O" : "", phases.Gas ? "G" : "", phases.Water ? "W" : "",
                     dat.IsKeyWord("COORD") ? "C" : "", deck.runspec.zTitle);
}

TEST(HostLoader, ReadsKeywordsAndIncludesInOrder) {
  struct Row {
    const char* text;
    HostDeck::Files files;
    const char* seen;
    std::vector<std::string> unread;
  };
  const HostDeck::Files gas{{"G.INC", "GAS\n"}};
  const Row rows[] = {
      {"RUNSPEC\nOIL\nEND\nGAS\n", {}, "O", {}},
      {"RUNSPEC\n  oil  \nEND -- of deck\nGAS", {}, "OG", {}},
      {"RUNSPEC\nOIL 2 /\nGAS", {}, "G", {}},       // the field of a line shorter than 9 is all of it
      {"RUNSPEC\nOIL -- phase\nGAS", {}, "G", {}},  // no keyword in the first eight columns
      {"RUNSPEC\nUNKNOWN\n 1 2 /\nOIL\n", {}, "O", {}},
      {"RUNSPEC\nTITLE\n-- not a comment\nOIL\n", {}, "O-- not a comment", {}},
      {"RUNSPEC\nTITLE\nOIL\nGAS\n", {}, "GOIL", {}},
      {"RUNSPEC\nINCLUDE\n 'G.INC' /\nOIL\n", gas, "OG", {}},
      {"RUNSPEC\nINCLUDE\n G.INC /\nOIL\n", gas, "OG", {}},
      {"RUNSPEC\nINCLUDE\n-- where\n\n './G.INC'\n/\nOIL\n", gas, "OG", {}},
      {"RUNSPEC\nINCLUDE\n '.\\G.INC' /\nOIL\n", gas, "OG", {}},
      {"RUNSPEC\nPATHS\n DIR ./. /\n/\nINCLUDE\n '$DIR/G.INC' /\nOIL\n", gas, "OG", {}},
      {"RUNSPEC\nINCLUDE\n 'g.inc' /\nOIL\n", gas, "O", {}},  // names keep their case
      {"RUNSPEC\nINCLUDE\n 'NONE.INC' /\nOIL\n", {}, "O", {}},
      {"RUNSPEC\nINCLUDE\n '/data/X.INC' /\nOIL\n", {}, "O", {"/data/X.INC"}},
      {"RUNSPEC\nINCLUDE\n 'A.INC' /\nOIL\n", {{"A.INC", "GAS\nEND\n"}}, "G", {}},
      {"RUNSPEC\nINCLUDE\n 'A.INC' /\nOIL\n", {{"A.INC", "GAS\nENDINC\nWATER\n"}}, "OG", {}},
      {"RUNSPEC\nENDINC\nOIL\n", {}, "O", {}},
      {"RUNSPEC\nINCLUDE\n 'A.INC' /\nOIL\n",
       {{"A.INC", "INCLUDE\n 'B.INC' /\nWATER"}, {"B.INC", "INCLUDE\n 'A.INC' /\nGAS"}},
       "OGW",
       {}},
      {"RUNSPEC\nOIL\nINCLUDE\n 'A.INC' /\nCOORD\n", {{"A.INC", "GRID\n"}}, "OC", {}},
      {"RUNSPEC\nOIL\nGRID\nINCLUDE\n 'A.INC' /\n", {{"A.INC", "COORD\n"}}, "O", {}},
      {"FRONTSIM\nRUNSPEC\nGRID\nINCLUDE\n 'A.INC' /\n", {{"A.INC", "COORD\n"}}, "C", {}},
      {"RUNSPEC\nOIL\nRUNSPEC\nGAS\nSCHEDULE\nWATER\n", {}, "OG", {}},  // not in that section
  };
  for (const Row& row : rows) {
    HostDeck deck(row.text, row.files);
    deck.dat.ProcessCorners = false;
    EXPECT_TRUE(deck.load() && deck.faults.empty()) << row.text;
    EXPECT_EQ(seen(deck.dat), row.seen) << row.text;
    EXPECT_THAT(deck.dat.contents().zIncludes, ElementsAreArray(row.unread)) << row.text;
  }
  HostDeck all(rows[20].text, rows[20].files), first("RUNSPEC\nOIL\nPROPS\nGAS\nRUNSPEC\nWATER\n"), empty(""),
      none(""), cycle("RUNSPEC\nINCLUDE\n 'A.DATA' /\nOIL\n");
  all.dat.ProcessAll = first.dat.RUNSPECOnly = true;
  all.dat.ProcessCorners = false;
  EXPECT_TRUE(all.load() && first.load());
  EXPECT_EQ(seen(all.dat) + ' ' + seen(first.dat), "OC O");
  EXPECT_FALSE(empty.load());
  none.dat.zDeckFile = none.folder.file("NONE.DATA");
  EXPECT_TRUE(!none.load() && none.told(Message::FileOpen));
  EXPECT_TRUE(cycle.load() && cycle.told(Message::DeckCycle));
  EXPECT_EQ(seen(cycle.dat), "O");
}

TEST(HostLoader, LeavesFilesOut) {
  struct Row {
    const char* pattern;
    const char* name;
    bool excluded;
  };
  for (const Row& row : std::initializer_list<Row>{
           {"*", "sub/Grid.inc", true},
           {"*.INC", "grid.inc", true},
           {"*.INC", "grid.grdecl", false},
           {"*", "grid", true},
           {"GRID", "grid.inc", false},
           {"G?ID.*", "sub\\grid.inc", true},
           {"sub\\*.inc", "SUB/grid.inc", true},
           {"other/*.inc", "sub/grid.inc", false},
       }) {
    HostDeck deck("");
    bool qOK = false, qExcluded = false;
    deck.dat.setIncFileExcludes({"NOT.THIS", row.pattern}, qOK);
    deck.dat.ExcludeFile(row.name, qOK, qExcluded);
    EXPECT_TRUE(qOK && qExcluded == row.excluded) << row.pattern << ' ' << row.name;
  }
  HostDeck deck(
      "RUNSPEC\nGRID\nSUMMARY\nINCLUDE\n 'W.SUM' /\nINCLUDE\n sub/W.SUM /\nINCLUDE\n 'F.INC' /\nFOPR\n",
      {{"F.INC", "FWPR\n"}});
  deck.dat.RecordScheduleDeck = true;
  deck.dat.zExcludes = {"*.SUM"};
  ASSERT_TRUE(deck.load());
  EXPECT_THAT(deck.dat.contents().zIncludes, ElementsAre("..\\W.SUM", "../sub/W.SUM"));
  EXPECT_THAT(
      deck.dat.contents().lines.zSchedule,
      ElementsAre("SUMMARY", "INCLUDE", "  '..\\W.SUM' /", "INCLUDE", "  '../sub/W.SUM' /", "FWPR", "FOPR"));
}

TEST(HostLoader, KeepsLinesThatWereAskedFor) {
  const char* text =
      "RUNSPEC\nOIL\nGRID\nBOX\n 1 2 /\nEDIT\n-- note\nPORV\n 4*1 /\nINCLUDE\n 'x.inc' /\nSKIPPED\nPROPS\n"
      "SUMMARY\nFOPR\nWOPR\n P1 /\n\nSCHEDULE\nWELSPECS\n 'P1' 'G' /\n/\nTSTEP\n 1 /\nEND\nlast\n";
  HostDeck deck(text), plain(text);
  deck.dat.RecordScheduleDeck = deck.dat.RecordReportStepKeywords = true;
  ASSERT_TRUE(deck.load() && plain.load());
  std::vector<std::string> lines;
  std::vector<std::int32_t> pointers;
  std::int32_t count = -1, nPointers = 0;
  bool qOK = false;
  deck.dat.GetScheduleLinesWithPointers(lines, count, pointers, nPointers, qOK);
  EXPECT_THAT(lines, ElementsAre("SUMMARY", "FOPR", "WOPR", " P1 /", "SCHEDULE", "WELSPECS", " 'P1' 'G' /",
                                 "/", "TSTEP", " 1 /", "END"));
  EXPECT_TRUE(qOK && count == 11);
  EXPECT_THAT(pointers, ElementsAre(0, 0, 0, 0, 0, 0, 1, 5, 11));
  EXPECT_THAT(deck.dat.contents().lines.zReportStep, ElementsAre("WELSPECS", " 'P1' 'G' /", "/", " 1 /"));
  deck.dat.GetEDITLines(lines, count, qOK);
  EXPECT_THAT(lines, ElementsAre("EDIT", "-- note", "PORV", " 4*1 /", "INCLUDE", "'x.inc' /", "SKIPPED"));
  plain.dat.GetScheduleLines(lines, count, qOK);
  EXPECT_THAT(lines, ElementsAre(""));
  EXPECT_TRUE(qOK && count == 0 && plain.dat.contents().lines.zReportStep.empty());
}

TEST(HostLoader, SurvivesAnyText) {
  const std::string nested = "INCLUDE\n 'N";
  HostDeck::Files files;
  for (int i = 0; i < 1000; ++i) files["N" + std::to_string(i)] = nested + std::to_string(i + 1) + "' /\n";
  files["N1000"] = "OIL\n";
  const std::pair<std::string, bool> texts[] = {
      {std::string("RUNSPEC\nINCLUDE\n 'N0' /\n"), true},
      {"RUNSPEC\nDIMENS\n 2000000000 2000000000 2 /\nGRID\nCOORD\n 1 /\nACTNUM\n 1 "
       "/\nPROPS\nOIL\nRUNSPEC\nOIL\n",
       true},
      {"RUNSPEC\nDIMENS\n 2000 1000 1000 /\nGRID\nCOORD\n 1 /\nZCORN\n 2 /\nACTNUM\n 0 /\nRUNSPEC\nOIL\n",
       true},
      {"RUNSPEC\nTABDIMS\n 1000000000000000000*7 /\nOIL\n", false},
      {"RUNSPEC\nOIL\nTITLE\n'" + std::string(1 << 20, 'x') + "\nDIMENS\n '1 2 3\n", true},
      {std::string("RUNSPEC\nOIL\n\0\0\0 /\n\xFF\xFE\nGAS", 24), true},
      {"RUNSPEC\nOIL\nBOX\n 1 2 /\nGRID\nCARFIN\n 'L' /\nCOORD\n 1 /\nMULTFLT\n/\nFAULTS\n/\n", true},
      {"RUNSPEC\nOIL\nSTART", true},
      {"RUNSPEC\nOIL\nNUMRES\n 3 /\nGRID\nCOORDSYS\n 1 1 /\n 2 2 /\n 3 3 /\n 4 4 /\nRUNSPEC\nNUMRES\n 2 "
       "/\nGRID\n"
       "COORDSYS\n 5 5 /\nSUMMARY\nGRID\n",
       true},
  };
  for (const auto& [text, oil] : texts) {
    HostDeck deck(text, files);
    deck.dat.ProcessAll = true;
    EXPECT_TRUE(deck.load()) << text.substr(0, 60);
    EXPECT_TRUE(!oil || deck.dat.contents().runspec.phases.Oil) << text.substr(0, 60);
  }
  HostDeck cancelled("RUNSPEC\nOIL\nGAS\n");
  cancelled.session.CancelLoad = true;
  EXPECT_TRUE(!cancelled.load() && cancelled.faults.empty());
}

}  // namespace
}  // namespace lumbarn
