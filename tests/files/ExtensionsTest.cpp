#include <algorithm>

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
  // Kind 1 is unified, for saves only.
  EXPECT_EQ(RestartExtension(7, false, false, false, false, 1, qOK, true, false), "save");
  EXPECT_EQ(RestartExtension(7, false, false, false, false, 1, qOK, false, false), "x0007");
}

TEST(Patterns, AreThoseOfTheExtensionsRow) {
  struct Row {
    const char *extension, *zeros, *search, *list;
  };
  // Members of a set have patterns of their own in the first two notations, but not all letters.
  const Row rows[] = {
      {"sms", "S00;T00;U00", "R.s??;R.t??;R.u??", "R.s##;R.t##;R.u##"},
      {"SMSPEC", "S0000", "R.S????", "R.S####"},
      {"funrst", "F0000", "R.f????", "R.f####"},
      {"SLNSPEC", "SLN0000", "R.SLN????", "R.SLN####"},
      {"F07", "F00;G00;H00", "R.F??;R.G??;R.H??", "R.s##;R.t##;R.u##"},
      {"x0007", "X0000", "R.x????", "R.s##;R.t##;R.u##"},
      {"SAVE", "", "", "R.s##;R.t##;R.u##"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(GetFilePatterns(row.extension), row.zeros);
    EXPECT_EQ(GetFilePatternsForListBox("R", row.extension), row.search);
    std::string zMult = "old";
    GetExtensionPattern("R", zMult, FileName(std::string("dir/other.") + row.extension));
    EXPECT_EQ(zMult, row.list) << row.extension;
  }
}

TEST(Extensions, SayKindFormStepAndLetter) {
  struct Row {
    const char* extension;
    FileKind kind;
    bool formatted;
    std::int32_t step;        // with the hundreds of the letter
    std::string_view letter;  // of a multiple file; that of no table has a number too
    std::int32_t number = -1;
  };
  using enum FileKind;
  const Row rows[] = {
      {"fsm", SummarySpec, true, -1, ""},   {"a0012", Summary, true, 12, "a", 12},
      {"T07", Summary, false, 107, "T", 7}, {"C99", Summary, true, 299, "C", 99},
      {"z01", Restart, false, 201, "z", 1}, {"X0150", Restart, false, 150, "X", 150},
      {"D0004", Save, true, 4, "D", 4},     {"sln0003", Streamline, false, 3, "sln", 3},
      {"INSPEC", Inspec, false, -1, ""},    {"FEGRID", EGrid, true, -1, ""},
      {"Q12", Unknown, false, -1, "Q", 12}, {"SLN01", Unknown, false, -1, ""},
      {"S003", Unknown, false, -1, ""},     {"X-001", Unknown, false, -1, ""},
      {"", Unknown, false, -1, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.extension);
    const ExtensionMeaning meaning = meaningOf(row.extension);
    EXPECT_EQ(nameOf(meaning.kind), nameOf(row.kind));
    EXPECT_EQ(meaning.formatted, row.formatted);
    EXPECT_EQ(meaning.step, row.step);
    std::string zLetter = "old";
    std::int32_t nDigits = 77;
    const std::int32_t count = row.letter.empty() ? 0 : row.letter.size() == 3 || row.extension[3] ? 4 : 2;
    EXPECT_EQ(checkMultipleExtension(row.extension, zLetter, nDigits), count);
    EXPECT_EQ(zLetter, row.letter);
    EXPECT_EQ(nDigits, row.number);
    EXPECT_EQ(GetNumericPartOfFileName(std::string("/d.X0003/a.b/RUN 1.") + row.extension),
              std::max(row.step, row.number));
  }
}

}  // namespace
}  // namespace lumbarn
