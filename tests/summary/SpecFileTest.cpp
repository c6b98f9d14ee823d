#include <array>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shapes/HeaderLayout.h"
#include "shapes/OnlyList.h"
#include "summary/SummaryVector.h"
#include "summary/qvEclipseSPEC.h"
#include "support/FaultySource.h"
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
    {{"RPR", "NORTH 12", 2, "BARSA"}, "REGIONS", "NORTH 12", "2", "RPR:NORTH 12:2"},
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
  run.start = {15, 7, 2003, 6, 30, 1500000};
  run.restart = "/runs/of the field/BASE";
  run.firstStep = 9;
  for (const Kind& kind : kinds) run.vectors.push_back(kind.vector);
  return run;
}

class SpecFile : public ::testing::Test {
 protected:
  bool read(const std::vector<std::byte>& bytes) {
    writeFile(path, bytes);
    spec = qvEclipseSPEC(session);
    bool qOK = false;
    if (spec.CheckSPECFile(path)) spec.ReadEclipseSPECFile(qOK);
    return qOK;
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
  EXPECT_EQ(spec.zStartDate, "15 JUL 2003");
  EXPECT_EQ(isoText(spec.start().value_or(Moment{})), "2003-07-15T06:30:01.5");
  EXPECT_EQ(spec.zRestartName, "/runs/of the field/BASE") << "a blank at the end of a piece of 8 must stay";
  EXPECT_EQ(spec.iRestartStep, 9);

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
}

TEST_F(SpecFile, InteheadStatesTheUnitSystemWhereUnitsDoNot) {
  for (const auto& [unit, system] : {std::pair{"DAYS", 4}, {" STB/DAY", 2}}) {
    SummaryBuilder run;
    run.intehead = 4;
    run.vectors = {{"TIME", ":+:+:+:+", 0, unit}};
    ASSERT_TRUE(read(run.spec(bigEndian)));
    EXPECT_EQ(spec.iUnitSystem, system) << unit;
  }
  bool met = true;  // the second record tells it from a restart file
  for (int n = 1; met; ++n) {
    session.clearDiagnoses();
    const FaultyFiles faults(ReadFault::Fails, n);
    const bool good = spec.CheckSPECFile(path);
    met = faults.met();
    EXPECT_NE(good, met);
    EXPECT_EQ(session.diagnoses().size(), met ? 1U : 0U);
  }
}

TEST_F(SpecFile, RecordsThatAreShortOrMissingAreReportedWithTheirByte) {
  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), bigEndian);
  out.texts("RESTART", std::vector<std::string>(9));
  out.texts("KEYWORDS", std::vector<std::string>{"TIME", "FOPR"});
  const std::size_t at = bytes.size();
  out.texts("WGNAMES", std::vector<std::string>{"A"});
  out.integers("STARTDAT", std::array{1, 1, 2015});
  ASSERT_TRUE(read(bytes));
  std::vector<std::pair<std::string, std::size_t>> places;
  for (const auto& one : session.diagnoses()) places.emplace_back(one.keyword, one.offset.value_or(0));
  EXPECT_THAT(places, ElementsAre(std::pair("WGNAMES", at), std::pair("UNITS", bytes.size()),
                                  std::pair("NUMS", bytes.size())));
}

/// Only existing hosts' headers of 24 bytes have 16-bit numbers.
TEST_F(SpecFile, MoreNamesThanThirtyTwoThousandLoad) {
  SummaryBuilder run;
  for (int well = 0; well < 32769; ++well)
    run.vectors.push_back({"WOPR", "W" + std::to_string(well), 0, "SM3"});
  ASSERT_TRUE(read(run.spec(bigEndian)));
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
}

}  // namespace
}  // namespace lumbarn
