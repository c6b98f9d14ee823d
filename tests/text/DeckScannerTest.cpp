#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "deck/KeywordForms.h"
#include "support/Paths.h"
#include "support/Session.h"
#include "support/TemporaryFolder.h"
#include "support/Text.h"
#include "text/DeckRecords.h"

namespace lumbarn::test {
namespace {

/// What a scan gives, in short: "DIMENS:1 OIL GRID", and the notes as "NotClosed@12(PORO)".
struct Scan {
  std::string keywords;
  std::string notes;
  std::vector<DeckKeyword> all;
  DeckFiles files;
};

constexpr const char* noteNames[] = {"Unknown", "NotClosed", "Ends",    "Quote",   "Column",
                                     "Stray",   "OnLine",    "NoSlash", "Missing", "OtherCase",
                                     "Folder",  "Cycle",     "Binary",  "Alias"};

Scan scan(DeckScanner& scanner) {
  Scan result;
  std::map<std::uint32_t, std::uint64_t> covered;
  scanner.onSpan = [&](const DeckSpan& span) {
    EXPECT_EQ(span.begin, covered[span.file]) << "file " << span.file;
    covered[span.file] = span.end;
  };
  scanner.onNote = [&](const DeckNote& note) {
    result.notes += fmt::format("{}{}@{}", result.notes.empty() ? "" : " ",
                                noteNames[static_cast<int>(note.kind)], note.line);
  };
  DeckKeyword keyword;
  while (scanner.next(keyword)) {
    result.keywords += (result.keywords.empty() ? "" : " ") + keyword.name;
    if (keyword.records > 0) result.keywords += ":" + std::to_string(keyword.records);
    DeckRecords records(scanner.files(), keyword);
    DeckRecord record;
    std::int64_t count = 0;
    while (records.next(record)) count += record.closed || !keyword.closed;
    if (keyword.closed) {
      EXPECT_EQ(count, keyword.records) << keyword.name;
    }
    result.all.push_back(std::move(keyword));
  }
  result.files = scanner.files();
  for (std::uint32_t file = 0; file < result.files.size(); ++file) {
    if (result.files[file].state != DeckFile::State::Read) continue;
    EXPECT_EQ(covered[file], result.files[file].size) << result.files[file].path;
  }
  return result;
}

Scan scanText(const std::string& text) {
  static const KeywordForms forms;
  Session session;
  const auto bytes = std::as_bytes(std::span(text));
  DeckScanner scanner(std::make_shared<MemorySource>(std::vector<std::byte>(bytes.begin(), bytes.end())),
                      forms, session);
  return scan(scanner);
}

Scan scanFile(const std::string& path) {
  static const KeywordForms forms;
  Session session;
  DeckScanner scanner(path, forms, session);
  return scan(scanner);
}

std::string replaced(std::string text, std::string_view from, std::string_view to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size())
    text.replace(at, from.size(), to);
  return text;
}

struct Case {
  const char* text;
  const char* keywords;
  const char* notes;
};
constexpr Case cases[] = {
    // Names of wells stand alone on a line, and look like keywords.
    {"SCHEDULE\nWELSPECS\nOIL\n G 1 1 1* OIL /\nDATES G 2 /\n/\nDATES\n1 JAN 2000 /\n/\n",
     "SCHEDULE WELSPECS:2 DATES:1", ""},
    {"SCHEDULE\nWELOPEN\n W1 OPEN\n 4* /\n/\nNEWWORD\n 1 2\n 3 /\n W2 /\nTSTEP\n 3*1 /\n",
     "SCHEDULE WELOPEN:1 NEWWORD:2 TSTEP:1", "Unknown@6"},
    // Text behind keywords, keywords longer than 8 characters, lowercase, a "/" too many, commas, 0/.
    {"grid\nCOPY      FIELD   09:58  2 JAN 90\n 'permx   ' PERMY /\n/\n/\nPERMX\n1,2, 3*4 0/ "
     "five\nACTNUM\n4*0/\n",
     "GRID COPY:1 PERMX:1 ACTNUM:1", ""},
    {"SCHEDULE\nENDACTIONX\nWCONPROD -- the wells\n 'A' OPEN / text\n/\n", "SCHEDULE ENDACTIO WCONPROD:1",
     ""},
    // Comments hide slashes and quotes; quotes hide slashes and comments.
    {"GRID\nPORO\n 1 2 -- it's 1/2\n 3\n-- 4 /\n 5 /\nEQUALS\n 'A/B--C' 1 / don't\n/\n",
     "GRID PORO:1 EQUALS:1", ""},
    {"RUNSPEC\nTITLE\nWhat's / this -- DIMENS\nDIMENS\n1 1 1 /\n", "RUNSPEC TITLE:1 DIMENS:1", ""},
    // Counts of records: an empty one repeats a table, ends a list, is a default, divides branches.
    {"PROPS\nSWOF\n0 0 1 0\n1 1 0 0 /\n/\nPVTO\n1 2 3 4 /\n/\n1 2 3 4 /\n 5 6 7 /\n/\nROCK\n1 1 /\n",
     "PROPS SWOF:2 PVTO:4 ROCK:1", ""},
    {"SCHEDULE\nTUNING\n/\n/\n/\nNEXTSTEP\n/\nRPTSCHED\nDX PORO\n/\nUDQ\nDEFINE WX 2*A / 3\n + 1 /\n/\n",
     "SCHEDULE TUNING:3 NEXTSTEP:1 RPTSCHED:1 UDQ:1", ""},
    {"SUMMARY\nFOPR\nWOPR\nW1\nFOPT\n/\nBPR\n1 1 1 /\n2 2 2 /\n/\nRPR\n/\nFUXYZ\nWUXYZ\n/\nALL\nROFT\n1 2 "
     "/\n/\n",
     "SUMMARY FOPR WOPR:1 BPR:2 RPR:1 FUXYZ WUXYZ:1 ALL ROFT:1", ""},
    // Data that are missing or not closed.
    {"GRID\nPORO\n 1 2 3\nPERMX\n 4 /\nDX\nDY\n1 /\n", "GRID PORO PERMX:1 DX DY:1",
     "NotClosed@4 NotClosed@7"},
    {"SCHEDULE\nWELSPECS\n A B /\nEND\nPORO\n", "SCHEDULE WELSPECS:1 END", "NotClosed@4"},
    {"SCHEDULE\nWELSPECS\n A B\nSUMMARY\nFOPR\n", "SCHEDULE WELSPECS SUMMARY FOPR", "NotClosed@4"},
    {"GRID\nPORO\n 1 2 3\n", "GRID PORO", "Ends@2"},
    {"PROPS\nEQLNUM\n1 /\nGRIDUNIT\n'METRES /\n/\n", "PROPS EQLNUM:1 GRIDUNIT:1",
     "Unknown@2 Unknown@4 Quote@5"},
    {"NOECHO\n 1 2 /\nRUNSPEC\nWELLDIMS 4 4 /\n", "NOECHO RUNSPEC WELLDIMS:1", "Stray@2 OnLine@4"},
    // Parts left out.
    {"GRID\nSKIP\nPORO\n1 /\nENDSKIP\nSKIP300\nDX\n1/\nENDSKIP\nSKIP100\nDY\nENDSKIP\nDZ\n1/\nEND\nDZ\n",
     "GRID SKIP SKIP300 DX:1 ENDSKIP SKIP100 DZ:1 END", ""},
    {"RUNSPEC\nCOMPS\n3 /\nGRID\nSKIP300\nDX\n1/\nENDSKIP\nSKIP100\nDY\n1/\nENDSKIP\n",
     "RUNSPEC COMPS:1 GRID SKIP300 SKIP100 DY:1 ENDSKIP", ""},
    {"", "", ""},
    {"-- nothing\n\n", "", ""},
};

TEST(DeckScanner, FindsKeywordsAndTheEndsOfTheirData) {
  for (const Case& row : cases) {
    const std::string text = row.text;
    const std::string forms[] = {text, replaced(text, "\n", "\r\n"), replaced(text, " ", "\t"),
                                 replaced(text, "\n", "\n-- c / ' d\n\n"), "\xEF\xBB\xBF" + text};
    for (const std::string& form : forms) {
      // A title is whatever the next line is.
      if (text.find("TITLE") != text.npos && form.find("-- c") != form.npos) continue;
      const Scan result = scanText(form);
      EXPECT_EQ(result.keywords, row.keywords) << form;
      if (&form >= &forms[3]) continue;
      EXPECT_EQ(result.notes, row.notes) << form;
    }
    if (!text.ends_with('\n')) continue;
    EXPECT_EQ(scanText(text.substr(0, text.size() - 1)).keywords, row.keywords) << text;
  }
}

TEST(DeckScanner, SkipsArraysToTheLineThatEndsThem) {
  std::string text = "GRID\nPORO\n";
  for (int i = 0; i < 60000; ++i) text += i % 1000 == 7 ? "-- no / end\n" : "1.5E-2 2.5D+1 3*4 \n";
  const Scan result = scanText(text + "5 6/ PERMX\nDX\n1 /\n");
  EXPECT_EQ(result.keywords, "GRID PORO:1 DX:1");
  EXPECT_EQ(result.all[2].line, 60004);
  EXPECT_EQ(result.all[1].data.front().end, text.size() + 11);
  EXPECT_EQ(scanText(text + "PERMX\n1 /\n").notes, "NotClosed@60003");
  // A line beyond every buffer, and quotes that never close.
  EXPECT_EQ(
      scanText("GRID\nPORO\n" + std::string(3000000, ' ') + "'" + std::string(1000, 'x') + "\n/\nDX\n1/\n")
          .keywords,
      "GRID PORO:1 DX:1");
}

TEST(DeckScanner, GivesTheKeywordsThatAnIndependentParserCounted) {
  for (const std::string name : {"ARBOR", "HOLLIN", "MAPLE"}) {
    const Scan result = scanFile(examplePath("/data/") + name + "/" + name + ".DATA");
    std::ifstream csv(examplePath("/data/expected/") + name + ".deck.csv");
    std::string line;
    std::getline(csv, line);
    auto keyword = result.all.begin();
    const auto isOther = [](const std::string& word) { return word == "PATHS" || word == "END"; };
    while (std::getline(csv, line)) {
      while (keyword != result.all.end() && isOther(keyword->name)) ++keyword;
      ASSERT_NE(keyword, result.all.end()) << line;
      const auto fields = split(line, ',');
      EXPECT_EQ(fields[1] + " " + fields[2], keyword->name + " " + std::to_string(keyword->records));
      ++keyword;
    }
    while (keyword != result.all.end() && isOther(keyword->name)) ++keyword;
    EXPECT_EQ(keyword, result.all.end());
  }
}

TEST(DeckScanner, FollowsIncludesHoweverTheyAreNamed) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder.file("sub/deep"));
  const auto write = [&](const std::string& name, const std::string& text) {
    std::ofstream(folder.file(name)) << text;
  };
  write("RUN.DATA",
        "PATHS\n 'A' 'sub' /\n/\nINCLUDE\n 'sub/paths.inc' /\nGRID\nINCLUDE\n 'sub\\one.inc' /\nINCLUDE -- "
        "text\nsub/one.inc /\n"
        "INCLUDE\n$A/one.inc / x\nINCLUDE\n'sub/One.INC'\nINCLUDE\n '$DEEP/two.inc' -- c\n-- c\n /\nPORO\n"
        "INCLUDE\n'sub/values.inc' /\n5 /\nINCLUDE\n'none.inc' /\nINCLUDE\n'$X/one.inc' /\nINCLUDE "
        "'RUN.DATA' /\n"
        "INCLUDE\n'sub/end.inc' /\nDZ\n7 /\n");
  write("sub/paths.inc", "PATHS\n DEEP './sub/deep/' /\n/\n");
  write("sub/one.inc", "DX\n1 /\n");
  write("sub/deep/two.inc", "INCLUDE\n 'three.inc' /\nDY\n1 /\n");
  write("sub/deep/three.inc", "NTG\n1 /\nENDINC\nNTG\n1 /");
  write("sub/values.inc", "1 2\n3 4\n");
  write("sub/end.inc", "DR\n7 /\nEND\nDR\n");
  const Scan result = scanFile(folder.file("RUN.DATA"));
  EXPECT_EQ(result.keywords, "PATHS:1 PATHS:1 GRID DX:1 DX:1 DX:1 DX:1 NTG:1 ENDINC DY:1 PORO:1 DR:1 END");
  EXPECT_EQ(result.notes,
            "NoSlash@15 OtherCase@13 Folder@1 Missing@23 Alias@25 Missing@25 OnLine@27 Cycle@27");
  // Data of PORO lie in two files.
  const auto& poro = result.all[10];
  ASSERT_EQ(poro.data.size(), 2U);
  EXPECT_EQ(result.files[poro.data[0].file].name, "sub/values.inc");
  EXPECT_EQ(poro.data[1].line, 22);

  // As deep as anybody asks for.
  for (int i = 0; i < 1000; ++i)
    write("n" + std::to_string(i), fmt::format("INCLUDE\nn{} /\nDX\n1 /\n", i + 1));
  write("n1000", "DY\n1 /\n");
  const Scan deep = scanFile(folder.file("n0"));
  EXPECT_EQ(deep.all.size(), 1001U);
  EXPECT_EQ(deep.all.front().name, "DY");
}

