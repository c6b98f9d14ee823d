#include <chrono>
#include <filesystem>
#include <functional>

#include <gtest/gtest.h>

#include "record/LineReader.h"
#include "record/RecordCursor.h"
#include "support/FaultySource.h"
#include "support/Forms.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using namespace test;

TEST(FaultyReads, AreNeverTheEndOfAFile) {
  std::vector<std::byte> records;
  RecordWriter(memorySink(records), bigEndian).singles("PRESSURE", std::vector<float>(2500, 0.5F));
  const auto lines = bytesOf(std::string(200000, '\n'));
  for (int round = 0, at = 1; round < 4; ++at) {
    const bool text = round > 1;
    const ReadFault fault = round % 2 == 0 ? ReadFault::Fails : ReadFault::Short;
    const auto script = std::make_shared<ReadScript>(ReadScript{fault, at});
    const auto source =
        std::make_shared<FaultySource>(std::make_shared<MemorySource>(text ? lines : records), script);
    try {
      LineReader reader(source, "memory");
      while (text && reader.next()) {
      }
      RecordCursor cursor(source, bigEndian, "memory");
      while (!text && cursor.next()) cursor.singles();
      EXPECT_FALSE(script->met()) << "read " << at << " went wrong, and the load ended as if it had not";
      EXPECT_GT(at, 1);
      ++round;
      at = 0;
    } catch (const BadRecord& bad) {
      EXPECT_EQ(bad.diagnosis().message, Message::FileRead);
      EXPECT_TRUE(bad.diagnosis().offset && !bad.diagnosis().cutOff)
          << "not what a running simulation leaves";
    }
  }
}

TEST(FaultyReads, HaveTheReasonOfTheSystem) {
  std::string why;
  std::byte byte{};
  EXPECT_EQ(InputFile("/proc/self/mem", why).readAt(0, std::span(&byte, 1), why), 0U);
  EXPECT_EQ(why, "Input/output error");
}

TEST(FileSource, KnowsWhetherItsFileIsStillTheSame) {
  namespace fs = std::filesystem;
  using namespace std::chrono_literals;
  const auto grow = [](const std::string& path) { fs::resize_file(path, 20); };
  const auto truncate = [](const std::string& path) { fs::resize_file(path, 9); };
  const auto touch = [](const std::string& path) {
    fs::last_write_time(path, fs::last_write_time(path) + 5ms);
  };
  const auto restrict = [](const std::string& path) { fs::permissions(path, fs::perms::owner_read); };
  const auto remove = [](const std::string& path) { fs::remove(path); };
  const auto replace = [](const std::string& path) {
    writeFile(path + ".new", std::vector<std::byte>(10));
    fs::rename(path + ".new", path);
  };
  const std::tuple<const char*, bool, std::function<void(const std::string&)>> rows[] = {
      {"running simulation", false, grow}, {"truncated", true, truncate}, {"rewritten", true, touch},
      {"permissions", false, restrict},    {"other file", true, replace}, {"removed", false, remove}};
  for (const auto& [what, damage, change] : rows) {
    TemporaryFolder folder;
    const std::string path = folder.file("A");
    writeFile(path, std::vector<std::byte>(10));
    std::string why;
    const std::shared_ptr<const ByteSource> source = FileSource::open(path, why);
    change(path);
    const auto report = source->changed();
    EXPECT_EQ(report.has_value(), damage) << what;
    if (!report) continue;
    EXPECT_EQ(report->message, Message::FileChanged);
    EXPECT_EQ(report->path, path);
    EXPECT_THROW(RecordCursor(source, bigEndian, path).checkUnchanged(), BadRecord) << what;
    EXPECT_TRUE(changedSince(*source->stamp(), path)) << what;
  }
}

}  // namespace
}  // namespace lumbarn
