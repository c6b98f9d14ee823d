#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>
#include <variant>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "Facts.h"
#include "Output.h"
#include "PathArgument.h"
#include "RunFacts.h"
#include "RunIndex.h"
#include "files/FileChoice.h"
#include "frame/NumberText.h"
#include "reader/qvEclipseReader.h"
#include "support/Closest.h"
#include "support/Dates.h"
#include "support/Text.h"
#include "vocabulary/Units.h"

namespace lumbarn::cli {
namespace {

struct WellsOptions {
  std::string path;
  std::optional<std::int32_t> step;
  std::string grid;
  OutputOptions output;
};

using Cell = std::variant<std::monostate, std::string, std::int32_t, float, double>;

/// One column of a table, which is one field of an object too.
template <class Record>
struct Field {
  const char* name;
  bool number;
  Quantity quantity;
  Cell (*value)(const Record&);
};

template <double WellRates::*rate>
Cell rateOf(const WellRecord& well) {
  // Adding nothing turns a rate of -0, as simulators leave it, into 0.
  return well.rates ? Cell((*well.rates).*rate + 0.0) : Cell();
}
template <float ConnectionNumbers::*number>
Cell numberOf(const ConnectionRecord& connection) {
  return connection.numbers ? Cell((*connection.numbers).*number) : Cell();
}
/// Places along a well are there when it has segments.
template <float ConnectionNumbers::*number>
Cell lengthOf(const ConnectionRecord& connection) {
  const auto& numbers = connection.numbers;
  const bool known = numbers && (numbers->lengthEnd != 0 || numbers->lengthStart != 0);
  return known ? Cell((*numbers).*number) : Cell();
}
Cell unlessZero(std::int32_t number) { return number == 0 ? Cell() : Cell(number); }

constexpr Field<WellRecord> wellFields[] = {
    {"well", false, Quantity::None, [](const WellRecord& well) { return Cell(well.name); }},
    {"type", false, Quantity::None,
     [](const WellRecord& well) { return Cell(std::string(nameOf(well.type()))); }},
    {"phase", false, Quantity::None, [](const WellRecord& well) { return Cell(phaseText(well.iPhase)); }},
    {"status", false, Quantity::None,
     [](const WellRecord& well) { return Cell(wellStatusText(well.iStatus)); }},
    {"control", false, Quantity::None,
     [](const WellRecord& well) { return Cell(controlText(well.iControl)); }},
    {"group", false, Quantity::None, [](const WellRecord& well) { return Cell(well.group); }},
    {"head_i", true, Quantity::None, [](const WellRecord& well) { return Cell(well.iHead); }},
    {"head_j", true, Quantity::None, [](const WellRecord& well) { return Cell(well.jHead); }},
    {"pvt_table", true, Quantity::None, [](const WellRecord& well) { return unlessZero(well.iPVTTable); }},
    {"oil_rate", true, Quantity::LiquidRate, rateOf<&WellRates::oil>},
    {"water_rate", true, Quantity::LiquidRate, rateOf<&WellRates::water>},
    {"gas_rate", true, Quantity::GasRate, rateOf<&WellRates::gas>},
    {"reservoir_rate", true, Quantity::ReservoirRate, rateOf<&WellRates::reservoir>},
    {"water_cut", true, Quantity::None, rateOf<&WellRates::waterCut>},
    {"bhp", true, Quantity::Pressure, rateOf<&WellRates::bhp>},
};

constexpr Field<ConnectionRecord> connectionFields[] = {
    {"connection", true, Quantity::None,
     [](const ConnectionRecord& connection) { return unlessZero(connection.iNumber); }},
    {"i", true, Quantity::None, [](const ConnectionRecord& connection) { return Cell(connection.i); }},
    {"j", true, Quantity::None, [](const ConnectionRecord& connection) { return Cell(connection.j); }},
    {"k", true, Quantity::None, [](const ConnectionRecord& connection) { return Cell(connection.k); }},
    {"state", false, Quantity::None,
     [](const ConnectionRecord& connection) { return Cell(connectionStatusText(connection.iStatus)); }},
    {"direction", false, Quantity::None,
     [](const ConnectionRecord& connection) { return Cell(directionText(connection.iDirection)); }},
    {"factor", true, Quantity::ConnectionFactor, numberOf<&ConnectionNumbers::factor>},
    {"depth", true, Quantity::Length, numberOf<&ConnectionNumbers::depth>},
    {"diameter", true, Quantity::Length, numberOf<&ConnectionNumbers::diameter>},
    {"kh", true, Quantity::PermeabilityThickness, numberOf<&ConnectionNumbers::kh>},
    {"length_start", true, Quantity::Length, lengthOf<&ConnectionNumbers::lengthStart>},
    {"length_end", true, Quantity::Length, lengthOf<&ConnectionNumbers::lengthEnd>},
};

/// Rows of cells under their columns.
struct CellTable {
  std::vector<Column> columns;
  std::vector<std::vector<Cell>> rows;

