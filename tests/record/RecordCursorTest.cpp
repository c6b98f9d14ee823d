#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "record/RecordCursor.h"
#include "support/Diagnosis.h"
#include "support/Fault.h"
#include "support/Forms.h"
#include "support/Session.h"

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

/// Values that a formatted file holds exactly, so that one expectation serves all forms.
std::vector<float> evenValues(std::size_t n) {
  std::vector<float> values(n);
  for (std::size_t i = 0; i < n; ++i) values[i] = (static_cast<float>(i) - 700) / 8;
  return values;
}

TEST_P(AllForms, EveryTypeComesBackAcrossBlocks) {
  std::vector<std::int32_t> integers(2001);
  std::iota(integers.begin(), integers.end(), -1000);
  integers[7] = std::numeric_limits<std::int32_t>::min();
  std::vector<double> doubles(1001, -0.5e-290);
  const bool flags[] = {true, false, true, true};
  std::vector<std::string> names(211, "P'1 /X");
  names[105] = "LAST OF ";
  std::vector<std::string> longNames(107, "A_WELL_NAME_OF_THIRTY-TWO_CHARS!");
  longNames[3] = "it's";
  writer_.integers("INTS", integers);
  writer_.singles("REALS", evenValues(1000));
  writer_.doubles("DOUBLES", doubles);
  writer_.logicals("FLAGS", flags);
  writer_.texts("NAMES", names);
  writer_.texts("LONG", longNames, 32);
  writer_.message("STARTSOL");
  writer_.singles("EMPTY", {});

  auto cursor = cursorOver(bytes_, form_);
  ASSERT_TRUE(cursor.next());
  EXPECT_EQ(cursor.integers(), integers);
  ASSERT_TRUE(cursor.next());
  EXPECT_EQ(cursor.singles(), evenValues(1000));
  ASSERT_TRUE(cursor.next());
  EXPECT_EQ(cursor.doubles(), doubles);
  ASSERT_TRUE(cursor.next());
  std::vector<std::int16_t> read(4);
  cursor.readLogicals(read);
  EXPECT_THAT(read, ElementsAre(-1, 0, -1, -1));
  ASSERT_TRUE(cursor.next());
  names[105] = "LAST OF";
  EXPECT_EQ(cursor.texts(), names);
  ASSERT_TRUE(cursor.next());
  EXPECT_EQ(cursor.texts(), longNames);
  ASSERT_TRUE(cursor.next());
  EXPECT_EQ(cursor.header().keyword, "STARTSOL");
  ASSERT_TRUE(cursor.next());
  EXPECT_TRUE(cursor.singles().empty());
  EXPECT_FALSE(cursor.next());
  EXPECT_FALSE(cursor.next()) << "the end stays the end";
}

TEST_P(AllForms, SkippingPartsAndPickingAgreeWithReadingAll) {
  const auto values = evenValues(3456);
  const std::string odd[] = {"1", "2"};
  writer_.texts("FIRST", odd);
  writer_.singles("VALUES", values);
  writer_.integers("LAST", std::vector<std::int32_t>{1, 2, 3});
  auto cursor = cursorOver(bytes_, form_);
  cursor.next();
  cursor.next();
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

  const RecordHeader known = cursor.header();
  const bool regular = cursor.regular();
  EXPECT_EQ(regular, form_.framing != Framing::OneByteMarks);
  ASSERT_TRUE(cursor.next());
  EXPECT_THAT(cursor.integers(), ElementsAre(1, 2, 3));
  cursor.setCurrent(known, regular);
  cursor.gather(wanted, picked);
  EXPECT_EQ(picked.back(), values.back());
  EXPECT_THROW(cursor.read(std::span<float>(picked), 3450), Fault);
  std::vector<double> wrongType(1);
  EXPECT_THROW(cursor.read(std::span<double>(wrongType)), Fault);
}

TEST_P(AllForms, RecordsOfUnknownTypesAreSteppedOver) {
  // The data of a type that nobody knows: here those of an integer record under another type word.
  std::vector<std::int32_t> data(1500, 7);
  std::vector<std::byte> odd;
  RecordWriter oddWriter(memorySink(odd), form_);
  oddWriter.integers("ODD", data);
  const auto word = bytesOf("INTE");
  const auto at = std::search(odd.begin(), odd.end(), word.begin(), word.end());
  std::ranges::copy(bytesOf("NEWT"), at);
  writer_.integers("A", std::vector<std::int32_t>{1});
  bytes_.insert(bytes_.end(), odd.begin(), odd.end());
  writer_.integers("B", std::vector<std::int32_t>{2});

  auto cursor = cursorOver(bytes_, form_);
  cursor.next();
  ASSERT_TRUE(cursor.next());
  EXPECT_EQ(cursor.header().typeWord, "NEWT");
  ASSERT_TRUE(cursor.next());
  EXPECT_EQ(cursor.header().keyword, "B");
  EXPECT_THAT(cursor.integers(), ElementsAre(2));
  EXPECT_FALSE(cursor.next());
}

