#include "zel/foundation/sorting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include "zel/base/array.h"
#include "zel/base/progress.h"
#include "zel/base/random.h"

using namespace zel;

namespace {

constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr int kIntMin = std::numeric_limits<int>::min();

double feedbackSum = 0;

// Passes of the plain comb sort.
template <class T>
int combPasses(std::vector<T> x, bool ascending) {
  int passes = 0;
  std::size_t gap = x.size();
  for (bool exchanged = x.size() > 1; exchanged || gap > 1; ++passes) {
    gap = std::max<std::size_t>(static_cast<std::size_t>(static_cast<double>(gap) / 1.3), 1);
    exchanged = false;
    for (std::size_t i = 0; i + gap < x.size(); ++i) {
      if (ascending ? x[i + gap] < x[i] : x[i] < x[i + gap]) {
        std::swap(x[i], x[i + gap]);
        exchanged = true;
      }
    }
  }
  return passes;
}

template <class T>
class SortArrayOf : public testing::Test {};
using Elements = testing::Types<double, float, int>;
TYPED_TEST_SUITE(SortArrayOf, Elements);

}  // namespace

TYPED_TEST(SortArrayOf, OrderAndProgressOfTypedAndUntypedForm) {
  constexpr TVarKind kind = std::is_same_v<TypeParam, double>  ? vkReal
                            : std::is_same_v<TypeParam, float> ? vkSingle
                                                               : vkLongint;
  MathFeedBackProc = [](double stat) { feedbackSum += stat; };
  SetRandSeed(1);
  for (int n = 0; n < 200; ++n) {
    const bool ascending = n % 3 != 0;
    std::vector<TypeParam> x(static_cast<std::size_t>(n));
    for (TypeParam& v : x) v = static_cast<TypeParam>(Random(n % 2 ? 1000000 : 10));
    std::vector<TypeParam> expected = x;
    std::sort(expected.begin(), expected.end());
    if (!ascending) std::reverse(expected.begin(), expected.end());
    ProcStat = 0;
    feedbackSum = 0;
    std::vector<TypeParam> untyped = x;
    const int passes = combPasses(x, ascending);
    SortArray(x, ascending);
    ASSERT_EQ(x, expected);
    ASSERT_EQ(ProcStat, passes);
    ASSERT_EQ(feedbackSum, passes * (passes + 1) / 2);  // 1, 2, ..., passes
    SortArray(untyped.data(), n, kind, ascending);
    ASSERT_EQ(untyped, expected);
  }
  MathFeedBackProc = nullptr;
}

TEST(SortArray, EveryArrayOfCallersPicksItsOverload) {
  float single[] = {3, 1, 2};
  std::array<int, 3> fixed{3, 1, 2};
  TDynArray<double, 1> dynamic{3, 1, 2};
  TDouble2DArray table{{9, 8}, {3, 1}};
  SortArray(single, false);
  SortArray(fixed, true);
  SortArray(dynamic, true);
  SortArray(table[1], true);
  EXPECT_EQ(single[2], 1);
  EXPECT_EQ(fixed, (std::array<int, 3>{1, 2, 3}));
  EXPECT_EQ(dynamic, (TDynArray<double, 1>{1, 2, 3}));
  EXPECT_EQ(table, (TDouble2DArray{{9, 8}, {1, 3}}));
  SortArray(nullptr, 5, vkDouble, true);
  SortArray(single, 3, static_cast<TVarKind>(9), true);
  EXPECT_EQ(single[2], 1);
}

TEST(QuickSelect, AgreesWithSortingOfTheRangeOnly) {
  SetRandSeed(2);
  for (int trial = 0; trial < 2000; ++trial) {
    const int n = 1 + Random(60);
    TDoubleArray x(static_cast<std::size_t>(n));
    for (double& v : x) v = Random(trial % 2 ? 5 : 1000);
    const int low = Random(n);
    const int high = low + Random(n - low);
    const int k = Random(n);
    TDoubleArray sorted = x;
    std::sort(sorted.begin() + low, sorted.begin() + high + 1);
    ASSERT_EQ(QuickSelect(x, k, low, high),
              sorted[static_cast<std::size_t>(std::clamp(k, low, high))]);
    std::sort(x.begin() + low, x.begin() + high + 1);
    ASSERT_EQ(x, sorted);  // a permutation of the range, the rest untouched
  }
}

TEST(QuickSelect, RangesOutsideAndHostileValues) {
  TDoubleArray x{2, 3, 1};
  EXPECT_EQ(QuickSelect(x, 1, 2, 1), 0);
  EXPECT_EQ(QuickSelect(x, 9, kIntMin, kIntMax), 3);
  EXPECT_EQ(QuickSelect(x, 1, 3, 7), 0);
  EXPECT_EQ(QuickSelect({}, 0, 0, 0), 0);
  // A partition that gains one element per pass would take hours here.
  TDoubleArray equal(2'000'000, 7.0);
  equal[1'000'000] = 8;
  EXPECT_EQ(QuickSelect(equal, 1'500'000, 0, 1'999'999), 7);
}

TEST(SortIntoArray, PlacesByTheOrderOrRefuses) {
  const auto insert = [](TDoubleArray x, double value, bool ascending, bool duplicates) {
    const int at = SortIntoArray(x, value, ascending, duplicates);
    x.push_back(at);
    return x;
  };
  using A = TDoubleArray;
  EXPECT_EQ(insert({1, 3, 5, 7}, 4, true, true), (A{1, 3, 4, 5, 2}));
  EXPECT_EQ(insert({1, 3, 5, 7}, 9, true, true), (A{1, 3, 5, 7, -1}));
  EXPECT_EQ(insert({1, 3, 5, 7}, 3, true, false), (A{1, 3, 5, 7, -1}));
  EXPECT_EQ(insert({1, 3, 5, 7}, 3, true, true), (A{1, 3, 3, 5, 1}));
  EXPECT_EQ(insert({1, 3, 5, 7}, 7, true, true), (A{1, 3, 5, 7, 3}));
  EXPECT_EQ(insert({1, 3, 5, 7}, 0, true, false), (A{0, 1, 3, 5, 0}));
  EXPECT_EQ(insert({7, 5, 3, 1}, 4, false, true), (A{7, 5, 4, 3, 2}));
  EXPECT_EQ(insert({7, 5, 3, 1}, 0, false, true), (A{7, 5, 3, 1, -1}));
  EXPECT_EQ(insert({}, 0, false, true), A{-1});

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
  EXPECT_EQ(x, (TSingleArray{1, 9, 2}));
  const float value = 8;
  InsertIntoArray(x.data(), 3, vkSingle, &value, 2);
  EXPECT_EQ(x, (TSingleArray{1, 9, 8}));
  for (const int outside : {-1, 3, kIntMin, kIntMax}) {
    InsertIntoArray(x, 0, outside);
    InsertIntoArray(x.data(), 3, vkSingle, &value, outside);
  }
  EXPECT_EQ(x, (TSingleArray{1, 9, 8}));
}
