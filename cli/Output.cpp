#include "Output.h"

#include <cerrno>
#include <system_error>

#include <fmt/format.h>

#include "Failure.h"
#include "files/Recogniser.h"

namespace lumbarn::cli {

namespace fs = std::filesystem;

namespace {

fs::path toPath(const std::string& name) { return fs::path(std::u8string(name.begin(), name.end())); }

[[noreturn]] void cannotWrite(const fs::path& file, const std::string& why) {
  throw Failure(Unreadable, fmt::format("{}: cannot be written: {}", file.string(), why));
}
[[noreturn]] void cannotWrite(const BadRecord& failure) {
  throw Failure(Unreadable, failure.diagnosis().text());
}

}  // namespace

void checkTarget(const std::string& file, std::span<const std::string> inputs, bool replace) {
  const auto target = stampOf(file);
  if (!target) return;
  for (const std::string& input : inputs) {
    const auto stamp = stampOf(input);
    if (stamp && stamp->device == target->device && stamp->inode == target->inode)
      throw Failure(Usage, input + ": is an input, not replaced");
  }
  if (replace || !fs::is_regular_file(toPath(file))) return;
  const Recognised found = recogniseFile(file);
  const bool simulatorFile = found.form && (found.byContent || found.kind != FileKind::Unknown);
  if (simulatorFile || found.kind == FileKind::Deck) {
    throw Failure(Usage,
                  fmt::format("{}: is a {} file, not replaced without --replace", file, nameOf(found.kind)));
  }
}

bool FileBuffer::open(const std::string& path) {
  own_ = OutputFile(path, error_);
  file_ = &own_;
  return own_.isOpen();
}

bool FileBuffer::close() {
  sync();
  if (error_.empty() && !file_->close()) error_ = file_->error();
  return error_.empty();
}

FileBuffer::int_type FileBuffer::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char one = traits_type::to_char_type(c);
  return xsputn(&one, 1) == 1 ? c : traits_type::eof();
}

std::streamsize FileBuffer::xsputn(const char* text, std::streamsize count) {
  constexpr std::size_t heldBytes = std::size_t{64} << 10;
  pending_.append(text, static_cast<std::size_t>(count));
  return pending_.size() < heldBytes || sync() == 0 ? count : 0;
}

int FileBuffer::sync() {
  const bool written = put(pending_);
  pending_.clear();
  return written ? 0 : -1;
}

bool FileBuffer::put(std::string_view bytes) {
  if (!error_.empty()) return false;
  if (!bytes.empty() && !file_->write(std::as_bytes(std::span(bytes)))) error_ = file_->error();
  return error_.empty();
}

Output::Output(const OutputOptions& options, std::ostream& standard, std::span<const std::string> inputs)
    : standard_(standard) {
  if (options.units != Units::File || options.longForm || options.unitRow ||
      options.format == Format::ArrowFile) {
    throw Failure(Usage,
                  "this answer is no table: --units, --long, --unit-row and --format arrow do not apply");
  }
  if (options.file.empty()) return;
  target_ = toPath(options.file);
  std::error_code unknown;
  const fs::path real = fs::weakly_canonical(target_, unknown);  // a link stays, what it points to is written
  if (!unknown) target_ = real;
  checkTarget(options.file, inputs, options.replace);
  const fs::file_status status = fs::status(target_, unknown);
  if (fs::is_directory(status)) throw Failure(Usage, target_.string() + ": is a folder");
  if (!fs::exists(status) || fs::is_regular_file(status)) {
    try {
      buffer_.attach(pending_.emplace(target_.string()).out());
    } catch (const BadRecord& failure) {
      cannotWrite(failure);
    }
  } else if (!buffer_.open(target_.string())) {  // a pipe or a device is written in place
    cannotWrite(target_, buffer_.error());
  }
}

void Output::commit() {
  if (target_.empty()) {
    errno = 0;
    stream().flush();
    if (standard_) return;
    const std::string why = errno != 0 ? ": " + std::generic_category().message(errno) : "";
    throw Failure(Unreadable, "standard output cannot be written" + why);
  }
  const bool written = pending_ ? buffer_.pubsync() == 0 : buffer_.close();
  if (!written) cannotWrite(target_, buffer_.error());
  if (!pending_) return;
  try {
    pending_->commit();
  } catch (const BadRecord& failure) {
    cannotWrite(failure);
  }
}

}  // namespace lumbarn::cli
