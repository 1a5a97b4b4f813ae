#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/expect_message.h"
#include "zel/analysis/Zel_math2.h"

namespace zel {
namespace {

using Values = std::vector<double>;
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const Values kX{0.5, 1, 1.75, 2.5, 3, 4.25, 5, 6.5, 8, 9};
const Values kY{2.125, 3.5, 3.25, 4.75, 4.5, 5.75, 5.5, 5.25, 3.5, 2.75};
const Values kPlaces{-1, 0.5, 0.75, 2, 4, 5, 7.25, 8.9, 10};

void enter(TCurveFit& fit, const Values& x, const Values& y) {
  for (std::size_t i = 0; i < x.size(); ++i) fit.EnterStatValue(x[i], y[i]);
}

/// Value and quality.
std::array<double, 2> smoothed(TCurveFit& fit, double x) {
  double quality = 9;
  bool valid = false;
  const double value = fit.SmoothedSpline(x, quality, valid);
  EXPECT_TRUE(valid);
  return {value, quality};
}

TEST(Splines, InterpolationAgreesWithR) {
  struct Case {
    bool natural1, naturalN;
    Values values;
  };
  // R 4.2, places beyond the data along the tangent: splinefun(method = "natural"); the others by
  // solve() of the full system of the second derivatives, slopes 4 and -0.5.
  const std::vector<Case> cases{
      {true,
       true,
       {-3.290620051097053, 2.125, 2.973827506387132, 3.689458611250207, 5.526072354992312, 5.5,
        4.462044132973502, 2.808837209313332, 2.16326051198654}},
      {false,
       false,
       {-3.875, 2.125, 3.005889986164382, 3.6934974211263, 5.526199608400613, 5.5,
        4.468531862712228, 2.801564245098302, 2.25}},
      {false,
       true,
       {-3.875, 2.125, 3.005890058873204, 3.693499295398135, 5.526271735551236, 5.5,
        4.462031912223957, 2.808837823842452, 2.163254304621693}},
      {true,
       false,
       {-3.290619014459313, 2.125, 2.973827376807414, 3.68945672994468, 5.526000232649302, 5.5,
        4.468543618357942, 2.801564151053136, 2.25}}};
  TCurveFit fit;
  // Out of order, and one pair as two whose mean it is.
  enter(fit, {kX.rbegin(), kX.rend()}, {kY.rbegin(), kY.rend()});
  fit.RemoveStatValue(3);
  fit.EnterStatValue(6.5, 5);
  fit.EnterStatValue(6.5, 5.5);
  fit.SetY1Dash(4);
  fit.SetYNDash(-0.5);
  for (const Case& c : cases) {
    fit.SetNatural1(c.natural1);
    fit.SetNaturalN(c.naturalN);
    for (std::size_t i = 0; i < kPlaces.size(); ++i)
      EXPECT_NEAR(fit.CubicSpline(kPlaces[i]), c.values[i], 2e-14) << kPlaces[i];
  }
  for (std::size_t i = 0; i < kX.size(); ++i) EXPECT_EQ(fit.CubicSpline(kX[i]), kY[i]);
  EXPECT_TRUE(std::isnan(fit.CubicSpline(kNaN)));
}

TEST(Splines, SmoothingAgreesWithTheDenseSystem) {
  // The normal equations of the criterion for kX, kY and the pairs (3, 5.5), (8, 3) in rational
  // arithmetic: the quality, then the values at kPlaces.
  const std::vector<std::pair<double, Values>> cases{
      {0.1,
       {0.9264748400612448, 0.23237585216105744, 2.353350488084445, 2.7004931857658128,
        3.963020995369271, 5.600993440416301, 5.637727617358109, 4.228723112111717,
        2.722901966819576, 2.1342784854551424}},
      {0.999,
       {0.03781632877226435, 4.100038241431553, 4.121170557778598, 4.1246864335872635,
        4.140841510467885, 4.148908945242149, 4.139246073720036, 4.085495407829101,
        4.030986203485962, 3.9936527792130665}}};
  // A change of the units of x, here with an offset, leaves the curve as it is.
  for (const auto& [scale, offset] :
       std::vector<std::array<double, 2>>{{1, 0}, {1024, -4096}, {-0x1p-300, 0}}) {
    TCurveFit fit;
    for (std::size_t i = 0; i < kX.size(); ++i) fit.EnterStatValue(kX[i] * scale + offset, kY[i]);
    fit.EnterStatValue(3 * scale + offset, 5.5);
    fit.EnterStatValue(8 * scale + offset, 3);
    for (const auto& [s, expected] : cases) {
      fit.SetSplineSmoothing(s);
      EXPECT_NEAR(smoothed(fit, 0)[1], expected[0], 1e-15);
      for (std::size_t i = 0; i < kPlaces.size(); ++i)
        EXPECT_NEAR(smoothed(fit, kPlaces[i] * scale + offset)[0], expected[i + 1], 4e-15);
    }
  }
}

TEST(Splines, LimitsOfSmoothing) {
  std::mt19937 random(7);
  std::normal_distribution<double> normal;
  TCurveFit fit;
  // Some neighbours are a millionth of the others' distance apart.
  for (int i = 0; i < 20000; ++i) {
    const double x = i % 5 == 0 ? i + 1 - 1e-6 : i;
    fit.EnterStatValue(x, 3 + 0.5 * x + normal(random));
  }
  fit.SetSplineSmoothing(-2);
  for (const double x : {-3.0, 7.0, 7.25, 4999.999, 5000.5, 30000.0}) {
    const double exact = fit.CubicSpline(x);
    EXPECT_NEAR(smoothed(fit, x)[0], exact, 1e-14 * std::abs(exact)) << "smoothing below 0 is none";
  }
  // Strong smoothing is where the system is close to singular.
  fit.SetSplineSmoothing(3);
  const double line = smoothed(fit, 7777)[0];
  EXPECT_NEAR(line, smoothed(fit, 0)[0] + 0.7777 * (smoothed(fit, 1e4)[0] - smoothed(fit, 0)[0]),
              1e-11);
  // Regression lines of R 4.2, lm().
  TCurveFit few;
  enter(few, kX, kY);
  for (const double s : {1.0, std::nextafter(1.0, 0.0)}) {
    few.SetSplineSmoothing(s);
    EXPECT_NEAR(smoothed(few, 0)[0], 3.8306302318094017, 1e-14);
    EXPECT_NEAR(smoothed(few, 100)[0], 3.8306302318094017 + 6.1896329684481527, 1e-12);
  }
}

TEST(Splines, CachesFollowEveryChange) {
  TCurveFit fit;
  const auto expectFresh = [&](const char* change) {
    TCurveFit fresh;
    for (int i = 1; i <= fit.NumData(); ++i) fresh.EnterStatValue(fit.GetDataX(i), fit.GetDataY(i));
    fresh.SetNatural1(fit.SplineNatural1());
    fresh.SetNaturalN(fit.SplineNaturalN());
    fresh.SetY1Dash(fit.SplineDerivY1());
    fresh.SetYNDash(fit.SplineDerivYN());
    fresh.SetSplineSmoothing(fit.SplineSmoothingFactor());
    for (const double x : {-1.0, 1.3, 6.0, 11.0}) {
      EXPECT_EQ(smoothed(fit, x), smoothed(fresh, x)) << change;
      EXPECT_EQ(fit.CubicSpline(x), fresh.CubicSpline(x)) << change;
    }
  };
  enter(fit, kX, kY);
  expectFresh("nothing");
  fit.SetSplineSmoothing(0.2);
  expectFresh("smoothing");
  fit.SetNatural1(false);
  expectFresh("first end");
  fit.SetY1Dash(-7);
  expectFresh("first slope");
  fit.SetNaturalN(false);
  fit.SetYNDash(2);
  expectFresh("last end");
  fit.EnterStatValue(7, 9);
  expectFresh("new pair");
  fit.RemoveStatValue(2);
  expectFresh("removed pair");
  fit.FlipXY();
  expectFresh("exchange of x and y");
  fit.Init();
  enter(fit, {3, 1, 2}, {1, 2, 4});
  expectFresh("new data");
}

TEST(Splines, DataWithoutACurve) {
  TCurveFit fit;
  double quality = 9;
  bool valid = true;
  for (const Values& x : {Values{}, Values{1, 2}, Values{1, 2, 2, 1}, Values{0.0, -0.0, 1}}) {
    fit.Init();
    enter(fit, x, Values(x.size(), 1));
    EXPECT_THROW_MSG(fit.CubicSpline(1), EZELMath2Error, "CubicSpline: not enough data points");
    EXPECT_EQ(fit.SmoothedSpline(1, quality, valid), 0);
    EXPECT_FALSE(valid);
    EXPECT_EQ(quality, 0);
  }
  for (const auto& [x, y] :
       std::vector<std::array<double, 2>>{{kNaN, 1}, {1, kNaN}, {kInf, 1}, {1, -kInf}}) {
    fit.Init();
    enter(fit, {5, 2, 3, x}, {1, 2, 1, y});
    EXPECT_TRUE(std::isnan(fit.CubicSpline(2.5)));
    EXPECT_EQ(fit.SmoothedSpline(2.5, quality, valid), 0);
    EXPECT_FALSE(valid);
  }
  fit.Init();
  enter(fit, {-1.7e308, 0, 1e300, 1.7e308}, {1e308, -1e308, 1e308, 0});
  static_cast<void>(fit.CubicSpline(1));
  static_cast<void>(fit.SmoothedSpline(1, quality, valid));
}

TEST(PenalizedCubicSpline, PiecesFormOneNaturalSpline) {
  const Values w{1, 2, 0.5, 1, 3, 1, 1, 0.25, 1, 1};
  Values a(11, 77);
  Values b = a;
  Values c = a;
  Values d = a;
  ASSERT_TRUE(PenalizedCubicSpline(1, 8, 0.3, kX, kY, w, a, b, c, d));
  EXPECT_EQ((Values{a[0], b[9], c[0], d[10]}), (Values{77, 77, 77, 77}));
  EXPECT_EQ((Values{c[1], c[8], d[8]}), (Values{0, 0, 0}));
  const double h3 = std::pow((kX[8] - kX[1]) / 7, 3);
  double sum = 0;
  for (std::size_t i = 1; i < 8; ++i) {
    const double u = kX[i + 1] - kX[i];
    EXPECT_NEAR(a[i] + u * (b[i] + u * (c[i] + u * d[i])), a[i + 1], 1e-14);
    EXPECT_NEAR(b[i] + u * (2 * c[i] + 3 * u * d[i]), b[i + 1], 1e-13);
    EXPECT_NEAR(c[i] + 3 * u * d[i], c[i + 1], 1e-13);
    // The optimum: the jump of the third derivative at a knot balances its weighted residual.
    const double jump = 6 * (d[i] - (i > 1 ? d[i - 1] : 0));
    EXPECT_NEAR(0.3 * h3 * jump, 0.7 * w[i] * (kY[i] - a[i]), 1e-13) << i;
    sum += w[i] * (kY[i] - a[i]);
  }
  EXPECT_NEAR(sum + w[8] * (kY[8] - a[8]), 0, 1e-13);

  // The results may replace the data.
  Values x = kX;
  Values y = kY;
  Values weights = w;
  Values own(10);
  ASSERT_TRUE(PenalizedCubicSpline(1, 8, 0.3, x, y, weights, y, x, weights, own));
  EXPECT_TRUE(std::equal(&y[1], &y[9], &a[1]));
  EXPECT_TRUE(std::equal(&x[1], &x[9], &b[1]));
}

TEST(PenalizedCubicSpline, BadArgumentsWriteNothing) {
  const auto refuses = [](int n1, int n2, double s, const Values& x, const Values& y,
                          const Values& w, std::size_t room = 4) {
    Values a(room, 7);
    Values b(4, 7);
    const bool done = PenalizedCubicSpline(n1, n2, s, x, y, w, a, b, b, b);
    return !done && a == Values(room, 7) && b == Values(4, 7);
  };
  const Values x{1, 2, 3, 4};
  const Values ones(4, 1);
  EXPECT_TRUE(refuses(-1, 3, 0.5, x, x, ones));
  EXPECT_TRUE(refuses(2, 2, 0.5, x, x, ones));
  EXPECT_TRUE(refuses(3, 0, 0.5, x, x, ones));
  EXPECT_TRUE(refuses(0, 4, 0.5, x, x, ones));
  EXPECT_TRUE(refuses(0, 2147483647, 0.5, x, x, ones));
  EXPECT_TRUE(refuses(0, 3, 0.5, x, x, ones, 3));
  EXPECT_TRUE(refuses(0, 3, kNaN, x, x, ones));
  for (const double bad : {kNaN, kInf, 3.0, 0.0})
    EXPECT_TRUE(refuses(0, 3, 0.5, {1, bad, 3, 4}, x, ones)) << bad;
  for (const double bad : {kNaN, -kInf}) EXPECT_TRUE(refuses(0, 3, 0.5, x, {1, 2, 3, bad}, ones));
  for (const double bad : {kNaN, kInf, 0.0, -1.0})
    EXPECT_TRUE(refuses(0, 3, 0.5, x, x, {1, 1, bad, 1})) << bad;
  EXPECT_TRUE(refuses(0, 3, 0, {0, 1e-200, 2e-200, 1}, {1, -1, 1, 1}, ones))
      << "beyond the doubles";
}

}  // namespace
}  // namespace zel
