#include "zel/analysis/gausskernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>

#include "zel/kernels/sums.h"

namespace zel {

namespace {

/// Adds up the squared differences of x, which may be shorter, and y.
kernels::DoubleDouble squaredDistance(std::span<const double> x, std::span<const double> y) {
  const std::size_t both = std::min(x.size(), y.size());
  return kernels::sumOfSquaredDifferences(x.first(both), y.first(both)) +
         kernels::sumOfSquares(y.subspan(both));
}

double gaussian(double squaredDistance, double sigma) {
  double d = squaredDistance / sigma / sigma;
  if (d > 20) d = 20;
  return std::exp(-d);
}

}  // namespace

double CalcGaussKernel(const TVector* x, const TVector* y, double Sigma) {
  if (!x || !y) return 0;
  return gaussian(squaredDistance(x->Elements(), y->Elements()).hi, Sigma);
}

double CalcGaussKernelMat(const TVector* x, const TMatrix* Mat, int Row, double Sigma) {
  if (!x || !Mat) return 0;
  const auto columns = static_cast<std::size_t>(Mat->NrOfColumns());
  std::array<double, 256> part;
  kernels::DoubleDouble sum{0, 0};
  for (std::size_t at = 0; at < columns; at += part.size()) {
    const std::span<double> y = std::span(part).first(std::min(part.size(), columns - at));
    for (std::size_t j = 0; j < y.size(); ++j) {
      y[j] = Mat->GetVal(static_cast<int>(at + j) + 1, Row);
    }
    sum = sum + squaredDistance(x->Elements().subspan(std::min(at, x->size())), y);
  }
  return gaussian(sum.hi, Sigma);
}

}  // namespace zel
