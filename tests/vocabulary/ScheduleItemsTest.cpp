#include <gtest/gtest.h>

#include "vocabulary/ScheduleItems.h"

namespace lumbarn {
namespace {

TEST(ScheduleInfo, IsReadOffTheMnemonic) {
  struct Row {
    const char* vector;
    int iClass, iCode, iPhase, iNumber = -1;
    const char* after = nullptr;  ///< the vector afterwards, where it changes
  };
  const Row rows[] = {{"WOPR", 9, 44, 1},
                      {"FGITH   ", 4, 40, 2},
                      {"WALQ", 9, 74, -1},
                      {"WMCTL", 9, 27, -1},
                      {"LWWCTH", 9, 36, -1},
                      {"LFVIT", 4, 49, 2},
                      {"WOPRX", 9, -1, -1},
                      {"W", 9, -1, -1},
                      {"WXMF_A", 9, 83, -1},
                      {"WXMF_", 9, 83, -1},
                      {"WXMF_4294967297", 9, 83, -1},
                      {"GOPR", 5, -1, -1},
                      {"AAQR", 1, -1, -1},
                      {"CGIR_1", 3, -1, -1},
                      {"ROPR", 8, -1, -1},
                      {"SPR", 10, -1, -1},
                      {"NPR", 7, -1, -1},
                      {"LBPR", 2, -1, -1},
                      {"LLWOPR", 6, -1, -1},
                      {"L", 7, -1, -1},
                      {"", 7, -1, -1},
                      {"WXMF_2", 9, 83, -1, 2, "XMF"},
                      {"LWZMF_12  ", 9, 85, -1, 12, "ZMF"},
                      {"FTPR_3", 4, -1, -1, 3, "TPR"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.vector);
    std::string vector = row.vector;
    std::int32_t iClass = 0, iCode = 0, iPhase = 0, iNumber = 0;
    bool qOK = false;
    scheduleVectorInfo(vector, iClass, iCode, iPhase, iNumber, qOK);
    EXPECT_TRUE(qOK);
    EXPECT_EQ(std::tuple(iClass, iCode, iPhase, iNumber),
              std::tuple(row.iClass, row.iCode, row.iPhase, row.iNumber));
    EXPECT_EQ(vector, row.after ? row.after : row.vector);
  }
}

}  // namespace
}  // namespace lumbarn
