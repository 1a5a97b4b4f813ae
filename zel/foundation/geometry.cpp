#include "zel/foundation/geometry.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "zel/base/rounding.h"
#include "zel/kernels/orientation.h"

namespace zel {

namespace {

Extended length(Extended x, Extended y) { return std::sqrt(x * x + y * y); }

int limited(std::int64_t value) {
  return static_cast<int>(std::min<std::int64_t>(value, std::numeric_limits<int>::max()));
}

TRectDouble inOrder(TRectDouble r) {
  return {std::min(r.X1, r.X2), std::min(r.Y1, r.Y2), std::max(r.X1, r.X2), std::max(r.Y1, r.Y2)};
}

/// Nearest point of an ellipse with the semi-axes e0 >= e1 > 0 for a point of the first quadrant
/// with y > 0 and x > 0.
TPointDouble nearestInQuadrant(double e0, double e1, TPointDouble q) {
  constexpr int kMostSteps = 1075;
  const double z0 = q.X / e0;
  const double z1 = q.Y / e1;
  const double g = z0 * z0 + z1 * z1 - 1;
  if (g == 0) return q;
  const double r0 = (e0 / e1) * (e0 / e1);
  const double n0 = r0 * z0;
  double s0 = z1 - 1;
  double s1 = g < 0 ? 0 : static_cast<double>(length(n0, z1) - 1);
  double s = s0;
  for (int k = 0; k < kMostSteps; ++k) {
    s = (s0 + s1) / 2;
    if (s == s0 || s == s1) break;
    const double a = n0 / (s + r0);
    const double b = z1 / (s + 1);
    const double f = a * a + b * b - 1;
    if (f > 0) {
      s0 = s;
    } else if (f < 0) {
      s1 = s;
    } else {
      break;
    }
  }
  return {r0 * q.X / (s + r0), q.Y / (s + 1)};
}

/// The same for any point of the first quadrant and e0 >= e1 >= 0.
TPointDouble nearestPoint(double e0, double e1, TPointDouble q) {
  // So flat, or so small, that its height does not show.
  constexpr double kFlat = 1e150;
  if (e0 / kFlat >= e1 || q.Y / kFlat >= e1) return {std::min(q.X, e0), 0};
  if (q.Y > 0) return q.X > 0 ? nearestInQuadrant(e0, e1, q) : TPointDouble{0, e1};
  const double numerator = e0 * q.X;
  const double denominator = e0 * e0 - e1 * e1;
  if (!(numerator < denominator)) return {e0, 0};
  const double x = numerator / denominator;
  return {e0 * x, e1 * std::sqrt(1 - x * x)};
}

}  // namespace

double EuclideanDistance(double x1, double y1, double x2, double y2) {
  return static_cast<double>(length(Extended{x1} - x2, Extended{y1} - y2));
}

int CcwTriangle(TPointDouble P1, TPointDouble P2, TPointDouble P3) {
  return kernels::orientation(P1, P2, P3);
}

bool SegmentsIntersect(TPointDouble P1, TPointDouble P2, TPointDouble Q1, TPointDouble Q2) {
  Extended sum = 0;  // of finite numbers it cannot overflow
  for (const TPointDouble& p : {P1, P2, Q1, Q2}) sum += Extended{p.X} + p.Y;
  if (!std::isfinite(sum)) return false;
  return kernels::orientation(P1, P2, Q1) * kernels::orientation(P1, P2, Q2) <= 0 &&
         kernels::orientation(Q1, Q2, P1) * kernels::orientation(Q1, Q2, P2) <= 0;
}

double DistanceToSegment(TPointDouble P, TPointDouble A, TPointDouble B) {
  const Extended dx = Extended{B.X} - A.X;
  const Extended dy = Extended{B.Y} - A.Y;
  const Extended px = Extended{P.X} - A.X;
  const Extended py = Extended{P.Y} - A.Y;
  const Extended square = dx * dx + dy * dy;
  const Extended t = square == 0 ? -1 : (px * dx + py * dy) / square;
  if (t < 0) return static_cast<double>(length(px, py));
  if (t > 1) return EuclideanDistance(P, B);
  return static_cast<double>(length(px - t * dx, py - t * dy));
}

int DistFromRect(TPoint P, TRect R) {
  const std::int64_t x = P.X;
  const std::int64_t y = P.Y;
  if (x > R.Left && x < R.Right) {
    return limited(y < R.Top ? R.Top - y : y > R.Bottom ? y - R.Bottom : 0);
  }
  if (y > R.Top && y < R.Bottom) {
    return limited(x <= R.Left ? R.Left - x : x - R.Right);
  }
  int least = std::numeric_limits<int>::max();
  for (const int cornerX : {R.Left, R.Right}) {
    for (const int cornerY : {R.Top, R.Bottom}) {
      least = std::min(least, RoundToInt<int>(EuclideanDistance(P.X, P.Y, cornerX, cornerY)));
    }
  }
  return least;
}

double DistFromEllipse(TPointDouble P, double Xc, double Yc, double SemiAxisX, double SemiAxisY,
                       TPointDouble& Nearest) {
  TPointDouble q{std::abs(P.X - Xc), std::abs(P.Y - Yc)};
  double e0 = std::abs(SemiAxisX);
  double e1 = std::abs(SemiAxisY);
  const bool isUpright = e0 < e1;
  if (isUpright) {
    std::swap(e0, e1);
    std::swap(q.X, q.Y);
  }
  // Squares of the axes stay in range.
  const int exponent = e0 > 0 && std::isfinite(e0) ? -std::ilogb(e0) : 0;
  const auto scaled = [](double v, int power) { return std::ldexp(v, power); };
  TPointDouble n = nearestPoint(scaled(e0, exponent), scaled(e1, exponent),
                                {scaled(q.X, exponent), scaled(q.Y, exponent)});
  n = {scaled(n.X, -exponent), scaled(n.Y, -exponent)};
  const double distance = EuclideanDistance(q, n);
  if (isUpright) std::swap(n.X, n.Y);
  Nearest = {P.X < Xc ? Xc - n.X : Xc + n.X, P.Y < Yc ? Yc - n.Y : Yc + n.Y};
  return distance;
}

bool WithinRect(TPointDouble P, TRectDouble R) {
  R = inOrder(R);
  return P.X >= R.X1 && P.X <= R.X2 && P.Y >= R.Y1 && P.Y <= R.Y2;
}

bool ConfinePointToRect(TPointDouble& P, TRectDouble R) {
  R = inOrder(R);
  const auto confine = [](double& v, double low, double high) {
    const double old = v;
    if (v < low) v = low;
    if (v > high) v = high;
    return v != old && !std::isnan(old);
  };
  const bool isXMoved = confine(P.X, R.X1, R.X2);
  const bool isYMoved = confine(P.Y, R.Y1, R.Y2);
  return isXMoved || isYMoved;
}

}  // namespace zel
