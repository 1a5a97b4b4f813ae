#include "zel/kernels/histogram.h"
#include "tests/support/testing.h"
#include "zel/kernels/elementwise.h"

namespace zel::kernels {
namespace {

constexpr std::int32_t kIntMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kIntMax = std::numeric_limits<std::int32_t>::max();

TEST(Binning, NumberOfBins) {
  EXPECT_EQ(numberOfBins(0.0, 2.0, 1.0), 3);
  EXPECT_EQ(numberOfBins(2.0, 0.0, 1.0), 3);
  EXPECT_EQ(numberOfBins(0.0, 2.5, 1.0), 3) << "halves go to the even number";
  EXPECT_EQ(numberOfBins(0.0, 3.5, 1.0), 5);
  for (const double width : {0.0, -1.0, kNaN, 1e-320})
    EXPECT_EQ(numberOfBins(0.0, 2.0, width), 0) << width;
  EXPECT_EQ(numberOfBins(-kInf, 2.0, 1.0), 0);
  EXPECT_EQ(numberOfBins(-1e308, 1e308, 1e300), 0) << "the range leaves the doubles";
  EXPECT_EQ(numberOfBins(0.0, 1e300, 1.0), kIntMax);
  EXPECT_EQ(numberOfBins(0, 999, 2), 500);
  EXPECT_EQ(numberOfBins(5, 0, 0), 0);
  EXPECT_EQ(numberOfBins(kIntMin, kIntMax, kIntMax), 3);
  EXPECT_EQ(numberOfBins(kIntMin, kIntMax, 1), kIntMax);
}

/// What a counter makes of some values.
template <class T>
struct Counted {
  std::vector<int> bins;
  int underflow, overflow, most;
  bool operator==(const Counted&) const = default;
};

template <class T>
Counted<T> counted(T first, T last, T width, int bins, const std::vector<T>& values) {
  std::vector<int> counts(static_cast<std::size_t>(bins));
  HistogramCounter counter(first, last, width, bins, [&](int bin, std::int64_t times) {
    growCount(counts.at(static_cast<std::size_t>(bin)), times);
    return counts[static_cast<std::size_t>(bin)];
  });
  for (const T x : values) counter.add(x);
  return {counts, counter.underflow(), counter.overflow(), counter.maxCount()};
}

TEST(Binning, CountsRealValues) {
  EXPECT_EQ(counted<double>(0, 2, 1, 3, {0.5, 1.5, 2.5, 9.0, -1e-300, 0.0, 3.0, kNaN, kInf, -kInf}),
            (Counted<double>{{2, 1, 1}, 2, 3, 2}));
  // 0..2.4 in steps of 1 is rounded to three bins but reaches to 3.4: what lies beyond is dropped.
  EXPECT_EQ(counted<double>(0, 2.4, 1, 3, {3.2, 3.2, 3.2, 1.0}),
            (Counted<double>{{0, 1, 0}, 0, 0, 1}));
}

TEST(Binning, IntegersDoNotOverflow) {
  EXPECT_EQ(counted<int>(kIntMin, kIntMax, kIntMax, 3, {kIntMin, -2, -1, kIntMax - 1, kIntMax}),
            (Counted<int>{{2, 1, 2}, 0, 0, 2}));
  EXPECT_EQ(counted<int>(10, 11, 1, 2, {9, 10, 11, 12, kIntMin}), (Counted<int>{{1, 1}, 2, 1, 1}));
  int count = kIntMax - 1;
  growCount(count, std::int64_t{1} << 40);
  EXPECT_EQ(count, kIntMax);
}

TEST(Elementwise, IntegersWrap) {
  std::vector<int> x{kIntMax, -1, -65539};
  const std::vector<int> y{1, 2, 3};
  add<int>(x, y);
  EXPECT_EQ(x, (std::vector<int>{kIntMin, 1, -65536}));
  absolute<int>(x);
  EXPECT_EQ(x, (std::vector<int>{kIntMin, 1, 65536}));
  subtract<int>(x, y);
  scale<int>(x, 65536);
  EXPECT_EQ(x, (std::vector<int>{-65536, -65536, -3 * 65536}));
}

}  // namespace
}  // namespace zel::kernels
