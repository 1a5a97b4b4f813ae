#include "zel/kernels/windows.h"

#include <cmath>
#include <cstddef>
#include <numbers>

#include "zel/kernels/double_double.h"
#include "zel/kernels/roots_of_unity.h"

namespace zel::kernels {

namespace {

/// Multiplies number i = 1..N.
void weigh(double* data, std::size_t i, double weight) {
  data[2 * i - 2] *= weight;
  data[2 * i - 1] *= weight;
}

/// Gives the numbers at a distance of j = 0..N/2 from number N/2 the weights weightAt(j), in this
/// order.
template <class Weight>
void weighFromPeak(double* data, int bits, Weight weightAt) {
  if (bits == 0) return;
  const std::size_t half = std::size_t{1} << bits >> 1;
  weigh(data, half, weightAt(std::size_t{0}));
  for (std::size_t j = 1; j <= half; ++j) {
    const double weight = weightAt(j);
    weigh(data, half + j, weight);
    if (j < half) weigh(data, half - j, weight);
  }
}

/// e^x by its series, for -16 <= x <= 0.
DoubleDouble exponential(DoubleDouble x) {
  DoubleDouble sum{1, 0};
  DoubleDouble term{1, 0};
  for (int k = 1; std::abs(term.hi) > 0x1p-130; ++k) {
    term = term * x / static_cast<double>(k);
    sum = sum + term;
  }
  return sum;
}

}  // namespace

double cosineSum(const std::array<double, 4>& a, double t) {
  const double cosine = std::cos(2 * std::numbers::pi * t);
  // cos 2x and cos 3x by cos x
  const double twice = 2 * cosine * cosine - 1;
  const double thrice = (2 * twice - 1) * cosine;
  return a[0] + a[1] * cosine + a[2] * twice + a[3] * thrice;
}

void cosineSumWindow(double* data, int bits, const std::array<double, 4>& a) {
  const RootsOfUnity roots(bits);
  weighFromPeak(data, bits, [&](std::size_t j) {
    double weight = a[0] + a[1] * roots(j).re;
    if (a[2] != 0) weight += a[2] * roots(2 * j).re;
    if (a[3] != 0) weight += a[3] * roots(3 * j).re;
    return weight;
  });
}

void squaredCosineWindow(double* data, int bits) {
  const RootsOfUnity roots(bits + 1);
  weighFromPeak(data, bits, [&](std::size_t j) {
    const double cosine = roots(j).re;
    return cosine * cosine;
  });
}

void triangleWindow(double* data, int bits) {
  const std::size_t n = std::size_t{1} << bits;
  for (std::size_t i = 1; i <= n / 2; ++i) {
    const double weight = static_cast<double>(2 * i) / static_cast<double>(n);
    weigh(data, i, weight);
    weigh(data, n + 1 - i, weight);
  }
}

void gaussWindow(double* data, int bits) {
  // exp(-18 (j/N)^2): the quotient of neighbours changes by a constant factor.
  const double step = std::ldexp(1, -2 * bits);
  DoubleDouble weight{1, 0};
  DoubleDouble quotient = exponential({-18 * step, 0});
  const DoubleDouble factor = bits > 1 ? exponential({-36 * step, 0}) : DoubleDouble{1, 0};
  weighFromPeak(data, bits, [&](std::size_t) {
    const double current = weight.hi;
    weight = weight * quotient;
    quotient = quotient * factor;
    return current;
  });
}

}  // namespace zel::kernels
