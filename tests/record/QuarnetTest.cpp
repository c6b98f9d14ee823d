#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "record/Quarnet.h"
#include "support/SummaryBuilder.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;
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
    out.singles("PARAMS", std::array{1.5F, -2.0F});
    writeFile(path_, bytes);
    file_.setForm(form_);
    SetRecordLengths(file_.Formatted, lengths_);
  }
  void header(const char* keyword, std::int32_t count) {
    std::string found, type;
    std::int32_t n = 0;
    quarnet_.ReadRecordHeader(file_, found, n, type, qOK_);
    ASSERT_TRUE(qOK_);
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

TEST_P(QuarnetForms, ARecordLoopReadsAndSkipsToTheEnd) {
  quarnet_.OpenRecordFile(path_, file_, qOK_);
  ASSERT_TRUE(qOK_);
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
  file_.SeekByte(1);
  file_.SeekByte64(-1, -1);
  header("RESTART", 2);
  std::vector<std::string> texts;
  quarnet_.ReadStrings(lengths_.zQuote, lengths_.zCHAR, 2, file_, texts, qOK_);
  EXPECT_THAT(texts, ElementsAre("BASE    ", "RUN     "));
  header("FLAGS", 3);
  quarnet_.SkipIntegers(3, lengths_.zINTE, file_,
                        qOK_);  // with the width of another type, as summary readers do
  EXPECT_TRUE(qOK_);
  PositionWords place;
  file_.GetPosition64(place.low, place.high);
  header("NUMS", 1500);
  quarnet_.SkipIntegers(1500, lengths_.zINTE, file_, qOK_);
  header("PARAMS", 2);
  std::vector<float> values;
  quarnet_.ReadSingles(2, lengths_.zREAL, file_, values, qOK_);
  EXPECT_THAT(values, ElementsAre(1.5F, -2.0F));
  bool qMore = true;
  file_.MoreData(qMore);
  EXPECT_FALSE(qMore);

  file_.SeekByte64(place.low, place.high);
  header("NUMS", 1500);
  // A host that kept the place of the data comes back to it without the header.
  file_.GetPosition64(place.low, place.high);
  for (int time = 0; time < 2; ++time) {
    file_.SeekByte64(place.low, place.high);
    std::vector<std::int32_t> numbers;
    quarnet_.ReadIntegers(1500, lengths_.zINTE, file_, numbers, qOK_);
    EXPECT_TRUE(qOK_);
    EXPECT_EQ(numbers, std::vector<std::int32_t>(1500, 7));
  }
  std::vector<double> doubles;
  quarnet_.ReadDoubles(500, lengths_.zDOUB, file_, doubles, qOK_);
  EXPECT_FALSE(qOK_) << "that many doubles are not there";
  quarnet_.CloseRecordFile(file_, qOK_);
  quarnet_.CloseRecordFile(file_, qOK_);
  EXPECT_TRUE(qOK_) << "closing twice is harmless";
}

TEST(Quarnet, ScratchFilesComeBackAsTheyWere) {
  TemporaryFolder folder;
  Session session;
  Quarnet quarnet(session);
  cFILETYPE out(session);
  bool qOK = false;
  const std::string path = folder.file("scratch");
  quarnet.CreateRecordFile(path, out, qOK);
  const std::int32_t words[] = {2, 3};
  const float values[] = {1.25F, -7.5F, 3e38F};
  quarnet.WriteRawIntegers(2, words, out, qOK);
  quarnet.WriteRawSingles(3, values, out, qOK);
  quarnet.WriteRawSingles(4, values, out, qOK);
  EXPECT_FALSE(qOK) << "more than the array holds";
  quarnet.CloseRecordFile(out, qOK);
  ASSERT_TRUE(qOK);

  cFILETYPE in(session);
  quarnet.OpenRecordFile(path, in, qOK);
  in.SeekByte(9);
  std::vector<float> read(3);
  quarnet.ReadRawSingles(3, read, in, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_THAT(read, ElementsAre(1.25F, -7.5F, 3e38F));
  quarnet.ReadRawSingles(1, read, in, qOK);
  EXPECT_FALSE(qOK) << "beyond the end";
  quarnet.OpenRecordFile(folder.file("none"), in, qOK);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(session.diagnoses().back().path, folder.file("none"));
}

}  // namespace
}  // namespace lumbarn
