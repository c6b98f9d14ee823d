#include "qvUserRFTtest.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "../record/TextNumbers.h"
#include "../shapes/HeaderLayout.h"
#include "../support/Dates.h"
#include "../support/Fault.h"
#include "../support/Text.h"
#include "UserTestDate.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvUserRFTtest";

constexpr bool isRft(UserTestKind kind) { return kind == UserTestKind::Rft; }

/// The first word of a line.
std::string_view firstWord(std::string_view line) { return line.substr(0, line.find_first_of(" \t\r\n")); }

/// Deliberate: GRIDNAME is none of them, though it is among the words of a command, so that a line of it is
/// one of column names.
bool isCommandLine(UserTestKind kind, std::string_view line) {
  const auto word = userTestWord(kind, firstWord(line));
  return word && word->command != UserTestCommand::GridName;
}

/// A command line in its parts.
struct Command {
  UserTestCommand command;
  std::string value;      ///< the first word behind the command; empty when there is none
  std::string arguments;  ///< all words behind it, with one blank between
};

/// A command that touches the word behind it, as in "WELLNAMEP1", is cut off it. Deliberate: that word is
/// then the only one, but for DATE, whose parts are on as many words.
Command commandOf(UserTestWord word, std::string_view line) {
  auto parts = words(line);
  const std::string rest = parts[0].substr(word.word.size());
  parts.erase(parts.begin());
  if (!rest.empty() && word.command != UserTestCommand::Date) parts.clear();
  if (!rest.empty()) parts.insert(parts.begin(), rest);
  Command command{word.command, parts.empty() ? "" : parts[0], ""};
  for (const std::string& part : parts) command.arguments += (command.arguments.empty() ? "" : " ") + part;
  return command;
}

/// Takes a "FORMAT" with a word behind it off the end of a date; gives that word, empty when there is none.
std::string takeFormat(std::string_view& date) {
  const auto parts = words(date);
  const auto found = std::ranges::find(parts, "FORMAT");
  if (found == parts.end() || found + 1 == parts.end()) return "";
  const auto before = static_cast<std::size_t>(found - parts.begin());
  std::size_t length = 0;
  for (std::size_t i = 0; i < before; ++i) length += parts[i].size() + 1;
  date = trim(date.substr(0, length));
  return *(found + 1);
}

}  // namespace

/// The lines of one test, and what has been told of them.
struct qvUserRFTtest::Lines {
  UserTestKind kind;
  LineReader& reader;
  Session& session;
  std::string line;                 // upper case, without blanks around it
  std::vector<std::string> remark;  // words of the last line that '#' or ';' begins
  bool toldNoNumber = false;
  bool toldLateWords = false;

  bool next() {
    if (!reader.next()) return false;
    line = upper(trim(reader.line()));
    return true;
  }
  void tell(Message message, std::string problem, std::string expected, std::string_view found,
            std::string action, Certainty certainty) const {
    constexpr std::size_t shown = 60;
    session.diagnose({.message = message,
                      .path = reader.path(),
                      .problem = fmt::format("line {}: {}", reader.number(), problem),
                      .offset = reader.position(),
                      .expected = std::move(expected),
                      .found = std::string(found.substr(0, shown)),
                      .action = std::move(action),
                      .certainty = certainty});
  }
};

bool qvUserRFTtest::read(UserTestKind kind, LineReader& reader) {
  return attempt(*session_, className, isRft(kind) ? "getUserRFTtest" : "getUserPLTtest", [&] {
    Lines lines{kind, reader, *session_, {}};
    return readLines(lines);
  });
}

bool qvUserRFTtest::readLines(Lines& lines) {
  bool inData = false;
  while (lines.next()) {
    if (session_->cancelled()) return false;
    if (checkIfCommentLine(lines.line)) continue;
    if (isUserTestRemark(lines.line)) {
      lines.remark = words(std::string_view(lines.line).substr(1));
      continue;
    }
    if (!isCommandLine(lines.kind, lines.line)) {
      inData = true;
      if (!qDamaged) processData(lines);  // else these are the lines of a test that has ended
    } else if (inData) {
      lines.reader.stepBack();
      break;
    } else {
      processCommand(lines);
    }
  }
  return !qDamaged;
}

void qvUserRFTtest::processCommand(Lines& lines) {
  const auto word = userTestWord(lines.kind, firstWord(lines.line));
  if (!word) return;
  Command command = commandOf(*word, lines.line);
  switch (command.command) {
    case UserTestCommand::Open:
      break;
    case UserTestCommand::Origin:
      zOrigin = std::move(command.value);
      break;
    case UserTestCommand::WellName:
      zWell = std::move(command.value);
      break;
    case UserTestCommand::GridName:
      zGrid = std::move(command.value);
      break;
    case UserTestCommand::WellType:
      zWellType = std::move(command.value);
      break;
    case UserTestCommand::DateFormat:
      zDateFormat = std::move(command.arguments);
      break;
    case UserTestCommand::Date:
      setDate(command.arguments, lines);
      break;
    case UserTestCommand::Time:
      setTime(command.value, lines);
      break;
  }
}

