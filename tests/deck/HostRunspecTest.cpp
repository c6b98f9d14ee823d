#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostDeck.h"
#include "deck/DeckScheduleStore.h"
#include "restart/qvEclipseSOLUTION.h"
#include "support/ModelRun.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;

TEST(HostRunspec, RecognizesDecksByTheirScore) {
  struct Row {
    const char* text;
    bool deck;
  };
  for (const Row& row : std::initializer_list<Row>{
           {"RUNSPEC\nDIMENS\nGRID\n", true},
           {"runspec\r\n-- note\r\n** note\r\ndimens\r\n 1 1 1 /\r\noil", true},
           {"METRIC\nRUNSPEC\nDIMENS\nOIL\n", true},             // 0, 1, 2, 3
           {"RUNSPEC\nMETRIC\nOIL\nWATER\n", false},             // 1, -1, 0, 1
           {"RUNSPEC\nMETRIC\nOIL\nWATER\nGAS\nSTART\n", true},  // ... 2, 3
           {"RUNSPEC\nOIL\nMETRIC\nWATER\nGAS\n", false},        // 1, 2, 0, 1, 2
           {"OIL\nWATER\nGAS\nSTART\nCOMPS\n", false},           // no RUNSPEC
           {"LOAD\nRESTART\nSUMMARY\n", true},
           {"LOAD\nSUMMARY\nSCHEDULE\n", false},                     // stops at 3
           {"RUNSPEC\nLOAD\nRESTART\n", false},                      // LOAD comes first or not at all
           {"RUNSPEC\nDIMENS 10 10 10 /\nOIL\nGRID\nPORO\n", true},  // no DIMENS, but 3 before GRID tells
           {"RUNSPEC\nWELSPECS\nPORO\nTITLE\n", false},
           {"", false},
       }) {
    HostDeck deck(row.text);
    EXPECT_EQ(deck.dat.CheckifEclipseFile(deck.dat.zDeckFile), row.deck) << row.text;
  }
  std::string comments;
  for (int line = 0; line < 998; ++line) comments += "--\n";
  const std::string head = "RUNSPEC\nDIMENS\nOIL\n";
  HostDeck inTime(comments.substr(3) + head), late(comments + head),
      fixed("RUNSPEC\n OIL WATER\nGRID\nPORO\n");
  EXPECT_TRUE(inTime.dat.CheckifEclipseFile(inTime.dat.zDeckFile));
  EXPECT_FALSE(late.dat.CheckifEclipseFile(late.dat.zDeckFile));
  EXPECT_FALSE(fixed.dat.CheckifEclipseFile(fixed.dat.zDeckFile));
  EXPECT_TRUE(fixed.told(Message::DeckFixedFormat) && fixed.faults.empty());
  EXPECT_FALSE(late.dat.CheckifEclipseFile(late.folder.file("NONE.DATA")));
}

