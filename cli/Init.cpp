#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include <fmt/format.h>

#include "ArrayValues.h"
#include "Commands.h"
#include "InitFile.h"
#include "Output.h"
#include "PathArgument.h"
#include "RunIndex.h"
#include "arrays/ArrayUnits.h"
#include "frame/NumberText.h"
#include "support/Closest.h"
#include "support/Text.h"

namespace lumbarn::cli {
namespace {

struct InitOptions {
  std::string path;
  std::vector<std::string> arrays;
  std::string grid;
  bool ijk = false;
  bool all = false;
  bool flags = false;
  bool nnc = false;
  OutputOptions output;
};

struct Range {
  float least = 0;
  float most = 0;
};
/// Values that are not numbers do not count.
std::optional<Range> rangeOf(std::span<const float> values) {
  std::optional<Range> range;
  for (const float value : values) {
    if (std::isnan(value)) continue;
    if (!range) range = Range{value, value};
    range->least = std::min(range->least, value);
    range->most = std::max(range->most, value);
  }
  return range;
}

/// One line of a list of arrays.
struct ListedArray {
  std::string grid, kind, name, type;
  std::int64_t count = 0;
  std::string unit;
  std::optional<Range> range;
};

constexpr const char* kindNames[] = {"within the grid", "local to global", "local to local"};

/// An INIT file, and what of it is to be shown other than values of cells.
class InitListing {
 public:
  InitListing(const RunFamily& run, const InitOptions& options, Console& console)
      : options_(options), console_(console) {
    openInit(reader_, run, false, console);
    for (const FileKind kind : {FileKind::Grid, FileKind::EGrid}) {
      if (const RunMember* file = run.find(kind)) gridFile_ = *file;
    }
  }

  void write(Format format, std::ostream& out) {
    if (options_.flags) return writeFlags(format, out);
    if (!options_.nnc) return writeList(cellArrays(), format, out);
    options_.arrays.empty() ? writeList(connectionArrays(), format, out) : writeConnections(format, out);
  }

 private:
  qvEclipseINIT& init() { return *reader_.Init(); }

  std::vector<std::int32_t> grids() {
    if (!options_.grid.empty()) return {gridNumber(init(), options_.grid)};
    std::vector<std::int32_t> all;
    for (std::int32_t grid = 1; grid <= init().nGrids(); ++grid) all.push_back(grid);
    return all;
  }

  void writeFlags(Format format, std::ostream& out) {
    const auto table = TableWriter::make(format, {{"flag", false, 24}, {"value"}}, out);
    const auto& flags = init().grid(gridNumber(init(), options_.grid)).flags;
    for (const auto& [name, flag] : namedFlags()) {
      table->text(name);
      table->text(flags.*flag ? "true" : "false");
    }
    table->finish();
  }

  /// One array at a time, so that the whole file need not fit into memory.
  std::vector<ListedArray> cellArrays() {
    std::vector<ListedArray> list;
    std::vector<float> values;
    for (const auto grid : grids()) {
      const auto& arrays = init().grid(grid).arrays;
      console_.progress().files(1);
      for (std::size_t i = 0; i < arrays.size(); ++i) {
        console_.checkCancelled();
        console_.progress().fraction(static_cast<double>(i) / static_cast<double>(arrays.size()));
        bool qOK = false;
        init().GetArray(grid, static_cast<std::int32_t>(i) + 1, false, values, qOK);
        const auto& array = arrays[i];
        list.push_back({init().GridName(grid), "", array.name, array.header.typeWord, array.header.count,
                        array.unit, qOK ? rangeOf(values) : std::nullopt});
      }
    }
    console_.progress().hide();
    return list;
  }

  std::vector<ListedArray> connectionArrays() {
    std::vector<ListedArray> list;
    for (const auto grid : grids()) {
      init().iGrid = grid;
      for (std::int32_t kind = 1; kind <= 3; ++kind) {
        XYData values;
        bool qOK = false;
        init().GetNNCData(kind, values, qOK);
        const auto& record = init().grid(grid).xNNC[static_cast<std::size_t>(kind) - 1];
        for (std::size_t i = 0; i < record.zArrays.size(); ++i) {
          list.push_back({init().GridName(grid), kindNames[kind - 1], record.zArrays[i], "REAL",
                          record.nItems, std::string(arrayUnit(record.zArrays[i], init().grid(grid).iUnits)),
                          qOK ? rangeOf(values.column(i + 1)) : std::nullopt});
        }
      }
    }
    return list;
  }

