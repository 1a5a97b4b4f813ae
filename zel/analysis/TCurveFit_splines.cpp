#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "zel/analysis/TCurveFit.h"
#include "zel/base/errors.h"
#include "zel/kernels/comb_order.h"
#include "zel/kernels/scaling.h"
#include "zel/kernels/spline.h"
#include "zel/kernels/sums.h"

namespace zel {

namespace {

bool areFinite(std::span<const double> values) {
  return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
}

/// Finite pairs sorted by x, those with the same x taken together.
struct DistinctPairs {
  DistinctPairs(std::span<const double> dataX, std::span<const double> dataY)
      : allY(dataY.begin(), dataY.end()) {
    std::vector<double> sortedX(dataX.begin(), dataX.end());
    if (!std::is_sorted(sortedX.begin(), sortedX.end())) {
      std::vector<std::uint64_t> order(sortedX.size());
      kernels::combOrderFast(sortedX, std::span(order), sortedX.size() - 1, true);
      std::transform(order.begin(), order.end(), allY.begin(),
                     [dataY](std::uint64_t from) { return dataY[from]; });
    }
    for (std::size_t first = 0; first < sortedX.size();) {
      std::size_t end = first + 1;
      while (end < sortedX.size() && sortedX[end] == sortedX[first]) ++end;
      x.push_back(sortedX[first]);
      y.push_back(kernels::mean(std::span(allY).subspan(first, end - first)));
      count.push_back(static_cast<double>(end - first));
      first = end;
    }
  }

  std::vector<double> x;
  std::vector<double> y;      // means
  std::vector<double> count;  // pairs with this x
  std::vector<double> allY;   // of every pair, in the order of x
};

/// 1 - residual sum of squares / total sum of squares, limited to 0..1; 1 for a constant y.
double determination(const DistinctPairs& pairs, std::span<const double> fitted) {
  // Scaled, so that no difference overflows.
  const int exponent = kernels::largestExponent(pairs.allY);
  std::vector<double> y;
  std::vector<double> estimates;
  y.reserve(pairs.allY.size());
  estimates.reserve(pairs.allY.size());
  for (const double v : pairs.allY) y.push_back(std::ldexp(v, -exponent));
  for (std::size_t i = 0; i < fitted.size(); ++i) {
    estimates.insert(estimates.end(), static_cast<std::size_t>(pairs.count[i]),
                     std::ldexp(fitted[i], -exponent));
  }
  if (std::all_of(y.begin(), y.end(), [&](double v) { return v == y.front(); })) return 1;
  const std::vector<double> level(y.size(), kernels::mean(y));
  const double ratio =
      kernels::euclideanDistance(y, estimates) / kernels::euclideanDistance(y, level);
  return std::clamp(1 - ratio * ratio, 0.0, 1.0);
}

}  // namespace

void TCurveFit::SetNatural1(bool value) {
  FNatural1 = value;
  FSplineValid = false;
}

void TCurveFit::SetNaturalN(bool value) {
  FNaturalN = value;
  FSplineValid = false;
}

void TCurveFit::SetY1Dash(double value) {
  FY1Dash = value;
  FSplineValid = false;
}

void TCurveFit::SetYNDash(double value) {
  FYNDash = value;
  FSplineValid = false;
}

void TCurveFit::SetSplineSmoothing(double value) {
  FPSplineSmooth = value;
  FPenSplineValid = false;
}

void TCurveFit::PrepareSpline() {
  if (FNumData < 3) throw EZELMath2Error("CubicSpline: not enough data points");
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  if (areFinite(Values(1)) && areFinite(Values(2))) {
    const DistinctPairs pairs(Values(1), Values(2));
    if (pairs.x.size() < 3) throw EZELMath2Error("CubicSpline: not enough data points");
    kernels::SplineEnds ends;
    if (!FNatural1) ends.first = FY1Dash;
    if (!FNaturalN) ends.last = FYNDash;
    std::vector<double> second(pairs.x.size());
    kernels::splineSecondDerivatives(pairs.x, pairs.y, ends, second);
    SplSortedX.SetElements(pairs.x);
    SplSortedY.SetElements(pairs.y);
    Spl2Deriv.SetElements(second);
  } else {
    // No curve: two knots whose values are not-a-number.
    SplSortedX.SetElements(std::vector<double>{0, 1});
    SplSortedY.SetElements(std::vector<double>{kNaN, kNaN});
    Spl2Deriv.SetElements(std::vector<double>{kNaN, kNaN});
  }
  FSplineValid = true;
}

double TCurveFit::CubicSpline(double x) {
  if (!FSplineValid) PrepareSpline();
  return kernels::splineValue(SplSortedX.Elements(), SplSortedY.Elements(), Spl2Deriv.Elements(),
                              x);
}

bool TCurveFit::PrepareSmoothedSpline() {
  if (FNumData < 3 || std::isnan(FPSplineSmooth)) return false;
  if (!areFinite(Values(1)) || !areFinite(Values(2))) return false;
  const DistinctPairs pairs(Values(1), Values(2));
  const std::size_t n = pairs.x.size();
  if (n < 3) return false;
  TPieces pieces{pairs.x, TDoubleArray(n), TDoubleArray(n), TDoubleArray(n), TDoubleArray(n)};
  if (!kernels::penalizedSpline(pairs.x, pairs.y, pairs.count, FPSplineSmooth,
                                {pieces.a, pieces.b, pieces.c, pieces.d})) {
    return false;
  }
  FPSplineFQ = determination(pairs, pieces.a);
  FPSplinePieces = std::move(pieces);
  return true;
}

double TCurveFit::SmoothedSpline(double x, double& FitQual, bool& valid) {
  if (!FPenSplineValid) FPenSplineValid = PrepareSmoothedSpline();
  valid = FPenSplineValid;
  FitQual = valid ? FPSplineFQ : 0;
  if (!valid) return 0;
  TPieces& p = FPSplinePieces;
  return kernels::piecewiseCubic(p.x, {p.a, p.b, p.c, p.d}, x);
}

}  // namespace zel
