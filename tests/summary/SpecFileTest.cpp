#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shapes/HeaderLayout.h"
#include "shapes/OnlyList.h"
#include "summary/SummaryVector.h"
#include "summary/qvEclipseSPEC.h"
#include "support/SummaryBuilder.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;
using Vector = SummaryBuilder::Vector;

std::string field(const ByteTable& headers, std::size_t vector, std::int32_t attribute) {
  return ExtractAttribute(attribute, headers, vector);
}

/// One vector of every kind, and what its header must say.
struct Kind {
  Vector vector;
  const char* classWord;
  const char* member;
  const char* index;
  const char* name;
  bool kept = true;
};
const std::vector<Kind> kinds = {
    {{"TIME", ":+:+:+:+", 0, "DAYS"}, "MISCELLANEOUS", "", "", "TIME"},
    {{"FOPR", ":+:+:+:+", 0, "SM3/DAY"}, "FIELD", "", "", "FOPR"},
    {{"WOPR", "OP_1", 0, "SM3/DAY"}, "WELLS", "OP_1", "", "WOPR:OP_1"},
    {{"WOPR", ":+:+:+:+", 0, "SM3/DAY"}, "WELLS", "", "", "", false},
    {{"GOPR", "G1", 0, "SM3/DAY"}, "GROUPS", "G1", "", "GOPR:G1"},
    {{"BPR", "OP_1", 240, "BARSA"}, "BLOCKS", "OP_1", "10 4 3", "BPR:OP_1:10,4,3"},
    {{"BPR", "BLK 240", 240, "BARSA"}, "BLOCKS", "", "10 4 3", "BPR:10,4,3"},
    {{"RPR", "NORTH", 2, "BARSA"}, "REGIONS", "NORTH", "2", "RPR:NORTH:2"},
    {{"AAQR", "AQUIF1", 1, "SM3/DAY"}, "AQUIFERS", "", "1", "AAQR:1"},
    {{"#WSTATH1", "OP_1", 0, ""}, "MISCELLANEOUS", "OP_1", "", "#WSTATH1:OP_1"},
    {{"#FSTATH1", "FIELD", 0, ""}, "MISCELLANEOUS", "", "", "#FSTATH1"},
    {{"BPR", ":+:+:+:+", 301, "BARSA"}, "BLOCKS", "", "", "BPR"},
    {{"COPR", "OP_1", 240, "SM3/DAY"}, "COMPLETIONS", "OP_1", "10 4 3", "COPR:OP_1:10,4,3"},
    {{"COPR", ":+:+:+:+", 240, "SM3/DAY"}, "COMPLETIONS", "", "10 4 3", "", false},
    {{"RPR", ":+:+:+:+", 2, "BARSA"}, "REGIONS", "", "2", "RPR:2"},
    {{"ROFT", ":+:+:+:+", 3 + 17 * 32768, "SM3"}, "REGIONS", "", "3-7", "ROFT:3-7"},
    {{"RWFT", ":+:+:+:+", 0, "SM3"}, "IRF", "", "0", "RWFT:0"},
    {{"SOFR", "OP_1", 12, "SM3/DAY"}, "SEGMENTS", "OP_1", "12", "SOFR:OP_1:12"},
    {{"SOFR", "OP_1", 0, "SM3/DAY"}, "SEGMENTS", "OP_1", "0", "", false},
    {{"NPR", "NODE1", 0, "BARSA"}, "NODES", "NODE1", "", "NPR:NODE1"},
    {{"STEPTYPE", ":+:+:+:+", 0, ""}, "MISCELLANEOUS", "", "", "STEPTYPE"},
    {{"LWOPR", "OP_1", 0, "SM3/DAY", "LGR1", {2, 2, 1}}, "LGR", "OP_1", "", "LWOPR:LGR1:OP_1"},
    {{"LBPR", ":+:+:+:+", 0, "BARSA", "LGR1", {2, 2, 1}}, "LGR", "", "2 2 1", "LBPR:LGR1:2,2,1"},
    {{"LCOPR", "OP_1", 0, "SM3/DAY", "LGR2", {2, 2, 1}}, "LGR", "OP_1", "2 2 1", "LCOPR:LGR2:OP_1:2,2,1"},
};

SummaryBuilder everyKind() {
  SummaryBuilder run;
  for (const Kind& kind : kinds) run.vectors.push_back(kind.vector);
  return run;
}