  void writeList(const std::vector<ListedArray>& list, Format format, std::ostream& out) {
    if (list.empty())
      console_.say(options_.nnc ? "the file has no connection arrays" : "the file has no arrays");
    // For people the grid is left out where there is only one.
    const bool grid = format != Format::Table || std::ranges::any_of(list, [&](const ListedArray& array) {
                        return array.grid != list.front().grid;
                      });
    std::vector<Column> columns;
    if (grid) columns.push_back({"grid", false, 8});
    if (options_.nnc) columns.push_back({"kind", false, 15});
    for (const auto& column :
         {Column{"array", false, 8}, {"type"}, {"count", true}, {"unit"}, {"min", true}, {"max", true}})
      columns.push_back(column);
    const auto widen = [&](std::size_t fromEnd, const auto& value) {
      auto& width = columns[columns.size() - fromEnd].width;
      width = std::max(width, NumberText(value).view().size());
    };
    for (const auto& array : list) {
      auto& unit = columns[columns.size() - 3].width;
      unit = std::max(unit, array.unit.size());
      widen(4, array.count);
      if (array.range) widen(2, array.range->least);
      if (array.range) widen(1, array.range->most);
    }
    const auto table = TableWriter::make(format, columns, out);
    for (const auto& array : list) {
      if (grid) table->text(array.grid);
      if (options_.nnc) table->text(array.kind);
      table->text(array.name);
      table->text(array.type);
      table->number(array.count);
      table->text(array.unit);
      array.range ? table->number(array.range->least) : table->empty();
      array.range ? table->number(array.range->most) : table->empty();
    }
    table->finish();
  }

  /// Places, from 1, of the connection arrays that the patterns choose. Throws Failure when there are none.
  std::vector<std::int32_t> choose(const std::vector<std::string>& names) {
    if (names.empty()) throw Failure(Usage, fmt::format("{}: has no connection arrays", options_.path));
    ArraySelection selection(options_.arrays, {});
    std::vector<std::int32_t> chosen;
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (selection.choosesDerived(names[i])) chosen.push_back(static_cast<std::int32_t>(i) + 1);
    }
    for (const auto& pattern : selection.unmatched()) {
      const auto better = closest(upper(pattern), names);
      console_.say(fmt::format("no array matches \"{}\"{}", pattern,
                               better.empty() ? "" : fmt::format("; did you mean \"{}\"?", better)));
    }
    if (chosen.empty())
      throw Failure(Usage,
                    fmt::format("nothing to show; \"lumbarn init --nnc {}\" lists the names", options_.path));
    return chosen;
  }

  /// Connection arrays to be shown side by side.
  struct ConnectionTable {
    std::vector<Column> columns;
    std::vector<std::vector<float>> values;
    std::vector<std::int32_t> kinds;  ///< those that there are values of
  };

  ConnectionTable connections(std::int32_t number) {
    const auto& grid = init().grid(number);
    std::vector<std::string> names;
    for (const auto& record : grid.xNNC)
      names.insert(names.end(), record.zArrays.begin(), record.zArrays.end());
    const auto chosen = choose(names);
    ConnectionTable table;
    std::int32_t before = 0;
    init().iGrid = number;
    for (std::int32_t kind = 1; kind <= 3; ++kind) {
      XYData data;
      bool qOK = false;
      init().GetNNCData(kind, data, qOK);
      const auto& record = grid.xNNC[static_cast<std::size_t>(kind) - 1];
      for (std::int32_t i = 1; i <= record.nArrays; ++i) {
        if (std::ranges::find(chosen, before + i) == chosen.end() || !qOK) continue;
        const auto column = data.column(static_cast<std::size_t>(i));
        table.values.emplace_back(column.begin(), column.end());
        if (table.kinds.empty() || table.kinds.back() != kind) table.kinds.push_back(kind);
        const auto& name = record.zArrays[static_cast<std::size_t>(i) - 1];
        table.columns.push_back({name, true, 0, std::string(arrayUnit(name, grid.iUnits))});
      }
      before += record.nArrays;
    }
    return table;
  }

