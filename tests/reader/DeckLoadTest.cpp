#include <cmath>
#include <filesystem>
#include <span>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "deck/qvEclipseDat.h"
#include "support/Host.h"
#include "support/ModelRun.h"
#include "support/Paths.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using namespace test;

std::string shown(const DeckScalar& value) {
  return std::visit([](const auto& held) { return fmt::format("{}", held); }, value);
}

const char* const deckText =
    "RUNSPEC\nTITLE\n Case\nDIMENS\n 1 1 1 "
    "/\nOIL\nWATER\nMETRIC\nDUALPORO\nUNIFOUT\nEQLDIMS\n/\nROCKCOMP\n/\n"
    "GRID\nPINCH\n 0.2 /\nPINCHXY\n 1 /\nMAPAXES\n 1 2 3 4 5 6 /\nFAULTS\n A 1 1 1 1 1 1 X /\n/\n"
    "COORD\n 10 20 0 10 20 1 11 20 0 11 20 1\n 10 21 0 10 21 1 11 21 0 11 21 1 /\nZCORN\n 4*0 4*1 /\n"
    "EDIT\nPORV\n 1 /\nSOLUTION\nEQUIL\n 2000 /\nSUMMARY\nFOPR\nINCLUDE\n '/x/W.SUM' /\nINCLUDE\n A.INC /\n"
    "SCHEDULE\nDRSDT\n 0.5 /\nEND\n";

