/// @file
/// Histogram of a vector into an integer vector, for both element types. Internal.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>

#include "zel/kernels/histogram.h"
#include "zel/vector/TIntVector.h"

namespace zel::detail {

/// More bins than this are refused.
inline constexpr int kMostBins = 500;

/// Bins that a histogram needs, or 0 if they are too many, the width is 0 or below, or the bounds
/// are not finite.
template <class T>
[[nodiscard]] int AcceptedBins(T firstBin, T lastBin, T width) {
  const int bins = kernels::numberOfBins(firstBin, lastBin, width);
  return bins > kMostBins ? 0 : bins;
}

/// Counts what visit(counter) adds.
/// @param histo  takes the counts through its element setter
template <class T, class Visit>
void CountInto(TIntVector& histo, T firstBin, T lastBin, T width, int bins, int& underflow,
               int& overflow, int& maxCount, Visit&& visit) {
  if (histo.NrOfElem() != bins) histo.Resize(bins);
  histo.Clear();
  const auto count = [&](int bin, std::int64_t times) {
    int next = histo.GetVal(bin + 1);
    kernels::growCount(next, times);
    histo.SetVal(bin + 1, next);
    return next;
  };
  kernels::HistogramCounter counter(firstBin, lastBin, width, bins, count);
  visit(counter);
  underflow = counter.underflow();
  overflow = counter.overflow();
  maxCount = counter.maxCount();
}

/// Counts the 1-based positions first..last of the cells, those outside as 0.
template <class T, class Counter>
void CountPositions(std::span<const T> cells, int first, int last, Counter& counter) {
  const auto n = static_cast<std::int64_t>(cells.size());
  const std::int64_t inLow = std::clamp<std::int64_t>(first, 1, n + 1);
  const std::int64_t inHigh = std::clamp<std::int64_t>(last, 0, n);
  const std::int64_t inside = std::max<std::int64_t>(0, inHigh - inLow + 1);
  const std::int64_t outside = std::max<std::int64_t>(0, std::int64_t{last} - first + 1) - inside;
  if (outside > 0) counter.add(T{0}, outside);
  for (std::int64_t i = inLow; i <= inHigh; ++i)
    counter.add(cells[static_cast<std::size_t>(i - 1)]);
}

}  // namespace zel::detail
