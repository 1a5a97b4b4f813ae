/// @file
/// Runs of equal symbols in a sequence of two, and their number by chance.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "zel/base/types.h"

namespace zel::kernels {

/// Numbers of set and clear symbols; runs is one more than the number of changes.
struct Runs {
  std::int64_t set = 0;
  std::int64_t clear = 0;
  std::int64_t runs = 1;
};

/// @param isSet  says whether symbol i of 0..n-1 is set
template <class IsSet>
[[nodiscard]] Runs countRuns(std::int64_t n, IsSet&& isSet) {
  Runs result;
  bool previous = n > 0 && isSet(std::int64_t{0});
  for (std::int64_t i = 0; i < n; ++i) {
    const bool current = isSet(i);
    result.set += current;
    result.runs += current != previous;
    previous = current;
  }
  result.clear = n - result.set;
  return result;
}

/// Probability of at most r runs in a random order of a symbols of one kind and b of another.
/// 0 unless a, b >= 1 and r >= 2. Up to a + b = 50 the exact quotient of two integers, rounded;
/// beyond, right to some 1e-15 of itself. O(sqrt(a + b)) steps and never more than min(a, b).
///
/// With g(j) = C(a-1, j-1) C(b-1, j-1) there are 2 g(j) orders with 2j runs and g(j) (n - 2j) / j
/// with 2j + 1 (Wald and Wolfowitz, Ann. Math. Statist. 11 (1940) 147). g goes up and down from its
/// largest term by its ratios, so that no binomial coefficient can overflow.
[[nodiscard]] inline double runsProbability(std::int64_t a, std::int64_t b, std::int64_t r) {
  if (a < 1 || b < 1 || r < 2) return 0;
  constexpr std::int64_t kExact = 50;  // C(50, 25) g(j) is within 64 bits
  constexpr Extended kNegligible = 1e-30L;
  const std::int64_t n = a + b;
  const std::int64_t most = std::min(a, b);
  const auto mode = static_cast<std::int64_t>(static_cast<Extended>(a) * static_cast<Extended>(b) /
                                              static_cast<Extended>(n));
  const std::int64_t start = n <= kExact ? 1 : std::clamp<std::int64_t>(mode, 1, most);
  Extended lower = 0;
  Extended upper = 0;
  const auto add = [&](std::int64_t j, Extended g) {
    (2 * j <= r ? lower : upper) += 2 * g;
    (2 * j + 1 <= r ? lower : upper) +=
        g * static_cast<Extended>(n - 2 * j) / static_cast<Extended>(j);
  };
  Extended g = 1;
  for (std::int64_t j = start;; ++j) {
    add(j, g);
    if (j == most || (j > mode && g < kNegligible)) break;
    g = g * static_cast<Extended>(a - j) * static_cast<Extended>(b - j) /
        (static_cast<Extended>(j) * static_cast<Extended>(j));
  }
  g = 1;
  for (std::int64_t j = start - 1; j >= 1 && g > 0; --j) {
    g = g * static_cast<Extended>(j) * static_cast<Extended>(j) /
        (static_cast<Extended>(a - j) * static_cast<Extended>(b - j));
    add(j, g);
    if (2 * j + 1 <= r && g < kNegligible * lower) break;
  }
  return static_cast<double>(lower / (lower + upper));
}

}  // namespace zel::kernels