TEST(DeckLoad, EveryOperationAnswersFromTheDeck) {
  using Ask = std::string (*)(qvEclipseReader&);
  struct Row {
    const char* operation;
    Ask ask;
    const char* answer;
    const char* without;  // no deck held
  };
  using Reader = qvEclipseReader;
  using Texts = std::vector<std::string>;
  using Numbers = std::vector<std::int32_t>;
  const Row rows[] = {
      {"IsInitialised", [](Reader& r) { return fmt::format("{}", r.IsInitialised(25)); }, "true", "false"},
      {"EclipseKeyword",
       [](Reader& r) {
         return fmt::format("{} {} {} {}", r.EclipseKeyword("DATES"), r.EclipseKeyword("DATES", 8),
                            r.EclipseKeyword("DATES", 2), r.EclipseKeyword("FIPABC", 5));
       },
       "true true false true", "true true false true"},
      {"GetEclipseDAT",
       [](Reader& r) {
         Texts words;
         std::int32_t count = 0;
         bool qOK = false;
         r.GetEclipseDAT(1, "EQLDIMS", words, count, qOK);
         return fmt::format("{} {} {}", qOK, count, fmt::join(words, ","));
       },
       "true 5 1,100,20,1,20", "false 0 "},
      {"GetEclipseEQUIL",
       [](Reader& r) {
         std::vector<float> values;
         bool qOK = false;
         r.GetEclipseEQUIL(1, values, qOK);
         return fmt::format("{} {}", qOK, values);
       },
       "true [2000]", "false []"},
      {"GetEclipseKeyWordArgument",
       [](Reader& r) {
         return shown(r.GetEclipseKeyWordArgument("TITLE")) + ' ' +
                shown(r.GetEclipseKeyWordArgument("DRSDT")) + ' ' +
                shown(r.GetEclipseKeyWordArgument("SIGMA"));
       },
       " Case 0.5 -32768", "false false false"},
      {"getModelProperty",
       [](Reader& r) {
         std::string all;
         for (std::int32_t code = 0; code <= 37; ++code)
           all += shown(r.getModelProperty(code)).substr(0, 1) + ' ';
         return all;
       },
       " 1 1 1 f t f t f f f f f f  f f f f f  0 1  t f f f f f f f  f 1 1 t  ",
       "f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f "},
      {"getPINCH NumberPINCH",
       [](Reader& r) {
         float threshold = 0;
         double gap = 0;
         std::string a, b, c;
         bool qOK = false;
         r.getPINCH(1, threshold, a, gap, b, c, qOK);
         return fmt::format("{} {} {} {}{}{} {}", qOK, r.NumberPINCH(), threshold, a, b, c, gap);
       },
       "true 1 0.2 GAPTOPBOTTOP 1e+20", "false 0 0  0"},
      {"getPINCHXY PinchXY",
       [](Reader& r) {
         float x = 0, y = 0;
         bool qOK = false;
         r.getPINCHXY(x, y, qOK);
         return fmt::format("{} {} {} {}", qOK, r.PinchXY(), x, y);
       },
       "true true 1 0.001", "false false 0 0"},
      {"getMAPAXES",
       [](Reader& r) {
         std::array<double, 6> axes{};
         bool qOK = false;
         r.getMAPAXES(axes, qOK);
         return fmt::format("{} {}", qOK, axes);
       },
       "true [1, 2, 3, 4, 5, 6]", "false [0, 0, 0, 0, 0, 0]"},
      {"getFAULTS GetFaultConnections",
       [](Reader& r) {
         Texts names, faces;
         Numbers segments, i1, i2, j1, j2, k1, k2;
         std::vector<float> multipliers;
         std::int32_t count = 0, most = 0;
         bool qOK = false, qSegments = false, qNone = false;
         r.getFAULTS(names, count, segments, multipliers, most, qOK);
         r.GetFaultConnections(2, i1, i2, j1, j2, k1, k2, faces, qNone);
         r.GetFaultConnections(1, i1, i2, j1, j2, k1, k2, faces, qSegments);
         return fmt::format("{} {} {} {} {} {} {} {} {}", qOK, count, names, most, qSegments, qNone, i1, k2,
                            faces);
       },
       "true 1 [\"A\"] 1 true false [1] [1] [\"X\"]", "false 0 [] 0 false false [] [] []"},
      {"getEDITLines",
       [](Reader& r) {
         Texts lines;
         std::int32_t count = 0;
         bool qOK = false;
         r.getEDITLines(lines, count, qOK);
         return fmt::format("{} {} {}", qOK, count, lines);
       },
       "true 3 [\"EDIT\", \"PORV\", \" 1 /\"]", "false 0 []"},
      {"GetScheduleLines",
       [](Reader& r) {
         Texts lines;
         Numbers pointers;
         std::int32_t count = 0, nPointers = 0;
         bool qOK = false, qPointers = false;
         r.GetScheduleLines(lines, count, qOK);
         r.GetScheduleLinesWithPointers(lines, count, pointers, nPointers, qPointers);
         return fmt::format("{} {} {} {} {}", qOK, qPointers, count, pointers, nPointers);
       },
       "true true 10 [0, 0, 0, 0, 0, 0, 1, 7, 10] 9", "false false 0 [] 0"},
      {"getIncludeFiles NumIncludeFiles",
       [](Reader& r) {
         Texts files;
         std::int32_t count = 0;
         bool qOK = false;
         r.getIncludeFiles(files, count, qOK);
         return fmt::format("{} {} {} {}", qOK, count, files, r.NumIncludeFiles());
       },
       "true 2 [\"/x/W.SUM\", \"..\\\\A.INC\"] 2", "false 0 [] 0"},
      {"getIncFileExcludes NumIncFileSpecsToExclude",
       [](Reader& r) {
         Texts files;
         std::int32_t count = 0;
         bool qOK = false;
         r.getIncFileExcludes(files, count, qOK);
         return fmt::format("{} {} {} {}", qOK, count, files, r.NumIncFileSpecsToExclude());
       },
       "true 1 [\"*.INC\"] 1", "true 1 [\"*.INC\"] 1"},
      {"FMTOUT UNIFOUTRST", [](Reader& r) { return fmt::format("{} {}", r.FMTOUT(), r.UNIFOUTRST()); },
       "false true", "false false"},
      {"model flags",
       [](Reader& r) {
         return fmt::format("{:d}{:d}{:d} {} {} {:d}{:d}{:d}{:d}", r.Oil(), r.Gas(), r.Water(),
                            r.NumberPhases(), r.Units(), r.DualPorosity(), r.RockCompaction(), r.Miscible(),
                            r.Polymer());
       },
       "101 2 1 1100", "000 0 0 0000"},
      {"CreateCorners getCorners getOffSet",
       [](Reader& r) {
         XYData corners;
         std::int32_t cells = 0;
         double x = 0, y = 0;
         bool qMade = false, qCorners = false, qOffSet = false;
         r.CreateCorners(1, qMade);
         r.getCorners(1, corners, cells, qCorners);
         r.getOffSet(x, y, qOffSet);
         const float last = qCorners ? corners.column(1)[22] : 0;
         return fmt::format("{} {} {} {} {} {} {} {}", qMade, qCorners, qOffSet, r.NumberGrids(), cells, x, y,
                            last);
       },
       "true true true 1 1 10 20 1", "false false false 0 0 0 0 0"},
      {"SetACTNUM",
       [](Reader& r) {
         bool qOK = false;
         r.SetACTNUM(1, {0}, qOK);
         return fmt::format("{} {}", qOK,
                            r.Deck() ? activityOf(r.Deck()->contents().grids.records[0])[0] : -1);
       },
       "true 0", "false -1"},
  };
  const TemporaryFolder folder;
  const std::string path = folder.file("A.DATA");
  writeFile(path, std::as_bytes(std::span(std::string_view(deckText))));
  Host host(path, 25), none;
  for (Host* each : {&host, &none}) {
    bool qOK = false;
    each->reader.setIncFileExcludes({"*.INC"}, qOK);
    each->reader.OffSet = each->reader.RecordScheduleDeck = true;
  }
  EXPECT_TRUE(host.reader.CheckECLIPSEFileType(path, 25));
  ASSERT_TRUE(host.run());
  for (const Row& row : rows) {
    EXPECT_EQ(row.ask(host.reader), row.answer) << row.operation;
    EXPECT_EQ(row.ask(none.reader), row.without) << row.operation;
  }
  EXPECT_EQ(host.reader.zOrigin, "A");
  EXPECT_TRUE(host.faults.empty() && none.faults.empty());
  host.reader.DeleteObject(25);
  EXPECT_FALSE(host.reader.IsInitialised(25));
}

