#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shapes/HeaderLayout.h"
#include "shapes/SelectionFixture.h"
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
    EXPECT_THAT(load.names(), ElementsAre("TIME", "WOPR:P500", "WOPR:P999", "WOPR:P1299"));
    const float first[] = {0, 500, 999, 1299};
    for (std::size_t i = 0; i < 4; ++i)
      EXPECT_THAT(load.column(i + 1), ElementsAre(first[i], first[i] + 2000, first[i] + 4000)) << name;
  }
}

TEST_F(SummaryFiles, DataThatCannotBeReadAreRefusedWithTheirPosition) {
  const auto path = folder_.file("RUN.UNSMRY");
  const auto refusal = [](const std::string& file) {
    SummaryLoad load(file);
    EXPECT_FALSE(load.run());
    return load.lastDiagnosis().text();
  };
  auto other = smallRun();
  for (auto& row : other.rows) row.values.push_back(1);
  writeFile(path, other.data(bigEndian));
  EXPECT_THAT(refusal(spec_), HasSubstr("RUN.UNSMRY: row does not fit the specification (PARAMS, occurrence "
                                        "1, byte 72: expected 7 values, found 8); kept 0 rows"));
  auto bytes = smallRun().data(bigEndian);
  bytes[bytes.size() - 60 + 12] = std::byte{0x7F};  // first byte of the count in front of the last 7 values
  writeFile(path, bytes);
  EXPECT_THAT(refusal(spec_), HasSubstr("PARAMS, occurrence 6"));
  writeFile(path, {});
  SummaryLoad empty(spec_);
  ASSERT_TRUE(empty.run()) << "a run that has just begun";
  EXPECT_EQ(empty.table.rows(), 0U);
  EXPECT_EQ(empty.headers.entries(), 6U);
  fs::remove(path);
  EXPECT_THAT(refusal(spec_), HasSubstr("RUN.UNSMRY: cannot be opened: No such file"));
  fs::create_directory(path);
  EXPECT_THAT(refusal(spec_), HasSubstr("is a folder"));
  EXPECT_FALSE(SummaryLoad(folder_.file("")).run());
}

