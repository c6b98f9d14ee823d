#include <algorithm>
#include <iterator>
#include <memory>

#include <fmt/format.h>

#include "Commands.h"
#include "Output.h"
#include "PathArgument.h"
#include "StepRange.h"
#include "VectorNames.h"
#include "files/FileChoice.h"
#include "frame/NumberText.h"
#include "reader/qvEclipseReader.h"
#include "summary/RestartChain.h"
#include "summary/VectorSelection.h"
#include "summary/qvEclipseSPEC.h"
#include "support/Closest.h"
#include "support/Text.h"

namespace lumbarn::cli {
namespace {

struct SummaryOptions {
  std::string path;
  std::vector<std::string> vectors;
  std::vector<std::string> except;
  std::string steps;
  bool restart = false;
  bool reportSteps = false;
  bool dates = false;
  bool keepDuplicates = false;
  OutputOptions output;
};

/// "; did you mean ...?" for a name that is nearly one of the summary's.
std::string suggestion(const std::string& pattern, qvEclipseReader& reader) {
  bool qOK = false;
  std::vector<std::string> names;
  for (SummaryVector& vector : reader.ListSummaryVectors(qOK)) names.push_back(std::move(vector.name));
  const std::string better = pattern.find_first_of("*?") == pattern.npos ? closest(pattern, names) : "";
  return better.empty() ? "" : fmt::format("; did you mean \"{}\"?", better);
}

/// Tells of patterns that choose nothing. Throws Failure when no pattern of `--vectors` does.
void tellUnmatched(const SummaryOptions& options, qvEclipseReader& reader, Console& console) {
  std::vector<std::string> chosen;
  for (const std::string& list : options.vectors)
    std::ranges::move(splitPatterns(list), std::back_inserter(chosen));
  std::size_t missed = 0;
  for (const std::string& pattern : reader.UnmatchedPatterns()) {
    const bool isChosen = std::ranges::count(chosen, pattern) > 0;
    if (isChosen) ++missed;
    if (!isChosen && pattern == "TIME") continue;  // added by `patterns`
    console.say(fmt::format("no vector matches \"{}\"{}", pattern, suggestion(pattern, reader)));
  }
  if (!chosen.empty() && missed == chosen.size()) {
    throw Failure(Usage,
                  fmt::format("nothing to show; \"lumbarn vectors {}\" lists the names", options.path));
  }
}

/// A summary table, and what of it is to be shown.
class SummaryTable {
 public:
  SummaryTable(const RunFamily& run, const SummaryOptions& options, Console& console)
      : run_(run), options_(options), console_(console) {}

  void load() {
    reader_.FileName = summaryFile(run_);
    reader_.whichtype = 12;
    reader_.Silent = true;
    reader_.AcceptDamaged = true;
    reader_.NoRestart = !options_.restart;
    reader_.VectorPatterns = patterns();
    reader_.ExceptPatterns = options_.except;
    if (!options_.steps.empty()) setSteps();
    bool qOK = false;
    reader_.ECLReadData(qOK);
    if (qOK) fetch(qOK);
    console_.progress().hide();
    console_.checkCancelled();
    if (!qOK) console_.giveUp(reader_.FileName, "nothing of the summary can be read");
    tellUnmatched(options_, reader_, console_);
    chooseColumns();
    chooseRows();
    if (rows_.empty())
      console_.say("the summary has no rows" + std::string(options_.steps.empty() ? "" : " in these steps"));
    if (options_.dates) setDates();
  }

  void write(Format format, std::ostream& out) const {
    const auto table = TableWriter::make(format, columns(format), out);
    console_.progress().files(1);
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      if (i % 64 == 0) {
        console_.checkCancelled();
        console_.progress().fraction(static_cast<double>(i) / static_cast<double>(rows_.size()));
      }
      const std::size_t row = rows_[i];
      if (options_.dates) dates_.empty() ? table->empty() : table->text(isoText(dates_[row], dateOnly_));
      for (std::size_t k = 0; k < shown_.size(); ++k) {
        hasValue(k, row) ? table->number(values_.column(shown_[k].vector->column)[row]) : table->empty();
      }
    }
    table->finish();
    console_.progress().hide();
  }

 private:
  /// Dates are made from TIME, and rows are of little use without it, so it is read whatever is chosen.
  std::vector<std::string> patterns() const {
    auto all = options_.vectors;
    if (!all.empty()) all.emplace_back("TIME");
    return all;
  }

  void setSteps() {
    const StepRange steps = parseSteps(options_.steps);
    reader_.iStart = steps.first;
    reader_.iEnd = steps.last;
    const FileChoice choice = chooseFiles(console_.session(), reader_.FileName, FileKind::Summary);
    if (choice.unified) return;
    // Of a set with one file for each step the reader wants both ends as numbers of files that exist.
    const auto inRange = [&](const std::string& file) {
      const std::int32_t step = GetNumericPartOfFileName(file);
      return step >= steps.first && step <= steps.last;
    };
    reader_.iStart = std::max(steps.first, 0);
    if (std::ranges::none_of(choice.files, inRange)) return;
    reader_.iStart = GetNumericPartOfFileName(*std::ranges::find_if(choice.files, inRange));
    const auto last = std::find_if(choice.files.rbegin(), choice.files.rend(), inRange);
    reader_.iEnd = GetNumericPartOfFileName(*last);
  }

  void fetch(bool& qOK) {
    ByteTable bHeaders;
    SourceData vSourceData;
    ByteTable bOnlyUsed;
    reader_.GetSUMMARYData(values_, bHeaders, vSourceData, bOnlyUsed, qOK);
  }

