// Ranks with tie correction, beside their definition by counting.
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "tests/support/containers.h"
#include "zel/analysis/Zel_math2.h"

namespace zel {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(Ranks, CountTheSmallerValuesAndHalfOfTheEqualOnes) {
  std::mt19937 random(7);
  for (const int n : {1, 2, 5, 40, 300}) {
    TVector x, ranks;
    x.Resize(n);
    for (int i = 1; i <= n; ++i) x.SetVal(i, static_cast<double>(random() % 50) - 25);
    double expectedTies = 0;
    TVector expected;
    expected.Resize(n);
    for (int i = 1; i <= n; ++i) {
      double smaller = 0, equal = 0;
      for (const double v : x) {
        smaller += v < x(i) ? 1 : 0;
        equal += v == x(i) ? 1 : 0;
      }
      expected.SetVal(i, smaller + (equal + 1) / 2);
      expectedTies += equal * equal - 1;  // each of the t members brings t^2 - 1
    }
    EXPECT_EQ(CalcRanks(&x, &ranks), expectedTies);
    EXPECT_EQ(test::contents(ranks), test::contents(expected));
    const test::Events events(x);
    EXPECT_EQ(CalcRanks(&x, &x), expectedTies);
    EXPECT_EQ(test::contents(x), test::contents(expected)) << "in place";
    EXPECT_EQ(events.count, 1);
  }
}

TEST(Ranks, OfNotANumbersAndInfinitiesAndWithoutAResult) {
  TVector ranks;
  const TVector special{kInf, kNaN, -kInf, kInf, -0.0, 0.0};
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
