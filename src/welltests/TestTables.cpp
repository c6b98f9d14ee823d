#include "TestTables.h"

#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include "../support/Dates.h"
#include "../support/Fault.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

/// Compares lengths first: this is called for every record of a file.
bool isAny(std::string_view zName, std::initializer_list<std::string_view> names) {
  return std::ranges::any_of(
      names, [&](std::string_view name) { return name.size() == zName.size() && equalNoCase(name, zName); });
}

bool beginsWith(std::string_view zName, std::string_view letters) {
  return equalNoCase(trim(zName).substr(0, letters.size()), letters);
}

}  // namespace

bool checkRFTArray(std::string_view zName) {
  return isAny(trim(zName), {"PRESSURE", "DEPTH", "SWAT", "SGAS"});
}

bool checkRFTPLTArray(std::string_view zName) {
  return isAny(trim(zName), {"CONIPOS", "CONJPOS", "CONKPOS", "I", "J", "K"});
}

bool checkPLTArray(std::string_view zName) { return beginsWith(zName, "CON"); }

bool checkSEGArray(std::string_view zName) { return beginsWith(zName, "SEG") || beginsWith(zName, "BRN"); }

void TestReport::operator()(Message message, std::string_view keyword, std::uint64_t headerAt,
                            std::string_view problem, std::string expected, std::string found,
                            std::string_view action) const {
  Diagnosis diagnosis{.message = message,
                      .path = walk.cursor().path(),
                      .problem = std::string(problem),
                      .keyword = std::string(keyword),
                      .expected = std::move(expected),
                      .found = std::move(found),
                      .action = std::string(action)};
  if (headerAt == walk.header().headerAt) diagnosis.occurrence = walk.cursor().occurrence();
  if (headerAt != TestTable::derived) diagnosis.offset = headerAt;
  session.diagnose(std::move(diagnosis));
}

TestTable* TestTables::tableOf(std::string_view keyword) {
  if (checkRFTArray(keyword)) return &rft;
  if (checkPLTArray(keyword)) return &plt;
  if (!checkSEGArray(keyword)) return nullptr;
  // "SEG" anywhere in the name: an array such as BRNSEG has a row for each segment.
  return keyword.find("SEG") != std::string_view::npos ? &segments : &branches;
}

std::int32_t& TestTables::rowCount(const TestTable& table) {
  return &table == &segments ? nSegments : &table == &branches ? nBranches : nConnections;
}

bool TestTables::accepts(TestTable& table, std::string_view name, std::int64_t rows, std::uint64_t headerAt,
                         const TestReport& report) {
  if (rows > std::numeric_limits<std::int32_t>::max()) throw Fault(FaultNumber::Overflow);
  const auto size = static_cast<std::size_t>(rows);
  if (table.empty() ? size == 0 : size != table.rows) {
    report(Message::WellTestArrayLength, name, headerAt, {},
           table.empty() ? "1 or more" : fmt::format("{}", table.rows), fmt::format("{}", rows),
           "left it out");
    return false;
  }
  if (!table.empty()) return true;
  // RFT and PLT share one number of rows, so the later of the two decides.
  if (rowCount(table) != 0 && rowCount(table) != rows) {
    report(Message::WellTestConnections, name, headerAt, {}, fmt::format("{}", rowCount(table)),
           fmt::format("{}", rows), "took the later number for both");
  }
  table.rows = size;
  rowCount(table) = static_cast<std::int32_t>(rows);
  return true;
}

void TestTables::add(TestTable& table, std::string_view name, std::span<const float> data,
                     const TestReport& report, std::uint64_t headerAt) {
  if (!accepts(table, name, static_cast<std::int64_t>(data.size()), headerAt, report)) return;
  std::ranges::copy(data, table.add(name, headerAt).begin());
  stored(table, name);
}

void TestTables::stored(const TestTable& table, std::string_view name) {
  if (&table == &rft) {
    hasRft = true;
    if (name == "DEPTH") depthColumn = table.count;
  } else if (&table == &plt) {
    hasPlt = true;
  } else {
    hasSegments = true;
  }
}

void TableFiller::headerRecord(const RecordHeader& record) {
  if (record.keyword == "TIME") {
    if (record.count < 1) throw Fault(FaultNumber::Subscript);
  } else if (record.keyword == "WELLETC") {
    header_.welletc.at(WelletcText::Grid);
  } else {
    if (record.count < 3) throw Fault(FaultNumber::Subscript);
    const std::int32_t month = (*header_.date)[1];
    if (!monthName(month).empty()) return;
    report_(Message::WellTestDate, "DATE", record.headerAt, "month is none", "1 to 12",
            fmt::format("{}", month), "left it out of the date");
  }
}

/// Connection indices are integers: those that a file has as singles are PLT arrays.
void TableFiller::array(RecordCursor& cursor) {
  const RecordHeader& header = cursor.header();
  const std::string_view keyword = header.keyword;
  if (header.type == ElementType::Integer) {
    if (checkRFTPLTArray(keyword)) return readIndices(cursor);
  } else if (header.type != ElementType::Single) {
    return;
  } else if (keyword == "WELLPLT") {
    tables_.wellPlt = cursor.singles();
    return;
  }
  if (TestTable* table = tables_.tableOf(keyword)) readColumn(cursor, *table);
}

void TableFiller::readIndices(RecordCursor& cursor) {
  const RecordHeader& header = cursor.header();
  const std::size_t axis = isAny(header.keyword, {"CONIPOS", "I"})   ? 0
                           : isAny(header.keyword, {"CONJPOS", "J"}) ? 1
                                                                     : 2;
  auto& integers = report_.walk.integers;
  integers.resize(static_cast<std::size_t>(header.count));
  cursor.read(std::span<std::int32_t>(integers));
  auto& [values, headerAt] = report_.walk.indices[axis];
  values.assign(integers.begin(), integers.end());
  headerAt = header.headerAt;
  tables_.hasIndices = true;
}

void TableFiller::readColumn(RecordCursor& cursor, TestTable& table) {
  const RecordHeader& header = cursor.header();
  if (!tables_.accepts(table, header.keyword, header.count, header.headerAt, report_)) return;
  const std::span<float> column = table.add(header.keyword, header.headerAt);
  try {
    if (header.type == ElementType::Single) {
      cursor.read(column);
    } else {
      auto& integers = report_.walk.integers;
      integers.resize(column.size());
      cursor.read(std::span<std::int32_t>(integers));
      std::ranges::transform(integers, column.begin(),
                             [](std::int32_t value) { return static_cast<float>(value); });
    }
  } catch (...) {
    table.removeLast();
    throw;
  }
  tables_.stored(table, header.keyword);
}

}  // namespace lumbarn
