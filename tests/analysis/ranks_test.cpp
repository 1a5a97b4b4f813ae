// Ranks with tie correction, beside their definition by counting.
#include <cmath>
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
    const double special[] = {kInf, kNaN, -kInf, kInf, -0.0};
    for (int i = 1; i <= n; ++i) {
      x.SetVal(i, n > 5 && i <= 5 ? special[i - 1] : static_cast<double>(random() % 50) - 25);
    }
    double ties = 0;
    std::vector<double> expected;
    for (const double& own : x) {
      double smaller = 0, equal = 0;
      for (const double& v : x) {
        smaller += v < own || (std::isnan(own) && !std::isnan(v)) ? 1 : 0;
        equal += v == own || &v == &own ? 1 : 0;
      }
      expected.push_back(smaller + (equal + 1) / 2);
      ties += equal * equal - 1;  // each of the t members brings t^2 - 1
    }
    EXPECT_EQ(CalcRanks(&x, nullptr), ties);
    EXPECT_EQ(CalcRanks(&x, &ranks), ties);
    EXPECT_EQ(test::contents(ranks), expected);
    const auto check = [&] { EXPECT_EQ(test::contents(ranks), expected); };
    test::expectFailuresHarmless<EZELMath2Error>([&] { CalcRanks(&x, &ranks); },
                                                 "CalcRanks: not enough memory", check);
    const test::Events events(x);
    EXPECT_EQ(CalcRanks(&x, &x), ties);
    EXPECT_EQ(test::contents(x), expected) << "in place";
    EXPECT_EQ(events.count, 1);
  }
  EXPECT_EQ(CalcRanks(nullptr, nullptr), 0);
}

}  // namespace
}  // namespace zel
