#include "zel/kernels/shapiro_wilk.h"

#include <cmath>
#include <initializer_list>
#include <iterator>
#include <vector>

#include "zel/base/types.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/normal_tail.h"

namespace zel::kernels {

namespace {

double polynomial(std::initializer_list<double> coefficients, double x) {
  double value = 0;
  for (auto c = std::rbegin(coefficients); c != std::rend(coefficients); ++c)
    value = value * x + *c;
  return value;
}

/// The z beyond which the standard normal distribution has q <= 1/2. Two Halley steps from 5e-4.
double upperQuantile(double q) {
  constexpr double kRootOf2 = 1.41421356237309504880;
  constexpr double kRootOf2Pi = 2.50662827463100050242;
  auto z = static_cast<double>(normalTail(q));
  for (int k = 0; k < 2; ++k) {
    const double excess = std::erfc(z / kRootOf2) / 2 - q;
    const double step = excess * kRootOf2Pi * std::exp(z * z / 2);
    z += step / (1 - z * step / 2);
  }
  return z;
}

/// Weights of the n / 2 largest values, the largest first.
std::vector<double> weights(std::size_t n) {
  const auto size = static_cast<double>(n);
  std::vector<double> a(n / 2);
  if (n == 3) {
    a[0] = std::sqrt(0.5);
    return a;
  }
  double squares = 0;  // of the expected order statistics
  for (std::size_t i = 0; i < a.size(); ++i) {
    a[i] = upperQuantile((static_cast<double>(i) + 0.625) / (size + 0.25));
    squares += 2 * a[i] * a[i];
  }
  const double root = 1 / std::sqrt(size);
  const double norm = std::sqrt(squares);
  const double first =
      polynomial({0, 0.221157, -0.147981, -2.07119, 4.434685, -2.706056}, root) + a[0] / norm;
  double rest = squares - 2 * a[0] * a[0];
  double share = 1 - 2 * first * first;
  std::size_t own = 1;
  if (n > 5) {
    const double second =
        polynomial({0, 0.042981, -0.293762, -1.752461, 5.682633, -3.582633}, root) + a[1] / norm;
    rest -= 2 * a[1] * a[1];
    share -= 2 * second * second;
    a[1] = second;
    own = 2;
  }
  a[0] = first;
  const double factor = std::sqrt(rest / share);
  for (std::size_t i = own; i < a.size(); ++i) a[i] /= factor;
  return a;
}

}  // namespace

double shapiroWilk(std::span<const double> sorted, std::size_t n) {
  const std::vector<double> upper = weights(n);
  std::vector<double> all(n);  // 0 in the middle of an odd number
  for (std::size_t i = 0; i < upper.size(); ++i) {
    all[i] = -upper[i];
    all[n - 1 - i] = upper[i];
  }
  const double r = pearsonCorrelation(std::span<const double>(all).first(sorted.size()), sorted);
  return r * r;
}

}  // namespace zel::kernels
