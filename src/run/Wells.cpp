#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <utility>
#include <variant>

#include <fmt/format.h>

#include "../frame/Error.h"
#include "../restart/WellReader.h"
#include "../restart/WellRecords.h"
#include "../support/Pattern.h"
#include "../support/Text.h"
#include "../vocabulary/Units.h"
#include "Run.h"
#include "RunState.h"
#include "TimeChoice.h"
#include "WellNames.h"

namespace lumbarn {
namespace {

using Cell = std::variant<std::monostate, std::string, std::int32_t, float, double>;

/// One column of a table of wells or connections.
template <class Record>
struct RecordField {
  const char* name;
  Type type;
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

constexpr RecordField<WellRecord> wellFields[] = {
    {"type", Type::Utf8, Quantity::None,
     [](const WellRecord& well) { return Cell(std::string(nameOf(well.type()))); }},
    {"phase", Type::Utf8, Quantity::None,
     [](const WellRecord& well) { return Cell(phaseText(well.iPhase)); }},
    {"status", Type::Utf8, Quantity::None,
     [](const WellRecord& well) { return Cell(wellStatusText(well.iStatus)); }},
    {"control", Type::Utf8, Quantity::None,
     [](const WellRecord& well) { return Cell(controlText(well.iControl)); }},
    {"group", Type::Utf8, Quantity::None, [](const WellRecord& well) { return Cell(well.group); }},
    {"head_i", Type::Int32, Quantity::None, [](const WellRecord& well) { return Cell(well.iHead); }},
    {"head_j", Type::Int32, Quantity::None, [](const WellRecord& well) { return Cell(well.jHead); }},
    {"pvt_table", Type::Int32, Quantity::None,
     [](const WellRecord& well) { return unlessZero(well.iPVTTable); }},
    {"oil_rate", Type::Float64, Quantity::LiquidRate, rateOf<&WellRates::oil>},
    {"water_rate", Type::Float64, Quantity::LiquidRate, rateOf<&WellRates::water>},
    {"gas_rate", Type::Float64, Quantity::GasRate, rateOf<&WellRates::gas>},
    {"reservoir_rate", Type::Float64, Quantity::ReservoirRate, rateOf<&WellRates::reservoir>},
    {"water_cut", Type::Float64, Quantity::None, rateOf<&WellRates::waterCut>},
    {"bhp", Type::Float64, Quantity::Pressure, rateOf<&WellRates::bhp>},
};

constexpr RecordField<ConnectionRecord> connectionFields[] = {
    {"connection", Type::Int32, Quantity::None,
     [](const ConnectionRecord& connection) { return unlessZero(connection.iNumber); }},
    {"i", Type::Int32, Quantity::None, [](const ConnectionRecord& connection) { return Cell(connection.i); }},
    {"j", Type::Int32, Quantity::None, [](const ConnectionRecord& connection) { return Cell(connection.j); }},
    {"k", Type::Int32, Quantity::None, [](const ConnectionRecord& connection) { return Cell(connection.k); }},
    {"state", Type::Utf8, Quantity::None,
     [](const ConnectionRecord& connection) { return Cell(connectionStatusText(connection.iStatus)); }},
    {"direction", Type::Utf8, Quantity::None,
     [](const ConnectionRecord& connection) { return Cell(directionText(connection.iDirection)); }},
    {"factor", Type::Float32, Quantity::ConnectionFactor, numberOf<&ConnectionNumbers::factor>},
    {"depth", Type::Float32, Quantity::Length, numberOf<&ConnectionNumbers::depth>},
    {"diameter", Type::Float32, Quantity::Length, numberOf<&ConnectionNumbers::diameter>},
    {"kh", Type::Float32, Quantity::PermeabilityThickness, numberOf<&ConnectionNumbers::kh>},
    {"length_start", Type::Float32, Quantity::Length, lengthOf<&ConnectionNumbers::lengthStart>},
    {"length_end", Type::Float32, Quantity::Length, lengthOf<&ConnectionNumbers::lengthEnd>},
};

template <class Record, std::size_t n>
void addFields(Schema& schema, const RecordField<Record> (&fields)[n], std::int32_t units) {
  for (const auto& field : fields) {
    schema.push_back(
        {.name = field.name, .type = field.type, .unit = std::string(unitOf(field.quantity, units))});
    if (field.type == Type::Float64) schema.back().metadata = {{"display", "float32"}};
  }
}

/// An empty text is no value, as one that is not there.
void put(BatchBuilder& rows, std::size_t column, const Cell& cell) {
  if (const auto* text = std::get_if<std::string>(&cell)) {
    if (!text->empty()) rows.set(column, std::string_view(toUtf8(*text)));
  } else if (const auto* number = std::get_if<std::int32_t>(&cell)) {
    rows.set(column, *number);
  } else if (const auto* single = std::get_if<float>(&cell)) {
    rows.set(column, *single);
  } else if (const auto* value = std::get_if<double>(&cell)) {
    rows.set(column, *value);
  }
}

template <class Record, std::size_t n>
void putFields(BatchBuilder& rows, std::size_t& column, const RecordField<Record> (&fields)[n],
               const Record& record) {
  for (const auto& field : fields) put(rows, column++, field.value(record));
}

/// Of which records there are rows.
enum class RowsOf : std::uint8_t { Wells, Connections, Both };

/// The wells of the steps and grids that are wanted, step by step.
class WellRows {
 public:
  WellRows(std::string path, std::shared_ptr<const RestartIndex> index, const WellSelection& selection,
           RowsOf rowsOf, Session& session)
      : path_(std::move(path)),
        index_(std::move(index)),
        rowsOf_(rowsOf),
        names_(selection.wells),
        reader_(index_, session) {
    choosePlaces(selection);
    // Rows are read when they are asked for, but whether there are any is to be known now.
    if (!selection.wells.empty()) {
      for (; nextPlace_ < places_.size() && !names_.any(); ++nextPlace_) read(places_[nextPlace_]);
      names_.throwIfNone(path_);
    }
  }

