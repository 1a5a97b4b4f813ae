#include "zel/kernels/order_statistics.h"

#include "tests/support/key_shapes.h"
#include "tests/support/testing.h"

namespace zel::kernels {
namespace {

bool same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

void expectQuartiles(const Quartiles& q, const Quartiles& expected) {
  EXPECT_TRUE(same(q.q1, expected.q1)) << q.q1;
  EXPECT_TRUE(same(q.q2, expected.q2)) << q.q2;
  EXPECT_TRUE(same(q.q3, expected.q3)) << q.q3;
}

TEST(OrderStatistics, FollowTheirRulesOnSmallData) {
  // R 4.2: quantile(x, p, type = 7) and quantile(x, c(.25, .5, .75), type = 6).
  const std::vector<double> x{2.5, 3.25, 4, 7.75, 8, 11, 17.5};
  for (const auto& [prob, value] : {std::pair{10, 2.95}, {25, 3.625}, {62, 7.93}, {95, 15.55}}) {
    EXPECT_DOUBLE_EQ(percentileSorted(std::span(x), prob), value);
  }
  expectQuartiles(quartilesSorted(std::span(x)), {3.25, 7.75, 11});
  const int few[] = {1, 2, 3, 4};
  expectQuartiles(quartilesSorted(std::span(few, 1)), {1, 1, 1});
  expectQuartiles(quartilesSorted(std::span(few, 2)), {1, 1.5, 2});
  expectQuartiles(quartilesSorted(std::span(few, 4)), {1.25, 2.5, 3.75});
}

TEST(OrderStatistics, PercentIsLimitedAndNeverLeavesTheValues) {
  std::vector<double> x(100003);
  for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<double>(i);
  for (const std::size_t n : {std::size_t{1}, std::size_t{2}, std::size_t{3}, x.size()}) {
    const auto part = std::span<const double>(x).first(n);
    const double top = part.back();
    EXPECT_DOUBLE_EQ(percentileSorted(part, std::nextafter(100, 0)), top);
    EXPECT_EQ(percentileSorted(part, 100), top);
    EXPECT_EQ(percentileSorted(part, kInf), top);
    EXPECT_EQ(percentileSorted(part, -kInf), 0);
    EXPECT_LT(percentileRank(n, kInf), n);
  }
  // Rounds up to the last position, which has no next one.
  const std::size_t huge = 1125899906842628;
  EXPECT_EQ(percentilePosition(huge, std::nextafter(100, 0)).k, huge - 1);
  EXPECT_FALSE(percentilePosition(huge, std::nextafter(100, 0)).interpolated);
  EXPECT_TRUE(std::isnan(percentileSorted(std::span(x), std::nan(""))));
  EXPECT_TRUE(std::isnan(percentileBySelection(std::span(x), std::nan(""))));
  EXPECT_EQ(percentileBySelection(std::span(x), 250), 100002);
  EXPECT_EQ(percentileBySelection(std::span<const double>(), 50), 0);
  EXPECT_EQ(percentileRank(10, std::nan("")), 0u);
}

TEST(OrderStatistics, RankRoundsTiesToEven) {
  for (const auto& [n, prob, rank] :
       {std::tuple(4u, 50, 2u), {5u, 50, 2u}, {7u, 50, 4u}, {4u, 100, 3u}, {4u, -1, 0u}}) {
    EXPECT_EQ(percentileRank(n, prob), rank) << n << " " << prob;
  }
}

TEST(OrderStatistics, IntegersAndInfinitiesDoNotOverflow) {
  const std::vector<std::int32_t> extremes{std::numeric_limits<std::int32_t>::min(),
                                           std::numeric_limits<std::int32_t>::max()};
  EXPECT_EQ(percentileSorted(std::span(extremes), 50), -0.5);
  const std::vector<double> x{-kInf, 1, 2, kInf};
  EXPECT_TRUE(std::isnan(percentileSorted(std::span(x), 0)));  // -inf + 0 * inf, as written
  EXPECT_EQ(percentileSorted(std::span(x), 50), 1.5);
  EXPECT_EQ(percentileSorted(std::span(x), 99), kInf);
  EXPECT_EQ(percentileSorted(std::span(x), 100), kInf);
}

template <class T>
class BySelection : public testing::Test {};
using Keys = testing::Types<double, float, std::int32_t>;
TYPED_TEST_SUITE(BySelection, Keys);

// Selection and sort are two ways to the same number, NaN included.
TYPED_TEST(BySelection, EqualsBySort) {
  for (const std::size_t n : {1u, 2u, 5u, 999u, 5000u, 5001u, 20000u}) {
    for (const auto& [name, keys] : test::keyShapes<TypeParam>(n, 21)) {
      SCOPED_TRACE(name + ", n = " + std::to_string(n));
      for (const double prob : {0.0, 0.3, 25.0, 50.0, 66.6, 99.99, 100.0}) {
        auto work = keys;
        std::size_t passes = 0;
        const double sorted = percentileBySort(std::span(work), prob, [&] { ++passes; });
        ASSERT_TRUE(same(percentileBySelection(std::span(keys), prob), sorted)) << prob;
        ASSERT_EQ(passes > 0, n > 1);
      }
      auto work = keys;
      expectQuartiles(quartilesBySelection(std::span(keys)),
                      quartilesBySort(std::span(work), NoHook{}));
    }
  }
}

TEST(Mode, IsTheSmallestOfTheMostFrequent) {
  for (const auto& [name, keys] : test::keyShapes<std::int32_t>(700, 22)) {
    SCOPED_TRACE(name);
    std::map<std::int32_t, int> counts;
    for (const auto key : keys) ++counts[key];
    const auto most = std::max_element(counts.begin(), counts.end(),
                                       [](auto& a, auto& b) { return a.second < b.second; });
    auto work = keys;
    EXPECT_EQ(modeBySort(std::span(work), NoHook{}), most->first);
  }
  EXPECT_EQ(modeSorted(std::span<const double>()), 0);
  const std::vector<double> single{4};
  EXPECT_EQ(modeSorted(std::span(single)), 4);
}

}  // namespace
}  // namespace zel::kernels
