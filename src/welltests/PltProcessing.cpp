#include <algorithm>
#include <numeric>

#include <fmt/format.h>

#include "../support/Fault.h"
#include "../support/Sorting.h"
#include "QVEclipseRFTtest.h"

namespace lumbarn {

namespace {

/// Fills a table of known size column after column, rows in a given order.
class Refiller {
 public:
  Refiller(TestTable& table, std::span<const std::int32_t> order) : table_(table), order_(order) {}

  void ordered(std::string_view name, std::span<const float> from,
               std::uint64_t headerAt = TestTable::workedOut) {
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
  std::span<float> next(std::string_view name, std::uint64_t headerAt = TestTable::workedOut) {
    table_.columns[done_] = {ColumnName(name), headerAt};
    return std::span(table_.values).subspan(done_++ * table_.rows, table_.rows);
  }

  TestTable& table_;
  std::span<const std::int32_t> order_;
  std::size_t done_ = 0;
};

}  // namespace

void QVEclipseRFTtest::processPLTRecords() {
  if (!qPLT_ || !ProcessPLT) return;
  processRFTPLTRecords(plt_);
  const auto n = static_cast<std::size_t>(nConnections_);
  const std::int32_t m = plt_.count;  // without the next column, which is lost when the table is re-formed
  iSort_.resize(n);
  std::iota(iSort_.begin(), iSort_.end(), 1);
  const std::vector<float> completions(iSort_.begin(), iSort_.end());
  addArray(plt_, "COMPLETION", completions);
  if (n < 1 || m < 1) return;
  pltColumns_.set(plt_);
  setPLTBranches(n);
  if (!pltColumns_.has(PltColumn::CONLENST)) return;
  if (pltColumns_.has(PltColumn::CONLENEN)) reformPLT(n, m);
  step("setPLTSegmentData", &QVEclipseRFTtest::setPLTSegmentData,
       "left out the rates of segments from connections");
}

/// All connections on branch 1 count as one branch, though the test then has no branches to ask for.
void QVEclipseRFTtest::setPLTBranches(std::size_t n) {
  if (!pltColumns_.has(PltColumn::CONBRNO)) return;
  const auto numbers = plt_.column(pltColumns_[PltColumn::CONBRNO], n);
  const auto [least, most] = std::ranges::minmax(numbers);
  if (!(least > 0 && most >= 1)) return;
  nPLTBranches_ = rounded(most);
  if (nPLTBranches_ < 2) return;
  qPLTBranches_ = true;
  // The number comes from the file: records are made as far as a segment can ask for one, those behind are
  // implied.
  const std::int32_t made = std::min(nPLTBranches_, std::max(nConnections_, nSegments_));
  branches_.assign(static_cast<std::size_t>(made), {});
  for (std::int32_t i = 1; i <= made; ++i) branches_[static_cast<std::size_t>(i - 1)].iNumber = i;
  qImpliedBranches_ = true;
}

/// Columns of rates, empty where the file has none; there is at least one connection.
struct QVEclipseRFTtest::PltRates {
  std::span<const float> oil, water, gas, tubeOil, tubeWater, tubeGas;

