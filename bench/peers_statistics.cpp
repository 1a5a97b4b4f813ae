#include "bench/peers_statistics.h"

#include <gsl/gsl_cdf.h>
#include <gsl/gsl_poly.h>
#include <gsl/gsl_statistics.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <numeric>

namespace zel::bench {

namespace {

/// Mean ranks of x.
Sample ranksOf(const double* x, std::size_t n) {
  std::vector<std::size_t> order(n);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [x](auto i, auto j) { return x[i] < x[j]; });
  Sample ranks(n);
  for (std::size_t begin = 0, end; begin < n; begin = end) {
    for (end = begin + 1; end < n && x[order[end]] == x[order[begin]];) ++end;
    for (std::size_t i = begin; i < end; ++i)
      ranks[order[i]] = static_cast<double>(begin + end + 1) / 2;
  }
  return ranks;
}

}  // namespace

double gslTTest(const Sample& a, const Sample& b) {
  const double t = gsl_stats_ttest(a.data(), 1, a.size(), b.data(), 1, b.size());
  return 2 * gsl_cdf_tdist_Q(std::abs(t), static_cast<double>(a.size() + b.size() - 2));
}

double plainAnova(const Sample& x, const std::vector<int>& classes) {
  struct Group {
    double n = 0, sum = 0;
  };
  std::map<int, Group> groups;
  double sum = 0, squares = 0, ofGroups = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    Group& group = groups[classes[i]];
    ++group.n;
    group.sum += x[i];
    sum += x[i];
    squares += x[i] * x[i];
  }
  for (const auto& [label, group] : groups) ofGroups += group.sum * group.sum / group.n;
  const auto n = static_cast<double>(x.size());
  const auto g = static_cast<double>(groups.size());
  const double F = (ofGroups - sum * sum / n) / (g - 1) / ((squares - ofGroups) / (n - g));
  return gsl_cdf_fdist_Q(F, g - 1, n - g);
}

double plainMannWhitney(const Sample& a, const Sample& b) {
  Sample all = a;
  all.insert(all.end(), b.begin(), b.end());
  const Sample ranks = ranksOf(all.data(), all.size());
  std::sort(all.begin(), all.end());
  double ties = 0;
  for (std::size_t begin = 0, end; begin < all.size(); begin = end) {
    for (end = begin + 1; end < all.size() && all[end] == all[begin];) ++end;
    const auto t = static_cast<double>(end - begin);
    ties += t * t * t - t;
  }
  const auto nA = static_cast<double>(a.size()), nB = static_cast<double>(b.size()), n = nA + nB;
  const double U =
      std::accumulate(ranks.begin(), ranks.begin() + static_cast<std::ptrdiff_t>(a.size()), 0.0) -
      nA * (nA + 1) / 2;
  const double variance = nA * nB / 12 * (n + 1 - ties / (n * (n - 1)));
  return 2 * gsl_cdf_ugaussian_Q((std::abs(U - nA * nB / 2) - 0.5) / std::sqrt(variance));
}

double plainFriedman(const Sample& table, int rows, int columns) {
  const auto width = static_cast<std::size_t>(columns);
  Sample sums(width);
  for (std::size_t r = 0; r < static_cast<std::size_t>(rows); ++r) {
    const Sample ranks = ranksOf(table.data() + r * width, width);
    for (std::size_t c = 0; c < width; ++c) sums[c] += ranks[c];
  }
  const double squares = std::inner_product(sums.begin(), sums.end(), sums.begin(), 0.0);
  const double n = rows, k = columns;
  return gsl_cdf_chisq_Q(12 * squares / (n * k * (k + 1)) - 3 * n * (k + 1), k - 1);
}

double plainRuns(const Sample& x) {
  Sample work = x;
  const std::size_t half = work.size() / 2;
  std::nth_element(work.begin(), work.begin() + static_cast<std::ptrdiff_t>(half), work.end());
  double median = work[half];
  if (work.size() % 2 == 0)
    median = (median +
              *std::max_element(work.begin(), work.begin() + static_cast<std::ptrdiff_t>(half))) /
             2;
  int runs = 1;
  for (std::size_t i = 1; i < x.size(); ++i) runs += (x[i] > median) != (x[i - 1] > median);
  return runs;
}

double plainLilliefors(const Sample& x) {
  Sample z = x;
  std::sort(z.begin(), z.end());
  const double mean = gsl_stats_mean(z.data(), 1, z.size());
  const double deviation = gsl_stats_sd_m(z.data(), 1, z.size(), mean);
  const auto n = static_cast<double>(z.size());
  double distance = 0;
  for (std::size_t i = 0; i < z.size(); ++i) {
    const double F = std::erfc(-(z[i] - mean) / deviation / std::sqrt(2.0)) / 2;
    distance =
        std::max({distance, static_cast<double>(i + 1) / n - F, F - static_cast<double>(i) / n});
  }
  return distance;
}

double gslShapiroWilk(const Sample& x) {
  Sample sorted = x;
  std::sort(sorted.begin(), sorted.end());
  const std::size_t n = x.size();
  const auto size = static_cast<double>(n);
  Sample a(n);
  double squares = 0;
  for (std::size_t i = 0; i < n; ++i) {
    a[i] = gsl_cdf_ugaussian_Pinv((static_cast<double>(i) + 0.625) / (size + 0.25));
    squares += a[i] * a[i];
  }
  const double u = 1 / std::sqrt(size), norm = std::sqrt(squares);
  const double c1[] = {a[n - 1] / norm, 0.221157, -0.147981, -2.07119, 4.434685, -2.706056};
  const double c2[] = {a[n - 2] / norm, 0.042981, -0.293762, -1.752461, 5.682633, -3.582633};
  const double first = gsl_poly_eval(c1, 6, u), second = gsl_poly_eval(c2, 6, u);
  const double factor = std::sqrt((squares - 2 * a[n - 1] * a[n - 1] - 2 * a[n - 2] * a[n - 2]) /
                                  (1 - 2 * first * first - 2 * second * second));
  for (double& weight : a) weight /= factor;
  a[n - 1] = first;
  a[n - 2] = second;
  a[0] = -first;
  a[1] = -second;
  const double r = gsl_stats_correlation(a.data(), 1, sorted.data(), 1, n);
  return r * r;
}

double plainDurbinWatson(const Sample& x) {
  double steps = 0, squares = x[0] * x[0];
  for (std::size_t i = 1; i < x.size(); ++i) {
    steps += (x[i] - x[i - 1]) * (x[i] - x[i - 1]);
    squares += x[i] * x[i];
  }
  return steps / squares;
}

}  // namespace zel::bench
