#include "zel/kernels/comb_sort.h"

#include "tests/support/key_shapes.h"
#include "tests/support/testing.h"
#include "zel/kernels/comb_order.h"

namespace zel::kernels {
namespace {

using test::Guarded;
using test::keyShapes;
using test::sameBits;
using Places = std::vector<std::uint64_t>;
using Exchanges = std::vector<std::pair<std::size_t, std::size_t>>;

// The rule word for word, with the gap in integers.
template <class T>
std::size_t transcribedSort(std::vector<T>& x, std::size_t gap, bool ascending, Exchanges& log) {
  const std::size_t n = x.size();
  if (n < 2) return 0;
  std::size_t passes = 0;
  bool exchanged;
  do {
    gap = gap * 10 / 13;
    if (gap == 0) gap = 1;
    exchanged = false;
    for (std::size_t i = 0; i + gap <= n - 1; ++i) {
      if (ascending ? x[i] > x[i + gap] : x[i] < x[i + gap]) {
        const T kept = x[i];
        x[i] = x[i + gap];
        x[i + gap] = kept;
        exchanged = true;
        log.emplace_back(i, i + gap);
      }
    }
    ++passes;
  } while (!(gap == 1 && !exchanged));
  return passes;
}

TEST(CombGap, IsTheIntegerPartOfTenThirteenths) {
  for (std::size_t gap = 0; gap < 300000; ++gap) {
    ASSERT_EQ(combGap(gap), std::max<std::size_t>(1, gap * 10 / 13)) << gap;
  }
  for (std::size_t k = 1; k < 2000; ++k) {  // around multiples of 13, up to the largest sizes
    const std::size_t gap = 13 * (k * ((std::size_t{1} << 45) / 2000) + k);
    ASSERT_EQ(combGap(gap - 1), (gap - 1) * 10 / 13);
    ASSERT_EQ(combGap(gap), gap / 13 * 10);
    ASSERT_EQ(combGap(gap + 1), (gap + 1) * 10 / 13);
  }
}

TEST(CombSort, ReportsTheExchangesOfTheRuleInOrderAndPlacesFollow) {
  for (std::size_t n = 0; n <= 70; ++n) {
    for (const auto& [name, keys] : keyShapes<double>(n, 1)) {
      for (const bool ascending : {true, false}) {
        for (const std::size_t firstGap : {n, n - (n > 0)}) {
          SCOPED_TRACE(name + ", n = " + std::to_string(n));
          auto expected = keys;
          Exchanges expectedLog;
          const auto expectedPasses = transcribedSort(expected, firstGap, ascending, expectedLog);
          auto x = keys;
          Exchanges log;
          std::size_t reported = 0;
          const auto passes = combSort(
              std::span<double>(x), firstGap, ascending,
              [&](std::size_t i, std::size_t j) { log.emplace_back(i, j); }, [&] { ++reported; });
          ASSERT_EQ(log, expectedLog);
          ASSERT_EQ(passes, expectedPasses);
          ASSERT_EQ(reported, expectedPasses);
          ASSERT_TRUE(sameBits<double>(x, expected));

          Places order(n, 7);
          Places expectedOrder(n);
          std::iota(expectedOrder.begin(), expectedOrder.end(), 1u);
          for (const auto& [i, j] : log) std::swap(expectedOrder[i], expectedOrder[j]);
          x = keys;
          ASSERT_EQ(
              combSortOrder(std::span(x), std::span(order), std::uint64_t{1}, firstGap, ascending),
              passes);
          ASSERT_TRUE(sameBits<double>(x, expected));
          ASSERT_EQ(order, expectedOrder);
        }
      }
    }
  }
}

// The array is gone when the hook stops the sort: any further access is an error under the
// sanitizer.
TEST(CombSort, StopsWithoutTouchingTheArrayAgain) {
  for (const int stopAt : {1, 2, 30}) {
    auto keys = std::make_unique<std::array<int, 40>>();
    for (int i = 0; i < 40; ++i) (*keys)[static_cast<std::size_t>(i)] = 17 * i % 40;
    int exchanges = 0;
    int passes = 0;
    const auto hook = [&](std::size_t, std::size_t) {
      if (++exchanges < stopAt) return true;
      keys.reset();
      return false;
    };
    const auto complete = combSort(std::span<int>(*keys), 40, true, hook, [&] { ++passes; });
    EXPECT_EQ(exchanges, stopAt);
    EXPECT_EQ(complete, static_cast<std::size_t>(passes));
    EXPECT_EQ(keys, nullptr);
  }
}

template <class T>
class CombSortFast : public testing::Test {
 public:
  // The fast sorts between guard zones, on every instruction set: keys, number of passes and number
  // of reports as in the plain one, and places as well.
  static void check(const std::vector<T>& keys, std::size_t firstGap, bool ascending,
                    std::size_t shift = 0) {
    auto expected = keys;
    Places places(keys.size());
    const auto passes = combSortOrder(std::span<T>(expected), std::span(places), std::uint64_t{0},
                                      firstGap, ascending);
    test::forEachTarget([&] {
      Guarded<T> guarded(keys, shift);
      std::size_t reported = 0;
      ASSERT_EQ(combSortFast(guarded.keys(), firstGap, ascending, [&] { ++reported; }), passes);
      ASSERT_EQ(reported, passes);
      ASSERT_TRUE(sameBits<T>(guarded.keys(), expected));
      ASSERT_TRUE(guarded.zonesIntact());
      if constexpr (std::is_same_v<T, double>) {
        if (keys.size() > 30000) return;
        Guarded<T> ordered(keys, shift);
        Places fastPlaces(keys.size(), 7);
        combOrderFast(ordered.keys(), fastPlaces, firstGap, ascending);
        ASSERT_TRUE(sameBits<T>(ordered.keys(), expected));
        ASSERT_EQ(fastPlaces, places);
        ASSERT_TRUE(ordered.zonesIntact());
      }
    });
  }

