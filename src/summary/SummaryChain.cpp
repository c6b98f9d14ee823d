#include "SummaryChain.h"

#include <algorithm>
#include <span>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "../support/Diagnosis.h"
#include "../support/Text.h"
#include "../vocabulary/Units.h"
#include "ChainNames.h"
#include "SummaryMatch.h"

namespace lumbarn {
namespace {

using Days = std::chrono::duration<double, std::ratio<86400>>;
constexpr double daysPerYear = 365.25;  // of the vector YEARS

/// Whether a text names a unit of time.
bool isTimeUnit(std::string_view unit) {
  return unitsPerDay(unit) != 1 || equalNoCase(unit, "DAYS") || equalNoCase(unit, "DAY");
}

/// How values of a vector of an earlier run become those of a column; nothing when the units do not agree. A
/// unit that is missing in one of the runs says nothing.
std::optional<ChainSource> conversion(const SummaryVector& from, const SummaryVector& to) {
  ChainSource source;
  if (from.units.empty() || to.units.empty() || equalNoCase(from.units, to.units)) return source;
  if (!isTimeUnit(from.units) || !isTimeUnit(to.units)) return std::nullopt;
  source.factor = unitsPerDay(to.units) / unitsPerDay(from.units);
  return source;
}

/// Times since the start have to follow when the start differs.
double shiftOf(const SummaryVector& column, double days) {
  if (column.mnemonic == "TIME") return days * unitsPerDay(column.units);
  return column.mnemonic == "YEARS" ? days / daysPerYear : 0;
}

std::string listed(const std::vector<std::string>& names) {
  constexpr std::size_t most = 3;
  std::string text;
  for (std::size_t i = 0; i < std::min(names.size(), most); ++i) text += (i > 0 ? ", " : "") + names[i];
  return names.size() > most ? fmt::format("{} and {} more", text, names.size() - most) : text;
}

}  // namespace

void SummaryChain::add(ChainRun run) {
  if (plan_.parts().empty()) {
    addNewest(run);
  } else {
    reportGapBefore(run);
    const TimeScale scale = timeScale(run);
    ChainPart part = match(run, scale);
    part.rows = rowsBefore(run.times, scale.source, firstTime_);
    if (part.rows > 0) firstTime_ = scale.source.converted(run.times.front());
    plan_.add(std::move(part));
  }
  iRestartStep_ = run.iRestartStep;
  earliestPath_ = std::move(run.path);
}

void SummaryChain::addNewest(ChainRun& run) {
  start_ = run.start;
  timeUnit_ = run.timeUnit;
  plan_.addNewest(run.times.size(), run.vectors.size());
  if (!run.times.empty()) firstTime_ = run.times.front();
  widths_.assign(run.vectors.size(), run.nameWidth);
  vectors_ = std::move(run.vectors);
}

SummaryChain::TimeScale SummaryChain::timeScale(const ChainRun& run) const {
  TimeScale scale;
  scale.source.factor = unitsPerDay(timeUnit_) / unitsPerDay(run.timeUnit);
  if (!start_ || !run.start || *start_ == *run.start) return scale;
  scale.days = Days(*run.start - *start_).count();
  scale.source.offset = scale.days * unitsPerDay(timeUnit_);
  session_.diagnose({.message = Message::ChainStart,
                     .path = run.path,
                     .keyword = "STARTDAT",
                     .expected = isoText(*start_, true),
                     .found = isoText(*run.start, true),
                     .action = fmt::format("added {} days to its times", scale.days)});
  return scale;
}

ChainPart SummaryChain::match(const ChainRun& run, const TimeScale& scale) {
  const KeyPairs keys =
      matchingKeys(session_, {vectors_, widths_}, run.path, {run.vectors, std::span(&run.nameWidth, 1)});
  const TextPairs pairs = pairTexts(keys.old, keys.main);
  ChainPart part;
  std::vector<std::string> refused;
  for (std::size_t i = 0; i < vectors_.size(); ++i) {
    auto& source = part.sources.emplace_back();
    if (pairs.iMatch[i] == 0) continue;
    const auto& vector = run.vectors[static_cast<std::size_t>(pairs.iMatch[i] - 1)];
    if (const auto found = conversion(vector, vectors_[i])) {
      source = {pairs.iMatch[i], found->factor, shiftOf(vectors_[i], scale.days)};
    } else {
      refused.push_back(fmt::format("{} in {} and {}", vector.name, vector.units, vectors_[i].units));
    }
  }
  for (const std::int32_t number : pairs.iNew) {
    const auto& vector = run.vectors[static_cast<std::size_t>(number - 1)];
    part.sources.push_back({number, 1, shiftOf(vector, scale.days)});
    vectors_.push_back(vector);
    widths_.push_back(run.nameWidth);
  }
  added_ = pairs.iNew;
  if (!refused.empty()) {
    session_.diagnose(
        {.message = Message::ChainUnits,
         .path = run.path,
         .keyword = "UNITS",
         .found = listed(refused),
         .action = fmt::format("omitted the values of {} vectors in this run", refused.size())});
  }
  return part;
}

/// Without the rows up to the restart there is a hole in the table.
void SummaryChain::reportGapBefore(const ChainRun& run) const {
  if (iRestartStep_ < 1 || run.iLastStep < 0 || run.iLastStep >= iRestartStep_) return;
  session_.diagnose(
      {.message = Message::ChainGap,
       .path = run.path,
       .expected = fmt::format("report step {}, at which {} begins", iRestartStep_, earliestPath_),
       .found = fmt::format("last report step {}", run.iLastStep),
       .action = "merged the rows that there are"});
}

void SummaryChain::reportGaps() const {
  const auto gaps = plan_.columnsWithGaps();
  if (gaps.empty()) return;
  std::vector<std::string> names;
  for (const std::size_t column : gaps) names.push_back(vectors_[column - 1].name);
  session_.diagnose({.message = Message::ChainNoValues,
                     .path = earliestPath_,
                     .found = listed(names),
                     .action = "rows of the other runs have no value of them"});
}

}  // namespace lumbarn
