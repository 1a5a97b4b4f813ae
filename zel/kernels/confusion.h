/// @file
/// Confusion matrix of a two-class classifier, and the scores that come from it.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "zel/base/types.h"

namespace zel::kernels {

/// Numbers of true positives, false positives, true negatives, false negatives; each at most 2^31.
/// A ratio whose denominator is 0 is 0.
struct Confusion {
  std::int64_t tp = 0;
  std::int64_t fp = 0;
  std::int64_t tn = 0;
  std::int64_t fn = 0;

  [[nodiscard]] static double ratio(std::int64_t part, std::int64_t whole) {
    return whole == 0 ? 0 : static_cast<double>(part) / static_cast<double>(whole);
  }
  [[nodiscard]] double tpRate() const { return ratio(tp, tp + fn); }
  [[nodiscard]] double tnRate() const { return ratio(tn, tn + fp); }
  [[nodiscard]] double fpRate() const { return ratio(fp, tn + fp); }
  [[nodiscard]] double fnRate() const { return ratio(fn, tp + fn); }
  [[nodiscard]] double precision() const { return ratio(tp, tp + fp); }
  [[nodiscard]] double negativePredictiveValue() const { return ratio(tn, tn + fn); }
  [[nodiscard]] double threatScore() const { return ratio(tp, tp + fn + fp); }
  [[nodiscard]] double f1() const { return ratio(2 * tp, 2 * tp + fn + fp); }
  [[nodiscard]] double accuracy() const { return ratio(tp + tn, tp + tn + fp + fn); }
  [[nodiscard]] double informedness() const { return tpRate() + tnRate() - 1; }

  /// Matthews' correlation coefficient. The products of two counts are exact; only the product of
  /// these would leave 64 bits, and it is rounded to extended precision instead. So a perfect
  /// classifier has exactly 1, of any size.
  [[nodiscard]] double matthews() const {
    const auto squared =
        static_cast<Extended>((tp + fn) * (tn + fp)) * static_cast<Extended>((tn + fn) * (tp + fp));
    if (squared == 0) return 0;
    return static_cast<double>(static_cast<Extended>(tp * tn - fp * fn) / std::sqrt(squared));
  }

  /// Theil's symmetric uncertainty coefficient 2 (H(A) + H(P) - H(A, P)) / (H(A) + H(P) + 1e-15) of
  /// the actual and the predicted class, entropies in nats.
  [[nodiscard]] double uncertainty() const {
    const auto n = static_cast<Extended>(tp + fp + tn + fn);
    const auto term = [n](std::int64_t count) {
      return count == 0 ? 0 : -static_cast<Extended>(count) / n * std::log(count / n);
    };
    const Extended actual = term(tp + fn) + term(tn + fp);
    const Extended predicted = term(tp + fp) + term(tn + fn);
    const Extended joint = term(tp) + term(fp) + term(tn) + term(fn);
    return static_cast<double>(2 * (actual + predicted - joint) / (actual + predicted + 1e-15L));
  }
};

/// Counts objects. Positive are those whose truth is `positive`; predicted positive are those whose
/// estimate is not below the threshold, a not-a-number among them.
[[nodiscard]] inline Confusion confusionAt(std::span<const double> truth,
                                           std::span<const double> estimates, double positive,
                                           double threshold) {
  std::int64_t positives = 0;
  std::int64_t below = 0;
  std::int64_t missed = 0;
  for (std::size_t i = 0; i < truth.size(); ++i) {
    const int isPositive = truth[i] == positive;
    const int isBelow = estimates[i] < threshold;
    positives += isPositive;
    below += isBelow;
    missed += isPositive & isBelow;
  }
  Confusion c;
  c.fn = missed;
  c.tp = positives - missed;
  c.tn = below - missed;
  c.fp = static_cast<std::int64_t>(truth.size()) - positives - c.tn;
  return c;
}

}  // namespace zel::kernels
