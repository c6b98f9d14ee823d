#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shapes/HeaderLayout.h"
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

class EveryForm : public ::testing::TestWithParam<std::tuple<NamedForm, bool>> {
 protected:
  Form form() const { return std::get<0>(GetParam()).form; }
  bool unified() const { return std::get<1>(GetParam()); }
  TemporaryFolder folder_;
};
INSTANTIATE_TEST_SUITE_P(Summary, EveryForm,
                         ::testing::Combine(::testing::ValuesIn(everyForm), ::testing::Bool()),
                         [](const auto& test) {
                           return std::get<0>(test.param).name +
                                  std::string(std::get<1>(test.param) ? "Unified" : "Multiple");
                         });

TEST_P(EveryForm, TheTableHasTheFilesValuesAndTheHeadersSayWhatTheyAre) {
  SummaryLoad load(smallRun().write(folder_, "RUN", form(), unified()));
  ASSERT_TRUE(load.run());
  EXPECT_EQ(load.reader.Unified, unified());
  EXPECT_THAT(load.names(), ElementsAre("TIME", "FOPR", "WOPR:P1", "WOPR:P2", "BPR:1,1,1", "ROFT:1-2"));
  EXPECT_THAT(load.column(1), ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(load.column(4), ElementsAre(0.25F, 0.5F, 0.75F, 1, 1.25F, 1.5F))
      << "the dummy's column is left out";
  EXPECT_EQ(ExtractAttribute(attributeSource, load.headers, 3), "RUN");
  EXPECT_EQ(ExtractAttribute(attributeIndex, load.headers, 5), "1 1 1");
  EXPECT_EQ(ExtractAttribute(attributeVerbose, load.headers, 3), "Oil production rate");
  EXPECT_TRUE(load.session.diagnoses().empty());
  bool qOK = true;
  load.reader.GetSUMMARYData(load.table, load.headers, load.source, load.only, qOK);
  EXPECT_FALSE(qOK) << "a load is fetched once";
}

TEST_P(EveryForm, StepsAreChosenByNumber) {
  const auto spec = smallRun().write(folder_, "RUN", form(), unified());
  const std::tuple<int, int, std::vector<float>> rows[] = {
      {2, 3, {3, 4, 5, 6}}, {2, -1, {3, 4}}, {50, -1, {}}};
  for (const auto& [iStart, iEnd, times] : rows) {
    SummaryLoad load(spec);
    load.reader.iStart = iStart;
    load.reader.iEnd = iEnd;
    ASSERT_TRUE(load.run()) << iStart;
    EXPECT_EQ(load.column(1), times);
    EXPECT_FALSE(load.reader.AllData);
  }
}

class EveryFraming : public OfForm {
 protected:
  TemporaryFolder folder_;
};
INSTANTIATE_TEST_SUITE_P(Summary, EveryFraming, ::testing::ValuesIn(everyForm), formName);

TEST_P(EveryFraming, FewOfManyVectorsArePickedOutOfTheirRows) {
  // Two blocks to a row, so that what is picked is not at hand with the header of the row.
  SummaryBuilder run;
  run.vectors = {{"TIME", ":+:+:+:+", 0, "DAYS"}};
  for (int w = 1; w < 1300; ++w) run.vectors.push_back({"WOPR", "P" + std::to_string(w), 0, "SM3/DAY"});
  for (int i = 0; i < 3; ++i) {
    std::vector<float> values(run.vectors.size());
    std::iota(values.begin(), values.end(), 2000.0F * static_cast<float>(i));
    run.rows.push_back({values, true});
  }
  SummaryLoad load(run.write(folder_, "RUN", form_));
  load.reader.zOnly = "WOPR:P999,WOPR:P500,WOPR:P1299";
  ASSERT_TRUE(load.run());
  EXPECT_THAT(load.names(), ElementsAre("TIME", "WOPR:P500", "WOPR:P999", "WOPR:P1299"));
  const float first[] = {0, 500, 999, 1299};
  for (std::size_t i = 0; i < 4; ++i)
    EXPECT_THAT(load.column(i + 1), ElementsAre(first[i], first[i] + 2000, first[i] + 4000));
}

/// Cuts the data file everywhere and flips many of its bytes; that no byte does harm while records are read
/// is the matter of other tests. Whatever is delivered must be whole rows of the run, and whatever is not
/// delivered must be explained with a path and, for damage inside a record, a byte.
TEST_P(EveryFraming, DamageAnywhereInTheDataLeavesTheRowsBeforeIt) {
  const auto run = smallRun(3);
  const auto spec = run.write(folder_, "RUN", form_);
  const auto data = folder_.file(form_.formatted() ? "RUN.FUNSMRY" : "RUN.UNSMRY");
  const auto whole = run.data(form_);
  std::size_t rowsBefore = 0;
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    writeFile(data, std::span(whole).first(size));
    SummaryLoad load(spec);
    ASSERT_TRUE(load.run()) << "a file that is cut off is what a running simulation leaves: " << size;
    ASSERT_GE(load.table.rows(), rowsBefore) << size;
    rowsBefore = load.table.rows();
    for (std::size_t i = 1; i <= rowsBefore; ++i) ASSERT_EQ(load.table(i, 2), static_cast<float>(i) * 10);
    if (load.reader.Damaged()) {
      EXPECT_EQ(load.lastDiagnosis().path, data);
      EXPECT_TRUE(load.lastDiagnosis().offset);
      EXPECT_THAT(load.lastDiagnosis().action, HasSubstr("kept " + std::to_string(rowsBefore)));
    }
  }
  EXPECT_EQ(rowsBefore, 3U);

  for (std::size_t at = 0; at < whole.size(); at += 5) {
    auto flipped = whole;
    flipped[at] ^= std::byte{0x84};
    writeFile(data, flipped);
    SummaryLoad load(spec);
    load.reader.AcceptDamaged = true;
    EXPECT_TRUE(!load.run() || load.table.rows() <= 3) << at;
    EXPECT_FALSE(load.reader.Damaged() && load.session.diagnoses().empty()) << at;
  }
}

