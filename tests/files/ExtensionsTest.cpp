#include <gtest/gtest.h>

#include "files/Extensions.h"

namespace lumbarn {
namespace {

TEST(RestartExtension, FollowsTheTableOfNames) {
  struct Row {
    std::int32_t step;
    bool isShort, unified, formatted, isUpper, save, question;
    const char* expected;
  };
  const Row rows[] = {
      // Short names: definite digits from step 100 to 399 only.
      {5, true, false, false, false, false, false, "x##"},
      {5, true, false, false, false, false, true, "x??"},
      {100, true, false, false, false, false, false, "y00"},
      {150, true, false, false, false, false, false, "y50"},
      {299, true, false, true, false, false, true, "h99"},
      {205, true, false, false, false, true, false, "k05"},
      {350, true, false, false, false, false, false, "[xyz]50"},
      {350, true, false, true, true, false, false, "[FGH]50"},
      {399, true, false, false, false, true, true, "v99"},
      {450, true, false, false, false, false, false, "[xyz]##"},
      {450, true, false, true, false, false, true, "f??"},
      {-250, true, false, false, false, false, true, "x??"},
      // Long names: four digits as far as they go.
      {0, false, false, false, false, false, false, "x0000"},
      {9999, false, false, true, true, false, false, "F9999"},
      {10000, false, false, false, false, false, false, "x####"},
      {-1, false, false, true, false, true, true, "d????"},
      {7, false, false, false, false, true, false, "v0007"},
      // Unified: the step does not matter.
      {7, true, true, false, false, false, false, "urs"},
      {7, true, true, true, false, false, false, "fur"},
      {7, true, true, false, false, true, false, "sav"},
      {7, true, true, true, true, true, false, "FSA"},
      {7, false, true, false, true, false, false, "UNRST"},
      {7, false, true, true, false, false, false, "funrst"},
      {7, false, true, false, false, true, false, "save"},
      {7, false, true, true, false, true, false, "fsave"},
  };
  for (const Row& row : rows) {
    bool qOK = false;
    EXPECT_EQ(RestartExtension(row.step, row.isShort, row.unified, row.formatted, row.isUpper, 2, qOK,
                               row.save, row.question),
              row.expected);
    EXPECT_TRUE(qOK);
  }
  bool qOK = false;
  EXPECT_EQ(RestartExtension(7, false, false, false, false, 1, qOK, true, false), "save")
      << "kind 1 is unified";
  EXPECT_EQ(RestartExtension(7, false, false, false, false, 1, qOK, false, false), "x0007")
      << "for saves only";
}

TEST(Patterns, AreThoseOfTheExtensionsRow) {
  struct Row {
    const char *extension, *zeros, *search, *list;
  };
  const Row rows[] = {
      {"sms", "S00;T00;U00", "R.s??;R.t??;R.u??", "R.s##;R.t##;R.u##"},
      {"SMS", "S00;T00;U00", "R.S??;R.T??;R.U??", "R.S##;R.T##;R.U##"},
      {"smspec", "S0000", "R.s????", "R.s####"},
      {"SMSPEC", "S0000", "R.S????", "R.S####"},
      {"FSM", "A00;B00;C00", "R.A??;R.B??;R.C??", "R.A##;R.B##;R.C##"},
      {"fsmspec", "A0000", "R.a????", "R.a####"},
      {"URS", "X00;Y00;Z00", "R.X??;R.Y??;R.Z??", "R.X##;R.Y##;R.Z##"},
      {"fur", "F00;G00;H00", "R.f??;R.g??;R.h??", "R.f##;R.g##;R.h##"},
      {"UNRST", "X0000", "R.X????", "R.X####"},
      {"funrst", "F0000", "R.f????", "R.f####"},
      {"SLNSPEC", "SLN0000", "R.SLN????", "R.SLN####"},
      // Members of a set have patterns of their own in the first two notations, but not all letters.
      {"F07", "F00;G00;H00", "R.F??;R.G??;R.H??", "R.s##;R.t##;R.u##"},
      {"x0007", "X0000", "R.x????", "R.s##;R.t##;R.u##"},
      {"B0003", "B0000", "R.B????", "R.s##;R.t##;R.u##"},
      {"B03", "", "", "R.s##;R.t##;R.u##"},
      {"S0003", "", "", "R.s##;R.t##;R.u##"},
      // No set, or none that is listed by this extension.
      {"SAVE", "", "", "R.s##;R.t##;R.u##"},
      {"RSSPEC", "", "", "R.s##;R.t##;R.u##"},
      {"", "", "", "R.s##;R.t##;R.u##"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.extension);
    EXPECT_EQ(GetFilePatterns(row.extension), row.zeros);
    EXPECT_EQ(GetFilePatternsForListBox("R", row.extension), row.search);
    std::string zMult = "old";
    GetExtensionPattern("R", zMult, FileName(std::string("dir/other.") + row.extension));
    EXPECT_EQ(zMult, row.list);
  }
}

TEST(Extensions, SayKindFormAndStep) {
  struct Row {
    const char* extension;
    FileKind kind;
    bool formatted;
    std::int32_t step;
  };
  using enum FileKind;
  const Row rows[] = {
      {"fsm", SummarySpec, true, -1},     {"FUS", Summary, true, -1},
      {"a0012", Summary, true, 12},       {"T07", Summary, false, 107},
      {"C99", Summary, true, 299},        {"z01", Restart, false, 201},
      {"i33", Save, true, 233},           {"D0004", Save, true, 4},
      {"SLN0010", Streamline, false, 10}, {"slnspec", StreamlineSpec, false, -1},
      {"INSPEC", Inspec, false, -1},      {"FEGRID", EGrid, true, -1},
      {"SLN01", Unknown, false, -1},      {"S003", Unknown, false, -1},
      {"S00003", Unknown, false, -1},     {"T0001", Unknown, false, -1},
      {"S00A1", Unknown, false, -1},      {"", Unknown, false, -1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.extension);
    const ExtensionMeaning meaning = meaningOf(row.extension);
    EXPECT_EQ(nameOf(meaning.kind), nameOf(row.kind));
    EXPECT_EQ(meaning.formatted, row.formatted);
    EXPECT_EQ(meaning.step, row.step);
  }
}

TEST(Extensions, MultipleFormsAreTold) {
  struct Row {
    const char* extension;
    std::int32_t count;
    const char* letter;
    std::int32_t number;
  };
  const Row rows[] = {{"X0150", 4, "X", 150}, {"y50", 2, "y", 50},  {"sln0003", 4, "sln", 3},
                      {"Q12", 2, "Q", 12},    {"SLN03", 0, "", -1}, {"X001", 0, "", -1},
                      {"SMS", 0, "", -1},     {"XY00", 0, "", -1},  {"X-001", 0, "", -1},
                      {"X00 1", 0, "", -1},   {"", 0, "", -1}};
  for (const Row& row : rows) {
    std::string zLetter = "old";
    std::int32_t nDigits = 77;
    EXPECT_EQ(checkMultipleExtension(row.extension, zLetter, nDigits), row.count) << row.extension;
    EXPECT_EQ(zLetter, row.letter);
    EXPECT_EQ(nDigits, row.number);
  }
}

TEST(Extensions, NumericPartTakesTheHundredsFromTheLetter) {
  const std::pair<const char*, std::int32_t> rows[] = {
      {"RUN.Y50", 150}, {"RUN.X0150", 150}, {"a.b/RUN.V2.f07", 7}, {"/d/RUN 1.SLN0012", 12}, {"RUN.k99", 299},
      {"RUN.Q12", 12},  {"RUN.UNRST", -1},  {"RUN", -1},           {"d.X0003/RUN", -1},      {"", -1},
  };
  for (const auto& [file, step] : rows) EXPECT_EQ(GetNumericPartOfFileName(file), step) << file;
}

}  // namespace
}  // namespace lumbarn
