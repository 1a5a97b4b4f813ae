// Ranks with tie correction, beside their definition by counting.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "tests/support/containers.h"
#include "zel/analysis/Zel_math2.h"

namespace zel {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(Ranks, CountTheSmallerValuesAndHalfOfTheEqualOnes) {
  std::mt19937 random(7);
  for (const int n : {1, 2, 5, 40, 300}) {
    TVector x, ranks;
    x.Resize(n);
    for (int i = 1; i <= n; ++i) x.SetVal(i, static_cast<double>(random() % 50) - 25);
    double ties = 0;
    std::vector<double> expected;
    for (const double own : x) {
      const auto smaller = std::ranges::count_if(x, [&](double v) { return v < own; });
      const auto equal = static_cast<double>(std::ranges::count(x, own));
      expected.push_back(static_cast<double>(smaller) + (equal + 1) / 2);
      ties += equal * equal - 1;  // each of the t members brings t^2 - 1
    }
    EXPECT_EQ(CalcRanks(&x, &ranks), ties);
    EXPECT_EQ(test::contents(ranks), expected);
    const test::Events events(x);
    EXPECT_EQ(CalcRanks(&x, &x), ties);
    EXPECT_EQ(test::contents(x), expected) << "in place";
    EXPECT_EQ(events.count, 1);
  }
}

TEST(Ranks, OfNotANumbersAndInfinitiesAndWithoutAResult) {
  TVector ranks;
  const TVector special{kInf, std::nan(""), -kInf, kInf, -0.0, 0.0};
  EXPECT_EQ(CalcRanks(&special, &ranks), 12);
  EXPECT_EQ(test::contents(ranks), (std::vector<double>{4.5, 6, 1, 4.5, 2.5, 2.5}));
  EXPECT_EQ(CalcRanks(&special, nullptr), 12);
  EXPECT_EQ(CalcRanks(nullptr, &ranks), 0);
  test::expectFailuresHarmless<EZELMath2Error>([&] { CalcRanks(&special, &ranks); },
                                               "CalcRanks: not enough memory",
                                               [&] { EXPECT_EQ(ranks(2), 6); });
}

}  // namespace
}  // namespace zel
