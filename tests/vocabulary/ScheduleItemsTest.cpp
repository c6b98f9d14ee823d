#include <ostream>

#include <gtest/gtest.h>

#include "vocabulary/ScheduleItems.h"

namespace lumbarn {
namespace {

struct Item {
  const char* vector;
  int iClass;
  int iCode;
  int iPhase;
  int iNumber = -1;
  const char* after = nullptr;  ///< the vector afterwards, where it changes
};
std::ostream& operator<<(std::ostream& out, const Item& row) { return out << '"' << row.vector << '"'; }

class ScheduleInfo : public testing::TestWithParam<Item> {};

TEST_P(ScheduleInfo, IsReadOffTheMnemonic) {
  const auto& row = GetParam();
  std::string vector = row.vector;
  std::int32_t iClass = 0;
  std::int32_t iCode = 0;
  std::int32_t iPhase = 0;
  std::int32_t iNumber = 0;
  bool qOK = false;
  scheduleVectorInfo(vector, iClass, iCode, iPhase, iNumber, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(iClass, row.iClass);
  EXPECT_EQ(iCode, row.iCode);
  EXPECT_EQ(iPhase, row.iPhase);
  EXPECT_EQ(iNumber, row.iNumber);
  EXPECT_EQ(vector, row.after ? row.after : row.vector);
}

INSTANTIATE_TEST_SUITE_P(WellsAndField, ScheduleInfo,
                         testing::Values(Item{"WOPR", 9, 44, 1}, Item{"FGITH   ", 4, 40, 2},
                                         Item{"WALQ", 9, 74, -1}, Item{"WGLIR", 9, 74, -1},
                                         Item{"WMCTL", 9, 27, -1}, Item{"LWWCTH", 9, 36, -1},
                                         Item{"LFVIT", 4, 49, 2}, Item{"WOPRX", 9, -1, -1},
                                         Item{"W", 9, -1, -1}));
INSTANTIATE_TEST_SUITE_P(Numbered, ScheduleInfo,
                         testing::Values(Item{"WXMF_2", 9, 83, -1, 2, "XMF"},
                                         Item{"LWZMF_12  ", 9, 85, -1, 12, "ZMF"},
                                         Item{"FTPR_3", 4, -1, -1, 3, "TPR"}, Item{"WXMF_A", 9, 83, -1},
                                         Item{"WXMF_", 9, 83, -1}, Item{"WXMF_4294967297", 9, 83, -1}));
INSTANTIATE_TEST_SUITE_P(ClassesThatGoNoFurther, ScheduleInfo,
                         testing::Values(Item{"GOPR", 5, -1, -1}, Item{"BPR", 2, -1, -1},
                                         Item{"AAQR", 1, -1, -1}, Item{"CGIR_1", 3, -1, -1},
                                         Item{"ROPR", 8, -1, -1}, Item{"SPR", 10, -1, -1},
                                         Item{"NPR", 7, -1, -1}, Item{"TIME", 7, -1, -1},
                                         Item{"LBPR", 2, -1, -1}, Item{"LLWOPR", 6, -1, -1},
                                         Item{"L", 7, -1, -1}, Item{"", 7, -1, -1}));

}  // namespace
}  // namespace lumbarn
