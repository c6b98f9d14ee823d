#include "Answer.h"

#include <ostream>

namespace lumbarn::cli {
namespace {

class OutputSink final : public Sink {
 public:
  explicit OutputSink(std::ostream& out) : out_(out) {}
  void write(std::span<const std::byte> bytes) override {
    out_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!out_) throw Unwritable();
  }
  void flush() override { out_.flush(); }

  /// `Output::commit` tells the reason.
  struct Unwritable {};

 private:
  std::ostream& out_;
};

}  // namespace

ReadOptions asking(Console& console) {
  ReadOptions options;
  options.stopFlag = &console.session().CancelLoad;
  options.report = [&console](const Diagnosis& diagnosis) { console.tell(diagnosis); };
  options.progress = &console.progress();
  options.keepPartial = true;
  return options;
}

ExitStatus writeAnswer(Stream&& answer, const OutputOptions& options, std::span<const std::string> inputs,
                       Console& console) {
  const auto writeRows = [&](Sink& sink) {
    write(std::move(answer), sink, {.format = options.format, .unitRow = options.unitRow});
  };
  return writeAnswer(writeRows, options, inputs, console);
}

ExitStatus writeAnswer(const std::function<void(Sink&)>& write, const OutputOptions& options,
                       std::span<const std::string> inputs, Console& console) {
  Output output(options, console.out(), inputs);
  OutputSink sink(output.stream());
  try {
    write(sink);
  } catch (const OutputSink::Unwritable&) {  // the stream has the reason
  }
  console.progress().hide();
  console.checkCancelled();
  output.commit();
  return console.doneStatus();
}

ExitStatus answer(const RunOptions& runs, const OutputOptions& options, Console& console,
                  const Question& ask) {
  const Run run = Run::open(runs.paths.front());
  return writeAnswer(ask(run, asking(console)), options, run.files(), console);
}

ExitStatus answers(const RunOptions& runs, const OutputOptions& options, Console& console,
                   std::span<const Question> questions) {
  const Run run = Run::open(runs.paths.front());
  std::vector<Stream> all;
  for (const Question& ask : questions) all.push_back(ask(run, asking(console)));
  const auto writeAll = [&](Sink& sink) {
    for (Stream& table : all) {
      if (&table != all.data()) sink.write(std::as_bytes(std::span("\n", 1)));
      write(std::move(table), sink, {.format = options.format, .unitRow = options.unitRow});
    }
  };
  return writeAnswer(writeAll, options, run.files(), console);
}

}  // namespace lumbarn::cli
