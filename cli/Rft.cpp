#include <algorithm>
#include <array>
#include <optional>
#include <unordered_map>
#include <variant>

#include <fmt/format.h>

#include "Commands.h"
#include "Output.h"
#include "PathArgument.h"
#include "WellTestFile.h"
#include "files/Recogniser.h"
#include "frame/NumberText.h"
#include "support/Text.h"

namespace lumbarn::cli {
namespace {

struct RftOptions {
  std::string path;
  std::int32_t test = 0;
  bool plt = false;
  std::int32_t branch = 0;
  std::int32_t icd = 0;
  bool segments = false;
  bool all = false;
  OutputOptions output;

  bool wantsTable() const { return test != 0 || plt || branch != 0 || icd != 0 || segments; }
  TestTableKind table() const {
    if (segments) return TestTableKind::Segments;
    if (icd != 0) return TestTableKind::Icd;
    if (branch != 0) return plt ? TestTableKind::PltBranch : TestTableKind::Branch;
    return plt ? TestTableKind::Plt : TestTableKind::Rft;
  }
};

/// Throws Failure for tables that do not go together.
void checkTogether(const RftOptions& options) {
  const int tables = (options.plt || options.branch != 0 ? 1 : 0) + (options.icd != 0 ? 1 : 0) +
                     (options.segments ? 1 : 0) + (options.all ? 1 : 0);
  if (tables > 1) throw Failure(Usage, "one of --plt, --branch, --icd, --segments and --all at a time");
}

/// The file of tests that an argument means, and its kind as its content tells it.
RunMember testFile(const RunFamily& run) {
  const RunMember* file = run.givenMember();
  if (file) {
    const Recognised recognised = recogniseFile(file->path);
    const FileKind kind = recognised.kind;
    if (kind == FileKind::Rft || kind == FileKind::UserRft || kind == FileKind::UserPlt) {
      RunMember found = *file;
      found.kind = kind;
      return found;
    }
    if (file->kind == FileKind::Unknown) {
      std::string why;
      if (!FileSource::open(file->path, why)) throw Failure(Usage, file->path + ": " + why);
      throw Failure(Usage, file->path + ": is no RFT file, and no text that RFT or PLT opens");
    }
  }
  const RunMember* found = run.find(FileKind::Rft);
  if (!found) throw Failure(Usage, fmt::format("{}{}: has no RFT file", run.folder, run.base));
  RunMember member = *found;
  const FileKind kind = recogniseFile(member.path).kind;
  if (kind == FileKind::UserRft || kind == FileKind::UserPlt) member.kind = kind;
  return member;
}

/// Whether all tests are dated without a time of day, so that people need not see any.
bool onlyDays(const std::vector<TestSummary>& tests) {
  return std::ranges::all_of(tests, [](const TestSummary& test) {
    return !test.date || *test.date == std::chrono::floor<std::chrono::days>(*test.date);
  });
}

std::string numberText(auto value) { return std::string(NumberText(value).view()); }

/// What stands in one row of a column, and whether it is a number.
std::string cellText(const WellTestColumn::Values& values, std::size_t row) {
  return std::visit(
      [row](const auto& all) -> std::string {
        using Value = typename std::decay_t<decltype(all)>::value_type;
        if constexpr (std::is_same_v<Value, std::string>) {
          return all[row];
        } else if constexpr (std::is_same_v<Value, bool>) {
          return all[row] ? "true" : "false";
        } else {
          return numberText(all[row]);
        }
      },
      values);
}

bool holdsNumbers(const WellTestColumn::Values& values) {
  return !std::holds_alternative<std::vector<std::string>>(values) &&
         !std::holds_alternative<std::vector<bool>>(values);
}

std::size_t rowsOf(const WellTestColumn::Values& values) {
  return std::visit([](const auto& all) { return all.size(); }, values);
}

void writeCell(const WellTestColumn::Values& values, std::size_t row, TableWriter& table) {
  if (const auto* singles = std::get_if<std::vector<float>>(&values)) {
    table.number((*singles)[row]);
  } else if (const auto* doubles = std::get_if<std::vector<double>>(&values)) {
    table.number((*doubles)[row]);
  } else if (const auto* integers = std::get_if<std::vector<std::int32_t>>(&values)) {
    table.number((*integers)[row]);
  } else {
    table.text(cellText(values, row));
  }
}

std::size_t widthOf(const WellTestColumn::Values& values) {
  std::size_t width = 0;
  for (std::size_t row = 0; row < rowsOf(values); ++row)
    width = std::max(width, displayWidth(cellText(values, row)));
  return width;
}

/// The simulator's tests have branches, those of a user an origin.
void listTests(const WellTestFile& file, Format format, std::ostream& out) {
  const bool dateOnly = format == Format::Table && onlyDays(file.tests());
  const auto textsOf = [&](const TestSummary& test) {
    return std::array<std::string, 4>{test.well, test.date ? isoText(*test.date, dateOnly) : "",
                                      file.isUsers() ? test.origin : test.grid, test.kinds};
  };
  std::array<std::size_t, 4> widths{};
  for (const TestSummary& test : file.tests()) {
    const auto texts = textsOf(test);
    for (std::size_t i = 0; i < texts.size(); ++i) widths[i] = std::max(widths[i], displayWidth(texts[i]));
  }
  std::vector<Column> columns{{"test", true},
                              {"well", false, widths[0]},
                              {"date", false, widths[1]},
                              {"number", true},
                              {file.isUsers() ? "origin" : "grid", false, widths[2]},
                              {"kinds", false, widths[3]},
                              {"rows", true}};
  if (!file.isUsers())
    columns.insert(columns.end(), {{"plt_branches", true}, {"branches", true}, {"icd_branches", true}});
  const auto table = TableWriter::make(format, columns, out);
  for (const TestSummary& test : file.tests()) {
    const auto texts = textsOf(test);
    table->number(test.number);
    table->text(texts[0]);
    table->text(texts[1]);
    table->number(test.numberInWell);
    table->text(texts[2]);
    table->text(texts[3]);
    table->number(static_cast<std::uint64_t>(test.rows));
    if (file.isUsers()) continue;
    for (const std::int32_t count : {test.pltBranches, test.branches, test.icdBranches}) table->number(count);
  }
  table->finish();
}

/// Which test it is, for people; other programs asked for it and know.
void writeCaption(const TestSummary& test, std::ostream& out) {
  std::string caption =
      fmt::format("test {}: well {}, number {} of the well", test.number, test.well, test.numberInWell);
  if (test.date) caption += ", " + isoText(*test.date, true);
  if (!test.grid.empty()) caption += ", grid " + test.grid;
  out << printable(caption) << "\n\n";
}

/// The null value of the session stands for what a table of segments has no data for.
bool isNull(const WellTestColumn::Values& values, std::size_t row, std::optional<float> null) {
  const auto* singles = std::get_if<std::vector<float>>(&values);
  return null && singles && (*singles)[row] == *null;
}

void writeTable(const std::vector<TestColumn>& columns, std::optional<float> null, Format format,
                std::ostream& out) {
  std::vector<Column> heads;
  std::unordered_map<std::string_view, int> timesSeen;  // connections have cells in both tables of a PLT
  for (const TestColumn& column : columns) {
    const int times = ++timesSeen[column.name];
    heads.push_back({times == 1 ? column.name : fmt::format("{}#{}", column.name, times),
                     holdsNumbers(column.values), format == Format::Table ? widthOf(column.values) : 0,
                     column.units});
  }
  const auto table = TableWriter::make(format, std::move(heads), out);
  const std::size_t rows = columns.empty() ? 0 : rowsOf(columns[0].values);
  for (std::size_t row = 0; row < rows; ++row) {
    for (const TestColumn& column : columns)
      isNull(column.values, row, null) ? table->empty() : writeCell(column.values, row, *table);
  }
  table->finish();
}

/// Every array in one form, so that a program needs no knowledge of any: a line for each value.
void writeEverything(WellTestFile& file, const std::vector<TestSummary>& tests, Format format,
                     std::ostream& out) {
  std::vector<Column> heads{{"test", true}, {"well"},      {"group"}, {"array"},
                            {"units"},      {"row", true}, {"value"}};
  std::vector<std::vector<TestColumn>> columns;
  const auto widen = [&](std::size_t head, std::string_view text) {
    heads[head].width = std::max(heads[head].width, displayWidth(text));
  };
  for (const TestSummary& test : tests) {
    widen(1, test.well);
    columns.push_back(file.table(test, TestTableKind::Everything, 0));
    for (const TestColumn& column : columns.back()) {
      widen(2, column.group);
      widen(3, column.name);
      widen(4, column.units);
      widen(5, numberText(rowsOf(column.values)));
    }
  }
  const auto table = TableWriter::make(format, std::move(heads), out);
  for (std::size_t i = 0; i < tests.size(); ++i) {
    for (const TestColumn& column : columns[i]) {
      for (std::size_t row = 0; row < rowsOf(column.values); ++row) {
        table->number(tests[i].number);
        table->text(tests[i].well);
        table->text(column.group);
        table->text(column.name);
        table->text(column.units);
        table->number(static_cast<std::uint64_t>(row + 1));
        writeCell(column.values, row, *table);
      }
    }
  }
  table->finish();
}

/// The test asked for. One need not say which when there is one only.
const TestSummary& chosenTest(const RftOptions& options, const std::vector<TestSummary>& tests,
                              const std::string& path) {
  if (options.test == 0) {
    if (tests.size() == 1) return tests.front();
    throw Failure(Usage,
                  fmt::format("say which test with --test N; \"lumbarn rft {}\" lists them", options.path));
  }
  if (options.test >= 1 && static_cast<std::size_t>(options.test) <= tests.size())
    return tests[static_cast<std::size_t>(options.test - 1)];
  throw Failure(Usage, fmt::format("{}: has {} test{}, there is no test {}", path, tests.size(),
                                   tests.size() == 1 ? "" : "s", options.test));
}

ExitStatus showTests(const RftOptions& options, Console& console) {
  checkTogether(options);
  const RunFamily run = findRun(options.path);
  const RunMember member = testFile(run);
  Output output(options.output, console.out(), pathsOf(run));
  const auto file = WellTestFile::open(member.path, member.kind, console);
  console.progress().hide();
  const Format format = options.output.format;
  if (options.all) {
    std::vector<TestSummary> tests = file->tests();
    if (options.test != 0) tests = {chosenTest(options, tests, member.path)};
    writeEverything(*file, tests, format, output.stream());
  } else if (options.wantsTable()) {
    const TestSummary& test = chosenTest(options, file->tests(), member.path);
    const auto columns = file->table(test, options.table(), std::max(options.branch, options.icd));
    if (format == Format::Table) writeCaption(test, output.stream());
    const bool segments = options.table() == TestTableKind::Branch || options.table() == TestTableKind::Icd;
    const auto null = static_cast<float>(console.session().NullValue);
    writeTable(columns, segments ? std::optional(null) : std::nullopt, format, output.stream());
  } else {
    listTests(*file, format, output.stream());
  }
  output.commit();
  return console.doneStatus();
}

}  // namespace

void addRft(CommandLine& line) {
  Subcommand command(line, "rft", "List the well tests of a run, or show the tables of one");
  RftOptions& options = command.performs(showTests);
  command.path(options.path,
               "A file of the run, its root name or its folder, or a text file of measured tests");
  command.ordinal("--test", options.test, "Show the table of one test, by its number in the list");
  command.flag("--plt", options.plt, "Show its rates along the well (PLT)");
  command.ordinal("--branch", options.branch, "Show the segments of one branch; with --plt its connections");
  command.ordinal("--icd", options.icd,
                  "Show the inflow control devices that empty into one branch of the tubing");
  command.flag("--segments", options.segments, "Show all segments");
  command.flag("--all", options.all, "Show every array of the test, or of all, a line for each value");
  command.output(options.output);
  command.footer(
      "Units stand below the names; csv and json have the names alone, --all has units in them too. "
      "Example:\n"
      "  lumbarn rft --test 2 --plt --branch 1 --format csv RUN");
}

}  // namespace lumbarn::cli