TEST(HostRunspec, KeepsWhatKeywordsSay) {
  using Show = std::string (*)(const DeckRunspec&);
  const Show sizes = [](const DeckRunspec& r) { return fmt::format("{} {} {}", r.iNX, r.iNY, r.iNZ); };
  const Show tables = [](const DeckRunspec& r) {
    const DeckTableSizes& t = r.tables;
    return fmt::format("{} {} {} {} {} {} {} {} {} {} {} {}", t.saturation, t.pvt, t.saturationNodes,
                       t.pvtNodes, t.regions, t.rvNodes, t.endPoint, t.eosReservoir, t.eosSurface, t.miscible,
                       t.miscibleNodes, t.rockCompaction);
  };
  const Show start = [](const DeckRunspec& r) { return r.start.text(); };
  const Show parts = [](const DeckRunspec& r) {
    return fmt::format("{} [{}] {}", r.nComponents, fmt::join(r.zComponents, ","), r.qNoRestartGather);
  };
  const Show singles = [](const DeckRunspec& r) {
    return fmt::format("{} {} {} {} {}", r.sDZMTRX, r.sSIGMA, r.sSIGMAGD, r.sDRSDT, r.nFaultSegments);
  };
  const Show equil = [](const DeckRunspec& r) { return fmt::format("{}", r.equilibration); };
  const Show lift = [](const DeckRunspec& r) {
    return fmt::format("{} {} {}", r.iVFPPDIMS, r.iVFPIDIMS, r.nInjectionRows);
  };
  const Show phases = [](const DeckRunspec& r) {
    const DeckPhases& p = r.phases;
    return fmt::format("{:d}{:d}{:d}{:d}{:d} {:d}{:d}{:d}{:d}{:d} {} {:d}", p.Oil, p.Gas, p.Water,
                       p.DissolvedGas, p.VapourisedOil, p.Brine, p.Solvent, p.Surfactant, p.CoalBedMethane,
                       p.Foam, r.iUnitSystem, r.qIsBlackOil);
  };
  struct Row {
    const char* data;
    Show show;
    const char* expected;
  };
  for (const Row& row : std::initializer_list<Row>{
           {"DIMENS\n 10 10 /\n", sizes, "0 0 0"},
           {"DIMENS\n 3 4 5 /\nDIMENS\n 6 1* -1 /\n", sizes, "6 4 5"},
           {"DIMENS 7 8 9 /\nOIL\n", sizes, "0 0 0"},  // a keyword stands alone in its columns
           {"DIMENS\n 7 -- columns\n 8\n 9 / layers\n", sizes, "7 8 9"},
           {"TABDIMS\n/\n", tables, "1 1 20 20 1 20 1 1 1 10 1 -1"},
           {"TABDIMS\n 2* 30 2* 25 /\n", tables, "1 1 30 20 1 25 1 1 1 10 1 -1"},
           {"TABDIMS\n 2 3 4 5 6 7 8 9 1 4 11 12 13 /\nTABDIMS\n 4* 2 2* 3 /\n", tables,
            "1 1 20 20 6 20 9 1 1 10 1 -1"},
           {"TABDIMS\n 1 1 7* 3 2 /\n", tables, "1 3 20 20 1 20 1 1 3 2 1 -1"},
           {"REGDIMS\n 5 /\nMISCIBLE\n 7 8 NONE /\nROCKCOMP\n REVERS 4 /\n", tables,
            "1 1 20 20 5 20 1 1 1 7 8 4"},
           {"START\n 1 'JLY' 2001 /\n", start, "1 7 2001"},
           {"START\n 32 FEB 2000 /\n", start, "1 2 2000"},
           {"START\n 30 XXX 0 /\n", start, "30 1 1980"},
           {"START\n 5 MAR /\n", start, "1 1 1980"},
           {"COMPS\n 100 /\n", parts, "0 [] true"},
           {"COMPS\n 2 /\nCNAMES\n C1 C2 C3 /\n", parts, "2 [,] true"},
           {"PROPS\nCNAMES\n C1 /\nCNAMES\n C2 /\n", parts, "1 [C2] false"},
           {"UNIFSAVE\n", parts, "0 [] true"},
           {"FAULTDIM\n 0 /\nGRID\nDZMTRX\n 2.5 /\nSIGMA\n -1 /\n", singles, "2.5 -32768 -32768 -32768 0"},
           {"FAULTDIM\n 12 /\nGRID\nSIGMAGD\n 0 /\nSCHEDULE\nDRSDT\n 0.1 /\nDRSDT\n 0.2 ALL /\n", singles,
            "-32768 -32768 0 0.2 12"},
           {"EQLDIMS\n 3 /\nSOLUTION\nEQUIL\n 2000 1* 3 /\n/\n 5\n 6 /\n 9 /\n", equil,
            "[[2000, -32768, 3], [2000, -32768, 3], [5, 6]]"},
           {"VFPPDIMS\n 1 2 3 4 5 6 /\nVFPIDIMS\n 7 8 9 /\n", lift, "[1, 2, 3, 4, 5, 6] [7, 8, 9] 11"},
           {"OIL\nWATER\nFOAM\nPOLYMER\nLAB\n", phases, "10100 00001 3 0"},
           {"GAS\nVAPOIL\nBRINE\nSOLVENT\nSURFACT\nCOAL\nMETRIC\n", phases, "01001 11110 1 0"},
           {"BLACKOIL\n", phases, "01010 00000 2 1"},
       }) {
    HostDeck deck(std::string("RUNSPEC\n") + row.data + "END\n");
    EXPECT_TRUE(deck.load() && deck.faults.empty()) << row.data;
    EXPECT_EQ(row.show(deck.dat.contents().runspec), row.expected) << row.data;
  }
  // No defaults: what the record has is kept, and the rest is a fault. The deck is read on.
  HostDeck shorter("RUNSPEC\nSCDPDIMS\n 1 2 /\nOIL\n");
  EXPECT_TRUE(shorter.load() && shorter.dat.contents().runspec.phases.Oil);
  EXPECT_THAT(shorter.faults,
              ElementsAre(::testing::HasSubstr("(No.9) In [qvEclipseDat (Code) (parseSCDPDIMS)]")));
  EXPECT_EQ(shorter.dat.contents().runspec.iSCDPDIMS[1], 2);
}

