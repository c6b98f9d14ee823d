#include <gtest/gtest.h>

#include "record/Quarnet.h"
#include "support/FaultySource.h"
#include "support/Forms.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using namespace test;

class QuarnetForms : public OfForm {
 protected:
  void SetUp() override {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), form_);
    const bool flags[] = {true, false, true};
    out.texts("RESTART", std::array<std::string, 2>{"BASE", "RUN"});
    out.logicals("FLAGS", flags);
    out.integers("NUMS", std::vector<std::int32_t>(1500, 7));
    out.doubles("DATA", std::array{0.5, 1e-30});
    out.singles("PARAMS", std::array{1.5F, -2.0F});
    writeFile(path_, bytes);
    file_.setForm(form_);
    SetRecordLengths(file_.Formatted, lengths_);
    quarnet_.OpenRecordFile(path_, file_, qOK_);
  }
  void header(const char* keyword, std::int32_t count) {
    std::string found, type;
    std::int32_t n = 0;
    quarnet_.ReadRecordHeader(file_, found, n, type, qOK_);
    EXPECT_TRUE(qOK_);
    EXPECT_EQ(found, keyword);
    EXPECT_EQ(n, count);
  }

  TemporaryFolder folder_;
  std::string path_ = folder_.file("RUN.SMSPEC");
  Session session_;
  Quarnet quarnet_{session_};
  cFILETYPE file_{session_};
  RecordLengths lengths_;
  bool qOK_ = false;
};
INSTANTIATE_TEST_SUITE_P(Record, QuarnetForms, ::testing::ValuesIn(everyForm), formName);

struct Shares final : Progress {
  void files(int count) override { announced = count; }
  void fileDone() override { ++done; }
  void fraction(double share) override { last = share; }
  int announced = 0, done = 0;
  double last = 0;
};

TEST_P(QuarnetForms, SkipToTheEndAndReportProgress) {
  Shares progress;
  file_.SetProgressTarget(&progress);
  file_.SetProgressFiles(2, qOK_);
  header("RESTART", 2);
  quarnet_.SkipStrings(lengths_.zQuote, lengths_.zCHAR, 2, file_, qOK_);
  // With the width of another type, as summary readers do.
  for (const auto skip :
       {&Quarnet::SkipIntegers, &Quarnet::SkipLogicals, &Quarnet::SkipDoubles, &Quarnet::SkipSingles}) {
    std::string keyword, type;
    std::int32_t n = 0;
    quarnet_.ReadRecordHeader(file_, keyword, n, type, qOK_);
    (quarnet_.*skip)(n, lengths_.zINTE, file_, qOK_);
    EXPECT_TRUE(qOK_ && progress.last < 1) << keyword;
    file_.StepProgress();
  }
  EXPECT_EQ(progress.last, 1);
  bool qMore = true;
  file_.MoreData(qMore);
  EXPECT_FALSE(qMore);
  file_.StepProgressFile(qOK_);
  EXPECT_TRUE(qOK_ && progress.announced == 2 && progress.done == 1);
}

