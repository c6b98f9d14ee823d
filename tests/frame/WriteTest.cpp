#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/Write.h"

namespace lumbarn::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

/// Keeps what is written; a disk that is full after `room` bytes.
class TextSink final : public Sink {
 public:
  explicit TextSink(std::size_t room = std::numeric_limits<std::size_t>::max()) : room_(room) {}
  void write(std::span<const std::byte> bytes) override {
    if (text.size() + bytes.size() > room_) throw Error(Error::Kind::System, {.message = Message::FileWrite});
    text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  }
  std::string text;

 private:
  std::size_t room_;
};

Stream rows(Schema schema, std::function<bool(BatchBuilder&)> fill) {
  return streamOfRows(std::move(schema), std::make_shared<StreamContext>(), std::move(fill));
}

std::string written(Stream stream, const WriteOptions& options) {
  TextSink sink;
  write(std::move(stream), sink, options);
  return sink.text;
}

/// Two rows with all that needs care, and a row without values.
Stream oddRows() {
  Schema schema{{.name = "date", .type = Type::Timestamp},
                {.name = "well, or \"node\"", .type = Type::Utf8},
                {.name = "RATE", .type = Type::Float32, .unit = "SM3/DAY"},
                {.name = "days", .type = Type::Float64, .unit = "DAYS"},
                {.name = "open", .type = Type::Bool},
                {.name = "at", .type = Type::FixedList, .listSize = 2, .metadata = {{"items", "x,y"}}}};
  return rows(std::move(schema), [](BatchBuilder& out) {
    const auto moment = [](std::int64_t microseconds) {
      return LocalMoment(std::chrono::microseconds(microseconds));
    };
    const std::array<float, 2> first{1, 2.5F}, second{-0.0F, 1e20F};
    out.set(0, moment(993'945'600'000'000));
    out.set(1, std::string_view("replaced below"));
    out.set(1, std::string_view("P\xC3\xA9, \"1\"\n"));
    out.set(2, 0.1F);
    out.set(3, 744.2708333333334);
    out.set(4, true);
    out.set(5, first);
    out.endRow();
    out.set(0, moment(-1'500'000));
    out.set(1, std::string_view());
    out.set(2, std::numeric_limits<float>::quiet_NaN());
    out.set(3, -std::numeric_limits<double>::infinity());
    out.set(4, false);
    out.set(5, second);
    out.endRow();
    out.endRow();
    return false;
  });
}

TEST(Writing, EachFormatHasItsQuotesAndItsWordForNoValue) {
  EXPECT_EQ(written(oddRows(), {.format = Format::Csv, .unitRow = true}),
            "date,\"well, or \"\"node\"\"\",RATE,days,open,x,y\r\n"
            ",,SM3/DAY,DAYS,,,\r\n"
            "2001-07-01T00:00:00,\"P\xC3\xA9, \"\"1\"\"\n\",0.1,744.2708333333334,true,1,2.5\r\n"
            "1969-12-31T23:59:58.5,,,-inf,false,-0,1e+20\r\n"
            ",,,,,,\r\n");
  const std::string first =
      R"({"date":"2001-07-01T00:00:00","well, or \"node\"":"Pé, \"1\"\u000a","RATE":0.1,)"
      R"("days":744.2708333333334,"open":true,"at":[1,2.5]})";
  const std::string second = R"({"date":"1969-12-31T23:59:58.5","well, or \"node\"":"","RATE":null,)"
                             R"("days":null,"open":false,"at":[-0,1e+20]})";
  const std::string third =
      R"({"date":null,"well, or \"node\"":null,"RATE":null,"days":null,"open":null,"at":[null,null]})";
  EXPECT_EQ(written(oddRows(), {.format = Format::Ndjson}), first + '\n' + second + '\n' + third + '\n');
  EXPECT_EQ(written(oddRows(), {.format = Format::Json}),
            "[\n" + first + ",\n" + second + ",\n" + third + "\n]\n");
  EXPECT_THAT(written(oddRows(), {.format = Format::Json, .unitRow = true}),
              StartsWith(R"({"units":{"date":"","well, or \"node\"":"","RATE":"SM3/DAY","days":"DAYS",)"));
  EXPECT_EQ(written(oddRows(), {.format = Format::Table}),
            "date                   well, or \"node\"     RATE               days   open   x      y\n"
            "                                        SM3/DAY               DAYS\n"
            "2001-07-01T00:00:00    P\xC3\xA9, \"1\"?             0.1  744.2708333333334   true   1    2.5\n"
            "1969-12-31T23:59:58.5                       nan               -inf  false  -0  1e+20\n"
            "\n");
}

TEST(Writing, ATableWithoutRowsIsComplete) {
  const auto none = [] { return rows({{.name = "A"}, {.name = "B"}}, [](BatchBuilder&) { return false; }); };
  EXPECT_EQ(written(none(), {.format = Format::Csv}), "A,B\r\n");
  EXPECT_EQ(written(none(), {.format = Format::Json}), "[]\n");
  EXPECT_EQ(written(none(), {.format = Format::Json, .unitRow = true}),
            "{\"units\":{\"A\":\"\",\"B\":\"\"},\"rows\":[]}\n");
  EXPECT_EQ(written(none(), {.format = Format::Ndjson}), "");
  EXPECT_EQ(written(none(), {.format = Format::Table}), "A  B\n");
}

TEST(Writing, IsTheSameWithAnyNumberOfThreads) {
  const auto many = [](int count) {
    auto next = std::make_shared<int>(0);
    return rows({{.name = "n", .type = Type::Int32}, {.name = "x", .type = Type::Float32}},
                [=](BatchBuilder& out) {
                  for (; *next < count && !out.full(); ++*next) {
                    out.set(0, *next);
                    if (*next % 3 != 0) out.set(1, static_cast<float>(*next) / 7);
                    out.endRow();
                  }
                  return *next < count;
                });
  };
  for (const Format format : {Format::Csv, Format::Json}) {
    const std::string one = written(many(150000), {.format = format, .threads = 1});
    EXPECT_TRUE(one == written(many(150000), {.format = format, .threads = 5}));
    EXPECT_THAT(one.substr(one.size() - 60), HasSubstr("149999"));
  }
}

TEST(Writing, WhatPrecedesAnErrorIsWritten) {
  const auto damaged = [] {
    return rows({{.name = "n", .type = Type::Int32}}, [](BatchBuilder& out) -> bool {
      out.set(0, 7);
      out.endRow();
      out.set(0, 8);
      throw BadRecord({.message = Message::RecordDamaged});
    });
  };
  TextSink sink;
  EXPECT_THROW(write(damaged(), sink, {.format = Format::Json}), Error);
  EXPECT_EQ(sink.text, "[\n{\"n\":7}") << "no closing bracket: it is not complete";
  TextSink full(4);
  EXPECT_THROW(write(damaged(), full, {.format = Format::Csv}), Error);
}

}  // namespace
}  // namespace lumbarn::test
