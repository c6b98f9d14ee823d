#include <cerrno>
#include <cmath>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ArrowRules.h"
#include "frame/Stream.h"
#include "support/Session.h"

namespace lumbarn::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

const auto grids = std::make_shared<const std::vector<std::string>>(std::vector<std::string>{"ROOT", "LGR1"});

Schema everyType() {
  return {{.name = "n", .type = Type::Int32},
          {.name = "big", .type = Type::Int64, .metadata = {{"mnemonic", "FOPR"}}},
          {.name = "value", .type = Type::Float32, .unit = "BARSA"},
          {.name = "exact", .type = Type::Float64},
          {.name = "text", .type = Type::Utf8},
          {.name = "grid", .type = Type::Dictionary, .dictionary = grids},
          {.name = "date", .type = Type::Timestamp},
          {.name = "open", .type = Type::Bool},
          {.name = "corners", .type = Type::FixedList, .listSize = 3}};
}

/// Row i; each column is null in every fifth row, beginning with its own number.
void addRow(BatchBuilder& rows, int i) {
  const auto given = [&](std::size_t column) { return static_cast<std::size_t>(i) % 5 != column % 5; };
  const std::array<float, 3> corners{static_cast<float>(i), 0.5F, -1};
  if (given(0)) rows.set(0, i);
  if (given(1)) rows.set(1, std::int64_t{i} << 40);
  if (given(2)) rows.set(2, static_cast<float>(i) / 4);
  if (given(3)) rows.set(3, i / 3.0);
  if (given(4)) rows.set(4, std::string(static_cast<std::size_t>(i % 7), 'x'));
  if (given(5)) rows.set(5, i % 2);
  if (given(6)) rows.set(6, LocalMoment(std::chrono::seconds(i)));
  if (given(7)) rows.set(7, i % 3 == 0);
  if (given(8)) rows.set(8, corners);
  rows.endRow();
}

/// Rows 0 to count - 1, then what `end` does.
Stream rowsThen(int count, std::function<void(Session&)> end, ReadOptions options = {}) {
  auto context = std::make_shared<StreamContext>(std::move(options));
  auto next = std::make_shared<int>(0);
  return streamOfRows(everyType(), context, [=, &session = context->session()](BatchBuilder& rows) {
    while (*next < count && !rows.full()) addRow(rows, (*next)++);
    if (*next < count) return true;
    if (end) {
      rows.set(4, std::string_view("half a row"));
      end(session);
      rows.dropRow();
    }
    return false;
  });
}

BadRecord damage() {
  return BadRecord({.message = Message::RecordDamaged, .path = "RUN.UNRST", .offset = 77});
}

void expectRows(const Batch& batch, int first) {
  for (std::size_t i = 0; i < batch.rows(); ++i) {
    const int n = first + static_cast<int>(i);
    for (std::size_t c = 0; c < batch.columns(); ++c)
      EXPECT_EQ(batch[c].valid(i), static_cast<std::size_t>(n) % 5 != c % 5) << n << ' ' << c;
    const auto is = [&](std::size_t column) { return batch[column].valid(i); };
    EXPECT_EQ(batch["n"].values<std::int32_t>()[i], is(0) ? n : 0);
    EXPECT_EQ(batch["big"].values<std::int64_t>()[i], is(1) ? std::int64_t{n} << 40 : 0);
    EXPECT_EQ(batch["value"].values<float>()[i], is(2) ? static_cast<float>(n) / 4 : 0);
    EXPECT_EQ(batch["text"].text(i).size(), is(4) ? static_cast<std::size_t>(n % 7) : 0);
    EXPECT_EQ(batch["grid"].text(i), is(5) ? (*grids)[static_cast<std::size_t>(n % 2)] : "");
    EXPECT_EQ(batch["open"].boolean(i), is(7) && n % 3 == 0);
    EXPECT_EQ(batch["corners"].values<float>()[3 * i], is(8) ? static_cast<float>(n) : 0);
    EXPECT_EQ(std::isnan(batch["exact"].doubles()[i]), !is(3));
  }
}

TEST(Streams, BatchesAreBoundedAndTogetherAllRows) {
  for (const BatchLimits limits :
       {BatchLimits{.rows = 300}, BatchLimits{.bytes = 4000}, BatchLimits{.bytes = 1}}) {
    Stream stream = rowsThen(1000, nullptr, {.limits = limits});
    int rows = 0;
    while (auto batch = stream.next()) {
      EXPECT_TRUE(batch->rows() == 1 ||
                  batch->rows() <= std::min<std::size_t>(limits.rows, limits.bytes / 46));
      expectRows(*batch, rows);
      rows += static_cast<int>(batch->rows());
    }
    EXPECT_EQ(rows, 1000);
    const Batch all = rowsThen(1000, nullptr, {.limits = limits}).collect();
    ASSERT_EQ(all.rows(), 1000U);
    expectRows(all, 0);
  }
}

