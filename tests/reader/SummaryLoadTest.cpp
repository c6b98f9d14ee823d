#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reader/LoadDialog.h"
#include "summary/qvEclipseSUMMARY.h"
#include "support/Forms.h"
#include "support/SummaryBuilder.h"
#include "support/SummaryLoad.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using namespace test;
namespace fs = std::filesystem;

/// TIME and a few vectors of every kind that matters here; report steps of two rows each, times 1, 2, 3, ...
SummaryBuilder smallRun(int nRows = 6, float firstTime = 1) {
  SummaryBuilder run;
  run.vectors = {{"TIME", ":+:+:+:+", 0, "DAYS"}, {"FOPR", ":+:+:+:+", 0, "SM3/DAY"},
                 {"WOPR", "P1", 0, "SM3/DAY"},    {"WOPR", ":+:+:+:+", 0, ""},
                 {"WOPR", "P2", 0, "SM3/DAY"},    {"BPR", ":+:+:+:+", 1, "BARSA"},
                 {"ROFT", ":+:+:+:+", 393217, ""}};
  for (int i = 0; i < nRows; ++i) {
    const float time = firstTime + static_cast<float>(i);
    run.rows.push_back({{time, time * 10, time * 100, -1, time / 4, 250 + time, 0}, i % 2 == 0});
  }
  return run;
}

class SummaryFiles : public ::testing::Test {
 protected:
  TemporaryFolder folder_;
  const std::string spec_ = smallRun().write(folder_, "RUN", bigEndian);
};

TEST_F(SummaryFiles, FewOfManyVectorsArePickedOutOfTheirRows) {
  // Two blocks to a row, so that what is picked is not read with the header of the row.
  SummaryBuilder run;
  run.vectors = {{"TIME", ":+:+:+:+", 0, "DAYS"}};
  for (int w = 1; w < 1300; ++w) run.vectors.push_back({"WOPR", "P" + std::to_string(w), 0, "SM3/DAY"});
  for (int i = 0; i < 3; ++i) {
    std::vector<float> values(run.vectors.size());
    std::iota(values.begin(), values.end(), 2000.0F * static_cast<float>(i));
    run.rows.push_back({values, true});
  }
  for (const auto& [name, form] : everyForm) {
    SummaryLoad load(run.write(folder_, "RUN", form));
    load.reader.zOnly = "WOPR:P999,WOPR:P500,WOPR:P1299";
    ASSERT_TRUE(load.run()) << name;
    EXPECT_EQ(load.reader.nOnly, 3);
    EXPECT_THAT(load.names(), ElementsAre("TIME", "WOPR:P500", "WOPR:P999", "WOPR:P1299"));
    const float first[] = {0, 500, 999, 1299};
    for (std::size_t i = 0; i < 4; ++i)
      EXPECT_THAT(load.column(i + 1), ElementsAre(first[i], first[i] + 2000, first[i] + 4000)) << name;
  }
}

TEST_F(SummaryFiles, AGrowingFileIsReadOnFromItsLastStep) {
  SummaryLoad first(spec_);
  first.reader.Unified = true;
  ASSERT_TRUE(first.run());
  PositionWords resume{std::get<std::int32_t>(first.source(56)), std::get<std::int32_t>(first.source(57))};
  ASSERT_TRUE(resume.isSet());

  smallRun(8).write(folder_, "RUN", bigEndian);
  SummaryLoad second(spec_);
  second.reader.Unified = true;
  second.reader.ReadPosition64 = resume;
  ASSERT_TRUE(second.run());
  EXPECT_THAT(second.column(1), ElementsAre(5, 6, 7, 8)) << "the last step again, then the new ones";
}

