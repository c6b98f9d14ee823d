#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include "../support/Dates.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "QVEclipseRFTtest.h"
#include "TimeOfDay.h"

namespace lumbarn {

namespace {

constexpr const char* className = "QVEclipseRFTtest";

/// The length first: every record of a file is asked for its name.
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

std::string_view getWellType(std::string_view zText) {
  for (const std::string_view type : {"FRICTION", "MULTISEG"}) {
    if (equalNoCase(trim(zText), type)) return type;
  }
  return "STANDARD";
}

void QVEclipseRFTtest::getEclipseRFTtest(RecordWalk& reader, bool& qOK) {
  reader_ = &reader;
  for (auto& array : reader.indices) array.values.clear();
  bool whole = false;  // the record in hand has been read; what fails is the way to the next
  guarded(*session_, qOK, className, "getEclipseRFTtest", [&] {
    std::int32_t nTimes = 0;
    try {
      if (!reader.next()) throw Fault(FaultNumber::PastEnd);
      beginsAt_ = reader.header().headerAt;
      for (;; reader.next()) {
        if (session_->cancelled()) return false;
        if (reader.header().is("TIME", ElementType::Single) && ++nTimes == 2) {
          reader.stepBack();
          processRecords();
          return false;
        }
        readRecord(reader);
        ++reader.recordsRead;
        whole = true;
        if (!reader.more()) break;
        whole = false;
      }
      processRecords();
      return true;
    } catch (BadRecord& damage) {
      reader.setDamaged();
      // A TIME that is cut off ends this test like a whole one.
      const bool complete = whole && nTimes > 0 && reader.header().is("TIME", ElementType::Single);
      if (complete) processRecords();
      damage.diagnosis().action = complete ? "kept the tests before it"
                                           : "kept the tests before it, and of this one the arrays as read";
      throw;
    } catch (const Fault& fault) {
      const RecordHeader& header = reader.header();
      tell(Message::WellTestRecord, header.keyword, header.headerAt, fault.what(), {}, {},
           "left out the rest of the test");
      throw;
    }
  });
  reader_ = nullptr;
}

/// Takes what is of use in a record. Whatever else there is, the walk passes over.
void QVEclipseRFTtest::readRecord(RecordWalk& reader) {
  RecordCursor& cursor = reader.cursor();
  const RecordHeader& header = cursor.header();
  const std::string_view keyword = header.keyword;
  switch (header.type) {
    case ElementType::Integer:
      if (keyword == "DATE") return setDate(cursor);
      if (checkRFTPLTArray(keyword)) return readIndices(cursor);
      break;
    case ElementType::Single:
      if (keyword == "TIME") return cursor.read(std::span(&sTime_, 1));
      if (keyword == "WELLPLT") {
        sWELLPLT_ = cursor.singles();
        return;
      }
      break;
    case ElementType::Text:
      if (keyword == "WELLETC") return readWELLETC(cursor);
      [[fallthrough]];
    default:
      reader.reportType(*session_);
      return;
  }
  if (TestTable* table = tableOf(keyword)) {
    addRecord(cursor, *table);
  } else {
    reader.reportType(*session_);
  }
}

void QVEclipseRFTtest::setDate(RecordCursor& cursor) {
  std::array<std::int32_t, 3> date{};
  cursor.read(std::span<std::int32_t>(date));
  iDay_ = date[0];
  iMonth_ = date[1];
  iYear_ = std::max(date[2], 0);
  qDate_ = true;
  if (monthName(iMonth_).empty()) {
    tell(Message::WellTestDate, "DATE", cursor.header().headerAt, "month is none", "1 to 12",
         fmt::format("{}", iMonth_), "left it out of the date");
  }
}

/// A month that is none has no name; the text keeps its place.
std::string QVEclipseRFTtest::dateText() const {
  return qDate_ ? fmt::format("{} {} {:04}", iDay_, monthName(iMonth_), iYear_) : std::string();
}

std::optional<Moment> QVEclipseRFTtest::date() const {
  if (!qDate_) return std::nullopt;
  return testMoment(iDay_, iMonth_, iYear_, sTime_, unitsPerDay(welletc_.textOf(welletcTime)));
}

void QVEclipseRFTtest::readWELLETC(RecordCursor& cursor) {
  const RecordHeader& header = cursor.header();
  welletc_.width = static_cast<std::size_t>(header.width);
  welletc_.bytes.resize(static_cast<std::size_t>(header.count) * welletc_.width);
  cursor.readText(welletc_.bytes);
  zWell_ = welletc_.at(welletcWell);
  zGrid_ = welletc_.at(welletcGrid);
  if (welletc_.size() > 6) zWellType_ = getWellType(welletc_.at(welletcType));
}

/// Looked for in integer records only: indices that a file has as singles are PLT arrays.
void QVEclipseRFTtest::readIndices(RecordCursor& cursor) {
  const RecordHeader& header = cursor.header();
  const std::size_t axis = isAny(header.keyword, {"CONIPOS", "I"})   ? 0
                           : isAny(header.keyword, {"CONJPOS", "J"}) ? 1
                                                                     : 2;
  auto& whole = reader_->integers;
  whole.resize(static_cast<std::size_t>(header.count));
  cursor.read(std::span<std::int32_t>(whole));
  auto& [values, headerAt] = reader_->indices[axis];
  values.assign(whole.begin(), whole.end());
  headerAt = header.headerAt;
  qIndices_ = true;
}

TestTable* QVEclipseRFTtest::tableOf(std::string_view keyword) {
  if (checkRFTArray(keyword)) return &rft_;
  if (checkPLTArray(keyword)) return &plt_;
  if (!checkSEGArray(keyword)) return nullptr;
  // "SEG" anywhere in the name: an array such as BRNSEG has a row for each segment.
  return keyword.find("SEG") != std::string_view::npos ? &seg_ : &brn_;
}

std::int32_t& QVEclipseRFTtest::rowCount(const TestTable& table) {
  return &table == &seg_ ? nSegments_ : &table == &brn_ ? nBranches_ : nConnections_;
}

/// True when an array has a value for each row; the first one of a table says how many rows there are. Others
/// are lost to the results, which a host only learns from the diagnosis.
bool QVEclipseRFTtest::accepts(TestTable& table, std::string_view name, std::int64_t rows,
                               std::uint64_t headerAt) {
  if (rows > std::numeric_limits<std::int32_t>::max()) throw Fault(FaultNumber::Overflow);
  const auto size = static_cast<std::size_t>(rows);
  if (table.empty() ? size == 0 : size != table.rows) {
    tell(Message::WellTestArrayLength, name, headerAt, {},
         table.empty() ? "1 or more" : fmt::format("{}", table.rows), fmt::format("{}", rows), "left it out");
    return false;
  }
  if (!table.empty()) return true;
  // One number of rows serves RFT and PLT alike, so the later of the two decides.
  if (rowCount(table) != 0 && rowCount(table) != rows) {
    tell(Message::WellTestConnections, name, headerAt, {}, fmt::format("{}", rowCount(table)),
         fmt::format("{}", rows), "took the later number for both");
  }
  table.rows = size;
  rowCount(table) = static_cast<std::int32_t>(rows);
  return true;
}

void QVEclipseRFTtest::addRecord(RecordCursor& cursor, TestTable& table) {
  const RecordHeader& header = cursor.header();
  if (!accepts(table, header.keyword, header.count, header.headerAt)) return;
  const std::span<float> column = table.add(header.keyword, header.headerAt);
  try {
    if (header.type == ElementType::Single) {
      cursor.read(column);
    } else {
      auto& whole = reader_->integers;
      whole.resize(column.size());
      cursor.read(std::span<std::int32_t>(whole));
      std::ranges::transform(whole, column.begin(),
                             [](std::int32_t value) { return static_cast<float>(value); });
    }
  } catch (...) {
    table.removeLast();
    throw;
  }
  stored(table, header.keyword);
}

void QVEclipseRFTtest::addArray(TestTable& table, std::string_view name, std::span<const float> data,
                                std::uint64_t headerAt) {
  if (!accepts(table, name, static_cast<std::int64_t>(data.size()), headerAt)) return;
  std::ranges::copy(data, table.add(name, headerAt).begin());
  stored(table, name);
}

void QVEclipseRFTtest::stored(const TestTable& table, std::string_view name) {
  if (&table == &rft_) {
    qRFT_ = true;
    if (name == "DEPTH") iDepthColumn_ = table.count;
  } else if (&table == &plt_) {
    qPLT_ = true;
  } else {
    qSEG_ = true;
  }
}

void QVEclipseRFTtest::tell(Message message, std::string_view keyword, std::uint64_t headerAt,
                            std::string_view problem, std::string expected, std::string found,
                            std::string_view action) const {
  Diagnosis diagnosis{.message = message, .problem = std::string(problem), .keyword = std::string(keyword)};
  if (reader_) {
    diagnosis.path = reader_->cursor().path();
    if (headerAt == reader_->header().headerAt) diagnosis.occurrence = reader_->cursor().occurrence();
  }
  if (headerAt != TestTable::workedOut) diagnosis.offset = headerAt;
  diagnosis.expected = std::move(expected);
  diagnosis.found = std::move(found);
  diagnosis.action = action;
  session_->diagnose(std::move(diagnosis));
}

}  // namespace lumbarn
