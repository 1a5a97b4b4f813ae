#include "zel/kernels/rank_correlation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace zel::kernels {

namespace {

/// Calls use(begin, end) for each run of elements that are neighbours and equal.
template <class T, class Equal, class Use>
void forEachRun(const std::vector<T>& sorted, Equal&& equal, Use&& use) {
  for (std::size_t begin = 0; begin < sorted.size();) {
    std::size_t end = begin + 1;
    while (end < sorted.size() && equal(sorted[begin], sorted[end])) ++end;
    use(begin, end);
    begin = end;
  }
}

/// Pairs within runs of equal elements.
template <class T, class Equal>
std::int64_t tiedPairs(const std::vector<T>& sorted, Equal&& equal) {
  std::int64_t pairs = 0;
  forEachRun(sorted, equal, [&](std::size_t begin, std::size_t end) {
    const auto t = static_cast<std::int64_t>(end - begin);
    pairs += t * (t - 1) / 2;
  });
  return pairs;
}

/// Sorts x upwards; returns how many pairs stood in the wrong order, equal ones not counted.
std::int64_t sortAndCountInversions(std::vector<double>& x) {
  constexpr std::size_t kRun = 16;
  const std::size_t n = x.size();
  std::int64_t inversions = 0;
  for (std::size_t first = 0; first < n; first += kRun) {
    const std::size_t last = std::min(first + kRun, n);
    for (std::size_t i = first + 1; i < last; ++i) {
      const double value = x[i];
      std::size_t place = i;
      for (; place > first && value < x[place - 1]; --place) x[place] = x[place - 1];
      x[place] = value;
      inversions += static_cast<std::int64_t>(i - place);
    }
  }
  std::vector<double> merged(n);
  for (std::size_t width = kRun; width < n; width *= 2) {
    for (std::size_t first = 0; first < n; first += 2 * width) {
      const std::size_t middle = std::min(first + width, n);
      const std::size_t last = std::min(middle + width, n);
      std::size_t left = first;
      std::size_t right = middle;
      std::size_t to = first;
      // Each element of the right run passes what is left of the left one. Without a branch on the
      // data, which would be mispredicted half of the time.
      while (left < middle && right < last) {
        const bool passes = x[right] < x[left];
        merged[to++] = passes ? x[right] : x[left];
        inversions += passes ? static_cast<std::int64_t>(middle - left) : 0;
        left += passes ? 0 : 1;
        right += passes ? 1 : 0;
      }
      const auto at = [](std::vector<double>& v, std::size_t i) {
        return v.begin() + static_cast<std::ptrdiff_t>(i);
      };
      std::copy(at(x, left), at(x, middle), at(merged, to));
      std::copy(at(x, right), at(x, last), at(merged, to + (middle - left)));
    }
    x.swap(merged);
  }
  return inversions;
}

}  // namespace

Extended meanRanks(std::span<const double> x, std::span<double> ranks) {
  struct Key {
    double value;
    std::size_t index;
  };
  std::vector<Key> keys(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) keys[i] = {x[i], i};
  const auto numbersEnd =
      std::partition(keys.begin(), keys.end(), [](const Key& k) { return !std::isnan(k.value); });
  std::sort(keys.begin(), numbersEnd, [](const Key& a, const Key& b) { return a.value < b.value; });
  Extended ties = 0;
  forEachRun(
      keys, [](const Key& a, const Key& b) { return a.value == b.value; },
      [&](std::size_t begin, std::size_t end) {
        const double rank = (static_cast<double>(begin + 1) + static_cast<double>(end)) / 2;
        for (std::size_t i = begin; i < end; ++i) ranks[keys[i].index] = rank;
        const auto t = static_cast<Extended>(end - begin);
        ties += t * (t * t - 1);
      });
  return ties;
}

Concordance concordance(std::span<const double> x, std::span<const double> y) {
  using Point = std::pair<double, double>;
  std::vector<Point> points;
  points.reserve(std::min(x.size(), y.size()));
  for (std::size_t i = 0; i < std::min(x.size(), y.size()); ++i) {
    if (!std::isnan(x[i]) && !std::isnan(y[i])) points.emplace_back(x[i], y[i]);
  }
  std::sort(points.begin(), points.end(), [](const Point& a, const Point& b) {
    return a.first < b.first || (!(b.first < a.first) && a.second < b.second);
  });
  const auto n = static_cast<std::int64_t>(points.size());
  const std::int64_t tiedX =
      tiedPairs(points, [](const Point& a, const Point& b) { return a.first == b.first; });
  const std::int64_t tiedBoth = tiedPairs(points, [](const Point& a, const Point& b) {
    return a.first == b.first && a.second == b.second;
  });
  std::vector<double> ordinates(points.size());
  std::transform(points.begin(), points.end(), ordinates.begin(),
                 [](const Point& p) { return p.second; });
  // Among points with equal x the ordinates ascend, so every inversion is a discordant pair.
  const std::int64_t discordant = sortAndCountInversions(ordinates);
  const std::int64_t tiedY = tiedPairs(ordinates, [](double a, double b) { return a == b; });
  const std::int64_t all = n * (n - 1) / 2;
  return {all - tiedX - tiedY + tiedBoth - discordant, discordant, tiedY - tiedBoth,
          tiedX - tiedBoth};
}

}  // namespace zel::kernels
