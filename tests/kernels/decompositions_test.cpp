#include "zel/kernels/decompositions.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <new>
#include <numeric>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/failing_new.h"
#include "tests/support/simd_targets.h"

namespace zel::kernels {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kRoundoff = 0x1p-53;

/// Square matrix with not-a-number between its columns.
struct Square {
  std::size_t n;
  std::size_t stride;
  std::vector<double> data;

  Square(std::size_t size, std::size_t padding, const std::function<double(int, int)>& value)
      : n(size), stride(size + padding), data(stride * n, kNaN) {
    for (std::size_t c = 0; c < n; ++c) {
      for (std::size_t r = 0; r < n; ++r) {
        view()(r, c) = value(static_cast<int>(r), static_cast<int>(c));
      }
    }
  }
  Matrix view() { return {data.data(), n, n, stride}; }
  double& operator()(std::size_t r, std::size_t c) { return view()(r, c); }
};

Square zeros(std::size_t n) {
  return {n, 0, [](int, int) { return 0.0; }};
}

std::function<double(int, int)> normal(std::size_t seed) {
  return [random = std::mt19937_64(seed), deviate = std::normal_distribution<double>()](
             int, int) mutable { return deviate(random); };
}

std::string firstDifference(std::span<const double> a, std::span<const double> b) {
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (std::isnan(a[i]) && std::isnan(b[i])) continue;
    if (std::bit_cast<std::uint64_t>(a[i]) != std::bit_cast<std::uint64_t>(b[i])) {
      return std::to_string(i) + ": " + std::to_string(a[i]) + " " + std::to_string(b[i]);
    }
  }
  return "";
}

struct Factors {
  Square a;
  LuStatus status = LuStatus::done;
  int sign = 1;
  std::vector<std::size_t> pivots;
};

/// Column by column, as the decomposition is defined; stops before column `end`.
Factors plainLu(Square a, std::size_t end) {
  const std::size_t n = a.n;
  std::vector<double> scale(n);
  Factors f{a, LuStatus::done, 1, std::vector<std::size_t>(n)};
  for (std::size_t i = 0; i < n; ++i) {
    double big = 0;
    for (std::size_t j = 0; j < n; ++j) big = std::abs(a(i, j)) > big ? std::abs(a(i, j)) : big;
    if (big == 0) f.status = LuStatus::zeroRow;
    scale[i] = 1 / big;
  }
  if (f.status == LuStatus::zeroRow) return f;
  for (std::size_t j = 0; j < end; ++j) {
    double best = 0;
    std::size_t imax = j;
    for (std::size_t i = 0; i < n; ++i) {
      double& x = f.a(i, j);
      for (std::size_t k = 0; k < std::min(i, j); ++k) x = std::fma(-f.a(i, k), f.a(k, j), x);
      if (i >= j && scale[i] * std::abs(x) >= best) {
        best = scale[i] * std::abs(x);
        imax = i;
      }
    }
    if (imax != j) {
      for (std::size_t c = 0; c < n; ++c) std::swap(f.a(imax, c), f.a(j, c));
      scale[imax] = scale[j];
      f.sign = -f.sign;
    }
    f.pivots[j] = imax;
    if (std::abs(f.a(j, j)) < 1E-100) {
      f.a(j, j) = 1E-100;
      f.status = LuStatus::tinyPivot;
    }
    for (std::size_t i = j + 1; i < n; ++i) f.a(i, j) /= f.a(j, j);
  }
  if (end < n) f.status = LuStatus::stopped;
  return f;
}

Square plainInverse(Factors f) {
  const std::size_t n = f.a.n;
  Square inverse = zeros(n);
  for (std::size_t j = 0; j < n; ++j) {
    std::vector<double> b(n);
    b[j] = 1;
    std::size_t begin = n;
    for (std::size_t i = 0; i < n; ++i) {
      double s = b[f.pivots[i]];
      b[f.pivots[i]] = b[i];
      for (std::size_t k = begin; k < i; ++k) s = std::fma(-f.a(i, k), b[k], s);
      if (begin == n && s != 0) begin = i;
      b[i] = s;
    }
    for (std::size_t i = n; i-- > 0;) {
      for (std::size_t k = i + 1; k < n; ++k) b[i] = std::fma(-f.a(i, k), b[k], b[i]);
      b[i] /= f.a(i, i);
      inverse(i, j) = b[i];
    }
  }
  return inverse;
}

