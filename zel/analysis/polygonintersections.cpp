// Self-intersections of polygons.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <utility>
#include <vector>

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

/// Pairs of edges that meet without lying on one line, found by a sweep along x.
std::int64_t crossings(std::vector<Edge>& edges) {
  std::ranges::sort(edges, {}, [](const Edge& e) { return e.p.X; });
  std::int64_t count = 0;
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const Edge& a = edges[i];
    const auto [low, high] = std::minmax(a.p.Y, a.q.Y);
    for (std::size_t j = i + 1; j < edges.size() && edges[j].p.X <= a.q.X; ++j) {
      const Edge& b = edges[j];
      if (std::max(b.p.Y, b.q.Y) < low || std::min(b.p.Y, b.q.Y) > high) continue;
      const int p = orientation(a.p, a.q, b.p);
      const int q = orientation(a.p, a.q, b.q);
      if (p * q > 0 || (p == 0 && q == 0)) continue;
      count += orientation(b.p, b.q, a.p) * orientation(b.p, b.q, a.q) <= 0;
    }
  }
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
  double width = 0;
  double height = 0;
  for (std::size_t i = 0; i < Poly.size(); ++i) {
    const Edge edge(Poly[i == 0 ? Poly.size() - 1 : i - 1], Poly[i]);
    if (!isFinite(edge.p) || !isFinite(edge.q)) continue;
    if (edge.isPoint()) {
      points.push_back(edge.p);
      continue;
    }
    edges.push_back(edge);
    width += edge.q.X - edge.p.X;
    height += std::abs(edge.q.Y - edge.p.Y);
  }
  std::int64_t count = collinearPairs(edges, points) - static_cast<std::int64_t>(Poly.size());
  double xLow, yLow, xHigh, yHigh;
  OuterRectOfPolygon(Poly, xLow, yLow, xHigh, yHigh);
  // Along the axis that fewer edges share.
  if (width * (yHigh - yLow) > height * (xHigh - xLow)) {
    for (Edge& e : edges) e = Edge({e.p.Y, e.p.X}, {e.q.Y, e.q.X});
  }
  count += crossings(edges);
  NumIntersect = static_cast<int>(std::clamp<std::int64_t>(count, std::numeric_limits<int>::min(),
                                                           std::numeric_limits<int>::max()));
  return PolygonArea(Poly);
}

}  // namespace zel
