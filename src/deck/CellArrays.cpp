#include "CellArrays.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "../support/Text.h"
#include "../text/DeckRecords.h"
#include "DeckNumbers.h"
#include "KeywordForms.h"

namespace lumbarn {

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t mostCells = std::int64_t{1} << 29;  // four gigabytes of values
/// Numbers of one keyword for each cell: eight depths of corners, and room for pillars.
constexpr std::int64_t mostOfACell = 32;

std::int64_t cellsOf(const DeckGridSize& size) { return std::int64_t{size[0]} * size[1] * size[2]; }

/// The value that simulators use for cells that a deck does not set.
double initialValue(std::string_view name) {
  if (name == "NTG" || name.starts_with("MULT") || name == "ACTNUM") return 1;
  if (name.starts_with("FIP") || (name.ends_with("NUM") && name != "OPERNUM" && name != "PINCHNUM")) return 1;
  return none;
}
bool isWhole(std::string_view name) { return name.ends_with("NUM") || name.starts_with("FIP"); }

/// The operations whose records begin with the array that they change.
enum class Operation : std::uint8_t { Equals, Add, Multiply, Minimum, Maximum };
std::optional<Operation> boxOperation(std::string_view keyword) {
  if (keyword == "EQUALS" || keyword == "=") return Operation::Equals;
  if (keyword == "ADD" || keyword == "+") return Operation::Add;
  if (keyword == "MULTIPLY") return Operation::Multiply;
  if (keyword == "MINVALUE") return Operation::Minimum;
  if (keyword == "MAXVALUE") return Operation::Maximum;
  return std::nullopt;
}
std::optional<Operation> regionOperation(std::string_view keyword) {
  if (keyword == "EQUALREG") return Operation::Equals;
  if (keyword == "ADDREG") return Operation::Add;
  if (keyword == "MULTIREG") return Operation::Multiply;
  return std::nullopt;
}

double applied(Operation operation, double before, double value) {
  switch (operation) {
    case Operation::Add:
      return before + value;
    case Operation::Multiply:
      return before * value;
    case Operation::Minimum:
      return std::max(before, value);
    case Operation::Maximum:
      return std::min(before, value);
    default:
      return value;
  }
}

/// One of the functions of OPERATE: of the value before, the source, and two numbers.
std::function<double(double, double)> operateFunction(std::string_view name, double a, double b) {
  if (name == "MULTA") return [=](double, double x) { return a * x + b; };
  if (name == "POLY") return [=](double r, double x) { return r + a * std::pow(x, b); };
  if (name == "SLOG") return [=](double, double x) { return std::pow(10.0, a + b * x); };
  if (name == "LOG10") return [=](double, double x) { return std::log10(x); };
  if (name == "LOGE") return [=](double, double x) { return std::log(x); };
  if (name == "INV") return [=](double, double x) { return 1 / x; };
  if (name == "MULTX") return [=](double, double x) { return a * x; };
  if (name == "ADDX") return [=](double, double x) { return a + x; };
  if (name == "COPY") return [=](double, double x) { return x; };
  if (name == "MAXLIM") return [=](double, double x) { return std::min(a, x); };
  if (name == "MINLIM") return [=](double, double x) { return std::max(a, x); };
  if (name == "MULTP") return [=](double, double x) { return a * std::pow(x, b); };
  if (name == "ABS") return [=](double, double x) { return std::abs(x); };
  if (name == "MULTIPLY") return [=](double r, double x) { return r * x; };
  return {};
}

/// The array that the flag of a region operation means.
std::string regionArray(std::optional<std::string_view> flag) {
  if (!flag) return "MULTNUM";
  const std::string name = upper(trim(*flag));
  if (name == "M") return "MULTNUM";
  if (name == "F") return "FLUXNUM";
  if (name == "O") return "OPERNUM";
  return name;
}

/// Goes through the operations of a deck on the arrays of one grid.
class Evaluation {
 public:
  Evaluation(const Deck& deck, std::string grid, Session& session)
      : deck_(&deck), grid_(std::move(grid)), session_(&session) {
    const auto sizes = gridSizes(deck);
    const auto found = sizes.find(grid_);
    if (found == sizes.end() || cellsOf(found->second) <= 0) {
      throw Error(Error::Kind::BadRequest, {.message = Message::RequestRefused,
                                            .path = deck.path(),
                                            .problem = "the deck does not give the size of grid " + grid_});
    }
    size_ = found->second;
    if (cellsOf(size_) > mostCells)
      throw Error(Error::Kind::Memory, {.message = Message::RequestRefused,
                                        .path = deck.path(),
                                        .problem = "the grid has more cells than fit in memory"});
  }