bool readSpec(qvEclipseSPEC& spec, const std::string& path) {
  bool qOK = false;
  if (spec.CheckSPECFile(path)) spec.ReadEclipseSPECFile(qOK);
  return qOK;
}

std::vector<std::string> namesOf(const qvEclipseSPEC& spec) {
  std::vector<std::string> names;
  for (const auto& vector : summaryVectors(spec)) names.push_back(vector.name);
  return names;
}

class SpecFile : public ::testing::Test {
 protected:
  bool read(const std::vector<std::byte>& bytes) {
    writeFile(path, bytes);
    spec = qvEclipseSPEC(session);
    return readSpec(spec, path);
  }
  TemporaryFolder folder;
  std::string path = folder.file("RUN.SMSPEC");
  Session session;
  qvEclipseSPEC spec{session};
};

TEST_F(SpecFile, EveryKindOfVectorGetsItsClassIndexAndName) {
  ASSERT_TRUE(read(everyKind().spec(bigEndian)));
  EXPECT_EQ(spec.nVectors, static_cast<std::int32_t>(kinds.size()));
  EXPECT_TRUE(spec.qPerforations);
  EXPECT_EQ(spec.iUnitSystem, 1);
  EXPECT_TRUE(session.diagnoses().empty());

  spec.zOrigin = "Case 1";
  ByteTable headers;
  bool qOK = false;
  spec.getHeaders(headers, qOK);
  ASSERT_TRUE(qOK);
  const auto vectors = summaryVectors(spec);
  const auto fromHeaders = summaryVectors(headers);
  ASSERT_EQ(headers.entries(), vectors.size());
  EXPECT_EQ(session.part<SelectionState>().nOnly, static_cast<std::int32_t>(headers.entries()));
  std::size_t row = 0;
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    const Kind& kind = kinds[i];
    EXPECT_EQ(spec.qKeyMask[i], kind.kept) << i;
    if (!kind.kept) continue;
    SCOPED_TRACE(kind.name);
    ASSERT_LE(++row, headers.entries());
    const std::pair<std::int32_t, std::string> texts[] = {
        {attributeClass, kind.classWord},   {attributeMember, kind.member},
        {attributeIndex, kind.index},       {attributeVariable, kind.vector.mnemonic},
        {attributeUnits, kind.vector.unit}, {attributeSource, "Case 1"},
        {attributeDataKind, "Summary"},     {attributeLGRName, kind.vector.lgr}};
    for (const auto& [attribute, text] : texts) EXPECT_EQ(field(headers, row, attribute), text) << attribute;
    EXPECT_EQ(vectors[row - 1].name, kind.name);
    EXPECT_EQ(vectors[row - 1].column, i + 1);
    EXPECT_EQ(fromHeaders[row - 1].name, kind.name);
  }
  EXPECT_EQ(row, headers.entries());
  EXPECT_EQ(field(headers, 2, attributeVerbose), "Oil production rate");

  const AttributeStore& classes = spec.xStore(attributeClass);
  EXPECT_EQ(classes.useCount(classes.find("WELLS")), 1) << "without the dummy";
  EXPECT_EQ(classes.useCount(classes.find("SEGMENTS")), 2)
      << "a segment numbered 0 is masked, but its well is no dummy";
}

TEST_F(SpecFile, StartWithSecondsAndTheEarlierRun) {
  SummaryBuilder run;
  run.start = {15, 7, 2003, 6, 30, 1500000};
  run.restart = "/runs/of the field/BASE";
  run.firstStep = 9;
  run.vectors = {{"TIME"}};
  ASSERT_TRUE(read(run.spec(bigEndian)));
  EXPECT_EQ(spec.zStartDate, "15 JUL 2003");
  ASSERT_TRUE(spec.start());
  EXPECT_EQ(isoText(*spec.start()), "2003-07-15T06:30:01.5");
  EXPECT_EQ(spec.zRestartName, "/runs/of the field/BASE") << "a blank at the end of a piece of 8 must stay";
  EXPECT_EQ(spec.iRestartStep, 9);
}

