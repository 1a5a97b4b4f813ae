/// @file
/// Histogram binning.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include "zel/base/rounding.h"

namespace zel::kernels {

/// Number of bins between the lower edges of the first and the last one: |last - first| / width
/// rounded to nearest (integers: div) plus 1, limited to the int range. 0 for a width of 0 or below
/// or bounds that are not finite.
template <class T>
[[nodiscard]] int numberOfBins(T first, T last, T width) {
  if (!(width > 0)) return 0;
  if constexpr (std::is_integral_v<T>) {
    const std::int64_t range = std::int64_t{last} - std::int64_t{first};
    const std::int64_t bins = (range < 0 ? -range : range) / width + 1;
    return static_cast<int>(std::min<std::int64_t>(bins, std::numeric_limits<int>::max()));
  } else {
    const T steps = std::fabs(last - first) / width;
    if (!std::isfinite(steps)) return 0;
    return RoundToInt<int>(RoundEven(steps) + 1);
  }
}

/// Adds to a count that stops at the largest int.
inline void growCount(int& count, std::int64_t times) {
  constexpr std::int64_t most = std::numeric_limits<int>::max();
  count = static_cast<int>(times > most - count ? most : count + times);
}

/// Counts values in bins of equal width: bin k, from 0, takes first + k width <= x < first + (k+1)
/// width. Values below first underflow, those at or above last + width overflow, a bin beyond the
/// last one is dropped, not-a-number is counted nowhere. Counts stop at the largest int.
template <class T, class Count>
class HistogramCounter {
 public:
  /// @param count  count(bin, times) adds to a bin and returns its new count
  HistogramCounter(T first, T last, T width, int bins, Count count)
      : first_(first),
        end_(wide(last) + wide(width)),
        width_(width),
        bins_(bins),
        count_(std::move(count)) {}

  /// Counts x as often as given.
  void add(T x, std::int64_t times = 1) {
    if (x < first_) {
      growCount(underflow_, times);
    } else if (wide(x) < end_) {
      // Compared before it is converted: the quotient may exceed every integer.
      const auto bin = quotient(x);
      if (bin < static_cast<decltype(bin)>(bins_)) {
        maxCount_ = std::max(maxCount_, count_(static_cast<int>(bin), times));
      }
    } else if (wide(x) >= end_) {
      growCount(overflow_, times);
    }
  }

  [[nodiscard]] int underflow() const { return underflow_; }
  [[nodiscard]] int overflow() const { return overflow_; }
  [[nodiscard]] int maxCount() const { return maxCount_; }

 private:
  using Wide = std::conditional_t<std::is_integral_v<T>, std::int64_t, T>;
  static Wide wide(T x) { return x; }
  [[nodiscard]] Wide quotient(T x) const {
    if constexpr (std::is_integral_v<T>) {
      return (wide(x) - first_) / width_;
    } else {
      return std::floor((x - first_) / width_);
    }
  }

  T first_;
  Wide end_;
  T width_;
  int bins_;
  Count count_;
  int underflow_ = 0;
  int overflow_ = 0;
  int maxCount_ = 0;
};

}  // namespace zel::kernels
