#include <algorithm>
#include <optional>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Commands.h"
#include "InitFile.h"
#include "Output.h"
#include "PathArgument.h"
#include "frame/NumberText.h"
#include "support/Text.h"

namespace lumbarn::cli {
namespace {

struct TablesOptions {
  std::string path;
  std::string table;
  std::optional<std::int32_t> number;
  OutputOptions output;
};

/// The values are doubles made from reciprocals, so their last digits are noise: shown are those of a single,
/// in which decks are read.
float shown(double value) { return static_cast<float>(value); }

void writeList(const qvEclipseReader& reader, Format format, std::ostream& out) {
  std::vector<std::string> names;
  std::int32_t count = 0;
  bool qOK = false;
  reader.GetTableTypes(names, count, qOK);
  std::vector<Column> columns{{"table", false, 8}, {"number", true, 6}, {"rows", true, 4}, {"columns"}};
  std::vector<PhysicalTable> tables;
  std::vector<std::string> titles;
  for (const auto& name : names) {
    for (std::int32_t i = 1; i <= reader.NumberTables(name); ++i) {
      tables.push_back(reader.GetINITPhysicalTable(name, i, qOK));
      std::vector<std::string> titlesOfOne;
      for (const auto& column : tables.back().columns)
        titlesOfOne.push_back(column.units.empty() ? column.name
                                                   : fmt::format("{} ({})", column.name, column.units));
      titles.push_back(fmt::format("{}", fmt::join(titlesOfOne, ", ")));
    }
  }
  const auto table = TableWriter::make(format, columns, out);
  for (std::size_t i = 0; i < tables.size(); ++i) {
    table->text(tables[i].name);
    table->number(tables[i].number);
    table->number(tables[i].rows());
    table->text(titles[i]);
  }
  table->finish();
}

void writeTable(const PhysicalTable& physical, double null, Format format, std::ostream& out) {
  std::vector<Column> columns;
  for (const auto& column : physical.columns) {
    auto& title = columns.emplace_back(Column{column.name, true, 0, column.units});
    for (const double value : column.values)
      title.width = std::max(title.width, NumberText(shown(value)).view().size());
  }
  const auto table = TableWriter::make(format, columns, out);
  for (std::size_t row = 0; row < physical.rows(); ++row) {
    for (const auto& column : physical.columns)
      column.values[row] == null ? table->empty() : table->number(shown(column.values[row]));
  }
  table->finish();
}

/// The table that was asked for. Throws Failure, with the tables that there are.
PhysicalTable tableOf(const qvEclipseReader& reader, const TablesOptions& options) {
  bool qOK = false;
  const std::int32_t number = options.number.value_or(1);
  auto table = reader.GetINITPhysicalTable(options.table, number, qOK);
  if (qOK) return table;
  if (const auto count = reader.NumberTables(options.table); count > 0)
    throw Failure(Usage, fmt::format("no table {} of {}; it has {}", number, upper(options.table), count));
  std::vector<std::string> names;
  std::int32_t nNames = 0;
  reader.GetTableTypes(names, nNames, qOK);
  throw Failure(Usage, fmt::format("no table \"{}\"; it has {}", options.table, fmt::join(names, ", ")));
}

ExitStatus showTables(const TablesOptions& options, Console& console) {
  if (options.number && options.table.empty()) throw Failure(Usage, "--number goes with --table");
  const RunFamily run = findRun(options.path);
  Output output(options.output, console.out(), pathsOf(run));
  qvEclipseReader reader(console.session());
  openInit(reader, run, true, console);
  if (!reader.Init()->xTAB.qTABDIMS()) console.say("the INIT file has no simulation tables");
  if (options.table.empty()) {
    writeList(reader, options.output.format, output.stream());
  } else {
    const auto table = tableOf(reader, options);
    writeTable(table, console.session().NullValue, options.output.format, output.stream());
  }
  output.commit();
  return console.doneStatus();
}

}  // namespace

void addTables(CommandLine& line) {
  Subcommand command(line, "tables", "List the simulation tables of a run's INIT file, or show one");
  TablesOptions& options = command.performs(showTables);
  command.path(options.path);
  command.value("--table", options.table, "NAME", "The table to show, as PVTO");
  command.value("--number", options.number, "N",
                "Which one, from 1, where there are several; the first if not given");
  command.output(options.output);
  command.footer(
      "Values are as a deck has them, in the units of the run. Example:\n  lumbarn tables --table PVTO RUN");
}

}  // namespace lumbarn::cli
