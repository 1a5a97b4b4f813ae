/// @file
/// Binning of values into equal bins, for real and integer values.
#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "zel/base/rounding.h"

namespace zel::kernels {

inline constexpr int kMaxBins = 500;

/// Number of bins: round(|last - first| / width) + 1, halves to even. Nothing for a width of 0 or below,
/// for arguments or a quotient that are not finite, and for more than 500 bins.
[[nodiscard]] inline std::optional<int> binCount(double first, double last, double width) {
  const double steps = std::abs(last - first) / width;
  if (!(width > 0) || !(steps < kMaxBins)) return std::nullopt;
  const int count = RoundToInt<int>(steps) + 1;
  return count <= kMaxBins ? std::optional(count) : std::nullopt;
}

/// |last - first| / width + 1 in integer division; a width below 1 counts as 1. Nothing for more than
/// 500 bins.
[[nodiscard]] inline std::optional<int> binCount(std::int32_t first, std::int32_t last, std::int32_t width) {
  const std::int64_t distance = std::int64_t{last} - first;
  const std::int64_t count = (distance < 0 ? -distance : distance) / std::max<std::int64_t>(width, 1) + 1;
  return count <= kMaxBins ? std::optional(static_cast<int>(count)) : std::nullopt;
}

/// Counts values into the bins first .. first + width, and so on up to last + width.
template <class T>
class Binning {
 public:
  /// Bins as binCount says; counts has that many cells, is cleared here and must outlive the object.
  Binning(T first, T last, T width, std::span<std::int32_t> counts)
      : FFirst(first), FWidth(width), FEnd(Wide(last) + Wide(width)), FCounts(counts) {
    if constexpr (std::integral<T>) {
      FWidth = std::max<T>(width, 1);
      FEnd = Wide(last) + FWidth;
    }
    std::fill(counts.begin(), counts.end(), 0);
  }

  /// Not-a-number is counted nowhere; a bin beyond the counts is dropped.
  void Add(T x) {
    if (x < FFirst) {
      ++underflow;
    } else if (x < FEnd) {
      if (const std::size_t bin = BinOf(x); bin < FCounts.size()) maxCount = std::max(maxCount, ++FCounts[bin]);
    } else if (x >= FEnd) {
      ++overflow;
    }
  }

  std::int32_t underflow = 0;
  std::int32_t overflow = 0;
  std::int32_t maxCount = 0;

 private:
  using Wide = std::conditional_t<std::integral<T>, std::int64_t, T>;

  [[nodiscard]] std::size_t BinOf(T x) const {
    if constexpr (std::integral<T>) {
      return static_cast<std::size_t>((Wide(x) - FFirst) / FWidth);
    } else {
      const T bin = std::floor((x - FFirst) / FWidth);
      return bin < static_cast<T>(kMaxBins) ? static_cast<std::size_t>(bin) : kMaxBins;
    }
  }

  T FFirst;
  T FWidth;
  Wide FEnd;
  std::span<std::int32_t> FCounts;
};

}  // namespace zel::kernels