/// Walks and reads everything; gives the records that came whole. Throws nothing but BadRecord.
int readAll(RecordCursor cursor, Diagnosis* why = nullptr) {
  int whole = 0;
  try {
    while (cursor.next()) {
      const auto type = cursor.header().type;
      if (type == ElementType::Integer) cursor.integers();
      if (type == ElementType::Single) cursor.singles();
      if (type == ElementType::Double) cursor.doubles();
      if (type == ElementType::Text) cursor.texts();
      ++whole;
    }
  } catch (const BadRecord& damage) {
    if (why) *why = damage.diagnosis();
  }
  return whole;
}

std::vector<std::byte> smallFile(const Form& form) {
  std::vector<std::byte> bytes;
  RecordWriter writer(memorySink(bytes), form);
  writer.integers("SEQHDR", std::vector<std::int32_t>{5});
  writer.singles("PARAMS", evenValues(40));
  writer.texts("UNITS", std::vector<std::string>{"DAYS", "SM3/DAY"});
  writer.doubles("DOUBHEAD", std::vector<double>{1.5, -2.25});
  return bytes;
}

TEST_P(AllForms, EveryPrefixGivesTheWholeRecordsBeforeTheCutAndItsPlace) {
  const auto bytes = smallFile(form_);
  int last = 0;
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    Diagnosis why;
    const int whole =
        readAll(cursorOver({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)}, form_), &why);
    EXPECT_GE(whole, last);
    EXPECT_LE(whole, 4);
    last = whole;
    if (why.problem.empty()) continue;  // cut between two records, or within a formatted number
    EXPECT_EQ(why.path, "memory");
    ASSERT_TRUE(why.offset) << size;
    EXPECT_LE(*why.offset, size);
  }
  EXPECT_GE(last, 3);
}

TEST_P(AllForms, NoFlippedByteDoesHarm) {
  const auto bytes = smallFile(form_);
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    for (const int pattern : {0x01, 0x80, 0xFF}) {
      auto damaged = bytes;
      damaged[at] ^= static_cast<std::byte>(pattern);
      EXPECT_LE(readAll(cursorOver(damaged, form_)), 8);
    }
  }
}

TEST_P(AllForms, CountsThatTheFileCannotHoldAreRefusedBeforeAnythingIsSized) {
  for (const char* type : {"INTE", "REAL", "DOUB", "CHAR", "LOGI", "C999"}) {
    for (const std::int32_t count : {-1, std::numeric_limits<std::int32_t>::min(), 2147483647, 100}) {
      std::vector<std::byte> bytes;
      RecordWriter writer(memorySink(bytes), form_);
      writer.header("WILD", count, type);
      Diagnosis why;
      EXPECT_EQ(readAll(cursorOver(bytes, form_), &why), 0) << type << count;
      EXPECT_EQ(why.keyword, "WILD") << type << count;
      EXPECT_EQ(why.occurrence, 1);
      EXPECT_TRUE(why.offset);
    }
  }
}

TEST(MarkedRecords, BlocksOfOtherSizesAreFollowedByTheirMarks) {
  // Some writers put a whole array between one pair of marks.
  const Form form = bigEndian;
  std::vector<std::byte> bytes;
  RecordWriter writer(memorySink(bytes), form);
  writer.header("WHOLE", 2500, "INTE");
  const auto big = [&](std::uint32_t word) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<std::byte>(word >> shift));
  };
  for (const std::uint32_t n : {2400U, 100U}) {
    big(4 * n);
    for (std::uint32_t i = 0; i < n; ++i) big(i);
    big(4 * n);
  }
  writer.integers("NEXT", std::vector<std::int32_t>{9});
  auto cursor = cursorOver(bytes, form);
  ASSERT_TRUE(cursor.next());
  EXPECT_FALSE(cursor.regular());
  const auto values = cursor.integers();
  EXPECT_EQ(values[2399], 2399);
  EXPECT_EQ(values[2400], 0);
  std::vector<std::int32_t> part(2);
  cursor.read(std::span<std::int32_t>(part), 2399);
  EXPECT_THAT(part, ElementsAre(2399, 0));
  ASSERT_TRUE(cursor.next());
  EXPECT_EQ(cursor.header().keyword, "NEXT");
}

