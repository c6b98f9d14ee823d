#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <functional>

#include <gtest/gtest.h>

#include "record/LineReader.h"
#include "record/Quarnet.h"
#include "support/FaultySource.h"
#include "support/Forms.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using namespace test;

/// Runs a load on a source that goes wrong at its n-th read, for every n, and hands what the load threw to
/// `check`.
template <class Load>
void atEveryRead(const std::vector<std::byte>& bytes, Load&& load) {
  for (const ReadFault fault : {ReadFault::Fails, ReadFault::Short}) {
    for (int at = 1;; ++at) {
      const auto script = std::make_shared<ReadScript>(ReadScript{fault, at});
      const auto source = std::make_shared<FaultySource>(std::make_shared<MemorySource>(bytes), script);
      try {
        load(source);
        ASSERT_FALSE(script->met()) << "read " << at << " went wrong, and the load ended as if it had not";
        EXPECT_GT(at, 1);
        break;
      } catch (const BadRecord& bad) {
        const Diagnosis& why = bad.diagnosis();
        EXPECT_EQ(why.message, Message::FileRead) << why.text();
        EXPECT_TRUE(why.problem.starts_with("cannot be read: ")) << why.text();
        EXPECT_TRUE(why.offset) << why.text();
        EXPECT_FALSE(why.cutOff) << "not what a running simulation leaves";
      }
    }
  }
}

TEST(FaultyReads, AreNeverTheEndOfAFile) {
  std::vector<std::byte> bytes;
  RecordWriter writer(memorySink(bytes), bigEndian);
  for (int i = 0; i < 3; ++i) writer.singles("PRESSURE", std::vector<float>(2500, 0.5F));
  writer.texts("ZWEL", std::vector<std::string>(200, "P1"));
  atEveryRead(bytes, [](const std::shared_ptr<const ByteSource>& source) {
    RecordCursor cursor(source, bigEndian, "memory");
    while (cursor.next()) {
      const std::uint32_t few[] = {3, 1700};
      std::vector<float> values(2500);
      if (cursor.header().keyword == "ZWEL") cursor.texts();
      if (cursor.header().keyword != "PRESSURE") continue;
      cursor.gather(few, values);
      cursor.read(std::span<float>(values));
    }
  });
  std::string text;
  while (text.size() < 200000) text += "1 JAN 2020  0.5  0.25\n";
  atEveryRead(bytesOf(text), [](const std::shared_ptr<const ByteSource>& source) {
    LineReader lines(source, "memory");
    while (lines.next()) {
    }
  });
}

TEST(FaultyReads, EndTheRoutinesOfTheRecordReaderThatHostsCall) {
  TemporaryFolder folder;
  std::vector<std::byte> bytes;
  RecordWriter(memorySink(bytes), bigEndian).integers("NUMS", std::vector<std::int32_t>(1500, 7));
  writeFile(folder.file("A"), bytes);
  bool met = true;
  for (int at = 1; met; ++at) {
    const FaultyFiles faulty(ReadFault::Fails, at);
    Session session;
    Quarnet quarnet(session);
    cFILETYPE file(session);
    std::array<bool, 5> qOK{};
    quarnet.OpenRecordFile(folder.file("A"), file, qOK[0]);
    file.setForm(bigEndian);
    std::vector<std::byte> raw;
    quarnet.ReadRawBytes(8, file, raw, qOK[1]);
    std::vector<float> singles(2);
    quarnet.ReadRawSingles(2, singles, file, qOK[2]);
    file.SeekByte(1);
    std::string keyword, type;
    std::int32_t n = 0;
    quarnet.ReadRecordHeader(file, keyword, n, type, qOK[3]);
    std::vector<std::int32_t> values;
    quarnet.ReadIntegers(n, "1000", file, values, qOK[4]);
    met = faulty.met();
    EXPECT_EQ(std::ranges::count(qOK, false) == 0, !met) << at;
    if (!met) break;
    ASSERT_FALSE(session.diagnoses().empty());
    EXPECT_EQ(session.diagnoses().front().message, Message::FileRead);
    EXPECT_EQ(session.diagnoses().front().path, folder.file("A"));
  }
}

TEST(FileSource, KnowsWhetherItsFileIsStillTheSame) {
  namespace fs = std::filesystem;
  using namespace std::chrono_literals;
  struct Case {
    const char* what;
    bool damage;
    std::function<void(const std::string&)> change;
  };
  const Case cases[] = {
      {"nothing", false, [](const std::string&) {}},
      {"a running simulation lets it grow", false, [](const auto& path) { fs::resize_file(path, 20); }},
      {"it is truncated", true, [](const auto& path) { fs::resize_file(path, 9); }},
      {"its contents are replaced", true,
       [](const auto& path) { fs::last_write_time(path, fs::last_write_time(path) + 5ms); }},
      {"its permissions change", false,
       [](const auto& path) { fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write); }},
      {"another file has its name", true,
       [](const auto& path) {
         writeFile(path + ".new", std::vector<std::byte>(10));
         fs::rename(path + ".new", path);
       }},
      {"it is removed", false, [](const auto& path) { fs::remove(path); }}};
  for (const Case& test : cases) {
    TemporaryFolder folder;
    const std::string path = folder.file("A");
    writeFile(path, std::vector<std::byte>(10));
    std::string why;
    const std::shared_ptr<const ByteSource> source = FileSource::open(path, why);
    test.change(path);
    const auto report = source->changed();
    EXPECT_EQ(report.has_value(), test.damage) << test.what;
    if (!report) continue;
    EXPECT_EQ(report->message, Message::FileChanged);
    EXPECT_EQ(report->path, path);
    EXPECT_THROW(RecordCursor(source, bigEndian, path).checkUnchanged(), BadRecord) << test.what;
    EXPECT_TRUE(changedSince(*source->stamp(), path)) << test.what;
  }
}

}  // namespace
}  // namespace lumbarn