  Schema schema() const {
    Schema schema = {{.name = "step", .type = Type::Int32, .nullable = false},
                     {.name = "date", .type = Type::Timestamp},
                     {.name = "days", .type = Type::Float64, .nullable = false},
                     {.name = "grid",
                      .type = Type::Dictionary,
                      .nullable = false,
                      .dictionary = std::make_shared<const std::vector<std::string>>(grids_)},
                     {.name = "well", .type = Type::Utf8}};
    const std::int32_t units =
        places_.empty() ? 0 : places_.front().step->cellsOf(places_.front().group->grid).units;
    if (rowsOf_ != RowsOf::Connections) addFields(schema, wellFields, units);
    if (rowsOf_ != RowsOf::Wells) addFields(schema, connectionFields, units);
    return schema;
  }

  /// Adds rows until the builder is full. False when there are no more.
  bool fill(BatchBuilder& rows) {
    while (!rows.full()) {
      if (nextLine_ < lines_.size()) {
        addRow(rows, lines_[nextLine_++]);
      } else if (nextPlace_ < places_.size()) {
        read(places_[nextPlace_++]);
      } else {
        return false;
      }
    }
    return true;
  }

 private:
  /// A grid of a step.
  struct Place {
    const IndexStep* step;
    const IndexGroup* group;
    std::size_t grid;  // in grids_
  };
  struct Line {
    const WellRecord* well;
    const ConnectionRecord* connection;  // null: none
  };

  void choosePlaces(const WellSelection& selection) {
    std::vector<TimePoint> times;
    for (const IndexStep& step : index_->steps) times.push_back({step.number, toLocal(step.date)});
    std::vector<std::string> others;
    const auto noteOther = [&](std::string name) {
      if (std::ranges::find(others, name) == others.end()) others.push_back(std::move(name));
    };
    for (const std::size_t row : chooseTimes(selection.time, times, path_)) {
      const IndexStep& step = index_->steps[row];
      std::vector<std::string_view> met;
      for (const IndexGroup& group : step.groups) {
        if (std::ranges::find(met, group.grid) != met.end()) continue;
        met.push_back(group.grid);
        const std::string name = toUtf8(shownGrid(group.grid));
        const bool wanted =
            selection.grid.empty() ? isGlobalGrid(group.grid) : matchesPattern(name, toUtf8(selection.grid));
        wanted ? addPlace(step, group, name) : noteOther(name);
      }
    }
    if (places_.empty())
      throwNotFound(path_, fmt::format("has no grid \"{}\"", selection.grid), selection.grid, others);
  }

  void addPlace(const IndexStep& step, const IndexGroup& group, const std::string& name) {
    const auto known = std::ranges::find(grids_, name);
    places_.push_back({&step, &group, static_cast<std::size_t>(known - grids_.begin())});
    if (known == grids_.end()) grids_.push_back(name);
  }

  void read(const Place& place) {
    place_ = &place;
    wells_ = reader_.read(*place.step, place.group->grid);
    lines_.clear();
    nextLine_ = 0;
    for (const WellRecord& well : wells_) {
      if (!names_.wants(well.name)) continue;
      if (rowsOf_ == RowsOf::Wells || (rowsOf_ == RowsOf::Both && well.connections.empty()))
        lines_.push_back({&well, nullptr});
      if (rowsOf_ == RowsOf::Wells) continue;
      for (const ConnectionRecord& connection : well.connections) lines_.push_back({&well, &connection});
    }
  }

  void addRow(BatchBuilder& rows, const Line& line) const {
    rows.set(0, place_->step->number);
    if (const auto date = toLocal(place_->step->date)) rows.set(1, *date);
    rows.set(2, place_->step->days);
    rows.set(3, place_->grid);
    put(rows, 4, Cell(line.well->name));
    std::size_t column = 5;
    if (rowsOf_ != RowsOf::Connections) putFields(rows, column, wellFields, *line.well);
    if (line.connection) putFields(rows, column, connectionFields, *line.connection);
    rows.endRow();
  }

  std::string path_;
  std::shared_ptr<const RestartIndex> index_;
  RowsOf rowsOf_;
  WellNames names_;
  WellReader reader_;
  std::vector<std::string> grids_;
  std::vector<Place> places_;
  std::size_t nextPlace_ = 0;
  const Place* place_ = nullptr;  // of the wells
  std::vector<WellRecord> wells_;
  std::vector<Line> lines_;
  std::size_t nextLine_ = 0;
};

Stream wellStream(const RunState& run, const WellSelection& selection, RowsOf rowsOf,
                  const ReadOptions& options) {
  try {
    auto context = std::make_shared<StreamContext>(options);
    const auto rows = std::make_shared<WellRows>(run.root(), run.restartIndex(*context), selection, rowsOf,
                                                 context->session());
    auto schema = rows->schema();
    return streamOfRows(std::move(schema), std::move(context),
                        [rows](BatchBuilder& builder) { return rows->fill(builder); });
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace

Stream Run::wells(const WellSelection& selection, const ReadOptions& options) const {
  return wellStream(*state_, selection, selection.connections ? RowsOf::Both : RowsOf::Wells, options);
}

Stream Run::connections(const WellSelection& selection, const ReadOptions& options) const {
  return wellStream(*state_, selection, RowsOf::Connections, options);
}

}  // namespace lumbarn
