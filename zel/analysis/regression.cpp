#include "zel/analysis/regression.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "zel/analysis/centred_impl.h"
#include "zel/analysis/matrix_view_impl.h"
#include "zel/analysis/memory_impl.h"
#include "zel/analysis/results_impl.h"
#include "zel/kernels/double_double.h"
#include "zel/kernels/least_squares.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/products.h"
#include "zel/kernels/residuals.h"
#include "zel/kernels/sums.h"
#include "zel/kernels/svd.h"

namespace zel {

namespace {

using detail::Centred;
using detail::Numbers;

bool doFit(const TMatrix* XMat, const TVector* YVec, const TVector* Coeff) {
  return XMat && YVec && Coeff && XMat->NrOfColumns() > 0 && XMat->NrOfRows() > 0 &&
         XMat->NrOfRows() == YVec->NrOfElem();
}

/// |y - X b|^2
double residualSquares(kernels::ConstMatrix x, std::span<const double> y,
                       std::span<const double> b) {
  Numbers residuals(y.size());
  kernels::accurateResidual(x, b, y, Numbers(y.size()), residuals);
  return kernels::sumOfSquares(residuals).hi;
}

/// Solution and standard errors of a ridge problem.
struct Ridge {
  Numbers coefficients;
  Numbers errors;
  bool isNearSingular = false;
};

/// @param lost  degrees of freedom that were taken before
/// @return false if the decomposition fails
bool solveRidge(kernels::ConstMatrix x, std::span<const double> y, double lambda, double lost,
                Ridge& result) {
  const std::size_t n = x.columns;
  Numbers left(x.rows * n);
  const kernels::Matrix u{left.data(), x.rows, n, x.rows};
  for (std::size_t c = 0; c < n; ++c) std::copy_n(x.column(c), x.rows, u.column(c));
  Numbers w(n);
  Numbers right(n * n);
  const kernels::Matrix v{right.data(), n, n, n};
  if (kernels::singularValueDecompose(u, w, v) != kernels::SvdStatus::done) return false;
  const double root = std::sqrt(lambda);
  double largest = 0;
  for (const double value : w) largest = std::max(largest, std::hypot(value, root));
  Numbers gain(n);
  double degrees = static_cast<double>(x.rows) - lost;
  for (std::size_t k = 0; k < n; ++k) {
    const double size = std::hypot(w[k], root);
    if (size < kernels::kNegligibleSingularValue * largest || size == 0) {
      result.isNearSingular = true;
      continue;
    }
    gain[k] = w[k] / size / size;
    degrees -= w[k] / size * (w[k] / size);
  }
  Numbers inside(n);
  kernels::multiplyVector(u, kernels::Factor::transposed, y, inside);
  for (std::size_t k = 0; k < n; ++k) inside[k] *= gain[k];
  result.coefficients.resize(n);
  kernels::multiplyVector(v, kernels::Factor::plain, inside, result.coefficients);
  for (double& g : gain) g = g == 0 ? 0 : 1 / g;
  result.errors.resize(n);
  kernels::errorFactors(v, gain, result.errors);
  const double spread =
      degrees > 1e-9 ? std::sqrt(residualSquares(x, y, result.coefficients) / degrees) : 0;
  for (double& e : result.errors) e *= spread;
  return true;
}

}  // namespace

bool MultiLinReg(const TMatrix* XMat, const TVector* YVec, TVector* Coeff, TVector* StdErr,
                 bool& NearSingular) {
  NearSingular = false;
  if (!doFit(XMat, YVec, Coeff)) return false;
  return detail::GuardFit("MultiLinReg", [&] {
    const kernels::ConstMatrix x = detail::ViewOf(*XMat);
    const auto y = YVec->Elements();
    Numbers b(x.columns);
    Numbers errors(x.columns);
    if (!kernels::svdLeastSquares(x, y, b, errors, NearSingular)) return false;
    const double degrees = static_cast<double>(x.rows) - static_cast<double>(x.columns);
    const double spread = degrees > 0 ? std::sqrt(residualSquares(x, y, b) / degrees) : 0;
    for (double& e : errors) e *= spread;
    detail::TResults results;
    results.Add(Coeff, b);
    results.Add(StdErr, errors);
    results.Commit();
    return true;
  });
}

bool RidgeReg(const TMatrix* XMat, const TVector* YVec, double Lambda, TVector* Coeff,
              TVector* StdErr, bool& NearSingular) {
  NearSingular = false;
  if (!doFit(XMat, YVec, Coeff) || !(Lambda >= 0) || !std::isfinite(Lambda)) return false;
  if (Lambda == 0) return MultiLinReg(XMat, YVec, Coeff, StdErr, NearSingular);
  return detail::GuardFit("RidgeReg", [&] {
    Ridge ridge;
    if (!solveRidge(detail::ViewOf(*XMat), YVec->Elements(), Lambda, 0, ridge)) return false;
    NearSingular = ridge.isNearSingular;
    detail::TResults results;
    results.Add(Coeff, ridge.coefficients);
    results.Add(StdErr, ridge.errors);
    results.Commit();
    return true;
  });
}

bool RidgeRegStd(const TMatrix* XMat, const TVector* YVec, double Lambda, TVector* Coeff,
                 TVector* StdErr, TVector* Means, TVector* StdDevs, bool& NearSingular) {
  NearSingular = false;
  if (!doFit(XMat, YVec, Coeff) || !(Lambda >= 0) || !std::isfinite(Lambda) ||
      XMat->NrOfRows() < 2) {
    return false;
  }
  return detail::GuardFit("RidgeRegStd", [&] {
    const kernels::ConstMatrix y{YVec->Elements().data(), YVec->Elements().size(), 1,
                                 YVec->Elements().size()};
    Centred z(detail::ViewOf(*XMat), true);
    Centred target(y, true);
    Numbers centred(y.rows);
    for (std::size_t r = 0; r < y.rows; ++r) centred[r] = y(r, 0) - target.means[0];
    Ridge ridge;
    if (!solveRidge(z.view(), centred, Lambda, 1, ridge)) return false;
    const std::size_t n = z.means.size();
    kernels::DoubleDouble constant{target.means[0], 0};
    for (std::size_t c = 0; c < n; ++c) {
      ridge.coefficients[c] /= z.divisor(c);
      ridge.errors[c] /= z.divisor(c);
      constant = constant - kernels::twoProduct(ridge.coefficients[c], z.means[c]);
    }
    ridge.coefficients.push_back(constant.hi);
    ridge.errors.push_back(0);
    z.means.push_back(target.means[0]);
    z.deviations.push_back(target.deviations[0]);
    NearSingular = ridge.isNearSingular;
    detail::TResults results;
    results.Add(Coeff, ridge.coefficients);
    results.Add(StdErr, ridge.errors);
    results.Add(Means, z.means);
    results.Add(StdDevs, z.deviations);
    results.Commit();
    return true;
  });
}

}  // namespace zel
