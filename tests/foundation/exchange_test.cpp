#include "zel/foundation/exchange.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>

#include "zel/base/types.h"

using namespace zel;

TEST(ExChange, EveryElementaryTypeAndUntypedBlocks) {
  std::tuple<int, std::uint32_t, std::int64_t, std::uint8_t, std::uint16_t, float, double, Extended,
             bool, char, char16_t, std::string>
      a{1, 2U, 3, std::uint8_t{4}, std::uint16_t{5}, 6.0F, 7.0, 8.0L, true, 'x', u'y', "text"};
  decltype(a) b{};
  const auto before = a;
  std::apply([&](auto&... x) { std::apply([&](auto&... y) { (ExChange(x, y), ...); }, b); }, a);
  EXPECT_EQ(b, before);
  EXPECT_EQ(a, decltype(a){});

  char first[] = "abcde";
  char second[] = "vwxyz";
  ExChange(first, second, 3);
  EXPECT_EQ(std::string(first) + second, "vwxdeabcyz");
}

TEST(SortSwap, EqualValuesCountAsExchangedOnlyUpward) {
  for (const bool ascending : {true, false}) {
    for (const double other : {0.0, 1.0, 2.0, std::nan("")}) {
      double a = 1;
      double b = other;
      const bool expected = ascending ? other <= 1 : other > 1;
      EXPECT_EQ(SortSwap(a, b, ascending), expected);
      EXPECT_EQ(a == 1, !expected || other == 1);
    }
  }
}
