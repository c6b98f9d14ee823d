#include "Window.h"

#include <algorithm>
#include <utility>

namespace lumbarn {

namespace {

/// Enough for the headers and the few words around a report step; small enough that skipping stays cheap.
constexpr std::size_t leastFetch = 256;

}  // namespace

std::span<const std::byte> Window::fetch(std::uint64_t position, std::size_t needed, std::uint64_t wanted) {
  std::swap(last_, before_);
  if (last_.has(position, needed)) return last_.from(position);
  if (!last_.bytes) last_.bytes.reset(new std::byte[capacity]);
  const auto share = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, capacity));
  const std::size_t useful = ahead_ ? capacity : wanted == 0 ? leastFetch : share;
  const std::size_t size = std::min(capacity, std::max(needed, useful));
  last_.start = position;
  last_.length = source_->readAt(position, {last_.bytes.get(), size});
  return last_.from(position);
}

}  // namespace lumbarn