TEST_P(EveryFraming, DamageAnywhereInTheSpecificationIsSurvived) {
  SummaryBuilder run;
  run.vectors = {{"TIME"}, {"WOPR", "P1"}};
  run.rows = {{{1, 2}}};
  const auto spec = run.write(folder_, "RUN", form_);
  const auto whole = run.spec(form_);
  for (std::size_t at = 0; at + 1 < whole.size(); at += 3) {
    auto damaged = whole;
    damaged[at] ^= std::byte{0x84};
    writeFile(spec, damaged);
    SummaryLoad load(spec);
    load.reader.AcceptDamaged = true;
    EXPECT_TRUE(!load.run() || load.headers.entries() == load.table.columns()) << at;
  }
}

class SummaryFiles : public ::testing::Test {
 protected:
  Form form_ = bigEndian;
  TemporaryFolder folder_;
};

TEST_F(SummaryFiles, DamageInsideARowIsAFailureUnlessItIsAccepted) {
  auto run = smallRun(4);
  run.vectors.resize(2500, {"FOPR", ":+:+:+:+", 0, "SM3/DAY"});
  for (auto& row : run.rows) row.values.resize(2500, row.values[0]);
  const auto spec = run.write(folder_, "RUN", form_);
  auto bytes = run.data(form_);
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

TEST_F(SummaryFiles, DataOfAnotherRunAreRefusedWithTheirPlace) {
  const auto spec = smallRun().write(folder_, "RUN", form_);
  auto other = smallRun();
  other.vectors.push_back({"FGPR", ":+:+:+:+", 0, "SM3/DAY"});
  for (auto& row : other.rows) row.values.push_back(1);
  writeFile(folder_.file("RUN.UNSMRY"), other.data(form_));
  SummaryLoad load(spec);
  EXPECT_FALSE(load.run());
  EXPECT_THAT(
      load.lastDiagnosis().text(),
      HasSubstr("RUN.UNSMRY: row does not fit the specification (PARAMS, occurrence 1, byte 72: expected 7 "
                "values, found 8); kept 0 rows"));
}

TEST_F(SummaryFiles, ALastRowWithAWildCountIsDamageNotACutFile) {
  const auto run = smallRun();
  const auto spec = run.write(folder_, "RUN", form_);
  auto bytes = run.data(form_);
  bytes[bytes.size() - 60 + 12] = std::byte{0x7F};  // first byte of the count in front of 7 values
  writeFile(folder_.file("RUN.UNSMRY"), bytes);
  EXPECT_FALSE(SummaryLoad(spec).run());
}

TEST_F(SummaryFiles, AMissingOrEmptyDataFileAndAFolderInItsPlace) {
  const auto spec = smallRun().write(folder_, "RUN", form_);
  writeFile(folder_.file("RUN.UNSMRY"), {});
  SummaryLoad empty(spec);
  ASSERT_TRUE(empty.run()) << "a run that has just begun";
  EXPECT_EQ(empty.table.rows(), 0U);
  EXPECT_EQ(empty.headers.entries(), 6U);

  const auto told = [](const std::string& path) {
    SummaryLoad load(path);
    EXPECT_FALSE(load.run());
    return load.lastDiagnosis().text();
  };
  fs::remove(folder_.file("RUN.UNSMRY"));
  EXPECT_THAT(told(spec), HasSubstr("RUN.UNSMRY: cannot be opened: No such file"));
  fs::create_directory(folder_.file("RUN.UNSMRY"));
  EXPECT_THAT(told(spec), HasSubstr("is a folder"));
  EXPECT_THAT(told(folder_.file("NONE.SMSPEC")), HasSubstr("No such file"));
  EXPECT_FALSE(SummaryLoad(folder_.file("")).run());
}

TEST_F(SummaryFiles, AGrowingFileIsReadOnFromItsLastStep) {
  auto run = smallRun(4);
  const auto spec = run.write(folder_, "RUN", form_);
  SummaryLoad first(spec);
  first.reader.Unified = true;
  ASSERT_TRUE(first.run());
  PositionWords resume{std::get<std::int32_t>(first.source(56)), std::get<std::int32_t>(first.source(57))};
  ASSERT_TRUE(resume.isSet());

  run = smallRun(8);
  run.write(folder_, "RUN", form_);
  SummaryLoad second(spec);
  second.reader.Unified = true;
  second.reader.ReadPosition64 = resume;
  ASSERT_TRUE(second.run());
  EXPECT_THAT(second.column(1), ElementsAre(3, 4, 5, 6, 7, 8)) << "the last step again, then the new ones";
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
    files.push_back(smallRun(2, 5).steps(form_)[0]);
  };
  const Case cases[] = {
      {"SEQHDR that falls does not end a set", {-952856885, -1000000000, 0}, {}, {1, 2, 3, 4, 5, 6}, {}},
      {"rows of an earlier run are recognized by TIME",
       {},
       leftover,
       {1, 2, 3, 4, 5, 6},
       Message::SummaryTimeDecreases},
      {"an empty file", {}, [](auto& files) { files[1].clear(); }, {1, 2, 5, 6}, Message::SummaryFileNoRows},
      {"damage in the middle",
       {},
       [](auto& files) { files[1].resize(files[1].size() - 4); },
       {1, 2, 3, 5, 6},
       Message::RecordTruncated,
       false},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.what);
    TemporaryFolder folder;
    auto run = smallRun(6);
    run.seqhdr = one.seqhdr;
    const auto spec = folder.file("RUN.SMSPEC");
    writeFile(spec, run.spec(form_));
    auto files = run.steps(form_);
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
    EXPECT_EQ(load.session.diagnoses().size(), !one.message ? 0U : 1U);
    if (!one.message) continue;
    EXPECT_EQ(load.lastDiagnosis().message, one.message);
    EXPECT_TRUE(load.lastDiagnosis().offset);
  }
}

