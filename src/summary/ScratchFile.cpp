#include "ScratchFile.h"

#include <filesystem>
#include <utility>

#include "../support/Fault.h"

namespace lumbarn {

namespace {

[[noreturn]] void fail(const std::string& path, const std::string& why) {
  throw Fault(FaultNumber::PastEnd, "scratch file " + path + ": " + why);
}

}  // namespace

ScratchFile::ScratchFile(const std::string& prefix) : path_(makeTemporaryFile(prefix)) {
  std::string why = "cannot be made";
  if (!path_.empty()) out_ = OutputFile(path_, why);
  if (!out_.isOpen()) fail(path_, why);
}

ScratchFile::~ScratchFile() {
  std::error_code ignored;
  if (!path_.empty()) std::filesystem::remove(path_, ignored);
}

void ScratchFile::put(std::span<const std::byte> bytes) {
  if (!out_.write(bytes)) fail(path_, "cannot be written");
}

void ScratchFile::write(std::span<const float> values) { put(std::as_bytes(values)); }
void ScratchFile::write(std::span<const std::int32_t> words) { put(std::as_bytes(words)); }

void ScratchFile::finish() {
  if (!out_.close()) fail(path_, "cannot be written");
}

void ScratchFile::read(std::span<float> values, std::uint64_t firstValue) const {
  std::string why;
  const InputFile in(path_, why);
  if (!in.isOpen()) fail(path_, why);
  const auto bytes = std::as_writable_bytes(values);
  if (in.readAt(firstValue * sizeof(float), bytes, why) != bytes.size()) fail(path_, "cannot be read back");
}

std::string ScratchFile::release() { return std::exchange(path_, {}); }

}  // namespace lumbarn
