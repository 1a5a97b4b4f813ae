// Straight lines and polygons.
#include "tests/support/testing.h"
#include "zel/analysis/Zel_math2.h"
#include "zel/analysis/Zel_sline.h"
#include "zel/base/Zel_univconst.h"
#include "zel/foundation/Zel_math1.h"

namespace zel {
namespace {

using Polygon = std::vector<TPointDouble>;

const Polygon kSquare{{0, 0}, {1, 0}, {1, 1}, {0, 1}};

TEST(StraightLine, ParametersAndForms) {
  TSLine line;
  EXPECT_EQ(line.Slope(), 0);
  EXPECT_EQ(line.Direction(), 0);
  EXPECT_THROW_MSG(line.SetParB(0), EZELSLineError, "parameter A and B must not both be zero");
  EXPECT_THROW_MSG((void)line.CalcX(1), EZELSLineError, "cannot calculate x");
  line.SetParA(1);
  line.SetParB(0);
  line.SetParC(-3);
  EXPECT_EQ(line.Direction(), 3 * kPi / 2);
  double k = 7, d = 7;
  EXPECT_THROW_MSG(line.CalcKDForm(k, d), EZELSLineError,
                   "cannot convert to k-d-form if ParB is zero");
  EXPECT_EQ(k, 7);
  EXPECT_THROW_MSG((void)line.Slope(), EZELSLineError, "slope is infinite");
  EXPECT_THROW_MSG((void)line.Intercept(), EZELSLineError,
                   "cannot calculate intercept (line is parallel to y axis)");
  EXPECT_THROW_MSG((void)line.CalcY(1), EZELSLineError, "cannot calculate y");
  EXPECT_EQ(line.CalcX(1), 3);
  line.SetSubstituteInf(true);
  EXPECT_GT(std::abs(line.CalcY(2)), 1e99);
  EXPECT_FALSE((std::is_base_of_v<EZELError, EZELSLineError>));

  line.LineFromSlopeIcpt(2, 1);
  line.CalcKDForm(k, d);
  EXPECT_EQ(k, 2);
  EXPECT_EQ(d, 1);
  EXPECT_FALSE(line.LineFrom2Points(1, 1, 1, 1));
  EXPECT_EQ(line.CalcY(3), 7);
  EXPECT_TRUE(line.LineFrom2Points(0, 2, 4, 2));
  EXPECT_EQ(line.Distance(9, 5), 3);
  for (int degrees = 0; degrees < 360; degrees += 30) {
    line.LineThroughPoint(1, 2, degrees * kPi / 180);
    EXPECT_NEAR(line.Direction(), degrees * kPi / 180, 1e-14) << degrees;
    EXPECT_NEAR(line.Distance(1, 2), 0, 1e-15);
  }
}

TEST(StraightLine, OfTwo) {
  TSLine a, b;
  a.LineFromSlopeIcpt(1, 0);
  b.LineFromSlopeIcpt(-1, 0);
  double x = 5, y = 5;
  EXPECT_TRUE(a.InterSection(&b, x, y));
  EXPECT_EQ(x, 0);
  EXPECT_EQ(y, 0);
  EXPECT_EQ(a.AngleBetweenLines(&b), kPi / 2);
  b.ParallelLine(3, 7, &a);
  EXPECT_EQ(b.CalcY(0), 4);
  x = 5;
  EXPECT_FALSE(a.InterSection(&b, x, y));
  EXPECT_FALSE(a.InterSection(nullptr, x, y));
  EXPECT_EQ(x, 5);
  b.NormalLine(3, 7, &a);
  EXPECT_EQ(b.CalcY(3), 7);
  EXPECT_EQ(a.AngleBetweenLines(&b), kPi / 2);
  b.LineThroughPoint(0, 0, kPi / 6);
  EXPECT_NEAR(a.AngleBetweenLines(&b), kPi / 12, 1e-15);
}

TEST(StraightLine, ClippedAtABox) {
  TSLine line;
  double x1 = 9, y1 = 9, x2 = 9, y2 = 9;
  const auto expectClipped = [&](bool isInside, const Polygon& ends) {
    EXPECT_EQ(line.ClipBox(0, 0, 1, 1, x1, y1, x2, y2), isInside);
    EXPECT_EQ((Polygon{{x1, y1}, {x2, y2}}), ends);
  };
  line.LineFromSlopeIcpt(1, 0);
  expectClipped(true, {{0, 0}, {1, 1}});
  line.LineFromSlopeIcpt(-1, 2);  // a corner
  expectClipped(true, {{1, 1}, {1, 1}});
  line.LineFrom2Points(0.5, 0, 0.5, 1);
  expectClipped(true, {{0.5, 0}, {0.5, 1}});
  line.LineFromSlopeIcpt(0, 5);
  expectClipped(false, {{0.5, 0}, {0.5, 1}});
  EXPECT_FALSE(line.SubstituteInf());
}

TEST(Polygons, FormsAndSizes) {
  Polygon p{{0, 0}, {1, 0}, {1, 0}, {2, 0}, {2, 1}};
  EXPECT_EQ(ReducePolygon(p), 3);
  EXPECT_EQ(p, (Polygon{{0, 0}, {2, 0}, {2, 1}}));
  std::vector<TPoint> pixels{{0, 0}, {0, 0}, {0, 2}, {0, 5}, {1, 6}, {2, 7}, {2, 7}};
  EXPECT_EQ(ReducePolygon(pixels), 3);
  EXPECT_EQ(pixels, (std::vector<TPoint>{{0, 0}, {0, 5}, {2, 7}}));
  Polygon nothing;
  EXPECT_EQ(ReducePolygon(nothing), 0);

  Polygon steps, back;
  EXPECT_EQ(ConvertToDiffPolygon(Polygon{{0, 0}, {1, 0}, {2, 0}, {2, 1}}, steps, 2), 2);
  EXPECT_EQ(steps, (Polygon{{2, 0}, {0, 1}}));
  EXPECT_EQ(ConvertFromDiffPolygon({0, 0}, steps, back), 3);
  EXPECT_EQ(back, (Polygon{{0, 0}, {2, 0}, {2, 1}}));
  EXPECT_EQ(ConvertToDiffPolygon(Polygon{{0, 0}, {0, 0}, {1, 1}, {1, 1}, {0, 0}}, steps, 1), 2);
  EXPECT_EQ(ConvertToDiffPolygon(Polygon{{0, 0}, {0, 0}, {1, 1}, {0, 0}}, steps, 2), 1);
  EXPECT_EQ(steps, (Polygon{{0, 0}})) << "opposite steps have one slope";
  EXPECT_EQ(ConvertToDiffPolygon(Polygon{{0, 0}, {1, 1}, {0, 0}, {0, 4}}, steps, 2), 2);
  EXPECT_EQ(steps, (Polygon{{0, 0}, {0, 4}})) << "their sum has the direction of neither";

  EXPECT_EQ(PolygonLength(kSquare, true), 4);
  EXPECT_EQ(PolygonLength(kSquare, false), 3);
  double xl, yl, xh, yh;
  OuterRectOfPolygon(Polygon{{3, -1}, {2, 8}}, xl, yl, xh, yh);
  EXPECT_EQ((Polygon{{xl, yl}, {xh, yh}}), (Polygon{{2, -1}, {3, 8}}));
  EXPECT_EQ(DistanceToPolygon({0.5, 3}, kSquare, true), 2);
  EXPECT_EQ(DistanceToPolygon({-2, 0.5}, kSquare, true), 2);
  EXPECT_NEAR(DistanceToPolygon({-2, 0.5}, kSquare, false), std::sqrt(4.25), 1e-15);
  EXPECT_EQ(DistanceToPolygon({0, 0}, Polygon{{1, 1}}, false), uc_MaxDouble);
  EXPECT_EQ(SphereGreatCircleDist(1, 0, 0, 0, 90), kPi / 2);
  EXPECT_NEAR(SphereGreatCircleDist(6371, 90, 0, -90, 33), 6371 * kPi, 1e-11);
  EXPECT_NEAR(SphereGreatCircleDist(1, 48, 16, 48, 16 + 1e-9) /
                  (1e-9 * kPi / 180 * std::cos(48 * kPi / 180)),
              1, 1e-6);
}

TEST(Polygons, AreaAndIntersections) {
  int n = 9;
  EXPECT_EQ(PolygonArea(kSquare, n), 1);
  EXPECT_EQ(n, 0);
  EXPECT_EQ(PolygonArea(Polygon(kSquare.rbegin(), kSquare.rend())), -1);
  EXPECT_EQ(PolygonArea(Polygon{{0, 0}, {1, 1}, {1, 0}, {0, 1}}, n), 0);
  EXPECT_EQ(n, 1);
  Polygon far = kSquare;
  for (TPointDouble& p : far) p = {p.X * 0x1p-20 + 1e9, p.Y * 0x1p-20 - 1e9};
  EXPECT_EQ(PolygonArea(far), 0x1p-40);
  EXPECT_EQ(PolygonArea(Polygon{}, n), 0);
  EXPECT_EQ(n, 0);
}

/// Compares the count with that of all pairs.
void expectAllPairs(const Polygon& p) {
  const std::size_t count = p.size();
  long expected = -static_cast<long>(count);
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      expected += SegmentsIntersect(p[i], p[(i + 1) % count], p[j], p[(j + 1) % count]);
    }
  }
  int n = 0;
  (void)PolygonArea(p, n);
  EXPECT_EQ(n, expected);
}

