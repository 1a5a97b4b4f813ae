/// @file
/// Largest distance between the steps of a sample and a distribution function.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

namespace zel::kernels {

/// The maximum over i = 1..n of |i/n - F(x_i)| and |(i-1)/n - F(x_i)|, 0 for no values.
///
/// F is evaluated only where the maximum can be: it ascends, so between two known places the
/// distances are limited by the values at the two. For samples of about the distribution that takes
/// O(sqrt(n)) evaluations.
/// @param sorted  upwards; otherwise the result is some distance
/// @param F       ascending but for errors below 1e-7
template <class Cdf>
class EmpiricalDistance {
 public:
  EmpiricalDistance(std::span<const double> sorted, Cdf& F)
      : FSorted(sorted), FSize(static_cast<double>(sorted.size())), FCdf(F) {}

  [[nodiscard]] double find() {
    if (FSorted.empty()) return 0;
    const std::size_t last = FSorted.size() - 1;
    searchBetween(0, last, at(0), at(last));
    return FBest;
  }

 private:
  [[nodiscard]] double step(std::size_t i) const { return static_cast<double>(i) / FSize; }

  double at(std::size_t i) {
    const double value = FCdf(FSorted[i]);
    FBest = std::max({FBest, step(i + 1) - value, value - step(i)});
    return value;
  }

  void searchBetween(std::size_t low, std::size_t high, double atLow, double atHigh) {
    constexpr double kSlack = 2e-7;
    if (high - low < 2) return;
    if (std::max(step(high) - atLow, atHigh - step(low + 1)) + kSlack < FBest) return;
    const std::size_t middle = low + (high - low) / 2;
    const double atMiddle = at(middle);
    searchBetween(low, middle, atLow, atMiddle);
    searchBetween(middle, high, atMiddle, atHigh);
  }

  std::span<const double> FSorted;
  double FSize;
  Cdf& FCdf;
  double FBest = 0;
};

}  // namespace zel::kernels
