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
      {"B0007", "B0000", "R.B????", "R.s##;R.t##;R.u##"},
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

}  // namespace
}  // namespace lumbarn