  DeckArray run(const std::string& name) {
    needed_ = dependencies(name);
    walk([this](const DeckKeyword& keyword) { apply(keyword); });
    // Nothing sets it: the simulator has its own value, if it has one.
    if (!arrays_.contains(name) && std::isnan(initialValue(name))) {
      throw Error(Error::Kind::NotFound, {.message = Message::RequestMissing,
                                          .path = deck_->path(),
                                          .problem = "the deck does not set " + name});
    }
    return {name, size_, std::move(array(name)), isWhole(name)};
  }

 private:
  /// Calls `visit` for each keyword of the grid, with `box_` set to the box in effect.
  template <class Visit>
  void walk(Visit visit) {
    BoxTracker tracker(*deck_);
    for (const DeckKeyword& keyword : deck_->keywords()) {
      if (session_->yield()) throw LoadCanceled();
      const bool fits = tracker.take(keyword);
      if (keyword.section < 2 || keyword.section > 6 || tracker.grid() != grid_) continue;
      box_ = tracker.box();
      if (!fits) reportBox(keyword);
      visit(keyword);
    }
  }

  template <class Visit>
  void forEachRecord(const DeckKeyword& keyword, Visit visit) {
    DeckRecords records(deck_->files(), keyword);
    DeckRecord record;
    while (records.next(record)) {
      if (!record.items.empty()) visit(record);
    }
  }

  void reportBox(const DeckKeyword& keyword) {
    keyword_ = keyword.name;
    forEachRecord(keyword, [&](const DeckRecord& record) {
      reportRecord(record, "a box within the grid", record.text, "kept the previous box");
    });
  }

  /// The box of a record from an item on; nothing, and a report, for one that is not within the grid.
  std::optional<DeckBox> boxAt(const DeckRecord& record, std::int64_t item, const DeckBox& otherwise) {
    const auto box = boxOf(record, item, otherwise, size_);
    if (!box) reportRecord(record, "a box within the grid", record.text);
    return box;
  }

  void reportRecord(const DeckRecord& record, std::string expected, std::string found,
                    std::string action = "skipped this record") {
    session_->diagnose({.message = Message::DeckOperation,
                        .path = deck_->files()[record.file].path,
                        .keyword = keyword_,
                        .offset = record.offset,
                        .line = record.line,
                        .expected = std::move(expected),
                        .found = std::move(found),
                        .action = std::move(action)});
  }

  std::vector<double>& array(const std::string& name) {
    auto& values = arrays_[name];
    if (values.empty()) values.assign(static_cast<std::size_t>(cellsOf(size_)), initialValue(name));
    return values;
  }

  template <class Visit>
  void forCells(const DeckBox& box, Visit visit) const {
    for (std::int64_t k = box.from[2]; k <= box.to[2]; ++k) {
      for (std::int64_t j = box.from[1]; j <= box.to[1]; ++j) {
        const std::int64_t row = ((k - 1) * size_[1] + (j - 1)) * size_[0];
        for (std::int64_t i = box.from[0]; i <= box.to[0]; ++i) visit(static_cast<std::size_t>(row + i - 1));
      }
    }
  }

  /// The arrays on which one depends through COPY and its like, itself among them.
  std::set<std::string> dependencies(const std::string& name) {
    std::set<std::string> names{name};
    for (std::size_t before = 0; before != names.size();) {
      before = names.size();
      walk([&](const DeckKeyword& keyword) {
        const bool copies = keyword.name == "COPY" || keyword.name == "COPYREG";
        const bool operates = keyword.name == "OPERATE" || keyword.name == "OPERATER";
        const bool regions = regionOperation(keyword.name).has_value();
        if (!copies && !operates && !regions) return;
        forEachRecord(keyword, [&](const DeckRecord& record) {
          const auto item = [&](std::int64_t place) { return upper(trim(record[place].value_or(""))); };
          const std::string target = copies ? item(1) : item(0);
          if (!names.contains(target)) return;
          if (copies) names.insert(item(0));
          if (keyword.name == "OPERATE") names.insert(item(8));
          if (keyword.name == "OPERATER") names.insert(item(3)), names.insert(regionArray(record[6]));
          if (regions || keyword.name == "COPYREG") names.insert(regionArray(record[3]));
        });
      });
    }
    return names;
  }