TEST_P(QuarnetForms, ReadRecordsAndDataWhosePositionIsKnown) {
  std::vector<std::byte> bytes;
  std::string text;
  file_.SeekByte(form_.formatted() ? 3 : form_.framing == Framing::FourByteMarks ? 5 : 2);
  quarnet_.ReadRawBytes(8, file_, bytes, qOK_);
  quarnet_.BytesToText(8, bytes, text, qOK_);
  EXPECT_EQ(text, "RESTART ");
  if (form_.framing == Framing::FourByteMarks) {
    bool qSwap = !form_.byteSwap;
    file_.SeekByte(13);
    quarnet_.DetectByteOrder("SPEC", file_, qOK_, qSwap);
    EXPECT_EQ(qSwap, form_.byteSwap);
  }
  for (const bool known : {false, true}) {
    file_.SeekByte(1);
    file_.SeekByte64(-1, -1);
    const auto read = [&](const char* keyword, auto values, auto operation, auto... lengths) {
      const auto count = static_cast<std::int32_t>(values.size());
      header(keyword, count);
      PositionWords data;
      file_.GetPosition64(data.low, data.high);
      if (known) file_.SeekByte64(data.low, data.high);  // the header is forgotten
      decltype(values) found;
      if constexpr (sizeof...(lengths) == 2) {
        (quarnet_.*operation)(lengths..., count, file_, found, qOK_);
      } else {
        (quarnet_.*operation)(count, lengths..., file_, found, qOK_);
      }
      EXPECT_EQ(found, values) << keyword;
    };
    read("RESTART", std::vector<std::string>{"BASE    ", "RUN     "}, &Quarnet::ReadStrings, lengths_.zQuote,
         lengths_.zCHAR);
    read("FLAGS", std::vector<std::int16_t>{-1, 0, -1}, &Quarnet::ReadLogicals, lengths_.zLOGI);
    read("NUMS", std::vector<std::int32_t>(1500, 7), &Quarnet::ReadIntegers, lengths_.zINTE);
    read("DATA", std::vector{0.5, 1e-30}, &Quarnet::ReadDoubles, lengths_.zDOUB);
    read("PARAMS", std::vector{1.5F, -2.0F}, &Quarnet::ReadSingles, lengths_.zREAL);
  }
  std::vector<double> doubles;
  quarnet_.ReadDoubles(500, lengths_.zDOUB, file_, doubles, qOK_);
  EXPECT_FALSE(qOK_) << "behind the end";
  std::int32_t n = 0;
  quarnet_.ReadRecordHeader(file_, text, n, text, qOK_);
  EXPECT_FALSE(qOK_);
  for (int time = 0; time < 2; ++time) quarnet_.CloseRecordFile(file_, qOK_);
  EXPECT_TRUE(qOK_) << "closing twice is harmless";
}

TEST(Quarnet, ScratchFilesComeBackAsTheyWere) {
  TemporaryFolder folder;
  Session session;
  Quarnet quarnet(session);
  cFILETYPE file(session);
  bool qOK = false;
  quarnet.CreateRecordFile(folder.file("scratch"), file, qOK);
  const std::int32_t words[] = {2, 3};
  const std::vector<float> values{1.25F, -7.5F, 3e38F};
  quarnet.WriteRawIntegers(2, words, file, qOK);
  quarnet.WriteRawSingles(3, values, file, qOK);
  quarnet.WriteRawSingles(4, values, file, qOK);
  EXPECT_FALSE(qOK) << "more than the array holds";
  quarnet.CloseRecordFile(file, qOK);
  ASSERT_TRUE(qOK);
  quarnet.OpenRecordFile(folder.file("scratch"), file, qOK);
  file.SeekByte(9);
  std::vector<float> read(3);
  quarnet.ReadRawSingles(3, read, file, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(read, values);
  quarnet.ReadRawSingles(1, read, file, qOK);
  EXPECT_FALSE(qOK) << "beyond the end";
  for (const auto open : {&Quarnet::OpenRecordFile, &Quarnet::CreateRecordFile}) {
    (quarnet.*open)(folder.file("no/folder"), file, qOK);
    EXPECT_FALSE(qOK);
    EXPECT_EQ(session.diagnoses().back().path, folder.file("no/folder"));
  }
}

TEST(Quarnet, CountsTheMarksOfBlocks) {
  Session session;
  session.faultReporter = [](std::string_view) {};
  for (const auto& [elements, block, expected] :
       {std::array{0, 1000, 0}, {1000, 1000, 2}, {1001, 1000, 4}, {1, 0, -1}, {-1, 1000, -1}}) {
    bool qOK = false;
    std::int32_t marks = -1;
    Quarnet(session).CountRecordMarks(elements, block, marks, qOK);
    EXPECT_EQ(marks, expected);
    EXPECT_EQ(qOK, expected >= 0);
  }
}

}  // namespace
}  // namespace lumbarn
