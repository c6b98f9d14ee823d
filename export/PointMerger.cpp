#include "PointMerger.h"

#include <algorithm>
#include <utility>

namespace lumbarn {

std::int64_t PointMerger::number(std::size_t node, const float* point) {
  Recent& recent = recent_[node];
  const unsigned known = std::min(recent.count, kept);
  for (unsigned i = 1; i <= known; ++i) {
    const Known& candidate = recent.points[(recent.count - i) % kept];
    if (std::equal(point, point + 3, candidate.point.begin())) return candidate.number;
  }
  recent.points[recent.count++ % kept] = {{point[0], point[1], point[2]}, count_};
  fresh_.insert(fresh_.end(), point, point + 3);
  return count_++;
}

std::vector<float> PointMerger::take() { return std::exchange(fresh_, {}); }

}  // namespace lumbarn
