#include "zel/kernels/orientation.h"

#include <cmath>
#include <limits>

#include "zel/kernels/double_double.h"
#include "zel/kernels/exact_sum.h"

namespace zel::kernels {

namespace {

int signOf(Extended v) { return v > 0 ? 1 : v < 0 ? -1 : 0; }

/// The cross product multiplied out: eight products of doubles, each exact as two extended numbers.
int exactSign(TPointDouble a, TPointDouble b, TPointDouble c, TPointDouble d) {
  ExactSum sum;
  const auto add = [&sum](double x, double y) {
    const auto product = twoProduct(Extended{x}, Extended{y});
    sum.add(product.hi);
    sum.add(product.lo);
  };
  add(b.X, d.Y);
  add(-b.X, c.Y);
  add(-a.X, d.Y);
  add(a.X, c.Y);
  add(-d.X, b.Y);
  add(d.X, a.Y);
  add(c.X, b.Y);
  add(-c.X, a.Y);
  return signOf(sum.value().hi);
}

}  // namespace

int signOfTurn(TPointDouble a, TPointDouble b, TPointDouble c, TPointDouble d) {
  const Extended left = (Extended{b.X} - a.X) * (Extended{d.Y} - c.Y);
  const Extended right = (Extended{d.X} - c.X) * (Extended{b.Y} - a.Y);
  const Extended product = left - right;
  // Three roundings of half an epsilon each on both sides, one of the difference.
  const Extended bound =
      4 * std::numeric_limits<Extended>::epsilon() * (std::abs(left) + std::abs(right));
  if (std::abs(product) > bound) return std::isfinite(product) ? signOf(product) : 0;
  if (!std::isfinite(bound)) return 0;
  return bound == 0 ? 0 : exactSign(a, b, c, d);
}

int orientation(TPointDouble a, TPointDouble b, TPointDouble c) { return signOfTurn(a, b, a, c); }

}  // namespace zel::kernels
