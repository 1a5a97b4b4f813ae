// Self-intersections of polygons.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "zel/analysis/edgetree_impl.h"
#include "zel/analysis/polygons.h"
#include "zel/kernels/orientation.h"

namespace zel {

namespace {

using kernels::orientation;

/// From the lower left to the upper right.
struct Edge {
  TPointDouble p, q;
  Edge(TPointDouble a, TPointDouble b) : p(a), q(b) {
    if (b.X < a.X || (b.X == a.X && b.Y < a.Y)) std::swap(p, q);
  }
  [[nodiscard]] bool isPoint() const { return p == q; }
};

/// Order of the lines that edges lie on: by direction, then from right to left.
int compareLines(const Edge& a, const Edge& b) {
  const int direction = kernels::signOfTurn(a.p, a.q, b.p, b.q);
  return direction != 0 ? -direction : -orientation(a.p, a.q, b.p);
}

/// Whether edges meet without lying on one line.
bool cross(const Edge& a, const Edge& b) {
  const int p = orientation(a.p, a.q, b.p);
  const int q = orientation(a.p, a.q, b.q);
  if (p * q > 0 || (p == 0 && q == 0)) return false;
  return orientation(b.p, b.q, a.p) * orientation(b.p, b.q, a.q) <= 0;
}

/// Sorts for a sweep along x.
/// @return number of pairs that overlap there
std::int64_t sortForSweep(std::vector<Edge>& edges) {
  const auto start = [](const Edge& e) { return e.p.X; };
  std::ranges::sort(edges, {}, start);
  std::int64_t count = 0;
  for (auto e = edges.begin(); e != edges.end(); ++e) {
    const auto end = std::ranges::upper_bound(e + 1, edges.end(), e->q.X, {}, start);
    count += end - (e + 1);
  }
  return count;
}

/// Crossing pairs of sorted edges.
std::int64_t sweep(const std::vector<Edge>& edges) {
  std::int64_t count = 0;
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const Edge& a = edges[i];
    const auto [low, high] = std::minmax(a.p.Y, a.q.Y);
    for (std::size_t j = i + 1; j < edges.size() && edges[j].p.X <= a.q.X; ++j) {
      const Edge& b = edges[j];
      if (std::max(b.p.Y, b.q.Y) < low || std::min(b.p.Y, b.q.Y) > high) continue;
      count += cross(a, b);
    }
  }
  return count;
}

/// Crossing pairs of edges in the order of the polygon.
std::int64_t crossings(const std::vector<Edge>& edges) {
  // With so many pairs per edge a sweep is cheaper than a tree, and a pair of the sweep costs less.
  constexpr std::int64_t kFew = 100;
  constexpr std::int64_t kGain = 2;
  const std::int64_t few = kFew * static_cast<std::int64_t>(edges.size());
  std::vector<Edge> sorted = edges;
  std::int64_t least = sortForSweep(sorted);
  if (least <= few) return sweep(sorted);
  std::vector<TPointDouble> ends;
  std::vector<Edge> turned;
  for (const Edge& e : edges) {
    ends.insert(ends.end(), {e.p, e.q});
    turned.emplace_back(TPointDouble{e.p.Y, e.p.X}, TPointDouble{e.q.Y, e.q.X});
  }
  const std::int64_t alongY = sortForSweep(turned);
  if (alongY < least) {
    least = alongY;
    sorted = std::move(turned);
  }
  if (least <= few) return sweep(sorted);
  const EdgeTree tree(ends);
  std::int64_t room = least / kGain;
  const auto isWorthIt = [&room](EdgeTree::Range a, EdgeTree::Range b) {
    room -= static_cast<std::int64_t>(a.size() * b.size());
    return room >= 0;
  };
  if (!tree.forEachNearBlock(isWorthIt)) return sweep(sorted);
  std::int64_t count = 0;
  tree.forEachNearBlock([&](EdgeTree::Range a, EdgeTree::Range b) {
    const bool isSame = a.first == b.first;
    for (std::size_t i = a.first; i < a.last; ++i) {
      for (std::size_t j = isSame ? i + 1 : b.first; j < b.last; ++j) {
        count += cross(edges[i], edges[j]);
      }
    }
    return true;
  });
  return count;
}

std::int64_t pairsOf(std::size_t n) {
  const auto count = static_cast<std::int64_t>(n);
  return count * (count - 1) / 2;
}

/// Pairs of edges on a common line, and of edges without length with the lines they lie on.
std::int64_t collinearPairs(std::vector<Edge>& edges, const std::vector<TPointDouble>& points) {
  std::ranges::sort(edges, [](const Edge& a, const Edge& b) { return compareLines(a, b) < 0; });
  std::int64_t count = pairsOf(points.size());
  for (std::size_t first = 0; first < edges.size();) {
    std::size_t last = first + 1;
    while (last < edges.size() && compareLines(edges[first], edges[last]) == 0) ++last;
    count += pairsOf(last - first);
    for (const TPointDouble& point : points) {
      if (orientation(edges[first].p, edges[first].q, point) == 0) {
        count += static_cast<std::int64_t>(last - first);
      }
    }
    first = last;
  }
  return count;
}

bool isFinite(TPointDouble p) { return std::isfinite(p.X) && std::isfinite(p.Y); }

}  // namespace

double PolygonArea(std::span<const TPointDouble> Poly, int& NumIntersect) {
  std::vector<Edge> edges;
  std::vector<TPointDouble> points;  // edges without length
  edges.reserve(Poly.size());
  for (std::size_t i = 0; i < Poly.size(); ++i) {
    const Edge edge(Poly[i == 0 ? Poly.size() - 1 : i - 1], Poly[i]);
    if (!isFinite(edge.p) || !isFinite(edge.q)) continue;
    if (edge.isPoint()) {
      points.push_back(edge.p);
      continue;
    }
    edges.push_back(edge);
  }
  const std::int64_t count =
      crossings(edges) + collinearPairs(edges, points) - static_cast<std::int64_t>(Poly.size());
  NumIntersect = static_cast<int>(std::clamp<std::int64_t>(count, std::numeric_limits<int>::min(),
                                                           std::numeric_limits<int>::max()));
  return PolygonArea(Poly);
}

}  // namespace zel
