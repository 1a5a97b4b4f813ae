// Each family, for both element types and all ranks, beside loops over the indices of every cell.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "zel/openarrays/Zel_openarrays.h"

namespace zel {
namespace {

template <class T, int Rank>
using ArrayOf = std::conditional_t<Rank == 1, std::vector<T>, TDynArray<T, Rank>>;

template <class Kind>
class ArrayFamilies : public testing::Test {
 protected:
  using T = std::tuple_element_t<0, Kind>;
  static constexpr int kRank = std::tuple_element_t<1, Kind>::value;
  using Array = ArrayOf<T, kRank>;
  using Corner = std::array<int, kRank>;
  using Wide = std::conditional_t<std::is_integral_v<T>, unsigned, T>;  // where integers wrap

  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  Corner corner(int low, int high) {
    Corner c;
    for (int& i : c) i = low + below(high - low + 1);
    return c;
  }
  /// All magnitudes for doubles, all values for integers.
  Array filled(const Corner& extents) {
    Array a(std::apply([](auto... n) { return Array(static_cast<std::size_t>(n)...); }, extents));
    for (T& x : a) {
      const double y = std::ldexp(std::normal_distribution()(random_), below(300) - 150);
      x = std::is_integral_v<T> ? static_cast<T>(random_() >> below(64)) : static_cast<T>(y);
    }
    return a;
  }
  static T& at(Array& a, const Corner& i, const Corner& extents) {
    int place = 0;
    for (std::size_t d = 0; d < kRank; ++d) place = place * extents[d] + i[d];
    return a.data()[place];
  }
  /// Calls use(index) for every index from low to high, which exist.
  template <class Use>
  static void visit(const Corner& low, const Corner& high, Use use) {
    for (Corner i = low;; ++i.back()) {
      for (std::size_t d = kRank; d-- > 1 && i[d] > high[d]; ++i[d - 1]) i[d] = low[d];
      if (i[0] > high[0]) return;
      use(i);
    }
  }

