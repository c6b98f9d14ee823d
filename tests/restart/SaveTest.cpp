#include <functional>
#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/Recogniser.h"
#include "restart/qvEclipseSAVE.h"
#include "support/FaultySource.h"
#include "support/Forms.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using namespace test;

/// A header of 200 words whose words hold their own numbers, but for the report step and the year.
std::vector<std::int32_t> head(std::int32_t step, std::size_t length = 140, std::int32_t year = 99) {
  std::vector<std::int32_t> words(140);
  std::iota(words.begin(), words.end(), 1);
  words[38] = step;
  words[139] = year;
  words.resize(length);
  return words;
}

/// One step as the compositional simulator writes it: arrays of every type around the two headers.
void writeStep(RecordWriter& out, std::int32_t step, std::vector<std::int32_t> header) {
  out.integers("DYNAMIC", std::vector<std::int32_t>{7, 8});
  out.integers("SEQNUM", std::array{step});
  out.integers("INTEHEAD", header);
  out.logicals("LOGIHEAD", std::array{true, false});
  out.doubles("DOUBHEAD", std::array{10.25 * step, 0.0});
  out.message("STARTSOL");
  out.singles("PRESSURE", std::vector<float>(20, 1.5F));
  out.texts("ZWEL", std::vector<std::string>{"P1", "P2"});
  out.integers("INTEHEAD", head(step + 1000));  // of a local grid
}

std::vector<std::byte> unified(const Form& form, std::initializer_list<std::int32_t> steps) {
  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), form);
  out.integers("INITIAL", std::vector<std::int32_t>(3, 1));
  out.integers("STATIC", std::vector<std::int32_t>(3, 1));
  for (const std::int32_t step : steps) writeStep(out, step, head(step));
  return bytes;
}

struct SaveLoad {
  bool run(const std::string& path) {
    bool qOK = false;
    save.CheckSAVEFile(path);
    save.getSAVEData(qOK);
    save.GetRestartRecordTimesAndSteps(steps, times, nSteps, listed);
    return qOK;
  }
  std::string told() const { return session.diagnoses().empty() ? "" : session.diagnoses().back().text(); }

  Session session;
  qvEclipseSAVE save{session};
  bool listed = false;
  std::vector<std::int32_t> steps;
  std::vector<double> times;
  std::int32_t nSteps = -1;
};

class SaveForm : public OfForm {
 protected:
  std::string unifiedName() const { return folder_.file(form_.formatted() ? "RUN.FSAVE" : "RUN.SAVE"); }
  TemporaryFolder folder_;
};
INSTANTIATE_TEST_SUITE_P(Forms, SaveForm, ::testing::ValuesIn(everyForm), formName);

TEST_P(SaveForm, StepsOfAUnifiedFileWithLimits) {
  const auto bytes = unified(form_, {0, 3, 4, 9});
  const std::string odd = folder_.file("state of run.bin");
  for (const std::string& path : {unifiedName(), odd}) writeFile(path, bytes);
  using Steps = std::vector<std::int32_t>;
  const std::tuple<int, int, Steps> rows[] = {{-1, -1, {0, 3, 4, 9}}, {-1, 3, {0, 3}}, {3, -1, {3}},
                                              {1, 5, {3, 4}},         {9, 2, {9}},     {5, 8, {}}};
  for (const auto& [iStart, iEnd, steps] : rows) {
    SaveLoad load;
    load.save.iStart = iStart;
    load.save.iEnd = iEnd;
    ASSERT_TRUE(load.run(unifiedName())) << load.told();
    EXPECT_TRUE(load.save.Unified);
    EXPECT_EQ(load.steps, steps.empty() ? Steps{-32768} : steps) << iStart << ":" << iEnd;
    EXPECT_EQ(load.nSteps, static_cast<int>(steps.size()));
    EXPECT_EQ(load.save.xSEQ.size(), std::max<std::size_t>(steps.size(), 1));
    EXPECT_THAT(load.session.diagnoses(), IsEmpty());
  }
  SaveLoad load;
  ASSERT_TRUE(load.run(odd)) << "a name that tells nothing is read as it stands";
  EXPECT_THAT(load.times, ElementsAre(0, 30.75, 41, 92.25));
  std::int32_t iDay = 0, iMonth = 0, iYear = 0;
  float sFraction = 0;
  load.save.xSEQ[1].getRESTARTDateAndTime(iDay, iMonth, iYear, sFraction);
  EXPECT_THAT((std::array{iDay, iMonth, iYear}), ElementsAre(85, 86, 87));
  EXPECT_EQ(sFraction, 0.75F);
  std::int32_t iProgram = 0;
  std::int32_t iVersion = 0;
  load.save.getSimulatorVersionInfo(iProgram, iVersion);
  EXPECT_THAT((std::array{iProgram, iVersion}), ElementsAre(300, 1999));
}