TEST(MarkedRecords, DisagreeingMarksAreNamedWithTheirPlace) {
  const Form form = bigEndian;
  std::vector<std::byte> bytes;
  RecordWriter(memorySink(bytes), form).integers("A", std::vector<std::int32_t>(3));
  bytes.back() = std::byte{13};
  Diagnosis why;
  EXPECT_EQ(readAll(cursorOver(bytes, form), &why), 0);
  EXPECT_EQ(why.text(), "memory: block marks disagree (A, occurrence 1, byte 40: expected 12, found 13)");
}

TEST(MarkedRecords, OneByteMarksMayHoldTheLowByteOfAWholeBlock) {
  std::vector<std::byte> bytes;
  const Form form{Framing::OneByteMarks, false};
  RecordWriter(memorySink(bytes), form).header("A", 300, "INTE");
  bytes.push_back(static_cast<std::byte>(1200 & 0xFF));
  for (std::int32_t i = 0; i < 300; ++i) {
    std::byte raw[4];
    std::memcpy(raw, &i, 4);
    bytes.insert(bytes.end(), raw, raw + 4);
  }
  bytes.push_back(static_cast<std::byte>(1200 & 0xFF));
  auto cursor = cursorOver(bytes, form);
  ASSERT_TRUE(cursor.next());
  EXPECT_EQ(cursor.integers()[299], 299);
  EXPECT_FALSE(cursor.next());
}

/// A file of many gigabytes of which only the bytes that matter are kept.
class SparseSource final : public ByteSource {
 public:
  void put(std::uint64_t position, std::vector<std::byte> bytes) {
    size_ = std::max(size_, position + bytes.size());
    parts_[position] = std::move(bytes);
  }
  std::uint64_t size() const override { return size_; }

 private:
  std::size_t transfer(std::uint64_t position, std::span<std::byte> out, std::string&) const override {
    std::ranges::fill(out, std::byte{0});
    const std::uint64_t count = out.size();
    for (const auto& [start, bytes] : parts_) {
      for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (start + i >= position && start + i < position + count) out[start + i - position] = bytes[i];
      }
    }
    return out.size();
  }

  std::uint64_t size_ = 0;
  std::map<std::uint64_t, std::vector<std::byte>> parts_;
};

TEST(MarkedRecords, X231AnnouncesArraysBeyond2To31Elements) {
  const Form form = bigEndian;
  const std::int64_t count = (std::int64_t{1} << 31) + 5;
  auto source = std::make_shared<SparseSource>();
  std::vector<std::byte> head;
  RecordWriter writer(memorySink(head), form);
  writer.header("PORO", -1, "X231");
  writer.header("PORO", 5, "REAL");
  const std::byte firstMark[] = {std::byte{0}, std::byte{0}, std::byte{0x0F}, std::byte{0xA0}};
  head.insert(head.end(), std::begin(firstMark), std::end(firstMark));
  source->put(0, head);
  const std::uint64_t blocks = (static_cast<std::uint64_t>(count) + 999) / 1000;
  const std::uint64_t end = 48 + 4 * static_cast<std::uint64_t>(count) + 8 * blocks;
  const auto lastBlock = static_cast<std::uint32_t>(4 * (count % 1000));
  std::vector<std::byte> tail{std::byte{0}, std::byte{0}, static_cast<std::byte>(lastBlock >> 8),
                              static_cast<std::byte>(lastBlock & 0xFF)};
  RecordWriter(memorySink(tail), form).integers("NEXT", std::vector<std::int32_t>{1});
  source->put(end - 4, tail);
  source->put(end - 8,
              {std::byte{0x3F}, std::byte{0x80}, std::byte{0}, std::byte{0}});  // 1.0, the last element

  RecordCursor cursor(source, form, "sparse");
  ASSERT_TRUE(cursor.next());
  EXPECT_EQ(cursor.header().count, count);
  EXPECT_EQ(cursor.header().headerAt, 0U);
  const std::uint32_t last[] = {static_cast<std::uint32_t>(count - 1)};
  float value = 0;
  cursor.gather(last, std::span(&value, 1));
  EXPECT_EQ(value, 1.0F);
  ASSERT_TRUE(cursor.next());
  EXPECT_EQ(cursor.header().keyword, "NEXT");
}

