#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "../support/Dates.h"
#include "../support/Session.h"
#include "ChainPlan.h"
#include "ColumnReader.h"
#include "SummaryRun.h"
#include "SummaryVector.h"

namespace lumbarn {

/// Chooses vectors by patterns, in each run of a chain, and keeps account of patterns that fit none.
class VectorChoice {
 public:
  /// Lists of patterns as `selectVectors` takes them. TIME is chosen too unless `except` names it.
  VectorChoice(std::vector<std::string> only, std::vector<std::string> except);

  /// The chosen vectors of a run. The first vector is among them in any case, as it dates the rows.
  std::vector<SummaryVector> of(const SummarySpec& spec);
  /// The positions of the vectors to show: TIME, then in the order of the patterns, or else of the vectors.
  std::vector<std::size_t> shown(std::span<const SummaryVector> vectors) const;

  bool byPatterns() const { return !only_.empty() || !except_.empty(); }
  /// Whether one of the vectors fits a pattern of `only`, also if `except` names it.
  bool anyFits() const { return only_.empty() || anyFits_; }
  /// Patterns that fit no vector of any run so far.
  const std::vector<std::string>& unmatched() const { return unmatched_; }

 private:
  std::vector<std::string> only_, onlyAndTime_, except_, unmatched_;
  bool first_ = true;
  bool anyFits_ = false;
};

/// The table that a choice of vectors makes of the runs of a restart chain: its columns and rows, known
/// before any value is read. Rows count from 0, columns from 0.
class SummaryTable {
 public:
  explicit SummaryTable(VectorChoice choice, Session& session)
      : choice_(std::move(choice)), chain_(session), session_(&session) {}

  /// The vectors that the choice takes of a run, for `add`.
  std::vector<SummaryVector> choose(const SummarySpec& spec) { return choice_.of(spec); }
  /// Adds a run with vectors of it, the newest run first.
  void add(std::shared_ptr<const SummaryRun> run, std::vector<SummaryVector> vectors);
  /// Completes the table, and reports what some rows have no values of.
  void finish();

  const VectorChoice& choice() const { return choice_; }
  const std::vector<SummaryVector>& vectors() const { return chain_.vectors(); }
  std::size_t rows() const { return rows_.size(); }
  std::int32_t step(std::size_t row) const { return place(row).iReportStep; }
  /// TIME in the units of the newest run; of no use unless `timeIsFirst`.
  float time(std::size_t row) const { return rows_[row].time; }
  bool hasTime() const { return hasTime_; }
  double timePerDay() const { return timePerDay_; }
  std::optional<Moment> date(std::size_t row) const;
  /// Whether a row has values of a column.
  bool has(std::size_t row, std::size_t column) const { return source(row, column).column != 0; }
  /// Whether all rows have values of a column.
  bool complete(std::size_t column) const;

 private:
  friend class SummaryReader;
  struct Row {
    std::uint32_t part = 0;   // of the chain, 0 is the newest
    std::uint32_t place = 0;  // in the index of its run
    float time = 0;
  };
  const RowPlace& place(std::size_t row) const {
    return runs_[rows_[row].part]->index.rows[rows_[row].place];
  }
  ChainSource source(std::size_t row, std::size_t column) const {
    return chain_.plan().source(rows_[row].part, column + 1);
  }

  VectorChoice choice_;
  SummaryChain chain_;
  Session* session_;
  std::vector<std::shared_ptr<const SummaryRun>> runs_;  // by part of the chain
  std::vector<std::vector<std::int32_t>> elements_;      // by part: numbers, in its rows, of its vectors
  std::vector<Row> rows_;
  bool hasCompletions_ = false;
  bool hasTime_ = false;
  double timePerDay_ = 1;
  std::optional<Moment> start_;
};

/// Reads rows of a table in their order, some columns of each.
class SummaryReader {
 public:
  SummaryReader(std::shared_ptr<const SummaryTable> table, std::vector<std::size_t> rows,
                std::vector<std::size_t> columns, Session& session)
      : table_(std::move(table)), rows_(std::move(rows)), columns_(std::move(columns)), session_(session) {}

  /// Reads at most `count` of the rows that remain into one array for each column; where a row has no value
  /// the array stays as it is. Gives the rows that were read; none at the end. Behind damage within a row the
  /// rows of its file are skipped, with a Diagnosis. Throws for other failures, which the next call repeats
  /// when there are good rows in front.
  std::span<const std::size_t> read(std::size_t count, std::span<float* const> out);
  std::size_t rowsLeft() const { return rows_.size() - next_; }

 private:
  void readRun(std::size_t count, std::span<float* const> out);
  void open(std::uint32_t part);
  void skipFile(Diagnosis& damage);

  std::shared_ptr<const SummaryTable> table_;
  std::vector<std::size_t> rows_, columns_;
  Session& session_;
  std::size_t first_ = 0, next_ = 0;  // rows of the current call: [first_, next_)
  std::exception_ptr failure_;
  struct Wanted {
    std::int32_t element = 0;  // number in the rows of the run
    std::size_t column = 0;    // position in columns_
  };
  std::optional<std::uint32_t> part_;  // that is open
  std::unique_ptr<ColumnReader> reader_;
  std::vector<Wanted> wanted_;
  std::vector<std::int32_t> elements_;
};

}  // namespace lumbarn
