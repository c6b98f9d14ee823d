#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "SelectionFixture.h"
#include "shapes/OnlyList.h"
#include "support/Text.h"

namespace lumbarn {
namespace {

using testing::ElementsAre;
using Lines = std::vector<std::string>;

constexpr std::int32_t summary = 13;

Lines linesOf(const ByteTable& bOnly) {
  Lines lines;
  for (std::size_t i = 1; i <= bOnly.entries(); ++i) {
    lines.push_back(std::string(bOnly.get(i, 1, 16)) + "/" + std::string(bOnly.get(i, 17, 40)));
  }
  return lines;
}

/// The selection by a list; with `fault` the report of one that ended it.
ECLIPSEINFO expanded(const Headers& headers, const ByteTable& bOnly, bool qOnly,
                     std::string_view fault = {}) {
  Session session;
  std::string report;
  session.faultReporter = [&](std::string_view text) { report = text; };
  ECLIPSEINFO xInfo;
  bool qOK = false;
  setECLIPSEINFOFromOnly(session, headers.xStore, headers.xVectors, bOnly, qOnly, xInfo, qOK);
  EXPECT_EQ(qOK, fault.empty());
  EXPECT_EQ(report, fault);
  return xInfo;
}

TEST(OnlyList, AClassWithoutMembersHasNoEntryOnceMembersAreNamed) {
  Headers headers;
  auto xInfo = headers.add("FIELD", "-").add("WELLS", "P1").add("WELLS", "P2").info();
  EXPECT_EQ(ActualInOnlyList(summary, xInfo), 2);
  xInfo.qAllMembers = false;
  classOf(xInfo, "WELLS").qMemberChosen[0] = false;
  ByteTable bOnly = listOf({"stale/stale", "FIELD/stays"});
  bool qOK = false;
  OnlyList(summary, xInfo, bOnly, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_THAT(linesOf(bOnly), ElementsAre("WELLS/P2", "FIELD/stays"));
  xInfo.qClassChosen[slot(4)] = false;
  bOnly = ByteTable(onlyWidth, 1);
  ExceptList(summary, xInfo, bOnly, qOK);
  EXPECT_FALSE(qOK) << "one row is too few";
  EXPECT_THAT(linesOf(bOnly), ElementsAre("FIELD/ALL"));
  bOnly = ByteTable(onlyWidth - 1, 9);
  OnlyList(summary, xInfo, bOnly, qOK);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(bOnly, ByteTable(onlyWidth - 1, 9));
}

TEST(OnlyList, ListsExpandToVectors) {
  const std::string longName(40, 'L');
  Headers headers;
  bool qOK = false;
  headers.xStore(attributeMember).StoreInit(1, 60, 1, qOK);
  headers.add("WELLS", "P1").add("WELLS", "P2").add("WELLS", "I*1").add("WELLS", longName + "1");
  headers.add("GROUPS", "P1").add("FIELD", "").add("MISCELLANEOUS", "").add("TRACERS", "P1");
  struct Row {
    std::string_view lines;
    bool qOnly;
    const char* mask;
  };
  // "MISCELLANEOUS" and unknown classes stay in any case; a first entry that is empty makes the list empty;
  // one without a member names nothing.
  const Row rows[] = {{"/,WELLS/ALL", true, "11111111"},
                      {"WELLS/ALL", true, "11110011"},
                      {"WELLS/ALL", false, "00001111"},
                      {"WELLS/*", true, "11110011"},
                      {"WELLS/p#", true, "11000011"},
                      {"WELLS/P[!1],FIELD/ALL", true, "01000111"},
                      {"WELLS/?1", false, "01111111"},
                      {"WELLS/I*1", true, "00100011"},
                      {"WELLS/*L1", false, "11101111"},
                      {"WELLS/NOBODY", true, "00000011"},
                      {"WELLS/", true, "00000011"},
                      {"WELLS/P1,WELLS/ALL", true, "11110011"},
                      {"WELLS/ALL,WELLS/P1", false, "00001111"},
                      {"MISCELLANEOUS/ALL", false, "11111111"},
                      {"LGR/ALL,GROUPS/P*", false, "11110111"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.lines);
    auto xInfo = expanded(headers, listOf(split(row.lines, ',')), row.qOnly);
    EXPECT_EQ(maskText(xInfo), row.mask);
    // The list made of a selection is the shorter one, and selects the same.
    ByteTable bOnly;
    bool qOnly = false;
    CreateOnlyList(summary, xInfo, bOnly, qOnly, qOK);
    const auto nOnly = ActualInOnlyList(summary, xInfo), nExcept = ActualInExceptList(summary, xInfo);
    EXPECT_TRUE(qOK && qOnly == (nOnly <= nExcept));
    EXPECT_EQ(bOnly.entries(), static_cast<std::size_t>(std::max(1, std::min(nOnly, nExcept))));
    EXPECT_TRUE(nOnly == 0 || maskText(expanded(headers, bOnly, qOnly)) == row.mask);
    CreateOnlyList(12, xInfo, bOnly, qOnly, qOK);
    EXPECT_TRUE(qOK && qOnly && bOnly == emptyOnlyList()) << "a type that has no lists";
  }
  EXPECT_EQ(maskText(expanded(headers, listOf({"WELLS/" + longName}), true)), "00010011");
}

TEST(OnlyList, AnUnknownClassWordIsAFault) {
  Headers headers;
  headers.add("FIELD", "").add("WELLS", "P1");
  Session session;
  auto xUnchanged = headers.info();
  bool qOK = true;
  ExpandOnlyList(session, headers.xStore, headers.xVectors, ByteTable(55, 1, 'X'), true, xUnchanged, qOK);
  EXPECT_FALSE(qOK) << "entries too short for a member";
  EXPECT_EQ(maskText(xUnchanged), "11");
  const auto bOnly = listOf({"FIELD/ALL", "TRACERS/P1", "WELLS/ALL"});
  constexpr auto fault = "Error:Subscript out of range (No.9) In [qvOnlyList (Code) (ExpandOnlyList)] ";
  EXPECT_EQ(maskText(expanded(headers, bOnly, true, fault)), "10") << "what came before it is applied";
  EXPECT_EQ(maskText(expanded(headers, bOnly, false, fault)), "01");
}

TEST(OnlyList, SaturationsAreChosenTogetherInRestartsOnly) {
  ECLIPSEINFO xInfo;
  const Lines names{"PRESSURE", "1SWAT", "SWAT", "SGAS", "RS", "SOIL"};
  xInfo.bSolutionNames = ByteTable(8, names.size());
  for (std::size_t i = 0; i < names.size(); ++i) xInfo.bSolutionNames.put(i + 1, 1, 8, names[i]);
  xInfo.nSolutionVectors = 6;
  const auto list = [&](std::int32_t iType, std::vector<bool> chosen, bool& qOnly) {
    xInfo.qSolutionChosen = std::move(chosen);
    ByteTable bOnly;
    bool qOK = false;
    CreateOnlyList(iType, xInfo, bOnly, qOnly, qOK);
    EXPECT_TRUE(qOK);
    return linesOf(bOnly);
  };
  bool qOnly = false;
  EXPECT_THAT(list(15, {false, false, false, true, false, false}, qOnly), ElementsAre("SGAS/"));
  EXPECT_THAT(list(11, {false, false, false, true, false, false}, qOnly),
              ElementsAre("1SWAT/", "SGAS/", "SOIL/"));
  EXPECT_TRUE(qOnly) << "three either way";
  EXPECT_THAT(list(11, {true, false, true, true, true, false}, qOnly), ElementsAre("1SWAT/"));
  EXPECT_FALSE(qOnly) << "a name that is chosen already needs no second vector";
  EXPECT_THAT(list(11, {true, false, false, false, false, false}, qOnly), ElementsAre("PRESSURE/"));
  xInfo.nSolutionVectors = 99;
  EXPECT_EQ(ActualInOnlyList(15, xInfo), 1) << "a count beyond the arrays";
}

TEST(OnlyList, TextItems) {
  const std::pair<OnlyItem, const char*> rows[] = {
      {{"AQUIFERS", "", "AAQR", "x", "3"}, "AAQR AQUIFER 3"},
      {{"COMPLETIONS", "", "COPR", "P1", "1 2 3"}, "COPR CELL 1 2 3 P1"},
      {{"REGIONS", "", "RPR", "", "2"}, "RPR REGN 2"},
      {{"BLOCKS", "", "BPR", "x", "1 2 3"}, "BPR CELL 1 2 3"},
      {{"FIELD", "", " FOPT ", "x", "1"}, "FOPT"},
      {{"WELLS", "", "WOPR", " P1", "1"}, "WOPR P1"},
      {{"LGR", "BLOCKS", "LBPR", "x", "1 2 3", "L1"}, "LBPR LGR L1 LOCAL 1 2 3"},
      {{"LGR", "COMPLETIONS", "LCOPR", "P1", "1 2 3", "L1"}, "LCOPR LGR L1 LOCAL 1 2 3 P1"},
      {{"LGR", "WELLS", "LWOPR", "P1", "1", "L1"}, "LWOPR LGR L1 P1"},
      {{"SEGMENTS", "", "SOFR", "P1", "7"}, "SOFR P1 7"}};
  for (const auto& [item, text] : rows) EXPECT_EQ(AddToOnlyList(item), text);
}

}  // namespace
}  // namespace lumbarn
