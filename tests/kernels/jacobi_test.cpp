#include "zel/kernels/jacobi.h"

#include "tests/support/testing.h"

namespace zel::kernels {
namespace {

using Numbers = std::vector<double>;

/// What the method gives for the matrices of the test if one rotation after the other is carried
/// out in extended precision: they depend on which rotations are made, in which order and
/// direction.
const struct {
  std::size_t n;
  int sweeps;
  double middleValue, lastElement;
} kPlain[] = {{1, 1, -0.22414013166430599, 1},
              {2, 2, -1.4289729386413654, 0.90646329417826532},
              {8, 8, -1.8291092878699495, 0.58453218493426695},
              {9, 8, 2.2313678227541085, 0.41198191132910778},
              {17, 9, -2.46000048007906, 0.33542853921368543},
              {33, 9, -4.2002169904302059e-17, 0.96277133277471993},
              {70, 11, 10.626953179020349, 0.21685913412291816},
              {130, 11, 9.6794792769182774, 0.11565680206154678}};

/// A v = d v with orthonormal v, across the sizes of the blocks in which the rotations are found
/// and carried out; the same bits on every instruction set.
TEST(Jacobi, FindsEigenvectors) {
  std::mt19937_64 random(5);
  std::normal_distribution<double> normal;
  for (const auto& plain : kPlain) {
    const std::size_t n = plain.n;
    Numbers a(n * n);
    for (std::size_t c = 0; c < n; ++c) {
      // Sparse, graded and ordinary matrices.
      for (std::size_t r = 0; r <= c; ++r) {
        a[c * n + r] = a[r * n + c] =
            n == 17 && (r + c) % 3 ? 0 : normal(random) * (n == 33 ? std::pow(10, -double(c)) : 1);
      }
    }
    test::expectSameBits([&] {
      Numbers copy = a, d(n), v(n * n);
      int sweeps = 0;
      const auto sweep = [&sweeps] { return ++sweeps > 0; };
      EXPECT_EQ(jacobiEigenvectors({copy.data(), n, n, n}, d, {v.data(), n, n, n}, sweep),
                JacobiStatus::done);
      EXPECT_NEAR(sweeps, plain.sweeps, 1) << n;
      EXPECT_NEAR(d[n / 2], plain.middleValue, 2e-15 * static_cast<double>(n)) << n;
      EXPECT_NEAR(v.back(), plain.lastElement, 1e-13) << n;
      for (std::size_t k = 0; k < n; ++k) {
        for (std::size_t j = 0; j < n; ++j) {
          double product = 0, image = 0;
          for (std::size_t i = 0; i < n; ++i) {
            product += v[j * n + i] * v[k * n + i];
            image += a[j * n + i] * v[k * n + i];
          }
          EXPECT_NEAR(product, j == k, 1e-14) << n;
          EXPECT_NEAR(image, d[k] * v[k * n + j], 2e-15 * static_cast<double>(n)) << n;
        }
      }
      d.insert(d.end(), v.begin(), v.end());
      return d;
    });
  }
}

/// Extreme sizes are those of an ordinary matrix times a power of two; what is below the diagonal
/// does not matter. Rows of equal large elements make the scales of many rotations small.
TEST(Jacobi, IsAsGoodForExtremeElements) {
  constexpr std::size_t n = 150;
  Numbers a(n * n, 1), values(n), vectors(n * n);
  for (std::size_t c = 0; c < n; ++c) {
    a[c * n + c] = 1e-3 * static_cast<double>(c);
    for (std::size_t r = c + 1; r < n; ++r) a[c * n + r] = NAN;
  }
  const auto solve = [](Numbers m, Numbers& d, Numbers& v) {
    return jacobiEigenvectors({m.data(), n, n, n}, d, {v.data(), n, n, n});
  };
  ASSERT_EQ(solve(a, values, vectors), JacobiStatus::done);
  for (std::size_t k = 0; k < n; ++k) {
    double product = 0;
    for (std::size_t i = 0; i < n; ++i) product += vectors[i] * vectors[k * n + i];
    EXPECT_NEAR(product, k == 0, 1e-14);
  }
  for (const double factor : {0x1p-900, 0x1p1000}) {
    Numbers scaled = a, d(n), v(n * n);
    for (double& x : scaled) x *= factor;
    ASSERT_EQ(solve(scaled, d, v), JacobiStatus::done);
    EXPECT_EQ(v, vectors);
    for (std::size_t k = 0; k < n; ++k) EXPECT_EQ(d[k], values[k] * factor);
  }
}

TEST(Jacobi, StopsAndGivesUp) {
  Numbers a{1, 0, 0, 2, 1, 0, 3, 4, 1}, d(3), v(9);
  int steps = 0;
  const auto step = [&steps] { return ++steps < 2; };
  EXPECT_EQ(jacobiEigenvectors({a.data(), 3, 3, 3}, d, {v.data(), 3, 3, 3}, {}, step),
            JacobiStatus::stopped);
  EXPECT_EQ(steps, 2);
  a = {1, 0, NAN, 1};
  EXPECT_EQ(jacobiEigenvectors({a.data(), 2, 2, 2}, {d.data(), 2}, {v.data(), 2, 2, 2}),
            JacobiStatus::notConverged);
}

}  // namespace
}  // namespace zel::kernels
