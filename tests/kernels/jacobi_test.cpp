#include "zel/kernels/jacobi.h"

#include "tests/support/same_bits.h"
#include "tests/support/testing.h"
#include "zel/base/types.h"

namespace zel::kernels {
namespace {

using Numbers = std::vector<double>;
using Precise = std::vector<Extended>;

/// The method one rotation after the other, each carried out in the whole symmetric matrix and in
/// extended precision. a is stored by columns.
int plainJacobi(std::size_t n, Precise a, Numbers& values, Precise& v) {
  v.assign(n * n, 0);
  for (std::size_t i = 0; i < n; ++i) v[i * n + i] = 1;
  const auto at = [&](std::size_t r, std::size_t c) -> Extended& { return a[c * n + r]; };
  for (int sweep = 1; sweep <= 100; ++sweep) {
    Extended sum = 0;
    for (std::size_t p = 0; p < n; ++p) {
      for (std::size_t q = p + 1; q < n; ++q) sum += std::abs(at(p, q));
    }
    if (sum == 0) {
      for (std::size_t i = 0; i < n; ++i) values.push_back(static_cast<double>(at(i, i)));
      return sweep;
    }
    const Extended threshold = sweep < 4 ? 0.2L * sum / static_cast<Extended>(n * n) : 0;
    for (std::size_t p = 0; p < n; ++p) {
      for (std::size_t q = p + 1; q < n; ++q) {
        const Extended g = 200 * std::abs(at(p, q));
        const auto isNegligible = [g](Extended x) { return std::abs(x) + g == std::abs(x); };
        const bool isLate = sweep > 4 && isNegligible(at(p, p)) && isNegligible(at(q, q));
        if (!isLate && std::abs(at(p, q)) <= threshold) continue;
        if (!isLate) {
          const Extended h = at(q, q) - at(p, p);
          const Extended theta = h / (2 * at(p, q));
          const Extended root = std::abs(theta) + std::sqrt(theta * theta + 1);
          const Extended t = isNegligible(h) ? at(p, q) / h : std::copysign(1 / root, theta);
          const Extended c = 1 / std::sqrt(t * t + 1);
          const auto rotate = [c, s = t * c](Extended& x, Extended& y) {
            const Extended old = x;
            x = c * x - s * y;
            y = c * y + s * old;
          };
          for (std::size_t j = 0; j < n; ++j) rotate(at(j, p), at(j, q));
          for (std::size_t j = 0; j < n; ++j) rotate(at(p, j), at(q, j));
          for (std::size_t j = 0; j < n; ++j) rotate(v[p * n + j], v[q * n + j]);
        }
        at(p, q) = at(q, p) = 0;
      }
    }
  }
  return 101;
}

/// Order and signs of the eigenvalues and vectors, across the sizes of the blocks in which the
/// rotations are found and carried out; the same bits on every instruction set.
TEST(Jacobi, EqualsThePlainMethod) {
  std::mt19937_64 random(5);
  std::normal_distribution<double> normal;
  for (const std::size_t n : {1u, 2u, 8u, 9u, 17u, 33u, 70u, 130u}) {
    Numbers a(n * n);
    for (std::size_t c = 0; c < n; ++c) {
      // Sparse, graded and ordinary matrices.
      for (std::size_t r = 0; r <= c; ++r) {
        a[c * n + r] = a[r * n + c] =
            n == 17 && (r + c) % 3 ? 0 : normal(random) * (n == 33 ? std::pow(10, -double(c)) : 1);
      }
    }
    Numbers values;
    Precise vectors;
    const int sweeps = plainJacobi(n, {a.begin(), a.end()}, values, vectors);
    ASSERT_LT(sweeps, 100);
    test::expectSameBits([&] {
      Numbers copy = a, d(n), v(n * n);
      int count = 0;
      const auto sweep = [&count] { return ++count > 0; };
      EXPECT_EQ(jacobiEigenvectors({copy.data(), n, n, n}, d, {v.data(), n, n, n}, sweep),
                JacobiStatus::done);
      EXPECT_NEAR(count, sweeps, 1);
      for (std::size_t k = 0; k < n; ++k) {
        EXPECT_NEAR(d[k], values[k], 2e-15 * static_cast<double>(n)) << n;
        Extended product = 0;
        double square = 0;
        for (std::size_t i = 0; i < n; ++i) {
          product += v[k * n + i] * vectors[k * n + i];
          square += v[k * n + i] * v[k * n + i];
        }
        EXPECT_NEAR(static_cast<double>(product), 1, 1e-13) << n;
        EXPECT_NEAR(square, 1, 1e-15) << n;
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
