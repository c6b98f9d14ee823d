#include "SummaryTable.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "../shapes/HeaderLayout.h"
#include "../support/Diagnosis.h"
#include "../support/Text.h"
#include "../vocabulary/Units.h"
#include "VectorSelection.h"

namespace lumbarn {

VectorChoice::VectorChoice(std::vector<std::string> only, std::vector<std::string> except)
    : only_(std::move(only)), onlyAndTime_(only_), except_(std::move(except)) {
  if (!only_.empty()) onlyAndTime_.emplace_back("TIME");
}

std::vector<SummaryVector> VectorChoice::of(const SummarySpec& spec) {
  if (!byPatterns()) return summaryVectors(spec);
  const auto names = summaryNames(spec, MnemonicFilter(onlyAndTime_, except_));
  auto selection = selectVectors(names, onlyAndTime_, except_);
  const auto selected = selectVectors(names, only_, {});
  anyFits_ = anyFits_ || std::ranges::any_of(selected.rank, [](std::int32_t rank) { return rank >= 0; });
  if (!selection.mask.empty() && spec.qKeyMask.front()) selection.mask.front() = true;
  auto& missing = selection.unmatched;
  const bool timeNamed = std::ranges::any_of(
      only_, [](const auto& list) { return std::ranges::count(splitPatterns(list), "TIME") > 0; });
  if (!timeNamed) std::erase(missing, "TIME");
  if (std::exchange(first_, false)) {
    unmatched_ = std::move(missing);
  } else {
    std::erase_if(unmatched_, [&](const auto& pattern) { return std::ranges::count(missing, pattern) == 0; });
  }
  return summaryVectors(spec, selection.mask);
}

std::vector<std::size_t> VectorChoice::shown(std::span<const SummaryVector> vectors) const {
  const auto wanted = selectVectors(vectors, onlyAndTime_, except_);
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < vectors.size(); ++i) {
    if (wanted.mask[i]) order.push_back(i);
  }
  const auto rank = [&](std::size_t i) { return vectors[i].name == "TIME" ? -1 : wanted.rank[i]; };
  if (only_.empty()) {
    std::stable_partition(order.begin(), order.end(),
                          [&](std::size_t i) { return vectors[i].name == "TIME"; });
  } else {
    std::ranges::stable_sort(order, {}, rank);
  }
  return order;
}

void SummaryTable::add(std::shared_ptr<const SummaryRun> run, std::vector<SummaryVector> vectors) {
  const SummarySpec& spec = *run->spec;
  hasCompletions_ = hasCompletions_ || holdsCompletions(spec, vectors, choice_.byPatterns());
  if (hasCompletions_ && !runs_.empty()) return reportRunOmitted(spec, *session_);
  auto& elements = elements_.emplace_back();
  for (const SummaryVector& vector : vectors) elements.push_back(static_cast<std::int32_t>(vector.column));
  chain_.add(chainRunOf(spec, std::move(vectors), run->index.rows));
  runs_.push_back(std::move(run));
}

void SummaryTable::finish() {
  const ChainPlan& plan = chain_.plan();
  rows_.reserve(plan.rows());
  for (std::size_t part = plan.parts().size(); part-- > 0;) {
    const ChainSource time = plan.columns() > 0 ? plan.source(part, 1) : ChainSource{};
    const auto& places = runs_[part]->index.rows;
    for (std::size_t i = 0; i < plan.parts()[part].rows; ++i) {
      const float value = time.converts() ? time.converted(places[i].first) : places[i].first;
      rows_.push_back({static_cast<std::uint32_t>(part), static_cast<std::uint32_t>(i), value});
    }
  }
  const SummarySpec& newest = *runs_.front()->spec;
  hasTime_ = timeIsFirst(newest) && newest.qKeyMask.front();
  if (hasTime_) timePerDay_ = unitsPerDay(newest.text(newest.xVectors.front(), attributeUnits));
  start_ = newest.start();
  if (runs_.size() > 1) chain_.reportGaps();
}

std::optional<Moment> SummaryTable::date(std::size_t row) const {
  return start_ && hasTime_ ? momentAfter(*start_, time(row), timePerDay_) : std::nullopt;
}

