#include "Answer.h"

#include <optional>
#include <utility>

#include "frame/JoinRuns.h"
#include "frame/Transforms.h"
#include "run/RunNames.h"

namespace lumbarn::cli {
ReadOptions asking(Console& console) {
  ReadOptions options;
  options.stopFlag = &console.stopFlag();
  options.report = [&console](const Diagnosis& diagnosis) { console.tell(diagnosis); };
  options.progress = &console.progress();
  options.keepPartial = true;
  // Several transforms may each have a batch in memory. Text is some three times as large as its numbers;
  // that of large batches is returned to the system and taken from it again each time, a fifth of the
  // processor time of a wide summary with 32 MB.
  options.limits.bytes = std::size_t{4} << 20;
  return options;
}

ExitStatus writeAnswer(Stream&& answer, const OutputOptions& options, std::span<const std::string> inputs,
                       Console& console) {
  if (options.unitRow && options.format != Format::Csv && options.format != Format::Json)
    throw Failure(Usage, "--unit-row is for csv and json");
  Stream shaped = convertUnits(std::move(answer), options.units);
  if (options.longForm) shaped = toLong(std::move(shaped));
  const auto writeRows = [&](Sink& sink) {
    write(std::move(shaped), sink, {.format = options.format, .unitRow = options.unitRow});
  };
  return writeAnswer(writeRows, {.file = options.file, .replace = options.replace}, inputs, console);
}

ExitStatus writeAnswer(const std::function<void(Sink&)>& write, const OutputOptions& options,
                       std::span<const std::string> inputs, Console& console) {
  Output output(options, console.out(), inputs);
  write(output.sink());
  console.progress().hide();
  console.checkCancelled();
  output.commit();
  return console.doneStatus();
}

namespace {

/// Runs that are asked, and what could not be asked.
class AskedRuns {
 public:
  AskedRuns(Console& console, bool several) : console_(console), several_(several) {}

  /// Does what concerns one run. Where several are asked, one that fails is reported and left out.
  template <class Work>
  void attempt(Work work) {
    try {
      work();
    } catch (const Error& error) {
      const bool ofTheRun = error.kind() != Error::Kind::Cancelled && error.kind() != Error::Kind::Memory;
      if (!several_ || !ofTheRun) throw;
      if (!first_) first_ = error;
      failed_.push_back(error.diagnosis());
    }
  }
  /// Reports the failures; throws the first if there is nothing else.
  void report(bool anyAnswer) const {
    if (!anyAnswer && first_) throw Error(*first_);
    for (const Diagnosis& failure : failed_) console_.tell(failure);
  }

 private:
  Console& console_;
  bool several_;
  std::optional<Error> first_;
  std::vector<Diagnosis> failed_;
};

std::vector<std::string> pathsOf(const RunOptions& runs) {
  if (!runs.each) return runs.paths;
  std::vector<std::string> all;
  for (const std::string& path : runs.paths) {
    const auto found = Run::find(path);
    if (found.empty()) all.push_back(path);  // its opening tells why
    all.insert(all.end(), found.begin(), found.end());
  }
  return all;
}

}  // namespace

ExitStatus answer(const RunOptions& options, const OutputOptions& output, Console& console,
                  const Question& ask) {
  const auto paths = pathsOf(options);
  const bool several = paths.size() > 1;
  AskedRuns asked(console, several);
  std::vector<Run> runs;
  for (const std::string& path : paths) asked.attempt([&] { runs.push_back(Run::open(path)); });
  const auto names = distinctNames(runs);
  std::vector<NamedStream> answers;
  std::vector<std::string> inputs;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    asked.attempt([&] {
      answers.push_back({names[i], convertUnits(ask(runs[i], asking(console)), output.units)});
      const auto files = runs[i].paths();
      inputs.insert(inputs.end(), files.begin(), files.end());
    });
  }
  asked.report(!answers.empty());
  const bool namesRun = several || options.each || (output.longForm && options.namedInLongForm);
  if (!namesRun) return writeAnswer(std::move(answers.front().stream), output, inputs, console);
  return writeAnswer(joinRuns(std::move(answers)), output, inputs, console);
}

ExitStatus answers(const RunOptions& runs, const OutputOptions& options, Console& console,
                   std::span<const Question> questions) {
  if (runs.paths.size() > 1 || runs.each || options.longForm)
    throw Failure(Usage, "several tables cannot be joined: choose one of them, or csv");
  const Run run = Run::open(runs.paths.front());
  std::vector<Stream> all;
  for (const Question& ask : questions) all.push_back(convertUnits(ask(run, asking(console)), options.units));
  const auto writeAll = [&](Sink& sink) {
    for (Stream& table : all) {
      if (&table != all.data()) sink.write(std::as_bytes(std::span("\n", 1)));
      write(std::move(table), sink, {.format = options.format, .unitRow = options.unitRow});
    }
  };
  OutputOptions written = options;
  written.units = Units::File;  // they have been converted
  return writeAnswer(writeAll, written, run.paths(), console);
}

}  // namespace lumbarn::cli
