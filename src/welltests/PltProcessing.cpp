#include <algorithm>
#include <numeric>

#include <fmt/format.h>

#include "../support/Sorting.h"
#include "TestColumns.h"
#include "TestProcessing.h"

namespace lumbarn {

namespace {

/// Fills a table of known size column after column, rows in a given order.
class Refiller {
 public:
  Refiller(TestTable& table, std::span<const std::int32_t> order) : table_(table), order_(order) {}

  void ordered(std::string_view name, std::span<const float> from,
               std::uint64_t headerAt = TestTable::derived) {
    const std::span<float> out = next(name, headerAt);
    for (std::size_t r = 0; r < out.size(); ++r) out[r] = from[static_cast<std::size_t>(order_[r] - 1)];
  }
  /// A value where the divisor is above 0, and 0 elsewhere; both are asked for by row of the file.
  void ratio(std::string_view name, auto dividend, auto divisor) {
    const std::span<float> out = next(name);
    for (std::size_t r = 0; r < out.size(); ++r) {
      const auto i = static_cast<std::size_t>(order_[r] - 1);
      const float by = divisor(i);
      out[r] = by > 0 ? dividend(i) / by : 0;
    }
  }

 private:
  std::span<float> next(std::string_view name, std::uint64_t headerAt = TestTable::derived) {
    table_.columns[done_] = {ColumnName(name), headerAt};
    return std::span(table_.values).subspan(done_++ * table_.rows, table_.rows);
  }

  TestTable& table_;
  std::span<const std::int32_t> order_;
  std::size_t done_ = 0;
};

/// All connections on branch 1 count as one branch, though the test then has no branches to ask for.
void setPltBranches(ProcessedTest& test, std::span<const float> numbers) {
  const auto [least, most] = std::ranges::minmax(numbers);
  if (!(least > 0 && most >= 1)) return;
  test.nPltBranches = rounded(most);
  if (test.nPltBranches < 2) return;
  test.hasPltBranches = true;
  // The number comes from the file: records are made as far as a segment can refer to one, those beyond are
  // implied.
  const std::int32_t made =
      std::min(test.nPltBranches, std::max(test.tables.nConnections, test.tables.nSegments));
  test.branches.assign(static_cast<std::size_t>(made), {});
  for (std::int32_t i = 1; i <= made; ++i) test.branches[static_cast<std::size_t>(i - 1)].iNumber = i;
  test.impliedBranches = true;
}

/// Columns of rates, empty where the file has none; there is at least one connection.
struct PltRates {
  std::span<const float> oil, water, gas, tubeOil, tubeWater, tubeGas;

  bool hasWaterCut() const { return !oil.empty() && !water.empty(); }
  bool hasGasOilRatio() const { return !oil.empty() && !gas.empty(); }
  std::size_t derived() const {
    return std::size_t{!oil.empty()} + !water.empty() + !gas.empty() + 2 * hasWaterCut() +
           2 * hasGasOilRatio();
  }
  /// Fills the derived columns.
  void fill(Refiller& refill, std::span<const float> length) const {
    const auto of = [](std::span<const float> values) {
      return [values](std::size_t i) { return values[i]; };
    };
    const auto sumOf = [](std::span<const float> a, std::span<const float> b) {
      return [a, b](std::size_t i) { return a[i] + b[i]; };
    };
    if (!oil.empty()) refill.ratio("CONORATS", of(oil), of(length));
    if (!water.empty()) refill.ratio("CONWRATS", of(water), of(length));
    if (!gas.empty()) refill.ratio("CONGRATS", of(gas), of(length));
    if (hasWaterCut()) {
      refill.ratio("CONWCUT", of(water), sumOf(oil, water));
      refill.ratio("CONWCUTUB", of(tubeWater), sumOf(tubeOil, tubeWater));
    }
    if (hasGasOilRatio()) {
      refill.ratio("CONGOR", of(gas), of(oil));
      refill.ratio("CONGORTUB", of(tubeGas), of(tubeOil));
    }
  }
};

/// The PLT table of a test while it is re-formed.
struct PltWork {
  explicit PltWork(TestWork& test) : work(test) { columns.set(plt); }

