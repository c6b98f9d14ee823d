#include <gtest/gtest.h>

#include "files/Extensions.h"

namespace lumbarn {
namespace {

TEST(RestartExtension, FollowsTheTableOfNames) {
  struct Row {
    std::int32_t step;
    std::string_view flags;  // s short, u unified, f formatted, U upper case, v save, ? question marks
    const char* expected;
  };
  // Short names have definite digits from step 100 to 399 only, long ones as far as four digits go; in a
  // unified file the step does not matter.
  const Row rows[] = {
      {5, "s", "x##"},       {5, "s?", "x??"},      {100, "s", "y00"},       {299, "sf?", "h99"},
      {205, "sv", "k05"},    {350, "s", "[xyz]50"}, {350, "sfU", "[FGH]50"}, {399, "sv?", "v99"},
      {450, "s", "[xyz]##"}, {450, "sf?", "f??"},   {-250, "s?", "x??"},     {0, "", "x0000"},
      {9999, "fU", "F9999"}, {10000, "", "x####"},  {-1, "fv?", "d????"},    {7, "v", "v0007"},
      {7, "su", "urs"},      {7, "suf", "fur"},     {7, "suv", "sav"},       {7, "sufUv", "FSA"},
      {7, "uU", "UNRST"},    {7, "uf", "funrst"},   {7, "uv", "save"},       {7, "ufv", "fsave"}};
  bool qOK = false;
  for (const auto& [step, flags, expected] : rows) {
    const auto has = [set = flags](char flag) { return set.find(flag) != std::string_view::npos; };
    EXPECT_EQ(RestartExtension(step, has('s'), has('u'), has('f'), has('U'), 2, qOK, has('v'), has('?')),
              expected);
    EXPECT_TRUE(qOK);
  }
  EXPECT_EQ(RestartExtension(7, false, false, false, false, 1, qOK, true, false), "save")
      << "kind 1 is unified";
  EXPECT_EQ(RestartExtension(7, false, false, false, false, 1, qOK, false, false), "x0007")
      << "for saves only";
}

TEST(Patterns, AreThoseOfTheExtensionsRow) {
  struct Row {
    const char *extension, *zeros, *search, *list;
  };
  // Members of a set have patterns of their own in the first two notations, but not all letters.
  const Row rows[] = {
      {"sms", "S00;T00;U00", "R.s??;R.t??;R.u??", "R.s##;R.t##;R.u##"},
      {"SMSPEC", "S0000", "R.S????", "R.S####"},
      {"FSM", "A00;B00;C00", "R.A??;R.B??;R.C??", "R.A##;R.B##;R.C##"},
      {"URS", "X00;Y00;Z00", "R.X??;R.Y??;R.Z??", "R.X##;R.Y##;R.Z##"},
      {"funrst", "F0000", "R.f????", "R.f####"},
      {"SLNSPEC", "SLN0000", "R.SLN????", "R.SLN####"},
      {"F07", "F00;G00;H00", "R.F??;R.G??;R.H??", "R.s##;R.t##;R.u##"},
      {"x0007", "X0000", "R.x????", "R.s##;R.t##;R.u##"},
      {"B0003", "B0000", "R.B????", "R.s##;R.t##;R.u##"},
      {"B03", "", "", "R.s##;R.t##;R.u##"},
      {"SAVE", "", "", "R.s##;R.t##;R.u##"},
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