  // Shapes of one size, in both directions.
  static void checkShapes(
      std::size_t n, std::size_t firstGap,
      bool (*isWanted)(std::string_view name) = [](std::string_view) { return true; }) {
    for (const auto& [name, keys] : keyShapes<T>(n, 3)) {
      if (!isWanted(name)) continue;
      SCOPED_TRACE(name + ", n = " + std::to_string(n));
      for (const bool ascending : {true, false}) {
        check(keys, firstGap, ascending, n % 8);
        if (HasFatalFailure()) return;
      }
    }
  }
};
using Keys = testing::Types<double, float, std::int32_t>;
TYPED_TEST_SUITE(CombSortFast, Keys);

TYPED_TEST(CombSortFast, EqualsThePlainSort) {
  for (std::size_t n = 0; n <= 300; ++n) this->checkShapes(n, n - (n % 2));
  for (const std::size_t n : {1000u, 1023u, 1024u, 1025u, 2047u, 2048u, 2049u, 3333u, 5000u}) {
    this->checkShapes(n, n - (n % 2));
  }
  for (const std::size_t firstGap : {0u, 1u, 2u, 3u, 100u, 779u, 780u, 781u, 5000u, 1000000u}) {
    this->checkShapes(600, firstGap, [](auto name) { return name == "random"; });
  }
  // With gap 1 from the start the sort is a bubble sort, with as many passes as keys.
  for (const std::size_t n : {200u, 2000u}) this->checkShapes(n, 1);
}

TYPED_TEST(CombSortFast, EqualsThePlainSortOnLongArrays) {
  // All shapes but "interleaved", which takes a thousand passes; see below.
  this->checkShapes(100000, 100000, [](auto name) { return name != "interleaved"; });
  // This one has gaps on both sides of the one at which a new train begins.
  this->checkShapes(400001, 400001,
                    [](auto name) { return name == "random" || name == "NaN 1 in 9"; });
}

// Data that needs hundreds of passes with gap 1 is finished by other means; the number of passes
// and the order of equal keys must not show it.
TYPED_TEST(CombSortFast, CountsThePassesThatItSkips) {
  for (const std::size_t n : {27000u, 27001u}) {
    std::vector<TypeParam> keys(n);
    for (std::size_t i = 0; i < n; ++i) keys[i] = static_cast<TypeParam>(i % 2 ? i : n - i);
    auto plain = keys;
    ASSERT_GT(combSort(std::span<TypeParam>(plain), n, true, NoHook{}), 300u);
    this->check(keys, n, true);
    this->check(keys, n - 1, false);
    if constexpr (std::is_floating_point_v<TypeParam>) {
      for (std::size_t i = 0; i < n; i += 5) keys[i] = i % 2 ? TypeParam(0) : -TypeParam(0);
      this->check(keys, n, true);
      for (std::size_t i = 100; i < n; i += n / 4) keys[i] = test::nanWithPayload<TypeParam>(9);
      this->check(keys, n, true);
    }
  }
}

TYPED_TEST(CombSortFast, EveryReportFindsAPermutationOfTheKeys) {
  for (const bool ascending : {true, false}) {
    auto x = keyShapes<TypeParam>(400000, 6).front().keys;
    auto sorted = x;
    std::sort(sorted.begin(), sorted.end());
    std::size_t reported = 0;
    combSortFast(std::span<TypeParam>(x), x.size(), ascending, [&] {
      if (++reported % 20 != 1) return;
      auto found = x;
      std::sort(found.begin(), found.end());
      EXPECT_EQ(found, sorted);
    });
    EXPECT_GT(reported, 40u);
  }
}

// Keys that a sort by the upper bits leaves in disorder, and that need all bits then.
TEST(CombOrder, OfKeysThatAgreeInMostOfTheUpperBits) {
  std::mt19937 random(8);
  std::vector<double> keys(2000);
  for (double& key : keys) {
    const double significand = 1 + static_cast<double>(random() >> 1) * 0x1p-52;
    key = std::ldexp(significand, random() % 2 == 0 ? 0 : 8);
  }
  for (const double last : {0.5, std::nan("")}) {
    keys.back() = last;
    for (const bool ascending : {true, false}) {
      CombSortFast<double>::check(keys, keys.size(), ascending);
    }
  }
}

// The smallest key at the end of a sorted array that gap 1 alone would have to move.
TEST(CombOrder, DoesWithoutStorage) {
  std::vector<double> keys(2000);
  for (std::size_t i = 0; i < keys.size(); ++i) keys[i] = static_cast<double>(i / 2);
  keys.back() = -1;
  auto fast = keys;
  Places places(keys.size());
  auto fastPlaces = places;
  combSortOrder(std::span(keys), std::span(places), std::uint64_t{0}, 1, true);
  {
    const test::FailingNew fail(0);
    combOrderFast(std::span(fast), std::span(fastPlaces), 1, true);
  }
  EXPECT_EQ(fast, keys);
  EXPECT_EQ(fastPlaces, places);
}

}  // namespace
}  // namespace zel::kernels
