/// @file
/// Values of polynomials in double precision.
#pragma once

#include <initializer_list>
#include <iterator>
#include <span>

namespace zel::kernels {

/// Sum of c[i] x^i by Horner's rule; coefficients in ascending order.
[[nodiscard]] inline double horner(std::span<const double> c, double x) {
  double value = 0;
  for (auto at = std::rbegin(c); at != std::rend(c); ++at) value = value * x + *at;
  return value;
}
[[nodiscard]] inline double horner(std::initializer_list<double> c, double x) {
  return horner(std::span(c.begin(), c.size()), x);
}

}  // namespace zel::kernels
