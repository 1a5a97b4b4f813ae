#include "zel/analysis/polygons.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "zel/base/Zel_univconst.h"
#include "zel/foundation/geometry.h"
#include "zel/kernels/orientation.h"

namespace zel {

namespace {

template <class Point>
int reduce(std::vector<Point>& poly) {
  poly.erase(std::unique(poly.begin(), poly.end()), poly.end());
  const auto isRedundant = [](const Point& before, const Point& here, const Point& after) {
    const double dx1 = static_cast<double>(here.X) - before.X;
    const double dy1 = static_cast<double>(here.Y) - before.Y;
    const double dx2 = static_cast<double>(after.X) - here.X;
    const double dy2 = static_cast<double>(after.Y) - here.Y;
    if (dx1 != 0 && dx2 != 0) return std::abs(dy1 / dx1 - dy2 / dx2) < 1e-10;
    return dx1 == 0 && dx2 == 0;
  };
  if (poly.size() > 2) {
    // All points are judged by their neighbours in the polygon before any is removed.
    Point before = poly[0];
    std::size_t kept = 1;
    for (std::size_t i = 1; i + 1 < poly.size(); ++i) {
      const Point here = poly[i];
      if (!isRedundant(before, here, poly[i + 1])) poly[kept++] = here;
      before = here;
    }
    poly[kept++] = poly.back();
    poly.resize(kept);
  }
  return static_cast<int>(poly.size());
}

/// Calls use(p, q) for the edges, the closing one first.
template <class Use>
void forEachEdge(std::span<const TPointDouble> poly, bool isClosed, Use&& use) {
  if (poly.empty()) return;
  if (isClosed) use(poly.back(), poly.front());
  for (std::size_t i = 1; i < poly.size(); ++i) use(poly[i - 1], poly[i]);
}

/// Factor of an edge in the product that tells inside from outside: -1 if a ray from q in the
/// direction of x crosses it, 0 if q lies on it, otherwise 1.
int crossing(TPointDouble q, TPointDouble b, TPointDouble c) {
  if (b.Y == q.Y && c.Y == q.Y) {
    return q.X >= std::min(b.X, c.X) && q.X <= std::max(b.X, c.X) ? 0 : 1;
  }
  if (b.Y > c.Y) std::swap(b, c);
  if (q == b) return 0;
  if (q.Y <= b.Y || q.Y > c.Y) return 1;
  return -kernels::orientation(q, b, c);
}

}  // namespace

int ReducePolygon(std::vector<TPointDouble>& Poly) { return reduce(Poly); }
int ReducePolygon(std::vector<TPoint>& Poly) { return reduce(Poly); }

bool PointIsInsidePolygon(double x, double y, std::span<const TPointDouble> Poly) {
  const TPointDouble q{x, y};
  if (Poly.empty()) return false;
  int t = -1;
  TPointDouble before = Poly.back();
  for (const TPointDouble& here : Poly) {
    // Most edges are wholly above or below.
    const bool isBeside = (before.Y < y && here.Y < y) || (before.Y > y && here.Y > y);
    if (!isBeside) t *= crossing(q, before, here);
    before = here;
  }
  return t == 1;
}

double PolygonArea(std::span<const TPointDouble> Poly) {
  // Heights above the first point: an offset of the polygon does not matter, and the edges that
  // meet there are short terms.
  const Extended base = Poly.empty() ? 0 : Poly[0].Y;
  Extended sum = 0;
  forEachEdge(Poly, true, [&](TPointDouble p, TPointDouble q) {
    sum += (Extended{p.X} - q.X) * ((p.Y - base) + (q.Y - base));
  });
  return static_cast<double>(sum / 2);
}

double PolygonLength(std::span<const TPointDouble> Poly, bool Closed) {
  Extended sum = 0;
  forEachEdge(Poly, Closed,
              [&](TPointDouble p, TPointDouble q) { sum += EuclideanDistance(p, q); });
  return static_cast<double>(sum);
}

void OuterRectOfPolygon(std::span<const TPointDouble> Poly, double& xLow, double& yLow,
                        double& xHigh, double& yHigh) {
  const TPointDouble first = Poly.empty() ? TPointDouble{} : Poly[0];
  xLow = xHigh = first.X;
  yLow = yHigh = first.Y;
  for (const TPointDouble& p : Poly) {
    xLow = std::min(xLow, p.X);
    yLow = std::min(yLow, p.Y);
    xHigh = std::max(xHigh, p.X);
    yHigh = std::max(yHigh, p.Y);
  }
}

int ConvertToDiffPolygon(std::span<const TPointDouble> Poly, std::vector<TPointDouble>& DiffPoly,
                         int RedMode) {
  constexpr int kMerge = 2;
  const auto direction = [](const TPointDouble& step) {
    return step.X == 0 ? 2147483647.0 : step.Y / step.X;
  };
  std::vector<TPointDouble> steps;
  steps.reserve(Poly.size());
  double before = 0;  // direction of the last step, which its sum with others may have lost
  forEachEdge(Poly, false, [&](TPointDouble p, TPointDouble q) {
    const TPointDouble step{q.X - p.X, q.Y - p.Y};
    if (RedMode > 0 && step == TPointDouble{}) return;
    const double last = std::exchange(before, direction(step));
    if (RedMode == kMerge && !steps.empty() && last == before) {
      steps.back().X += step.X;
      steps.back().Y += step.Y;
    } else {
      steps.push_back(step);
    }
  });
  DiffPoly = std::move(steps);
  return static_cast<int>(DiffPoly.size());
}

int ConvertFromDiffPolygon(const TPointDouble& StartPt, std::span<const TPointDouble> DiffPoly,
                           std::vector<TPointDouble>& Poly) {
  std::vector<TPointDouble> points{StartPt};
  points.reserve(DiffPoly.size() + 1);
  for (const TPointDouble& step : DiffPoly) {
    const TPointDouble& last = points.back();
    points.push_back({last.X + step.X, last.Y + step.Y});
  }
  Poly = std::move(points);
  return static_cast<int>(Poly.size());
}

double DistanceToPolygon(const TPointDouble& Pt, std::span<const TPointDouble> Poly, bool Closed) {
  double least = uc_MaxDouble;
  forEachEdge(Poly, Closed, [&](TPointDouble p, TPointDouble q) {
    const double distance = DistanceToSegment(Pt, p, q);
    if (distance < least) least = distance;
  });
  return least;
}

bool PointIsInsideConvexHull(double x, double y, std::span<const TPointDouble> Hull) {
  if (Hull.empty()) return false;
  TPointDouble vertex = Hull.back();
  for (const TPointDouble& next : Hull) {
    if (kernels::orientation(vertex, next, {x, y}) <= 0) return false;
    vertex = next;
  }
  return true;
}

double SphereGreatCircleDist(double Radius, double Lat1, double Long1, double Lat2, double Long2) {
  constexpr Extended kDegree = uc_pi / 180;
  const auto squaredSine = [](Extended angle) {
    const Extended s = std::sin(angle);
    return s * s;
  };
  const Extended a = squaredSine((Extended{Lat1} - Lat2) / 2 * kDegree) +
                     std::cos(Lat1 * kDegree) * std::cos(Lat2 * kDegree) *
                         squaredSine((Extended{Long1} - Long2) / 2 * kDegree);
  return static_cast<double>(2 * Radius *
                             std::atan2(std::sqrt(a), std::sqrt(std::max<Extended>(1 - a, 0))));
}

}  // namespace zel
