#include "ByteSource.h"

#include <algorithm>
#include <cstring>

#include <fmt/format.h>

#include "../support/Session.h"

namespace lumbarn {

namespace {

std::optional<Diagnosis> changeReport(const FileStamp& before, const FileStamp& now,
                                      const std::string& path) {
  Diagnosis report{.message = Message::FileChanged, .path = path};
  switch (changeBetween(before, now)) {
    case FileChange::None:
      return std::nullopt;
    case FileChange::Replaced:
      report.found = "another file of that name";
      break;
    case FileChange::Shrunk:
      report.offset = now.size;
      report.expected = fmt::format("{} bytes", before.size);
      report.found = fmt::format("{}", now.size);
      break;
    case FileChange::Rewritten:
      report.found = "another modification time";
      break;
  }
  return report;
}

}  // namespace

ByteSource::~ByteSource() = default;

std::size_t ByteSource::readAt(std::uint64_t position, std::span<std::byte> out) const {
  const std::uint64_t end = size();
  const std::uint64_t left = end - std::min(end, position);
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), left));
  if (wanted == 0) return 0;
  std::string why = "it ends early";
  const std::size_t copied = transfer(position, out.first(wanted), why);
  if (copied == wanted) return wanted;
  throw BadRecord({.message = Message::FileRead,
                   .path = path(),
                   .problem = "cannot be read: " + why,
                   .offset = position + copied,
                   .expected = fmt::format("{} bytes", wanted),
                   .found = fmt::format("{}", copied)});
}

std::unique_ptr<const ByteSource> FileSource::open(const std::string& path, std::string& error) {
  InputFile file(path, error);
  if (!file.isOpen()) return nullptr;
  const FileStamp stamp = file.openingStamp();
  std::unique_ptr<const ByteSource> source(new FileSource(std::move(file), path, stamp));
  const auto& wrap = Session::process().wrapSource;
  return wrap ? wrap(std::move(source)) : std::move(source);
}

std::optional<Diagnosis> FileSource::changed() const {
  if (const auto now = file_.stamp()) {
    if (auto report = changeReport(stamp_, *now, path_)) return report;
  }
  return changedSince(stamp_, path_);
}

std::size_t FileSource::transfer(std::uint64_t position, std::span<std::byte> out, std::string& why) const {
  return file_.readAt(position, out, why);
}

std::optional<Diagnosis> changedSince(const FileStamp& before, const std::string& path) {
  const auto now = stampOf(path);  // none: a file that was removed is still complete behind an open handle
  return now ? changeReport(before, *now, path) : std::nullopt;
}

std::size_t MemorySource::transfer(std::uint64_t position, std::span<std::byte> out, std::string&) const {
  std::memcpy(out.data(), bytes_.data() + position, out.size());
  return out.size();
}

}  // namespace lumbarn