TEST_F(SummaryFiles, DamageInsideARowIsAFailureUnlessItIsAccepted) {
  auto run = smallRun(4);
  run.vectors.resize(2500, {"FOPR", ":+:+:+:+", 0, "SM3/DAY"});
  for (auto& row : run.rows) row.values.resize(2500, row.values[0]);
  const auto spec = run.write(folder_, "RUN", bigEndian);
  auto bytes = run.data(bigEndian);
  const std::size_t lastRow = bytes.size() - 2008 - 4008 - 4008;
  bytes[lastRow + 4008 + 2] ^= std::byte{1};  // opening mark of its second block: skipping does not see it
  writeFile(folder_.file("RUN.UNSMRY"), bytes);

  SummaryLoad strict(spec);
  EXPECT_FALSE(strict.run());
  EXPECT_THAT(strict.lastDiagnosis().text(), HasSubstr("block marks disagree (PARAMS, occurrence 4, byte"));
  SummaryLoad lenient(spec);
  lenient.reader.AcceptDamaged = true;
  ASSERT_TRUE(lenient.run());
  EXPECT_THAT(lenient.column(1), ElementsAre(1, 2, 3));
  EXPECT_THAT(lenient.column(2499), ElementsAre(1, 2, 3));
  EXPECT_TRUE(lenient.reader.Damaged());
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

TEST_F(SummaryFiles, AStepFileOlderThanTheOneBeforeItMayBeLeftFromAnEarlierRun) {
  const TemporaryFolder folder;
  const auto spec = smallRun().write(folder, "RUN", bigEndian, false), third = folder.file("RUN.S0003");
  for (const auto age : {std::chrono::seconds(50), std::chrono::seconds(3600)}) {
    fs::last_write_time(third, fs::last_write_time(spec) - age);
    SummaryLoad load(spec);
    ASSERT_TRUE(load.run());
    EXPECT_EQ(load.table.rows(), 6U);
    EXPECT_EQ(load.lastDiagnosis().path, age.count() == 50 ? "" : third) << "files of a copied run";
    EXPECT_EQ(load.complaints().empty(), age.count() == 50);
  }
}

/// Rows that do not pair up with ministeps, and TIME that decreases, within one file.
TEST_F(SummaryFiles, RowsOfOneFile) {
  struct Case {
    std::vector<std::pair<char, float>> records;  ///< M: MINISTEP, P: PARAMS
    std::vector<float> times;
    std::optional<Message> message = {};
    std::uint64_t offset = 0;  ///< of the record at fault: a record of one word has 36 bytes
  };
  const Case cases[] = {
      {{{'M', 0}, {'P', 1}, {'M', 2}, {'P', 2}, {'M', 2}, {'P', 3}}, {1, 2, 3}},
      {{{'P', 1}, {'P', 2}}, {1, 2}},
      {{{'M', 0}, {'M', 1}, {'P', 1}}, {1}, Message::SummaryRowMissing},
      {{{'M', 0}, {'P', 1}, {'M', 1}}, {1}, Message::SummaryRowMissing, 72},
      {{{'M', 0}, {'P', 1}, {'P', 2}}, {1, 2}, Message::SummaryRowTwice, 72},
      {{{'P', 1}, {'P', 3}, {'P', 3}, {'P', 2}, {'P', 1}},
       {1, 3, 3, 2, 1},
       Message::SummaryTimeDecreases,
       108},
  };
  SummaryBuilder run;
  run.vectors = {{"TIME", ":+:+:+:+", 0, "DAYS"}};
  const auto spec = run.write(folder_, "RUN", bigEndian);
  for (const Case& one : cases) {
    SCOPED_TRACE(&one - cases);
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), bigEndian);
    for (const auto& [keyword, value] : one.records) {
      if (keyword == 'P') out.singles("PARAMS", std::array{value});
      if (keyword == 'M') out.integers("MINISTEP", std::array{static_cast<std::int32_t>(value)});
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

/// Report steps are numbered by SEQHDR only where it counts them.
TEST_F(SummaryFiles, ReportStepsOfWritersThatUseSeqhdrInTheirOwnWay) {
  struct Case {
    std::vector<std::int32_t> seqhdr;
    bool unified;
    std::vector<std::int32_t> steps;
  };
  const Case cases[] = {
      {{12, 13, 14}, true, {12, 12, 13, 13, 14, 14}},
      {{0, 0, 0}, true, {11, 11, 12, 12, 13, 13}},
      {{5, 6, -952856885}, true, {11, 11, 12, 12, 13, 13}},
      {{20, 22, 23}, true, {11, 11, 12, 12, 13, 13}},
      {{952856885}, true, {11, 11}},
      {{1, 2, 3}, false, {1, 1, 2, 2, 3, 3}},
      {{7, 7, 7}, false, {11, 11, 12, 12, 13, 13}},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(&one - cases);
    TemporaryFolder folder;
    const auto rows = static_cast<int>(one.steps.size());
    auto run = smallRun(rows);
    run.firstStep = 10;
    run.seqhdr = one.seqhdr;
    const auto spec = run.write(folder, "RUN", bigEndian, one.unified);
    SummaryLoad load(spec);
    ASSERT_TRUE(load.run());
    std::vector<std::int32_t> steps;
    for (const SummaryRow& row : load.reader.Rows()) steps.push_back(row.iReportStep);
    EXPECT_EQ(steps, one.steps);
    if (!one.unified) continue;  // the range then chooses files
    SummaryLoad limited(spec);
    limited.reader.iStart = limited.reader.iEnd = one.steps.back();
    ASSERT_TRUE(limited.run());
    EXPECT_THAT(limited.column(1), ElementsAre(rows - 1, rows));
  }
}

/// Hosts go on asking after a load or a fetch that ended early.
TEST_F(SummaryFiles, NothingIsFetchedAfterACanceledLoadOrFetch) {
  const auto fetch = [](SummaryLoad& load) {
    bool qOK = true;
    AttributeStores stores;
    load.reader.GetStoreSUMMARYData(load.table, stores, load.headers, load.source, load.only, qOK);
    EXPECT_FALSE(qOK);
    EXPECT_FALSE(load.fetchSummary());
    EXPECT_EQ(load.reader.Count(), 0);
  };
  for (int at = 0; at < 6; ++at) {  // at each point at which the host is asked
    SummaryLoad load(spec_);
    int yields = 0;
    load.session.hostYield = [&] {
      if (yields++ == at) load.session.CancelLoad = true;
    };
    if (load.run()) {
      EXPECT_GT(at, 2);
      break;
    }
    load.session.hostYield = nullptr;
    load.session.CancelLoad = false;
    fetch(load);
  }
  SummaryLoad load(spec_);
  ASSERT_TRUE(load.Host::run());
  load.session.CancelLoad = true;
  EXPECT_FALSE(load.fetchSummary());
  load.session.CancelLoad = false;
  fetch(load);
  ASSERT_TRUE(load.run());
  EXPECT_FALSE(load.load(folder_.file("NONE.SMSPEC"), 12));
  fetch(load);
}

TEST_F(SummaryFiles, ATableBeyondTheMemoryLimitGoesThroughAScratchFile) {
  SummaryLoad plain(spec_);
  ASSERT_TRUE(plain.run());

  // Left to the host: header words, then one vector behind the other.
  SummaryLoad kept(spec_);
  kept.session.memoryLimit = 50;
  kept.reader.SaveScratchFiles = true;
  ASSERT_TRUE(kept.run());
  EXPECT_TRUE(kept.table.empty());
  const auto scratch = kept.reader.SummaryScratchFileName();
  ASSERT_EQ(fs::file_size(scratch), 7 * 4 + 36 * 4U);
  std::ifstream in(scratch, std::ios::binary);
  std::array<std::int32_t, 7> words{};
  std::vector<float> values(36);
  in.read(reinterpret_cast<char*>(words.data()), sizeof words);
  in.read(reinterpret_cast<char*>(values.data()), 36 * 4);
  EXPECT_THAT(words, ElementsAre(2, 2, 3, 1, 1, 6, 6));
  EXPECT_TRUE(std::ranges::equal(values, plain.table.values()));
  fs::remove(scratch);

  // Read back when memory suffices by then; reported as out of memory when it does not.
  SummaryLoad back(spec_);
  back.session.memoryLimit = 50;
  ASSERT_TRUE(back.Host::run());
  back.session.memoryLimit = 0;
  ASSERT_TRUE(back.fetchSummary());
  EXPECT_TRUE(std::ranges::equal(back.table.values(), plain.table.values()));

  SummaryLoad never(spec_);
  never.session.memoryLimit = 50;
  EXPECT_FALSE(never.run());
  EXPECT_THAT(never.faults,
              ElementsAre("Error:Out of memory (No.7) In [qvEclipseSUMMARY (Code) (getSummaryArray)] "));
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

TEST_F(SummaryFiles, ClassesAndMembersAreChosenByTheByteList) {
  SummaryLoad load(spec_);
  load.reader.bOnly = listOf({"WELLS/P?", "BLOCKS/ALL"});
  load.reader.qOnly = true;
  ASSERT_TRUE(load.run());
  EXPECT_THAT(load.names(), ElementsAre("TIME", "WOPR:P1", "WOPR:P2", "BPR:1,1,1"));
  EXPECT_THAT(load.column(3), ElementsAre(0.25F, 0.5F, 0.75F, 1, 1.25F, 1.5F));

  load.reader.qOnly = false;
  ASSERT_TRUE(load.run());
  EXPECT_THAT(load.names(), ElementsAre("TIME", "FOPR", "ROFT:1-2"));

  SummaryLoad patterns(spec_);
  patterns.reader.zOnly = "wopr:*,NONE,BPR:1,1,1";
  patterns.reader.zExcept = "WOPR:P1";
  ASSERT_TRUE(patterns.run());
  EXPECT_THAT(patterns.names(), ElementsAre("TIME", "WOPR:P2", "BPR:1,1,1"));
  EXPECT_THAT(patterns.reader.UnmatchedPatterns(), ElementsAre("NONE"));
}

/// Chooses the first member of the wells, and a range of steps.
class OneWellDialog final : public LoadDialog {
 public:
  bool show(const qvEclipseSPEC& spec, ECLIPSEINFO& selection, LoadDialogSettings& settings) override {
    EXPECT_TRUE(spec.querySPECRecord("KEYWORDS"));
    EXPECT_EQ(settings.zFileType, "SUMMARY");
    EXPECT_FALSE(settings.hasLengths);
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
  SummaryLoad load(spec_);
  load.reader.Silent = false;
  load.reader.setLoadDialog(&dialog);
  ASSERT_TRUE(load.run());
  EXPECT_THAT(load.names(), ElementsAre("TIME", "WOPR:P1"));
  EXPECT_THAT(load.column(1), ElementsAre(3, 4, 5, 6));

  SummaryLoad again(spec_);
  again.reader.bOnly = load.only;
  again.reader.qOnly = load.reader.qOnly;
  ASSERT_TRUE(again.run());
  EXPECT_THAT(again.names(), ElementsAre("TIME", "WOPR:P1"));

  dialog.accept = false;
  EXPECT_FALSE(load.run());
}

TEST_F(SummaryFiles, FacadeQuirksThatHostsKnow) {
  SummaryLoad load(spec_);
  load.reader.whichtype = 13;
  EXPECT_TRUE(load.run());
  EXPECT_TRUE(load.table.empty()) << "code 13 loads but hands nothing out";
  EXPECT_EQ(load.reader.Count(), 6);
  EXPECT_EQ(load.reader.NumberTimeSteps(), 6);
  EXPECT_FALSE(load.reader.IsInitialised(12));
  for (const std::int32_t code : {12, 13}) {
    EXPECT_TRUE(load.reader.IsInitialised(13)) << "deleting " << code;
    EXPECT_TRUE(load.reader.DeleteObject(code));
  }
  EXPECT_FALSE(load.reader.IsInitialised(13));

  load.reader.NullValue = 0;
  load.reader.zOnly = "FOPR";
  qvEclipseReader(load.session).InitEclipseReader();
  EXPECT_EQ(load.session.NullValue, -999) << "shared by all readers of a session";
  EXPECT_EQ(load.reader.zOnly, "FOPR") << "the reader's own";

  FileDescriptor file{spec_};
  EXPECT_TRUE(load.reader.CheckifEclipse(file));
  EXPECT_EQ(file.iType, 12);
  EXPECT_FALSE(load.reader.CheckECLIPSEFileType(spec_, 18));
}

}  // namespace
}  // namespace lumbarn