/// On polygons with repeated points, collinear and overlapping edges, and of any shape.
TEST(Polygons, SearchFindsAllPairs) {
  std::mt19937_64 random(2);
  for (const int grid : {2, 3, 6, 40, 1000000}) {
    for (std::size_t count = 1; count < 60; count += count < 6 ? 1 : 18) {
      Polygon p(count);
      for (TPointDouble& q : p) {
        q.X = static_cast<double>(random() % static_cast<unsigned>(grid)) / 10;
        q.Y = static_cast<double>(random() % static_cast<unsigned>(grid)) * (count % 2 ? 1 : 1e-3);
      }
      SCOPED_TRACE(testing::Message() << "grid " << grid << ", " << count << " points");
      expectAllPairs(p);
    }
  }
  // Long spikes: apart; on a lattice, where they overlap and lose their length; a few beyond.
  for (const double inner : {0.3, 1e-14}) {
    for (const double size : {3.0, 40.0, 1e308, 1e-310}) {
      for (const int stray : {0, 50}) {
        Polygon p;
        for (int i = 0; i < 900; ++i) {
          const double r = size * (i % 2 ? inner : 1) * (stray && i % stray == 0 ? -0.9 : 1);
          const double a = i * 2 * kPi / 900;
          p.push_back({r * std::cos(a), r * std::sin(a)});
          if (size == 40) p.back() = {std::round(p.back().X), std::round(p.back().Y)};
        }
        if (stray != 0) p[7].Y = std::numeric_limits<double>::quiet_NaN();
        SCOPED_TRACE(testing::Message() << inner << ' ' << size << ' ' << stray);
        expectAllPairs(p);
      }
    }
  }
}

