#include <cmath>
#include <vector>

#include "zel/analysis/TCurveFit.h"
#include "zel/analysis/memory_impl.h"
#include "zel/base/progress.h"
#include "zel/kernels/least_squares.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/planar_fits.h"
#include "zel/kernels/regression.h"
#include "zel/kernels/student_t.h"
#include "zel/kernels/sums.h"

namespace zel {

void TCurveFit::CalcLinFit(double& k, double& d, double& FitQual) const {
  k = d = FitQual = 0;
  if (FNumData < 2) throw EZELMath2Error("CalcLinFit: not enough data points");
  if (kernels::isConstant(Values(1))) throw EZELMath2Error("CalcLinFit: slope is infinite");
  const auto fit = kernels::fitLine(Values(1), Values(2));
  k = static_cast<double>(fit.slope.hi);
  d = static_cast<double>(fit.constant.hi);
  FitQual = fit.quality;
}

void TCurveFit::CalcParabolFit(double& k0, double& k1, double& k2, double& FitQual) const {
  k0 = k1 = k2 = FitQual = 0;
  if (FNumData < 3) throw EZELMath2Error("CalcParabolFit: not enough data points");
  const auto fit = kernels::fitParabola(Values(1), Values(2));
  k0 = fit.k0;
  k1 = fit.k1;
  k2 = fit.k2;
  FitQual = fit.determination;
}

void TCurveFit::CalcCircleFit(double& r, double& dx, double& dy) const {
  r = dx = dy = 0;
  if (FNumData < 3) throw EZELMath2Error("CalcCircleFit: not enough data points");
  const auto circle = kernels::fitCircle(Values(1), Values(2));
  if (!circle) throw EZELMath2Error("CalcCircleFit: radius is infinite");
  r = circle->radius;
  dx = circle->x;
  dy = circle->y;
}

namespace {

/// Columns t, t^2 .. t^order, then ones, for t = (x - shift) / spread.
std::vector<double> designMatrix(std::span<const double> x, std::size_t order, double shift,
                                 double spread) {
  const std::size_t n = x.size();
  std::vector<double> a(n * (order + 1), 1.0);
  for (std::size_t i = 0; i < n && order > 0; ++i) a[i] = (x[i] - shift) / spread;
  for (std::size_t j = 1; j < order; ++j) {
    for (std::size_t i = 0; i < n; ++i) a[j * n + i] = a[(j - 1) * n + i] * a[i];
  }
  return a;
}

/// The residual standard deviation and the squared correlation of the targets and their estimates.
struct Residuals {
  double deviation = 0;
  double quality = 0;
};

/// @param b  coefficients in the order of the design matrix; target y - offset
Residuals residualsOf(std::span<const double> x, std::span<const double> y, double shift,
                      double spread, double offset, std::span<const double> b, int df) {
  std::vector<double> estimates(x.size());
  std::vector<double> targets(x.size());
  Extended squares = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const Extended t = (static_cast<Extended>(x[i]) - shift) / spread;
    Extended estimate = 0;
    for (std::size_t j = b.size() - 1; j-- > 0;) estimate = (estimate + b[j]) * t;
    estimate += b.back();
    const Extended target = static_cast<Extended>(y[i]) - offset;
    squares += (estimate - target) * (estimate - target);
    estimates[i] = static_cast<double>(estimate);
    targets[i] = static_cast<double>(target);
  }
  Residuals result;
  if (df >= 1) result.deviation = static_cast<double>(std::sqrt(squares / df));
  const double r = kernels::pearsonCorrelation(targets, estimates);
  result.quality = r * r;
  return result;
}

/// Two-sided significance of a coefficient.
double significance(double coefficient, double deviation, double errorFactor, int df) {
  if (deviation == 0 || errorFactor == 0) return 0;
  const double t = std::abs(coefficient / deviation / errorFactor);
  // The lower tail keeps the digits that 1 - integral would lose.
  return 2 * kernels::studentIntegral(-t, df);
}

}  // namespace

bool TCurveFit::FitPolynomial(std::string_view routine, int nOrder, double shift, double spread,
                              double offset, TDoubleArray& kArray, TDoubleArray* Alpha,
                              double& FitQual, bool& NearSingular) const {
  AbortMathProc = false;
  return detail::GuardFit(routine, [&] {
    const auto x = Values(1);
    const auto y = Values(2);
    const auto order = static_cast<std::size_t>(nOrder);
    const std::vector<double> design = designMatrix(x, order, shift, spread);
    std::vector<double> target(y.begin(), y.end());
    for (double& value : target) value -= offset;
    std::vector<double> b(order + 1);
    std::vector<double> errorFactors(order + 1);
    if (kArray.size() <= order) kArray.resize(order + 1);
    if (Alpha) Alpha->assign(order + 1, 0);
    const kernels::ConstMatrix a{design.data(), x.size(), order + 1, x.size()};
    if (!kernels::svdLeastSquares(a, target, b, errorFactors, NearSingular)) return false;

    const int df = FNumData - nOrder - 1;
    const Residuals residuals = residualsOf(x, y, shift, spread, offset, b, df);
    FitQual = residuals.quality;
    kArray[0] = b[order] + offset;
    double scale = 1;
    for (std::size_t j = 1; j <= order; ++j) {
      scale *= spread;
      kArray[j] = b[j - 1] / scale;
    }
    for (std::size_t j = 0; Alpha && j <= order; ++j) {
      const std::size_t at = j == 0 ? order : j - 1;
      (*Alpha)[j] = significance(b[at], residuals.deviation, errorFactors[at], df);
    }
    return true;
  });
}

bool TCurveFit::CalcPolyFit(int nOrder, TDoubleArray& kArray, TDoubleArray& Alpha, double& FitQual,
                            bool& NearSingular) const {
  FitQual = 0;
  NearSingular = false;
  if (nOrder < 0 || FNumData <= nOrder) return false;
  return FitPolynomial("CalcPolyFit", nOrder, 0, 1, 0, kArray, &Alpha, FitQual, NearSingular);
}

bool TCurveFit::CalcPolyFit(int nOrder, TDoubleArray& kArray, double& FitQual,
                            bool& NearSingular) const {
  TDoubleArray alpha;
  return CalcPolyFit(nOrder, kArray, alpha, FitQual, NearSingular);
}

bool TCurveFit::CalcCenteredPolyFit(int nOrder, TDoubleArray& kArray, TDoubleArray& alpha,
                                    double& XShift, double& FitQual, bool& NearSingular) const {
  FitQual = 0;
  NearSingular = false;
  if (nOrder < 0 || FNumData <= nOrder) return false;
  const auto ofX = kernels::meanVariance(Values(1));
  const double spread = std::sqrt(ofX.variance);
  if (XShift == 0) XShift = ofX.mean;
  return FitPolynomial("CalcCenteredPolyFit", nOrder, XShift, spread == 0 ? 1 : spread,
                       kernels::mean(Values(2)), kArray, &alpha, FitQual, NearSingular);
}

bool TCurveFit::CalcCenteredPolyFit(int nOrder, TDoubleArray& kArray, double& XShift,
                                    double& FitQual, bool& NearSingular) const {
  TDoubleArray alpha;
  return CalcCenteredPolyFit(nOrder, kArray, alpha, XShift, FitQual, NearSingular);
}

}  // namespace zel
