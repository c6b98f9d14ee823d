#include "TextWindow.h"

#include <algorithm>
#include <span>
#include <utility>

namespace lumbarn {

namespace {

constexpr std::size_t transfer = std::size_t{256} << 10;

}  // namespace

TextWindow::TextWindow(std::shared_ptr<const ByteSource> source)
    : source_(std::move(source)), size_(source_->size()) {
  const std::string_view begin = from(0);
  if (begin.find('\n') == begin.npos && begin.find('\r') != begin.npos) lineEnd_ = '\r';
}

void TextWindow::fetch(std::uint64_t position, std::size_t room) {
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(room, size_ - position));
  if (buffer_.size() < wanted) buffer_ = std::vector<char>(wanted);
  start_ = position;
  length_ = 0;  // in case of a failure
  length_ = source_->readAt(position, std::as_writable_bytes(std::span(buffer_.data(), wanted)));
  if (length_ < wanted) size_ = position + length_;
}

std::string_view TextWindow::from(std::uint64_t position) {
  if (position >= size_) return {};
  if (position < start_ || position - start_ >= length_) fetch(position, transfer);
  const auto skip = static_cast<std::size_t>(position - start_);
  return {buffer_.data() + std::min(skip, length_), length_ - std::min(skip, length_)};
}

std::string_view TextWindow::line(std::uint64_t position) {
  std::string_view text = from(position);
  std::size_t end = text.find(lineEnd_);
  for (std::size_t room = transfer; end == text.npos && position + text.size() < size_; room *= 2) {
    fetch(position, room);
    text = {buffer_.data(), length_};
    end = text.find(lineEnd_);
  }
  return end == text.npos ? text : text.substr(0, end + 1);
}

void TextWindow::release() {
  buffer_ = {};
  length_ = 0;
}

}  // namespace lumbarn
