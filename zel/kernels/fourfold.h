/// @file
/// Fourfold tables with given margins: their probabilities and Fisher's exact test.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "zel/base/Zel_univconst.h"
#include "zel/base/types.h"

namespace zel::kernels {

/// Cells of the first row, then of the second; each at least 0, their sum at most 1000.
struct Fourfold {
  int a = 0;
  int b = 0;
  int c = 0;
  int d = 0;
  bool operator==(const Fourfold&) const = default;
};

/// Probability of the table among all with its margins, right to some 2e-15 of itself.
///
/// The logarithms of the factorials are added in the order of their size. So tables that are
/// mirror images of each other have exactly the same probability.
[[nodiscard]] inline double fourfoldProbability(const Fourfold& t) {
  const auto lnOfFactorials = [](std::array<int, 4> numbers) {
    std::ranges::sort(numbers);
    Extended sum = 0;
    for (const int k : numbers) sum += uc_LnFactorial[static_cast<std::size_t>(k)];
    return sum;
  };
  const Extended total = uc_LnFactorial[static_cast<std::size_t>(t.a + t.b + t.c + t.d)];
  return static_cast<double>(std::exp(lnOfFactorials({t.a + t.c, t.b + t.d, t.a + t.b, t.c + t.d}) -
                                      lnOfFactorials({t.a, t.b, t.c, t.d}) - total));
}

/// Significances of Fisher's exact test.
struct FisherTails {
  double left = 0;
  double right = 0;
  double two = 0;
};

/// Runs over all tables with the same margins by the cell x, 0..m, that has the smallest margin m:
/// of the first column, else the second column, the first row, the second row. The tails are those
/// of x; the two-sided one holds the tables that are not more probable than this one.
[[nodiscard]] inline FisherTails fisherTails(const Fourfold& t) {
  const int c1 = t.a + t.c;
  const int c2 = t.b + t.d;
  const int r1 = t.a + t.b;
  const int r2 = t.c + t.d;
  const int m = std::min({c1, c2, r1, r2});
  const auto table = [=](int x) -> Fourfold {
    if (m == c1 || (m != c2 && m == r1)) return {x, r1 - x, c1 - x, r2 - c1 + x};
    if (m == c2) return {r1 - x, x, c1 - r1 + x, c2 - x};
    return {c1 - x, c2 - r2 + x, x, r2 - x};
  };
  const double observed = fourfoldProbability(t);
  FisherTails tails;
  bool isRight = false;
  for (int x = 0; x <= m; ++x) {
    const Fourfold other = table(x);
    const double p = fourfoldProbability(other);
    if (!isRight) tails.left += p;
    isRight = isRight || other == t;
    if (isRight) tails.right += p;
    if (p <= observed) tails.two += p;
  }
  return {std::min(tails.left, 1.0), std::min(tails.right, 1.0), std::min(tails.two, 1.0)};
}

}  // namespace zel::kernels
