#include "zel/kernels/select.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <vector>

#include "zel/kernels/bracket.h"
#include "zel/kernels/comb_sort.h"

namespace zel::kernels {
namespace {

// Up to here a sort is faster than a sample and a pass.
constexpr std::size_t kFewKeys = 500;
// A miss has odds below 1e-3, so a third one means that something is odd about the data.
constexpr int kAttempts = 3;

// Sorted sample with replacement. A generator of its own, since a selection must not advance the
// process-wide one (splitmix64: Steele, Lea and Flood, OOPSLA 2014).
template <class T>
std::vector<T> sortedSample(std::span<const T> x, std::size_t size, int attempt) {
  std::uint64_t state = 0x9e3779b97f4a7c15u * static_cast<std::uint64_t>(attempt + 1);
  std::vector<T> sample(size);
  for (T& key : sample) {
    std::uint64_t z = state += 0x9e3779b97f4a7c15u;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    const double uniform = static_cast<double>((z ^ (z >> 31)) >> 11) * 0x1p-53;
    const auto at = static_cast<std::size_t>(uniform * static_cast<double>(x.size()));
    key = x[std::min(at, x.size() - 1)];
  }
  combSortFast(std::span<T>(sample), size, true);
  return sample;
}

template <class T>
SelectedPair<T> selectPairOf(std::span<const T> x, std::size_t k);

template <class T>
Bracketing selectByBracket(std::span<const T> x, std::size_t k, int attempt,
                           SelectedPair<T>& pair) {
  using Limits = std::numeric_limits<T>;
  const auto n = static_cast<double>(x.size());
  const double root = std::cbrt(n);
  const double sampleSize = std::min(std::floor(root * root), 32768.0);
  const auto sample = sortedSample(x, static_cast<std::size_t>(sampleSize), attempt);

  // The position's rank in the sample has this standard deviation at most; four of them on each
  // side.
  const double p = static_cast<double>(k) / n;
  const double margin = 4 * std::sqrt(sampleSize * p * (1 - p)) + 3;
  const double lowRank = std::floor(p * sampleSize - margin);
  const double highRank = std::ceil(p * sampleSize + margin);
  const T lowest = Limits::has_infinity ? -Limits::infinity() : Limits::lowest();
  const T highest = Limits::has_infinity ? Limits::infinity() : Limits::max();
  const T low = lowRank < 0 ? lowest : sample[static_cast<std::size_t>(lowRank)];
  const T high = highRank >= sampleSize ? highest : sample[static_cast<std::size_t>(highRank)];

  const double expected = (highRank - lowRank) / sampleSize * n;
  const std::size_t room =
      std::min(x.size(), static_cast<std::size_t>(1.5 * expected)) + kBracketSlack;
  const std::unique_ptr<T[]> storage(new T[room]);  // not filled
  return selectBetween(x, k, low, high, std::span<T>(storage.get(), room), pair);
}

// Nothing if x is short, holds a NaN, or is at odds with the sampling.
template <class T>
std::optional<SelectedPair<T>> selectBySampling(std::span<const T> x, std::size_t k) {
  if (x.size() <= kFewKeys) return std::nullopt;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    SelectedPair<T> pair;
    const Bracketing outcome = selectByBracket(x, k, attempt, pair);
    if (outcome == Bracketing::Found) return pair;
    if (outcome == Bracketing::Unordered) break;
  }
  return std::nullopt;
}

template <class T>
SelectedPair<T> selectPairOf(std::span<const T> x, std::size_t k) {
  if (x.empty()) return {};
  k = std::min(k, x.size() - 1);
  if (const auto pair = selectBySampling(x, k)) return *pair;
  std::vector<T> work(x.begin(), x.end());
  combSortFast(std::span<T>(work), work.size(), true);
  return {work[k], work[std::min(k + 1, work.size() - 1)]};
}

// Brings keys that match to the front until there are `wanted` of them; returns their number. Has
// no branch that depends on a key but the last.
template <class T, class Match>
std::size_t moveToFront(std::span<T> x, std::size_t wanted, Match match) {
  std::size_t front = 0;
  for (std::size_t i = 0; i < x.size() && front < wanted; ++i) {
    const T key = x[i];
    x[i] = x[front];
    x[front] = key;
    front += match(key);
  }
  return front;
}

template <class T>
T quickSelectOf(std::span<T> x, std::size_t k) {
  if (x.empty()) return T{};
  k = std::min(k, x.size() - 1);
  const T first = x[0];
  if (std::all_of(x.begin(), x.end(), [first](T key) { return key == first; })) return first;
  std::optional<SelectedPair<T>> pair;
  try {
    pair = selectBySampling(std::span<const T>(x), k);
  } catch (const std::bad_alloc&) {  // the sort needs no storage
  }
  if (pair) {
    const T value = pair->at;
    const std::size_t below = moveToFront(x, x.size(), [value](T key) { return key < value; });
    moveToFront(x.subspan(below), k + 1 - below, [value](T key) { return key == value; });
  } else {
    combSortFast(x, x.size(), true);
  }
  return x[k];
}

}  // namespace

template <class T>
Bracketing selectBetween(std::span<const T> x, std::size_t k, T low, T high, std::span<T> room,
                         SelectedPair<T>& pair) {
  const auto counts = placeKeys(x, low, high, room);
  if (counts.unordered) return Bracketing::Unordered;
  if (counts.overflow) return Bracketing::Missed;

  // Sorted, the keys are: below, at low, inside, at high, above.
  const std::size_t insideBegin = counts.below + counts.atLow;
  const std::size_t insideEnd = insideBegin + counts.inside;
  const std::size_t aboveBegin = insideEnd + counts.atHigh;
  const std::size_t next = std::min(k + 1, x.size() - 1);
  if (k < counts.below || next >= aboveBegin) return Bracketing::Missed;
  const std::span<const T> inside(room.data(), counts.inside);
  if (k < insideBegin) {
    pair.at = low;
  } else if (k < insideEnd) {
    pair = selectPairOf(inside, k - insideBegin);
  } else {
    pair.at = high;
  }
  if (next == k) {
    pair.next = pair.at;
  } else if (next < insideBegin) {
    pair.next = low;
  } else if (next >= insideEnd) {
    pair.next = high;
  } else if (next == insideBegin) {
    pair.next = *std::min_element(inside.begin(), inside.end());
  }
  return Bracketing::Found;
}

template Bracketing selectBetween(std::span<const double>, std::size_t, double, double,
                                  std::span<double>, SelectedPair<double>&);
template Bracketing selectBetween(std::span<const float>, std::size_t, float, float,
                                  std::span<float>, SelectedPair<float>&);
template Bracketing selectBetween(std::span<const std::int32_t>, std::size_t, std::int32_t,
                                  std::int32_t, std::span<std::int32_t>,
                                  SelectedPair<std::int32_t>&);

SelectedPair<double> selectPair(std::span<const double> x, std::size_t k) {
  return selectPairOf(x, k);
}
SelectedPair<float> selectPair(std::span<const float> x, std::size_t k) {
  return selectPairOf(x, k);
}
SelectedPair<std::int32_t> selectPair(std::span<const std::int32_t> x, std::size_t k) {
  return selectPairOf(x, k);
}

double quickSelect(std::span<double> x, std::size_t k) { return quickSelectOf(x, k); }
float quickSelect(std::span<float> x, std::size_t k) { return quickSelectOf(x, k); }
std::int32_t quickSelect(std::span<std::int32_t> x, std::size_t k) { return quickSelectOf(x, k); }

}  // namespace zel::kernels
