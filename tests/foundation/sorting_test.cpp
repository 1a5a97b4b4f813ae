// Sorting, selecting and exchanging in plain arrays.
#include "zel/foundation/sorting.h"

#include "tests/support/testing.h"
#include "zel/foundation/exchange.h"
#include "zel/kernels/comb_sort.h"

using namespace zel;

TEST(SortArray, ReportsEachPass) {
  SetRandSeed(1);
  static double feedbackSum;
  MathFeedBackProc = [](double stat) { feedbackSum += stat; };
  for (std::size_t n = 0; n < 100; ++n) {
    const bool ascending = n % 3 != 0;
    TIntArray x(n);
    for (int& v : x) v = Random(n % 2 ? 1000 : 10);
    TIntArray expected = x;
    const auto passes = static_cast<double>(
        kernels::combSort(std::span(expected), n, ascending, kernels::NoHook{}));
    ProcStat = feedbackSum = 0;
    SortArray(x, ascending);
    EXPECT_EQ(x, expected);
    EXPECT_EQ(ProcStat, passes);
    EXPECT_EQ(feedbackSum, passes * (passes + 1) / 2);  // 1, 2, ..., passes
  }
  MathFeedBackProc = nullptr;
}

TEST(SortArray, EveryArrayOfCallersPicksItsOverload) {
  float single[] = {3, 1, 2};
  std::array<int, 3> fixed{3, 1, 2};
  TDouble2DArray table{{9, 8}, {3, 1}};
  SortArray(single, false);
  SortArray(fixed, true);
  SortArray(table[1], true);
  EXPECT_TRUE(single[0] == 3 && single[1] == 2 && single[2] == 1);
  EXPECT_EQ(fixed, (std::array<int, 3>{1, 2, 3}));
  EXPECT_EQ(table, (TDouble2DArray{{9, 8}, {1, 3}}));
  SortArray(single, 2, vkSingle, true);
  SortArray(fixed.data(), 3, vkLongint, false);
  SortArray(table.data(), 3, vkReal, true);
  EXPECT_TRUE(single[0] == 2 && single[1] == 3 && single[2] == 1);
  EXPECT_EQ(fixed, (std::array<int, 3>{3, 2, 1}));
  EXPECT_EQ(table, (TDouble2DArray{{1, 8}, {9, 3}}));
  SortArray(nullptr, 5, vkDouble, true);
  SortArray(fixed.data(), 3, static_cast<TVarKind>(9), true);
  EXPECT_EQ(fixed[0], 3);
}

TEST(QuickSelect, AgreesWithSortingOfTheRangeOnly) {
  SetRandSeed(2);
  for (int trial = 0; trial < 4000; ++trial) {
    const int n = Random(60);
    TDoubleArray x(static_cast<std::size_t>(n));
    for (double& v : x) v = Random(trial % 2 ? 5 : 1000);
    const auto index = [&] {
      return trial % 9 == 0 ? (Random(2) ? INT_MAX : INT_MIN) : Random(n + 6) - 3;
    };
    const int low = index(), high = index(), k = index();
    const int first = std::max(low, 0), last = std::min(high, n - 1);
    const bool isRange = first <= last;
    const auto sorted = [=](TDoubleArray y) {
      if (isRange) std::sort(y.begin() + first, y.begin() + last + 1);
      return y;
    };
    const TDoubleArray all = sorted(x);
    ASSERT_EQ(QuickSelect(x, k, low, high),
              isRange ? *(all.begin() + std::clamp(k, first, last)) : 0);
    ASSERT_EQ(sorted(x), all);  // a permutation of the range, the rest untouched
  }
}

TEST(SortIntoArray, PlacesByTheOrderOrRefuses) {
  using A = TDoubleArray;
  const auto insert = [](A x, double value, bool ascending, bool duplicates) {
    const int at = SortIntoArray(x, value, ascending, duplicates);
    x.push_back(at);
    return x;
  };
  EXPECT_EQ(insert({1, 3, 5, 7}, 3, true, false), (A{1, 3, 5, 7, -1}));
  EXPECT_EQ(insert({7, 5, 3, 1}, 5, false, true), (A{7, 5, 5, 3, 1}));

  int whole[] = {1, 3, 5, 7};
  const int value = 4;
  EXPECT_EQ(SortIntoArray(whole, 4, vkInteger, &value, true, false), 2);
  EXPECT_EQ(whole[3], 5);
  EXPECT_EQ(SortIntoArray(whole, 0, vkInteger, &value, true, true), -1);
  EXPECT_EQ(SortIntoArray(whole, 4, static_cast<TVarKind>(7), &value, true, true), -1);
}

TEST(InsertIntoArray, ShiftsFromThePositionOn) {
  TSingleArray x{1, 2, 3};
  InsertIntoArray(x, 9, 1);
  const float value = 8;
  InsertIntoArray(x.data(), 3, vkSingle, &value, 2);
  for (const int outside : {-1, 3}) InsertIntoArray(x, 0, outside);
  EXPECT_EQ(x, (TSingleArray{1, 9, 8}));
}

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
      double a = 1, b = other;
      const bool expected = ascending ? other <= 1 : other > 1;
      EXPECT_EQ(SortSwap(a, b, ascending), expected);
      EXPECT_EQ(a == 1, !expected || other == 1);
    }
  }
}