TEST_P(SaveForm, AFileForEachStepEndsItsStepWithTheHeaders) {
  const std::string stem = form_.formatted() ? "RUN.D00" : "RUN.V00";
  for (const std::int32_t step : {2, 3, 7}) {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), form_);
    // A step without a number of its own has that of its name; what stands behind the headers is not looked
    // at.
    writeStep(out, step, head(step, step == 7 ? 20 : 140));
    out.header("ODD", 7, "WHAT");
    if (step == 7) bytes = unified(form_, {-1});
    writeFile(folder_.file(stem + "0" + std::to_string(step)), bytes);
  }
  SaveLoad all;
  writeFile(unifiedName(), unified(form_, {1}));
  ASSERT_TRUE(all.run(unifiedName())) << "a load leaves nothing for the next one of the same object";
  ASSERT_TRUE(all.run(folder_.file(stem + "03"))) << all.told();
  EXPECT_FALSE(all.save.Unified);
  EXPECT_THAT(all.steps, ElementsAre(2, 3, 7));
  bool qOK = false;
  SaveLoad listed;
  listed.save.SetMultList(2, {folder_.file(stem + "03"), folder_.file(stem + "04"), "more"}, qOK);
  ASSERT_TRUE(listed.run(folder_.file(stem + "03")));
  EXPECT_THAT(listed.steps, ElementsAre(3)) << "a missing file is passed over";
}

TEST(Save, WordsOfTheHeaderByItsLength) {
  const std::tuple<std::size_t, std::int32_t, std::array<std::int32_t, 5>> rows[] = {
      {10, 0, {-1, -1, -1, -1, -1}},    {11, 0, {11, -1, -1, -1, -1}},     {37, 0, {11, -1, -1, -1, -1}},
      {38, 0, {11, -1, -1, -1, -1}},    {39, 0, {11, 6, -1, -1, -1}},      {83, 0, {11, 6, -1, -1, -1}},
      {84, 0, {11, 6, 84, -1, -1}},     {87, 0, {11, 6, 84, 87, -1}},      {139, 99, {11, 6, 84, 87, -1}},
      {140, 99, {11, 6, 84, 87, 1999}}, {140, 5, {11, 6, 84, 87, 2005}},   {140, 89, {11, 6, 84, 87, 2089}},
      {140, 90, {11, 6, 84, 87, 1990}}, {140, 999, {11, 6, 84, 87, 2899}}, {140, 1000, {11, 6, 84, 87, 1000}},
      {140, -1, {11, 6, 84, 87, -1}},
  };
  for (const auto& [length, year, expected] : rows) {
    SCOPED_TRACE(::testing::Message() << length << " words, year " << year);
    Session session;
    std::string report;
    session.faultReporter = [&](std::string_view text) { report = text; };
    qvEclipseSAVESequence step(session);
    bool qOK = false;
    step.processINTEHEAD(head(6, length, year), qOK);
    EXPECT_EQ(qOK, length != 38);
    EXPECT_THAT(report, HasSubstr(qOK ? "" : "(No.9) In [qvEclipseSAVESequence"));
    EXPECT_EQ((std::array{step.iWord11, step.iSeqnum, step.iStartWords[2], step.iYear, step.iVersion}),
              expected);
  }
}

TEST(Save, WhatEndsAStepWithoutSuccess) {
  const TemporaryFolder folder;
  const std::string path = folder.file("RUN.SAVE");
  const std::tuple<std::function<void(RecordWriter&)>, const char*> rows[] = {
      {[](RecordWriter& out) { out.header("ODD", 0, "WHAT"); }, ""},
      {[](RecordWriter& out) { out.header("ODD", 1, "WHAT"); }, "of this type (ODD, occurrence 1"},
      {[](RecordWriter& out) { writeStep(out, 2, head(2, 38)); }, "too short (INTEHEAD, occurrence 3"},
      {[](RecordWriter& out) { out.integers("SEQNUM", {}); }, "too short (SEQNUM, occurrence 2"},
      {[](RecordWriter& out) { out.integers("SAVEHEAD", {}); }, "too short (SAVEHEAD, occurrence 1"}};
  for (const auto& [add, told] : rows) {
    auto bytes = unified(bigEndian, {1});
    RecordWriter out(memorySink(bytes), bigEndian);
    add(out);
    if (*told == '\0') writeStep(out, 2, head(2));
    for (const int byte : {0, 0, 0, 4, 0, 0, 0, 1, 0, 0, 0, 4}) {
      if (std::string_view(told).find("ODD") != std::string_view::npos) bytes.push_back(std::byte(byte));
    }
    writeFile(path, bytes);
    SaveLoad load;
    EXPECT_EQ(load.run(path), *told == '\0') << told;
    EXPECT_THAT(load.told(), HasSubstr(told));
  }
  EXPECT_FALSE(SaveLoad().save.CheckSAVEFile(folder.file("RUN.V0001")));

  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), bigEndian);
  out.integers("SAVEHEAD", std::array{500, 100});
  for (const std::int32_t step : {4, 5}) writeStep(out, step, head(step));
  writeFile(path, bytes);
  SaveLoad one;
  ASSERT_TRUE(one.run(path));
  EXPECT_EQ(one.nSteps, 1) << "a file that begins with SAVEHEAD is one step";
  const auto whole = unified(bigEndian, {1, 2});
  writeFile(folder.file("CUT.SAVE"), std::span(whole).first(whole.size() - 10));
  SaveLoad truncated;
  ASSERT_TRUE(truncated.run(folder.file("CUT.SAVE")));
  EXPECT_THAT(truncated.steps, ElementsAre(1));
  EXPECT_THAT(truncated.told(), AllOf(HasSubstr("byte"), HasSubstr("skipped the step")));
  EXPECT_EQ((std::array{one.save.xSEQ[0].iProgram, one.save.xSEQ[0].iVersion}), (std::array{500, 100}));
  const FaultyFiles rewritten(ReadFault::Touched, 1);
  SaveLoad load;
  EXPECT_FALSE(load.run(path));
  EXPECT_THAT(load.told(), HasSubstr("another modification time"));
}

}  // namespace
}  // namespace lumbarn