TEST_F(SpecFile, IsRecognizedByItsSecondRecord) {
  const std::pair<std::vector<const char*>, bool> rows[] = {
      {{"RESTART"}, true},   {{"INTEHEAD", "RESTART"}, true}, {{"INTEHEAD", "DIMENS"}, true},
      {{"INTEHEAD"}, false}, {{"DIMENS", "RESTART"}, false},  {{"INTEHEAD", "LOGIHEAD", "RESTART"}, false}};
  for (const auto& [keywords, isSpecification] : rows) {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), bigEndian);
    for (const char* keyword : keywords) out.integers(keyword, std::vector<std::int32_t>{1, 2, 3, 4});
    writeFile(path, bytes);
    EXPECT_EQ(spec.CheckSPECFile(path), isSpecification) << keywords.back();
  }
  EXPECT_FALSE(spec.CheckSPECFile(folder.file("")));
}

TEST_F(SpecFile, ArraysOfWrongLengthAreUsedAsFarAsTheyGo) {
  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), bigEndian);
  const auto texts = [&](const char* keyword, std::vector<std::string> items) { out.texts(keyword, items); };
  texts("RESTART", {std::string(8, '\0'), "LEFTOVER"});
  out.integers("DIMENS", std::vector<std::int32_t>{99, 2000000000, 2000000000, 2000000000, 0, -7});
  texts("KEYWORDS", {"TIME", "WOPR", "BPR", "WOPT"});
  texts("KEYWORDS", {"FOPT"});
  texts("WGNAMES", {"", "P1"});
  out.integers("NUMS", std::vector<std::int32_t>{0, 0, 5, 0, 8, 8});
  out.integers("STARTDAT", std::vector<std::int32_t>{1, 13, 2001});
  ASSERT_TRUE(read(bytes));
  EXPECT_EQ(spec.nVectors, 4);
  EXPECT_EQ(spec.zRestartName, "");
  EXPECT_EQ(spec.iRestartStep, 0);
  EXPECT_EQ(spec.zStartDate, "1  2001");
  EXPECT_FALSE(spec.start());
  EXPECT_THAT(namesOf(spec), ElementsAre("TIME", "WOPR:P1", "BPR", "WOPT"))
      << "a grid of so many cells has no cell 5 that we could name";
  std::vector<std::string> told;
  for (const Diagnosis& diagnosis : session.diagnoses()) {
    told.push_back(diagnosis.keyword);
    EXPECT_TRUE(diagnosis.offset) << diagnosis.text();
  }
  EXPECT_THAT(told, ::testing::UnorderedElementsAre("KEYWORDS", "WGNAMES", "NUMS", "UNITS", "STARTDAT"));
}

TEST_F(SpecFile, EveryTruncationIsReportedAndKeepsWhatIsComplete) {
  const std::vector<std::byte> complete = everyKind().spec(bigEndian);
  std::size_t usable = 0;
  for (std::size_t size = complete.size(); size-- > 0;) {
    auto flipped = complete;
    flipped[size] ^= std::byte{0x84};
    const auto headersFit = [&] {
      ByteTable headers;
      bool qHeaders = false;
      spec.getHeaders(headers, qHeaders);
      return qHeaders;
    };
    if (!read(flipped)) {
      EXPECT_EQ(headersFit(), spec.qDamaged) << size;
    }
    session.clearDiagnoses();
    if (read({complete.begin(), complete.begin() + static_cast<std::ptrdiff_t>(size)})) continue;
    if (spec.zFileName.empty()) continue;  // too short to be recognized
    ASSERT_FALSE(session.diagnoses().empty()) << size;
    EXPECT_EQ(session.diagnoses().front().path, path);
    EXPECT_EQ(headersFit(), spec.qDamaged) << size;
    EXPECT_EQ(spec.nVectors, spec.qDamaged ? static_cast<std::int32_t>(kinds.size()) : 0) << size;
    usable += spec.qDamaged;
  }
  EXPECT_GT(usable, complete.size() / 4) << "behind KEYWORDS, which is in the first half, all can be used";
}

