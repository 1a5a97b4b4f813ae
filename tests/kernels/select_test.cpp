#include "zel/kernels/select.h"

#include "tests/support/key_shapes.h"
#include "tests/support/testing.h"
#include "zel/kernels/bracket.h"
#include "zel/kernels/comb_sort.h"

namespace zel::kernels {
namespace {

using test::Guarded;
using test::keyShapes;

template <class T>
bool sameValue(T a, T b) {
  return a == b || (a != a && b != b);
}

template <class T>
class Select : public testing::Test {
 public:
  // Positions at both ends, in the middle, and around the borders between different values.
  static std::vector<std::size_t> positions(const std::vector<T>& sorted) {
    const std::size_t n = sorted.size();
    std::vector<std::size_t> k{0, 1, n / 4, n / 2, n - n / 20, n - 2, n - 1, n, n + 7};
    for (std::size_t i = 1; i < n && k.size() < 13; ++i) {
      if (sorted[i] != sorted[i - 1]) k.insert(k.end(), {i - 1, i});
    }
    return k;
  }

  static void check(const std::vector<T>& keys) {
    const std::size_t n = keys.size();
    auto sorted = keys;
    combSort(std::span<T>(sorted), n, true, NoHook{});
    const bool ordered = std::none_of(keys.begin(), keys.end(), [](T v) { return v != v; });
    for (const std::size_t wanted : positions(sorted)) {
      SCOPED_TRACE("k = " + std::to_string(wanted));
      const std::size_t k = std::min(wanted, n - 1);
      test::forEachTarget([&] {
        const auto pair = selectPair(std::span<const T>(keys), wanted);
        ASSERT_TRUE(sameValue(pair.at, sorted[k]));
        ASSERT_TRUE(sameValue(pair.next, sorted[std::min(k + 1, n - 1)]));

        Guarded<T> guarded(keys, k % 4);
        const auto x = guarded.keys();
        ASSERT_TRUE(sameValue(quickSelect(x, wanted), sorted[k]));
        ASSERT_TRUE(guarded.zonesIntact());
        if (!ordered) {
          ASSERT_TRUE(test::sameBits<T>(x, sorted));
          return;
        }
        ASSERT_EQ(x[k], sorted[k]);
        for (std::size_t i = 0; i < n; ++i) {
          ASSERT_FALSE(i < k ? x[k] < x[i] : x[i] < x[k]) << "i = " << i;
        }
        combSortFast(x, n, true);
        ASSERT_TRUE(std::equal(x.begin(), x.end(), sorted.begin()));
      });
    }
  }
};
using Keys = testing::Types<double, float, std::int32_t>;
TYPED_TEST_SUITE(Select, Keys);

TYPED_TEST(Select, EqualsTheSortedPositionForEveryShape) {
  for (const std::size_t n : {1u, 2u, 3u, 10u, 100u, 500u, 501u, 2048u, 4097u, 30000u}) {
    for (const auto& [name, keys] : keyShapes<TypeParam>(n, 11)) {
      if (n > 5000 && name == "interleaved") continue;  // slow to sort
      SCOPED_TRACE(name + ", n = " + std::to_string(n));
      this->check(keys);
      if (this->HasFatalFailure()) return;
    }
  }
  if constexpr (std::is_floating_point_v<TypeParam>) {
    // A NaN that no sample finds.
    for (const std::size_t at : {0u, 1u, 5003u, 9999u}) {
      auto keys = keyShapes<TypeParam>(10000, 13).front().keys;
      keys[at] = test::nanWithPayload<TypeParam>(3);
      this->check(keys);
    }
  }
}

TYPED_TEST(Select, EmptyGivesZeroAndConstantsStayInPlace) {
  EXPECT_EQ(selectPair(std::span<const TypeParam>(), 3).at, TypeParam(0));
  EXPECT_EQ(quickSelect(std::span<TypeParam>(), 3), TypeParam(0));
  if constexpr (std::is_floating_point_v<TypeParam>) {
    std::vector<TypeParam> x(5000, TypeParam(0));
    for (std::size_t i = 0; i < x.size(); i += 3) x[i] = -x[i];
    const auto before = x;
    quickSelect(std::span<TypeParam>(x), 77);
    EXPECT_TRUE(test::sameBits<TypeParam>(x, before));
  }
}

// Any two keys as the bracket of any position: the pair is right, and missed only where one of both
// is outside.
TYPED_TEST(Select, BracketGivesThePairOnlyIfItHoldsBothPositions) {
  const std::vector<TypeParam> sorted{1, 2, 2, 3, 4, 4, 4, 6}, keys{4, 4, 6, 1, 2, 2, 3, 4};
  std::vector<TypeParam> room(keys.size() + kBracketSlack);
  for (std::size_t k = 0; k < keys.size(); ++k) {
    const TypeParam next = sorted[std::min(k + 1, keys.size() - 1)];
    for (const TypeParam low : sorted) {
      for (const TypeParam high : sorted) {
        if (high < low) continue;
        SelectedPair<TypeParam> pair;
        const auto outcome = selectBetween(std::span<const TypeParam>(keys), k, low, high,
                                           std::span<TypeParam>(room), pair);
        const bool held = low <= sorted[k] && next <= high;
        ASSERT_EQ(outcome == Bracketing::Found, held) << k << ' ' << low << ' ' << high;
        ASSERT_TRUE(!held || (pair.at == sorted[k] && pair.next == next)) << k << ' ' << low;
      }
    }
  }
}

TYPED_TEST(Select, BracketStopsBeforeItsRoomEnds) {
  const std::vector<TypeParam> keys(100000, TypeParam(5));
  std::vector<TypeParam> room(kBracketSlack + 5000 + 64, TypeParam(77));
  const auto counts = placeKeys(std::span<const TypeParam>(keys), TypeParam(0), TypeParam(10),
                                std::span<TypeParam>(room).first(kBracketSlack + 5000));
  EXPECT_TRUE(counts.overflow);
  EXPECT_EQ(std::count(room.end() - 64, room.end(), TypeParam(77)), 64);
}

}  // namespace
}  // namespace zel::kernels
