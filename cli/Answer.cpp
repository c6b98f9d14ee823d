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
  // Text is some three times as large as its numbers; that of larger batches is returned to the system and
  // taken from it again each time, a fifth of the processor time of a wide summary.
  options.limits.bytes = std::size_t{4} << 20;
  return options;
}

ExitStatus writeAnswer(Stream&& answer, const OutputOptions& options, std::span<const std::string> inputs,
                       Console& console) {
  Output output(options, console.out(), inputs);
  OutputSink sink(output.stream());
  try {
    write(std::move(answer), sink, {.format = options.format, .unitRow = options.unitRow});
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

}  // namespace lumbarn::cli