  void writeConnections(Format format, std::ostream& out) {
    const auto number = gridNumber(init(), options_.grid);
    auto [columns, values, kinds] = connections(number);
    columns.insert(columns.begin(), Column{"connection", true});
    std::size_t rows = 0;
    for (const auto& column : values) rows = std::max(rows, column.size());
    // Rows of different kinds have nothing in common but their number.
    const bool within = kinds.size() == 1 && kinds[0] == 1;
    const auto cells = within ? joinedCells(number) : std::vector<CellPair>();
    if (!cells.empty()) {
      columns.insert(columns.begin() + 1, {{"i1", true}, {"j1", true}, {"k1", true}});
      columns.insert(columns.begin() + 4, {{"i2", true}, {"j2", true}, {"k2", true}});
    }
    const auto table = TableWriter::make(format, columns, out);
    for (std::size_t row = 0; row < rows; ++row) {
      table->number(row + 1);
      if (!cells.empty()) {
        for (const auto place : cells[row]) table->number(place);
      }
      for (const auto& column : values) row < column.size() ? table->number(column[row]) : table->empty();
    }
    table->finish();
  }

  /// i, j, k of both cells of each connection within a grid; none when the run's grid file does not tell
  /// them.
  using CellPair = std::array<std::int32_t, 6>;
  std::vector<CellPair> joinedCells(std::int32_t number) {
    std::vector<CellPair> cells;
    if (!gridFile_) return cells;
    bool qOK = false;
    reader_.FileName = gridFile_->path;
    reader_.ReadGridOrEGridFile(gridFile_->kind == FileKind::EGrid ? 23 : 14, qOK);
    reader_.iGridNumber = number;
    const auto connections = reader_.InitConnections(1, qOK);
    if (!qOK) return cells;
    const std::int32_t Nx = init().grid(number).Nx;
    const std::int32_t Ny = init().grid(number).Ny;
    const auto place = [&](std::int32_t cell) {
      return std::array{(cell - 1) % Nx + 1, (cell - 1) / Nx % Ny + 1, (cell - 1) / Nx / Ny + 1};
    };
    for (const Connection& connection : connections) {
      const auto [i1, j1, k1] = place(connection.cell1);
      const auto [i2, j2, k2] = place(connection.cell2);
      cells.push_back({i1, j1, k1, i2, j2, k2});
    }
    return cells;
  }

  const InitOptions& options_;
  Console& console_;
  qvEclipseReader reader_{console_.session()};
  std::optional<RunMember> gridFile_;
};

ExitStatus showInit(const InitOptions& options, Console& console) {
  const bool values = !options.arrays.empty();
  if (!values && (options.all || options.ijk))
    throw Failure(Usage, fmt::format("{} goes with --array", options.all ? "--all" : "--ijk"));
  if (options.nnc && (options.all || options.ijk))
    throw Failure(
        Usage, fmt::format("{} goes with arrays of cells, not with --nnc", options.all ? "--all" : "--ijk"));
  if (options.flags && (options.nnc || values))
    throw Failure(Usage, fmt::format("--flags goes without {}", options.nnc ? "--nnc" : "--array"));
  const RunFamily run = findRun(options.path);
  Output output(options.output, console.out(), pathsOf(run));
  if (values && !options.nnc) {
    const ArrayOptions arrays{options.arrays, options.grid, options.all, options.ijk};
    ArrayReader reader(initIndex(run, console), console.session());
    ArrayValues(reader, reader.index().steps.front(), run, arrays, console)
        .write(options.output.format, output.stream());
  } else {
    InitListing(run, options, console).write(options.output.format, output.stream());
  }
  output.commit();
  return console.doneStatus();
}

}  // namespace

void addInit(CommandLine& line) {
  Subcommand command(line, "init",
                     "List the static arrays of a run, or show values, model flags or connections");
  InitOptions& options = command.performs(showInit);
  command.path(options.path);
  command.repeated("--array", options.arrays, "NAMES", "Arrays to show, as PORO,NTG or PERM*");
  command.value("--grid", options.grid, "LGR", "The local grid to list or show; ROOT is the global one");
  command.flag("--ijk", options.ijk, "Show the numbers i, j, k of each cell in front");
  command.flag("--all", options.all,
               "Show all cells in natural order, inactive ones as -999, instead of the active cells");
  command.flag("--flags", options.flags, "Show what the run models");
  command.flag("--nnc", options.nnc, "List the connection arrays by kind, or with --array show their values");
  command.output(options.output);
  command.footer(
      "Names are separated by commas; options may be repeated. Example:\n"
      "  lumbarn init --array PORO,PERMX --ijk --format csv -o rock.csv RUN");
}

}  // namespace lumbarn::cli