/// Step files after a rerun with fewer steps, or with other faults, and what of them is read.
TEST_F(SummaryFiles, StepFilesOfARun) {
  struct Case {
    const char* what;
    std::vector<std::int32_t> seqhdr;
    std::function<void(std::vector<std::vector<std::byte>>& files)> change;
    std::vector<float> times;
    std::optional<Message> message;
    bool qOK = true;
  };
  const auto leftover = [&](std::vector<std::vector<std::byte>>& files) {
    files.push_back(smallRun(2, 5).steps(bigEndian)[0]);
  };
  const auto empty = [](auto& files) { files[1].clear(); };
  const auto damage = [](auto& files) { files[1].resize(files[1].size() - 4); };
  const std::vector<float> all{1, 2, 3, 4, 5, 6};
  const Case cases[] = {
      {"SEQHDR that falls does not end a set", {-952856885, -1000000000, 0}, {}, all, {}},
      {"rows of an earlier run decrease in TIME", {}, leftover, all, Message::SummaryTimeDecreases},
      {"an empty file", {}, empty, {1, 2, 5, 6}, Message::SummaryFileNoRows},
      {"damage in the middle", {}, damage, {1, 2, 3, 5, 6}, Message::RecordTruncated, false},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.what);
    TemporaryFolder folder;
    auto run = smallRun(6);
    run.seqhdr = one.seqhdr;
    const auto spec = run.write(folder, "RUN", bigEndian, false);
    auto files = run.steps(bigEndian);
    if (one.change) one.change(files);
    for (std::size_t i = 0; i < files.size(); ++i) {
      writeFile(folder.file("RUN.S000" + std::to_string(i + 1)), files[i]);
    }
    SummaryLoad strict(spec);
    EXPECT_EQ(strict.run(), one.qOK);
    SummaryLoad load(spec);
    load.reader.AcceptDamaged = true;
    ASSERT_TRUE(load.run());
    EXPECT_EQ(load.column(1), one.times);
    EXPECT_EQ(load.session.diagnoses().size(), one.message ? 1U : 0U);
    if (!one.message) continue;
    EXPECT_EQ(load.lastDiagnosis().message, one.message);
    EXPECT_TRUE(load.lastDiagnosis().offset);
  }
}

TEST_F(SummaryFiles, AStepFileThatChangesBeforeItsValuesAreReadIsReported) {
  struct Writer : Progress {
    void fileDone() override {
      if (--left == 0) fs::last_write_time(path, fs::last_write_time(path) + std::chrono::milliseconds(5));
    }
    int left = 3;
    std::string path;
  } writer;
  SummaryLoad load(smallRun().write(folder_, "SET", bigEndian, false));
  writer.path = folder_.file("SET.S0001");
  load.session.Container = &writer;
  EXPECT_FALSE(load.run());
  EXPECT_EQ(load.lastDiagnosis().message, Message::FileChanged);
}

TEST_F(SummaryFiles, DamageWithinARowLeavesTheOtherFiles) {
  SummaryBuilder run;
  for (int i = 0; i < 1100; ++i) run.vectors.push_back({i == 0 ? "TIME" : "FOPR"});
  for (const float time : {1.0F, 2.0F, 3.0F}) run.rows.push_back({std::vector<float>(1100, time)});
  SummaryLoad load(run.write(folder_, "WIDE", bigEndian, false));
  auto bytes = run.steps(bigEndian)[1];
  bytes[bytes.size() - 409] = std::byte{1};  // of the mark behind the first block
  writeFile(folder_.file("WIDE.S0002"), bytes);
  load.reader.AcceptDamaged = true;
  ASSERT_TRUE(load.run());
  EXPECT_THAT(load.column(1), ElementsAre(1, 3));
}

TEST_F(SummaryFiles, AStepFileOlderThanTheOneBeforeItMayBeLeftFromAnEarlierRun) {
  const auto spec = smallRun().write(folder_, "STEPS", bigEndian, false), third = folder_.file("STEPS.S0003");
  for (const int age : {50, 3600}) {  // seconds; files of a copied run differ by less than a minute
    fs::last_write_time(third, fs::last_write_time(spec) - std::chrono::seconds(age));
    SummaryLoad load(spec);
    ASSERT_TRUE(load.run());
    EXPECT_EQ(load.table.rows(), 6U);
    EXPECT_EQ(load.lastDiagnosis().path, age == 50 ? "" : third);
  }
  smallRun(2).write(folder_, "STEPS", bigEndian);
  fs::last_write_time(folder_.file("STEPS.UNSMRY"), fs::last_write_time(third) - std::chrono::hours(1));
  for (const bool asked : {true, false}) {
    SummaryLoad load(spec);
    load.reader.Unified = asked;
    ASSERT_TRUE(load.run());
    EXPECT_EQ(load.table.rows(), asked ? 2U : 6U) << "all step files are newer";
  }
}