bool plainCholesky(Square& a, std::vector<double>& d) {
  bool isPositive = true;
  for (std::size_t i = 0; i < a.n; ++i) {
    for (std::size_t j = i; j < a.n; ++j) {
      double s = a(j, i);
      for (std::size_t k = 0; k < i; ++k) s = std::fma(-a(k, i), a(k, j), s);
      if (j > i) {
        a(i, j) = s / d[i];
      } else {
        isPositive &= s > 0;
        d[i] = s > 0 ? std::sqrt(s) : kNaN;
      }
    }
  }
  return isPositive;
}

Factors decompose(Square a) {
  Factors f{a, LuStatus::done, 0, std::vector<std::size_t>(a.n)};
  f.status = luDecompose(f.a.view(), f.pivots, f.sign);
  return f;
}

void expectSame(const Factors& f, const Factors& plain) {
  EXPECT_EQ(firstDifference(f.a.data, plain.a.data), "");
  EXPECT_EQ(f.status, plain.status);
  EXPECT_EQ(f.sign, plain.sign);
  if (f.status != LuStatus::zeroRow) {
    EXPECT_EQ(f.pivots, plain.pivots);
  }
}

/// LU, inverse and Cholesky on every instruction set against the plain algorithms.
void expectPlainBits(const Square& a) {
  const Factors plain = plainLu(a, a.n);
  const Square inverse = plainInverse(plain);
  Square lower = a;
  std::vector<double> diagonal(a.n);
  const bool isPositive = plainCholesky(lower, diagonal);
  test::forEachTarget([&] {
    const Factors f = decompose(a);
    expectSame(f, plain);
    if (f.status != LuStatus::zeroRow) {
      Square x = zeros(a.n);
      EXPECT_TRUE(luInverse(Square(f.a).view(), f.pivots, x.view()));
      EXPECT_EQ(firstDifference(x.data, inverse.data), "");
    }
    Square l = a;
    std::vector<double> d(a.n);
    EXPECT_EQ(choleskyDecompose(l.view(), d), isPositive);
    EXPECT_EQ(firstDifference(l.data, lower.data), "");
    EXPECT_EQ(firstDifference(d, diagonal), "");
  });
}

TEST(Decompositions, HaveTheBitsOfThePlainAlgorithms) {
  std::vector<std::size_t> sizes(28);
  std::iota(sizes.begin(), sizes.end(), 0u);
  for (const std::size_t n : {33u, 47u, 48u, 59u, 60u, 61u, 63u, 64u, 65u, 70u, 95u, 96u, 97u, 119u,
                              121u, 128u, 131u, 157u, 193u}) {
    sizes.push_back(n);
  }
  for (const std::size_t n : sizes) {
    SCOPED_TRACE(n);
    auto value = normal(n);
    const double shift = 0.3 * static_cast<double>(n);
    expectPlainBits({n, n % 3, [&](int r, int c) { return value(r, c) + (r == c ? shift : 0); }});
  }
}

// Ties, exact cancellation, negative zeros, pivots that vanish, and values that are not finite meet
// every branch of the pivot search and of the leading zeros.
TEST(Decompositions, HaveTheBitsOfThePlainAlgorithmsOnHostileMatrices) {
  for (const std::size_t n : {2u, 5u, 13u, 27u, 70u, 101u}) {
    SCOPED_TRACE(n);
    std::mt19937_64 random(n);
    const auto pick = [&](std::vector<double> values) {
      return [&random, values](int, int) { return values[random() % values.size()]; };
    };
    expectPlainBits({n, 1, pick({-1, 0, 1})});
    expectPlainBits({n, 1, pick({-0.0, 0, 1e-101, -3e-120, 2})});
    expectPlainBits({n, 1, pick({1e-320, 4e-320, 1, -1e300, 1e300})});
    expectPlainBits({n, 1, [](int, int) { return kNaN; }});
    auto value = normal(n);
    for (const double odd : {kNaN, kInf, -kInf, 0.0}) {
      const std::size_t at = random() % n;
      Square a(n, 2, value);
      a(at, random() % n) = odd;
      expectPlainBits(a);
      for (std::size_t i = 0; i < n; ++i) a(at, i) = odd;
      expectPlainBits(a);
    }
  }
}