TEST(HostRunspec, StoresArgumentsByNameAndSection) {
  HostDeck deck(
      "RUNSPEC\nEQLDIMS\n 2 /\nROCKCOMP\n REVERS 3 /\nPARTTRAC\n 4 5 /\nWELLDIMS\n 7 /\nAQUDIMS\n 1 2 /\n"
      "PARTTRAC\n 6 /\nPROPS\nROCKOPTS\n 1* STORE /\n");
  ASSERT_TRUE(deck.load());
  struct Row {
    std::int32_t section;
    const char* keyword;
    const char* arguments;  // empty: not kept
  };
  for (const Row& row : std::initializer_list<Row>{
           {1, "EQLDIMS", "2 100 20 1 20"},
           {-1, "eqldims", "2 100 20 1 20"},
           {4, "EQLDIMS", ""},
           {4, "ROCKCOMP", "REVERS 3"},
           {1, "PARTTRAC", "6 0 0"},
           {1, "WELLDIMS", "7 0 5 10 5 10 5 4 3 0"},
           {4, "ROCKOPTS", "PRESSURE STORE PVTNUM DEFLATION"},
           {1, "AQUDIMS", ""},
       }) {
    std::vector<std::string> arguments;
    std::int32_t count = -1;
    bool qOK = false;
    deck.dat.getEclipseKeyWord(row.section, row.keyword, arguments, count, qOK);
    EXPECT_EQ(fmt::format("{}", fmt::join(arguments, " ")), row.arguments) << row.keyword;
    EXPECT_EQ(qOK, *row.arguments != '\0') << row.keyword;
  }
  std::vector<std::string> names;
  std::int32_t count = 0;
  bool qOK = false;
  deck.dat.getEclipseKeyWordList(4, names, count, qOK);
  EXPECT_THAT(names, ElementsAre("ROCKCOMP", "ROCKOPTS"));
  KeywordStore store;
  store.add("A", 1, std::vector<std::string>{"1", "2", "3"});
  store.add("a", 1, std::vector<std::string>{"4"});
  EXPECT_THAT(store.find("A", 1)->zArgs, ElementsAre("4", "2", "3"));
  EXPECT_TRUE(store.find("A", 1)->nArgs == 3 && store.records().size() == 1);
}

/// Keeps what it is told, as text.
class Recorder : public DeckScheduleStore {
 public:
  void deckFile(const std::string&) override { told.emplace_back("file"); }
  void phase(std::string_view zKeyword) override { told.emplace_back(zKeyword); }
  void fileForm(std::string_view zKeyword, std::int32_t) override { told.emplace_back(zKeyword); }
  void tableSizes(const DeckTableSizes& s) override { add("tables {}", s.saturation); }
  void wellCount(std::int32_t nWells) override { add("wells {}", nWells); }
  void groupCount(std::int32_t nGroups) override { add("groups {}", nGroups); }
  void startDate(const DeckDate& date) override { add("start {}", date.text()); }
  void componentCount(std::int32_t n) override { add("components {}", n); }
  void componentNames(std::span<const std::string> z) override { add("names {}", fmt::join(z, " ")); }
  void domainCount(std::int32_t n) override { add("domains {}", n); }
  void localGrid(const DeckGridRecord& grid) override { add("grid {}", grid.zName); }
  std::string restart(const DeckRestartSource& s) override {
    add("restart {} {} {} {}", s.zRoot.substr(s.zRoot.rfind('\\')), s.iStep, s.qIsSave, s.qFormatted);
    return restartFile;
  }
  void restartDate(const DeckDate& date) override { add("restart date {}", date.text()); }
  void reportStepLines(std::span<const std::string> z, std::int32_t iLine) override {
    add("step {}: {}", iLine, fmt::join(z, "|"));
  }
  void finish() override { told.emplace_back("finish"); }
  void lines(std::span<const std::string> z, std::span<const std::int32_t, 9> iSection) override {
    add("lines {}: {} {}", z.size(), iSection[6], iSection[8]);
  }
  void summaryKeywords(std::span<const DeckKeywordRecord> records) override {
    for (const auto& record : records) add("{}({})", record.zName, fmt::join(record.zArgs, ","));
  }
  void runKind(DeckRunKind kind) override { add("kind {}", static_cast<int>(kind)); }

  std::vector<std::string> told;
  std::string restartFile;