  void apply(const DeckKeyword& keyword) {
    keyword_ = keyword.name;
    if (needed_.contains(keyword.name)) return setArray(keyword);
    if (const auto operation = boxOperation(keyword.name)) return applyInBoxes(keyword, *operation);
    if (const auto operation = regionOperation(keyword.name)) return applyInRegions(keyword, *operation);
    if (keyword.name == "COPY") return copy(keyword);
    if (keyword.name == "COPYREG") return copyRegions(keyword);
    if (keyword.name == "OPERATE" || keyword.name == "OPERATER") return operate(keyword);
    if (keyword.name == "COPYBOX") return copyBox(keyword);
  }

  void setArray(const DeckKeyword& keyword) {
    std::vector<double>& values = array(keyword.name);
    std::int64_t run = 0;  // cells that `now` is still for
    std::size_t next = 0;
    DeckNumbers numbers(deck_->files(), keyword);
    std::span<const DeckRun> runs;
    DeckRun now;
    std::int64_t taken = 0;
    const std::int64_t wanted = box_.cells();
    bool ended = false;
    bool damaged = false;
    const auto refill = [&] {
      next = 0;
      try {
        runs = numbers.next();
      } catch (const BadRecord& bad) {
        Diagnosis diagnosis = bad.diagnosis();
        diagnosis.action = "kept the cells behind it as they were";
        session_->diagnose(std::move(diagnosis));
        runs = {};
        damaged = true;
      }
      ended = runs.empty();
    };
    forCells(box_, [&](std::size_t cell) {
      while (run == 0 && !ended) {
        if (next == runs.size()) {
          refill();
          if (ended) return;
        }
        now = runs[next++];
        run = now.count;
      }
      if (ended) return;
      --run;
      ++taken;
      if (now.given) values[cell] = now.value;
    });
    // The top of the first layer is enough for some arrays; others end early.
    bool more = run > 0 || next < runs.size();
    if (!ended && !more) {
      refill();
      more = !ended;
    }
    if (damaged || (taken == wanted && !more)) return;
    if (keyword.name == "TOPS" && !more && taken == std::int64_t{size_[0]} * size_[1]) return;
    session_->diagnose({.message = Message::DeckCount,
                        .path = deck_->files()[keyword.file].path,
                        .keyword = keyword.name,
                        .offset = keyword.offset,
                        .line = keyword.line,
                        .expected = std::to_string(wanted),
                        .found = more ? "more" : std::to_string(taken),
                        .action = more ? "ignored the rest" : "kept the other cells as they were"});
  }

  /// The number of an operation; nothing, and a report, if it has none.
  std::optional<double> operand(const DeckRecord& record) {
    const auto value = deckNumber(trim(record[1].value_or("")));
    if (!value) reportRecord(record, "a number", std::string(record[1].value_or("nothing")));
    return value;
  }

  void applyInBoxes(const DeckKeyword& keyword, Operation operation) {
    DeckBox box = box_;
    forEachRecord(keyword, [&](const DeckRecord& record) {
      const auto own = boxAt(record, 2, box);
      if (!own) return;
      box = *own;
      const std::string name = upper(trim(record[0].value_or("")));
      if (!needed_.contains(name)) return;
      const auto value = operand(record);
      if (!value) return;
      std::vector<double>& values = array(name);
      forCells(box, [&](std::size_t cell) { values[cell] = applied(operation, values[cell], *value); });
    });
  }

  template <class Change>
  void inRegion(const DeckRecord& record, const std::string& regions, std::optional<std::int32_t> number,
                Change change) {
    if (!number) return reportRecord(record, "a region", "none");
    const std::vector<double>& numbers = array(regions);
    for (std::size_t cell = 0; cell < numbers.size(); ++cell) {
      if (numbers[cell] == *number) change(cell);
    }
  }