TEST(DeckRecords, SplitsItemsAsTheyAreGiven) {
  const Scan result = scanText(
      "SCHEDULE\nWELSPECS\n 'W 1'  G1,3*2.5 2* 1* 'a*b' 5*'x' -- c\n 7 *ALL A*B 0*3 *\n"
      " 999999999999999999999*1 /\n/\n");
  DeckFiles files;
  const std::string text =
      "SCHEDULE\nWELSPECS\n 'W 1'  G1,3*2.5 2* 1* 'a*b' 5*'x' -- c\n 7 *ALL A*B 0*3 *\n"
      " 999999999999999999999*1 /\n/\n";
  const auto bytes = std::as_bytes(std::span(text));
  files.add({});
  files.keep(std::make_shared<MemorySource>(std::vector<std::byte>(bytes.begin(), bytes.end())));
  DeckRecords records(files, result.all[1]);
  DeckRecord record;
  ASSERT_TRUE(records.next(record));
  std::string items;
  for (const DeckItem& item : record.items)
    items += fmt::format("{}:{}x{}{}{} ", item.column, item.count, item.given ? record.value(item) : "-",
                         item.quoted ? "q" : "", item.line == 3 ? "" : "'");
  EXPECT_EQ(items,
            "2:1xW 1q 9:1xG1 12:3x2.5 18:2x- 21:1x- 24:1xa*bq 30:5xxq 2:1x7' 4:1x*ALL' 9:1xA*B' 17:1x-' "
            "2:9223372036854775807x1' ");
  EXPECT_EQ(record[3], "2.5");
  EXPECT_EQ(record[5], std::nullopt);
  EXPECT_EQ(record[7], std::nullopt);
  EXPECT_EQ(record[8], "a*b");
  EXPECT_EQ(record.line, 3);
  EXPECT_FALSE(records.next(record));

  EXPECT_EQ(deckNumber("2.5D+2"), 250);
  EXPECT_EQ(deckNumber("+.5"), 0.5);
  for (const char* word : {"", "A", "1..2", "1E", "D2", "nan", "inf", "1D", "--1"})
    EXPECT_FALSE(deckNumber(word)) << word;
}

}  // namespace
}  // namespace lumbarn::test
