#include "zel/analysis/regression.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "zel/analysis/matrix_view_impl.h"
#include "zel/analysis/memory_impl.h"
#include "zel/kernels/double_double.h"
#include "zel/kernels/least_squares.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/products.h"
#include "zel/kernels/residuals.h"
#include "zel/kernels/sums.h"
#include "zel/kernels/svd.h"

namespace zel {

namespace {

using Numbers = std::vector<double>;

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

void put(const Numbers& values, TVector* to) {
  if (to) to->SetElements(values);
}

void announce(TVector* vector) {
  if (vector) vector->Changed();
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

/// Columns less their means, divided by their standard deviations if wanted.
struct Centred {
  Numbers storage;
  Numbers means;
  Numbers deviations;
  std::size_t rows;

  Centred(kernels::ConstMatrix a, bool isStandardised)
      : storage(a.rows * a.columns), means(a.columns), deviations(a.columns), rows(a.rows) {
    for (std::size_t c = 0; c < a.columns; ++c) {
      const auto moments = kernels::centredProducts(a[c], a[c]);
      means[c] = moments.meanX.hi;
      deviations[c] = std::sqrt(moments.xx.hi / (static_cast<double>(rows) - 1));
      const double scale = isStandardised && deviations[c] != 0 ? deviations[c] : 1;
      for (std::size_t r = 0; r < rows; ++r) storage[c * rows + r] = (a(r, c) - means[c]) / scale;
      if (!isStandardised) deviations[c] = 1;
    }
  }
  [[nodiscard]] kernels::Matrix view() { return {storage.data(), rows, means.size(), rows}; }
  [[nodiscard]] double divisor(std::size_t c) const {
    return deviations[c] == 0 ? 1 : deviations[c];
  }
};

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
    put(b, Coeff);
    put(errors, StdErr);
    announce(Coeff);
    announce(StdErr);
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
    put(ridge.coefficients, Coeff);
    put(ridge.errors, StdErr);
    announce(Coeff);
    announce(StdErr);
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
    put(ridge.coefficients, Coeff);
    put(ridge.errors, StdErr);
    put(z.means, Means);
    put(z.deviations, StdDevs);
    for (TVector* vector : {Coeff, StdErr, Means, StdDevs}) announce(vector);
    return true;
  });
}

namespace {

/// Growing matrix of factors, one column each.
struct Factors {
  std::size_t rows;
  Numbers storage;
  explicit Factors(std::size_t n) : rows(n) {}
  void append(const Numbers& column) {
    storage.insert(storage.end(), column.begin(), column.end());
  }
  [[nodiscard]] std::size_t columns() const { return rows == 0 ? 0 : storage.size() / rows; }
  [[nodiscard]] kernels::ConstMatrix view() const {
    return {storage.data(), rows, columns(), rows};
  }
  /// x less its part in the span of the orthonormal columns.
  void removeFrom(Numbers& x) const {
    if (columns() == 0) return;
    Numbers parts(columns());
    kernels::multiplyVector(view(), kernels::Factor::transposed, x, parts);
    Numbers sum(rows);
    kernels::multiplyVector(view(), kernels::Factor::plain, parts, sum);
    for (std::size_t i = 0; i < rows; ++i) x[i] -= sum[i];
  }
};

Numbers times(kernels::ConstMatrix a, kernels::Factor as, const Numbers& x) {
  Numbers y(as == kernels::Factor::plain ? a.rows : a.columns);
  kernels::multiplyVector(a, as, x, y);
  return y;
}

void scale(Numbers& x, double factor) {
  for (double& v : x) v *= factor;
}

void put(kernels::ConstMatrix values, TMatrix* to) {
  if (!to) return;
  to->Resize(static_cast<int>(values.columns), static_cast<int>(values.rows));
  for (std::size_t c = 0; c < values.columns; ++c) {
    std::copy_n(values.column(c), values.rows, to->data() + c * values.rows);
  }
}

}  // namespace

