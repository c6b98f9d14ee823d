#include "Output.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "Failure.h"
#include "run/Facts.h"

namespace lumbarn::cli {

namespace fs = std::filesystem;

namespace {

fs::path toPath(const std::string& name) { return fs::path(std::u8string(name.begin(), name.end())); }

class StandardSink final : public Sink {
 public:
  explicit StandardSink(std::ostream& out) : out_(out) {}
  void write(std::span<const std::byte> bytes) override {
    errno = 0;
    out_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    check();
  }
  void flush() override {
    errno = 0;
    out_.flush();
    check();
  }

 private:
  void check() const {
    if (out_) return;
    const std::string why = errno != 0 ? ": " + std::generic_category().message(errno) : "";
    throw Failure(Unreadable, "standard output cannot be written" + why);
  }

  std::ostream& out_;
};

}  // namespace

void checkTarget(const std::string& file, std::span<const std::string> inputs, bool replace) {
  const fs::path target = toPath(file);
  std::error_code unknown;
  if (!fs::exists(target, unknown)) return;
  for (const std::string& input : inputs) {
    if (fs::equivalent(toPath(input), target, unknown))
      throw Failure(Usage, input + ": is an input, not replaced");
  }
  if (replace || !fs::is_regular_file(target, unknown)) return;
  if (const auto type = typeOfInput(file))
    throw Failure(Usage, fmt::format("{}: is a {} file, not replaced without --replace", file, *type));
}

Output::Output(const OutputOptions& options, std::ostream& standard, std::span<const std::string> inputs) {
  if (options.units != Units::File || options.longForm || options.unitRow ||
      options.format == Format::ArrowFile) {
    throw Failure(Usage,
                  "this answer is no table: --units, --long, --unit-row and --format arrow do not apply");
  }
  if (options.file.empty()) {
    sink_ = std::make_unique<StandardSink>(standard);
    return;
  }
  checkTarget(options.file, inputs, options.replace);
  auto file = std::make_unique<FileSink>(options.file);
  file_ = file.get();
  sink_ = std::move(file);
}

void Output::write(std::string_view text) { sink_->write(std::as_bytes(std::span(text))); }

void Output::commit() {
  sink_->flush();
  if (file_) file_->commit();
}

}  // namespace lumbarn::cli
