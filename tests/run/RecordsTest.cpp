#include <gmock/gmock.h>

#include "frame/Error.h"
#include "run/Records.h"
#include "support/Forms.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;

constexpr std::int32_t many = 2500;  // elements in three blocks

class RecordValues : public test::OfForm {
 protected:
  RecordValues() {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), form_);
    std::vector<std::int32_t> numbers(many);
    for (std::int32_t i = 0; i < many; ++i) numbers[static_cast<std::size_t>(i)] = 7 * i;
    out.integers("HEAD", std::array{1, 2, 3});
    out.integers("NUMBERS", numbers);
    out.singles("ZS", std::array{0.1F, 100000.0F});
    out.doubles("ZD", std::array{0.1, -2.5e-300});
    out.message("ZM");
    out.texts("ZT", std::array<std::string, 3>{"P 1", "", "  A'B"});
    out.texts("ZLONG", std::array<std::string, 1>{"PLATFORM NORTH"}, 20);
    out.logicals("ZL", std::array{true, false});
    out.integers("HEAD", std::array{4, 5});
    test::writeFile(path_, bytes);
  }
  Batch values(RecordSelection selection, const ReadOptions& options = {}) const {
    selection.file = path_;
    return recordValues(selection, options).collect();
  }
  std::vector<std::string> texts(const RecordSelection& selection) const {
    const Column column = values(selection)["value"];
    std::vector<std::string> all;
    for (std::size_t i = 0; i < column.size(); ++i) all.emplace_back(column.text(i));
    return all;
  }

  const test::TemporaryFolder folder_;
  const std::string path_ = folder_.file("ANY.BIN");
};

TEST_P(RecordValues, HaveTheirOwnTypeOrAreTexts) {
  const Batch heads = values({.keywords = {"head"}});
  EXPECT_THAT(heads["value"].values<std::int32_t>(), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_THAT(heads["occurrence"].values<std::int64_t>(), ElementsAre(1, 1, 1, 2, 2));
  EXPECT_THAT(heads["index"].values<std::int64_t>(), ElementsAre(1, 2, 3, 1, 2));
  EXPECT_THAT(values({.keywords = {"HEAD"}, .occurrence = 2})["value"].values<std::int32_t>(),
              ElementsAre(4, 5));
  EXPECT_THAT(values({.keywords = {"HEAD"}, .first = 3})["value"].values<std::int32_t>(), ElementsAre(3));
  EXPECT_THAT(values({.keywords = {"ZS"}})["value"].values<float>(), ElementsAre(0.1F, 100000.0F));
  EXPECT_THAT(values({.keywords = {"ZD"}})["value"].values<double>(), ElementsAre(0.1, -2.5e-300));
  const Column logicals = values({.keywords = {"ZL"}})["value"];
  EXPECT_TRUE(logicals.boolean(0) && !logicals.boolean(1));
  EXPECT_THAT(texts({.keywords = {"Z*"}}), ElementsAre("0.1", "1e+05", "0.1", "-2.5e-300", "P 1", "", "  A'B",
                                                       "PLATFORM NORTH", "true", "false"));
  EXPECT_THROW(values({.keywords = {"NONE"}}), Error);
  EXPECT_THROW(values({.keywords = {"HEAD"}, .first = 4}), Error);
}

/// Small batches, and a record of several blocks that is damaged in the second one.
TEST_P(RecordValues, ComeInBatchesUpToTheDamage) {
  const RecordSelection numbers{.file = path_, .keywords = {"NUMBERS", "HEAD"}, .first = 2};
  Stream stream = recordValues(numbers, {.limits = {.rows = 100}});
  std::size_t rows = 0;
  std::int32_t last = 0;
  while (const auto batch = stream.next()) {
    EXPECT_LE(batch->rows(), 100U);
    rows += batch->rows();
    last = (*batch)["value"].values<std::int32_t>().back();
  }
  EXPECT_EQ(rows, static_cast<std::size_t>(many) + 2);
  EXPECT_EQ(last, 5);
  if (form_.framing != Framing::FourByteMarks) return;
  std::fstream(path_, std::ios::in | std::ios::out | std::ios::binary).seekp(44 + 24 + 4008) << "????";
  Stream kept = recordValues(numbers, {.keepPartial = true});
  EXPECT_THAT(std::move(kept).collect()["value"].values<std::int32_t>(), ElementsAre(2, 3, 5));
  EXPECT_THROW(recordValues(numbers).collect(), Error);
}

INSTANTIATE_TEST_SUITE_P(Forms, RecordValues, ::testing::ValuesIn(test::everyForm), test::formName);

}  // namespace
}  // namespace lumbarn
