#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "deck/DeckReading.h"
#include "support/Session.h"
#include "support/Text.h"

namespace lumbarn::test {
namespace {

using Texts = std::vector<std::string>;

/// Reads a text, and keeps what would be captured.
class Reading : public DeckReading {
 public:
  explicit Reading(const std::string& text, std::int32_t section = 8)
      : DeckReading(own), lines(source(text)) {
    iSection = section;
  }
  static std::shared_ptr<const ByteSource> source(const std::string& text) {
    const auto bytes = std::as_bytes(std::span(text));
    return std::make_shared<MemorySource>(std::vector<std::byte>(bytes.begin(), bytes.end()));
  }
  /// What is reported: "deck.value@3 deck.keyword@4".
  std::string reported() const {
    std::string result;
    for (const Diagnosis& diagnosis : own.diagnoses())
      result += fmt::format("{}@{} ", diagnosis.id(), diagnosis.line);
    return result;
  }
  std::string rest() {
    std::string line;
    return lines.readLine(line) ? line : "(end)";
  }

  Session own;
  DeckLines lines;
  std::string captured;

 private:
  void captureLine(std::string_view zLine) override { captured += std::string(zLine) + '|'; }
};

std::string joined(const Texts& lines) {
  std::string result;
  for (const std::string& line : lines) result += line + '|';
  return result;
}

TEST(DeckReading, LinesOfKeywords) {
  struct Row {
    const char* text;
    const char* terminator;
    const char* lines;
    bool qOK;
    const char* rest;
    const char* reported = "";
  };
  const Row rows[] = {
      {"1 2\n3 / more\n4", "/", "1 2 3 /|", true, "4"},
      {"/\n4", "/", "/|", true, "4"},
      {"1 2", "/", "1 2|", true, "(end)"},
      {"1 -- a/b\n\t2 -- it's\n'A -- B/' /\n4", "/", "1 2 'A -- B/' /|", true, "4"},
      {"-- a\n1 /\n-- b\n\n/\ndates\n1 /", "", "1 /|/|", true, "dates"},
      {"1 /\nDATES -- next\n2 /\nGRID\n", "", "1 /|DATES 2 /|", true, "GRID", "deck.keyword@2 "},
      {"1 /\n POLYMER\n2 /\nEND", "", "1 /|POLYMER 2 /|", true, "END", "deck.keyword@2 "},
      {"'DATES'\nWELL\nOIL 1/\nX", "/", "'DATES' WELL OIL 1/|", true, "X"},
      {"OPEN\nSHUT", "", "|OPEN||SHUT|", true, "(end)"},
      {"'A/B' 1\n2 /\n3", "/", "'A/B' 1|2 /|", true, "3"},
      {"", "/", "", false, "(end)"},
  };
  for (const Row& row : rows) {
    Reading reading(row.text);
    Texts lines{"old"};
    std::int32_t count = -1;
    bool qOK = !row.qOK;
    reading.readKeywordArguments(reading.lines, lines, count, qOK, row.terminator, true);
    EXPECT_EQ(qOK, row.qOK) << row.text;
    EXPECT_EQ(joined(lines), row.lines) << row.text;
    EXPECT_EQ(count, static_cast<std::int32_t>(lines.size()));
    EXPECT_EQ(reading.rest(), row.rest) << row.text;
    EXPECT_EQ(reading.reported(), row.reported) << row.text;
  }
}

TEST(DeckReading, LookingAheadMovesTheSectionAndCapturesNothing) {
  Reading reading("  1 / a\n-- b\nSCHEDULE\n", 7);
  Texts lines;
  std::int32_t count = 0;
  bool qOK = false;
  reading.readKeywordArguments(reading.lines, lines, count, qOK, "", true);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(reading.iSection, 8);
  EXPECT_EQ(reading.captured, "  1 / a|-- b|");
  EXPECT_EQ(reading.lines.currentLine(), 2);
  reading.lines.notePosition();
  EXPECT_EQ(reading.rest(), "SCHEDULE");
  EXPECT_FALSE(reading.lines.hasMoreData());
  reading.lines.returnToPosition();
  EXPECT_TRUE(reading.lines.hasMoreData());
  EXPECT_EQ(reading.rest(), "SCHEDULE");
  EXPECT_EQ(reading.lines.currentLine(), 3);
  EXPECT_FALSE(reading.lines.hasMoreData());
}

TEST(DeckReading, FileNames) {
  struct Row {
    const char* text;
    const char* lines;
  };
  for (const Row& row :
       {Row{"-- a\n Sub/File.inc / x\n9", "-- a|Sub/File.inc /|"}, Row{"'Sub/F.inc'/ x\n9", "'Sub/F.inc'/|"},
        Row{"Sub/F.inc -- a/\n/\n9", "Sub/F.inc|/|"}, Row{"a/b.inc/\n9", "a/b.inc/|"}}) {
    Reading reading(row.text);
    Texts lines;
    std::int32_t count = 0;
    bool qOK = false;
    reading.readFileNameArguments(reading.lines, lines, count, qOK);
    EXPECT_TRUE(qOK);
    EXPECT_EQ(joined(lines), row.lines);
    EXPECT_EQ(reading.rest(), "9");
  }
}

TEST(DeckReading, LinesInPlace) {
  for (const bool qJoin : {false, true}) {
    Reading reading("1\n-- a\n2 /\n'a/b'\n3/\n4\nDATES\n");
    Texts lines(20);
    std::int32_t count = 0;
    bool qOK = false;
    reading.ReadMultiLineKeywordArguments(reading.lines, lines, count, qOK, "", qJoin);
    EXPECT_TRUE(qOK);
    EXPECT_EQ(joined(lines), qJoin ? "1 2 /|-- a||'A/B'|3/|4|" : "1|-- a|2 /|'A/B'|3/|4|");
    EXPECT_EQ(count, 6);
    EXPECT_EQ(reading.rest(), "DATES");
  }
  Reading reading("'a/b'\n3/\n");
  Texts lines;
  std::int32_t count = 0;
  bool qOK = false;
  reading.ReadMultiLineKeywordArguments(reading.lines, lines, count, qOK, "/", true);
  EXPECT_EQ(joined(lines), "'A/B'|");  // any "/" ends it
}

TEST(DeckReading, ArgumentsOverDefaults) {
  Reading reading("2* 5 -- NTPVT\n 'x y'\n/\n");
  Texts merged;
  std::int32_t count = 0;
  bool qOK = false;
  reading.ArgumentList(reading.lines, "VFPPDIMS", merged, count, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(joined(merged), "0|0|5|X Y|0|0|");
  reading.getArgumentList(reading.lines, merged, count, qOK, true);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(count, 0);
}

TEST(DeckReading, Arrays) {
  struct Row {
    const char* text;
    std::int32_t count;
    std::vector<float> values;
    bool qOK;
    const char* rest;
    const char* reported = "";
  };
  const Row rows[] = {
      {"1 2\n-- a\n\n 3*4.5 /\nX", 9, {1, 2, 4.5F, 4.5F, 4.5F}, true, "X"},
      {"4*\n/\nX", 4, {0, 0, 0, 0}, true, "/"},  // it is full before the "/"
      {"4*\n/\nX", 5, {0, 0, 0, 0}, true, "X"},
      {"1 2 3 -- depth\n/", 9, {1, 2, 3, 0, 0}, true, "(end)", "deck.value@1 "},
      {"1\t2 3\n4\t\n\t5 6,7 /", 9, {1, 3, 4, 5, 6}, true, "(end)", "deck.value@1 deck.value@3 "},
      {"1 2\n3 4 5\n/", 4, {1, 2, 3, 4}, false, "/"},
      {"1 9*2\n/", 4, {1, 2, 2, 2}, false, "/"},
      {"1\n2", 4, {1, 2}, true, "(end)"},
      {"", 4, {}, false, "(end)"},
      {"1 1e39 2 /\nX", 4, {1}, false, "X"},
      {"/", 2000000000, {}, true, "(end)"},
  };
  for (const Row& row : rows) {
    Reading reading(row.text, 2);
    std::int32_t count = row.count;
    std::vector<float> values{7};
    bool qOK = !row.qOK;
    reading.readEclipseSingleArray(reading.lines, count, values, qOK);
    EXPECT_EQ(qOK, row.qOK) << row.text;
    EXPECT_EQ(values, row.values) << row.text;
    EXPECT_EQ(count, static_cast<std::int32_t>(row.values.size())) << row.text;
    EXPECT_LE(values.capacity(), 100U) << row.text;
    EXPECT_EQ(reading.reported(), row.reported) << row.text;
    EXPECT_EQ(reading.rest(), row.rest) << row.text;
  }
  Reading reading("1 X 2*3\n3* /\n9", 2);
  std::int32_t count = 9;
  std::vector<std::int32_t> values;
  bool qOK = true;
  reading.readEclipseLongArray(reading.lines, count, values, qOK);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(values, (std::vector<std::int32_t>{1, -32768, 3, 3}));
  EXPECT_EQ(reading.own.faults(), 1);
  EXPECT_EQ(reading.captured, "1 X 2*3|3* /|");
}

TEST(DeckReading, StopsWhenTheLoadIsCanceled) {
  Reading reading("1\n2\n3 /\n");
  reading.own.CancelLoad = true;
  std::vector<float> values;
  std::int32_t count = 3;
  bool qOK = true;
  reading.readEclipseSingleArray(reading.lines, count, values, qOK);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(values, std::vector<float>{1});
  Texts lines;
  reading.readKeywordArguments(reading.lines, lines, count, qOK, "/", true);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(joined(lines), "2|");
  EXPECT_EQ(reading.own.faults(), 0);
}

}  // namespace
}  // namespace lumbarn::test