TEST(Streams, GoodRowsComeBeforeTheError) {
  const std::pair<std::function<void(Session&)>, Error::Kind> ends[] = {
      {[](Session&) { throw damage(); }, Error::Kind::Damaged},
      {[](Session& session) { session.diagnose(damage().diagnosis()); }, Error::Kind::Damaged},
      {[](Session&) { throw BadRecord({.message = Message::FileRead}); }, Error::Kind::System},
      {[](Session&) { throw std::bad_alloc(); }, Error::Kind::Memory},
      {[](Session&) { throw Error(Error::Kind::NotFound, {.message = Message::ArrayMissing}); },
       Error::Kind::NotFound}};
  for (const auto& [end, kind] : ends) {
    Stream stream = rowsThen(20, end);
    const auto rows = stream.next();
    ASSERT_TRUE(rows);
    EXPECT_EQ(rows->rows(), 20U);
    expectRows(*rows, 0);
    try {
      stream.next();
      ADD_FAILURE() << "no error";
    } catch (const Error& error) {
      EXPECT_EQ(error.kind(), kind);
    }
    EXPECT_FALSE(stream.next()) << "an error is reported once";
  }
  Stream kept = rowsThen(20, ends[0].first, {.keepPartial = true});
  EXPECT_TRUE(kept.next());
  EXPECT_FALSE(kept.next());
  ASSERT_TRUE(kept.incomplete());
  EXPECT_EQ(kept.incomplete()->offset, 77U);
  Stream remarked = rowsThen(5, [](Session& session) { session.diagnose({.message = Message::StepTwice}); });
  EXPECT_EQ(std::move(remarked).collect().rows(), 5U);
  EXPECT_EQ(remarked.remarks().size(), 1U);
}

TEST(Streams, AreStoppedFromAnotherThread) {
  std::stop_source stop;
  Stream stream = rowsThen(1 << 30, nullptr, {.stop = stop.get_token(), .limits = {.rows = 10}});
  ASSERT_TRUE(stream.next());
  std::jthread([&] { stop.request_stop(); }).join();
  EXPECT_THROW(stream.next(), Error);
  EXPECT_FALSE(stream.next());
}

TEST(Streams, KeepTheRulesOfArrowsInterface) {
  const std::pair<std::function<void(Session&)>, int> ends[] = {
      {nullptr, 0},
      {[](Session&) { throw damage(); }, EIO},
      {[](Session&) { throw std::bad_alloc(); }, ENOMEM}};
  for (const auto& [end, expected] : ends) {
    ArrowArrayStream stream{};
    rowsThen(1000, end, {.limits = {.rows = 300}}).exportTo(&stream);
    std::int64_t rows = 0;
    int status = 0;
    const char* broken = check_stream(&stream, &rows, &status);
    EXPECT_EQ(broken, nullptr) << broken;
    EXPECT_EQ(status, expected);
    EXPECT_EQ(rows, 1000);
  }
}

TEST(Streams, NamesDifferInMoreThanLetterCase) {
  Schema schema;
  for (const char* name : {"FOPR", "WBHP:A", "fopr", "FOPR", "FOPR#2"}) schema.push_back({.name = name});
  EXPECT_THAT(makeNamesUnique(schema), ElementsAre("fopr", "FOPR", "FOPR#2"));
  std::vector<std::string> names;
  for (const Field& field : schema) names.push_back(field.name);
  EXPECT_THAT(names, ElementsAre("FOPR", "WBHP:A", "fopr#2", "FOPR#3", "FOPR#2#2"));
}

TEST(Streams, FloatColumnsAreOneBlock) {
  auto schema = std::make_shared<const Schema>(Schema{{.name = "TIME", .type = Type::Float64},
                                                      {.name = "A", .type = Type::Float32},
                                                      {.name = "B", .type = Type::Float32},
                                                      {.name = "C", .type = Type::Float32}});
  BatchBuilder rows(schema);
  for (int i = 0; i < 500; ++i) {
    for (std::size_t c = 0; c < 4; ++c) rows.set(c, 1000 * static_cast<int>(c) + i);
    rows.endRow();
  }
  const Batch batch = rows.finish();
  std::size_t stride = 0;
  const auto block = batch.block(1, 3, stride);
  ASSERT_EQ(block.size(), 2 * stride + 500);
  EXPECT_EQ(stride % 16, 0U);
  EXPECT_EQ(block[2 * stride + 499], 3499.0F);
  EXPECT_TRUE(batch.block(0, 2, stride).empty());
  EXPECT_THROW(batch["a"], Error);
  EXPECT_THROW(batch["TIME"].values<float>(), Error);
}

}  // namespace
}  // namespace lumbarn::test
