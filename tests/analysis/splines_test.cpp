#include "zel/analysis/Zel_math2.h"

#include "tests/support/testing.h"

namespace zel {
namespace {

using Values = std::vector<double>;

const Values kX{0.5, 1, 1.75, 2.5, 3, 4.25, 5, 6.5, 8, 9};
const Values kY{2.125, 3.5, 3.25, 4.75, 4.5, 5.75, 5.5, 5.25, 3.5, 2.75};
const Values kPlaces{-1, 0.75, 4, 5, 8.9, 10};

void enter(TCurveFit& fit, const Values& x, const Values& y) {
  fit.Init();
  for (std::size_t i = 0; i < x.size(); ++i) fit.EnterStatValue(x[i], y[i]);
}

/// Value, quality, validity.
std::array<double, 3> smoothed(TCurveFit& fit, double x) {
  double quality = 9;
  bool valid = false;
  const double value = fit.SmoothedSpline(x, quality, valid);
  return {value, quality, valid ? 1.0 : 0.0};
}

TEST(Splines, InterpolationAgreesWithR) {
  TCurveFit fit;
  // Out of order, and one pair as two whose mean it is.
  enter(fit, {kX.rbegin(), kX.rend()}, {kY.rbegin(), kY.rend()});
  fit.RemoveStatValue(3);
  fit.EnterStatValue(6.5, 5);
  fit.EnterStatValue(6.5, 5.5);
  fit.SetY1Dash(4);
  fit.SetYNDash(-0.5);
  const auto expectCurve = [&](bool natural1, bool naturalN, const Values& values) {
    fit.SetNatural1(natural1);
    fit.SetNaturalN(naturalN);
    for (std::size_t i = 0; i < kPlaces.size(); ++i)
      EXPECT_NEAR(fit.CubicSpline(kPlaces[i]), values[i], 2e-14) << kPlaces[i];
  };
  // R 4.2: splinefun(method = "natural"); the others by solve() of the full system of the second
  // derivatives, slopes 4 and -0.5, beyond the data along the tangent.
  expectCurve(true, true,
              {-3.290620051097053, 2.973827506387132, 5.526072354992312, 5.5, 2.808837209313332,
               2.16326051198654});
  expectCurve(false, false,
              {-3.875, 3.005889986164382, 5.526199608400613, 5.5, 2.801564245098302, 2.25});
  expectCurve(
      true, false,
      {-3.290619014459313, 2.973827376807414, 5.526000232649302, 5.5, 2.801564151053136, 2.25});
  for (std::size_t i = 0; i < kX.size(); ++i) EXPECT_EQ(fit.CubicSpline(kX[i]), kY[i]);
  EXPECT_TRUE(std::isnan(fit.CubicSpline(kNaN)));
}

TEST(Splines, SmoothingAgreesWithTheDenseSystem) {
  // The normal equations of the criterion for kX, kY and the pairs (3, 5.5), (8, 3) in rational
  // arithmetic: the values at kPlaces, then the quality.
  const std::vector<std::pair<double, Values>> cases{
      {0.1,
       {0.23237585216105744, 2.7004931857658128, 5.600993440416301, 5.637727617358109,
        2.722901966819576, 2.1342784854551424, 0.9264748400612448}},
      {0.999,
       {4.100038241431553, 4.1246864335872635, 4.148908945242149, 4.139246073720036,
        4.030986203485962, 3.9936527792130665, 0.03781632877226435}}};
  // A change of the units of x, here with an offset, leaves the curve as it is.
  for (const auto& [scale, offset] :
       std::vector<std::array<double, 2>>{{1, 0}, {1024, -4096}, {-0x1p-300, 0}}) {
    TCurveFit fit;
    for (std::size_t i = 0; i < kX.size(); ++i) fit.EnterStatValue(kX[i] * scale + offset, kY[i]);
    fit.EnterStatValue(3 * scale + offset, 5.5);
    fit.EnterStatValue(8 * scale + offset, 3);
    for (const auto& [s, expected] : cases) {
      fit.SetSplineSmoothing(s);
      EXPECT_NEAR(smoothed(fit, 0)[1], expected.back(), 1e-15);
      for (std::size_t i = 0; i < kPlaces.size(); ++i)
        EXPECT_NEAR(smoothed(fit, kPlaces[i] * scale + offset)[0], expected[i], 4e-15);
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
  fit.SetSplineSmoothing(3);
  const double start = smoothed(fit, 0)[0];
  EXPECT_NEAR(smoothed(fit, 7777)[0], start + 0.7777 * (smoothed(fit, 1e4)[0] - start), 1e-11);
  // Regression line of R 4.2, lm(); the second is where the system is closest to singular.
  enter(fit, kX, kY);
  for (const double s : {1.0, std::nextafter(1.0, 0.0)}) {
    fit.SetSplineSmoothing(s);
    EXPECT_NEAR(smoothed(fit, 0)[0], 3.8306302318094017, 1e-14);
    EXPECT_NEAR(smoothed(fit, 100)[0], 3.8306302318094017 + 6.1896329684481527, 1e-12);
  }
}

TEST(Splines, CachesFollowEveryChange) {
  TCurveFit fit;
  enter(fit, kX, kY);
  const std::vector<std::function<void()>> changes{[] {},
                                                   [&] { fit.SetSplineSmoothing(0.2); },
                                                   [&] { fit.SetNatural1(false); },
                                                   [&] { fit.SetY1Dash(-7); },
                                                   [&] { fit.SetNaturalN(false); },
                                                   [&] { fit.SetYNDash(2); },
                                                   [&] { fit.EnterStatValue(7, 9); },
                                                   [&] { fit.RemoveStatValue(2); },
                                                   [&] { fit.FlipXY(); },
                                                   [&] {
                                                     enter(fit, {3, 1, 2}, {1, 2, 4});
                                                   }};
  for (std::size_t k = 0; k < changes.size(); ++k) {
    changes[k]();
    TCurveFit fresh;
    for (int i = 1; i <= fit.NumData(); ++i) fresh.EnterStatValue(fit.GetDataX(i), fit.GetDataY(i));
    fresh.SetNatural1(fit.SplineNatural1());
    fresh.SetNaturalN(fit.SplineNaturalN());
    fresh.SetY1Dash(fit.SplineDerivY1());
    fresh.SetYNDash(fit.SplineDerivYN());
    fresh.SetSplineSmoothing(fit.SplineSmoothingFactor());
    for (const double x : {-1.0, 1.3, 6.0, 11.0}) {
      EXPECT_EQ(smoothed(fit, x), smoothed(fresh, x)) << k;
      EXPECT_EQ(fit.CubicSpline(x), fresh.CubicSpline(x)) << k;
    }
  }
}

TEST(Splines, DataWithoutACurve) {
  TCurveFit fit;
  const std::array<double, 3> nothing{0, 0, 0};
  for (const Values& x : {Values{}, Values{1, 2}, Values{1, 2, 2, 1}, Values{0.0, -0.0, 1}}) {
    enter(fit, x, Values(x.size(), 1));
    EXPECT_THROW_MSG(fit.CubicSpline(1), EZELMath2Error, "CubicSpline: not enough data points");
    EXPECT_EQ(smoothed(fit, 1), nothing);
  }
  for (const auto& [x, y] :
       std::vector<std::array<double, 2>>{{kNaN, 1}, {1, kNaN}, {kInf, 1}, {1, -kInf}}) {
    enter(fit, {5, 2, 3, x}, {1, 2, 1, y});
    EXPECT_TRUE(std::isnan(fit.CubicSpline(2.5)));
    EXPECT_EQ(smoothed(fit, 2.5), nothing);
  }
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
  for (std::size_t i = 1; i < 8; ++i) {
    const double u = kX[i + 1] - kX[i];
    EXPECT_NEAR(a[i] + u * (b[i] + u * (c[i] + u * d[i])), a[i + 1], 1e-14);
    EXPECT_NEAR(b[i] + u * (2 * c[i] + 3 * u * d[i]), b[i + 1], 1e-13);
    EXPECT_NEAR(c[i] + 3 * u * d[i], c[i + 1], 1e-13);
    // The optimum: the jump of the third derivative at a knot balances its weighted residual.
    const double jump = 6 * (d[i] - (i > 1 ? d[i - 1] : 0));
    EXPECT_NEAR(0.3 * h3 * jump, 0.7 * w[i] * (kY[i] - a[i]), 1e-13) << i;
  }
  // The results may replace the data.
  Values x = kX;
  Values y = kY;
  Values weights = w;
  ASSERT_TRUE(PenalizedCubicSpline(1, 8, 0.3, x, y, weights, y, x, weights, d));
  EXPECT_TRUE(std::equal(&y[1], &y[9], &a[1]) && std::equal(&x[1], &x[9], &b[1]));
}

TEST(PenalizedCubicSpline, BadArgumentsWriteNothing) {
  const Values up{1, 2, 3, 4};
  const auto refuses = [&](int n1, int n2, double s, const Values& x, const Values& y,
                           const Values& w, std::size_t room = 4) {
    Values a(room, 7);
    Values b(4, 7);
    const bool done = PenalizedCubicSpline(n1, n2, s, x, y, w, a, b, b, b);
    return !done && a == Values(room, 7) && b == Values(4, 7);
  };
  for (const auto& [n1, n2] :
       std::vector<std::array<int, 2>>{{-1, 3}, {2, 2}, {3, 0}, {0, 4}, {0, 2147483647}})
    EXPECT_TRUE(refuses(n1, n2, 0.5, up, up, up)) << n1 << ' ' << n2;
  EXPECT_TRUE(refuses(0, 3, 0.5, up, up, up, 3));
  EXPECT_TRUE(refuses(0, 3, kNaN, up, up, up));
  for (const double bad : {kNaN, kInf, -kInf, 0.0, -1.0}) {
    EXPECT_TRUE(refuses(0, 3, 0.5, {1, bad, 3, 4}, up, up)) << bad;
    EXPECT_TRUE(refuses(0, 3, 0.5, up, up, {1, 1, bad, 1})) << bad;
    EXPECT_TRUE(std::isfinite(bad) || refuses(0, 3, 0.5, up, {1, 2, 3, bad}, up)) << bad;
  }
  EXPECT_TRUE(refuses(0, 3, 0, {0, 1e-200, 2e-200, 1}, {1, -1, 1, 1}, up)) << "beyond the doubles";
}

}  // namespace
}  // namespace zel