  void applyInRegions(const DeckKeyword& keyword, Operation operation) {
    forEachRecord(keyword, [&](const DeckRecord& record) {
      const std::string name = upper(trim(record[0].value_or("")));
      if (!needed_.contains(name)) return;
      const auto value = operand(record);
      if (!value) return;
      std::vector<double>& values = array(name);
      inRegion(record, regionArray(record[3]), wholeNumber(record, 2),
               [&](std::size_t cell) { values[cell] = applied(operation, values[cell], *value); });
    });
  }

  void copy(const DeckKeyword& keyword) {
    DeckBox box = box_;
    forEachRecord(keyword, [&](const DeckRecord& record) {
      const auto own = boxAt(record, 2, box);
      if (!own) return;
      box = *own;
      const std::string target = upper(trim(record[1].value_or("")));
      if (!needed_.contains(target)) return;
      const std::vector<double>& source = array(upper(trim(record[0].value_or(""))));
      std::vector<double>& values = array(target);
      forCells(box, [&](std::size_t cell) { values[cell] = source[cell]; });
    });
  }

  void copyRegions(const DeckKeyword& keyword) {
    forEachRecord(keyword, [&](const DeckRecord& record) {
      const std::string target = upper(trim(record[1].value_or("")));
      if (!needed_.contains(target)) return;
      const std::vector<double>& source = array(upper(trim(record[0].value_or(""))));
      std::vector<double>& values = array(target);
      inRegion(record, regionArray(record[3]), wholeNumber(record, 2),
               [&](std::size_t cell) { values[cell] = source[cell]; });
    });
  }

  /// OPERATE: array, box, function, source, two numbers. OPERATER: array, region, function, source, two
  /// numbers, array of regions.
  void operate(const DeckKeyword& keyword) {
    const bool byRegion = keyword.name == "OPERATER";
    DeckBox box = box_;
    forEachRecord(keyword, [&](const DeckRecord& record) {
      if (!byRegion) {
        const auto own = boxAt(record, 1, box);
        if (!own) return;
        box = *own;
      }
      const std::string target = upper(trim(record[0].value_or("")));
      if (!needed_.contains(target)) return;
      const std::int64_t at = byRegion ? 2 : 7;
      const std::string name = upper(trim(record[at].value_or("")));
      const double a = deckNumber(trim(record[at + 2].value_or(""))).value_or(0);
      const double b = deckNumber(trim(record[at + 3].value_or(""))).value_or(0);
      const auto function = operateFunction(name, a, b);
      if (!function) return reportRecord(record, "a function", name);
      const std::vector<double>& source = array(upper(trim(record[at + 1].value_or(""))));
      std::vector<double>& values = array(target);
      const auto change = [&](std::size_t cell) { values[cell] = function(values[cell], source[cell]); };
      if (byRegion) {
        inRegion(record, regionArray(record[6]), wholeNumber(record, 1), change);
      } else {
        forCells(box, change);
      }
    });
  }

  void copyBox(const DeckKeyword& keyword) {
    forEachRecord(keyword, [&](const DeckRecord& record) {
      const std::string name = upper(trim(record[0].value_or("")));
      if (!needed_.contains(name)) return;
      const auto from = boxAt(record, 1, {{1, 1, 1}, size_});
      const auto to = boxAt(record, 7, {{1, 1, 1}, size_});
      if (!from || !to) return;
      if (from->cells() != to->cells()) return reportRecord(record, "two boxes of one size", "others");
      std::vector<double>& values = array(name);
      std::vector<double> kept;
      forCells(*from, [&](std::size_t cell) { kept.push_back(values[cell]); });
      std::size_t next = 0;
      forCells(*to, [&](std::size_t cell) { values[cell] = kept[next++]; });
    });
  }

  const Deck* deck_;
  std::string grid_;
  Session* session_;
  DeckGridSize size_{};
  DeckBox box_;
  std::string keyword_;
  std::set<std::string> needed_;
  std::map<std::string, std::vector<double>> arrays_;
};

}  // namespace

DeckArray effectiveArray(const Deck& deck, const std::string& name, Session& session,
                         const std::string& grid) {
  return Evaluation(deck, upper(grid), session).run(upper(name));
}

std::int64_t mostNumbers(const Deck& deck) {
  std::int64_t cells = 0;
  for (const auto& [grid, size] : gridSizes(deck)) cells = std::max(cells, cellsOf(size));
  return cells == 0 ? mostCells : std::min(mostCells, mostOfACell * (cells + 1));
}

}  // namespace lumbarn
