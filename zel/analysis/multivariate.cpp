#include "zel/analysis/multivariate.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <vector>

#include "zel/analysis/matrix_view_impl.h"
#include "zel/analysis/memory_impl.h"
#include "zel/base/progress.h"
#include "zel/kernels/cross_products.h"
#include "zel/kernels/double_double.h"
#include "zel/kernels/products.h"
#include "zel/kernels/range.h"
#include "zel/kernels/scaling.h"
#include "zel/kernels/sums.h"

namespace zel {

namespace {

enum TCovarMode : int { cmProducts, cmCovariance, cmCorrelation, cmSquaredCorrelation, cmDistance };

/// Elements of the lower triangle, some rows of it at a time.
class Associations {
 public:
  Associations(kernels::ConstMatrix data, int mode)
      : data_(data),
        mode_(mode),
        mean_(data.columns, 0.0),
        rest_(data.columns, 0.0),
        factor_(data.columns, 1.0),
        exponent_(data.columns, 0),
        squares_(data.columns, 0.0) {
    if (mode == cmDistance) return;
    for (std::size_t j = 0; j < data.columns; ++j) {
      exponent_[j] = kernels::beyondHarmless(kernels::largestExponent(data[j]));
      factor_[j] = std::ldexp(1.0, -exponent_[j]);
      if (mode != cmProducts) findMean(j);
    }
    // Enough work between two questions whether to go on, not more.
    constexpr std::size_t kWork = std::size_t{1} << 28;
    const std::size_t perRow = std::max<std::size_t>(1, data.rows * data.columns);
    block_.resize(
        std::clamp<std::size_t>(kWork / perRow, 8, std::max<std::size_t>(8, data.columns)) *
        data.columns);
  }

  /// Element (i, j), j <= i, the rows being asked for in order.
  double operator()(std::size_t i, std::size_t j) {
    const double degrees = static_cast<double>(data_.rows) - 1;
    if (mode_ == cmDistance) {
      return kernels::sumOfSquaredDifferences(data_[i], data_[j]).hi / degrees;
    }
    if (i >= last_) computeRows(i);
    const double s = block_[(i - first_) + j * (last_ - first_)];
    if (mode_ <= cmCovariance) {
      return std::ldexp(s / degrees, exponent_[i] + exponent_[j]);
    }
    const Extended product = Extended{squares_[i]} * squares_[j];
    const double r =
        std::clamp(product == 0 ? 0.0 : static_cast<double>(s / std::sqrt(product)), -1.0, 1.0);
    return mode_ == cmCorrelation ? r : r * r;
  }

 private:
  void computeRows(std::size_t i) {
    first_ = i;
    last_ = std::min(data_.columns, i + block_.size() / data_.columns);
    const std::size_t rows = last_ - first_;
    const kernels::Matrix result{block_.data(), rows, last_, rows};
    kernels::crossProducts(data_, mean_, factor_, first_, last_, result);
    for (std::size_t k = first_; k < last_; ++k) {
      for (std::size_t j = 0; j <= k; ++j) {
        result(k - first_, j) -= static_cast<double>(data_.rows) * rest_[k] * rest_[j];
      }
      double& square = result(k - first_, k);
      if (square < 0) square = 0;
      squares_[k] = square;
    }
  }

  /// The rounded mean and what the true one exceeds it by; 0 where sums leave the range of doubles.
  void findMean(std::size_t j) {
    const auto m = static_cast<double>(data_.rows);
    const kernels::DoubleDouble total = kernels::sum(data_[j]);
    mean_[j] = kernels::isFinite(total) ? total.hi / m : kernels::mean(data_[j]);
    const double rest = (total - kernels::twoProduct(mean_[j], m)).hi / m;
    rest_[j] = std::isfinite(rest) ? std::ldexp(rest, -exponent_[j]) : 0;
  }

  kernels::ConstMatrix data_;
  int mode_;
  std::vector<double> mean_;
  std::vector<double> rest_;  // of the means, behind their rounded values, scaled by the factors
  std::vector<double> factor_;
  std::vector<int> exponent_;
  std::vector<double> squares_;  // of the deviations, scaled by the factors
  std::vector<double> block_;
  std::size_t first_ = 0;
  std::size_t last_ = 0;
};

}  // namespace

bool CalcCovar(const TMatrix* InMat, TMatrix* CovMat, int LowCol, int HighCol, int LowRow,
               int HighRow, int Mode) {
  AbortMathProc = false;
  if (!InMat || !CovMat || Mode < cmProducts || Mode > cmDistance) return false;
  kernels::clampRange(LowCol, HighCol, InMat->NrOfColumns());
  kernels::clampRange(LowRow, HighRow, InMat->NrOfRows());
  const int variables = HighCol - LowCol + 1;
  const int observations = HighRow - LowRow + 1;
  if (CovMat->NrOfColumns() < variables || CovMat->NrOfRows() < variables) return false;
  if (InMat == CovMat) {
    return detail::GuardFit("CalcCovar", [&] {
      TMatrix data;
      data.Clone(InMat);
      return CalcCovar(&data, CovMat, LowCol, HighCol, LowRow, HighRow, Mode);
    });
  }
  const auto n = static_cast<std::size_t>(variables);
  const kernels::ConstMatrix data = detail::ViewOf(*InMat).block(
      static_cast<std::size_t>(LowRow - 1), static_cast<std::size_t>(LowCol - 1),
      static_cast<std::size_t>(observations), n);
  return detail::GuardFit("CalcCovar", [&] {
    Associations element(data, Mode);
    if (Mode > cmProducts) {
      for (int i = 0; i < observations; ++i) ProgressStep();
    }
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = 0; j <= i && !AbortMathProc; ++j) {
        const double s = element(i, j);
        const kernels::Matrix result = detail::ViewOf(*CovMat);
        result(i, j) = result(j, i) = i == j && Mode == cmCorrelation ? 1 : s;
        ProgressStep(observations);
      }
    }
    CovMat->Changed();
    return !AbortMathProc;
  });
}

double MahalanobisDistance(const TVector* x, const TVector* y, const TMatrix* InvCov) {
  if (!x || !y || x->NrOfElem() != y->NrOfElem())
    throw EZELVectorError("MahalanobisDistance: dimensions of vectors do not match");
  if (!InvCov || InvCov->NrOfColumns() != InvCov->NrOfRows())
    throw EZELVectorError("MahalanobisDistance: inverse covariance matrix is not quadratric");
  if (InvCov->NrOfColumns() != x->NrOfElem()) {
    throw EZELVectorError(
        "MahalanobisDistance: dimension of vectors and inverse covariance matrix do not match");
  }
  const auto a = x->Elements();
  const auto b = y->Elements();
  std::vector<double> weighted(a.size());
  std::vector<double> difference(a.size());
  std::transform(a.begin(), a.end(), b.begin(), difference.begin(), std::minus<>());
  kernels::multiplyVector(detail::ViewOf(*InvCov), kernels::Factor::plain, difference, weighted);
  const double square = kernels::sumOfProducts(difference, weighted).hi;
  if (square < 0) {
    throw EZELVectorError(
        "MahalanobisDistance: the inverse covariance matrix must be symmetric and positive "
        "definite");
  }
  return std::sqrt(square);
}

double CalcFishQ(double Mean1, double Mean2, double StdDev1, double StdDev2) {
  const double spread = StdDev1 * StdDev1 + StdDev2 * StdDev2;
  const double difference = Mean1 - Mean2;
  return difference * difference / (spread <= 1e-6 ? 1e-6 : spread);
}

}  // namespace zel
