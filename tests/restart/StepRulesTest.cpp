// Which steps a restart set has, by the walk that makes an index and by a load: both must say the same.

#include <chrono>
#include <filesystem>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "index/ReportStep.h"
#include "index/RestartIndex.h"
#include "index/RestartIndexHeads.h"
#include "support/FaultySource.h"
#include "support/IndexedRun.h"
#include "support/RestartLoad.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;
using Numbers = std::vector<std::int32_t>;

/// Writes the records of steps, with the habits and faults of one file.
struct StepRecords {
  explicit StepRecords(Form form) : out(memorySink(bytes), form) {}

  StepRecords& seqnum(std::int32_t number) {
    out.integers("SEQNUM", std::array{number});
    return *this;
  }
  StepRecords& head(std::int32_t number) {
    out.integers("INTEHEAD", IndexedRun::head({2, 2, 1}, 4, number));
    out.doubles("DOUBHEAD", std::array{static_cast<double>(number)});
    return *this;
  }
  StepRecords& open(float value = 1) {
    out.message("STARTSOL");
    return array("PRESSURE", value);
  }
  StepRecords& array(const char* name, float value) {
    out.singles(name, std::vector<float>(4, value));
    return *this;
  }
  StepRecords& end() {
    out.message("ENDSOL");
    return *this;
  }
  StepRecords& local(const char* name, std::int32_t number = 99) {
    out.texts("LGR", std::array<std::string, 1>{name});
    head(number).open(2).end();
    out.integers("ENDLGR", std::array{1});  // as some writers have it, others have no data
    return *this;
  }
  StepRecords& solution(float value = 1) { return open(value).end(); }
  StepRecords& step(std::int32_t number) { return seqnum(number).head(number).solution(); }

  std::vector<std::byte> bytes;
  RecordWriter out;
};

struct FileCase {
  const char* name;
  std::function<void(StepRecords&)> write;
  Numbers steps;
  std::size_t diagnoses = 0;  // of the walk
};
const FileCase unifiedFiles[] = {
    {"initial state is step 0 though its header has 1",
     [](auto& to) { to.seqnum(0).head(1).solution().step(1); },
     {0, 1}},
    {"header of a local grid has another number", [](auto& to) { to.step(3).local("FINE", 1); }, {3}},
    {"no SEQNUM", [](auto& to) { to.head(4).solution().local("FINE", 1); }, {4}},
    {"neither STARTSOL nor ENDSOL", [](auto& to) { to.seqnum(1).head(1).seqnum(2).head(2); }, {1, 2}},
    {"an array before SEQNUM", [](auto& to) { to.array("FOREIGN", 0).step(2); }, {2}},
    {"one step, still without solution", [](auto& to) { to.seqnum(1).head(1); }, {}, 1},
    {"SEQNUM alone at the end", [](auto& to) { to.step(1).seqnum(2); }, {1}, 1},
    {"SEQNUM alone between", [](auto& to) { to.step(1).seqnum(2).step(3); }, {1, 3}, 1},
    {"no ENDSOL at the end", [](auto& to) { to.step(1).seqnum(2).head(2).open(); }, {1}, 1},
    {"no ENDSOL between", [](auto& to) { to.step(1).seqnum(2).head(2).open().step(3); }, {1, 3}, 1},
    {"no solution at the end", [](auto& to) { to.step(1).seqnum(2).head(2); }, {1}, 1},
    {"a local grid is missing at the end",
     [](auto& to) { to.step(1).local("A").local("B").step(2).local("A"); },
     {1},
     1},
    {"a local grid is gone before the end",
     [](auto& to) { to.step(1).local("A").step(2).step(3); },
     {1, 2, 3}},
    {"a local grid without solution is missing at the end",
     [](auto& to) {
       to.step(1).out.texts("LGR", std::array<std::string, 1>{"A"});
       to.head(99).out.message("ENDLGR");
       to.step(2);
     },
     {1},
     1},
    {"two steps of one number", [](auto& to) { to.step(1).step(1); }, {1, 1}, 1},
};

Numbers numbersOf(const RestartIndex& index) {
  Numbers numbers;
  for (const IndexStep& step : index.steps) numbers.push_back(step.number);
  return numbers;
}