TEST(Decompositions, StoppedStateIsThatOfThePlainAlgorithm) {
  for (const std::size_t n : {11u, 75u, 140u}) {
    const Square a(n, 3, normal(n));
    for (std::size_t end = 0; end <= n; end += n < 100 ? 1 : 9) {
      SCOPED_TRACE(std::to_string(n) + " until " + std::to_string(end));
      Factors plain = plainLu(a, end);
      for (const bool throws : {false, true}) {
        Factors f{a, LuStatus::stopped, 0, std::vector<std::size_t>(n)};
        Square scratch = zeros(n);
        std::size_t scaled = 0;
        std::size_t steps = 0;
        const auto step = [&] {
          if (++steps <= end) return true;
          return throws ? throw std::runtime_error("stop") : false;
        };
        try {
          f.status = luDecompose(
              f.a.view(), f.pivots, f.sign, [&] { return ++scaled <= n; }, step,
              throws ? scratch.view() : Matrix{});
          EXPECT_TRUE(!throws || end == n);
        } catch (const std::runtime_error&) {
        }
        expectSame(f, plain);
        EXPECT_EQ(scaled, n);
        EXPECT_EQ(steps, std::min(end + 1, n));
      }
    }
  }
}

TEST(Decompositions, PollsBeforeTheFirstColumnAndOfTheInverse) {
  const std::size_t n = 130;
  const Square a(n, 0, normal(1));
  Factors f = decompose(a);
  Square untouched = a;
  std::size_t calls = 0;
  EXPECT_EQ(luDecompose(untouched.view(), f.pivots, f.sign, [&] { return ++calls < 5; }),
            LuStatus::stopped);
  EXPECT_EQ(calls, 5u);
  EXPECT_EQ(untouched.data, a.data);
  for (const std::size_t end : {0u, 1u, 60u, 129u, 130u}) {
    Square x = zeros(n);
    calls = 0;
    EXPECT_EQ(luInverse(f.a.view(), f.pivots, x.view(), [&] { return ++calls <= end; }), end == n);
    EXPECT_EQ(calls, std::min(end + 1, n));
  }
}

/// Largest |residual| / bound over the elements of A - L U (rows exchanged), in units of n u
/// |L||U|, and of A X - I in units of 3 n u |L||U||X|: both at most 1 for a backward stable
/// decomposition, to first order (Higham, Accuracy and Stability, 2002, theorems 9.3 and 14.1).
void expectBackwardStable(Square a) {
  const std::size_t n = a.n;
  Factors f = decompose(a);
  ASSERT_EQ(f.status, LuStatus::done);
  Square x = zeros(n);
  ASSERT_TRUE(luInverse(f.a.view(), f.pivots, x.view()));
  const double unit = static_cast<double>(n) * kRoundoff * 1.01;
  Square bounds = zeros(n);
  std::vector<std::size_t> rows(n);
  std::iota(rows.begin(), rows.end(), 0u);
  for (std::size_t i = 0; i < n; ++i) std::swap(rows[i], rows[f.pivots[i]]);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      long double residual = -a(rows[i], j);
      for (std::size_t k = 0; k <= std::min(i, j); ++k) {
        const long double term = (k == i ? 1 : f.a(i, k)) * static_cast<long double>(f.a(k, j));
        residual += term;
        bounds(rows[i], j) += static_cast<double>(std::abs(term));
      }
      EXPECT_LE(std::abs(residual), unit * bounds(rows[i], j)) << i << " " << j;
    }
  }
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      long double residual = i == j ? -1 : 0;
      double bound = 0;
      for (std::size_t k = 0; k < n; ++k) {
        residual += static_cast<long double>(a(i, k)) * x(k, j);
        bound += bounds(i, k) * std::abs(x(k, j));
      }
      EXPECT_LE(std::abs(residual), 3 * unit * bound) << i << " " << j;
    }
  }
}

