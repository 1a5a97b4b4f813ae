#include "zel/kernels/sums.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/exact.h"

namespace zel::kernels {
namespace {

TEST(Sums, Smoke) {
  for (std::size_t n : {0u, 1u, 5u, 16u, 17u, 70u, 2048u, 5000u}) {
    std::vector<double> x(n);
    for (std::size_t i = 0; i < n; ++i) x[i] = std::sin(double(i)) * std::pow(10, double(i % 17));
    EXPECT_EQ(sum(x).hi, test::ExactPowerSums(x).sum());
    EXPECT_EQ(sumOfSquares(x).hi, test::ExactPowerSums(x).sumOfSquares());
  }
}

}  // namespace
}  // namespace zel::kernels
