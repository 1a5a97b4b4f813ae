#include "bench/peers_classifier.h"

#include <Eigen/Core>
#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <utility>

namespace zel::bench {

Roc plainRoc(std::span<const double> truth, std::span<const double> estimates) {
  const std::size_t n = truth.size();
  std::vector<std::pair<double, double>> pairs(n);
  for (std::size_t i = 0; i < n; ++i) pairs[i] = {estimates[i], truth[i]};
  std::sort(pairs.begin(), pairs.end(), [](auto& a, auto& b) { return a.first > b.first; });
  std::vector<double> positives(n + 1);
  for (std::size_t i = 0; i < n; ++i) positives[i + 1] = positives[i] + pairs[i].second;
  const double P = positives[n];
  const double N = static_cast<double>(n) - P;
  Roc roc;
  for (auto* column : {&roc.falseRates, &roc.trueRates, &roc.thresholds}) column->reserve(n + 1);
  double before = 0;
  for (std::size_t i = 1; i <= n; ++i) {
    const double q = static_cast<double>(i) - positives[i];
    roc.area += (q - before) * positives[i] / (N * P);
    before = q;
    roc.falseRates.push_back(q / N);
    roc.trueRates.push_back(positives[i] / P);
    roc.thresholds.push_back(pairs[i - 1].first);
  }
  for (auto* column : {&roc.falseRates, &roc.trueRates, &roc.thresholds}) {
    column->push_back(column->back());
  }
  const double low = pairs[n - 1].first;
  const double high = pairs[0].first;
  const double step = 0.01 * (high - low);
  double best[3] = {};
  double ties[3] = {};
  double sums[3] = {};
  double* const results[3] = {&roc.matthews, &roc.accuracy, &roc.informedness};
  for (double t = low - 5 * step; t < high + 5 * step; t += step) {
    const auto cut = std::partition_point(pairs.begin(), pairs.end(),
                                          [=](const auto& pair) { return pair.first >= t; });
    const auto above = static_cast<std::size_t>(cut - pairs.begin());
    const double tp = positives[above];
    const double fp = static_cast<double>(above) - tp;
    const double fn = P - tp;
    const double tn = N - fp;
    const double root = std::sqrt((tp + fn) * (tn + fp) * (tn + fn) * (tp + fp));
    const double scores[3] = {root == 0 ? 0 : (tp * tn - fp * fn) / root,
                              (tp + tn) / static_cast<double>(n), tp / P + tn / N - 1};
    for (int k = 0; k < 3; ++k) {
      if (scores[k] < best[k]) {
        ties[k] = sums[k] = 0;
        continue;
      }
      if (scores[k] > best[k]) ties[k] = sums[k] = 0;
      best[k] = scores[k];
      sums[k] += t;
      *results[k] = sums[k] / ++ties[k];
    }
  }
  return roc;
}

void eigenConfusion(std::span<const double> truth, std::span<const double> estimates,
                    double threshold, long counts[4]) {
  using Array = Eigen::Map<const Eigen::ArrayXd>;
  const Array t(truth.data(), static_cast<long>(truth.size()));
  const Array e(estimates.data(), static_cast<long>(estimates.size()));
  counts[0] = (t == 1 && e >= threshold).count();
  counts[1] = (t != 1 && e >= threshold).count();
  counts[2] = (t != 1 && e < threshold).count();
  counts[3] = (t == 1 && e < threshold).count();
}

void plainHoldOut(int objects, int size, const std::function<void(const std::vector<int>&)>& train,
                  const std::function<void(int)>& test) {
  static std::mt19937_64 random(1);
  std::vector<int> order(static_cast<std::size_t>(objects));
  std::iota(order.begin(), order.end(), 1);
  std::shuffle(order.begin(), order.end(), random);
  for (auto first = order.begin(); first != order.end();) {
    const auto last = first + std::min<std::ptrdiff_t>(size, order.end() - first);
    std::vector<int> training(order.begin(), first);
    training.insert(training.end(), last, order.end());
    std::sort(training.begin(), training.end());
    std::sort(first, last);
    train(training);
    for (; first != last; ++first) test(*first);
  }
}

}  // namespace zel::bench
