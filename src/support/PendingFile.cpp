#include "PendingFile.h"

#include <cstdio>
#include <random>
#include <system_error>

#include "Diagnosis.h"

namespace lumbarn {

namespace fs = std::filesystem;

namespace {

/// A hidden name beside the target. Random, so that others cannot put a link there beforehand.
fs::path temporaryName(const fs::path& target) {
  std::random_device random;
  char suffix[32];
  std::snprintf(suffix, sizeof suffix, ".%08x%08x.tmp", random(), random());
  return target.parent_path() / ("." + target.filename().string() + suffix);
}

}  // namespace

PendingFile::PendingFile(const std::string& target)
    : name_(target), target_(std::u8string(target.begin(), target.end())) {
  std::error_code unknown;
  const fs::path real = fs::weakly_canonical(target_, unknown);
  if (!unknown) target_ = real;
  const fs::file_status status = fs::status(target_, unknown);
  if (fs::is_directory(status)) fail("is a folder");
  if (fs::exists(status) && !fs::is_regular_file(status)) fail("is not a regular file");
  std::string error;
  const fs::path temporary = temporaryName(target_);
  out_ = OutputFile::createNew(temporary.string(), error);
  if (!out_.isOpen()) fail(error);
  temporary_ = temporary;
  if (fs::exists(status)) fs::permissions(temporary_, status.permissions(), unknown);
}

PendingFile::~PendingFile() {
  if (temporary_.empty()) return;
  out_.close();
  std::error_code ignored;
  fs::remove(temporary_, ignored);
}

void PendingFile::commit() {
  if (!out_.close()) fail();
  std::error_code failure;
  fs::rename(temporary_, target_, failure);
  if (failure) fail(failure.message());
  temporary_.clear();
}

void PendingFile::fail(const std::string& reason, std::optional<std::uint64_t> offset) const {
  throw BadRecord({.message = Message::FileWrite,
                   .path = name_,
                   .problem = "cannot be written: " + reason,
                   .offset = offset,
                   .action = "wrote nothing"});
}

}  // namespace lumbarn
