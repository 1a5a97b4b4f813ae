#include "zel/foundation/elementary.h"

#include <gtest/gtest.h>
#include <math.h>

#include <numbers>

#include "tests/support/expect_message.h"
#include "zel/base/errors.h"

using namespace zel;

TEST(Elementary, DomainErrors) {
  for (const double x : {0.0, -0.0, -1.0}) {
    EXPECT_THROW_MSG((void)lg(x), EMathError, "logarithm: invalid argument");
    EXPECT_THROW_MSG((void)ld(x), EMathError, "logarithm: invalid argument");
  }
  EXPECT_THROW_MSG((void)cot(-0.0), EMathError, "cotangens overflow");
  EXPECT_GT(tg(std::numbers::pi / 2), 1e16);
}

TEST(Elementary, DigitsAtTheEndsOfTheRange) {
  for (int k = -1074; k <= 1023; ++k) EXPECT_EQ(ld(std::ldexp(1.0, k)), k);
  EXPECT_EQ(lg(1e300), 300);
  // Beside <math.h> and using namespace zel, the plain names are not ambiguous.
  EXPECT_EQ(sinh(1e-10), 1e-10);
  EXPECT_DOUBLE_EQ(cosh(1), (std::numbers::e + 1 / std::numbers::e) / 2);
  EXPECT_EQ(tgh(1e-10), 1e-10);
  EXPECT_EQ(tgh(-1000), -1);
  EXPECT_DOUBLE_EQ(tgh(0.5), (std::numbers::e - 1) / (std::numbers::e + 1));
  EXPECT_DOUBLE_EQ(tg(1) * cot(1), 1);
}