  bool hasWaterCut() const { return !oil.empty() && !water.empty(); }
  bool hasGasOilRatio() const { return !oil.empty() && !gas.empty(); }
  std::size_t workedOut() const {
    return std::size_t{!oil.empty()} + !water.empty() + !gas.empty() + 2 * hasWaterCut() +
           2 * hasGasOilRatio();
  }
  /// Fills the columns that are worked out.
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

/// Rates in the tubing are taken to be there when those of the connections are: without them, a fault.
/// Deliberate.
QVEclipseRFTtest::PltRates QVEclipseRFTtest::ratesOfPLT(std::size_t n) const {
  const auto given = [&](PltColumn column) {
    return pltColumns_.has(column) ? plt_.column(pltColumns_[column], n) : std::span<const float>();
  };
  const auto inTubing = [&](PltColumn column, std::string_view name) {
    if (pltColumns_.has(column)) return given(column);
    tell(Message::WellTestDerived, name, beginsAt_, "test has rates of connections and none in the tubing",
         {}, {}, "worked out nothing from its PLT");
    throw ToldFault(FaultNumber::Subscript);
  };
  PltRates rates{given(PltColumn::CONORAT), given(PltColumn::CONWRAT), given(PltColumn::CONGRAT), {}, {}, {}};
  if (rates.hasWaterCut() || rates.hasGasOilRatio()) rates.tubeOil = inTubing(PltColumn::CONOTUB, "CONOTUB");
  if (rates.hasWaterCut()) rates.tubeWater = inTubing(PltColumn::CONWTUB, "CONWTUB");
  if (rates.hasGasOilRatio()) rates.tubeGas = inTubing(PltColumn::CONGTUB, "CONGTUB");
  return rates;
}

/// The table by measured depth, with what is worked out from it. m: columns of the file.
void QVEclipseRFTtest::reformPLT(std::size_t n, std::int32_t m) {
  const std::int32_t iStart = pltColumns_[PltColumn::CONLENST];
  const std::int32_t iEnd = pltColumns_[PltColumn::CONLENEN];
  const auto start = plt_.column(iStart, n);
  const auto end = plt_.column(iEnd, n);
  std::vector<float> middle(n);
  std::vector<float> length(n);
  for (std::size_t i = 0; i < n; ++i) {
    middle[i] = (start[i] + end[i]) * 0.5F;
    length[i] = end[i] - start[i];
  }
  const PltRates rates = ratesOfPLT(n);
  // Not before the rates: where they end in a fault the PLT columns stay in the order of the file, and the
  // RFT columns are given out in the same order.
  if (SortedPLT) iSort_ = sortPositions(middle);

  TestTable table;  // in memory that is given back: the test has room for the columns of it that count
  table.rows = n;
  table.columns.resize(static_cast<std::size_t>(m) + 2 + rates.workedOut());
  table.values.resize(table.columns.size() * n);
  Refiller refill(table, iSort_);
  refill.ordered("CONMD", middle);
  refill.ordered("CONLENST", start, plt_.columns[static_cast<std::size_t>(iStart - 1)].headerAt);
  refill.ordered("CONLENEN", end, plt_.columns[static_cast<std::size_t>(iEnd - 1)].headerAt);
  refill.ordered("CONLENTH", length);
  for (std::int32_t i = 1; i <= m; ++i) {
    const auto& column = plt_.columns[static_cast<std::size_t>(i - 1)];
    if (i != iStart && i != iEnd) refill.ordered(column.name, plt_.column(i, n), column.headerAt);
  }
  // Columns by length are asked for whether they were made or not. The table has its new size by then, with
  // the old number of columns in use. Deliberate.
  const bool unscaled = !ScaledPLT && rates.workedOut() > 0;
  if (!unscaled) rates.fill(refill, length);
  table.count = unscaled ? plt_.count : static_cast<std::int32_t>(table.columns.size());
  plt_ = std::move(table);
  if (unscaled) throw Fault(FaultNumber::Subscript);
  pltColumns_.set(plt_);
}

/// Adds the rates of the connections up by the segment that they feed.
void QVEclipseRFTtest::setPLTSegmentData() {
  if (nSegments_ < 1 || nConnections_ < 1 || !pltColumns_.has(PltColumn::CONSEGNO)) return;
  const auto n = static_cast<std::size_t>(nConnections_);
  const std::int32_t iSegments = pltColumns_[PltColumn::CONSEGNO];
  const auto numbers = plt_.column(iSegments, n);
  std::vector<std::int32_t> segmentOf(n);
  std::ranges::transform(numbers, segmentOf.begin(), rounded);

  const auto null = static_cast<float>(session_->NullValue);
  constexpr PltColumn rates[] = {PltColumn::CONORAT, PltColumn::CONWRAT, PltColumn::CONGRAT};
  const auto nSegments = static_cast<std::size_t>(nSegments_);
  std::vector<float> sums(3 * nSegments, null);
  for (std::size_t k = 0; k < 3; ++k) {
    if (!pltColumns_.has(rates[k])) continue;
    const auto rate = plt_.column(pltColumns_[rates[k]], n);
    for (std::size_t i = 0; i < n; ++i) {
      if (segmentOf[i] < 1 || segmentOf[i] > nSegments_) {
        tell(Message::WellTestReference, "CONSEGNO",
             plt_.columns[static_cast<std::size_t>(iSegments - 1)].headerAt,
             "connection on a segment that is not there", fmt::format("1 to {}", nSegments_),
             fmt::format("{}", segmentOf[i]), "left out the rates of segments from connections");
        throw ToldFault(FaultNumber::Subscript);
      }
      float& sum = sums[k * nSegments + static_cast<std::size_t>(segmentOf[i] - 1)];
      // The first rate takes the place of the null value, and so does any that follows a sum that happens
      // to be the null value. Deliberate.
      sum = sum == null ? rate[i] : sum + rate[i];
    }
  }
  for (const std::string_view name : {"SEGCORAT", "SEGCWRAT", "SEGCGRAT"}) {
    const auto k = static_cast<std::size_t>(name[4] == 'O' ? 0 : name[4] == 'W' ? 1 : 2);
    addArray(seg_, name, std::span<const float>(sums).subspan(k * nSegments, nSegments));
  }
  // Sums by length are never worked out, but their columns are there. Deliberate.
  const std::vector<float> none(nSegments, null);
  for (const std::string_view name : {"SEGCORTS", "SEGCWRTS", "SEGCGRTS"}) addArray(seg_, name, none);
}

}  // namespace lumbarn