TEST(Decompositions, AreBackwardStable) {
  const auto hilbert = [](int r, int c) { return 1.0 / (r + c + 1); };
  for (std::size_t n = 1; n <= 10; ++n) expectBackwardStable({n, 0, hilbert});
  // Wilkinson's matrix, whose last column doubles with every row.
  expectBackwardStable({60, 0, [](int r, int c) {
                          return c == 59 || r == c ? 1 : r > c ? -1 : 0;
                        }});
  auto value = normal(7);
  expectBackwardStable({80, 0, [&](int r, int c) { return std::ldexp(value(r, c), -r - 3 * c); }});
  // Rank one and a little noise.
  expectBackwardStable(
      {80, 0, [&](int r, int c) { return 1.0 / (r + 1) * c + 1e-12 * value(r, c); }});
  expectBackwardStable({150, 0, value});
}

TEST(Cholesky, IsBackwardStable) {
  for (std::size_t n = 1; n <= 90; n += n < 10 ? 1 : 40) {
    SCOPED_TRACE(n);
    auto value = normal(n);
    Square a(n, 0, [&](int r, int c) {
      return n <= 10 ? 1.0 / (r + c + 1) : r == c ? std::ldexp(1.0, -r) : 0;
    });
    for (std::size_t i = 0; n > 10 && i < n; ++i) {  // graded, positive definite by dominance
      for (std::size_t j = 0; j < i; ++j) {
        a(i, j) = a(j, i) = std::sqrt(a(i, i) * a(j, j)) * std::tanh(value(0, 0)) / 90;
      }
    }
    Square l = a;
    std::vector<double> d(n);
    ASSERT_TRUE(choleskyDecompose(l.view(), d));
    for (std::size_t j = 0; j < n; ++j) {
      for (std::size_t i = 0; i <= j; ++i) {
        long double residual = -a(i, j);
        long double bound = 0;
        for (std::size_t k = 0; k <= i; ++k) {
          const long double x = k == i ? d[i] : l(k, i);
          const long double term = x * (k == j ? d[j] : l(k, j));
          residual += term;
          bound += std::abs(term);
        }
        EXPECT_LE(std::abs(residual), static_cast<double>(n + 1) * kRoundoff * bound);
      }
    }
  }
}

TEST(Decompositions, FailedAllocationLeavesEverythingAlone) {
  const std::size_t n = 40;
  const Square a(n, 0, [](int r, int c) { return r == c ? 50 : 1; });
  const Factors f = decompose(a);
  const auto failsCleanly = [&](int allocations, const std::function<void(Square&)>& run) {
    for (int k = 0; k < allocations; ++k) {
      Square b = a;
      bool failed = false;
      {
        const test::FailingNew fail(k);
        try {
          run(b);
        } catch (const std::bad_alloc&) {
          failed = true;
        }
      }
      EXPECT_TRUE(failed) << k;
      EXPECT_EQ(b.data, a.data);
    }
  };
  std::vector<std::size_t> pivots(n);
  std::vector<double> diagonal(n);
  int sign = 0;
  const auto go = [] { return true; };
  const auto never = []() -> bool { throw std::logic_error("asked"); };
  failsCleanly(2, [&](Square& b) { (void)luDecompose(b.view(), pivots, sign, never, go); });
  failsCleanly(2, [&](Square& b) {
    (void)luInverse(ConstMatrix{f.a.data.data(), n, n, n}, f.pivots, b.view(), never);
  });
  failsCleanly(1, [&](Square& b) { (void)choleskyDecompose(b.view(), diagonal); });
}

}  // namespace
}  // namespace zel::kernels