/// Rows that do not pair up with ministeps, and TIME that decreases, within one file.
TEST_F(SummaryFiles, RowsOfOneFile) {
  struct Case {
    std::string records;  ///< M: MINISTEP, P: PARAMS, each with its one digit
    std::vector<float> times;
    std::optional<Message> message = {};
    std::uint64_t offset = 0;  ///< of the record at fault: a record of one word has 36 bytes
  };
  const Case cases[] = {
      {"M0P1M2P2M2P3", {1, 2, 3}},
      {"P1P2", {1, 2}},
      {"M0M1P1", {1}, Message::SummaryRowMissing},
      {"M0P1M1", {1}, Message::SummaryRowMissing, 72},
      {"M0P1P2", {1, 2}, Message::SummaryRowTwice, 72},
      {"P1P3P3P2P1", {1, 3, 3, 2, 1}, Message::SummaryTimeDecreases, 108},
  };
  SummaryBuilder run;
  run.vectors = {{"TIME", ":+:+:+:+", 0, "DAYS"}};
  const auto spec = run.write(folder_, "RUN", bigEndian);
  for (const Case& one : cases) {
    SCOPED_TRACE(one.records);
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), bigEndian);
    for (std::size_t i = 0; i < one.records.size(); i += 2) {
      const int value = one.records[i + 1] - '0';
      if (one.records[i] == 'P') out.singles("PARAMS", std::array{static_cast<float>(value)});
      if (one.records[i] == 'M') out.integers("MINISTEP", std::array{value});
    }
    writeFile(folder_.file("RUN.UNSMRY"), bytes);
    SummaryLoad load(spec);
    ASSERT_TRUE(load.run());
    EXPECT_EQ(load.column(1), one.times);
    EXPECT_EQ(load.reader.Damaged(), one.message.has_value());
    if (!one.message) continue;
    EXPECT_EQ(load.lastDiagnosis().message, one.message);
    EXPECT_EQ(load.lastDiagnosis().offset, one.offset);
  }
}

/// Report steps are numbered by SEQHDR only where it counts them, and by the names of step files.
TEST_F(SummaryFiles, ReportStepsOfWritersThatUseSeqhdrInTheirOwnWay) {
  struct Case {
    std::vector<std::int32_t> seqhdr;
    bool unified;
    std::vector<std::int32_t> steps;
    std::vector<float> ofThirteen;  ///< times of report step 13
  };
  const Case cases[] = {
      {{12, 13, 14}, true, {12, 12, 13, 13, 14, 14}, {3, 4}},
      {{5, 6, -952856885}, true, {11, 11, 12, 12, 13, 13}, {5, 6}},
      {{20, 22, 23}, true, {11, 11, 12, 12, 13, 13}, {5, 6}},
      {{952856885}, true, {11, 11}, {}},
      {{1, 2, 3}, false, {11, 11, 13, 13}, {5, 6}},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(&one - cases);
    TemporaryFolder folder;
    auto run = smallRun(static_cast<int>(2 * one.seqhdr.size()));
    run.firstStep = 10;
    run.seqhdr = one.seqhdr;
    const auto spec = run.write(folder, "RUN", bigEndian, one.unified);
    fs::remove(folder.file("RUN.S0012"));  // a gap in the set of step files
    SummaryLoad load(spec), limited(spec);
    ASSERT_TRUE(load.run());
    std::vector<std::int32_t> steps;
    for (const SummaryRow& row : load.reader.Rows()) steps.push_back(row.iReportStep);
    EXPECT_EQ(steps, one.steps);
    limited.reader.iStart = limited.reader.iEnd = 13;
    ASSERT_TRUE(limited.run());
    EXPECT_EQ(limited.table.empty() ? std::vector<float>() : limited.column(1), one.ofThirteen);
  }
}

TEST_F(SummaryFiles, ATableBeyondTheMemoryLimitGoesThroughAScratchFile) {
  SummaryLoad plain(spec_), kept(spec_), back(spec_), never(spec_);
  ASSERT_TRUE(plain.run());
  for (auto* load : {&kept, &back, &never}) load->session.memoryLimit = 50;

  // Left to the host: header words, then one vector behind the other.
  kept.reader.SaveScratchFiles = true;
  ASSERT_TRUE(kept.run());
  EXPECT_TRUE(kept.table.empty());
  const auto scratch = kept.reader.SummaryScratchFileName();
  std::ifstream in(scratch, std::ios::binary);
  std::array<std::int32_t, 7> words{};
  std::vector<float> values(37);
  in.read(reinterpret_cast<char*>(words.data()), sizeof words);
  in.read(reinterpret_cast<char*>(values.data()), 37 * 4);
  ASSERT_EQ(in.gcount(), 36 * 4);
  values.pop_back();
  EXPECT_THAT(words, ElementsAre(2, 2, 3, 1, 1, 6, 6));
  EXPECT_TRUE(std::ranges::equal(values, plain.table.values()));
  fs::remove(scratch);

  // Read back when memory suffices by then.
  ASSERT_TRUE(back.Host::run());
  back.session.memoryLimit = 0;
  ASSERT_TRUE(back.fetchSummary());
  EXPECT_TRUE(std::ranges::equal(back.table.values(), plain.table.values()));
  EXPECT_FALSE(never.run());
}

