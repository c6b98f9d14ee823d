#include "ByteSource.h"

#include <algorithm>
#include <cstring>

namespace lumbarn {

std::unique_ptr<FileSource> FileSource::open(const std::string& path, std::string& error) {
  InputFile file(path, error);
  if (!file.isOpen()) return nullptr;
  return std::unique_ptr<FileSource>(new FileSource(std::move(file)));
}

std::size_t FileSource::readAt(std::uint64_t position, std::span<std::byte> out) const {
  if (position >= size_) return 0;
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), size_ - position));
  return file_.readAt(position, out.first(wanted));
}

std::size_t MemorySource::readAt(std::uint64_t position, std::span<std::byte> out) const {
  if (position >= bytes_.size()) return 0;
  const auto count = std::min<std::size_t>(out.size(), bytes_.size() - static_cast<std::size_t>(position));
  std::memcpy(out.data(), bytes_.data() + position, count);
  return count;
}

}  // namespace lumbarn
