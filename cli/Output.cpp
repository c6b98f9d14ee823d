#include "Output.h"

#include <cerrno>
#include <random>
#include <system_error>

#include <fmt/format.h>

#include "Failure.h"

namespace lumbarn::cli {

namespace fs = std::filesystem;

namespace {

fs::path toPath(const std::string& name) { return fs::path(std::u8string(name.begin(), name.end())); }

/// A name beside the target that no file has.
fs::path temporaryBeside(const fs::path& target) {
  std::random_device random;
  while (true) {
    fs::path name = target.parent_path();
    name /= "." + target.filename().string() + fmt::format(".{:08x}.tmp", random());
    std::error_code unknown;
    if (!fs::exists(fs::symlink_status(name, unknown))) return name;
  }
}

[[noreturn]] void cannotWrite(const fs::path& file, const std::string& why) {
  throw Failure(Unreadable, fmt::format("{}: cannot be written: {}", file.string(), why));
}

}  // namespace

void refuseInputs(const std::string& file, std::span<const std::string> inputs) {
  std::error_code unknown;
  for (const std::string& input : inputs) {
    if (fs::equivalent(toPath(file), toPath(input), unknown))
      throw Failure(Usage, input + ": is an input, not replaced");
  }
}

Output::Output(const OutputOptions& options, std::ostream& standard, std::span<const std::string> inputs)
    : standard_(standard) {
  if (options.file.empty()) return;
  target_ = toPath(options.file);
  std::error_code unknown;
  const fs::path real = fs::weakly_canonical(target_, unknown);  // a link stays, what it points to is written
  if (!unknown) target_ = real;
  refuseInputs(options.file, inputs);
  const fs::file_status status = fs::status(target_, unknown);
  if (fs::is_directory(status)) throw Failure(Usage, target_.string() + ": is a folder");
  // A pipe or a device cannot be replaced by a file of that name.
  const bool inPlace = fs::exists(status) && !fs::is_regular_file(status);
  if (!inPlace) temporary_ = temporaryBeside(target_);
  errno = 0;
  file_.open(inPlace ? target_ : temporary_, std::ios::binary);
  if (!file_) {
    temporary_.clear();
    cannotWrite(target_, std::generic_category().message(errno));
  }
  if (!inPlace && fs::exists(status)) fs::permissions(temporary_, status.permissions(), unknown);
}

Output::~Output() {
  if (temporary_.empty()) return;
  file_.close();
  std::error_code unknown;
  fs::remove(temporary_, unknown);
}

void Output::commit() {
  stream().flush();
  if (target_.empty()) {
    if (!standard_) throw Failure(Unreadable, "standard output cannot be written");
    return;
  }
  errno = 0;
  file_.close();
  if (!file_) cannotWrite(target_, std::generic_category().message(errno));
  if (temporary_.empty()) return;
  std::error_code failure;
  fs::rename(temporary_, target_, failure);
  if (failure) cannotWrite(target_, failure.message());
  temporary_.clear();
}

}  // namespace lumbarn::cli
