#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/Error.h"
#include "run/TimeChoice.h"

namespace lumbarn {
namespace {

using ::testing::HasSubstr;

using Positions = std::vector<std::size_t>;

/// Two rows each of steps 1 to 3, half a month apart; step 5 ends the year.
std::vector<TimePoint> rows() {
  const char* const dates[] = {
      "2001-01-10", "2001-01-31T23:59:59.5", "2001-02-01", "2001-02-15", "2001-03-01",
      "2001-03-15", "2001-12-31T12:00:00"};
  std::vector<TimePoint> all;
  for (const char* date : dates)
    all.push_back({static_cast<std::int32_t>(all.size() / 2) + 1, parseMoment(date)});
  all.back().step = 5;
  return all;
}

TEST(TimeChoice, SelectsByStepAndDateTogether) {
  struct Case {
    TimeSelection selection;
    Positions kept;
  };
  const auto steps = [](const char* text) { return TimeSelection::parse(text); };
  TimeSelection both = steps("2:3");
  both.from = parseMoment("2001-02-02");
  const Case cases[] = {
      {{}, {0, 1, 2, 3, 4, 5, 6}},
      {steps("2"), {2, 3}},
      {steps("3:"), {4, 5, 6}},
      {steps(":1, 5"), {0, 1, 6}},
      {steps("last"), {6}},
      {both, {3, 4, 5}},
      {{.to = parseMoment("2001-01-31", true)}, {0, 1}},
      {{.to = parseMoment("2001-01-31")}, {0}},
      {{.at = parseMoment("2001-02-20")}, {3}},
      {{.every = Every::Month}, {1, 3, 5, 6}},
      {{.every = Every::Quarter}, {5, 6}},
      {{.every = Every::Year}, {6}},
      {{.every = Every::ReportStep}, {1, 3, 5, 6}},
  };
  for (const Case& one : cases)
    EXPECT_EQ(chooseTimes(one.selection, rows(), "RUN"), one.kept) << &one - cases;
  EXPECT_TRUE(chooseTimes(steps("7"), {}, "RUN").empty());
}

std::string refusal(const TimeSelection& selection, const std::vector<TimePoint>& from, Error::Kind kind) {
  try {
    chooseTimes(selection, from, "RUN");
  } catch (const Error& error) {
    EXPECT_EQ(error.kind(), kind);
    return error.what();
  }
  return "nothing refused";
}

TEST(TimeChoice, TellsWhatThereIsWhenNothingIsSelected) {
  EXPECT_THAT(refusal(TimeSelection::parse("4"), rows(), Error::Kind::NotFound), HasSubstr("1:3, 5"));
  EXPECT_THAT(refusal({.at = parseMoment("2001-01-01")}, rows(), Error::Kind::NotFound),
              HasSubstr("2001-01-10T00:00:00 to 2001-12-31T12:00:00"));
  auto undated = rows();
  undated[3].date.reset();
  EXPECT_THAT(refusal({.every = Every::Day}, undated, Error::Kind::BadRequest),
              HasSubstr("dates are not known"));
}

TEST(TimeChoice, RefusesTextsThatAreNoStepsOrDates) {
  for (const char* steps : {"", ":", "3:2", "-1", "x", "1,,2", "99999999999", "1:2:3"})
    EXPECT_THROW(TimeSelection::parse(steps), Error) << steps;
  for (const char* date : {"", "2001-13-01", "2001-02-29", "2001-1-1", "01-02-2003", "2001-01-01T",
                           "2001-01-01T25:00", "2001-01-01T10:00:00.", "2001-01-01T10:00:00.1234567"})
    EXPECT_THROW(parseMoment(date), Error) << date;
}

}  // namespace
}  // namespace lumbarn