bool SummaryTable::complete(std::size_t column) const {
  const ChainPlan& plan = chain_.plan();
  for (std::size_t part = 0; part < plan.parts().size(); ++part) {
    if (plan.parts()[part].rows > 0 && plan.source(part, column + 1).column == 0) return false;
  }
  return true;
}

std::span<const std::size_t> SummaryReader::read(std::size_t count, std::span<float* const> out) {
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
  if (next_ == 0 && session_.Container) session_.Container->files(1);
  first_ = next_;
  try {
    while (next_ - first_ < count && next_ < rows_.size()) readRun(count - (next_ - first_), out);
  } catch (const BadRecord& damage) {
    if (damage.diagnosis().message == Message::FileChanged || next_ == first_) throw;
    failure_ = std::current_exception();
  } catch (...) {
    if (next_ == first_ || session_.cancelled()) throw;
    failure_ = std::current_exception();
  }
  return std::span(rows_).subspan(first_, next_ - first_);
}

/// Reads the next rows that are of one run.
void SummaryReader::readRun(std::size_t count, std::span<float* const> out) {
  const std::uint32_t part = table_->rows_[rows_[next_]].part;
  if (part_ != part) open(part);
  std::vector<RowPlace> places;
  for (std::size_t i = next_; i < rows_.size() && places.size() < count; ++i) {
    if (table_->rows_[rows_[i]].part != part) break;
    places.push_back(table_->place(rows_[i]));
  }
  std::vector<float*> columns;
  for (const Wanted& wanted : wanted_) columns.push_back(out[wanted.column] + (next_ - first_));
  const auto all = static_cast<double>(rows_.size());
  reader_->setShare(static_cast<double>(next_) / all, static_cast<double>(next_ + places.size()) / all);
  const auto take = [&] {
    for (std::size_t i = 0; i < wanted_.size(); ++i) {
      const ChainSource source = table_->source(rows_[next_], columns_[wanted_[i].column]);
      if (!source.converts()) continue;
      for (float& value : std::span(columns[i], reader_->rowsDone())) value = source.converted(value);
    }
    next_ += reader_->rowsDone();
  };
  try {
    reader_->read(places, elements_, columns);
    if (session_.cancelled()) throw LoadCanceled();
    take();
  } catch (BadRecord& damage) {
    take();
    if (damage.diagnosis().message == Message::FileChanged) throw;
    skipFile(damage.diagnosis());
  }
}

/// Makes the columns of a run known in its own terms.
void SummaryReader::open(std::uint32_t part) {
  const SummaryRun& run = *table_->runs_[part];
  wanted_.clear();
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const auto source = table_->chain_.plan().source(part, columns_[i] + 1);
    if (source.column == 0) continue;
    wanted_.push_back({table_->elements_[part][static_cast<std::size_t>(source.column) - 1], i});
  }
  std::ranges::sort(wanted_, {}, &Wanted::element);
  elements_.clear();
  for (const Wanted& wanted : wanted_) elements_.push_back(wanted.element);
  reader_ = std::make_unique<ColumnReader>(run.files, run.index.stamps, run.spec->form(),
                                           static_cast<std::int32_t>(run.spec->qKeyMask.size()), session_);
  part_ = part;
}

/// Skips the rows from the damaged one on to the end of their file.
void SummaryReader::skipFile(Diagnosis& damage) {
  const auto bad = table_->rows_[rows_[next_]];
  const std::int32_t file = table_->place(rows_[next_]).iFile;
  const auto from = rows_.begin() + static_cast<std::ptrdiff_t>(next_);
  const auto end = std::find_if(from, rows_.end(), [&](std::size_t row) {
    return table_->rows_[row].part != bad.part || table_->place(row).iFile != file;
  });
  describeLoss(damage, bad.place, table_->runs_[bad.part]->files.size() == 1,
               end != rows_.end() && table_->rows_[*end].part == bad.part);
  session_.diagnose(std::move(damage));
  rows_.erase(from, end);
}

}  // namespace lumbarn
