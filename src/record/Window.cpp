#include "Window.h"

#include <algorithm>

namespace lumbarn {

namespace {

/// Enough for the headers and the few words around a report step; small enough that skipping stays cheap.
constexpr std::size_t leastFetch = 1024;

}  // namespace

std::span<const std::byte> Window::fetch(std::uint64_t position, std::size_t needed, std::uint64_t wanted) {
  if (!buffer_) buffer_.reset(new std::byte[capacity]);
  const auto share = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, capacity));
  const std::size_t size = std::min(capacity, std::max(needed, wanted == 0 ? leastFetch : share));
  start_ = position;
  length_ = source_->readAt(position, {buffer_.get(), size});
  return {buffer_.get(), length_};
}

}  // namespace lumbarn
