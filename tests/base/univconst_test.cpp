#include "zel/base/Zel_univconst.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zel {
namespace {

Extended ulp(Extended x) { return std::nextafter(x, HUGE_VALL) - x; }

TEST(Constants, AgreeWithTheMathLibrary) {
  const Extended pairs[][2] = {{uc_pi, std::acos(Extended(-1))},
                               {uc_2pi, 2 * std::acos(Extended(-1))},
                               {uc_e, std::exp(Extended(1))},
                               {uc_ln2, std::log(Extended(2))},
                               {uc_ln10, std::log(Extended(10))},
                               {uc_sqrt2, std::sqrt(Extended(2))},
                               {uc_sqrt2pi, std::sqrt(2 * std::acos(Extended(-1)))},
                               {uc_sqrt2pitom1, 1 / std::sqrt(2 * std::acos(Extended(-1)))}};
  for (const auto& [constant, computed] : pairs)
    EXPECT_LE(std::abs(constant / computed - 1), 3e-19L);
  EXPECT_EQ(std::nextafter(uc_MaxDouble, HUGE_VAL), HUGE_VAL);
  EXPECT_EQ(uc_MaxReal, uc_MaxDouble);
  EXPECT_EQ(std::nextafter(uc_MaxSingle, HUGE_VALF), HUGE_VALF);
}

/// Sums the logarithms with the rounding errors carried along (Neumaier), so that the sum is good
/// to the errors of the logarithms, half an ulp of 7 each.
TEST(LnFactorial, EveryEntryIsTheSumOfLogarithms) {
  Extended sum = 0;
  Extended carried = 0;
  EXPECT_EQ(uc_LnFactorial[0], 0);
  for (std::size_t n = 1; n < uc_LnFactorial.size(); ++n) {
    const Extended term = std::log(static_cast<Extended>(n));
    const Extended next = sum + term;
    carried += sum >= term ? (sum - next) + term : (term - next) + sum;
    sum = next;
    ASSERT_LE(std::abs(uc_LnFactorial[n] - (sum + carried)), ulp(sum)) << n;
    ASSERT_LE(std::abs(uc_LnFactorial[n] - std::lgamma(static_cast<Extended>(n + 1))), 8 * ulp(sum))
        << n;
  }
}

}  // namespace
}  // namespace zel
