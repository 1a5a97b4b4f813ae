/// @file
/// Mean, variance and median of a sample as the tests of hypotheses need them.
#pragma once

#include <cstddef>
#include <span>

#include "zel/kernels/double_double.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/order_statistics.h"
#include "zel/kernels/select.h"
#include "zel/kernels/sums.h"

namespace zel::kernels {

/// Mean before it is rounded, for differences of means; 0 for no elements.
[[nodiscard]] inline DoubleDouble accurateMean(std::span<const double> x) {
  if (x.empty()) return {};
  return sum(x) / twofoldOf<double>(x.size());
}

/// Variance with divisor n - 1, for two elements too; 0 for fewer.
[[nodiscard]] inline double sampleVariance(std::span<const double> x) {
  if (x.size() < 2) return 0;
  if (x.size() > 2) return meanVariance(x).variance;
  const double difference = x[1] - x[0];
  return difference * difference / 2;
}

/// Second quartile; 0 for no elements. O(n).
/// @throws std::bad_alloc
[[nodiscard]] inline double median(std::span<const double> x) {
  if (x.empty()) return 0;
  const OrderPosition position = quartilePosition(x.size(), 0.5);
  return position.value(selectPair(x, position.k));
}

/// a as one number.
[[nodiscard]] inline double rounded(DoubleDouble a) { return a.hi + a.lo; }

}  // namespace zel::kernels
