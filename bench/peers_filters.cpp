#include "bench/peers_filters.h"

#include <gsl/gsl_filter.h>
#include <gsl/gsl_movstat.h>

#include <Eigen/Core>
#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace zel::bench {

namespace {

using Eigen::ArrayXd;
using Signal = Eigen::Map<const ArrayXd>;

constexpr double kGaussWidth = 2.5;  // standard deviations from the centre to the end

Signal signal(std::span<const double> x) { return {x.data(), static_cast<long>(x.size())}; }
Eigen::Map<ArrayXd> signal(std::span<double> x) { return {x.data(), static_cast<long>(x.size())}; }

gsl_vector_const_view view(std::span<const double> x) {
  return gsl_vector_const_view_array(x.data(), x.size());
}
gsl_vector_view view(std::span<double> x) { return gsl_vector_view_array(x.data(), x.size()); }

void filterForwards(const double* x, std::size_t n, double a0, std::span<const double> a,
                    std::span<const double> b, double* y) {
  for (std::size_t i = 0; i < n; ++i) {
    double sum = a0 * x[i];
    for (std::size_t k = 1; k <= std::min(i, a.size()); ++k) {
      sum += a[k - 1] * x[i - k] + b[k - 1] * y[i - k];
    }
    y[i] = sum;
  }
}

double grey(const unsigned char* pixel) {
  return (299 * pixel[0] + 587 * pixel[1] + 114 * pixel[2] + 500) / 1000;
}

}  // namespace

void gslMovingMean(std::span<const double> x, std::size_t width, std::span<double> y) {
  const auto from = view(x);
  auto to = view(y);
  gsl_movstat_workspace* const work = gsl_movstat_alloc(width);
  gsl_movstat_mean(GSL_MOVSTAT_END_TRUNCATE, &from.vector, &to.vector, work);
  gsl_movstat_free(work);
}

void gslMovingMedian(std::span<const double> x, std::size_t width, std::span<double> y) {
  const auto from = view(x);
  auto to = view(y);
  gsl_filter_median_workspace* const work = gsl_filter_median_alloc(width);
  gsl_filter_median(GSL_FILTER_END_PADVALUE, &from.vector, &to.vector, work);
  gsl_filter_median_free(work);
}

void gslGaussian(std::span<const double> x, std::size_t taps, std::span<double> y) {
  const auto from = view(x);
  auto to = view(y);
  gsl_filter_gaussian_workspace* const work = gsl_filter_gaussian_alloc(taps);
  gsl_filter_gaussian(GSL_FILTER_END_PADVALUE, kGaussWidth, 0, &from.vector, &to.vector, work);
  gsl_filter_gaussian_free(work);
}

void gslGaussianKernel(std::span<double> kernel) {
  auto to = view(kernel);
  gsl_filter_gaussian_kernel(kGaussWidth, 0, 1, &to.vector);
}

void runningMeans(std::span<const double> x, std::size_t width, std::span<double> y) {
  double sum = std::accumulate(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(width), 0.0);
  const auto divisor = static_cast<double>(width);
  y[0] = sum / divisor;
  for (std::size_t i = 1; i < y.size(); ++i) {
    sum += x[i + width - 1] - x[i - 1];
    y[i] = sum / divisor;
  }
}

void eigenConvolve(std::span<const double> x, std::span<const double> kernel, std::span<double> y) {
  auto to = signal(y);
  to.setZero();
  for (std::size_t k = 0; k < kernel.size(); ++k) {
    to += kernel[k] * signal(x).segment(static_cast<long>(k), to.size());
  }
}

void plainBothWays(std::span<const double> x, double a0, std::span<const double> a,
                   std::span<const double> b, std::span<double> y) {
  const std::size_t pad = a.size() + 1;
  std::vector<double> padded(x.size() + 2 * pad);
  std::vector<double> forth(padded.size());
  std::copy(x.begin(), x.end(), padded.begin() + static_cast<std::ptrdiff_t>(pad));
  filterForwards(padded.data(), padded.size(), a0, a, b, forth.data());
  std::reverse(forth.begin(), forth.end());
  filterForwards(forth.data(), forth.size(), a0, a, b, padded.data());
  std::reverse_copy(padded.begin() + static_cast<std::ptrdiff_t>(pad),
                    padded.end() - static_cast<std::ptrdiff_t>(pad), y.begin());
}

void eigenPictureKernel(const double* picture, long rows, long columns, const double* kernel,
                        long n, double* result) {
  using Picture = Eigen::ArrayXXd;
  const Eigen::Map<const Picture> from(picture, rows, columns);
  const Eigen::Map<const Picture> weights(kernel, n, n);
  Eigen::Map<Picture> to(result, rows, columns);
  // Column by column, so that what is added up stays in the cache.
  const long inner = rows - n + 1;
  for (long c = 0; c + n <= columns; ++c) {
    auto column = to.col(c + n / 2).segment(n / 2, inner);
    column.setZero();
    for (long j = 0; j < n; ++j) {
      for (long i = 0; i < n; ++i) column += weights(i, j) * from.col(c + j).segment(i, inner);
    }
  }
}

double eigenGaussKernel(std::span<const double> x, std::span<const double> y, double sigma) {
  const double d = (signal(x) - signal(y)).matrix().squaredNorm() / (sigma * sigma);
  return std::exp(-std::min(d, 20.0));
}

void eigenPeaks(std::span<const double> peaks, std::span<double> y) {
  auto to = signal(y);
  const auto n = static_cast<double>(y.size());
  const ArrayXd at = ArrayXd::LinSpaced(to.size(), 1, n);
  to.setZero();
  for (std::size_t k = 0; k < peaks.size(); k += 3) {
    to += peaks[k + 2] * (-((at - peaks[k]) / peaks[k + 1]).square()).exp();
  }
}

void eigenPeak2D(double x, double y, double width, double height, double* picture, long rows,
                 long columns) {
  const auto along = [=](long n, double centre) {
    const ArrayXd at = ArrayXd::LinSpaced(n, 1, static_cast<double>(n));
    return ArrayXd((-((at - centre) / width).square()).exp());
  };
  Eigen::Map<Eigen::MatrixXd>(picture, columns, rows).noalias() =
      height * along(columns, y).matrix() * along(rows, x).matrix().transpose();
}

double plainRanks(std::span<const double> x, std::span<double> ranks) {
  std::vector<std::size_t> order(x.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return x[a] < x[b]; });
  double ties = 0;
  for (std::size_t i = 0, end = 0; i < order.size(); i = end) {
    while (end < order.size() && x[order[end]] == x[order[i]]) ++end;
    const auto t = static_cast<double>(end - i);
    ties += t * t * t - t;
    for (std::size_t k = i; k < end; ++k) ranks[order[k]] = static_cast<double>(i) + (t + 1) / 2;
  }
  return ties;
}

double plainGreyCorrelation(const unsigned char* first, const unsigned char* second,
                            std::size_t width, std::size_t height, std::size_t stride) {
  ArrayXd x(static_cast<long>(width * height));
  ArrayXd y(x.size());
  for (std::size_t r = 0, k = 0; r < height; ++r) {
    for (std::size_t c = 0; c < width; ++c, ++k) {
      x[static_cast<long>(k)] = grey(first + 4 * (r * stride + c));
      y[static_cast<long>(k)] = grey(second + 4 * (r * stride + c));
    }
  }
  x -= x.mean();
  y -= y.mean();
  return (x * y).sum() / std::sqrt(x.square().sum() * y.square().sum());
}

}  // namespace zel::bench