TEST(Polygons, LongOnesWithoutCrossings) {
  Polygon coast, star;
  for (int i = 0; i < 100000; ++i) {
    const double a = i * 2 * kPi / 100000;
    const double r = 1 + 0.3 * std::sin(7 * a) + 0.01 * std::sin(311 * a) + 1e-5 * (i % 3);
    coast.push_back({r * std::cos(a), r * std::sin(a)});
    star.push_back({std::cos(a) * (i % 2 ? 1e-3 : 1), std::sin(a) * (i % 2 ? 1e-3 : 1)});
  }
  for (const Polygon& p : {coast, star}) {
    int n = 9;
    (void)PolygonArea(p, n);
    EXPECT_EQ(n, 0);
  }
}

TEST(Polygons, InsideByTheEvenOddRule) {
  const Polygon pentagram{{0, 3}, {2, -3}, {-3, 1}, {3, 1}, {-2, -3}};
  EXPECT_FALSE(PointIsInsidePolygon(0, 0, pentagram)) << "surrounded twice";
  EXPECT_TRUE(PointIsInsidePolygon(0, 2, pentagram));
  for (const TPointDouble& corner : kSquare)
    EXPECT_FALSE(PointIsInsidePolygon(corner.X, corner.Y, kSquare));
  EXPECT_FALSE(PointIsInsidePolygon(0.5, 0, kSquare));
  EXPECT_FALSE(PointIsInsidePolygon(1, 0.5, kSquare));
  EXPECT_TRUE(PointIsInsidePolygon(1e-300, 0.5, kSquare));
  EXPECT_FALSE(PointIsInsidePolygon(0, 0, Polygon{}));
  // Against the winding of convex polygons, from points of a lattice that hits corners and edges.
  const Polygon octagon{{1, 0}, {2, 0}, {3, 1}, {3, 2}, {2, 3}, {1, 3}, {0, 2}, {0, 1}};
  for (int i = -2; i < 15; ++i) {
    for (int j = -2; j < 15; ++j) {
      const double x = i * 0.25, y = j * 0.25;
      EXPECT_EQ(PointIsInsidePolygon(x, y, octagon), PointIsInsideConvexHull(x, y, octagon));
    }
  }
}

