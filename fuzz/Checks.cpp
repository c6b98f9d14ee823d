#include "Checks.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>

#include "record/RecordCursor.h"

namespace lumbarn::fuzz {

namespace {

constexpr const char* path = "fuzz input";

/// Elements of the current record as bytes.
std::vector<std::byte> readElements(RecordCursor& cursor, std::int64_t first, std::size_t count) {
  const auto read = [&](auto value, auto call) {
    std::vector<decltype(value)> values(count);
    call(std::span(values));
    const auto bytes = std::as_bytes(std::span(values));
    return std::vector<std::byte>(bytes.begin(), bytes.end());
  };
  switch (cursor.header().type) {
    case ElementType::Integer:
    case ElementType::Short:
      return read(std::int32_t{}, [&](auto out) { cursor.read(out, first); });
    case ElementType::Single:
      return read(float{}, [&](auto out) { cursor.read(out, first); });
    case ElementType::Double:
      return read(double{}, [&](auto out) { cursor.read(out, first); });
    case ElementType::Logical:
      return read(std::int16_t{}, [&](auto out) { cursor.readLogicals(out, first); });
    case ElementType::Text:
      count *= static_cast<std::size_t>(cursor.header().width);
      return read(char{}, [&](auto out) { cursor.readText(out, first); });
    default:
      return {};
  }
}

void checkDiagnosis(const Diagnosis& diagnosis, const RecordCursor& cursor) {
  check(diagnosis.path == path, "damage has a path");
  check(diagnosis.offset.has_value(), "damage has a place");
  check(*diagnosis.offset <= cursor.fileSize(), "the place of damage is in the file");
  check(!diagnosis.problem.empty() && !diagnosis.text().empty(), "damage has a text");
}

/// Two parts put together, and picked elements, against the whole.
void checkParts(RecordCursor& cursor, const std::vector<std::byte>& whole) {
  const auto count = cursor.header().count;
  const auto split = (2 * count + 2) / 3;
  auto parts = readElements(cursor, 0, static_cast<std::size_t>(split));
  const auto rest = readElements(cursor, split, static_cast<std::size_t>(count - split));
  parts.insert(parts.end(), rest.begin(), rest.end());
  check(parts == whole, "parts agree with the whole");

  if (cursor.header().type != ElementType::Single) return;
  std::vector<std::uint32_t> wanted;
  for (std::int64_t i = count / 7; i < count; i += 1 + count / 3)
    wanted.push_back(static_cast<std::uint32_t>(i));
  std::vector<float> picked(wanted.size());
  cursor.gather(wanted, picked);
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    check(std::memcmp(&picked[i], whole.data() + 4 * std::size_t{wanted[i]}, 4) == 0,
          "picking agrees with reading");
  }
}

/// Sends the cursor back to the record that it is on.
void checkReturn(RecordCursor& cursor, const std::vector<std::byte>& whole) {
  const auto header = cursor.header();
  const auto next = cursor.nextPosition();
  const bool regular = cursor.regular();
  cursor.setCurrent(header, regular);
  check(readElements(cursor, 0, static_cast<std::size_t>(header.count)) == whole,
        "a record can be read again");
  cursor.setCurrent(header);
  check(cursor.nextPosition() == next && cursor.regular() == regular, "a record is found again as it was");
}

void checkRecord(RecordCursor& cursor) {
  try {
    const auto whole = readElements(cursor, 0, static_cast<std::size_t>(cursor.header().count));
    checkParts(cursor, whole);
    checkReturn(cursor, whole);
  } catch (const BadRecord& damage) {
    checkDiagnosis(damage.diagnosis(), cursor);
    check(damage.diagnosis().keyword == cursor.header().keyword, "damage has the keyword of its record");
  }
}

}  // namespace

void check(bool promise, std::string_view what) {
  if (promise) return;
  std::fprintf(stderr, "broken promise: %.*s\n", static_cast<int>(what.size()), what.data());
  std::abort();
}

std::filesystem::path temporaryPath(std::string_view ending) {
  constexpr unsigned tenDigits = 1000000000;
  const auto number = std::to_string(tenDigits + std::random_device()() % tenDigits);
  return std::filesystem::temp_directory_path() / ("lumbarn-fuzz-" + number + std::string(ending));
}

void checkRecords(std::vector<std::byte> bytes, const Form& form) {
  RecordCursor cursor(std::make_shared<MemorySource>(std::move(bytes)), form, path);
  try {
    for (std::uint64_t last = 0; cursor.next(); last = cursor.nextPosition()) {
      const auto& header = cursor.header();
      check(header.headerAt >= last && header.dataAt > header.headerAt, "records come one behind the other");
      check(cursor.nextPosition() >= header.dataAt && cursor.nextPosition() <= cursor.fileSize(),
            "a record ends in the file");
      check(cursor.occurrence() > 0, "records are counted");
      checkRecord(cursor);
    }
  } catch (const BadRecord& damage) {
    checkDiagnosis(damage.diagnosis(), cursor);
  }
}

}  // namespace lumbarn::fuzz
