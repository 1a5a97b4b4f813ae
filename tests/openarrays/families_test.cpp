// Each family, for both element types and all ranks, beside loops over the indices of every cell.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <tuple>
#include <vector>

#include "tests/support/hostile.h"
#include "zel/openarrays/Zel_openarrays.h"

namespace zel {
namespace {

template <class T, int Rank>
struct ArrayOf {
  using type = TDynArray<T, Rank>;
};
template <class T>
struct ArrayOf<T, 1> {
  using type = std::vector<T>;
};

template <class Kind>
class ArrayFamilies : public testing::Test {
 protected:
  using T = typename std::tuple_element_t<0, Kind>;
  static constexpr int kRank = std::tuple_element_t<1, Kind>::value;
  using Array = typename ArrayOf<T, kRank>::type;
  using Corner = std::array<int, kRank>;

  static Array arrayOf(const Corner& extents) {
    Array a;
    if constexpr (kRank == 1) {
      a.resize(static_cast<std::size_t>(extents[0]));
    } else {
      std::apply([&](auto... n) { a.SetLength(n...); }, extents);
    }
    return a;
  }
  static T& at(Array& a, const Corner& i) {
    if constexpr (kRank == 1) {
      return a[static_cast<std::size_t>(i[0])];
    } else {
      return std::apply([&](auto... k) -> T& { return a(k...); }, i);
    }
  }
  /// Calls use(index) for every index from low to high.
  static void visit(const Corner& low, const Corner& high, const std::function<void(Corner)>& use) {
    for (std::size_t d = 0; d < kRank; ++d) {
      if (low[d] > high[d]) return;
    }
    for (Corner i = low;;) {
      use(i);
      std::size_t d = kRank;
      while (d > 0 && i[d - 1] == high[d - 1]) {
        i[d - 1] = low[d - 1];
        --d;
      }
      if (d == 0) return;
      ++i[d - 1];
    }
  }
  static Corner last(const Corner& extents) {
    Corner high;
    std::ranges::transform(extents, high.begin(), [](int n) { return n - 1; });
    return high;
  }
  /// f(head..., low indices..., high indices..., tail...).
  template <class F, class... Tail>
  static auto withCorners(F f, const Corner& low, const Corner& high, Tail&&... tail) {
    return std::apply(f, std::tuple_cat(low, high, std::forward_as_tuple(tail...)));
  }

  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  Corner corner(int low, int high) {
    Corner c;
    for (int& i : c) i = low + below(high - low + 1);
    return c;
  }
  /// All magnitudes for doubles, all values for integers.
  Array filled(const Corner& extents) {
    Array a = arrayOf(extents);
    for (T& x : a) {
      if constexpr (std::is_integral_v<T>) {
        x = static_cast<T>(random_() >> (random_() % 64));
      } else {
        x = std::ldexp(normal_(random_), below(300) - 150);
      }
    }
    return a;
  }
  /// As a + b in the type, modulo 2^32 for integers.
  template <class Operation>
  static T wrapped(Operation operation, T a, T b) {
    if constexpr (std::is_integral_v<T>) {
      return static_cast<T>(operation(static_cast<unsigned>(a), static_cast<unsigned>(b)));
    } else {
      return operation(a, b);
    }
  }

