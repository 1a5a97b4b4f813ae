#include "zel/kernels/split_sums.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/exact.h"
#include "tests/support/hostile.h"
#include "tests/support/simd_targets.h"

namespace zel::kernels {
namespace {

using test::BigInt;

/// |exact * 2^-scale - value| <= error.
void expectWithinBound(const BoundedSum& s, const BigInt& exact, int scale) {
  if (!std::isfinite(s.error)) return;
  const BigInt value =
      (BigInt::scaled(s.value.hi) + BigInt::scaled(s.value.lo)) * (BigInt(1) << (scale - 1074));
  EXPECT_LE(std::abs(BigInt::quotient<double>(exact - value, 1, -scale)), s.error);
}

/// Data made for the checks of the units: what is too large for the first unit, or only in one
/// lane, or cancels at once, or shrinks from run to run.
std::vector<test::NamedData> unitBreakers(std::size_t n) {
  auto all = test::hostileData(n);
  const auto add = [&](const char* name, auto value) {
    std::vector<double> x(n);
    for (std::size_t i = 0; i < n; ++i) x[i] = value(i);
    all.push_back({name, std::move(x)});
  };
  add("pair of outliers in one lane", [](std::size_t i) {
    return i == 40 ? 1e30 : i == 56 ? -1e30 : 0.1;
  });
  add("one outlier in the last lane",
      [n](std::size_t i) { return i == n - 1 - n % 16 ? 3e14 : 1.1; });
  add("falls with every run",
      [](std::size_t i) { return std::ldexp(1.7, -9 * static_cast<int>(i / 2048)); });
  add("rises with every run",
      [](std::size_t i) { return std::ldexp(-1.3, 9 * static_cast<int>(i / 2048)); });
  add("at the limit of the check", [](std::size_t i) { return i < 16 ? 1.0 : 63.999; });
  add("just past the limit", [](std::size_t i) {
    return i < 16 ? 1.0 : i % 5 == 0 ? 64.5 : -64.5;
  });
  return all;
}

TEST(SplitSums, BoundsHoldOnHostileData) {
  for (const std::size_t n : {16u, 17u, 129u, 1450u, 2048u, 2051u, 7000u}) {
    for (const auto& [name, x] : unitBreakers(n)) {
      SCOPED_TRACE(name + " n=" + std::to_string(n));
      expectWithinBound(splitSum(x.data(), n), test::ExactPowerSums(x).s1, 1074);
      for (const double centre : {0.0, x[n / 2]}) {
        std::vector<double> d(n);
        for (std::size_t i = 0; i < n; ++i) d[i] = x[i] - centre;
        if (std::isinf(d[0] - d[n - 1])) continue;
        const test::ExactPowerSums exact(d);
        const SplitMoments m = splitMoments(x.data(), n, centre);
        expectWithinBound(m.sum, exact.s1, 1074);
        expectWithinBound(m.squares, exact.s2, 2148);
      }
    }
  }
}

// If the bounds were useless, every caller would silently take the slow way.
TEST(SplitSums, BoundsAreTightOnOrdinaryData) {
  for (const auto& [name, x] : test::hostileData(5000)) {
    if (name != "uniform" && name != "offset -40" && name != "outlier first" && name != "sorted")
      continue;
    const BoundedSum s = splitSum(x.data(), x.size());
    EXPECT_LE(s.error, 0x1p-57 * std::abs(s.value.hi)) << name;
    const SplitMoments m = splitMoments(x.data(), x.size(), 0);
    EXPECT_LE(m.squares.error, 0x1p-58 * m.squares.value.hi) << name;
  }
}

TEST(SplitSums, UnsuitableDataHaveNoBound) {
  constexpr double kInf = std::numeric_limits<double>::infinity();
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(), kInf, 1e200}) {
    for (const std::size_t at : {0u, 100u, 2999u}) {
      std::vector<double> x(3000, 0.5);
      x[at] = bad;
      EXPECT_EQ(splitSum(x.data(), x.size()).error, kInf) << bad;
      EXPECT_EQ(splitMoments(x.data(), x.size(), 0.25).squares.error, kInf) << bad;
    }
  }
}

TEST(SplitSums, HaveTheSameBitsOnEveryInstructionSet) {
  for (const std::size_t n : {16u, 129u, 2048u, 7003u}) {
    for (const auto& [name, x] : unitBreakers(n)) {
      SCOPED_TRACE(name + " n=" + std::to_string(n));
      const auto results = [&x = x, n] {
        const BoundedSum s = splitSum(x.data(), n);
        const SplitMoments m = splitMoments(x.data(), n, x[n / 2]);
        return std::array{s.value.hi,         s.value.lo,     s.error,
                          m.sum.value.hi,     m.sum.value.lo, m.squares.value.hi,
                          m.squares.value.lo, m.sum.error,    m.squares.error};
      };
      const auto expected = results();
      test::forEachTarget([&] {
        const auto actual = results();
        for (std::size_t k = 0; k < actual.size(); ++k)
          EXPECT_TRUE(test::sameValue(actual[k], expected[k])) << k;
      });
    }
  }
}

}  // namespace
}  // namespace zel::kernels
