#include "zel/analysis/gausskernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>

#include "zel/kernels/distances.h"

namespace zel {

namespace {

/// Of x, as far as y goes.
double squaredDistance(std::span<const double> x, std::span<const double> y) {
  return kernels::squaredDistance(x.first(std::min(x.size(), y.size())), y);
}

double gaussian(double squaredDistance, double sigma) {
  double d = squaredDistance / sigma / sigma;
  if (d > 20) d = 20;
  return std::exp(-d);
}

}  // namespace

double CalcGaussKernel(const TVector* x, const TVector* y, double Sigma) {
  if (!x || !y) return 0;
  return gaussian(squaredDistance(x->Elements(), y->Elements()), Sigma);
}

double CalcGaussKernelMat(const TVector* x, const TMatrix* Mat, int Row, double Sigma) {
  if (!x || !Mat) return 0;
  const auto columns = static_cast<std::size_t>(Mat->NrOfColumns());
  std::array<double, 256> part;
  double sum = 0;
  for (std::size_t at = 0; at < columns; at += part.size()) {
    const std::span<double> y = std::span(part).first(std::min(part.size(), columns - at));
    for (std::size_t j = 0; j < y.size(); ++j) {
      y[j] = Mat->GetVal(static_cast<int>(at + j) + 1, Row);
    }
    sum += squaredDistance(x->Elements().subspan(std::min(at, x->size())), y);
  }
  return gaussian(sum, Sigma);
}

}  // namespace zel
