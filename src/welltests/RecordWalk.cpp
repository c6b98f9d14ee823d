#include "RecordWalk.h"

#include <algorithm>
#include <cstring>

namespace lumbarn {

namespace {

/// Fetches ahead, since the records of a test are far shorter than a transfer should be.
class ReadAhead final : public ByteSource {
 public:
  explicit ReadAhead(std::unique_ptr<const ByteSource> source) : source_(std::move(source)) {}
  std::uint64_t size() const override { return source_->size(); }

  std::size_t readAt(std::uint64_t position, std::span<std::byte> out) const override {
    if (out.size() > capacity / 2) return source_->readAt(position, out);
    const bool inside = position >= start_ && position - start_ <= length_;
    const std::size_t there = inside ? length_ - static_cast<std::size_t>(position - start_) : 0;
    if (there < out.size() && (!inside || start_ + length_ < source_->size())) fetch(position);
    const auto skip = static_cast<std::size_t>(position - start_);
    const std::size_t count = std::min(out.size(), length_ - skip);
    std::memcpy(out.data(), buffer_.get() + skip, count);
    return count;
  }

 private:
  static constexpr std::size_t capacity = std::size_t{64} << 10;

  void fetch(std::uint64_t position) const {
    if (!buffer_) buffer_.reset(new std::byte[capacity]);
    start_ = position;
    length_ = source_->readAt(position, {buffer_.get(), capacity});
  }

  std::unique_ptr<const ByteSource> source_;
  mutable std::unique_ptr<std::byte[]> buffer_;
  mutable std::uint64_t start_ = 0;
  mutable std::size_t length_ = 0;
};

}  // namespace

bool RecordWalk::skipToTest() {
  for (; more(); ahead_ = false) {
    if (header().is("TIME", ElementType::Single)) return true;
  }
  return false;
}

std::unique_ptr<RecordWalk> openWalk(const std::string& path, const Form& form, std::string& why) {
  std::unique_ptr<const ByteSource> file = FileSource::open(path, why);
  if (!file) return nullptr;
  return std::make_unique<RecordWalk>(RecordCursor(std::make_shared<ReadAhead>(std::move(file)), form, path));
}

std::unique_ptr<RecordWalk> openWalk(const std::string& path, std::string& why) {
  const auto file = FileSource::open(path, why);
  if (!file) return nullptr;
  const auto detected = detectForm(*file);
  if (!detected) {
    why = file->size() == 0 ? "file is empty" : "is no record file";
    return nullptr;
  }
  return openWalk(path, detected->form, why);
}

}  // namespace lumbarn
