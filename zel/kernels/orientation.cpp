#include "zel/kernels/orientation.h"

#include <cmath>
#include <limits>

#include "zel/kernels/double_double.h"
#include "zel/kernels/exact_sum.h"

namespace zel::kernels {

namespace {

int signOf(Extended v) { return v > 0 ? 1 : v < 0 ? -1 : 0; }

/// The determinant multiplied out: six products of doubles, each exact as two extended numbers.
int exactOrientation(TPointDouble a, TPointDouble b, TPointDouble c) {
  ExactSum sum;
  const auto add = [&sum](double x, double y) {
    const auto product = twoProduct(Extended{x}, Extended{y});
    sum.add(product.hi);
    sum.add(product.lo);
  };
  add(b.X, c.Y);
  add(-b.X, a.Y);
  add(-a.X, c.Y);
  add(-c.X, b.Y);
  add(c.X, a.Y);
  add(a.X, b.Y);
  return signOf(sum.value().hi);
}

}  // namespace

int orientation(TPointDouble a, TPointDouble b, TPointDouble c) {
  const Extended left = (Extended{b.X} - a.X) * (Extended{c.Y} - a.Y);
  const Extended right = (Extended{c.X} - a.X) * (Extended{b.Y} - a.Y);
  const Extended determinant = left - right;
  // Three roundings of half an epsilon each on both sides, one of the difference.
  const Extended bound =
      4 * std::numeric_limits<Extended>::epsilon() * (std::abs(left) + std::abs(right));
  if (std::abs(determinant) > bound) return std::isfinite(determinant) ? signOf(determinant) : 0;
  if (!std::isfinite(bound)) return 0;
  return bound == 0 ? 0 : exactOrientation(a, b, c);
}

}  // namespace zel::kernels
