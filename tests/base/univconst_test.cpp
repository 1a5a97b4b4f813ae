#include "zel/base/Zel_univconst.h"

#include "tests/support/testing.h"

namespace zel {
namespace {

TEST(Constants, AgreeWithTheMathLibrary) {
  const Extended pi = std::acos(Extended(-1)), one = 1;
  const Extended pairs[][2] = {{uc_pi, pi},
                               {uc_2pi, 2 * pi},
                               {uc_e, std::exp(one)},
                               {uc_ln2, std::log(2 * one)},
                               {uc_ln10, std::log(10 * one)},
                               {uc_sqrt2, std::sqrt(2 * one)},
                               {uc_sqrt2pi, std::sqrt(2 * pi)},
                               {uc_sqrt2pitom1, 1 / std::sqrt(2 * pi)}};
  for (const auto& [value, computed] : pairs) EXPECT_LE(std::abs(value / computed - 1), 3e-19L);
  EXPECT_EQ(std::nextafter(uc_MaxDouble, HUGE_VAL), HUGE_VAL);
  EXPECT_EQ(uc_MaxReal, uc_MaxDouble);
  EXPECT_EQ(std::nextafter(uc_MaxSingle, HUGE_VALF), HUGE_VALF);
}

/// Sums the logarithms with the rounding errors carried along (Neumaier), so that the sum is good
/// to the errors of the logarithms, half an ulp of 7 each.
TEST(LnFactorial, EveryEntryIsTheSumOfLogarithms) {
  Extended sum = 0, carried = 0;
  EXPECT_EQ(uc_LnFactorial[0], 0);
  for (std::size_t n = 1; n < uc_LnFactorial.size(); ++n) {
    const Extended term = std::log(static_cast<Extended>(n));
    const Extended next = sum + term;
    carried += sum >= term ? (sum - next) + term : (term - next) + sum;
    sum = next;
    const Extended ulp = std::nextafter(sum, HUGE_VALL) - sum;
    ASSERT_LE(std::abs(uc_LnFactorial[n] - (sum + carried)), ulp) << n;
  }
}

}  // namespace
}  // namespace zel
