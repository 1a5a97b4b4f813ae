// Partial least squares regression.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "zel/analysis/centred_impl.h"
#include "zel/analysis/matrix_view_impl.h"
#include "zel/analysis/memory_impl.h"
#include "zel/analysis/regression.h"
#include "zel/analysis/results_impl.h"
#include "zel/kernels/double_double.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/products.h"
#include "zel/kernels/sums.h"
#include "zel/kernels/svd.h"

namespace zel {

namespace {

using detail::Centred;
using detail::Numbers;

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

    detail::TResults results;
    results.Add(XScores, t.view());
    results.Add(XLoadings, p.view());
    results.Add(YScores, u.view());
    results.Add(YLoadings, q.view());
    results.Add(Weights, r.view());
    results.Add(Coeff, {coefficients.data(), terms, y.columns, terms});
    results.Add(Fitted, fitted);
    results.Add(XVariance, partX);
    results.Add(YVariance, partY);
    results.Commit();
    return true;
  });
}

}  // namespace zel
