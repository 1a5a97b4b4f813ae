#include <algorithm>
#include <vector>

#include "tests/support/failing_new.h"
#include "tests/support/key_shapes.h"
#include "tests/support/simd_targets.h"
#include "zel/kernels/comb_order.h"

namespace zel::kernels {
namespace {

using Places = std::vector<std::uint64_t>;

/// Ties, not-a-number keys and arrays that need hundreds of passes with gap 1, on every instruction
/// set: keys and places are those of the plain passes.
TEST(CombOrder, KeysAndPlacesOfThePlainSort) {
  for (const std::size_t n : {0U, 1U, 2U, 3U, 7U, 8U, 9U, 33U, 100U, 700U}) {
    for (const auto& shape : test::keyShapes<double>(n, 11)) {
      SCOPED_TRACE(testing::Message() << shape.name << ", " << n);
      for (const bool ascending : {true, false}) {
        std::vector<double> keys = shape.keys;
        Places places(n);
        combSortOrder(std::span(keys), std::span(places), std::uint64_t{0}, n, ascending);
        test::forEachTarget([&] {
          std::vector<double> fast = shape.keys;
          Places fastPlaces(n, 7);
          combOrderFast(std::span(fast), std::span(fastPlaces), n, ascending);
          EXPECT_TRUE(n == 0 || std::memcmp(fast.data(), keys.data(), n * sizeof(double)) == 0);
          EXPECT_EQ(fastPlaces, places);
        });
      }
    }
  }
}

/// The smallest key at the end of a sorted array that gap 1 alone would have to move.
TEST(CombOrder, SlowArraysWithAndWithoutStorage) {
  std::vector<double> start(2000);
  for (std::size_t i = 0; i < start.size(); ++i) start[i] = static_cast<double>(i / 2);
  start.back() = -1;
  std::vector<double> keys = start;
  Places places(start.size());
  combSortOrder(std::span(keys), std::span(places), std::uint64_t{0}, 1, true);
  for (const int failing : {-1, 0}) {
    std::vector<double> fast = start;
    Places fastPlaces(start.size());
    {
      const test::FailingNew fail(failing);
      combOrderFast(std::span(fast), std::span(fastPlaces), 1, true);
    }
    EXPECT_EQ(fast, keys);
    EXPECT_EQ(fastPlaces, places);
  }
}

}  // namespace
}  // namespace zel::kernels