TEST(StepRules, TheNumberIsTheFirstThatExists) {
  const auto number = [](std::optional<std::int32_t> seqnum, std::int32_t file, std::int32_t head) {
    const auto words = IndexedRun::head({2, 2, 1}, 4, head);
    return stepNumber(seqnum, file, words);
  };
  EXPECT_EQ(number(0, 7, 1), 0);
  EXPECT_EQ(number({}, 7, 1), 7);
  EXPECT_EQ(number({}, -1, 1), 1);
  EXPECT_EQ(number({}, -1, -5), -1) << "a header word below 0 does not count";
  EXPECT_EQ(stepNumber({}, -1, std::vector(68, 3)), -1);
  auto day = IndexedRun::head({2, 2, 1}, 4, 1);
  day.resize(100);
  EXPECT_EQ(isoText(*dateOfHead(day, 2.27)), "2003-07-02T06:28:00") << "the time of day follows from days";
}

TEST(StepRules, UnifiedFiles) {
  const TemporaryFolder folder;
  for (const Form form : {bigEndian, formatted}) {
    for (const auto& [name, write, steps, diagnoses] : unifiedFiles) {
      SCOPED_TRACE(name);
      StepRecords records(form);
      write(records);
      const auto path = folder.file(form.formatted() ? "RUN.FUNRST" : "RUN.UNRST");
      writeFile(path, records.bytes);
      Session session;
      const auto index = walkRestart(session, std::array{path});
      EXPECT_EQ(numbersOf(index), steps);
      ASSERT_EQ(session.diagnoses().size(), diagnoses);
      for (const auto& diagnosis : session.diagnoses()) {
        EXPECT_NE(diagnosis.severity(), Severity::Damage);
        EXPECT_TRUE(diagnosis.offset) << diagnosis.text();
      }
      RestartLoad load(path);
      EXPECT_TRUE(load.run());
      EXPECT_EQ(load.reader.Damaged(), !index.whole);
      ASSERT_EQ(load.steps(), steps);
      const auto loaded = load.reader.RestartSteps();
      for (std::size_t i = 0; i < steps.size(); ++i) {
        const auto& step = loaded[i];
        EXPECT_EQ(step.dTime, index.steps.at(i).days);
        EXPECT_EQ(makeMoment(step.iYear, step.iMonth, step.iDay),
                  std::chrono::floor<std::chrono::days>(*index.steps.at(i).date));
      }
    }
  }
}

struct SetCase {
  const char* name;
  std::vector<std::function<void(StepRecords&)>> files;  // X0001, X0002 ...
  Numbers steps;
  bool qOK = true;
  bool whole = true;
  bool older = false;  // the second file is left from an earlier run
};

TEST(StepRules, StepFiles) {
  const auto usual = [](std::int32_t number) {
    return [number](StepRecords& to) { to.head(number).solution(); };
  };
  const auto numbered = [](std::int32_t number) { return [number](StepRecords& to) { to.step(number); }; };
  const auto wells = [](StepRecords& to) { to.head(2).out.integers("ICON", std::array{1, 2, 3}); };
  const auto truncated = [](StepRecords& to) {
    to.head(2).solution();
    to.bytes.resize(to.bytes.size() - 40);
  };
  const auto empty = [](StepRecords&) {};
  const SetCase sets[] = {
      {"number of the file wins over the header", {usual(7), usual(8), usual(9)}, {1, 2, 3}},
      {"each file begins with SEQNUM", {numbered(1), numbered(2), numbered(3)}, {1, 2, 3}},
      {"a file with wells only", {usual(1), wells, usual(3)}, {1, 2, 3}},
      {"a truncated file between", {usual(1), truncated, usual(3)}, {1, 3}, false, false},
      {"an empty file between", {usual(1), empty, usual(3)}, {1, 3}, false, false},
      {"one file with wells only", {wells}, {1}},
      {"a truncated last file", {usual(1), truncated}, {1}, true, false},
      {"a file older than the one before it", {usual(1), usual(2), usual(3)}, {1, 2, 3}, true, true, true},
  };
  for (const auto& [name, files, steps, qOK, whole, older] : sets) {
    SCOPED_TRACE(name);
    const TemporaryFolder folder;
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < files.size(); ++i) {
      StepRecords records(bigEndian);
      files[i](records);
      paths.push_back(folder.file("RUN.X000" + std::to_string(i + 1)));
      writeFile(paths.back(), records.bytes);
    }
    const auto time = std::filesystem::last_write_time(paths.front());
    if (older) std::filesystem::last_write_time(paths[1], time - std::chrono::minutes(2));
    Session session;
    const auto index = walkRestart(session, paths);
    EXPECT_EQ(numbersOf(index), steps);
    EXPECT_EQ(index.whole, whole);
    RestartLoad load(paths.front());
    EXPECT_EQ(load.run(), qOK);
    EXPECT_EQ(load.steps(), steps);
    EXPECT_FALSE(load.reader.Unified);
    for (const Session* reported : {&session, &load.session}) {
      const bool told = std::ranges::any_of(
          reported->diagnoses(), [](const Diagnosis& one) { return one.message == Message::FileOlder; });
      EXPECT_EQ(told, older);
    }
  }
}

