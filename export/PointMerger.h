#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace lumbarn {

/// Numbers the points of a grid such that corners of different cells at the same place are one point, as
/// viewers need to tell the inside of a grid from its skin. Cells come in their order, I fastest and K
/// slowest, so corners that can be the same follow each other on their node (a pillar, or what stands for
/// one), and it is enough to know the last few points of each node: a pinched layer is bridged, and memory
/// goes with the number of nodes and not of cells. Points that are not numbers are never the same.
class PointMerger {
 public:
  explicit PointMerger(std::size_t nodes) : recent_(nodes) {}

  /// The number, from 0, of the point of a node.
  std::int64_t number(std::size_t node, const float* point);
  std::int64_t count() const { return count_; }
  /// The new points since the last call, x, y, z of each.
  std::vector<float> take();

 private:
  struct Known {
    std::array<float, 3> point;
    std::int64_t number;
  };
  // Eight cells meet at a node: four above and four below, that may all be apart at faults.
  static constexpr unsigned kept = 8;
  struct Recent {
    std::array<Known, kept> points;
    unsigned count = 0;  // ever met
  };

  std::vector<Recent> recent_;
  std::vector<float> fresh_;
  std::int64_t count_ = 0;
};

}  // namespace lumbarn