  /// TIME goes in front. What the reader keeps beside the choice, because it dates the rows, is left out
  /// here.
  void chooseColumns() {
    const auto& vectors = reader_.Vectors();
    const auto wanted = selectVectors(vectors, patterns(), options_.except).mask;
    const auto named = nameVectors(vectors, options_.keepDuplicates, console_);
    for (const NamedVector& vector : named) {
      if (wanted[static_cast<std::size_t>(vector.vector - vectors.data())]) shown_.push_back(vector);
    }
    std::stable_partition(shown_.begin(), shown_.end(),
                          [](const NamedVector& vector) { return vector.name == "TIME"; });
    if (shown_.empty() && !options_.dates) throw Failure(Usage, "nothing to show: all vectors are left out");
    if (!options_.restart) return;
    for (const NamedVector& vector : shown_) {
      present_.push_back(reader_.RowsWithValues(static_cast<std::int32_t>(vector.vector->column)));
    }
  }

  /// Rows of a run of the chain that does not have the vector contain 0, which is not its value.
  bool hasValue(std::size_t k, std::size_t row) const { return present_.empty() || present_[k][row]; }

  /// All rows, or the last one of each report step. The reader counts steps within each file of each run.
  void chooseRows() {
    const auto& rows = reader_.Rows();
    const auto sameStep = [](const SummaryRow& a, const SummaryRow& b) {
      return a.iRun == b.iRun && a.iFile == b.iFile && a.iStep == b.iStep;
    };
    for (std::size_t i = 0; i < values_.rows(); ++i) {
      const bool last = i + 1 >= rows.size() || !sameStep(rows[i], rows[i + 1]);
      if (last || !options_.reportSteps) rows_.push_back(i);
    }
  }

  void setDates() {
    dates_ = reader_.RowDates(values_);
    if (dates_.empty() && !rows_.empty()) console_.say("dates are not known: no start date or no TIME");
    dateOnly_ = options_.output.format == Format::Table && std::ranges::all_of(dates_, [](Moment date) {
                  return date == std::chrono::floor<std::chrono::days>(date);
                });
  }

  std::vector<Column> columns(Format format) const {
    std::vector<Column> all;
    if (options_.dates)
      all.push_back(
          {"DATE", false, std::string_view(dateOnly_ ? "2000-01-01" : "2000-01-01T00:00:00").size()});
    for (const NamedVector& vector : shown_) {
      Column& column = all.emplace_back(Column{vector.name, true, 0, vector.vector->units});
      if (format != Format::Table) continue;
      const auto values = values_.column(vector.vector->column);
      for (const std::size_t row : rows_)
        column.width = std::max(column.width, NumberText(values[row]).view().size());
    }
    return all;
  }

  const RunFamily& run_;
  const SummaryOptions& options_;
  Console& console_;
  qvEclipseReader reader_{console_.session()};
  XYData values_;
  std::vector<NamedVector> shown_;
  std::vector<std::vector<bool>> present_;  // by shown vector: which rows have a value; empty: all
  std::vector<std::size_t> rows_;           // from 0
  std::vector<Moment> dates_;               // of all rows of the table; empty when not known
  bool dateOnly_ = false;
};

/// The files that are read: those of the run and of the runs that it restarted from.
std::vector<std::string> inputsOf(const RunFamily& run, const SummaryOptions& options, Console& console) {
  auto inputs = pathsOf(run);
  if (!options.restart || !options.output.replace) return inputs;  // without it, simulator files are safe
  auto spec = std::make_unique<qvEclipseSPEC>(console.session());
  if (!spec->CheckSPECFile(summarySpecification(run).path)) return inputs;
  while (spec) {
    bool qOK = false;
    spec->ReadEclipseSPECFile(qOK);
    if (!qOK || spec->zRestartName.empty()) break;
    spec = findEarlierRun(spec->zRestartName, spec->zFileName, spec->Formatted, console.session());
    if (!spec || std::ranges::count(inputs, spec->zFileName) > 0) break;  // a chain may lead back
    std::ranges::move(pathsOf(findRun(spec->zFileName)), std::back_inserter(inputs));
  }
  return inputs;
}

ExitStatus showSummary(const SummaryOptions& options, Console& console) {
  const RunFamily run = findRun(options.path);
  Output output(options.output, console.out(), inputsOf(run, options, console));
  SummaryTable table(run, options, console);
  table.load();
  table.write(options.output.format, output.stream());
  output.commit();
  return console.doneStatus();
}

}  // namespace

void addSummary(CommandLine& line) {
  Subcommand command(line, "summary", "Show summary data, one column for each vector");
  SummaryOptions& options = command.performs(showSummary);
  command.path(options.path);
  command.repeated("--vectors", options.vectors, "PATTERNS",
                   "Vectors to show, as WOPR:* or BPR:10,4,3; * and ? match any characters");
  command.repeated("--except", options.except, "PATTERNS",
                   "Vectors to leave out; TIME is shown unless it is one of them");
  command.value("--steps", options.steps, "A:B", "Report steps to show: 3:7, 3:, :7 or 3");
  command.flag("--restart", options.restart, "Show the runs that this one restarted from too");
  command.flag("--report-steps", options.reportSteps, "Show only the last row of each report step");
  command.flag("--dates", options.dates, "Show the date of each row in front");
  command.flag("--keep-duplicates", options.keepDuplicates,
               "Show vectors whose name occurs before too, with #2 and so on behind the name");
  command.output(options.output);
  command.footer(
      "Patterns are separated by commas; options may be repeated. Values that are not numbers are empty in\n"
      "csv and null in json. Example:\n  lumbarn summary --vectors 'FOPR,WBHP:*' --dates --format csv -o "
      "rates.csv RUN");
}

}  // namespace lumbarn::cli