  std::mt19937_64 random_{5};
  std::normal_distribution<double> normal_;
};

template <class T, int Rank>
using Kind = std::tuple<T, std::integral_constant<int, Rank>>;
using Kinds = testing::Types<Kind<double, 1>, Kind<double, 2>, Kind<double, 3>, Kind<double, 4>,
                             Kind<int, 1>, Kind<int, 2>, Kind<int, 3>, Kind<int, 4>>;
TYPED_TEST_SUITE(ArrayFamilies, Kinds);

/// Ranges of every kind, also invalid ones: fill, copy, mean, deviation, count.
TYPED_TEST(ArrayFamilies, RangesAreThoseOfLoopsOverTheIndices) {
  using T = typename TestFixture::T;
  using Array = typename TestFixture::Array;
  using Corner = typename TestFixture::Corner;
  int valid = 0;
  for (int trial = 0; trial < 400; ++trial) {
    const Corner extents = this->corner(1, 5);
    Array a = this->filled(extents);
    Corner low;
    Corner high;
    for (std::size_t d = 0; d < low.size(); ++d) {
      const bool slips = this->below(16) == 0;
      low[d] = this->below(extents[d]) - slips;
      high[d] = low[d] + this->below(extents[d] - low[d] + slips) - (slips && this->below(2));
      if (this->below(4) == 0) std::tie(low[d], high[d]) = std::tuple(0, extents[d] - 1);
    }
    bool isRange = true;
    for (std::size_t d = 0; d < low.size(); ++d) {
      isRange &= 0 <= low[d] && low[d] <= high[d] && high[d] < extents[d];
    }
    const int status = isRange ? 0 : -2;
    valid += isRange;
    std::vector<T> cells;
    Array expected = a;
    const Corner place = this->corner(0, 2);
    Array target = this->filled(this->corner(3, 8));
    Array pasted = target;
    if (isRange) {
      this->visit(low, high, [&](Corner i) { cells.push_back(this->at(a, i)); });
      this->visit(low, high, [&](Corner i) { this->at(expected, i) = 7; });
    }

    double mean = 5;
    double deviation = 5;
    const auto call = [&](auto f, auto&&... tail) {
      return this->withCorners(f, low, high, tail...);
    };
    ASSERT_EQ(call([&](auto... i) { return MeanArray(a, i..., mean); }), status);
    ASSERT_EQ(call([&](auto... i) { return StdDevArray(a, i..., deviation); }), status);
    const T least = cells.empty() ? T{0} : cells[cells.size() / 2];
    const T most = std::numeric_limits<T>::max();
    ASSERT_EQ(call([&](auto... i) { return CountValues(a, i..., least, most); }),
              isRange ? std::ranges::count_if(cells, [=](T x) { return x >= least; }) : -2);
    long double sum = 0;
    for (const T x : cells) sum += x;
    const auto n = static_cast<long double>(cells.size());
    long double squares = 0;
    for (const T x : cells) squares += (x - sum / n) * (x - sum / n);
    const auto largest = cells.empty() ? 0.0
                                       : std::abs(double(*std::ranges::max_element(
                                             cells, {}, [](T x) { return std::abs(double(x)); })));
    EXPECT_NEAR(mean, isRange ? double(sum / n) : 0.0, 1e-15 * largest);
    EXPECT_LT(test::ulpsApart(deviation, n > 1 ? double(std::sqrt(squares / (n - 1))) : 0.0), 4);

    const auto paste = [&](auto... i) {
      return std::apply([&](auto... o) { return CopyArray(a, i..., o..., target); }, place);
    };
    bool fits = isRange;
    const Array before = target;
    for (std::size_t d = 0; d < low.size(); ++d) {
      int room = 0;
      if constexpr (TestFixture::kRank == 1) {
        room = static_cast<int>(target.size());
      } else {
        room = static_cast<int>(target.Length(static_cast<int>(d)));
      }
      fits &= place[d] + high[d] - low[d] < room;
    }
    if (fits) {
      this->visit(low, high, [&](Corner i) {
        Corner to = i;
        for (std::size_t d = 0; d < to.size(); ++d) to[d] += place[d] - low[d];
        this->at(pasted, to) = this->at(a, i);
      });
    }
    EXPECT_EQ(call(paste), fits ? 0 : -2);
    EXPECT_EQ(target, pasted);
    ASSERT_EQ(call([&](auto... i) { return FillArray(a, T{7}, i...); }), status);
    EXPECT_EQ(a, expected);
  }
  EXPECT_GT(valid, 150);
}

/// Whole arrays: arithmetic in place and not, extremes, places, diagonal, flips, conversion.
TYPED_TEST(ArrayFamilies, WholeArraysAreThoseOfLoopsOverTheCells) {
  using T = typename TestFixture::T;
  using Array = typename TestFixture::Array;
  using Corner = typename TestFixture::Corner;
  for (int trial = 0; trial < 60; ++trial) {
    const Corner extents = this->corner(1, 5);
    const Corner high = this->last(extents);
    Array a = this->filled(extents);
    Array b = this->filled(extents);
    const T s = *b.begin();
    const auto expect = [&](auto&& status, const Array& result, auto operation) {
      Array expected = this->arrayOf(extents);
      std::transform(a.begin(), a.end(), b.begin(), expected.begin(), operation);
      EXPECT_EQ(status, 0);
      EXPECT_EQ(result, expected);
    };
    const auto by = [&](auto operation) {
      return [=](T x, T y) { return TestFixture::wrapped(operation, x, y); };
    };
    const auto with = [&](auto operation) {
      return [=](T x, T) { return TestFixture::wrapped(operation, x, s); };
    };
    Array r;
    expect(AddArrays(a, b, r), r, by(std::plus()));
    r = b;  // the result is an operand
    expect(SubtractArrays(a, r, r), r, by(std::minus()));
    expect(MultiplyArrayByScalar(a, s, r), r, with(std::multiplies()));
    expect(AddScalarToArray(a, s, r), r, with(std::plus()));
    r = a;
    expect(MultiplyArrayByScalar(r, s), r, with(std::multiplies()));
    r = a;
    expect(IncArray(r, s), r, with(std::plus()));
    r = a;
    expect(AccumulateArray(r, b, s), r,
           [&](T x, T y) { return by(std::plus())(x, by(std::multiplies())(s, y)); });
    r = a;
    expect(AbsValArray(r), r, [&](T x, T) { return x < 0 ? by(std::minus())(T{0}, x) : x; });

    T least = 0;
    T most = 0;
    EXPECT_EQ(MinMaxArray(a, least, most), 0);
    EXPECT_EQ(least, *std::ranges::min_element(a));
    EXPECT_EQ(most, *std::ranges::max_element(a));
    EXPECT_EQ(MinArray(a), least);
    EXPECT_EQ(MaxArray(a), most);

    for (int dim = 1; dim <= TestFixture::kRank; ++dim) {
      Array flipped = a;
      Array expected = a;
      this->visit({}, high, [&](Corner i) {
        const T x = this->at(a, i);
        auto& k = i[static_cast<std::size_t>(dim - 1)];
        k = high[static_cast<std::size_t>(dim - 1)] - k;
        this->at(expected, i) = x;
      });
      EXPECT_EQ(FlipDimArray(flipped, dim), 0);
      EXPECT_EQ(flipped, expected);
    }
    EXPECT_EQ(FlipDimArray(a, 0), -2);
    EXPECT_EQ(FlipDimArray(a, TestFixture::kRank + 1), -2);

    typename ArrayOf<int, TestFixture::kRank>::type rounded;
    typename ArrayOf<double, TestFixture::kRank>::type widened;
    EXPECT_EQ(CloneArray(a, rounded) + CloneArray(rounded, widened) + CloneArray(a, r), 0);
    EXPECT_EQ(r, a);
    for (auto [x, w] = std::tuple(a.begin(), widened.begin()); x != a.end(); ++x, ++w) {
      EXPECT_EQ(*w, std::clamp(std::nearbyint(double(*x)), -2147483648.0, 2147483647.0));
    }
    if constexpr (TestFixture::kRank < 4) {
      EXPECT_EQ(FillArrayRix(a), 0);
      T k = 0;
      for (const T x : a) EXPECT_EQ(x, k++);
    }
    if constexpr (TestFixture::kRank > 1) {
      const bool isCube = std::ranges::count(extents, extents[0]) == TestFixture::kRank;
      EXPECT_EQ(FillDiagArray(a, T{3}), isCube ? 0 : -2);
      this->visit({}, high, [&](Corner i) {
        const bool isDiagonal = std::ranges::count(i, i[0]) == TestFixture::kRank;
        EXPECT_TRUE(!isCube || this->at(a, i) == (isDiagonal ? 3 : 0));
      });
    }
    EXPECT_EQ(FillRandomUniform(a, T{-2}, T{3}), 0);
    EXPECT_GE(MinArray(a), -2);
    EXPECT_LT(MaxArray(a), 3);
    EXPECT_EQ(FillRandomUniform(a, T{1}, T{0}), -2);
    EXPECT_EQ(FillArray(a, T{4}), 0);
    EXPECT_TRUE(std::ranges::all_of(a, [](T x) { return x == 4; }));
  }
  Array none;
  Array some = this->filled(this->last(this->corner(3, 3)));
  T x = 1;
  EXPECT_EQ(AddArrays(none, some, some) + FillArray(none, T{0}) + MinMaxArray(none, x, x), -3);
  EXPECT_EQ(AddArrays(some, this->filled(this->corner(3, 3)), none), -2);
}

}  // namespace
}  // namespace zel
