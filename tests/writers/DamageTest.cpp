// One loop for damage: every file type of a run with any byte missing or changed, and with any read failing.

#include <set>

#include <gtest/gtest.h>

#include "cli/CommandRun.h"
#include "support/Fetched.h"

namespace lumbarn {
namespace {

using namespace test;

class Damage : public OfForm {
 protected:
  const ModelRun run_{everyWriter[2], form_};
};
INSTANTIATE_TEST_SUITE_P(Forms, Damage, ::testing::ValuesIn(everyForm), formName);

/// Every byte of the first header of each keyword and of what is around it, and some of all others.
std::vector<std::size_t> placesIn(const std::string& path, std::size_t size) {
  constexpr std::size_t headerBytes = 40, stride = 211;
  std::set<std::size_t> places;
  for (std::size_t at = 0; at < size; at += stride) places.insert(at);
  std::set<std::string> seen;
  std::string why;
  auto records = openRecords(path, why);
  while (records->next()) {
    if (!seen.insert(records->header().keyword).second) continue;
    for (std::size_t n = 0; n < headerBytes; ++n) places.insert(records->header().headerAt + n);
  }
  std::erase_if(places, [size](std::size_t at) { return at >= size; });
  return {places.begin(), places.end()};
}

TEST_P(Damage, LeavesNothingOutWithoutAReport) {
  for (const auto& file : filesOf(run_)) {
    const Fetched clean = loadAll(file);
    ASSERT_TRUE(clean.ok && clean.count > 0) << file.type;
    const std::string &path = file.data, bytes = cli::testing::content(path);
    const auto starts = recordStarts(path);
    for (const std::size_t at : placesIn(path, bytes.size())) {
      cli::testing::store(path, bytes.substr(0, at));
      const Fetched truncated = loadAll(file);
      // Between two records a file may end: a shorter run has the same bytes.
      const bool between = endsBetween(bytes, starts, at);
      EXPECT_EQ(between ? "" : lacking(truncated, clean), "") << file.type << " truncated at " << at;
      EXPECT_EQ(truncated.unplaced, "") << file.type << " truncated at " << at;
      auto flipped = bytes;
      flipped[at] = static_cast<char>(flipped[at] ^ 0x10);
      cli::testing::store(path, flipped);
      const Fetched changed = loadAll(file);
      EXPECT_LE(changed.count, 4 * clean.count) << file.type << " with byte " << at << " changed";
      EXPECT_EQ(changed.unplaced, "") << file.type << " with byte " << at << " changed";
    }
    cli::testing::store(path, bytes);
  }
}

TEST_P(Damage, OfAnyReadIsReported) {
  for (const auto& file : filesOf(run_)) {
    const Fetched clean = loadAll(file);
    for (const ReadFault fault :
         {ReadFault::Fails, ReadFault::Short, ReadFault::Changes, ReadFault::Touched}) {
      bool met = true;
      for (int n = 1; met; ++n) {
        EXPECT_EQ(wrongWith(fault, n, file, clean, met), "")
            << file.type << ", read " << n << " of fault " << static_cast<int>(fault);
      }
    }
  }
}

bool reports(const Session& session, Message message) {
  return std::ranges::any_of(session.diagnoses(), [&](const auto& one) { return one.message == message; });
}

TEST(FilesOfARun, HaveRecordsOfTheirTypesOrAReport) {
  const ModelRun run{everyWriter[2], bigEndian};
  const struct {
    std::string path;
    std::int32_t code;
    std::string keyword, type, other;
  } rows[] = {{run.gridPath, 23, "ACTNUM  ", "INTE", "REAL"},
              {run.restartPath, 11, "SEQNUM  ", "INTE", "REAL"},
              {run.initPath, 15, "LOGIHEAD", "LOGI", "INTE"}};
  for (const auto& row : rows) {
    std::string bytes = cli::testing::content(row.path);
    const auto at = bytes.rfind(row.keyword);
    ASSERT_NE(at, bytes.npos) << row.keyword;
    ASSERT_EQ(bytes.substr(at + 12, 4), row.type);
    cli::testing::store(row.path, bytes.replace(at + 12, 4, row.other));
    Host host;
    EXPECT_FALSE(host.load(row.path, row.code)) << row.keyword;
    EXPECT_TRUE(reports(host.session, Message::RecordType)) << row.keyword;
  }
}

}  // namespace
}  // namespace lumbarn
