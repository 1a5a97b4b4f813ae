#include "zel/kernels/minmax.h"

#include "tests/support/testing.h"

namespace zel::kernels {
namespace {

template <class T>
MinMax<T> oneByOne(const std::vector<T>& x, MinMaxStart<T> start = {}) {
  MinMax<T> r{start.minimum, start.maximum};
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (x[i] < r.minimum) r.minimum = x[r.minIndex = i];
    if (x[i] > r.maximum) r.maximum = x[r.maxIndex = i];
  }
  return r;
}

/// Runs every instruction set that the machine has.
template <class T>
void expectSame(const std::vector<T>& x, MinMaxStart<T> start = {}) {
  const MinMax<T> expected = oneByOne(x, start);
  test::forEachTarget([&] {
    const MinMax<T> actual = minMax(x, start);
    EXPECT_EQ(actual.minIndex, expected.minIndex);
    EXPECT_EQ(actual.maxIndex, expected.maxIndex);
    EXPECT_EQ(actual.minimum, expected.minimum);
    EXPECT_EQ(actual.maximum, expected.maximum);
    EXPECT_EQ(std::signbit(static_cast<double>(actual.minimum)),
              std::signbit(static_cast<double>(expected.minimum)));
  });
}

TEST(MinMax, IsThePlainLoopOnEveryShape) {
  std::mt19937_64 random(11);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double specials[] = {0.0,     -0.0,     nan,       HUGE_VAL, -HUGE_VAL,
                             1.7e308, 1.75e308, -1.75e308, 5e-324};
  for (std::size_t n = 0; n < 2600; n += n < 70 ? 1 : 211) {
    SCOPED_TRACE("n=" + std::to_string(n));
    const auto check = [n](auto rule) {
      std::vector<decltype(rule(n))> x(n);
      for (std::size_t i = 0; i < n; ++i) x[i] = rule(i);
      expectSame(x);
    };
    check([&](std::size_t) { return std::ldexp(static_cast<double>(random()), -64); });
    check([&](std::size_t) { return static_cast<double>(random() % 3); });  // ties everywhere
    check([&](std::size_t) { return specials[random() % 9]; });
    check([&](std::size_t) { return random() % 2 == 0 ? 0.0 : -0.0; });
    check([&](std::size_t i) { return static_cast<double>(n - i); });
    check([&](std::size_t) { return nan; });
    check([&](std::size_t) { return static_cast<std::int32_t>(random()); });
    check([&](std::size_t) { return static_cast<std::int32_t>(random() % 3); });
  }
}

TEST(MinMax, StartValuesAreNotElements) {
  const MinMax<double> r = minMax(std::vector<double>{1.7e308, 1.79e308});
  EXPECT_EQ(r.minimum, 1.7e308);
  EXPECT_EQ(r.minIndex, kNoIndex);
  EXPECT_EQ(r.maximum, 1.79e308);
  EXPECT_EQ(r.maxIndex, 1u);
  const MinMax<std::int32_t> k =
      minMax(std::vector<std::int32_t>(100, std::numeric_limits<std::int32_t>::min()));
  EXPECT_EQ(k.maximum, -2147483647);
  EXPECT_EQ(k.maxIndex, kNoIndex);
  EXPECT_EQ(k.minIndex, 0u);
  expectSame<double>({3, 1, 2}, {1.5, 2.5});
}

}  // namespace
}  // namespace zel::kernels
