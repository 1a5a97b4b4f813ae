#include "bench/peers_sums.h"

#include <gsl/gsl_statistics_double.h>
#include <zlib.h>

#include <Eigen/Core>

namespace zel::bench {

namespace {
Eigen::Map<const Eigen::ArrayXd> mapped(const double* x, std::size_t n) {
  return {x, static_cast<Eigen::Index>(n)};
}
}  // namespace

double eigenSum(const double* x, std::size_t n) { return mapped(x, n).sum(); }

double eigenDot(const double* x, const double* y, std::size_t n) {
  return mapped(x, n).matrix().dot(mapped(y, n).matrix());
}

void eigenMeanVariance(const double* x, std::size_t n, double& mean, double& variance) {
  const auto a = mapped(x, n);
  mean = a.mean();
  variance = (a - mean).square().sum() / static_cast<double>(n - 1);
}

void eigenMinMax(const double* x, std::size_t n, double& minimum, double& maximum,
                 std::ptrdiff_t& minIndex, std::ptrdiff_t& maxIndex) {
  const auto a = mapped(x, n);
  minimum = a.minCoeff(&minIndex);
  maximum = a.maxCoeff(&maxIndex);
}

void gslMeanVariance(const double* x, std::size_t n, double& mean, double& variance) {
  mean = gsl_stats_mean(x, 1, n);
  variance = gsl_stats_variance_m(x, 1, n, mean);
}

void zlibCrcOfPlanes(const unsigned char* planes, std::size_t n, std::uint32_t* crcs) {
  for (std::size_t k = 0; k < 8; ++k) {
    crcs[k] = static_cast<std::uint32_t>(crc32(0, planes + k * n, static_cast<uInt>(n)));
  }
}

}  // namespace zel::bench