  template <class Record, std::size_t n>
  void addColumns(const Field<Record> (&fields)[n], std::int32_t iUnits) {
    for (const auto& field : fields)
      columns.push_back({field.name, field.number, 0, std::string(unitOf(field.quantity, iUnits))});
  }
  template <class Record, std::size_t n>
  void addCells(const Field<Record> (&fields)[n], const Record* record) {
    for (const auto& field : fields) rows.back().push_back(record ? field.value(*record) : Cell());
  }
};

void put(const Cell& cell, TableWriter& table) {
  if (const auto* text = std::get_if<std::string>(&cell)) return table.text(*text);
  if (const auto* number = std::get_if<std::int32_t>(&cell)) return table.number(*number);
  if (const auto* single = std::get_if<float>(&cell)) return table.number(*single);
  if (const auto* value = std::get_if<double>(&cell)) return table.number(*value);
  table.empty();
}

/// For people: names in words, doubles with the digits of a single, columns without any value left out.
void makeReadable(CellTable& table) {
  for (auto& row : table.rows) {
    for (Cell& cell : row) {
      if (const auto* value = std::get_if<double>(&cell)) cell = static_cast<float>(*value);
    }
  }
  for (std::size_t c = table.columns.size(); c-- > 0;) {
    const auto isEmpty = [&](const auto& row) { return std::holds_alternative<std::monostate>(row[c]); };
    if (!table.rows.empty() && std::ranges::all_of(table.rows, isEmpty)) {
      table.columns.erase(table.columns.begin() + static_cast<std::ptrdiff_t>(c));
      for (auto& row : table.rows) row.erase(row.begin() + static_cast<std::ptrdiff_t>(c));
    }
  }
  for (std::size_t c = 0; c < table.columns.size(); ++c) {
    Column& column = table.columns[c];
    std::ranges::replace(column.name, '_', ' ');
    for (const auto& row : table.rows) {
      const auto width = [](const auto& value) -> std::size_t {
        using Value = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<Value, std::string>) return displayWidth(value);
        if constexpr (std::is_arithmetic_v<Value>) return NumberText(value).view().size();
        return 0;
      };
      column.width = std::max(column.width, std::visit(width, row[c]));
    }
  }
}

void write(const CellTable& cells, Format format, std::ostream& out) {
  const auto table = TableWriter::make(format, cells.columns, out);
  for (const auto& row : cells.rows) {
    for (const Cell& cell : row) put(cell, *table);
  }
  table->finish();
}

template <class Record, std::size_t n>
Facts factsOf(const Field<Record> (&fields)[n], const Record& record) {
  Facts facts = Facts::object();
  for (const auto& field : fields) {
    const Cell cell = field.value(record);
    Facts& fact = facts[field.name];
    if (const auto* text = std::get_if<std::string>(&cell)) fact = *text;
    if (const auto* number = std::get_if<std::int32_t>(&cell)) fact = *number;
    if (const auto* value = std::get_if<double>(&cell)) fact = *value;
    // Through its text, so that a single keeps its few digits as a double.
    if (const auto* single = std::get_if<float>(&cell))
      fact = std::strtod(fmt::format("{}", *single).c_str(), nullptr);
  }
  return facts;
}

/// The wells of one step of a run.
class StepWells {
 public:
  StepWells(const RunFamily& run, const WellsOptions& options, Console& console)
      : run_(run),
        options_(options),
        wanted_(options.step ? options.step : namedStep(run)),
        console_(console) {}

