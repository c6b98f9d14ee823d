#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "SelectionFixture.h"
#include "shapes/SourceData.h"
#include "support/Fault.h"

namespace lumbarn {
namespace {

using testing::ElementsAre;

TEST(EclipseInfo, ClassWords) {
  for (std::int32_t iClass = 1; iClass <= nClassSlots; ++iClass)
    EXPECT_EQ(getClassIndex(classWord(iClass)), iClass == 11 ? 0 : iClass);
  for (const char* word : {"IRF", "", "wells", "WELLS "}) EXPECT_EQ(getClassIndex(word), 0) << word;
  for (const auto iClass : {-1, 0, 13}) EXPECT_THROW(slot(iClass), Fault);
}

/// Two files of a chain: the earlier one has fewer wells, in another order.
TEST(Chain, ClassesAreMatchedInOrderAndMembersByName) {
  Headers later, earlier;
  bool qOK = false;
  later.add("FIELD", "").add("GROUPS", "G").add("REGIONS", "").add("WELLS", "P1").add("WELLS", "P2");
  earlier.add("WELLS", "P2").add("GROUPS", "H").add("WELLS", "P0").add("FIELD", "").add("REGIONS", "");
  auto xSource = later.info(), xTarget = earlier.info(), xRegions = earlier.info(), xOther = earlier.info();
  xSource.qAllMembers = false;
  classOf(xSource, "WELLS").qMemberChosen = {false, true};
  setPlotClassList(xSource, xTarget, qOK, true);
  EXPECT_EQ(maskText(xTarget), "10011") << "P2 is found by name, P0 and H were not chosen";
  EXPECT_FALSE(xTarget.qClassChosen[slot(getClassIndex("GROUPS"))]) << "no member of it was found";
  setPlotClassList(xSource, xOther, qOK, false);
  EXPECT_EQ(maskText(xOther), "11111") << "only classes are asked for";

  xSource = later.info();
  xSource.qClassChosen.fill(false);
  xSource.qClassChosen[slot(getClassIndex("REGIONS"))] = true;
  setPlotClassList(xSource, xRegions, qOK, true);
  EXPECT_EQ(maskText(xRegions), "00001");
  EXPECT_EQ(classOf(xRegions, "FIELD").nMembers, 0) << "a class before the match loses its members";
  EXPECT_EQ(classOf(xRegions, "WELLS").nMembers, 2) << "behind the match";
  EXPECT_TRUE(xRegions.qAllMembers && !xRegions.qAllClasses) << "no members were excluded";
  InitECLIPSECLASS(classOf(xRegions, "WELLS"), qOK);
  EXPECT_EQ(classOf(xRegions, "WELLS").nMembers, 0);
}

/// e empty, s 16 bits, l 32 bits, b boolean, d double, t text
std::string typesOf(const VariantTable& table) {
  std::string types;
  for (std::size_t i = 1; i <= table.size(); ++i) types += "eslbdt"[table(i).index()];
  return types;
}

TEST(SourceData, DefaultsHaveTheTypeThatHostsExpect) {
  SourceData vSourceData;
  bool qOK = false;
  InitSourceData(vSourceData, qOK);
  EXPECT_EQ(typesOf(vSourceData), "ttttttsssslllttssttttlltssltttllllllellllslsssssssstteellllllleeee");
  EXPECT_EQ(std::get<std::string>(vSourceData(19)), "Data");
  EXPECT_EQ(std::get<std::int32_t>(vSourceData(34)), -999);
  EXPECT_THROW(vSourceData(67), Fault);
  InitVTableData(vSourceData, qOK);
  EXPECT_EQ(typesOf(vSourceData), "ettsttsseel");
}

}  // namespace
}  // namespace lumbarn
