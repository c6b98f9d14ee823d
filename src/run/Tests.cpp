#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

#include "../frame/Error.h"
#include "../frame/NumberText.h"
#include "../support/Text.h"
#include "ChosenTests.h"
#include "Run.h"

namespace lumbarn {
namespace {

using Values = WellTestColumn::Values;

void putText(BatchBuilder& rows, std::size_t column, std::string_view text) {
  if (!text.empty()) rows.set(column, std::string_view(toUtf8(text)));
}

Schema testFields() {
  return {{.name = "test", .type = Type::Int32, .nullable = false},
          {.name = "well", .type = Type::Utf8},
          {.name = "date", .type = Type::Timestamp}};
}
constexpr std::size_t testFieldCount = 3;

void putTest(BatchBuilder& rows, const TestSummary& test) {
  rows.set(0, test.number);
  putText(rows, 1, test.well);
  if (const auto date = toLocal(test.date)) rows.set(2, *date);
}

Schema listSchema(bool users) {
  Schema schema = testFields();
  schema.push_back({.name = "number", .type = Type::Int32, .nullable = false});
  schema.push_back({.name = users ? "origin" : "grid", .type = Type::Utf8});
  schema.push_back({.name = "kinds", .type = Type::Utf8});
  schema.push_back({.name = "rows", .type = Type::Int64, .nullable = false});
  for (const char* name : {"plt_branches", "branches", "icd_branches"}) {
    if (!users) schema.push_back({.name = name, .type = Type::Int32, .nullable = false});
  }
  return schema;
}

void listTest(BatchBuilder& rows, const TestSummary& test, bool users) {
  putTest(rows, test);
  std::size_t column = testFieldCount;
  rows.set(column++, test.numberInWell);
  putText(rows, column++, users ? test.origin : shownGrid(test.grid));
  putText(rows, column++, test.kinds);
  rows.set(column++, test.rows);
  for (const std::int32_t count : {test.pltBranches, test.branches, test.icdBranches}) {
    if (!users) rows.set(column++, count);
  }
  rows.endRow();
}

std::size_t sizeOf(const Values& values) {
  return std::visit([](const auto& all) { return all.size(); }, values);
}

bool isMissing(float value) { return value == TestFile::none || std::isnan(value); }
bool isMissing(double value) { return std::isnan(value); }
bool isMissing(const std::string& text) { return text.empty(); }
bool isMissing(auto) { return false; }

/// A value as text in the shortest form of its type; empty for none.
std::string textOf(const Values& values, std::size_t row) {
  return std::visit(
      [row](const auto& all) -> std::string {
        using Value = typename std::decay_t<decltype(all)>::value_type;
        const Value value = all[row];
        if (isMissing(value)) return {};
        if constexpr (std::is_same_v<Value, std::string>) {
          return value;
        } else if constexpr (std::is_same_v<Value, bool>) {
          return value ? "true" : "false";
        } else {
          return std::string(NumberText(value, false).view());
        }
      },
      values);
}

Type typeOf(const Values& values) {
  constexpr Type types[] = {Type::Float32, Type::Float64, Type::Int32, Type::Bool, Type::Utf8};
  return types[values.index()];
}

/// A type that holds the values of both.
Type common(Type a, Type b) {
  const auto isNumber = [](Type type) { return type != Type::Bool && type != Type::Utf8; };
  if (a == b) return a;
  return isNumber(a) && isNumber(b) ? Type::Float64 : Type::Utf8;
}

void putValue(BatchBuilder& rows, std::size_t column, const Values& values, std::size_t row) {
  if (rows.schema()[column].type == Type::Utf8) return putText(rows, column, textOf(values, row));
  std::visit(
      [&](const auto& all) {
        using Value = typename std::decay_t<decltype(all)>::value_type;
        if constexpr (std::is_arithmetic_v<Value>) {
          const Value value = all[row];
          if (!isMissing(value)) rows.set(column, value);
        }
      },
      values);
}

/// The columns of a part side by side, of all tests that are chosen: one for each name, and another one where
/// a test has a name twice or another unit.
class PartRows {
 public:
  PartRows(ChosenTests& tests, bool plain) : fields_(plain ? Schema() : testFields()) {
    first_ = fields_.size();
    while (auto test = tests.next()) {
      auto& places = places_.emplace_back();
      std::map<std::string_view, int> timesSeen;
      for (const TestColumn& column : test->columns)
        places.push_back(place(column, timesSeen[column.name]++));
      tests_.push_back(std::move(*test));
    }
  }

  Schema schema() const {
    Schema schema = fields_;
    makeNamesUnique(schema);
    return schema;
  }

  bool fill(BatchBuilder& rows) {
    while (!rows.full()) {
      if (test_ == tests_.size()) return false;
      std::size_t count = 0;
      for (const TestColumn& column : tests_[test_].columns) count = std::max(count, sizeOf(column.values));
      if (row_ == count) {
        tests_[test_++].columns.clear();
        row_ = 0;
      } else {
        addRow(rows, tests_[test_], places_[test_]);
      }
    }
    return true;
  }

