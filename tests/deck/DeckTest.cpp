#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "deck/Deck.h"
#include "deck/DeckCheck.h"
#include "deck/DeckEdit.h"
#include "deck/DeckTime.h"
#include "frame/Write.h"
#include "run/Run.h"
#include "support/Paths.h"
#include "support/TemporaryFolder.h"
#include "support/Text.h"

namespace lumbarn::test {
namespace {

class TextSink final : public Sink {
 public:
  void write(std::span<const std::byte> bytes) override {
    text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  }
  std::string text;
};

/// A stream as csv, without the name of the deck.
std::string csv(Stream stream, const std::string& path) {
  TextSink sink;
  write(std::move(stream), sink);
  std::erase(sink.text, '\r');
  for (std::size_t at = 0; (at = sink.text.find(path, at)) != std::string::npos;)
    sink.text.replace(at, path.size(), "-");
  return sink.text;
}

class DeckFile {
 public:
  explicit DeckFile(const std::string& text) : path(folder_.file("R.DATA")) { std::ofstream(path) << text; }

 private:
  TemporaryFolder folder_;

 public:
  std::string path;
};

TEST(Deck, RecordsHaveAColumnForEachItem) {
  const DeckFile file(
      "FIELD\nSCHEDULE\nWCONPROD\n 'W 1' OPEN ORAT 500 2* 3*FUX /\n W2 /\n/\nWELSEGS\n W1 8000 2* INC /\n 2 "
      "3 1 1 50. 40 /\n"
      " 4 x 1 3 1 1 /\n/\nWLIST\n '*L' NEW A B /\n '*M' NEW /\n/\nNEWONE\n 1 2*x 'y z' /\n 3 /\nWCONPROD\n "
      "W3 SHUT 1* 1D3 /\n/\n"
      "WEFAC\n W1 0.5 YES more /\n/\n");
  std::string said;
  const Deck deck = Deck::open(file.path);
  const ReadOptions read{.report = [&](const Diagnosis& one) { said += one.text() + "\n"; },
                         .keepPartial = true};
  EXPECT_EQ(csv(deck.records("WCONPROD", "", read), file.path),
            "occurrence,file,line,WELL,STATUS,CONTROL,ORAT,WRAT,GRAT,LRAT,RESV,BHP,THP,VFP,ALQ\n"
            "1,-,4,W 1,OPEN,ORAT,500,,,FUX,FUX,FUX,,,\n"
            "1,-,5,W2,,,,,,,,,,,\n"
            "2,-,20,W3,SHUT,,1D3,,,,,,,,\n");
  EXPECT_EQ(said, "");
  const Stream control = deck.records("WCONPROD");
  EXPECT_EQ(control.schema()[6].unit, "STB/DAY");
  const std::string segments = csv(deck.records("WELSEGS", "SCHEDULE", read), file.path);
  EXPECT_NE(segments.find("1,-,8,W1,8000,,,INC,"), std::string::npos) << segments;
  EXPECT_NE(segments.find("1,-,9,W1,,,,,,,,,2,3,1,1,50,40,"), std::string::npos) << segments;
  EXPECT_NE(said.find("WELSEGS, line 10, byte"), std::string::npos) << said;
  EXPECT_NE(said.find("expected a number, found x"), std::string::npos) << said;
  EXPECT_EQ(csv(deck.records("WLIST"), file.path),
            "occurrence,file,line,LIST,ACTION,WELL1,WELL2\n1,-,13,*L,NEW,A,B\n1,-,14,*M,NEW,,\n");
  EXPECT_EQ(csv(deck.records("newone"), file.path),
            "occurrence,file,line,item1,item2,item3,item4\n1,-,17,1,x,x,y z\n1,-,18,3,,,\n");
  said.clear();
  csv(deck.records("WEFAC", "", read), file.path);
  EXPECT_NE(said.find("expected 3 items, found more"), std::string::npos) << said;
  EXPECT_THROW(deck.records("W*"), Error);
  try {
    deck.records("WCONPRD");
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_EQ(error.kind(), Error::Kind::NotFound);
    ASSERT_EQ(error.candidates().size(), 1U);
    EXPECT_EQ(error.candidates()[0], "WCONPROD");
  }
}

TEST(Deck, CheckFindsWhatContradictsTheGridAndTheDates) {
  const DeckFile file(
      "DIMENS\n 3 2 1 /\nSTART\n 1 JLY 2010 /\nGRID\nPORO\n 5*1 /\nPERMX\n 7*1 /\nTOPS\n 6*1 /\nBOX\n 1 2 1 "
      "1 1 1 /\nNTG\n 2*1 /\n"
      "BOX\n 1 4 1 1 1 1 /\nPERMY\n 1 x /\nENDBOX\nPERMZ\n 99999999999*1 "
      "/\nWELSPECS\n/\nNONSENSE\nNONSENSE\nSCHEDULE\nDATES\n"
      " 2 JUL 2010 /\n 1 JAN 2010 /\n 31 FEB 2011 /\n/\nTSTEP\n 2*0.5 0 /\nWEFAC\n 'W /\n");
  Session session;
  std::string found;
  checkDeck(Deck::open(file.path), session, [&](const Diagnosis& one) {
    found +=
        std::string(one.id()) + " " + std::to_string(one.line) + " " + one.keyword + " " + one.found + "\n";
  });
  EXPECT_EQ(found,
            "deck.section 23 WELSPECS WELSPECS\n"
            "deck.keyword 25 NONSENSE NONSENSE, 2 times\n"
            "deck.quote 36 WEFAC 'W /\n"
            "deck.end 35 WEFAC \n"
            "deck.count 6 PORO 5\n"
            "deck.count 8 PERMX 7\n"
            "deck.operation 16 BOX \n"
            "deck.value 19 PERMY x\n"
            "deck.count 21 PERMZ 99999999999\n"
            "deck.value 30 DATES \n"
            "deck.value 31 DATES \n"
            "deck.value 34 TSTEP \n");
  // Samples are sound but for a long line.
  for (const std::string name : {"ARBOR/ARBOR", "CEDAR/CEDAR_R2", "HOLLIN/HOLLIN", "MAPLE/MAPLE"}) {
    int count = 0;
    checkDeck(Deck::open(examplePath("/data/") + name + ".DATA"), session, [&](const Diagnosis& one) {
      EXPECT_EQ(one.id(), "deck.column") << one.text();
      ++count;
    });
    EXPECT_LE(count, 1) << name;
  }
}

TEST(Deck, TheCalendarIsThatOfTheRun) {
  for (const std::string name : {"ARBOR/ARBOR", "CEDAR/CEDAR", "HOLLIN/HOLLIN", "MAPLE/MAPLE"}) {
    const lumbarn::Run run = lumbarn::Run::open(examplePath("/data/") + name);
    const DeckCalendar calendar = calendarOf(Deck::open(examplePath("/data/") + name + ".DATA"));
    const auto steps = run.steps();
    ASSERT_EQ(calendar.steps.size(), static_cast<std::size_t>(steps.back().number)) << name;
    for (const StepInfo& step : steps) {
      if (step.number == 0) continue;
      EXPECT_NEAR(calendar.steps[static_cast<std::size_t>(step.number) - 1].days, step.days, 1e-9) << name;
    }
  }
}

TEST(Deck, TimeIsInTheUnitsOfTheDeck) {
  const DeckFile file(
      "LAB\nSTART\n 1 JLY 2010 /\nSCHEDULE\nTSTEP\n 2*12 /\nDATES\n 3 JUL 2010 06:30:15.5 /\n/\nTSTEP\n 6 "
      "/\n");
  const DeckCalendar calendar = calendarOf(Deck::open(file.path));
  std::vector<double> days;
  for (const DeckStep& step : calendar.steps) days.push_back(step.days);
  ASSERT_EQ(days.size(), 4U);
  EXPECT_EQ(days[1], 1);
  EXPECT_NEAR(days[2], 2 + (6.5 * 3600 + 15.5) / 86400, 1e-12);
  EXPECT_NEAR(days[3] - days[2], 0.25, 1e-12);
}

TEST(Deck, OneValueIsChangedAndNothingElse) {
  const std::string text =
      "-- caf\xE9\r\nSCHEDULE\r\nWELSPECS\r\n 'A 1' 'G' 3*1 OIL / c\r\n B G 1\r\n 2 /\r\n/\r\n";
  const DeckFile file(text);
  const Deck deck = Deck::open(file.path);
  const auto changed = [&](const char* change) {
    TextSink sink;
    writeChanged(deck, DeckChange::parse(change), sink);
    return sink.text;
  };
  const auto with = [&](std::string_view old, std::string_view now) {
    std::string copy = text;
    return copy.replace(copy.find(old), old.size(), now);
  };
  EXPECT_EQ(changed("WELSPECS[1].4=7"), with("3*1", "1 7 1"));
  EXPECT_EQ(changed("welspecs[1].1=B"), with("'A 1'", "'B'"));
  EXPECT_EQ(changed("WELSPECS[1].6=X Y"), with("OIL", "'X Y'"));
  EXPECT_EQ(changed("WELSPECS[2].4=5"), with(" 2 /", " 5 /"));
  EXPECT_EQ(changed("WELSPECS[2].7=OIL"), with(" 2 /", " 2  2* OIL /"));
  for (const char* change : {"WELSPECS[3].1=A", "WELSPECS[1].2=it's", "WELSPECS[1]=3", "WELSPECS[0].1=3",
                             "X[1].1=2", "WELSPECS[1].99999=2"})
    EXPECT_THROW(changed(change), Error) << change;
}

TEST(Deck, BadFilesAreReportedAtLowCost) {
  const TemporaryFolder folder;
  const auto open = [&](const std::string& text) {
    std::ofstream(folder.file("R.DATA"), std::ios::binary) << text;
    std::string said;
    try {
      const Deck deck =
          Deck::open(folder.file("R.DATA"), {.report = [&](const Diagnosis& one) { said += one.text(); }});
      EXPECT_LE(deck.notes().size(), 10000U);
    } catch (const Error& error) {
      said += error.what();
    }
    return said;
  };
  EXPECT_NE(open(std::string("\xFF\xFER\0U\0N\0", 8)).find("byte 0: found UTF-16"), std::string::npos);
  EXPECT_NE(open("RUNSPEC\n" + std::string(100, '\0') + "A\n").find("characters 0"), std::string::npos);
  EXPECT_NE(open("GRID\nEQUALS\n 'PORO " + std::string(1 << 20, 'x') + "\n/\n").find("EQUALS, line 2"),
            std::string::npos);
  std::string many;
  for (int i = 0; i < 20000; ++i) many += "1 2 3\n";
  EXPECT_EQ(open(many), "");
  EXPECT_THROW(Deck::open(folder.file("NONE.DATA")), Error);
}

}  // namespace
}  // namespace lumbarn::test