TEST(FormattedRecords, WhatOtherWritersPutOnTheLines) {
  // CR LF, lines of other lengths, fields that touch, odd exponents, no line end at the end.
  const std::string text =
      " 'PARAMS  '           7 'REAL'\r\n"
      "   0.1D+01 -0.25E+00-0.5 0.1234-101\r\n"
      "\r\n 1 +2.5E1 *****\r\n"
      " 'NAMES   '           3 'CHAR'\r\n"
      " 'A'\r\n 'it''s me' ' /      '\r\n"
      " 'FLAGS   '           3 'LOGI'\r\n"
      "  T  FT\r\n"
      " 'LAST    '           1 'INTE'\r\n"
      "          -7";
  auto cursor = cursorOver(bytesOf(text), {Framing::Formatted, false});
  ASSERT_TRUE(cursor.next());
  const auto values = cursor.singles();
  EXPECT_THAT(std::vector<float>(values.begin(), values.end() - 1),
              ElementsAre(1.0F, -0.25F, -0.5F, 0.0F, 1.0F, 25.0F));
  EXPECT_TRUE(std::isnan(values.back()));
  ASSERT_TRUE(cursor.next());
  EXPECT_THAT(cursor.texts(), ElementsAre("A", "it''s me", "/"));
  ASSERT_TRUE(cursor.next());
  std::vector<std::int16_t> flags(3);
  cursor.readLogicals(flags);
  EXPECT_THAT(flags, ElementsAre(-1, 0, -1));
  ASSERT_TRUE(cursor.next());
  EXPECT_THAT(cursor.integers(), ElementsAre(-7));
  EXPECT_FALSE(cursor.next());
}

TEST_P(AllForms, RecordsBehindDamageAreFoundAndTheGapIsGiven) {
  const auto bytes = smallFile(form_);
  std::vector<std::uint64_t> headers;
  for (auto cursor = cursorOver(bytes, form_); cursor.next();) headers.push_back(cursor.header().headerAt);
  const auto size = static_cast<std::uint64_t>(bytes.size());
  const std::uint64_t lead = form_.formatted() ? 1 : 0;  // the blank in front of a header need not be one
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    auto damaged = bytes;
    damaged[at] ^= std::byte{0xA5};
    auto cursor = cursorOver(damaged, form_);
    std::vector<std::uint64_t> met;
    for (bool more = true; more;) {
      try {
        more = cursor.next();
        if (more) met.push_back(cursor.header().headerAt);
      } catch (const BadRecord&) {
        const Gap gap = cursor.skipDamage();
        EXPECT_LE(gap.from, at);
        EXPECT_GT(gap.to, at);
        const auto startsAt = [&](std::uint64_t header) {
          return gap.to == header || gap.to == header + lead;
        };
        EXPECT_TRUE(gap.to == size || std::ranges::any_of(headers, startsAt)) << at << ' ' << gap.to;
      }
    }
    // The record of the byte is lost, and where it was a line end, the header that seems to go on the line.
    EXPECT_GE(met.size() + 1 + lead, headers.size()) << at;
  }
}

TEST_P(AllForms, ASearchBehindDamageEndsWhenTheLoadIsCanceled) {
  auto bytes = smallFile(form_);
  bytes.resize(bytes.size() + (std::size_t{1} << 20));  // zeros are no blanks
  Session session;
  auto cursor = cursorOver(bytes, form_);
  cursor.attach(session);
  for (int i = 0; i < 4; ++i) ASSERT_TRUE(cursor.next());
  EXPECT_THROW(cursor.next(), BadRecord);
  session.CancelLoad = true;
  EXPECT_THROW(cursor.skipDamage(), LoadCanceled);
  session.CancelLoad = false;
  EXPECT_EQ(cursor.skipDamage().to, bytes.size());
  EXPECT_FALSE(cursor.next());
}

TEST(MarkedRecords, GatheringNoticesThatTheFileHasAnotherLayoutByNow) {
  std::vector<std::byte> bytes;
  RecordWriter(memorySink(bytes), bigEndian).singles("PARAMS", std::vector<float>(2500));
  const std::size_t opening = 24 + 4008;  // marks of the second block
  for (const std::size_t mark : {opening, opening + 4004}) {
    for (const std::uint32_t element : {1010U, 1990U}) {
      auto changed = bytes;
      changed[mark + 3] ^= std::byte{1};
      auto cursor = cursorOver(changed, bigEndian);
      ASSERT_TRUE(cursor.next());
      float value = 0;
      if ((element < 1500) != (mark == opening)) continue;  // the other mark is nearer
      EXPECT_THROW(cursor.gather(std::span(&element, 1), std::span(&value, 1)), BadRecord);
    }
  }
}