TEST(StepRules, ArraysBehindALocalGridBelongToTheGlobalOne) {
  const TemporaryFolder folder;
  StepRecords records(bigEndian);
  records.step(1).local(" FINE").array("SWAT", 5);
  writeFile(folder.file("RUN.UNRST"), records.bytes);
  Session session;
  const auto index = walkRestart(session, std::array{folder.file("RUN.UNRST")});
  EXPECT_TRUE(index.steps.at(0).find("SWAT") && index.steps.at(0).find("pressure", "fine"));
  EXPECT_EQ(index.steps[0].groups.at(1).grid, "FINE");
  RestartLoad load(folder.file("RUN.UNRST"));
  ASSERT_TRUE(load.run());
  EXPECT_THAT(load.names(1, 1), ElementsAre("PRESSURE", "SWAT"));
  EXPECT_THAT(load.names(1, 2), ElementsAre("PRESSURE"));
}

/// The record with the keyword, of the second of three steps, has another byte; arrays are those left there.
TEST(StepRules, DataBehindDamageAreFound) {
  const TemporaryFolder folder;
  const auto path = folder.file("RUN.UNRST");
  const std::tuple<const char*, const char*, std::size_t, Numbers, std::vector<std::string>> cases[] = {
      {"mark of the data", "PRESSURE", 27, {1, 2, 3}, {"SWAT", "SGAS"}},
      {"header of an array", "SWAT", 2, {1, 2, 3}, {"PRESSURE", "SGAS"}},
      {"count of an array", "SWAT", 12, {1, 2, 3}, {"PRESSURE", "SGAS"}},
      {"type of SEQNUM", "SEQNUM", 16, {1, 2, 3}, {"PRESSURE", "SWAT", "SGAS"}},
      {"header of SEQNUM", "SEQNUM", 2, {1, 3}, {}},
  };
  for (const auto& [name, keyword, at, steps, arrays] : cases) {
    SCOPED_TRACE(name);
    StepRecords records(bigEndian);
    std::size_t second = 0;
    for (const std::int32_t number : {1, 2, 3}) {
      if (number == 2) second = records.bytes.size();
      records.seqnum(number).head(number).open().array("SWAT", 2).array("SGAS", 3).end();
    }
    const std::string_view all(reinterpret_cast<const char*>(records.bytes.data()), records.bytes.size());
    const std::size_t record = all.find(keyword, second) - 4;
    records.bytes[record + at] = std::byte{0x7F};
    if (at == 16) std::ranges::copy(bytesOf("REAL"), records.bytes.begin() + static_cast<long>(record + at));
    writeFile(path, records.bytes);

    Session session;
    const auto index = walkRestart(session, std::array{path});
    EXPECT_EQ(numbersOf(index), steps);
    EXPECT_FALSE(index.whole);
    ASSERT_FALSE(session.diagnoses().empty());
    const Diagnosis& gap = session.diagnoses().front();
    EXPECT_EQ(gap.severity(), Severity::Damage);
    EXPECT_THAT(gap.action, ::testing::HasSubstr("skipped bytes " + std::to_string(record)));
    RestartLoad load(path);
    EXPECT_FALSE(load.run());
    EXPECT_EQ(load.steps(), steps);
    if (arrays.empty()) continue;
    EXPECT_EQ(load.names(2), arrays);
    std::vector<std::string> listed;
    for (const IndexEntry* entry : cellArrays(index.steps.at(1).groups.front()))
      listed.emplace_back(entry->keyword.view());
    EXPECT_EQ(listed, arrays);
  }
  // A read that fails while records behind the damage are looked for is no end of the file either.
  bool met = true;
  for (int read = 1; met; ++read) {
    const FaultyFiles faults(ReadFault::Fails, read);
    Session session;
    walkRestart(session, std::array{path});
    met = faults.met();
    EXPECT_EQ(met, std::ranges::any_of(session.diagnoses(),
                                       [](const Diagnosis& diagnosis) {
                                         return diagnosis.what().starts_with("cannot be read") &&
                                                !diagnosis.action.starts_with("skipped");
                                       }))
        << read;
  }
}

}  // namespace
}  // namespace lumbarn