TEST(StepsAfterGrowth, RowsBeforeAGrowthReadZero) {
  std::vector<RowPlace> rows(250);
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].iStep = static_cast<std::int32_t>(i + 1);
  EXPECT_THAT(stepsAfterGrowth(std::span(rows).first(3), 3), ElementsAre(1, 2, 3));
  EXPECT_THAT(stepsAfterGrowth(std::span(rows).first(4), 3), ElementsAre(0, 0, 0, 4));
  const auto twice = stepsAfterGrowth(rows, 100);
  EXPECT_EQ(twice[199], 0) << "the second growth forgets the first hundred after the first growth, too";
  EXPECT_EQ(twice[200], 201);
}

/// Chooses the first member of the wells, and a range of steps.
class OneWellDialog final : public LoadDialog {
 public:
  bool show(const qvEclipseSPEC& spec, ECLIPSEINFO& selection, LoadDialogSettings& settings) override {
    EXPECT_TRUE(spec.querySPECRecord("KEYWORDS") && settings.zFileType == "SUMMARY" && !settings.hasLengths);
    selection.qClassChosen.fill(false);
    const auto wells = slot(getClassIndex("WELLS"));
    selection.qClassChosen[wells] = true;
    selection.qAllMembers = false;
    selection.xClass[wells].qMemberChosen.assign(selection.xClass[wells].members(), false);
    selection.xClass[wells].qMemberChosen[0] = true;
    settings.Unified = true;
    settings.iStart = 2;
    settings.iEnd = 3;
    return accept;
  }
  bool accept = true;
};

TEST_F(SummaryFiles, ADialogChoosesAndItsChoiceCanBeRepeatedSilently) {
  OneWellDialog dialog;
  SummaryLoad load(spec_), again(spec_);
  load.reader.Silent = false;
  load.reader.setLoadDialog(&dialog);
  ASSERT_TRUE(load.run());
  EXPECT_THAT(load.names(), ElementsAre("TIME", "WOPR:P1"));
  EXPECT_THAT(load.column(1), ElementsAre(3, 4, 5, 6));

  bool qOnly = false, qOK = false;
  load.reader.GetbOnly(again.only, qOnly, qOK);
  again.reader.SetbOnly(again.only, qOnly, qOK);
  ASSERT_TRUE(again.run());
  EXPECT_THAT(again.names(), ElementsAre("TIME", "WOPR:P1"));

  dialog.accept = false;
  EXPECT_FALSE(load.run());
}

TEST_F(SummaryFiles, AfterACancelThereIsNothingToFetch) {
  auto later = smallRun(2, 7);
  later.restart = "RUN";
  const auto spec = later.write(folder_, "NEXT", bigEndian);
  int left = -1;
  for (int turns = 0; left < 0; ++turns) {  // up to a load that comes to its end
    Host host(spec, 12);
    host.reader.NoRestart = false;
    left = turns;
    host.session.hostYield = [&] {
      if (left-- == 0) host.session.CancelLoad = true;
    };
    const bool loaded = host.run();
    EXPECT_EQ(loaded, left >= 0) << turns;
    host.session.hostYield = nullptr;
    host.session.CancelLoad = loaded;  // then the first fetch is canceled
    EXPECT_FALSE(host.fetchSummary());
    host.session.CancelLoad = false;
    EXPECT_FALSE(host.fetchSummary());
    EXPECT_EQ(host.reader.Count(), 0);
  }
}

TEST_F(SummaryFiles, FacadeQuirksThatHostsKnow) {
  SummaryLoad load(spec_);
  load.reader.whichtype = 13;
  EXPECT_TRUE(load.run());
  EXPECT_TRUE(load.table.empty()) << "code 13 loads but hands nothing out";
  EXPECT_EQ(load.reader.Count(), 6);
  EXPECT_EQ(load.reader.NumberTimeSteps(), 6);
  bool qOK = false;
  load.reader.InitSummaryKeys(qOK);
  EXPECT_TRUE(qOK);
  EXPECT_TRUE(load.reader.DeleteObject(12) && load.reader.IsInitialised(13));
  EXPECT_TRUE(load.reader.DeleteObject(13));
  EXPECT_FALSE(load.reader.IsInitialised(13));

  load.reader.NullValue = 0;
  load.reader.zOnly = "FOPR";
  qvEclipseReader(load.session).InitEclipseReader();
  EXPECT_EQ(load.session.NullValue, -999) << "shared by all readers of a session";
  EXPECT_EQ(load.reader.zOnly, "FOPR") << "the reader's own";
}

}  // namespace
}  // namespace lumbarn
