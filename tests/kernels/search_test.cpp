#include "zel/kernels/search.h"

#include "tests/support/testing.h"
#include "zel/kernels/sorted_list.h"

namespace zel::kernels {
namespace {

constexpr auto kMin = std::numeric_limits<std::int32_t>::min();
constexpr auto kMax = std::numeric_limits<std::int32_t>::max();

TEST(FindNearest, TheFirstOfEquallyNearWins) {
  const std::vector<double> x{1, 2, 3, 2};
  EXPECT_EQ(findNearest(std::span(x), 2.5), 1u);
  EXPECT_EQ(findNearest(std::span(x), 2.6), 2u);
  const std::vector<std::int32_t> extremes{kMin, 0, kMax};
  EXPECT_EQ(findNearest(std::span(extremes), kMax), 2u);
  EXPECT_EQ(findNearest(std::span(extremes), kMin), 0u);
  EXPECT_EQ(findNearest(std::span(extremes).first(1), kMax), 0u);  // a distance beyond int32
}

TEST(FindNearest, NothingIsNearIfNoDistanceIsBelowTheLargestDouble) {
  const std::vector<double> x{kInf, kNaN, -std::numeric_limits<double>::max()};
  EXPECT_EQ(findNearest(std::span(x), 1e308), npos);
  EXPECT_EQ(findNearest(std::span(x), 0), npos);
  EXPECT_EQ(findNearest(std::span(x), -1e300), 2u);
  EXPECT_EQ(findNearest(std::span(x), kNaN), npos);
  EXPECT_EQ(findNearest(std::span<const double>(), 0), npos);
}

// Against all distances, for every length up to 40 in both directions.
TEST(FindInSorted, FindsAnEqualOrElseTheNearerWithTiesToTheLater) {
  std::mt19937 random(31);
  for (std::size_t n = 1; n <= 40; ++n) {
    for (const bool ascending : {true, false}) {
      std::vector<std::int32_t> x(n);
      for (auto& v : x) v = static_cast<std::int32_t>(random() % 60) * 2;
      std::sort(x.begin(), x.end());
      if (!ascending) std::reverse(x.begin(), x.end());
      for (std::int32_t value = -3; value <= 123; ++value) {
        const std::size_t found = findInSorted(std::span(x), value, ascending);
        ASSERT_LT(found, n);
        std::int32_t least = kMax;
        for (const auto v : x) least = std::min(least, std::abs(v - value));
        ASSERT_EQ(std::abs(x[found] - value), least);
        for (std::size_t i = found + 1; i < n; ++i) {  // a later one as near is the same value
          ASSERT_FALSE(std::abs(x[i] - value) == least && x[i] != x[found]);
        }
      }
    }
  }
}

TEST(FindInSorted, ExtremesAndNaN) {
  const std::vector<std::int32_t> wide{kMin, -1, 0, kMax};
  EXPECT_EQ(findInSorted(std::span(wide), kMax - 1, true), 3u);
  EXPECT_EQ(findInSorted(std::span(wide), kMin + 1, true), 0u);
  const std::vector<double> infinite{-kInf, 0, kInf};
  EXPECT_EQ(findInSorted(std::span(infinite), -kInf, true), 0u);
  EXPECT_EQ(findInSorted(std::span(infinite), kInf, true), 2u);
  const std::vector<double> broken{kNaN, 3, kNaN, 1, kNaN};
  for (const double value : {0.0, 1.0, kNaN, kInf}) {
    EXPECT_LT(findInSorted(std::span(broken), value, true), broken.size());
    EXPECT_LT(findInSorted(std::span(broken), value, false), broken.size());
  }
  EXPECT_EQ(findInSorted(std::span<const double>(), 1, true), npos);
}

// The rule by a scan from the front.
template <class T>
std::size_t scannedSortInto(std::vector<T>& list, T value, bool ascending, bool duplicates) {
  std::size_t i = 0;
  while (i < list.size() - 1 && !(ascending ? value <= list[i] : value >= list[i])) ++i;
  const bool beyond = ascending ? value > list[i] : value < list[i];
  if (beyond || (value == list[i] && !duplicates)) return npos;
  list.insert(list.begin() + static_cast<std::ptrdiff_t>(i), value);
  list.pop_back();
  return i;
}

TEST(SortInto, EqualsTheScanAlsoWithNaN) {
  EXPECT_EQ(sortInto(std::span<int>(), 4, true, true), npos);
  std::mt19937 random(32);
  for (int round = 0; round < 2000; ++round) {
    const bool ascending = round % 2;
    const bool duplicates = round / 2 % 2;
    std::vector<double> list(1 + random() % 12, ascending ? 1e308 : -1e308);
    auto expected = list;
    for (int k = 0; k < 30; ++k) {
      const auto draw = random() % 25;
      const double value = draw == 24 ? kNaN : draw == 23 ? kInf : static_cast<double>(draw) - 10;
      const auto place = scannedSortInto(expected, value, ascending, duplicates);
      ASSERT_EQ(sortInto(std::span(list), value, ascending, duplicates), place);
      for (std::size_t i = 0; i < list.size(); ++i) {
        ASSERT_TRUE(list[i] == expected[i] || (std::isnan(list[i]) && std::isnan(expected[i])));
      }
    }
  }
}

// The rest of it is proven by sortInto.
TEST(InsertAt, IgnoresPositionsOutsideAndTakesAnElementOfTheList) {
  std::vector<int> list{1, 2, 3};
  for (const std::size_t outside : {std::size_t{3}, npos}) {
    EXPECT_FALSE(insertAt(std::span(list), 9, outside));
  }
  EXPECT_EQ(list, (std::vector<int>{1, 2, 3}));
  EXPECT_TRUE(insertAt(std::span(list), list[1], 0));
  EXPECT_EQ(list, (std::vector<int>{2, 1, 2}));
}

}  // namespace
}  // namespace zel::kernels