 private:
  template <class... Values>
  void add(fmt::format_string<Values...> form, Values&&... values) {
    told.push_back(fmt::format(form, std::forward<Values>(values)...));
  }
};

TEST(HostRunspec, TellsAScheduleStoreThatIsThere) {
  const char* text =
      "RUNSPEC\nOIL\nBRINE\nFMTOUT\nUNIFOUT\nTABDIMS\n 2 /\nWELLDIMS\n 5 1* 3 /\nSTART\n 1 JAN 2000 /\n"
      "COMPS\n 2 /\nPARALLEL\n 4 /\nGRID\nCARFIN\n L 1 1 1 1 1 1 2 2 2 /\nPROPS\nCNAMES\n A B /\n"
      "SUMMARY\nFOPR\nWOPR\n 'P1' P2 /\nWARN\nWWCT\n/\nRUNSUM\nSCHEDULE\nWELSPECS\n P1 /\n/\nEND\n";
  Recorder store;
  HostDeck with(text), without(text), notWanted(text);
  with.dat.schedule = notWanted.dat.schedule = &store;
  notWanted.dat.RecordScheduleDeck = false;
  without.dat.RecordScheduleDeck = true;
  EXPECT_TRUE(notWanted.load() && without.load() && store.told.empty());
  EXPECT_FALSE(without.dat.FMTOUT());
  with.dat.RecordScheduleDeck = with.dat.RecordReportStepKeywords = true;
  EXPECT_TRUE(with.load() && with.dat.FMTOUT() && with.dat.UNIFOUTRST() && with.faults.empty());
  EXPECT_THAT(store.told, ElementsAre("file", "OIL", "FMTOUT", "UNIFOUT", "tables 2", "wells 5", "groups 3",
                                      "start 1 1 2000", "components 2", "domains 4", "grid L", "names A B",
                                      "step 14: WELSPECS| P1 /|/", "finish", "lines 13: 1 13", "FOPR()",
                                      "WOPR(P1,P2)", "WARN()", "WWCT()", "kind 2"));
}

TEST(HostRunspec, FindsWhereARestartBegins) {
  const ModelRun model(everyWriter[0], bigEndian);
  struct Row {
    const char* record;
    std::string file;
    const char* told;     // behind the deck's file
    const char* problem;  // none: empty
  };
  for (const Row& row : std::initializer_list<Row>{
           {"'sub/Base' 2 /", "none", "restart \\Base 2 false false", "Cannot find restart file"},
           {"Base 3 SAVE FORMATTED /", "none", "restart \\Base 3 true true", "Cannot find restart file"},
           {"Base 999 /", model.restartPath, "restart \\Base 999 false false",
            "Cannot set report step date from restart file"},
           {"Base /", "none", "finish", ""},
       }) {
    Recorder store;
    store.restartFile = row.file;
    HostDeck deck(std::string("RUNSPEC\nUNIFIN\nSOLUTION\nRESTART\n ") + row.record + "\n");
    deck.dat.schedule = &store;
    deck.dat.RecordScheduleDeck = true;
    ASSERT_TRUE(deck.load());
    EXPECT_EQ(store.told.at(2), row.told);
    EXPECT_EQ(deck.told(Message::DeckRestart), *row.problem != '\0');
    if (!*row.problem) continue;
    EXPECT_EQ(deck.session.diagnoses().back().problem, row.problem);
    const std::string& root = deck.dat.contents().runspec.restart->zRoot;
    EXPECT_EQ(root.find('/', deck.dat.zDeckFile.size() - 6), std::string::npos) << root;
  }
  Session session;
  qvEclipseSOLUTION restart(session);
  bool qOK = false;
  ASSERT_TRUE(restart.CheckRESTARTFile(model.restartPath));
  restart.iStart = restart.iEnd = -1;
  restart.getSOLUTIONData(qOK);
  const RestartStep step = restart.steps().at(1);
  HostDeck deck(fmt::format("RUNSPEC\nUNIFIN\nSOLUTION\nRESTART\n Base {} /\n", step.iSeqnum));
  Recorder store;
  store.restartFile = model.restartPath;
  deck.dat.schedule = &store;
  deck.dat.RecordScheduleDeck = true;
  EXPECT_TRUE(deck.load() && !deck.told(Message::DeckRestart));
  EXPECT_EQ(store.told.at(3), fmt::format("restart date {} {} {}", step.iDay, step.iMonth, step.iYear));
}

}  // namespace
}  // namespace lumbarn
