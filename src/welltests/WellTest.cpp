#include "WellTest.h"

#include <algorithm>

#include <fmt/format.h>

#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "TestParser.h"
#include "TestRecords.h"
#include "TestTables.h"

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
    case ElementType::Text:
      return cursor.texts();
    default:
      return std::nullopt;
  }
}

/// Keeps every array as it is.
struct ColumnSink final : TestSink {
  std::vector<WellTestColumn> columns;

  void array(RecordCursor& cursor) override {
    const RecordHeader& header = cursor.header();
    if (auto values = readValues(cursor))
      columns.push_back({header.keyword, std::move(*values), header.headerAt});
  }
};

WellTestUnits unitsOf(const TextArray& welletc) {
  const auto text = [&](WelletcText position) { return std::string(welletc.textOf(position)); };
  using enum WelletcText;
  return {text(Time),    text(Length),        text(Pressure), text(LiquidRate),
          text(GasRate), text(ReservoirRate), text(Velocity), text(Viscosity)};
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

std::string WellTest::unit(std::string_view name) const { return unitOf(name, rawWelletc); }

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
  return attempt(*session_, "WellTestReader", "next", [&] {
    for (;;) {
      test = {};  // frees the memory of the test before
      if (records_->atDamage() && !records_->skipToTest(*session_)) return false;
      if (readTest(test)) return true;
      if (records_->atDamage()) continue;
      if (!session_->cancelled()) records_->checkUnchanged(*session_);
      return false;
    }
  });
}

bool WellTestReader::readTest(WellTest& test) {
  TestHeader header;
  ColumnSink sink;
  ParsedTest parsed = parseTest(*records_, *session_, header, sink);
  if (parsed.damage) session_->diagnose(std::move(*parsed.damage));
  if (!parsed.any || parsed.end == ParsedTest::End::Canceled) return false;
  test = testOf(header);
  test.complete = parsed.complete;
  sortColumns(test, std::move(sink.columns));
  return true;
}

WellTest WellTestReader::testOf(const TestHeader& header) {
  WellTest test;
  test.number = ++number_;
  test.well = header.well();
  test.numberInWell = ++numberOf_[test.well];
  test.grid = header.grid();
  test.wellType = header.wellType();
  test.time = header.time;
  test.date = header.moment();
  test.units = unitsOf(header.welletc);
  for (std::size_t i = 1; i <= header.welletc.size(); ++i) test.welletc.emplace_back(header.welletc.at(i));
  test.rawWelletc = header.welletc;
  return test;
}

void WellTestReader::sortColumns(WellTest& test, std::vector<WellTestColumn> columns) const {
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
