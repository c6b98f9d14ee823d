#include <gtest/gtest.h>

#include "record/KeywordTypes.h"
#include "support/Forms.h"
#include "support/Session.h"

namespace lumbarn {
namespace {

using namespace test;

TEST(KeywordTypes, SayWhatIsUnexpected) {
  struct Case {
    RecordFile file;
    const char* keyword;
    const char* type;
    std::int64_t count;
    std::optional<Message> message;  // empty: nothing is wrong
  };
  constexpr Case cases[] = {
      {RecordFile::EGrid, "ACTNUM", "REAL", 960, Message::RecordType},
      {RecordFile::Restart, "SEQNUM", "REAL", 1, Message::RecordType},
      {RecordFile::Restart, "SEQNUM", "INTE", 0, Message::RecordLength},
      {RecordFile::Restart, "SGRP", "REAL", 112, {}},
      {RecordFile::Restart, "SGRP", "DOUB", 112, {}},
      {RecordFile::Specification, "NAMES", "INTE", 12, Message::RecordType},
      {RecordFile::Restart, "PRESSURE", "DOUB", 12, {}},  // no row, no opinion
      {RecordFile::Any, "ACTNUM", "REAL", 960, {}},
  };
  for (const Case& test : cases) {
    const RecordHeader header{.keyword = test.keyword,
                              .typeWord = test.type,
                              .type = typeInfo(test.type).type,
                              .count = test.count,
                              .headerAt = 24};
    const auto report = unexpected(test.file, keywordKey(header.keyword), header);
    EXPECT_EQ(report ? std::optional<Message>(report->message) : std::nullopt, test.message)
        << test.keyword << ' ' << test.type;
    EXPECT_EQ(report ? report->offset : 24U, 24U);
  }
}

TEST(KeywordTypes, EndAWalkAtTheRecordAndLetItGoOnBehind) {
  std::vector<std::byte> bytes;
  RecordWriter writer(memorySink(bytes), bigEndian);
  writer.singles("SEQNUM", std::vector<float>{2});
  writer.integers("INTEHEAD", std::vector<std::int32_t>(95));
  Session session;
  RecordCursor cursor = cursorOver(bytes, bigEndian);
  cursor.attach(session, RecordFile::Restart);
  try {
    cursor.next();
    FAIL();
  } catch (const BadRecord& bad) {
    EXPECT_EQ(
        bad.diagnosis().text(),
        "memory: record has an unexpected type (SEQNUM, occurrence 1, byte 0: expected INTE, found REAL)");
  }
  const Gap gap = cursor.skipDamage();
  EXPECT_EQ(gap.from, 0U);
  EXPECT_EQ(gap.to, 36U);
  ASSERT_TRUE(cursor.next());
  EXPECT_EQ(cursor.header().keyword, "INTEHEAD");
}

}  // namespace
}  // namespace lumbarn