TEST_F(SummaryFiles, AStepFileOlderThanTheOneBeforeItMayBeLeftFromAnEarlierRun) {
  const auto spec = smallRun(6).write(folder_, "RUN", form_, false);
  fs::last_write_time(folder_.file("RUN.S0003"), fs::last_write_time(spec) - std::chrono::seconds(50));
  SummaryLoad unpacked(spec);
  EXPECT_TRUE(unpacked.run());
  EXPECT_TRUE(unpacked.session.diagnoses().empty());
  fs::last_write_time(folder_.file("RUN.S0003"), fs::last_write_time(spec) - std::chrono::hours(1));
  SummaryLoad load(spec);
  ASSERT_TRUE(load.run());
  EXPECT_EQ(load.table.rows(), 6U);
  EXPECT_EQ(load.lastDiagnosis().path, folder_.file("RUN.S0003"));
  EXPECT_EQ(load.lastDiagnosis().severity(), Severity::Incomplete);
}

/// Rows that do not pair up with ministeps, and TIME that decreases, within one file.
TEST_F(SummaryFiles, RowsOfOneFile) {
  struct Row {
    const char* keyword;
    float value;
  };
  struct Case {
    std::vector<Row> records;
    std::vector<float> times;
    std::optional<Message> message;
    std::uint64_t offset;  ///< of the record at fault: a record of one word has 36 bytes
  };
  const Case cases[] = {
      {{{"MINISTEP", 0}, {"PARAMS", 1}, {"MINISTEP", 2}, {"PARAMS", 2}, {"MINISTEP", 2}, {"PARAMS", 3}},
       {1, 2, 3},
       {},
       0},
      {{{"PARAMS", 1}, {"PARAMS", 2}}, {1, 2}, {}, 0},
      {{{"MINISTEP", 0}, {"MINISTEP", 1}, {"PARAMS", 1}}, {1}, Message::SummaryRowMissing, 0},
      {{{"MINISTEP", 0}, {"PARAMS", 1}, {"MINISTEP", 1}}, {1}, Message::SummaryRowMissing, 72},
      {{{"MINISTEP", 0}, {"PARAMS", 1}, {"PARAMS", 2}}, {1, 2}, Message::SummaryRowTwice, 72},
      {{{"PARAMS", 1}, {"PARAMS", 3}, {"PARAMS", 3}, {"PARAMS", 2}, {"PARAMS", 1}},
       {1, 3, 3, 2, 1},
       Message::SummaryTimeDecreases,
       108},
  };
  SummaryBuilder run;
  run.vectors = {{"TIME", ":+:+:+:+", 0, "DAYS"}};
  const auto spec = run.write(folder_, "RUN", form_);
  for (const Case& one : cases) {
    SCOPED_TRACE(&one - cases);
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), form_);
    for (const Row& record : one.records) {
      if (std::string_view(record.keyword) == "PARAMS") {
        out.singles(record.keyword, std::array{record.value});
      } else {
        out.integers(record.keyword, std::array{static_cast<std::int32_t>(record.value)});
      }
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
      {{1, 2, 3}, false, {1, 1, 2, 2, 3, 3}},
      {{7, 7, 7}, false, {11, 11, 12, 12, 13, 13}},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(&one - cases);
    TemporaryFolder folder;
    auto run = smallRun(6);
    run.firstStep = 10;
    run.seqhdr = one.seqhdr;
    const auto spec = run.write(folder, "RUN", form_, one.unified);
    SummaryLoad load(spec);
    ASSERT_TRUE(load.run());
    std::vector<std::int32_t> steps;
    for (const SummaryRow& row : load.reader.Rows()) steps.push_back(row.iReportStep);
    EXPECT_EQ(steps, one.steps);
    if (!one.unified) continue;  // the range then chooses files
    SummaryLoad limited(spec);
    limited.reader.iStart = limited.reader.iEnd = one.steps[2];
    ASSERT_TRUE(limited.run());
    EXPECT_THAT(limited.column(1), ElementsAre(3, 4));
  }
}

