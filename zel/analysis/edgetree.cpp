#include <algorithm>
#include <cmath>

#include "zel/analysis/edgetree_impl.h"

namespace zel {

namespace {

constexpr std::size_t kMostInLeaf = 8;
/// Many times the rounding errors of sums of a few products of numbers up to 3.
constexpr double kRoom = 0x1p-43;

/// The line s -> height + slope s.
struct Limit {
  double slope = 0;
  double height = -HUGE_VAL;
};

/// A line above all points, by the highest ones of both halves; sign -1: above the mirrored points.
Limit limitOf(std::span<const TPointDouble> points, double middle, double sign) {
  std::array<TPointDouble, 2> highest{{{0, -HUGE_VAL}, {0, -HUGE_VAL}}};
  for (const TPointDouble& p : points) {
    TPointDouble& high = highest[p.X > middle ? 1 : 0];
    if (sign * p.Y > high.Y) high = {p.X, sign * p.Y};
  }
  Limit limit;
  const double slope = (highest[1].Y - highest[0].Y) / (highest[1].X - highest[0].X);
  if (std::abs(slope) <= 1) limit.slope = slope;
  for (const TPointDouble& p : points) {
    limit.height = std::max(limit.height, sign * p.Y - limit.slope * p.X);
  }
  return limit;
}

}  // namespace

EdgeTree::EdgeTree(std::span<const TPointDouble> ends) : FEnds(ends.begin(), ends.end()) {
  if (FEnds.empty()) return;
  for (double TPointDouble::*const axis : {&TPointDouble::X, &TPointDouble::Y}) {
    const auto [low, high] = std::ranges::minmax(FEnds, {}, axis);
    const Extended middle = (Extended{low.*axis} + high.*axis) / 2;
    const Extended half = (Extended{high.*axis} - low.*axis) / 2;
    for (TPointDouble& p : FEnds) {
      p.*axis = half > 0 ? static_cast<double>((p.*axis - middle) / half) : 0;
    }
  }
  build({0, FEnds.size() / 2});
}

std::size_t EdgeTree::build(Range edges) {
  const std::size_t k = FNodes.size();
  FNodes.push_back({edges, 0, {}, {}});
  enclose(FNodes[k]);
  if (edges.size() > kMostInLeaf) {
    const std::size_t middle = edges.first + edges.size() / 2;
    build({edges.first, middle});
    const std::size_t right = build({middle, edges.last});
    FNodes[k].right = right;
  }
  return k;
}

void EdgeTree::enclose(Node& node) const {
  std::vector<TPointDouble> points(
      FEnds.begin() + static_cast<std::ptrdiff_t>(2 * node.edges.first),
      FEnds.begin() + static_cast<std::ptrdiff_t>(2 * node.edges.last));
  TPointDouble centre{0, 0};
  for (const TPointDouble& p : points) centre = {centre.X + p.X, centre.Y + p.Y};
  const auto count = static_cast<double>(points.size());
  centre = {centre.X / count, centre.Y / count};
  double xx = 0, xy = 0, yy = 0;
  for (TPointDouble& p : points) {
    p = {p.X - centre.X, p.Y - centre.Y};
    xx += p.X * p.X;
    xy += p.X * p.Y;
    yy += p.Y * p.Y;
  }
  // s along the principal axis, t across.
  const double angle = std::atan2(2 * xy, xx - yy) / 2;
  const TPointDouble u{std::cos(angle), std::sin(angle)};
  for (TPointDouble& p : points) p = {p.X * u.X + p.Y * u.Y, p.Y * u.X - p.X * u.Y};
  const auto [low, high] = std::ranges::minmax(points, {}, &TPointDouble::X);
  const double middle = (low.X + high.X) / 2;
  const Limit upper = limitOf(points, middle, 1);
  const Limit lower = limitOf(points, middle, -1);
  const auto corner = [&](double s, const Limit& limit, double sign) {
    const double t = sign * (limit.height + limit.slope * s);
    return TPointDouble{centre.X + s * u.X - t * u.Y, centre.Y + s * u.Y + t * u.X};
  };
  node.corners = {corner(low.X, upper, 1), corner(high.X, upper, 1), corner(low.X, lower, -1),
                  corner(high.X, lower, -1)};
  const auto side = [&](double s, double t, double limit) {
    const double a = s * u.X - t * u.Y;
    const double b = s * u.Y + t * u.X;
    return Node::Side{a, b, limit + a * centre.X + b * centre.Y + kRoom};
  };
  node.sides = {side(1, 0, high.X), side(-1, 0, -low.X), side(-upper.slope, 1, upper.height),
                side(-lower.slope, -1, lower.height)};
}

bool EdgeTree::isBeyondSide(const Node& a, const Node& b) {
  return std::ranges::any_of(a.sides, [&b](const Node::Side& side) {
    return std::ranges::all_of(
        b.corners, [&side](const TPointDouble& p) { return side.a * p.X + side.b * p.Y > side.c; });
  });
}

}  // namespace zel