/// Every point is in the hull, every vertex is one of the points and turns left.
void expectHull(const Polygon& points) {
  const Polygon hull = Convex2DHull(points);
  for (std::size_t i = 0; i < hull.size(); ++i) {
    const TPointDouble& a = hull[i];
    const TPointDouble& b = hull[(i + 1) % hull.size()];
    EXPECT_NE(std::find(points.begin(), points.end(), a), points.end());
    if (hull.size() > 2) {
      EXPECT_EQ(CcwTriangle(a, b, hull[(i + 2) % hull.size()]), 1);
    }
    for (const TPointDouble& p : points) EXPECT_GE(CcwTriangle(a, b, p), 0);
  }
  Polygon other = points;
  std::shuffle(other.begin(), other.end(), std::mt19937_64(5));
  EXPECT_EQ(Convex2DHull(other), hull);
}

TEST(ConvexHull, OfRandomAndDegeneratePoints) {
  std::mt19937_64 random(4);
  std::normal_distribution<double> normal;
  for (const int count : {4, 5, 20, 300}) {
    for (const double offset : {0.0, 1e9, -1e15}) {
      Polygon points, lattice, line;
      for (int i = 0; i < count; ++i) {
        points.push_back({normal(random) + offset, 1e-3 * normal(random)});
        lattice.push_back({std::round(2 * normal(random)), std::round(2 * normal(random))});
        line.push_back({i % 7 + offset, 3.0 * (i % 7)});
      }
      expectHull(points);
      expectHull(lattice);
      expectHull(line);
      EXPECT_LE(Convex2DHull(line).size(), 2U);
    }
  }
  Polygon circle;
  for (int i = 0; i < 3000; ++i) circle.push_back({std::cos(i), std::sin(i)});
  EXPECT_EQ(Convex2DHull(circle).size(), 3000U);
  EXPECT_EQ(Convex2DHull(Polygon{{1, 1}, {1, 1}, {0, 0}}).size(), 3U) << "fewer than 4 as they are";
  EXPECT_EQ(Convex2DHull(Polygon(5, {2, 3})), (Polygon{{2, 3}}));
  EXPECT_EQ(Convex2DHull(Polygon{{1, 1}, {0, 1}, {0.4, 0.3}, {0, 0}, {1, 0}}),
            (Polygon{{1, 0}, {1, 1}, {0, 1}, {0, 0}}))
      << "from straight down counter-clockwise";
}

TEST(Expressions, BalanceOfParentheses) {
  EXPECT_EQ(CheckParanthInExp("(a+b)*(c)"), 0);
  EXPECT_EQ(CheckParanthInExp("((a)"), 1);
  EXPECT_EQ(CheckParanthInExp("a)("), -2);
  EXPECT_EQ(CheckParanthInExp(""), 0);
}

}  // namespace
}  // namespace zel