  std::mt19937_64 random_{5};
};

template <class T, int Rank>
using Kind = std::tuple<T, std::integral_constant<int, Rank>>;
using Kinds = testing::Types<Kind<double, 1>, Kind<double, 2>, Kind<double, 3>, Kind<double, 4>,
                             Kind<int, 1>, Kind<int, 2>, Kind<int, 3>, Kind<int, 4>>;
TYPED_TEST_SUITE(ArrayFamilies, Kinds);

/// Ranges of every kind, also invalid ones: fill, copy, mean, deviation, count.
TYPED_TEST(ArrayFamilies, RangesAreThoseOfLoopsOverTheIndices) {
  using T = typename TestFixture::T;
  for (int trial = 0; trial < 400; ++trial) {
    const auto extents = this->corner(1, 5);
    const auto room = this->corner(3, 8);
    const auto place = this->corner(0, 2);
    auto low = extents, high = extents;
    bool isRange = true, fits = true;
    for (std::size_t d = 0; d < low.size(); ++d) {
      const bool slips = this->below(16) == 0;
      low[d] = this->below(extents[d]) - slips;
      high[d] = low[d] + this->below(extents[d] - low[d] + slips) - (slips && this->below(2));
      if (this->below(4) == 0) std::tie(low[d], high[d]) = std::tuple(0, extents[d] - 1);
      isRange &= 0 <= low[d] && low[d] <= high[d] && high[d] < extents[d];
      fits &= place[d] + high[d] - low[d] < room[d];
    }
    auto a = this->filled(extents), filled = a;
    auto target = this->filled(room), pasted = target;
    std::vector<T> cells;
    if (isRange) {
      this->visit(low, high, [&](auto i) {
        cells.push_back(this->at(a, i, extents));
        this->at(filled, i, extents) = 7;
        for (std::size_t d = 0; d < i.size(); ++d) i[d] += place[d] - low[d];
        if (fits) this->at(pasted, i, room) = cells.back();
      });
    }
    const auto call = [&](auto f) { return std::apply(f, std::tuple_cat(low, high)); };
    const int status = isRange ? 0 : -2;
    double result[4] = {5, 5, 0, 0};
    ASSERT_EQ(call([&](auto... i) { return MeanArray(a, i..., result[0]); }), status);
    ASSERT_EQ(call([&](auto... i) { return StdDevArray(a, i..., result[1]); }), status);
    MeanArray(cells, 0, static_cast<int>(cells.size()) - 1, result[2]);
    StdDevArray(cells, 0, static_cast<int>(cells.size()) - 1, result[3]);
    EXPECT_TRUE(result[0] == result[2] && result[1] == result[3]);
    const T least = cells.empty() ? T{0} : cells[cells.size() / 2];
    ASSERT_EQ(
        call([&](auto... i) { return CountValues(a, i..., T{-9}, least); }),
        isRange ? std::ranges::count_if(cells, [=](T x) { return -9 <= x && x <= least; }) : -2);
    const auto paste = [&](auto... i) { return CopyArray(a, i..., target); };
    EXPECT_EQ(std::apply(paste, std::tuple_cat(low, high, place)), isRange && fits ? 0 : -2);
    EXPECT_EQ(call([&](auto... i) { return FillArray(a, T{7}, i...); }), status);
    EXPECT_TRUE(target == pasted && a == filled);
  }
}

/// Whole arrays: arithmetic in place and not, extremes, flips, conversion.
TYPED_TEST(ArrayFamilies, WholeArraysAreThoseOfLoopsOverTheCells) {
  using T = typename TestFixture::T;
  using Array = typename TestFixture::Array;
  using Wide = typename TestFixture::Wide;
  constexpr int kRank = TestFixture::kRank;
  for (int trial = 0; trial < 60; ++trial) {
    const auto extents = this->corner(1, 5);
    auto high = extents;
    for (int& k : high) --k;
    Array a = this->filled(extents);
    const Array b = this->filled(extents);
    const T scalar = *b.begin();
    const auto s = static_cast<Wide>(scalar);
    Array r = b;
    const auto expect = [&](int status, auto operation) {
      Array expected = b;
      std::transform(a.begin(), a.end(), b.begin(), expected.begin(),
                     [&](Wide x, Wide y) { return static_cast<T>(operation(x, y)); });
      EXPECT_TRUE(status == 0 && r == expected);
    };
    expect(SubtractArrays(a, r, r), [](Wide x, Wide y) { return x - y; });
    r = this->filled(this->corner(1, 5));
    expect(AddArrays(a, b, r), [](Wide x, Wide y) { return x + y; });
    expect(MultiplyArrayByScalar(a, scalar, r), [=](Wide x, Wide) { return x * s; });
    expect(AddScalarToArray(a, scalar, r), [=](Wide x, Wide) { return x + s; });
    expect(CloneArray(a, r), [](Wide x, Wide) { return x; });
    expect(AccumulateArray(r, b, scalar), [=](Wide x, Wide y) { return x + s * y; });
    CloneArray(a, r);
    expect(MultiplyArrayByScalar(r, scalar) + IncArray(r, scalar),
           [=](Wide x, Wide) { return x * s + s; });
    r = a;
    expect(AbsValArray(r), [](Wide x, Wide) { return static_cast<T>(x) < 0 ? Wide{0} - x : x; });
    const auto limits = std::pair(*std::ranges::min_element(a), *std::ranges::max_element(a));
    auto found = std::pair(T{0}, T{0});
    EXPECT_TRUE(MinMaxArray(a, found.first, found.second) == 0 && found == limits &&
                std::pair(MinArray(a), MaxArray(a)) == limits);
    for (std::size_t d = 0; d < kRank; ++d) {
      Array expected = a;
      this->visit({}, high, [&](auto i) {
        const T x = this->at(a, i, extents);
        i[d] = high[d] - i[d];
        this->at(expected, i, extents) = x;
      });
      r = a;
      EXPECT_TRUE(FlipDimArray(r, static_cast<int>(d) + 1) == 0 && r == expected);
    }
    Array none;
    EXPECT_EQ(FlipDimArray(a, 0) + FlipDimArray(a, kRank + 1) + AddArrays(a, none, r), -5);

    ArrayOf<int, kRank> rounded;
    ArrayOf<double, kRank> widened;
    EXPECT_EQ(CloneArray(a, rounded) + CloneArray(rounded, widened), 0);
    EXPECT_TRUE(std::ranges::equal(a, widened, [](T x, double y) {
      return std::clamp(std::nearbyint(double(x)), -2147483648.0, 2147483647.0) == y;
    }));
    EXPECT_EQ(FillRandomUniform(a, T{1}, T{0}) + FillRandomUniform(a, T{-2}, T{3}), -2);
    EXPECT_TRUE(MinArray(a) >= -2 && MaxArray(a) < 3);
    EXPECT_EQ(FillArray(a, T{4}), 0);
    EXPECT_TRUE(std::ranges::all_of(a, [](T x) { return x == 4; }));
  }
}

}  // namespace
}  // namespace zel
