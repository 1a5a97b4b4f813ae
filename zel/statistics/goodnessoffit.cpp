#include "zel/statistics/goodnessoffit.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

#include "zel/base/array.h"
#include "zel/base/types.h"
#include "zel/kernels/horner.h"
#include "zel/kernels/power_of_matrix.h"
#include "zel/statistics/memory_impl.h"

namespace zel {

namespace {

constexpr int kLevels = 5;
constexpr double kLevel[kLevels] = {0.20, 0.15, 0.10, 0.05, 0.01};
constexpr double kLargeSample[kLevels] = {1.073, 1.138, 1.224, 1.358, 1.628};
constexpr int kTabulated = 20;
constexpr double kCritical[kTabulated][kLevels] = {
    {0.900, 0.925, 0.950, 0.975, 0.995}, {0.684, 0.726, 0.776, 0.842, 0.929},
    {0.565, 0.597, 0.642, 0.708, 0.828}, {0.494, 0.525, 0.564, 0.624, 0.733},
    {0.446, 0.474, 0.510, 0.565, 0.669}, {0.410, 0.436, 0.470, 0.521, 0.618},
    {0.381, 0.405, 0.438, 0.486, 0.577}, {0.358, 0.381, 0.411, 0.457, 0.543},
    {0.339, 0.360, 0.388, 0.432, 0.514}, {0.322, 0.342, 0.368, 0.410, 0.490},
    {0.307, 0.326, 0.352, 0.391, 0.468}, {0.295, 0.313, 0.338, 0.375, 0.450},
    {0.284, 0.302, 0.325, 0.361, 0.433}, {0.274, 0.292, 0.314, 0.349, 0.418},
    {0.266, 0.283, 0.304, 0.338, 0.404}, {0.258, 0.274, 0.295, 0.328, 0.392},
    {0.250, 0.266, 0.286, 0.318, 0.381}, {0.244, 0.259, 0.278, 0.309, 0.371},
    {0.237, 0.252, 0.272, 0.301, 0.363}, {0.231, 0.246, 0.264, 0.294, 0.356}};

bool isLevel(TSignifLevel alpha) { return alpha < kLevels; }

/// The m by m matrix of Marsaglia, Tsang and Wang by columns, m = 2k - 1, h = k - n d.
void fillKolmogorov(kernels::Matrix H, double h) {
  const std::size_t m = H.rows;
  const auto power = [h](std::size_t exponent) {
    return std::pow(h, static_cast<double>(exponent));
  };
  for (std::size_t j = 0; j < m; ++j)
    for (std::size_t i = 0; i < m; ++i) H(i, j) = i + 1 >= j ? 1 : 0;
  for (std::size_t i = 0; i < m; ++i) {
    H(i, 0) -= power(i + 1);
    H(m - 1, i) -= power(m - i);
  }
  if (2 * h - 1 > 0) H(m - 1, 0) += std::pow(2 * h - 1, static_cast<double>(m));
  double factorial = 1;  // of i - j + 1
  for (std::size_t distance = 2; distance <= m; ++distance) {
    factorial *= static_cast<double>(distance);
    for (std::size_t j = 0; j + distance - 1 < m; ++j) H(j + distance - 1, j) /= factorial;
  }
}

/// P(D < d) by the power of a matrix.
double kolmogorov(int n, double d) {
  const auto k = static_cast<std::size_t>(n * d) + 1;
  const std::size_t m = 2 * k - 1;
  TDouble2DArray storage;
  storage.SetLength(m, m);
  const kernels::Matrix H{storage.data(), m, m, m};
  fillKolmogorov(H, static_cast<double>(k) - n * d);
  auto [value, exponent] = kernels::centreOfPower(H, n);
  for (int i = 1; i <= n; ++i) {
    value *= static_cast<double>(i) / n;
    if (value < 1e-140) {
      value *= 1e140;
      exponent -= 140;
    }
  }
  return static_cast<double>(value * std::pow(10.0L, exponent));
}

/// P(Z > z) of the standard normal distribution.
double upperNormal(double z) {
  return static_cast<double>(std::erfc(Extended{z} / std::sqrt(2.0L)) / 2);
}

/// Royston's correction of mean and deviation for the missing fraction of a sample.
void censor(double missing, double logN, double& mean, double& deviation) {
  constexpr double kZ[] = {1.2816, 1.6449, 2.3263};  // of 0.9, 0.95 and 0.99
  constexpr double kMeanZ = 1.7509;
  constexpr double kSquares = 0.56268;
  const double fraction = -std::log(missing);
  const double slope = 1 + logN * 0.8378;
  const double z90 =
      kZ[0] + slope * std::pow(kernels::horner({0.164, 0.533}, std::pow(0.556, logN)), fraction);
  const double z95 =
      kZ[1] + slope * std::pow(kernels::horner({0.1736, 0.315}, std::pow(0.622, logN)), fraction);
  const double z99 = kZ[2] + slope * std::pow(kernels::horner({0.256, -0.00635}, logN), fraction);
  const double centre = (z90 + z95 + z99) / 3;
  const double scale =
      (kZ[0] * (z90 - centre) + kZ[1] * (z95 - centre) + kZ[2] * (z99 - centre)) / kSquares;
  mean += (centre - scale * kMeanZ) * deviation;
  deviation *= scale;
}

}  // namespace

double KSPValue(int n, double d) {
  if (std::isnan(d)) return d;
  if (n < 1 || d <= 0) return 1;
  const double s = n * d * d;
  if (s > 7.24 || (s > 3.76 && n > 99)) {
    const double root = std::sqrt(static_cast<double>(n));
    return 2 * std::exp(-(2.000071 + 0.331 / root + 1.409 / n) * s);
  }
  return detail::GuardStatis([&] { return 1 - kolmogorov(n, d); },
                             [] { return "KSPValue: not enough memory"; });
}

double KolmogSmir1SampleTestStat(int n, TSignifLevel alpha) {
  if (n < 1 || !isLevel(alpha)) return -1;
  return n <= kTabulated ? kCritical[n - 1][alpha]
                         : kLargeSample[alpha] / std::sqrt(static_cast<double>(n));
}

double KSQuantile(int n, TSignifLevel alpha) {
  double d = KolmogSmir1SampleTestStat(n, alpha);
  if (d < 0) return d;
  while (true) {
    const double difference = KSPValue(n, d) - kLevel[alpha];
    if (!(std::abs(difference) > 0.0001)) return d;
    d *= 1 + difference;
  }
}

double LillieforsPValue(int n, double d) {
  if (n <= 5) return -1;
  double size = n;
  if (n > 100) {
    d *= std::pow(size / 100, 0.49);
    size = 100;
  }
  const double shifted = size + 2.78019;
  const double exponent = -7.01256 * d * d * shifted + 2.99587 * d * std::sqrt(shifted) - 0.122119 +
                          0.974598 / std::sqrt(size) + 1.67997 / size;
  return std::exp(exponent > 0 ? 0 : exponent);
}

double LillieforsQuantile(int n, double alpha) {
  const double p = 1 - alpha;
  const double a =
      kernels::horner({6.32207539843126, -17.1398870006148, 38.42812675101057, -45.93241384693391,
                       7.88697700041829, 29.79317711037858, -18.48090137098585},
                      p);
  const double b =
      kernels::horner({12.940399038404, -53.458334259532, 186.923866119699, -410.582178349305,
                       517.377862566267, -343.581476222384, 92.123451358715},
                      p);
  return 1 / std::sqrt(n * a + b);
}

double ShapiroWilkIntegral(double w, int n, int m) {
  const int missing = m == 0 ? 0 : n - m;
  if (n < 3 || m < 0 || missing < 0) return -1;
  if (missing > 0 && (n < 20 || missing > 0.8 * n)) return -1;
  if (w <= 0) return 0;
  if (w >= 1) return 1;
  if (n == 3) {  // W is at least 3/4
    constexpr double kPi = 3.14159265358979323846;
    return std::max(0.0, 6 / kPi * (std::asin(std::sqrt(w)) - kPi / 3));
  }
  const double size = n;
  const double logN = std::log(size);
  double y = std::log(1 - w);
  double mean, deviation;
  if (n <= 11) {
    const double limit = kernels::horner({-2.273, 0.459}, size);
    if (y >= limit) return 0;
    y = -std::log(limit - y);
    mean = kernels::horner({0.544, -0.39978, 0.025054, -6.714e-4}, size);
    deviation = std::exp(kernels::horner({1.3822, -0.77857, 0.062767, -0.0020322}, size));
  } else {
    mean = kernels::horner({-1.5861, -0.31082, -0.083751, 0.0038915}, logN);
    deviation = std::exp(kernels::horner({-0.4803, -0.082676, 0.0030302}, logN));
  }
  if (missing > 0) censor(missing / size, logN, mean, deviation);
  return upperNormal((y - mean) / deviation);
}

}  // namespace zel
