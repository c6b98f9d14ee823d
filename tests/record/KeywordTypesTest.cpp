#include <gtest/gtest.h>

#include "record/KeywordTypes.h"
#include "support/Forms.h"
#include "support/Session.h"

namespace lumbarn {
namespace {

using namespace test;

TEST(KeywordTypes, SayWhatIsUnexpected) {
  using Row = std::tuple<RecordFile, const char*, const char*, std::int64_t, std::optional<Message>>;
  constexpr Row rows[] = {
      {RecordFile::EGrid, "ACTNUM", "REAL", 960, Message::RecordType},
      {RecordFile::Restart, "SEQNUM", "REAL", 1, Message::RecordType},
      {RecordFile::Restart, "SEQNUM", "INTE", 0, Message::RecordLength},
      {RecordFile::Restart, "SGRP", "REAL", 112, {}},
      {RecordFile::Restart, "SGRP", "DOUB", 112, {}},
      {RecordFile::Specification, "NAMES", "INTE", 12, Message::RecordType},
      {RecordFile::Restart, "PRESSURE", "DOUB", 12, {}},  // no row, no opinion
      {RecordFile::Any, "ACTNUM", "REAL", 960, {}},
  };
  for (const auto& [file, keyword, type, count, message] : rows) {
    const RecordHeader header{
        .keyword = keyword, .typeWord = type, .type = typeInfo(type).type, .count = count, .headerAt = 24};
    const auto report = unexpected(file, header);
    EXPECT_EQ(report ? std::optional<Message>(report->message) : std::nullopt, message)
        << keyword << ' ' << type;
    EXPECT_EQ(report ? report->offset : 24U, 24U);
  }
}

}  // namespace
}  // namespace lumbarn
