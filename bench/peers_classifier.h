/// @file
/// Evaluation of a classifier as a user would write it. Compiled apart, with -O3 -march=native.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace zel::bench {

/// A ROC curve, and the thresholds of a scan of 111 that maximise three scores.
struct Roc {
  std::vector<double> falseRates, trueRates, thresholds;
  double area = 0;
  double matthews = 0, accuracy = 0, informedness = 0;
};

/// Of classes 0 and 1, the estimates all different. Sorts pairs of them with std::sort; the scan
/// looks each threshold up.
Roc plainRoc(std::span<const double> truth, std::span<const double> estimates);

/// Counts true positives, false positives, true negatives and false negatives.
void eigenConfusion(std::span<const double> truth, std::span<const double> estimates,
                    double threshold, long counts[4]);

/// Repeated hold-out: a shuffled order, cut into test sets; for each a list of all other objects is
/// made and given to train, then each of the set to test.
void plainHoldOut(int objects, int size, const std::function<void(const std::vector<int>&)>& train,
                  const std::function<void(int)>& test);

}  // namespace zel::bench