/// Hosts go on asking after a load or a fetch that ended early.
TEST_F(SummaryFiles, NothingIsFetchedAfterACanceledLoadOrFetch) {
  const auto spec = smallRun().write(folder_, "RUN", form_);
  const auto fetch = [](SummaryLoad& load) {
    bool qOK = true;
    AttributeStores stores;
    load.reader.GetStoreSUMMARYData(load.table, stores, load.headers, load.source, load.only, qOK);
    EXPECT_FALSE(qOK);
    load.reader.GetSUMMARYData(load.table, load.headers, load.source, load.only, qOK);
    EXPECT_FALSE(qOK);
    EXPECT_EQ(load.reader.Count(), 0);
  };
  for (int at = 0; at < 6; ++at) {  // at each point at which the host is asked
    SummaryLoad load(spec);
    int yields = 0;
    load.session.hostYield = [&] {
      if (yields++ == at) load.session.CancelLoad = true;
    };
    if (load.run()) break;
    load.session.hostYield = nullptr;
    load.session.CancelLoad = false;
    fetch(load);
  }
  SummaryLoad load(spec);
  bool qOK = false;
  load.reader.ECLReadData(qOK);
  ASSERT_TRUE(qOK);
  load.session.CancelLoad = true;
  load.reader.GetSUMMARYData(load.table, load.headers, load.source, load.only, qOK);
  EXPECT_FALSE(qOK);
  load.session.CancelLoad = false;
  fetch(load);
  SummaryLoad other(spec);
  ASSERT_TRUE(other.run());
  other.reader.FileName = folder_.file("NONE.SMSPEC");
  other.reader.ECLReadData(qOK);
  EXPECT_FALSE(qOK);
  fetch(other);
}

