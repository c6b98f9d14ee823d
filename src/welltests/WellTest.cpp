#include "WellTest.h"

#include <algorithm>

#include <fmt/format.h>

#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "../vocabulary/Segments.h"
#include "../vocabulary/Units.h"
#include "QVEclipseRFTtest.h"
#include "TestUnits.h"
#include "TimeOfDay.h"

namespace lumbarn {

namespace {

bool isConnectionArray(std::string_view name) {
  return checkRFTPLTArray(name) || checkRFTArray(name) || checkPLTArray(name);
}

/// The table that a name speaks of, or null.
WellTestTable* tableByName(WellTest& test, std::string_view name) {
  if (isConnectionArray(name)) return &test.connections;
  if (!checkSEGArray(name)) return nullptr;
  return name.find("SEG") != std::string_view::npos ? &test.segments : &test.branches;
}

std::optional<WellTestColumn::Values> readValues(RecordCursor& cursor) {
  switch (cursor.header().type) {
    case ElementType::Single:
      return cursor.singles();
    case ElementType::Double:
      return cursor.doubles();
    case ElementType::Integer:
    case ElementType::Short:
      return cursor.integers();
    case ElementType::Logical: {
      std::vector<std::int16_t> values(static_cast<std::size_t>(cursor.header().count));
      cursor.readLogicals(values);
      return std::vector<bool>(values.begin(), values.end());
    }
    case ElementType::Text: {
      std::vector<std::string> texts = cursor.texts();
      for (std::string& text : texts) text = trim(text);
      return texts;
    }
    default:
      return std::nullopt;
  }
}

WellTestUnits unitsOf(const TextArray& welletc) {
  constexpr std::size_t viscosity = 13;
  const auto text = [&](std::size_t place) { return std::string(welletc.textOf(place)); };
  return {text(welletcTime),    text(welletcLength),        text(welletcPressure), text(welletcLiquidRate),
          text(welletcGasRate), text(welletcReservoirRate), text(welletcVelocity), text(viscosity)};
}

}  // namespace

std::size_t WellTestColumn::size() const {
  return std::visit([](const auto& all) { return all.size(); }, values);
}

std::optional<std::vector<std::int32_t>> WellTestColumn::integers() const {
  if (const auto* whole = std::get_if<std::vector<std::int32_t>>(&values)) return *whole;
  const auto* singles = std::get_if<std::vector<float>>(&values);
  if (!singles) return std::nullopt;
  std::vector<std::int32_t> result(singles->size());
  try {
    std::ranges::transform(*singles, result.begin(), rounded);
  } catch (const Fault&) {
    return std::nullopt;
  }
  return result;
}

const WellTestColumn* WellTestTable::find(std::string_view name) const {
  const auto found = std::ranges::find(columns, name, &WellTestColumn::name);
  return found == columns.end() ? nullptr : &*found;
}

std::string WellTest::unit(std::string_view name) const {
  if (std::string text = connectionUnit(name, rawWelletc); !text.empty()) return text;
  std::vector<std::string> names;
  std::vector<std::string> segmentUnits;
  std::int32_t count = 0;
  bool qOK = false;
  setSEGHeaders(welletc, names, segmentUnits, count, qOK);
  const auto found = std::ranges::find(names, name);
  return found == names.end() ? std::string() : segmentUnits[static_cast<std::size_t>(found - names.begin())];
}

std::unique_ptr<WellTestReader> WellTestReader::open(const std::string& path, Session& session) {
  std::string why;
  std::unique_ptr<RecordWalk> records;
  try {
    records = openWalk(path, why);
  } catch (BadRecord& failure) {
    session.diagnose(std::move(failure.diagnosis()));
    return nullptr;
  }
  if (!records) {
    session.diagnose(Diagnosis{.message = Message::FileOpen, .path = path, .problem = why});
    return nullptr;
  }
  return std::unique_ptr<WellTestReader>(new WellTestReader(session, std::move(records)));
}

bool WellTestReader::next(WellTest& test) {
  bool qOK = false;
  guarded(*session_, qOK, "WellTestReader", "next", [&] {
    for (;;) {
      test = {};
      if (records_->atDamage() && !records_->skipToTest(*session_)) return false;
      std::vector<WellTestColumn> columns;
      if (readTest(test, columns)) return true;
      if (records_->atDamage()) continue;
      if (!session_->cancelled()) records_->checkUnchanged(*session_);
      return false;
    }
  });
  return qOK;
}

bool WellTestReader::readTest(WellTest& test, std::vector<WellTestColumn>& columns) {
  std::vector<std::int32_t> date;
  bool timed = false;
  bool any = false;
  bool reading = false;
  try {
    while (records_->next()) {
      if (session_->cancelled()) return false;
      if (records_->header().is("TIME", ElementType::Single)) {
        if (timed) {
          records_->stepBack();
          break;
        }
        timed = true;
      }
      any = true;
      reading = true;
      readRecord(test, date, columns);
      reading = false;
    }
  } catch (BadRecord& damage) {
    records_->setDamaged();
    // The TIME of the next test may be what is cut off; then this one is whole.
    test.complete = !reading && timed && records_->header().is("TIME", ElementType::Single);
    damage.diagnosis().action = test.complete || !any
                                    ? "kept the tests before it"
                                    : "kept the tests before it, and of this one the arrays as read";
    session_->diagnose(damage.diagnosis());
  }
  if (!any) return false;
  finish(test, date, std::move(columns));
  return true;
}

void WellTestReader::readRecord(WellTest& test, std::vector<std::int32_t>& date,
                                std::vector<WellTestColumn>& columns) {
  RecordCursor& cursor = records_->cursor();
  const RecordHeader& header = cursor.header();
  if (header.is("TIME", ElementType::Single) && header.count > 0) {
    cursor.read(std::span(&test.time, 1));
  } else if (header.is("DATE", ElementType::Integer)) {
    date = cursor.integers();
  } else if (header.is("WELLETC", ElementType::Text)) {
    test.rawWelletc.width = static_cast<std::size_t>(header.width);
    test.rawWelletc.bytes.resize(static_cast<std::size_t>(header.count) * test.rawWelletc.width);
    cursor.readText(test.rawWelletc.bytes);
  } else if (records_->reportType(*session_)) {
    return;
  } else if (auto values = readValues(cursor)) {
    columns.push_back({header.keyword, std::move(*values), header.headerAt});
  }
}

/// Names the test and sorts its arrays into tables.
void WellTestReader::finish(WellTest& test, const std::vector<std::int32_t>& date,
                            std::vector<WellTestColumn> columns) {
  const TextArray& welletc = test.rawWelletc;
  test.well = welletc.textOf(welletcWell);
  test.grid = welletc.textOf(welletcGrid);
  test.wellType = getWellType(welletc.textOf(welletcType));
  for (std::size_t i = 1; i <= welletc.size(); ++i) test.welletc.emplace_back(welletc.at(i));
  test.units = unitsOf(welletc);
  if (date.size() >= 3)
    test.date = testMoment(date[0], date[1], date[2], test.time, unitsPerDay(welletc.textOf(welletcTime)));
  test.number = ++number_;
  test.numberInWell = ++numberOf_[test.well];

  for (const WellTestColumn& column : columns) {
    WellTestTable* table = tableByName(test, column.name);
    if (table && table->rows == 0) table->rows = column.size();
  }
  for (WellTestColumn& column : columns) {
    WellTestTable* table = tableByName(test, column.name);
    if (table && table->rows != column.size()) {
      session_->diagnose({.message = Message::WellTestArrayLength,
                          .path = records_->cursor().path(),
                          .keyword = column.name,
                          .offset = column.headerAt,
                          .expected = fmt::format("{}", table->rows),
                          .found = fmt::format("{}", column.size()),
                          .action = "kept it apart"});
      table = nullptr;
    } else if (!table && column.size() > 0) {
      for (WellTestTable* one : {&test.connections, &test.segments, &test.branches}) {
        if (!table && one->rows == column.size()) table = one;
      }
    }
    (table ? table->columns : test.others).push_back(std::move(column));
  }
}

std::vector<WellTest> readWellTests(const std::string& path, Session& session) {
  std::vector<WellTest> tests;
  if (const auto reader = WellTestReader::open(path, session)) {
    for (WellTest test; reader->next(test);) tests.push_back(std::move(test));
  }
  return tests;
}

}  // namespace lumbarn