  void load() {
    const RestartIndex index = restartIndex(run_, console_);
    const std::string& file = index.files.front();
    std::vector<std::int32_t> steps;
    for (const IndexStep& step : index.steps) steps.push_back(step.number);
    if (wanted_ && !index.find(*wanted_))
      throw Failure(index.whole ? Usage : Unreadable, noStepText(file, *wanted_, steps));
    // When the last step cannot be read, the one before it is the last.
    bool found = wanted_ && read(file, *wanted_);
    for (auto step = steps.rbegin(); !wanted_ && !found && step != steps.rend(); ++step)
      found = read(file, *step);
    if (!found) console_.giveUp(file, "no report step can be read from it");
    step_ = reader_.RestartSteps().front();
    chooseGrid();
    bool qOK = false;
    wells_ = reader_.RestartWells(1, iGrid_, qOK);
    if (!qOK) console_.giveUp(file, "its wells cannot be read");
    if (wells_.empty()) console_.say(fmt::format("step {} has no wells", step_.iSeqnum));
  }

  void write(Format format, std::ostream& out) const {
    if (format == Format::Table) return writeTables(out);
    if (format == Format::Csv) return writeRows(out);
    writeFacts(facts(), Format::Json, out);
  }

 private:
  bool read(const std::string& file, std::int32_t step) {
    reader_.FileName = file;
    reader_.whichtype = 11;
    reader_.Silent = true;
    reader_.AcceptDamaged = true;
    reader_.LoadData = false;
    reader_.FullWellInfo = true;
    reader_.iStart = reader_.iEnd = step;
    // What the reader kept of one step alone is not what is shown in the end.
    std::vector<Diagnosis> damage;
    auto& sink = console_.session().diagnosisSink;
    const auto usual = std::exchange(sink, [&](const Diagnosis& diagnosis) { damage.push_back(diagnosis); });
    bool qOK = false;
    reader_.ECLReadData(qOK);
    sink = usual;
    console_.progress().hide();
    console_.checkCancelled();
    const bool found = qOK && !reader_.RestartSteps().empty();
    for (Diagnosis& diagnosis : damage) {
      if (!found) diagnosis.action = wanted_ ? "" : "took the step before it";
      console_.tell(diagnosis);
    }
    return found;
  }

  void chooseGrid() {
    std::vector<std::string> names;
    for (std::int32_t i = 1; i <= step_.nGrids; ++i) {
      names.push_back(reader_.RestartGrid(1, i)->GridName);
      if (equalNoCase(names.back(), options_.grid)) iGrid_ = i;
    }
    if (options_.grid.empty() || equalNoCase(names[static_cast<std::size_t>(iGrid_) - 1], options_.grid))
      return;
    const std::string better = closest(options_.grid, names);
    const auto more = better.empty() ? fmt::format("it has {}", fmt::join(names, ", "))
                                     : fmt::format("did you mean \"{}\"?", better);
    throw Failure(Usage, fmt::format("step {} has no grid \"{}\"; {}", step_.iSeqnum, options_.grid, more));
  }

  const RESTARTGRID& grid() const { return *reader_.RestartGrid(1, iGrid_); }

