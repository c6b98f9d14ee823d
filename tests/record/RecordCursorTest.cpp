#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>
#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "record/RecordCursor.h"
#include "support/Diagnosis.h"
#include "support/Fault.h"
#include "support/Forms.h"
#include "support/Session.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using namespace test;

class AllForms : public OfForm {
 protected:
  std::vector<std::byte> bytes_;
  RecordWriter writer_{memorySink(bytes_), form_};
};
INSTANTIATE_TEST_SUITE_P(Record, AllForms, ::testing::ValuesIn(everyForm), formName);

RecordCursor& next(RecordCursor& cursor) {
  if (!cursor.next()) throw std::runtime_error("no more records");
  return cursor;
}

/// Values that a formatted file holds exactly, so that one expectation serves all forms.
std::vector<float> evenValues(std::size_t n) {
  std::vector<float> values(n);
  for (std::size_t i = 0; i < n; ++i) values[i] = (static_cast<float>(i) - 700) / 8;
  return values;
}

TEST_P(AllForms, EveryTypeComesBackAcrossBlocksAndInParts) {
  std::vector<std::int32_t> integers(2001);
  std::iota(integers.begin(), integers.end(), -1000);
  integers[7] = std::numeric_limits<std::int32_t>::min();
  const auto values = evenValues(3456);
  const std::vector<double> doubles(1001, -0.5e-290);
  const bool flags[] = {true, false, true, true};
  std::vector<std::string> names(211, "P'1 /X");
  names[105] = "LAST OF ";
  std::vector<std::string> longNames(107, "A_WELL_NAME_OF_THIRTY-TWO_CHARS!");
  longNames[3] = "it's";
  // The data of a type that nobody knows: those of an integer record under another type word.
  writer_.integers("ODD", std::vector<std::int32_t>(1500, 7));
  const auto word = bytesOf("INTE");
  std::ranges::copy(bytesOf("NEWT"), std::search(bytes_.begin(), bytes_.end(), word.begin(), word.end()));
  writer_.integers("INTS", integers);
  writer_.singles("REALS", values);
  writer_.doubles("DOUBLES", doubles);
  writer_.logicals("FLAGS", flags);
  writer_.texts("NAMES", names);
  writer_.texts("LONG", longNames, 32);
  writer_.message("STARTSOL");
  writer_.singles("EMPTY", {});

  auto cursor = cursorOver(bytes_, form_);
  EXPECT_EQ(next(cursor).header().typeWord, "NEWT");
  EXPECT_EQ(next(cursor).integers(), integers);
  EXPECT_EQ(next(cursor).singles(), values);
  const RecordHeader known = cursor.header();
  const bool regular = cursor.regular();
  EXPECT_EQ(regular, form_.framing != Framing::OneByteMarks);
  EXPECT_EQ(next(cursor).doubles(), doubles);
  std::vector<std::int16_t> read(4);
  next(cursor).readLogicals(read);
  EXPECT_THAT(read, ElementsAre(-1, 0, -1, -1));
  names[105] = "LAST OF";
  EXPECT_EQ(next(cursor).texts(), names);
  EXPECT_EQ(next(cursor).texts(), longNames);
  EXPECT_EQ(next(cursor).header().keyword, "STARTSOL");
  EXPECT_TRUE(next(cursor).singles().empty());
  for (int time = 0; time < 2; ++time) EXPECT_FALSE(cursor.next()) << "the end stays the end";

  cursor.setCurrent(known, regular);
  for (const auto& [first, count] :
       {std::pair<int, int>{0, 1}, {999, 2}, {1000, 1000}, {1003, 2400}, {3455, 1}, {3456, 0}}) {
    std::vector<float> part(static_cast<std::size_t>(count));
    cursor.read(std::span<float>(part), first);
    EXPECT_TRUE(std::equal(part.begin(), part.end(), values.begin() + first)) << first;
  }
  const std::vector<std::uint32_t> wanted{0, 1, 999, 1000, 1001, 2500, 3455};
  std::vector<float> picked(wanted.size());
  cursor.gather(wanted, picked);
  for (std::size_t i = 0; i < wanted.size(); ++i) EXPECT_EQ(picked[i], values[wanted[i]]) << wanted[i];
  EXPECT_THROW(cursor.read(std::span<float>(picked), 3450), Fault);
  std::vector<double> wrongType(1);
  EXPECT_THROW(cursor.read(std::span<double>(wrongType)), Fault);
}

void appendWord(std::vector<std::byte>& bytes, std::uint32_t word) {
  for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<std::byte>(word >> shift));
}

