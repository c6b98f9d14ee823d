#include <gmock/gmock.h>

#include "frame/Error.h"
#include "run/Compare.h"
#include "run/Convert.h"
#include "run/Run.h"
#include "support/Forms.h"
#include "support/ModelRun.h"
#include "support/Paths.h"

namespace lumbarn {
namespace {

std::string content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class Conversions : public ::testing::TestWithParam<test::Writer> {};

/// Files that can be written again as they are: not with lines of a writer's own, nor cut off.
TEST_P(Conversions, ThereAndBackGiveTheSameBytes) {
  const test::Writer& writer = GetParam();
  const bool ownLines = writer.headersInFirstColumn || writer.carriageReturns;
  for (const auto& [name, form] : test::everyForm) {
    if (form.framing == Framing::OneByteMarks || (form.formatted() && ownLines)) continue;
    const test::ModelRun run(writer, form);
    const Conversion back{.formatted = form.formatted(),
                          .littleEndian = !form.formatted() && form.byteSwap != test::littleEndianMachine};
    for (const auto& path :
         {run.specificationPath, run.dataPath, run.restartPath, run.initPath, run.gridPath, run.testsPath}) {
      if (writer.running && path == run.dataPath) continue;
      for (const Conversion& there :
           {Conversion{.formatted = true}, Conversion{}, Conversion{.littleEndian = true}}) {
        SCOPED_TRACE(path + " from " + name + (there.formatted ? " to text" : " to bytes"));
        const std::string other = run.folder.file("THERE"), again = run.folder.file("BACK");
        convert(path, other, there);
        convert(other, again, back);
        ASSERT_EQ(content(again), content(path));
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Writers, Conversions, ::testing::ValuesIn(test::everyWriter),
                         ::testing::PrintToStringParamName());

TEST(Conversion, WordsOfLogicalsStay) {
  const test::TemporaryFolder folder;
  const std::string path = folder.file("ANY.BIN");
  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), test::bigEndian);
  out.begin("LOGIHEAD", 3, "LOGI");
  out.addLogicals(std::array{1, 0, 0x7F000000});
  out.begin("SHORT", 2, "INT2");
  out.addShorts(std::array{-3, 300});
  test::writeFile(path, bytes);
  convert(path, folder.file("LITTLE"), {.littleEndian = true});
  convert(folder.file("LITTLE"), folder.file("BACK"));
  EXPECT_EQ(content(folder.file("BACK")), content(path));
  EXPECT_THROW(convert(path, path), Error);
  EXPECT_THROW(convert(path, folder.file("TEXT.FUNRST"), {.littleEndian = true}), Error);
}

TEST(Conversion, OfSomeStepsAndArrays) {
  const test::TemporaryFolder folder;
  const std::string source = examplePath("/data/HOLLIN/HOLLIN.UNRST"), target = folder.file("SOME.UNRST");
  Conversion some{.time = TimeSelection::parse("3,12:"), .arrays = {"PRES*"}};
  convert(source, target, some);
  std::vector<std::int32_t> numbers;
  for (const StepInfo& step : Run::open(target).steps()) numbers.push_back(step.number);
  EXPECT_THAT(numbers, ::testing::ElementsAre(3, 12, 13));
  EXPECT_THAT(content(target), ::testing::Not(::testing::HasSubstr("SWAT")));
  some.arrays = {"NONE"};
  EXPECT_THROW(convert(source, folder.file("NONE"), some), Error);
  some.time = TimeSelection::parse("99");
  EXPECT_THROW(convert(source, folder.file("NONE"), some), Error);
  EXPECT_FALSE(std::filesystem::exists(folder.file("NONE")));
}

TEST(Comparison, TellsWhereFilesDiffer) {
  const test::TemporaryFolder folder;
  const auto write = [&](const char* name, std::array<float, 3> values, const char* well, bool more) {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), test::bigEndian);
    out.singles("PRESSURE", std::array{1.0F});
    out.singles("PRESSURE", values);
    out.texts("ZWEL", std::array<std::string, 1>{well});
    if (more) out.integers("MORE", std::array{1});
    test::writeFile(folder.file(name), bytes);
    return folder.file(name);
  };
  const std::string a = write("A", {100, 0.1F, 5}, "P1", false);
  EXPECT_TRUE(compareFiles(a, write("B", {100, 0.1F, 5}, "P1", false)).equal);
  const std::string b = write("B", {101, 0.3F, 5}, "P1", false);
  const Differences found = compareFiles(a, b, {.relative = 0.001});
  EXPECT_FALSE(found.equal);
  ASSERT_EQ(found.largest.rows(), 2U);
  EXPECT_EQ(found.largest["place"].text(0), "occurrence 2, element 1");
  EXPECT_EQ(found.largest["a"].values<double>()[1], 0.1);
  EXPECT_EQ(found.overview["different"].values<std::int64_t>()[0], 2);
  EXPECT_EQ(found.overview["max"].values<double>()[0], 1);
  EXPECT_EQ(compareFiles(a, b, {.relative = 0.02, .top = 1}).largest.rows(), 1U);
  EXPECT_TRUE(compareFiles(a, b, {.absolute = 1}).equal);
  const Differences texts = compareFiles(a, write("C", {101, 0.1F, 5}, "P2", true), {.top = 1});
  EXPECT_EQ(texts.largest["b"].text(0), "P2");
  EXPECT_FALSE(compareFiles(a, folder.file("C"), {.keywords = {"MORE"}}).equal);
  EXPECT_THROW(compareFiles(a, b, {.keywords = {"NONE"}}), Error);
}

}  // namespace
}  // namespace lumbarn