 private:
  std::size_t place(const TestColumn& column, int timesSeen) {
    const auto [known, isNew] = placeOf_.try_emplace({column.name, timesSeen, column.units}, fields_.size());
    if (isNew) {
      Field field{.name = toUtf8(column.name), .type = typeOf(column.values), .unit = toUtf8(column.units)};
      // Depths are where the other values are measured.
      const bool depth = column.name == "DEPTH" || column.name == "CONMD" || column.name == "SEGMD";
      if (!depth) field.metadata = {{"array", field.name}};
      fields_.push_back(std::move(field));
    } else {
      Field& field = fields_[known->second];
      field.type = common(field.type, typeOf(column.values));
    }
    return known->second;
  }

  void addRow(BatchBuilder& rows, const ChosenTest& test, const std::vector<std::size_t>& places) {
    if (first_ > 0) putTest(rows, test.test);
    for (std::size_t i = 0; i < places.size(); ++i) {
      const Values& values = test.columns[i].values;
      if (row_ < sizeOf(values)) putValue(rows, places[i], values, row_);
    }
    rows.endRow();
    ++row_;
  }

  Schema fields_;
  std::size_t first_;  // column behind those that name the test
  std::map<std::tuple<std::string, int, std::string>, std::size_t> placeOf_;
  std::vector<ChosenTest> tests_;
  std::vector<std::vector<std::size_t>> places_;
  std::size_t test_ = 0;
  std::size_t row_ = 0;
};

/// Every array in one form, so that a program needs no knowledge of any: a row for each value.
class ArrayRows {
 public:
  explicit ArrayRows(std::shared_ptr<ChosenTests> tests) : tests_(std::move(tests)) {}

  static Schema schema() {
    return {{.name = "test", .type = Type::Int32, .nullable = false},
            {.name = "well", .type = Type::Utf8},
            {.name = "group", .type = Type::Utf8},
            {.name = "array", .type = Type::Utf8},
            {.name = "units", .type = Type::Utf8},
            {.name = "row", .type = Type::Int64, .nullable = false},
            {.name = "value", .type = Type::Utf8}};
  }

  bool fill(BatchBuilder& rows) {
    while (!rows.full()) {
      if (!test_ || column_ == test_->columns.size()) {
        test_ = tests_->next();
        column_ = row_ = 0;
        if (!test_) return false;
      } else if (row_ == sizeOf(test_->columns[column_].values)) {
        ++column_;
        row_ = 0;
      } else {
        addRow(rows, test_->columns[column_]);
      }
    }
    return true;
  }

 private:
  void addRow(BatchBuilder& rows, const TestColumn& column) {
    rows.set(0, test_->test.number);
    putText(rows, 1, test_->test.well);
    putText(rows, 2, column.group);
    putText(rows, 3, column.name);
    putText(rows, 4, column.units);
    rows.set(5, row_ + 1);
    putText(rows, 6, textOf(column.values, row_++));
    rows.endRow();
  }

  std::shared_ptr<ChosenTests> tests_;
  std::optional<ChosenTest> test_;
  std::size_t column_ = 0;
  std::size_t row_ = 0;
};

void checkParts(const RunState& run, const TestSelection& selection) {
  if (selection.plain && selection.numbers.size() != 1)
    throwRefused(run.root(), "rows without their test are those of one test, by its number");
  const bool ofBranch = selection.part == TestPart::Branch || selection.part == TestPart::PltBranch ||
                        selection.part == TestPart::Devices;
  if (ofBranch != (selection.branch != 0))
    throwRefused(run.root(), "a branch goes with the parts of a test that are of one branch");
}

}  // namespace

Stream Run::tests(const TestSelection& selection, const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    TestSelection list = selection;
    list.part = TestPart::Rft;  // what kinds of data there are is known when one of them is worked out
    const auto tests = std::make_shared<ChosenTests>(*state_, list, false, *context);
    const bool users = tests->isUsers();
    return streamOfRows(listSchema(users), std::move(context), [tests, users](BatchBuilder& rows) {
      while (!rows.full()) {
        const auto test = tests->next();
        if (!test) return false;
        listTest(rows, test->test, users);
      }
      return true;
    });
  } catch (...) {
    throw errorInFlight();
  }
}

Stream Run::testRows(const TestSelection& selection, const ReadOptions& options) const {
  try {
    checkParts(*state_, selection);
    auto context = std::make_shared<StreamContext>(options);
    auto tests = std::make_shared<ChosenTests>(*state_, selection, true, *context);
    if (selection.part == TestPart::All) {
      const auto rows = std::make_shared<ArrayRows>(std::move(tests));
      return streamOfRows(ArrayRows::schema(), std::move(context),
                          [rows](BatchBuilder& builder) { return rows->fill(builder); });
    }
    const auto rows = std::make_shared<PartRows>(*tests, selection.plain);
    return streamOfRows(rows->schema(), std::move(context),
                        [rows](BatchBuilder& builder) { return rows->fill(builder); });
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