  TestWork& work;
  TestTable& plt = work.test.tables.plt;
  std::size_t n = static_cast<std::size_t>(work.test.tables.nConnections);
  ColumnNumbers<PltColumn> columns{};

  bool has(PltColumn column) const { return columns.has(column); }
  std::span<const float> values(PltColumn column) const { return plt.column(columns[column], n); }
  std::uint64_t headerOf(PltColumn column) const {
    return plt.columns[static_cast<std::size_t>(columns[column] - 1)].headerAt;
  }
};

/// Rates in the tubing are expected wherever there are rates of the connections: without them, a fault.
/// Deliberate.
PltRates ratesOf(const PltWork& plt) {
  const auto given = [&](PltColumn column) {
    return plt.has(column) ? plt.values(column) : std::span<const float>();
  };
  const auto inTubing = [&](PltColumn column, std::string_view name) {
    if (plt.has(column)) return given(column);
    plt.work.report(Message::WellTestDerived, name, plt.work.test.header.beginsAt,
                    "test has rates of connections and none in the tubing", {}, {},
                    "worked out nothing from its PLT");
    throw ReportedFault(FaultNumber::Subscript);
  };
  PltRates rates{given(PltColumn::CONORAT), given(PltColumn::CONWRAT), given(PltColumn::CONGRAT), {}, {}, {}};
  if (rates.hasWaterCut() || rates.hasGasOilRatio()) rates.tubeOil = inTubing(PltColumn::CONOTUB, "CONOTUB");
  if (rates.hasWaterCut()) rates.tubeWater = inTubing(PltColumn::CONWTUB, "CONWTUB");
  if (rates.hasGasOilRatio()) rates.tubeGas = inTubing(PltColumn::CONGTUB, "CONGTUB");
  return rates;
}

/// The table by measured depth with the derived columns. fromFile: columns of the file.
void reform(PltWork& plt, std::int32_t fromFile) {
  const std::size_t n = plt.n;
  const auto start = plt.values(PltColumn::CONLENST);
  const auto end = plt.values(PltColumn::CONLENEN);
  std::vector<float> middle(n);
  std::vector<float> length(n);
  for (std::size_t i = 0; i < n; ++i) {
    middle[i] = (start[i] + end[i]) * 0.5F;
    length[i] = end[i] - start[i];
  }
  const PltRates rates = ratesOf(plt);
  const TestOptions& options = plt.work.options;
  // Not before the rates: where they end in a fault the PLT columns stay in the order of the file, and the
  // RFT columns are returned in the same order.
  std::vector<std::int32_t>& order = plt.work.test.rowOrder;
  if (options.SortedPLT) order = sortPositions(middle);

  TestTable table;  // on the heap: the memory of the test is not freed, and has the columns that were read
  table.rows = n;
  table.columns.resize(static_cast<std::size_t>(fromFile) + 2 + rates.derived());
  table.values.resize(table.columns.size() * n);
  Refiller refill(table, order);
  refill.ordered("CONMD", middle);
  refill.ordered("CONLENST", start, plt.headerOf(PltColumn::CONLENST));
  refill.ordered("CONLENEN", end, plt.headerOf(PltColumn::CONLENEN));
  refill.ordered("CONLENTH", length);
  for (std::int32_t i = 1; i <= fromFile; ++i) {
    if (i == plt.columns[PltColumn::CONLENST] || i == plt.columns[PltColumn::CONLENEN]) continue;
    const auto& column = plt.plt.columns[static_cast<std::size_t>(i - 1)];
    refill.ordered(column.name, plt.plt.column(i, n), column.headerAt);
  }
  // Columns by length are asked for whether they were made or not. The table has its new size by then, with
  // the old number of columns in use. Deliberate.
  const bool unscaled = !options.ScaledPLT && rates.derived() > 0;
  if (!unscaled) rates.fill(refill, length);
  table.count = unscaled ? plt.plt.count : static_cast<std::int32_t>(table.columns.size());
  plt.plt = std::move(table);
  if (unscaled) throw Fault(FaultNumber::Subscript);
  plt.columns.set(plt.plt);
}

/// The segment of each connection, from 1.
std::vector<std::int32_t> segmentsOf(const PltWork& plt) {
  std::vector<std::int32_t> segments(plt.n);
  std::ranges::transform(plt.values(PltColumn::CONSEGNO), segments.begin(), rounded);
  return segments;
}

/// Adds up the rates of the connections by the segment that they feed.
void setPLTSegmentData(TestWork& work) {
  TestTables& tables = work.test.tables;
  const PltWork plt(work);
  if (tables.nSegments < 1 || tables.nConnections < 1 || !plt.has(PltColumn::CONSEGNO)) return;
  const std::vector<std::int32_t> segmentOf = segmentsOf(plt);
  const auto null = static_cast<float>(work.report.session.NullValue);
  constexpr PltColumn rates[] = {PltColumn::CONORAT, PltColumn::CONWRAT, PltColumn::CONGRAT};
  const auto nSegments = static_cast<std::size_t>(tables.nSegments);
  std::vector<float> sums(3 * nSegments, null);
  for (std::size_t k = 0; k < 3; ++k) {
    if (!plt.has(rates[k])) continue;
    const auto rate = plt.values(rates[k]);
    for (std::size_t i = 0; i < plt.n; ++i) {
      if (segmentOf[i] < 1 || segmentOf[i] > tables.nSegments) {
        work.report(Message::WellTestReference, "CONSEGNO", plt.headerOf(PltColumn::CONSEGNO),
                    "connection on a segment that is not there", fmt::format("1 to {}", tables.nSegments),
                    fmt::format("{}", segmentOf[i]), "left out the rates of segments from connections");
        throw ReportedFault(FaultNumber::Subscript);
      }
      float& sum = sums[k * nSegments + static_cast<std::size_t>(segmentOf[i] - 1)];
      // The first rate replaces the null value, and so does any that follows a sum that happens to be the
      // null value. Deliberate.
      sum = sum == null ? rate[i] : sum + rate[i];
    }
  }
  constexpr std::string_view sumNames[] = {"SEGCORAT", "SEGCWRAT", "SEGCGRAT"};
  for (std::size_t k = 0; k < 3; ++k) {
    tables.add(tables.segments, sumNames[k], std::span<const float>(sums).subspan(k * nSegments, nSegments),
               work.report);
  }
  // Sums by length are never derived, but their columns are there. Deliberate.
  const std::vector<float> none(nSegments, null);
  for (const std::string_view name : {"SEGCORTS", "SEGCWRTS", "SEGCGRTS"})
    tables.add(tables.segments, name, none, work.report);
}

}  // namespace

void processPLTRecords(TestWork& work) {
  ProcessedTest& test = work.test;
  TestTables& tables = test.tables;
  if (!tables.hasPlt || !work.options.ProcessPLT) return;
  addIndices(work, tables.plt);
  const auto n = static_cast<std::size_t>(tables.nConnections);
  const std::int32_t fromFile = tables.plt.count;  // the next column is lost when the table is re-formed
  test.rowOrder.resize(n);
  std::iota(test.rowOrder.begin(), test.rowOrder.end(), 1);
  const std::vector<float> completions(test.rowOrder.begin(), test.rowOrder.end());
  tables.add(tables.plt, "COMPLETION", completions, work.report);
  if (n < 1 || fromFile < 1) return;
  PltWork plt(work);
  test.pltBranchColumn = plt.columns[PltColumn::CONBRNO];
  if (plt.has(PltColumn::CONBRNO)) setPltBranches(test, plt.values(PltColumn::CONBRNO));
  if (!plt.has(PltColumn::CONLENST)) return;
  if (plt.has(PltColumn::CONLENEN)) reform(plt, fromFile);
  test.pltBranchColumn = plt.columns[PltColumn::CONBRNO];
  runStep(work, "setPLTSegmentData", setPLTSegmentData, "left out the rates of segments from connections");
}

}  // namespace lumbarn
