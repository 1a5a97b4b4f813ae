#include "zel/foundation/bounds.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace zel;

namespace {
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr auto kInt = std::numeric_limits<int>();
constexpr auto kLong = std::numeric_limits<std::int64_t>();
}  // namespace

TEST(Bounds, WhatCallersWriteCompilesAndKeepsItsType) {
  static_assert(std::same_as<decltype(ConfineValue(2, 1, 3)), int>);
  static_assert(std::same_as<decltype(ConfineValue(2.0F, 1.0F, 3.0F)), float>);
  static_assert(std::same_as<decltype(ConfineValue(0.5, 0, 1)), double>);
  static_assert(std::same_as<decltype(ConfineValue(2, 1.0F, 3)), double>);
  for (int x = -7; x <= 7; ++x) EXPECT_EQ(ConfineValue(x, 3, 1), std::clamp(x, 1, 3));
  EXPECT_EQ(ConfineValue(1.5, 2, 0), 1.5);
  EXPECT_EQ(ConfineValue(kLong.max(), 0, kLong.max() - 1), kLong.max() - 1);  // not as double
  EXPECT_TRUE(WithinBounds(3, 3, 1));
  EXPECT_FALSE(WithinBounds(3.5, 3, 1));
  EXPECT_TRUE(WithinBounds(3.5, 3, 1, 0.5));
  EXPECT_FALSE(WithinBounds(0.25, 1, 3, 0.5));
}

TEST(Bounds, RoundingIsLimitedToItsRange) {
  EXPECT_EQ(RoundLimit(2.5, -10, 10), 2);
  EXPECT_EQ(RoundLimit(-3.5, -10, 10), -4);
  EXPECT_EQ(RoundLimit(0, 5, 3), 3);  // the upper limit wins
  EXPECT_EQ(RoundLimit(1e300, kLong.min(), kLong.max()), kLong.max());
  EXPECT_EQ(RoundLimit(-kInf, kLong.min(), 0), kLong.min());
  EXPECT_EQ(RoundLimit(std::nan(""), 2, 9), 2);
  EXPECT_EQ(IntPos(2.5), 3);  // the nearest integers of these lie on the wrong side
  EXPECT_EQ(IntNeg(3.5), 3);
  EXPECT_EQ(IntNeg(-1.0000000001), -2);
  EXPECT_EQ(IntPos(kInt.max() - 0.5), kInt.max());
  EXPECT_EQ(IntPos(1e10), kInt.max());
  EXPECT_EQ(IntNeg(-1e10), kInt.min());
}

TEST(Bounds, SignAndRemainderFollowTheDividend) {
  EXPECT_EQ(Signum(-0.0), 1);
  EXPECT_EQ(Signum(-1e-320), -1);
  EXPECT_EQ(modr(-7.5, 2), -1.5);
  EXPECT_EQ(modr(7.5, -2), 1.5);
  EXPECT_EQ(modr(1e20, 3), 1);  // the quotient in double has no fraction left
  EXPECT_EQ(modr(5, 0), 0);
}
