#include "TestParser.h"

#include <span>
#include <utility>

namespace lumbarn {

namespace {

/// Reads a record of the header. False for any other record.
bool readHeaderRecord(RecordCursor& cursor, TestHeader& test) {
  const RecordHeader& header = cursor.header();
  switch (header.type) {
    case ElementType::Single:
      if (header.keyword != "TIME") return false;
      if (header.count > 0) cursor.read(std::span(&test.time, 1));
      return true;
    case ElementType::Integer: {
      if (header.keyword != "DATE") return false;
      std::array<std::int32_t, 3> date{};
      if (header.count < static_cast<std::int64_t>(date.size())) return true;
      cursor.read(std::span<std::int32_t>(date));
      test.date = date;
      return true;
    }
    case ElementType::Text: {
      if (header.keyword != "WELLETC") return false;
      TextArray& texts = test.welletc;
      texts.width = static_cast<std::size_t>(header.width);
      // Blank, so that of a truncated record the texts that were read count.
      texts.bytes.assign(static_cast<std::size_t>(header.count) * texts.width, ' ');
      cursor.readText(texts.bytes);
      test.named = true;
      return true;
    }
    default:
      return false;
  }
}

}  // namespace

TestSink::~TestSink() = default;

ParsedTest parseTest(RecordWalk& walk, Session& session, TestHeader& header, TestSink& sink) {
  ParsedTest parsed;
  bool timed = false;
  bool reading = false;  // else what fails is the move to the next record
  try {
    while (walk.next()) {
      if (session.cancelled()) {
        parsed.complete = false;
        parsed.end = ParsedTest::End::Canceled;
        return parsed;
      }
      const RecordHeader& record = walk.header();
      if (record.is("TIME", ElementType::Single) && std::exchange(timed, true)) {
        walk.stepBack();
        parsed.end = ParsedTest::End::NextTest;
        return parsed;
      }
      if (!std::exchange(parsed.any, true)) header.beginsAt = record.headerAt;
      reading = true;
      if (readHeaderRecord(walk.cursor(), header)) {
        sink.headerRecord(record);
      } else if (!walk.reportType(session)) {
        sink.array(walk.cursor());
      }
      ++walk.recordsRead;
      reading = false;
    }
  } catch (BadRecord& damage) {
    walk.setDamaged();
    // If the TIME of the next test is what was truncated, this test is complete.
    parsed.complete = !reading && timed && walk.header().is("TIME", ElementType::Single);
    parsed.end = ParsedTest::End::Damage;
    parsed.damage = std::move(damage.diagnosis());
    parsed.damage->action = parsed.complete || !parsed.any
                                ? "kept the tests before it"
                                : "kept the tests before it, and of this one the arrays as read";
  }
  return parsed;
}

}  // namespace lumbarn
