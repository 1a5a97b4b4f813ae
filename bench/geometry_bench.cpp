// Convex hull, points in a polygon, area and search for self-intersections beside Boost.Geometry.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <memory>
#include <numbers>
#include <vector>

#include "bench/peers_geometry.h"
#include "bench/rivals.h"
#include "zel/analysis/polygons.h"

namespace zel::bench {
namespace {

using Points = std::vector<TPointDouble>;
using Shape = Points (*)(std::size_t n);

Points cloud(std::size_t n) {
  const std::vector<double>& v = normalData(2 * n);
  Points points;
  for (std::size_t i = 0; i < n; ++i) points.push_back({v[2 * i], v[2 * i + 1]});
  return points;
}

/// Around (0, 0) at distances that the angle and the number of the point give.
template <class Radius>
Points around(std::size_t n, Radius&& radius) {
  Points points;
  for (std::size_t i = 0; i < n; ++i) {
    const double angle = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(n);
    const double r = radius(angle, i);
    points.push_back({r * std::cos(angle), r * std::sin(angle)});
  }
  return points;
}

Points circle(std::size_t n) {
  Points points = around(n, [](double, std::size_t) { return 1.0; });
  Points mixed;  // not in the order of the hull
  for (std::size_t i = 0; i < n; ++i) mixed.push_back(points[i * 7919 % n]);
  return mixed;
}

/// Radii between 0.6 and 1 at random.
Points star(std::size_t n) {
  const std::vector<double>& v = normalData(n);
  return around(n, [&](double, std::size_t i) { return 0.8 + 0.2 * std::tanh(v[i] - 5); });
}

Points coast(std::size_t n) {
  return around(n, [](double a, std::size_t) {
    return 1 + 0.3 * std::sin(7 * a) + 0.01 * std::sin(311 * a);
  });
}

/// Every other vertex near the centre.
Points spikes(std::size_t n) {
  return around(n, [](double, std::size_t i) { return i % 2 == 0 ? 1 : 0.01; });
}

struct Contest {
  explicit Contest(Points p) : points(std::move(p)), boost(points) {}
  Points points;
  BoostPoints boost;
};

const Contest& contestOf(Shape shape, std::size_t n) {
  static std::map<Shape, std::map<std::size_t, std::unique_ptr<Contest>>> all;
  auto& contest = all[shape][n];
  if (contest == nullptr) contest = std::make_unique<Contest>(shape(n));
  return *contest;
}

void addHull(const char* kernel, Shape shape, std::size_t n) {
  const auto zel = [=] { return Convex2DHull(contestOf(shape, n).points); };
  const auto boost = [=] { return contestOf(shape, n).boost.hull(); };
  compete(kernel, n,
          [=] {
            Points ours = zel();
            const Points theirs = boost();
            const auto start = std::ranges::find(ours, theirs.front());
            std::rotate(ours.begin(), start, ours.end());
            return ours == theirs;
          },
          {{"Zel", [=] { keep(zel()[0].X); }}, {"Boost", [=] { keep(boost()[0].X); }}});
}

/// 1000 points, about half of them inside.
void addInside(const char* kernel, Shape shape, std::size_t n) {
  static const Points queries = [] {
    Points points = cloud(1000);
    for (TPointDouble& p : points) p = {(p.X - 5) * 0.35, (p.Y - 5) * 0.35};
    return points;
  }();
  const auto zel = [=](const TPointDouble& p) {
    return PointIsInsidePolygon(p.X, p.Y, contestOf(shape, n).points);
  };
  const auto boost = [=](const TPointDouble& p) { return contestOf(shape, n).boost.isInside(p); };
  const auto run = [](const auto& isInside) {
    return [=] { keep(static_cast<double>(std::ranges::count_if(queries, isInside))); };
  };
  compete(kernel, n,
          [=] { return std::ranges::all_of(queries, [&](auto p) { return zel(p) == boost(p); }); },
          {{"Zel", run(zel)}, {"Boost", run(boost)}});
}

void addArea(std::size_t n) {
  const auto zel = [=] { return PolygonArea(contestOf(coast, n).points); };
  const auto boost = [=] { return contestOf(coast, n).boost.area(); };
  compete("polygon area", n, [=] { return std::abs(zel() / boost() - 1) < 1e-11; },
          {{"Zel", [=] { keep(zel()); }}, {"Boost", [=] { keep(boost()); }}});
}

/// Of polygons without any, where nothing ends the search early.
void addIntersections(const char* kernel, Shape shape, std::size_t n) {
  const auto zel = [=] {
    int count = 1;
    keep(PolygonArea(contestOf(shape, n).points, count));
    return count;
  };
  const auto boost = [=] {
    keep(contestOf(shape, n).boost.area());
    return contestOf(shape, n).boost.intersectsItself();
  };
  const Rival ours{"Zel", [=] { keep(zel()); }};
  // Boost's time grows with the square of the number of spikes.
  if (shape == spikes && n > 1000) {
    compete(kernel, n, [=] { return zel() == 0; }, {ours});
  } else {
    compete(kernel, n, [=] { return zel() == 0 && !boost(); },
            {ours, {"Boost", [=] { keep(boost()); }}});
  }
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const std::size_t n : {1000u, 100000u}) {
    addHull("convex hull, normal cloud", cloud, n);
    addHull("convex hull, circle", circle, n);
  }
  addInside("1000 points in a polygon", star, 1000);
  for (const std::size_t n : {1000u, 10000u, 100000u}) {
    addArea(n);
    addIntersections("polygon intersections, coast", coast, n);
    addIntersections("polygon intersections, spikes", spikes, n);
  }
  return true;
}();

}  // namespace
}  // namespace zel::bench
