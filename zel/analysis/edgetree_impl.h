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

  /// Numbers of edges from first to before last.
  struct Range {
    std::size_t first, last;
    [[nodiscard]] std::size_t size() const { return last - first; }
  };

  /// Calls use(a, b) for ranges such that every pair of edges with a common point has one edge in a
  /// and one in b, or both in a range a that comes as use(a, a); each pair comes once. Stops when
  /// use returns false.
  /// @return whether it came to the end
  template <class Use>
  bool forEachNearBlock(Use&& use) const {
    return FNodes.empty() || within(0, use);
  }

 private:
  struct Node {
    Range edges;
    std::size_t right;  // the left half comes next; 0 for none
    std::array<TPointDouble, 4> corners;
    struct Side {
      double a, b, c;  // a x + b y <= c for all points
    };
    std::array<Side, 4> sides;
  };

  std::size_t build(Range edges);
  void enclose(Node& node) const;
  [[nodiscard]] static bool isBeyondSide(const Node& a, const Node& b);

  template <class Use>
  bool within(std::size_t k, Use& use) const {
    const Node& node = FNodes[k];
    if (node.right == 0) return use(node.edges, node.edges);
    return within(k + 1, use) && within(node.right, use) && between(k + 1, node.right, use);
  }

  template <class Use>
  bool between(std::size_t k, std::size_t l, Use& use) const {
    const Node& a = FNodes[k];
    const Node& b = FNodes[l];
    if (isBeyondSide(a, b) || isBeyondSide(b, a)) return true;
    if (b.right != 0 && (a.right == 0 || b.edges.size() > a.edges.size())) {
      return between(k, l + 1, use) && between(k, b.right, use);
    }
    if (a.right != 0) return between(k + 1, l, use) && between(a.right, l, use);
    return use(a.edges, b.edges);
  }

  std::vector<TPointDouble> FEnds;  // in a square from (-1, -1) to (1, 1)
  std::vector<Node> FNodes;
};

}  // namespace zel
