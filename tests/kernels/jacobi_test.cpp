#include "zel/kernels/jacobi.h"

#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/same_bits.h"

namespace zel::kernels {
namespace {

using Numbers = std::vector<double>;

/// The method one rotation after the other, as it is usually written. a is stored by columns.
int plainJacobi(std::size_t n, Numbers a, Numbers& d, Numbers& v) {
  v.assign(n * n, 0);
  d.resize(n);
  Numbers z(n);
  for (std::size_t i = 0; i < n; ++i) {
    v[i * n + i] = 1;
    d[i] = a[i * n + i];
  }
  Numbers b = d;
  const auto at = [&](std::size_t r, std::size_t c) -> double& { return a[c * n + r]; };
  for (int sweep = 1; sweep <= 100; ++sweep) {
    double sum = 0;
    for (std::size_t p = 0; p < n; ++p) {
      for (std::size_t q = p + 1; q < n; ++q) sum += std::abs(at(p, q));
    }
    if (sum == 0) return sweep;
    const double threshold = sweep < 4 ? 0.2 * sum / static_cast<double>(n * n) : 0;
    for (std::size_t p = 0; p < n; ++p) {
      for (std::size_t q = p + 1; q < n; ++q) {
        const double g = 200 * std::abs(at(p, q));
        if (sweep > 4 && std::abs(d[p]) + g == std::abs(d[p]) &&
            std::abs(d[q]) + g == std::abs(d[q])) {
          at(p, q) = 0;
        } else if (std::abs(at(p, q)) > threshold) {
          double h = d[q] - d[p];
          double t = at(p, q) / h;
          if (std::abs(h) + g != std::abs(h)) {
            const double theta = h / (2 * at(p, q));
            t = 1 / (std::abs(theta) + std::sqrt(theta * theta + 1));
            if (theta < 0) t = -t;
          }
          const double c = 1 / std::sqrt(t * t + 1);
          const double s = t * c;
          const double tau = s / (1 + c);
          h = t * at(p, q);
          z[p] -= h;
          z[q] += h;
          d[p] -= h;
          d[q] += h;
          at(p, q) = 0;
          const auto rotate = [&](double& x, double& y) {
            const double old = x;
            x = x - s * (y + x * tau);
            y = y + s * (old - y * tau);
          };
          for (std::size_t j = 0; j < p; ++j) rotate(at(j, p), at(j, q));
          for (std::size_t j = p + 1; j < q; ++j) rotate(at(p, j), at(j, q));
          for (std::size_t j = q + 1; j < n; ++j) rotate(at(p, j), at(q, j));
          for (std::size_t j = 0; j < n; ++j) rotate(v[p * n + j], v[q * n + j]);
        }
      }
    }
    for (std::size_t i = 0; i < n; ++i) {
      b[i] += z[i];
      d[i] = b[i];
      z[i] = 0;
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
        a[c * n + r] =
            n == 17 && (r + c) % 3 ? 0 : normal(random) * (n == 33 ? std::pow(10, -double(c)) : 1);
      }
    }
    Numbers values, vectors;
    const int sweeps = plainJacobi(n, a, values, vectors);
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
        double product = 0;
        double square = 0;
        for (std::size_t i = 0; i < n; ++i) {
          product += v[k * n + i] * vectors[k * n + i];
          square += v[k * n + i] * v[k * n + i];
        }
        EXPECT_NEAR(product, 1, 1e-13) << n;
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