/// Some writers put a whole array between one pair of marks; marks of one byte then hold its low byte.
TEST(MarkedRecords, BlocksOfOtherSizesAreFollowedByTheirMarks) {
  std::vector<std::byte> bytes;
  RecordWriter writer(memorySink(bytes), bigEndian);
  writer.header("WHOLE", 2500, "INTE");
  for (const std::uint32_t n : {2400U, 100U}) {
    appendWord(bytes, 4 * n);
    for (std::uint32_t i = 0; i < n; ++i) appendWord(bytes, i);
    appendWord(bytes, 4 * n);
  }
  writer.header("SHORT", 2, "INT2");
  for (const std::uint32_t word : {4U, 0x0007FFFEU, 4U}) appendWord(bytes, word);
  auto cursor = cursorOver(bytes, bigEndian);
  EXPECT_EQ(next(cursor).integers()[2400], 0);
  EXPECT_FALSE(cursor.regular());
  std::vector<std::int32_t> part(2);
  cursor.read(std::span<std::int32_t>(part), 2399);
  EXPECT_THAT(part, ElementsAre(2399, 0));
  next(cursor).read(std::span<std::int32_t>(part));
  EXPECT_THAT(part, ElementsAre(7, -2));

  const Form narrow{Framing::OneByteMarks, false};
  bytes.clear();
  RecordWriter(memorySink(bytes), narrow).header("A", 300, "INTE");
  bytes.resize(bytes.size() + 1202);
  bytes[bytes.size() - 1202] = bytes.back() = static_cast<std::byte>(1200 & 0xFF);
  bytes[bytes.size() - 5] = std::byte{99};
  auto other = cursorOver(bytes, narrow);
  EXPECT_EQ(next(other).integers()[299], 99);
  EXPECT_FALSE(other.next());
}

TEST(MarkedRecords, ValuesArePickedBehindTheirMark) {
  std::vector<std::byte> bytes;
  RecordWriter(memorySink(bytes), bigEndian).singles("PARAMS", std::vector<float>(2, 0.5F));
  auto indexed = cursorOver(bytes, bigEndian);
  const RecordHeader header = next(indexed).header();
  bytes[27] = std::byte{9};
  auto rewritten = cursorOver(bytes, bigEndian);
  rewritten.setCurrent(header, true);
  std::vector<float> value(1);
  EXPECT_THROW(rewritten.gather(std::array{1U}, value), BadRecord);
  Session session;
  session.CancelLoad = true;
  auto canceled = cursorOver(bytes, bigEndian);
  canceled.attach(session, RecordFile::Any);
  EXPECT_THROW(canceled.next(), LoadCanceled);
}

/// CR LF, lines of other lengths, fields that touch, odd exponents, no line end at the end.
TEST(FormattedRecords, WhatOtherWritersPutOnTheLines) {
  auto cursor = cursorOver(bytesOf(" 'PARAMS  '           7 'REAL'\r\n"
                                   "   0.1D+01 -0.25E+00-0.5 0.1234-101\r\n"
                                   "\r\n 1 +2.5E1 *****\r\n"
                                   " 'NAMES   '           3 'CHAR'\r\n"
                                   " 'A'\r\n 'it''s me' ' /      '\r\n"
                                   " 'FLAGS   '           3 'LOGI'\r\n"
                                   "  T  FT\r\n"
                                   " 'LAST    '           1 'INTE'\r\n"
                                   "          -7"),
                           formatted);
  EXPECT_THAT(next(cursor).singles(),
              ElementsAre(1.0F, -0.25F, -0.5F, 0.0F, 1.0F, 25.0F, ::testing::IsNan()));
  std::vector<float> picked(2);
  cursor.gather(std::array{1U, 5U}, picked);
  EXPECT_THAT(picked, ElementsAre(-0.25F, 25.0F));
  EXPECT_THAT(next(cursor).texts(), ElementsAre("A", "it''s me", "/"));
  std::vector<std::int16_t> flags(3);
  next(cursor).readLogicals(flags);
  EXPECT_THAT(flags, ElementsAre(-1, 0, -1));
  EXPECT_THAT(next(cursor).integers(), ElementsAre(-7));
  EXPECT_FALSE(cursor.next());
}

TEST(FormattedRecords, DamageIsNamedWithItsCharacter) {
  const std::string one = " 'A       '           1 'INTE'\n           7\n";
  const std::string params = " 'PARAMS  '           2 'REAL'\n   0.10000000E+01   ";
  const std::pair<std::string, const char*> rows[] = {
      {one, ""},
      // Zeros and long runs of blanks are no part of a file.
      {one + std::string(100, '\0') + one, "(byte 44: "},
      {one + std::string(10000, ' '), "(byte 44: "},
      {one + std::string(10000, '\n'), "(byte 44: "},
      {" 'A       '           1 'X231'\n" + one, "X231 count is not negative (A, byte 0"},
      {" 'B       '          -1 'X231'\n" + one, "no header follows X231 (B"},
      {params + "0.1x000000E+01\n", "PARAMS, occurrence 1, byte 51"},
      {" 'PARAMS  '           3 'REAL'\n   0.5   " + std::string(90, '9') + "E+04\n 0.25\n", "PARAMS, occ"},
      // One field too few on the first line, one too many on the second: the record ends where it should.
      {" 'PARAMS  '           6 'REAL'\n"
       "   0.10000000E+01   0.20000000E+01   0.30000000E+01                 \n"
       " 0.4E+01 0.5E+01    0.60000000E+01\n",
       "field is out of place (PARAMS, occurrence 1, byte 101"}};
  for (const auto& [text, damage] : rows) {
    auto cursor = cursorOver(bytesOf(text), formatted);
    try {
      while (cursor.next()) {
        if (cursor.header().type == ElementType::Single) cursor.singles();
      }
      EXPECT_STREQ(damage, "");
    } catch (const BadRecord& bad) {
      EXPECT_THAT(bad.diagnosis().text(), HasSubstr(damage)) << text.substr(0, 90);
    }
  }
  std::vector<float> part(2);
  auto cursor = cursorOver(bytesOf(rows[7].first), formatted);
  EXPECT_THROW((cursor.next(), cursor.read(std::span<float>(part), 1)), BadRecord) << "not from the start";
}

}  // namespace
}  // namespace lumbarn