  std::string dateText() const {
    const auto date = makeMoment(step_.iYear, step_.iMonth, step_.iDay);
    return date ? isoText(*date, true) : "";
  }

  void writeTables(std::ostream& out) const {
    const std::string place = iGrid_ == 1 ? "" : ", grid " + grid().GridName;
    const std::string date = dateText();
    out << printable(fmt::format("step {}{}{}, {} days{}", step_.iSeqnum, date.empty() ? "" : ", ", date,
                                 NumberText(step_.dTime).view(), place))
        << "\n";
    if (wells_.empty()) return;
    CellTable wells;
    wells.addColumns(wellFields, grid().iUnits);
    CellTable connections;
    connections.columns.push_back({"well"});
    connections.addColumns(connectionFields, grid().iUnits);
    for (const WellRecord& well : wells_) {
      wells.rows.emplace_back();
      wells.addCells(wellFields, &well);
      for (const ConnectionRecord& connection : well.connections) {
        const bool first = &connection == &well.connections.front();
        connections.rows.push_back({first ? Cell(well.name) : Cell(std::string())});
        connections.addCells(connectionFields, &connection);
      }
    }
    makeReadable(wells);
    makeReadable(connections);
    out << "\n";
    cli::write(wells, Format::Table, out);
    if (connections.rows.empty()) return;
    out << "\n";
    cli::write(connections, Format::Table, out);
  }

  /// A row for each connection, with its well in front; a well without connections has one row too.
  void writeRows(std::ostream& out) const {
    CellTable table;
    table.addColumns(wellFields, grid().iUnits);
    table.addColumns(connectionFields, grid().iUnits);
    const auto add = [&](const WellRecord& well, const ConnectionRecord* connection) {
      table.rows.emplace_back();
      table.addCells(wellFields, &well);
      table.addCells(connectionFields, connection);
    };
    for (const WellRecord& well : wells_) {
      for (const ConnectionRecord& connection : well.connections) add(well, &connection);
      if (well.connections.empty()) add(well, nullptr);
    }
    cli::write(table, Format::Csv, out);
  }

  Facts facts() const {
    Facts all = {{"step", step_.iSeqnum},
                 {"date", dateText()},
                 {"days", step_.dTime},
                 {"grid", grid().GridName},
                 {"units", unitSystemName(grid().iUnits)},
                 {"wells", Facts::array()}};
    for (const WellRecord& well : wells_) {
      Facts one = factsOf(wellFields, well);
      one["connections"] = Facts::array();
      for (const ConnectionRecord& connection : well.connections)
        one["connections"].push_back(factsOf(connectionFields, connection));
      all["wells"].push_back(std::move(one));
    }
    return all;
  }

  const RunFamily& run_;
  const WellsOptions& options_;
  std::optional<std::int32_t> wanted_;  // step; none: the last one
  Console& console_;
  qvEclipseReader reader_{console_.session()};
  RestartStep step_;
  std::int32_t iGrid_ = 1;
  std::vector<WellRecord> wells_;
};

ExitStatus showWells(const WellsOptions& options, Console& console) {
  const RunFamily run = findRun(options.path);
  Output output(options.output, console.out(), pathsOf(run));
  StepWells wells(run, options, console);
  wells.load();
  wells.write(options.output.format, output.stream());
  output.commit();
  return console.doneStatus();
}

}  // namespace

void addWells(CommandLine& line) {
  Subcommand command(line, "wells", "Show the wells of a report step with their connections");
  WellsOptions& options = command.performs(showWells);
  command.path(options.path);
  command.value("--step", options.step, "N", "Report step to show; the last one when not given");
  command.value("--grid", options.grid, "LGR", "Local grid whose wells to show");
  command.output(options.output);
  command.footer(
      "Csv has one row for each connection, with its well in front. A word or number that is not known to "
      "mean\n"
      "anything is left out. Example:\n  lumbarn wells --step 5 RUN");
}

}  // namespace lumbarn::cli
