// Convex hull of points of the plane.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "zel/analysis/polygons.h"
#include "zel/base/Zel_univconst.h"
#include "zel/foundation/angles.h"
#include "zel/kernels/orientation.h"
#include "zel/kernels/sums.h"

namespace zel {

namespace {

using Points = std::vector<TPointDouble>;

bool isBefore(const TPointDouble& a, const TPointDouble& b) {
  return a.X < b.X || (a.X == b.X && a.Y < b.Y);
}

/// Those that are not strictly inside the polygon of the extreme points in eight directions.
Points outerPoints(std::span<const TPointDouble> points) {
  constexpr std::size_t kDirections = 8;
  constexpr std::array<TPointDouble, kDirections> kDirection{
      {{0, -1}, {1, -1}, {1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}}};
  std::array<TPointDouble, kDirections> extreme;
  std::array<double, kDirections> reach;
  reach.fill(-HUGE_VAL);
  for (const TPointDouble& p : points) {
    for (std::size_t k = 0; k < kDirections; ++k) {
      const double along = kDirection[k].X * p.X + kDirection[k].Y * p.Y;
      if (along > reach[k]) {
        reach[k] = along;
        extreme[k] = p;
      }
    }
  }
  // Strictly left of every edge, by the doubles' own rounding with room to spare.
  struct Line {
    double a, b, c;
  };
  std::array<Line, kDirections> lines;
  std::size_t count = 0;
  for (std::size_t k = 0; k < kDirections; ++k) {
    const TPointDouble& p = extreme[k];
    const TPointDouble& q = extreme[(k + 1) % kDirections];
    if (p == q) continue;
    const double a = p.Y - q.Y;
    const double b = q.X - p.X;
    const double size = std::abs(a) * (std::abs(p.X) + reach[2] + reach[6]) +
                        std::abs(b) * (std::abs(p.Y) + reach[0] + reach[4]);
    lines[count++] = {a, b,
                      a * p.X + b * p.Y + 1e-14 * std::abs(size) +
                          1e-14 * (std::abs(a * p.X) + std::abs(b * p.Y))};
  }
  Points outer;
  for (const TPointDouble& p : points) {
    bool isInside = count > 2;
    for (std::size_t k = 0; k < count && isInside; ++k) {
      isInside = lines[k].a * p.X + lines[k].b * p.Y > lines[k].c;
    }
    if (!isInside) outer.push_back(p);
  }
  return outer;
}

/// Appends the chain of points that turn counter-clockwise, but for the last of them.
template <class Iterator>
void appendChain(Iterator first, Iterator last, Points& hull) {
  const std::size_t base = hull.size();
  for (; first != last; ++first) {
    while (hull.size() >= base + 2 &&
           kernels::orientation(hull[hull.size() - 2], hull.back(), *first) <= 0) {
      hull.pop_back();
    }
    hull.push_back(*first);
  }
  hull.pop_back();
}

}  // namespace

Points Convex2DHull(std::span<const TPointDouble> Points) {
  constexpr std::size_t kFewest = 4;
  if (Points.size() < kFewest) return {Points.begin(), Points.end()};
  std::vector<TPointDouble> all(Points.begin(), Points.end());
  std::erase_if(all, [](const TPointDouble& p) { return !std::isfinite(p.X + p.Y); });
  std::vector<TPointDouble> outer = outerPoints(all);
  std::ranges::sort(outer, isBefore);
  outer.erase(std::unique(outer.begin(), outer.end()), outer.end());
  std::vector<TPointDouble> hull;
  if (outer.size() < 2) return outer;
  appendChain(outer.begin(), outer.end(), hull);
  appendChain(outer.rbegin(), outer.rend(), hull);
  Extended x = 0;
  Extended y = 0;
  for (const TPointDouble& p : all) {
    x += p.X;
    y += p.Y;
  }
  x /= static_cast<Extended>(all.size());
  y /= static_cast<Extended>(all.size());
  const auto key = [&](const TPointDouble& p) {
    const double angle = AngleToXAxis(static_cast<double>(p.X - x), static_cast<double>(p.Y - y)) +
                         static_cast<double>(uc_pi / 2);
    return angle > static_cast<double>(uc_2pi) ? angle - static_cast<double>(uc_2pi) : angle;
  };
  // min_element would work out two angles per step.
  auto first = hull.begin();
  double least = key(*first);
  for (auto p = first + 1; p != hull.end(); ++p) {
    const double angle = key(*p);
    if (angle < least) {
      least = angle;
      first = p;
    }
  }
  std::rotate(hull.begin(), first, hull.end());
  return hull;
}

}  // namespace zel
