// Limits, rounding and signs; logarithms and trigonometric functions; compensated sums.
#include <math.h>

#include "tests/support/testing.h"
#include "zel/foundation/Zel_math1.h"

using namespace zel;

TEST(Bounds, WhatCallersWriteCompilesAndKeepsItsType) {
  static_assert(std::same_as<decltype(ConfineValue(2, 1, 3)), int>);
  static_assert(std::same_as<decltype(ConfineValue(2.0F, 1.0F, 3.0F)), float>);
  static_assert(std::same_as<decltype(ConfineValue(0.5, 0, 1)), double>);
  static_assert(std::same_as<decltype(ConfineValue(2, 1.0F, 3)), double>);
  for (int x = -7; x <= 7; ++x) EXPECT_EQ(ConfineValue(x, 3, 1), std::clamp(x, 1, 3));
  EXPECT_EQ(ConfineValue(1.5, 2, 0), 1.5);
  EXPECT_EQ(ConfineValue(INT64_MAX, 0, INT64_MAX - 1), INT64_MAX - 1);  // not as double
  EXPECT_TRUE(WithinBounds(3, 3, 1));
  EXPECT_FALSE(WithinBounds(3.5, 3, 1));
  EXPECT_TRUE(WithinBounds(3.5, 3, 1, 0.5));
  EXPECT_FALSE(WithinBounds(0.25, 1, 3, 0.5));
}

TEST(Bounds, RoundingIsLimitedToItsRange) {
  EXPECT_EQ(RoundLimit(2.5, -10, 10), 2);
  EXPECT_EQ(RoundLimit(-3.5, -10, 10), -4);
  EXPECT_EQ(RoundLimit(0, 5, 3), 3);  // the upper limit wins
  EXPECT_EQ(RoundLimit(1e300, INT64_MIN, INT64_MAX), INT64_MAX);
  EXPECT_EQ(RoundLimit(-HUGE_VAL, INT64_MIN, 0), INT64_MIN);
  EXPECT_EQ(RoundLimit(std::nan(""), 2, 9), 2);
  EXPECT_EQ(IntPos(2.5), 3);  // the nearest integers of these lie on the wrong side
  EXPECT_EQ(IntNeg(3.5), 3);
  EXPECT_EQ(IntNeg(-1.0000000001), -2);
  EXPECT_EQ(IntPos(INT_MAX - 0.5), INT_MAX);
  EXPECT_EQ(IntPos(1e10), INT_MAX);
  EXPECT_EQ(IntNeg(-1e10), INT_MIN);
}

TEST(Bounds, SignAndRemainderFollowTheDividend) {
  EXPECT_EQ(Signum(-0.0), 1);
  EXPECT_EQ(Signum(-1e-320), -1);
  EXPECT_EQ(modr(-7.5, 2), -1.5);
  EXPECT_EQ(modr(7.5, -2), 1.5);
  EXPECT_EQ(modr(1e20, 3), 1);  // the quotient in double has no fraction left
  EXPECT_EQ(modr(5, 0), 0);
}

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

TEST(KahanSum, KeepsTermsFarBelowTheUnitOfTheSum) {
  TComponent owner;
  auto* sum = new TKahanSum(&owner);  // destroyed by its owner
  double plain = 1;
  sum->Add(1);
  for (int i = 0; i < 10'000'000; ++i) {
    sum->Add(1e-16);
    plain += 1e-16;
  }
  EXPECT_EQ(plain, 1);
  EXPECT_DOUBLE_EQ(sum->Sum, 1.000000001);

  sum->Reset();
  sum->Add(0.25);  // a compensation left behind would show here
  EXPECT_EQ(sum->Sum, 0.25);
}
