/// @file
/// Pairs of edges of a polygon that may meet.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "zel/base/types.h"

namespace zel {

/// A tree over the edges in the order of the polygon: each node holds half of the edges of the one
/// above and a quadrilateral around them that follows their direction, so that long edges side by
/// side do not share theirs, in whatever direction they run.
///
/// Quadrilaterals are made of rounded numbers, with room for the rounding: what a comparison of two
/// of them excludes does not meet.
class EdgeTree {
 public:
  /// @param ends  first and second end of the edges, one after the other; all finite
  explicit EdgeTree(std::span<const TPointDouble> ends);

  /// Calls use(i, j), i < j, once for every pair of edges with a common point, and for some others.
  template <class Use>
  void forEachNearPair(Use&& use) const {
    if (!FNodes.empty()) within(0, use);
  }

 private:
  struct Node {
    std::size_t first, last;  // edges
    std::size_t right;        // the left half comes next; 0 for none
    std::array<TPointDouble, 4> corners;
    struct Side {
      double a, b, c;  // a x + b y <= c for all points
    };
    std::array<Side, 4> sides;
  };

  std::size_t build(std::size_t first, std::size_t last);
  void enclose(Node& node) const;
  [[nodiscard]] static bool isBeyondSide(const Node& a, const Node& b);

  template <class Use>
  void within(std::size_t k, Use& use) const {
    const Node& node = FNodes[k];
    if (node.right != 0) {
      within(k + 1, use);
      within(node.right, use);
      between(k + 1, node.right, use);
      return;
    }
    for (std::size_t j = node.first; j < node.last; ++j) {
      for (std::size_t i = node.first; i < j; ++i) use(i, j);
    }
  }

  template <class Use>
  void between(std::size_t k, std::size_t l, Use& use) const {
    const Node& a = FNodes[k];
    const Node& b = FNodes[l];
    if (isBeyondSide(a, b) || isBeyondSide(b, a)) return;
    if (b.right != 0 && (a.right == 0 || b.last - b.first > a.last - a.first)) {
      between(k, l + 1, use);
      between(k, b.right, use);
    } else if (a.right != 0) {
      between(k + 1, l, use);
      between(a.right, l, use);
    } else {
      for (std::size_t i = a.first; i < a.last; ++i) {
        for (std::size_t j = b.first; j < b.last; ++j) use(i, j);
      }
    }
  }

  std::vector<TPointDouble> FEnds;  // in a square from (-1, -1) to (1, 1)
  std::vector<Node> FNodes;
};

}  // namespace zel