void qvUserRFTtest::setDate(std::string_view arguments, Lines& lines) {
  using namespace std::chrono;
  std::string_view text = arguments;
  const std::string ownFormat = takeFormat(text);
  auto date = parseUserTestDate(text, ownFormat.empty() ? zDateFormat : ownFormat);
  if (!date) {
    // Deliberate: a test always has a date, and today's is the one that stands out.
    date = floor<microseconds>(session_->now());
    lines.tell(Message::UserTestDate, "no date can be made of it",
               ownFormat.empty() ? zDateFormat : ownFormat, arguments,
               "took today's date, " + dayMonthYear(*date), Certainty::Guess);
  }
  const year_month_day day{floor<days>(*date)};
  iDay = static_cast<std::int32_t>(static_cast<unsigned>(day.day()));
  iMonth = static_cast<std::int32_t>(static_cast<unsigned>(day.month()));
  iYear = static_cast<std::int32_t>(static_cast<int>(day.year()));
  zDate = dayMonthYear(*date);
}

void qvUserRFTtest::setTime(const std::string& value, Lines& lines) {
  dTime = 0;
  if (beginsAsNumber(value) && parseNumber(value, dTime) == value.size()) return;
  lines.tell(Message::UserTestNumber, "the time is no number", "days", value, fmt::format("took {}", dTime),
             Certainty::Guess);
}

void qvUserRFTtest::processData(Lines& lines) {
  beginsAsNumber(firstWord(lines.line)) ? AddData(lines) : AddHeaders(lines);
}

void qvUserRFTtest::AddHeaders(Lines& lines) {
  UserTestTable& table = isRft(lines.kind) ? rft_ : plt_;
  if (table.rows() > 0 && table.headerLines() > 1 && !std::exchange(lines.toldLateWords, true)) {
    lines.tell(Message::UserTestWords, "words among the rows", "numbers", lines.line, "left the line out",
               Certainty::Likely);
  }
  if (table.headerLines() == 0 && firstWord(lines.line).starts_with("GRIDNAME")) {
    lines.tell(Message::UserTestWords, "GRIDNAME counts as a line of column names", "column names",
               lines.line, "took its words for columns", Certainty::Likely);
  }
  table.addHeaders(words(lines.line));
}

void qvUserRFTtest::AddData(Lines& lines) {
  attempt(*session_, className, isRft(lines.kind) ? "AddRFTData" : "AddPLTData", [&] {
    UserTestTable& table = isRft(lines.kind) ? rft_ : plt_;
    // Exports of logging programs have the names of columns in a remark, with nothing else above the numbers.
    if (table.headerLines() == 0 && lines.remark.size() == words(lines.line).size())
      table.addHeaders(lines.remark);
    const auto row = table.addRow(lines.line);
    if (row.noNumber && !std::exchange(lines.toldNoNumber, true)) {
      lines.tell(Message::UserTestNumber, "not a number", "a number", *row.noNumber,
                 "took what it begins with, or 0", Certainty::Guess);
    }
    if (row.numbers == table.columns()) return;
    qDamaged = true;
    lines.tell(Message::UserTestRow, "row has too few numbers", fmt::format("{} numbers", table.columns()),
               fmt::format("{}", row.numbers), "took 0 for the rest and left out the rows behind it",
               Certainty::Certain);
    throw Fault(FaultNumber::Subscript);
  });
}

std::optional<XYData> qvUserRFTtest::data(UserTestKind kind) const {
  return attempt(*session_, className, "getTestData", [&] {
    const UserTestTable& columns = table(kind);
    XYData result(columns.rows(), columns.columns(), *session_);
    for (std::size_t i = 0; i < columns.columns(); ++i) columns.copyColumn(i, result.column(i + 1));
    return std::optional(std::move(result));
  });
}

std::optional<ByteTable> qvUserRFTtest::headers(UserTestKind kind) const {
  return attempt(*session_, className, "getTestHeaders", [&] {
    const UserTestTable& columns = table(kind);
    ByteTable result(headerWidth, columns.columns());
    for (std::size_t i = 1; i <= columns.columns(); ++i) {
      setAttribute(attributeDataKind, result, i, isRft(kind) ? "RFT" : "PLT");
      setAttribute(attributeUnits, result, i, columns.units(i - 1));
      setAttribute(attributeMember, result, i, zWell);
      setAttribute(attributeIndex, result, i, fmt::format("{}", iTest));
      setAttribute(attributeVariable, result, i, columns.name(i - 1));
      setAttribute(attributeVerbose, result, i, columns.name(i - 1));
    }
    return std::optional(std::move(result));
  });
}

}  // namespace lumbarn