bool SimPLS(const TMatrix* XMat, const TMatrix* YMat, int NFactors, bool Standardize,
            TMatrix* XScores, TMatrix* XLoadings, TMatrix* YScores, TMatrix* YLoadings,
            TMatrix* Weights, TMatrix* Coeff, TVector* XVariance, TVector* YVariance,
            TMatrix* Fitted) {
  using kernels::Factor;
  if (!XMat || !YMat || XMat->NrOfColumns() < 1 || YMat->NrOfColumns() < 1 ||
      XMat->NrOfRows() < 2 || YMat->NrOfRows() != XMat->NrOfRows()) {
    return false;
  }
  const auto isFinite = [](double v) { return std::isfinite(v); };
  if (!std::all_of(XMat->begin(), XMat->end(), isFinite) ||
      !std::all_of(YMat->begin(), YMat->end(), isFinite)) {
    return false;
  }
  return detail::GuardFit("SimPLS", [&] {
    Centred xData(detail::ViewOf(*XMat), Standardize);
    Centred yData(detail::ViewOf(*YMat), Standardize);
    const kernels::Matrix x = xData.view();
    const kernels::Matrix y = yData.view();
    const double totalX = kernels::sumOfSquares(xData.storage).hi;
    const double totalY = kernels::sumOfSquares(yData.storage).hi;
    Numbers cross(x.columns * y.columns);
    const kernels::Matrix s{cross.data(), x.columns, y.columns, x.columns};
    kernels::multiply(x, Factor::transposed, y, Factor::plain, s);
    const double exhausted = 1e-14 * kernels::euclideanNorm(cross);

    Factors t(x.rows), p(x.columns), u(x.rows), q(y.columns), r(x.columns), basis(x.columns);
    Numbers partX, partY;
    const std::size_t most = std::min(x.rows - 1, x.columns);
    const auto wanted =
        std::clamp<std::size_t>(NFactors < 1 ? 1 : static_cast<std::size_t>(NFactors), 1, most);
    for (std::size_t k = 0; k < wanted; ++k) {
      // The direction of Y that has the largest covariance with X.
      Numbers left = cross;
      Numbers values(y.columns);
      Numbers right(y.columns * y.columns);
      const kernels::Matrix v{right.data(), y.columns, y.columns, y.columns};
      if (kernels::singularValueDecompose({left.data(), x.columns, y.columns, x.columns}, values,
                                          v) != kernels::SvdStatus::done) {
        return false;
      }
      const auto best =
          static_cast<std::size_t>(std::max_element(values.begin(), values.end()) - values.begin());
      if (!(values[best] > exhausted)) break;
      const auto direction = v[best];
      Numbers weight = times(s, Factor::plain, {direction.begin(), direction.end()});
      Numbers score = times(x, Factor::plain, weight);
      const double centre = kernels::mean(score);
      for (double& value : score) value -= centre;
      const double size = kernels::euclideanNorm(score);
      if (size == 0) break;
      scale(score, 1 / size);
      scale(weight, 1 / size);
      Numbers loading = times(x, Factor::transposed, score);
      const Numbers yLoading = times(y, Factor::transposed, score);
      Numbers yScore = times(y, Factor::plain, yLoading);
      t.removeFrom(yScore);
      partX.push_back(totalX == 0 ? 0 : kernels::sumOfSquares(loading).hi / totalX);
      partY.push_back(totalY == 0 ? 0 : kernels::sumOfSquares(yLoading).hi / totalY);
      p.append(loading);
      basis.removeFrom(loading);
      basis.removeFrom(loading);  // twice keeps it orthogonal to roundoff
      scale(loading, 1 / kernels::euclideanNorm(loading));
      basis.append(loading);
      const Numbers along = times(s, Factor::transposed, loading);
      kernels::subtractProduct({loading.data(), x.columns, 1, x.columns}, Factor::plain,
                               {along.data(), y.columns, 1, y.columns}, Factor::transposed, s);
      t.append(score);
      u.append(yScore);
      q.append(yLoading);
      r.append(weight);
    }

    const std::size_t terms = x.columns + 1;
    Numbers coefficients(terms * y.columns);
    const kernels::Matrix b{coefficients.data(), x.columns, y.columns, terms};
    kernels::multiply(r.view(), Factor::plain, q.view(), Factor::transposed, b);
    for (std::size_t j = 0; j < y.columns; ++j) {
      kernels::DoubleDouble constant{yData.means[j], 0};
      for (std::size_t i = 0; i < x.columns; ++i) {
        b(i, j) = b(i, j) / xData.divisor(i) * yData.divisor(j);
        constant = constant - kernels::twoProduct(b(i, j), xData.means[i]);
      }
      coefficients[j * terms + x.columns] = constant.hi;
    }
    Numbers estimates(x.rows * y.columns);
    const kernels::Matrix fitted{estimates.data(), x.rows, y.columns, x.rows};
    kernels::multiply(t.view(), Factor::plain, q.view(), Factor::transposed, fitted);
    for (std::size_t j = 0; j < y.columns; ++j) {
      for (double& value : fitted[j]) value = value * yData.divisor(j) + yData.means[j];
    }

    put(t.view(), XScores);
    put(p.view(), XLoadings);
    put(u.view(), YScores);
    put(q.view(), YLoadings);
    put(r.view(), Weights);
    put({coefficients.data(), terms, y.columns, terms}, Coeff);
    put(partX, XVariance);
    put(partY, YVariance);
    put(fitted, Fitted);
    for (TMatrix* matrix : {XScores, XLoadings, YScores, YLoadings, Weights, Coeff, Fitted}) {
      if (matrix) matrix->Changed();
    }
    announce(XVariance);
    announce(YVariance);
    return true;
  });
}

}  // namespace zel
