// Angles, points, segments, rectangles and ellipses.
#include "zel/foundation/Zel_math1.h"

#include "tests/support/testing.h"

namespace zel {
namespace {

using Parts = std::array<int, 3>;
using Reals = std::array<double, 3>;

TEST(Angles, Directions) {
  for (int k = 15; k < 360; k += 15) {
    const double a = k * kPi / 180;
    EXPECT_NEAR(AngleToXAxis(std::cos(a) * 1e200, std::sin(a) * 1e200), a, 1e-14);
  }
  for (const auto& [x, y, right] :
       {std::array{0, 1, 1}, {0, -1, 3}, {0, 0, 3}, {-1, 0, 2}, {1, 0, 0}}) {
    EXPECT_EQ(AngleToXAxis(x, y), right * kPi / 2) << x << ' ' << y;
  }
  EXPECT_TRUE(std::isnan(AngleToXAxis(1, kNaN)));
  for (const double turns : {0.0, 1.0, -3.0, 1000.0}) {
    for (const double a : {-179.0, -20.0, 0.0, 45.0, 180.0}) {
      EXPECT_EQ(CanonicalAngleDegrees(a + 360 * turns), a == 180 && turns < 0 ? -180 : a);
      if (a < 180) {
        EXPECT_NEAR(CanonicalAngleRadians((a + 360 * turns) * kPi / 180), a * kPi / 180, 2e-12);
      }
    }
  }
}

TEST(Angles, RoundedToTheSeries) {
  // From, rounded down, rounded up.
  const Parts cases[][3] = {{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}},
                            {{7, 30, 0}, {5, 0, 0}, {10, 0, 0}},
                            {{10, 0, 0}, {10, 0, 0}, {10, 0, 0}},
                            {{10, 0, 1}, {10, 0, 0}, {15, 0, 0}},
                            {{400, 0, 0}, {360, 0, 0}, {360, 0, 0}},
                            {{0, 31, 5}, {0, 30, 0}, {1, 0, 0}},
                            {{0, 0, 45}, {0, 0, 30}, {0, 1, 0}},
                            {{0, 99, 0}, {0, 30, 0}, {1, 0, 0}},
                            {{0, 4, 0}, {0, 3, 0}, {0, 5, 0}},
                            {{1, -1, 0}, {0, 0, 0}, {0, 0, 0}},
                            {{INT_MAX, 59, 59}, {360, 0, 0}, {360, 0, 0}}};
  for (const auto& [from, down, up] : cases) {
    for (const bool isUp : {false, true}) {
      auto [degrees, minutes, seconds] = from;
      RoundDegrees(degrees, minutes, seconds, isUp);
      EXPECT_EQ((Parts{degrees, minutes, seconds}), isUp ? up : down) << from[0] << ' ' << from[1];
    }
  }
}

TEST(Angles, BetweenFormats) {
  const struct {
    TDegreeFormat from, to;
    Reals before, after;
  } cases[] = {{dfDegrees, dfDegMinSec, {12.5125, 3, 4}, {12, 30, 45}},
               {dfDegrees, dfDegMin, {-0.25, 1, 1}, {0, 15, 0}},
               {dfDegrees, dfDegrees, {1.25, 1, 1}, {1.25, 0, 0}},
               {dfDegMin, dfDegrees, {12.9, 30, 7}, {12.5, 0, 0}},
               {dfDegMin, dfDegMinSec, {5, 7.5, 0}, {5, 7, 30}},
               {dfDegMinSec, dfDegMin, {5, 7, 30}, {5, 7.5, 0}},
               {dfDegMinSec, dfDegrees, {5, 15.9, 36}, {5.26, 0, 0}}};
  for (auto c : cases) {
    ConvertDegrees(c.before[0], c.before[1], c.before[2], c.from, c.to);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(c.before[k], c.after[k], 1e-11);
  }
  for (auto [m, s, name] : {std::tuple(61.0, 0.0, "minutes"), {60.0, -1.0, "seconds"}}) {
    double d = 1;
    const Reals before{d, m, s};
    EXPECT_THROW_MSG(ConvertDegrees(d, m, s, dfDegrees, dfDegMin), EZELMath1Error,
                     std::string("ConvertDegrees: invalid range of ") + name);
    EXPECT_EQ((Reals{d, m, s}), before);
  }
}

/// Points on a line of integers times 1 / 10 are collinear only where the doubles are; the sign
/// must be that of the exact determinant, and antisymmetric.
TEST(Geometry, OrientationIsExact) {
  for (const double size : {1.0, 1e-300, 0x1p1000}) {
    for (int i = -20; i <= 20; ++i) {
      // Beside the line y = x by fractions of a unit in the last place of the others.
      const TPointDouble p{size / 2, size / 2 + i * 0x1p-53 * size}, q{12 * size, 12 * size},
          r{24 * size, 24 * size};
      EXPECT_EQ(CcwTriangle(q, r, p), (i > 0) - (i < 0)) << i;
      EXPECT_EQ(CcwTriangle(p, q, r), (i > 0) - (i < 0)) << i;
      EXPECT_EQ(CcwTriangle(p, r, q), (i < 0) - (i > 0)) << i;
    }
  }
  EXPECT_EQ(CcwTriangle({kNaN, 0}, {1, 0}, {0, 1}), 0);
  // Also where they only touch, and where all lie on a line.
  for (const double y : {2.0, 1.0, 0.9}) {
    EXPECT_EQ(SegmentsIntersect({0, 0}, {2, 2}, {1, y}, {5, 0}), y >= 1) << y;
    EXPECT_EQ(SegmentsIntersect({1, y}, {5, 0}, {0, 0}, {2, 2}), y >= 1) << y;
  }
  EXPECT_TRUE(SegmentsIntersect({0, 0}, {1, 1}, {5, 5}, {6, 6}));
}

TEST(Geometry, Distances) {
  EXPECT_DOUBLE_EQ(EuclideanDistance({3e200, 0}, {0, 4e200}), 5e200);
  EXPECT_EQ(EuclideanDistance(1e9, 1e9, 1e9 + 3, 1e9 - 4), 5);
  for (const double x : {1, 3, -3, 7}) {
    EXPECT_EQ(DistanceToSegment({x, 4}, {0, 0}, {4, 0}), x == 1 || x == 3 ? 4 : 5) << x;
  }
  EXPECT_EQ(DistanceToSegment({3, 4}, {0, 0}, {0, 0}), 5);
  const TRect r{10, 20, 30, 40};
  const std::pair<TPoint, int> cases[] = {{{15, 25}, 0}, {{10, 30}, 0}, {{15, 12}, 8},
                                          {{15, 45}, 5}, {{4, 30}, 6},  {{33, 30}, 3},
                                          {{7, 16}, 5},  {{31, 41}, 1}, {{10, 20}, 0}};
  for (const auto& [p, distance] : cases) EXPECT_EQ(DistFromRect(p, r), distance) << p.X;
  EXPECT_EQ(DistFromRect({INT_MIN, 30}, {INT_MAX - 1, 20, INT_MAX, 40}), INT_MAX);
}

/// Beside a plain search along the ellipse.
TEST(Geometry, DistanceFromEllipse) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> uniform(-3, 3);
  for (int k = 0; k < 200; ++k) {
    const double a = std::abs(uniform(random)), b = std::abs(uniform(random));
    const TPointDouble p{k % 7 ? uniform(random) + 5 : 5, k % 5 ? uniform(random) - 8 : -8};
    TPointDouble nearest;
    const double distance = DistFromEllipse(p, 5, -8, a, b, nearest);
    EXPECT_NEAR(EuclideanDistance(p, nearest), distance, 1e-14);
    const double u = (nearest.X - 5) / a, v = (nearest.Y + 8) / b;
    EXPECT_NEAR(u * u + v * v, 1, 1e-12);
    double least = 99;
    for (int i = 0; i < 20000; ++i) {
      const double t = i * kPi / 10000;
      least = std::min(least, EuclideanDistance(p, {5 + a * std::cos(t), -8 + b * std::sin(t)}));
    }
    EXPECT_NEAR(distance, least, 1e-5);
    EXPECT_LE(distance, least + 1e-14);
  }
  TPointDouble n;
  EXPECT_EQ(DistFromEllipse({1, 1}, 1, 1, 2, 2, n), 2) << "the centre of a circle";
  EXPECT_EQ(DistFromEllipse({3, 4}, 0, 0, 0, 0, n), 5);
  EXPECT_EQ(DistFromEllipse({1, 4}, 0, 0, 2, 0, n), 4);
  EXPECT_EQ(n, (TPointDouble{1, 0}));
  EXPECT_DOUBLE_EQ(DistFromEllipse({0, -5e200}, 0, 0, 1e200, 3e200, n), 2e200);
  EXPECT_DOUBLE_EQ(n.Y, -3e200);
  EXPECT_TRUE(std::isnan(DistFromEllipse({kNaN, 1}, 0, 0, 2, 1, n)));
}

TEST(Geometry, Rectangles) {
  const TRectDouble r{4, 1, 0, 3};
  EXPECT_TRUE(WithinRect({0, 3}, r));
  EXPECT_FALSE(WithinRect({-0.1, 2}, r));
  EXPECT_FALSE(WithinRect({kNaN, 2}, r));
  TPointDouble p{-1, 7};
  EXPECT_TRUE(ConfinePointToRect(p, r));
  EXPECT_EQ(p, (TPointDouble{0, 3}));
  EXPECT_FALSE(ConfinePointToRect(p, r));
}

}  // namespace
}  // namespace zel