TEST_F(SummaryFiles, ATableBeyondTheMemoryLimitGoesThroughAScratchFile) {
  const auto spec = smallRun().write(folder_, "RUN", form_);
  SummaryLoad plain(spec);
  ASSERT_TRUE(plain.run());

  // Left to the host: header words, then one vector behind the other.
  SummaryLoad kept(spec);
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
  SummaryLoad back(spec);
  back.session.memoryLimit = 50;
  bool qOK = false;
  back.reader.ECLReadData(qOK);
  ASSERT_TRUE(qOK);
  back.session.memoryLimit = 0;
  back.reader.GetSUMMARYData(back.table, back.headers, back.source, back.only, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_TRUE(std::ranges::equal(back.table.values(), plain.table.values()));

  SummaryLoad never(spec);
  std::string report;
  never.session.faultReporter = [&](std::string_view text) { report = text; };
  never.session.memoryLimit = 50;
  EXPECT_FALSE(never.run());
  EXPECT_EQ(report, "Error:Out of memory (No.7) In [qvEclipseSUMMARY (Code) (getSummaryArray)] ");
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
  const auto spec = smallRun().write(folder_, "RUN", form_);
  SummaryLoad load(spec);
  load.reader.bOnly = ByteTable(56, 2);
  for (const auto& [i, word, member] : {std::tuple{1U, "WELLS", "P?"}, {2U, "BLOCKS", "ALL"}}) {
    load.reader.bOnly.put(i, 1, 16, word);
    load.reader.bOnly.put(i, 17, 40, member);
  }
  load.reader.qOnly = true;
  ASSERT_TRUE(load.run());
  EXPECT_THAT(load.names(), ElementsAre("TIME", "WOPR:P1", "WOPR:P2", "BPR:1,1,1"));
  EXPECT_THAT(load.column(3), ElementsAre(0.25F, 0.5F, 0.75F, 1, 1.25F, 1.5F));

  SummaryLoad except(spec);
  except.reader.bOnly = load.reader.bOnly;
  except.reader.qOnly = false;
  ASSERT_TRUE(except.run());
  EXPECT_THAT(except.names(), ElementsAre("TIME", "FOPR", "ROFT:1-2"));

  SummaryLoad patterns(spec);
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
  const auto spec = smallRun().write(folder_, "RUN", form_);
  OneWellDialog dialog;
  SummaryLoad load(spec);
  load.reader.Silent = false;
  load.reader.setLoadDialog(&dialog);
  ASSERT_TRUE(load.run());
  EXPECT_THAT(load.names(), ElementsAre("TIME", "WOPR:P1"));
  EXPECT_THAT(load.column(1), ElementsAre(3, 4, 5, 6));

  SummaryLoad again(spec);
  again.reader.bOnly = load.only;
  again.reader.qOnly = load.reader.qOnly;
  ASSERT_TRUE(again.run());
  EXPECT_THAT(again.names(), ElementsAre("TIME", "WOPR:P1"));

  dialog.accept = false;
  EXPECT_FALSE(load.run());
}

TEST_F(SummaryFiles, CancellingEndsALoad) {
  const auto spec = smallRun().write(folder_, "RUN", form_);
  SummaryLoad load(spec);
  int yields = 0;
  load.session.hostYield = [&] { load.session.CancelLoad = ++yields > 2; };
  EXPECT_FALSE(load.run());
}

TEST_F(SummaryFiles, FacadeQuirksThatHostsKnow) {
  const auto spec = smallRun().write(folder_, "RUN", form_);
  SummaryLoad load(spec);
  bool qOK = true;
  load.reader.whichtype = 0;
  load.reader.ECLReadData(qOK);
  EXPECT_FALSE(qOK);

  load.reader.whichtype = 13;
  load.reader.ECLReadData(qOK);
  EXPECT_TRUE(qOK);
  load.reader.GetSUMMARYData(load.table, load.headers, load.source, load.only, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_TRUE(load.table.empty()) << "code 13 loads but hands nothing out";
  EXPECT_EQ(load.reader.Count(), 6);
  EXPECT_EQ(load.reader.NumberTimeSteps(), 6);
  EXPECT_FALSE(load.reader.IsInitialised(12));
  EXPECT_TRUE(load.reader.IsInitialised(13));
  EXPECT_TRUE(load.reader.DeleteObject(12));
  EXPECT_TRUE(load.reader.IsInitialised(13));
  EXPECT_TRUE(load.reader.DeleteObject(13));
  EXPECT_FALSE(load.reader.IsInitialised(13));

  load.reader.NullValue = 0;
  load.reader.zOnly = "FOPR";
  qvEclipseReader(load.session).InitEclipseReader();
  EXPECT_EQ(load.session.NullValue, -999) << "shared by all readers of a session";
  EXPECT_EQ(load.reader.zOnly, "FOPR") << "the reader's own";

  FileDescriptor file{spec};
  EXPECT_TRUE(load.reader.CheckifEclipse(file));
  EXPECT_EQ(file.iType, 12);
  EXPECT_FALSE(load.reader.CheckECLIPSEFileType(spec, 18));
}

}  // namespace
}  // namespace lumbarn