TEST(FormattedRecords, HeadersMayBeginInTheFirstColumn) {
  const std::string text =
      "'INTEHEAD'           2 'INTE'\n           1         100\n"
      "'NAMES   '           3 'CHAR'\n'A       ' 'B       ' 'C       '\n"
      "'PARAMS  '           2 'REAL'\n   0.10000000E+01   0.20000000E+01\n";
  const auto bytes = bytesOf(text);
  const auto detected = detectForm(MemorySource(bytes));
  ASSERT_TRUE(detected);
  EXPECT_EQ(detected->form, formatted);
  EXPECT_EQ(detected->keyword, "INTEHEAD");
  auto cursor = cursorOver(bytes, formatted);
  ASSERT_TRUE(cursor.next());
  EXPECT_TRUE(cursor.regular());
  EXPECT_THAT(cursor.integers(), ElementsAre(1, 100));
  ASSERT_TRUE(cursor.next());
  EXPECT_THAT(cursor.texts(), ElementsAre("A", "B", "C"));
  ASSERT_TRUE(cursor.next());
  EXPECT_TRUE(cursor.regular());
  EXPECT_THAT(cursor.singles(), ElementsAre(1.0F, 2.0F));
}

TEST(FormattedRecords, ZerosAndLongRunsOfBlanksAreNoPartOfAFile) {
  for (const char fill : {'\0', ' ', '\n'}) {
    std::vector<std::byte> bytes = bytesOf(" 'A       '           1 'INTE'\n           7\n");
    bytes.resize(bytes.size() + 10000, static_cast<std::byte>(fill));
    auto cursor = cursorOver(bytes, formatted);
    ASSERT_TRUE(cursor.next());
    EXPECT_THAT(cursor.integers(), ElementsAre(7));
    EXPECT_THROW(cursor.next(), BadRecord) << int{fill};
  }
}

TEST(DetectForm, TheFirstSoundHeaderDecidesWhateverItsKeyword) {
  std::vector<std::byte> bytes;
  RecordWriter writer(memorySink(bytes), {Framing::FourByteMarks, !littleEndianMachine});
  writer.texts("WRITTEN", std::vector<std::string>{"BY X"});  // an own record of a writer
  writer.integers("SEQHDR", std::vector<std::int32_t>{1});
  const MemorySource source(bytes);
  ASSERT_TRUE(detectForm(source));
  EXPECT_FALSE(detectForm(source)->form.byteSwap);
  constexpr std::string_view summary[] = {"SEQHDR"};
  EXPECT_FALSE(detectForm(source, summary)) << "a Check operation does not accept it";
}

TEST(FormattedRecords, LinesThatMakeUpForEachOthersLengthAreDamage) {
  // One field too few on the first line, one too many on the second: the record ends where it should.
  const std::string text =
      " 'PARAMS  '           6 'REAL'\n"
      "   0.10000000E+01   0.20000000E+01   0.30000000E+01                 \n"
      " 0.4E+01 0.5E+01    0.60000000E+01\n";
  Diagnosis why;
  EXPECT_EQ(readAll(cursorOver(bytesOf(text), formatted), &why), 0);
  EXPECT_THAT(why.text(), HasSubstr("field is out of place (PARAMS, occurrence 1, byte 101"));
}

TEST(FormattedRecords, ANumberLongerThanAnyWriterMakesIsDamageHoweverItIsReached) {
  const std::string text =
      " 'PARAMS  '           3 'REAL'\n   0.5   " + std::string(90, '9') + "E+04\n 0.25\n";
  for (const std::int64_t first : {0, 1}) {
    auto cursor = cursorOver(bytesOf(text), formatted);
    std::vector<float> values(2);
    EXPECT_THROW(
        {
          cursor.next();
          cursor.read(std::span<float>(values), first);
        },
        BadRecord);
  }
}

TEST(FormattedRecords, DamageNamesTheCharacterThatDoesNotFit) {
  const std::string text =
      " 'PARAMS  '           2 'REAL'\n"
      "   0.10000000E+01   0.1x000000E+01\n";
  Diagnosis why;
  EXPECT_EQ(readAll(cursorOver(bytesOf(text), formatted), &why), 0);
  EXPECT_THAT(why.text(), HasSubstr("PARAMS, occurrence 1, byte 51"));
}

}  // namespace
}  // namespace lumbarn
