#include "Window.h"

#include <algorithm>
#include <utility>

#include "../support/Session.h"

namespace lumbarn {

namespace {

/// Enough for the headers and the few words around a report step; small enough that skipping stays cheap.
constexpr std::size_t leastFetch = 256;

/// A full block of numbers with its marks: one that lies across the end of a fetch is whole in the next.
constexpr std::size_t overlap = 8192;

}  // namespace

std::span<const std::byte> Window::fetch(std::uint64_t position, std::size_t needed, std::uint64_t wanted) {
  if (session_ && session_->cancelled()) throw LoadCanceled();
  std::swap(last_, before_);
  if (last_.has(position, needed)) return last_.from(position);
  if (last_.number > before_.number) std::swap(last_, before_);  // an access to the older one swapped them
  last_.number = before_.number + 1;
  if (!last_.bytes) last_.bytes.reset(new std::byte[capacity]);
  const auto share = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, capacity));
  const std::size_t useful = ahead_ ? capacity : wanted == 0 ? leastFetch : share;
  const std::size_t size = std::min(capacity, std::max(needed, useful));
  // The end of a record is looked at before its data. So that these need no fetch of their own, a file that
  // is read in order is taken up again a little before the end of the fetch before.
  const std::uint64_t end = before_.start + before_.length;
  const bool follows = ahead_ && position >= end && position - end + needed <= capacity / 2;
  last_.length = 0;  // nothing is at hand when reading throws
  last_.start = follows ? end - std::min(before_.length, overlap) : position;
  last_.length = source_->readAt(last_.start, {last_.bytes.get(), size});
  return last_.from(position);
}

}  // namespace lumbarn