TEST(DeckLoad, OptionsAndRecognition) {
  const TemporaryFolder folder;
  const std::string path = folder.file("A.DATA");
  writeFile(path, std::as_bytes(std::span(std::string_view(deckText))));
  Host host(path, 25);
  host.reader.RUNSPECOnly = true;
  host.reader.RecordScheduleDeck = false;
  EXPECT_TRUE(host.run() && host.reader.Oil() && host.reader.NumberGrids() == 0);
  bool qOK = true;
  host.reader.setIncFileExcludes({"*.INC"}, qOK);
  host.reader.RUNSPECOnly = host.reader.ProcessCorners = false;
  EXPECT_TRUE(host.run() && host.reader.NumberGrids() == 1);
  host.reader.CreateCorners(1, qOK);
  EXPECT_TRUE(!qOK && host.reader.Deck()->IsKeyWord("ZCORN"));
  EXPECT_EQ(host.reader.NumIncludeFiles(), 1);  // exclusions count only for who keeps lines

  FileDescriptor file{path};
  host.reader.whichtype = 0;
  EXPECT_TRUE(host.reader.CheckifEclipse(file) && file.iType == 25 && host.reader.whichtype == 25);
  writeFile(path, std::as_bytes(std::span(std::string_view("-- no deck\n"))));
  EXPECT_FALSE(host.run());
  EXPECT_EQ(host.lastDiagnosis().message, Message::FileType);
  EXPECT_FALSE(host.reader.IsInitialised(25) || host.reader.Oil());

  // With both held, the type asked for decides.
  const ModelRun model(everyWriter[0], bigEndian);
  Host both(model.initPath, 15);
  ASSERT_TRUE(both.run());
  const bool ofInit = both.reader.Gas();
  writeFile(path, std::as_bytes(std::span(std::string_view("RUNSPEC\nDIMENS\n 1 1 1 /\nWATER\n"))));
  ASSERT_TRUE(both.load(path, 25));
  EXPECT_TRUE(ofInit && !both.reader.Gas() && both.reader.Water());
  both.reader.whichtype = 15;
  EXPECT_TRUE(both.reader.Gas());
}

TEST(DeckLoad, CornersOfASampleAreThoseOfItsGridFile) {
  Host host(examplePath("/data/HOLLIN/HOLLIN.DATA"), 25);
  host.reader.ProcessAll = true;
  ASSERT_TRUE(host.run());
  EXPECT_TRUE(host.complaints().empty()) << fmt::format("{}", host.complaints());
  XYData corners;
  std::int32_t cells = 0;
  bool qOK = false;
  host.reader.CreateCorners(1, qOK);
  host.reader.getCorners(1, corners, cells, qOK);
  ASSERT_TRUE(qOK && cells == 16 * 12 * 5);

  Host file(examplePath("/data/HOLLIN/HOLLIN.EGRID"), 23);
  file.reader.CompressOnLoad = false;
  std::shared_ptr<Hadrick> grid;
  ASSERT_TRUE(file.run());
  file.reader.GetGRIDData(1, grid, qOK);
  std::vector<float> expected(static_cast<std::size_t>(cells) * 24);
  grid->cellCorners(1, expected);
  int different = 0;
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const float value = corners.values()[i];
    if (value != expected[i] && std::nextafter(value, expected[i]) != expected[i]) ++different;
  }
  EXPECT_EQ(different, 0);
  // Without ProcessAll the arrays in the include of GRID stay unread.
  host.reader.ProcessAll = false;
  EXPECT_TRUE(host.run() && !host.reader.Deck()->IsKeyWord("COORD") && host.reader.NumIncludeFiles() == 0);
}

}  // namespace
}  // namespace lumbarn