TEST_F(SpecFile, MaskIsRefinedButDummiesStayOut) {
  ASSERT_TRUE(read(everyKind().spec(bigEndian)));
  bool qOK = false;
  const auto kept = static_cast<std::size_t>(spec.nKeysUsed);
  std::vector<bool> mask(kept, false);
  mask[0] = mask[3] = mask[kept - 1] = true;  // the fourth that is in is the fifth of the file
  spec.setKeyMask(mask, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_THAT(namesOf(spec), ElementsAre("TIME", "GOPR:G1", "LCOPR:LGR2:OP_1:2,2,1"));

  for (const auto& wrong : {std::vector{true}, {true, false}}) {
    spec.setKeyMask(wrong, qOK);
    EXPECT_EQ(qOK, wrong.size() == 1) << "a mask of one entry is no selection";
    EXPECT_EQ(spec.nKeysUsed, 3);
  }
}

TEST_F(SpecFile, ConnectionVectorsComeWithTheirLengths) {
  SummaryBuilder run = everyKind();
  run.lengthUnit = "METRES";
  for (std::size_t i = 0; i < run.vectors.size(); ++i) run.vectors[i].length = static_cast<float>(i);
  ASSERT_TRUE(read(run.spec(bigEndian)));
  ByteTable headers;
  std::vector<bool> mask;
  std::vector<float> lengths;
  std::string unit;
  bool qOK = false;
  spec.getHorizontalHeaders(headers, mask, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_EQ(headers.entries(), 3U);
  EXPECT_EQ(std::ranges::count(mask, true), 3);
  spec.getHorizontalLengths(lengths, unit, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_EQ(unit, "METRES");
  EXPECT_THAT(lengths, ElementsAre(12, 13, 23)) << "the dummy too";
}

TEST(SpecUnits, FirstUnitThatDecidesDoesMetricOnlyWhenNoneDoes) {
  const std::pair<std::vector<std::string>, std::int32_t> rows[] = {
      {{"", "FRACTION"}, 2},      {{"SM3/DAY", "BARSA"}, 1},     {{"SM3", "psia"}, 2},
      {{"HOURS", "STB"}, 3},      {{"SM3", "ATMA", "STB"}, 4},   {{"DAYS", "MSCF", "HOURS"}, 2},
      {{"HOURS/M3", "KG/M3"}, 1}, {{" HOURS  ", "  SM3   "}, 3},
  };
  TemporaryFolder folder;
  for (const auto& [units, system] : rows) {
    SummaryBuilder run;
    for (const auto& unit : units) run.vectors.push_back({"FOPR", "", 0, unit});
    Session session;
    qvEclipseSPEC spec(session);
    ASSERT_TRUE(readSpec(spec, run.write(folder, "U", bigEndian)));
    EXPECT_EQ(spec.iUnitSystem, system) << units[1];
    run.intehead = 4;
    ASSERT_TRUE(readSpec(spec, run.write(folder, "U", bigEndian)));
    EXPECT_EQ(spec.iUnitSystem, units[1] == "FRACTION" ? 4 : system) << "INTEHEAD decides what units do not";
  }
}

/// Only existing hosts' headers of 24 bytes have 16-bit numbers.
TEST(SpecLimits, MoreNamesThanThirtyTwoThousandLoad) {
  TemporaryFolder folder;
  SummaryBuilder run;
  for (int well = 0; well < 32769; ++well)
    run.vectors.push_back({"WOPR", "W" + std::to_string(well), 0, "SM3"});
  Session session;
  qvEclipseSPEC spec(session);
  ASSERT_TRUE(readSpec(spec, run.write(folder, "L", bigEndian)));
  ByteTable headers;
  bool qOK = false;
  spec.getHeaders(headers, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_EQ(field(headers, 32769, attributeMember), "W32768");
  EXPECT_TRUE(session.diagnoses().empty());
  AttributeStores stores;
  spec.getStoreHeaders(stores, headers, qOK);
  EXPECT_FALSE(qOK);
  ASSERT_EQ(session.diagnoses().size(), 1U);
  EXPECT_EQ(session.diagnoses()[0].message, Message::HeaderNumbers);
}

TEST(SpecCells, CellNumbersRunThroughIFastest) {
  const std::vector<std::int32_t> dimens = {0, 10, 4, 3, 0, 0};
  std::vector<std::string> cells;
  bool qOK = false;
  qvEclipseSPEC().ConvertCellIndices(std::vector<std::int32_t>{1, 11, 41, 120, 121, 0}, dimens, cells, qOK);
  EXPECT_THAT(cells, ElementsAre("1 1 1", "1 2 1", "1 1 2", "10 4 3", "", ""));
  qvEclipseSPEC().ConvertCellIndices(std::vector<std::int32_t>{1}, std::vector<std::int32_t>{0, 10, 4}, cells,
                                     qOK);
  EXPECT_THAT(cells, ElementsAre(""));
}

}  // namespace
}  // namespace lumbarn
