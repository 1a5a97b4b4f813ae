#include "zel/kernels/decompositions.h"

#include "tests/support/spaced_matrix.h"
#include "tests/support/testing.h"

namespace zel::kernels {
namespace {

using Square = test::SpacedMatrix;
using test::firstDifference;
using test::normalCells;

constexpr double kRoundoff = 0x1p-53;

Square square(std::size_t n, const test::CellRule& rule, std::size_t gap = 0) {
  return {n, n, rule, gap};
}
Square zeros(std::size_t n) {
  return square(n, [](int, int) { return 0; });
}

struct Factors {
  explicit Factors(const Square& matrix) : a(matrix), n(a.view().rows), pivots(n) {}
  Square a;
  std::size_t n;
  LuStatus status = LuStatus::stopped;
  int sign = 0;
  std::vector<std::size_t> pivots;
};

/// Column by column, as the decomposition is defined; stops before column `end`.
Factors plainLu(const Square& a, std::size_t end = 1000) {
  Factors f(a);
  f.sign = 1;
  f.status = LuStatus::done;
  const std::size_t n = f.n;
  std::vector<double> scale(n);
  const Matrix x = f.a.view();
  for (std::size_t i = 0; i < n; ++i) {
    double big = 0;
    for (std::size_t j = 0; j < n; ++j) big = std::abs(x(i, j)) > big ? std::abs(x(i, j)) : big;
    if (big == 0) f.status = LuStatus::zeroRow;
    scale[i] = 1 / big;
  }
  if (f.status == LuStatus::zeroRow) return f;
  for (std::size_t j = 0; j < std::min(n, end); ++j) {
    double best = 0;
    std::size_t imax = j;
    for (std::size_t i = 0; i < n; ++i) {
      double sum = x(i, j);
      for (std::size_t k = 0; k < std::min(i, j); ++k) sum = std::fma(-x(i, k), x(k, j), sum);
      x(i, j) = sum;
      if (i >= j && scale[i] * std::abs(sum) >= best) {
        best = scale[i] * std::abs(sum);
        imax = i;
      }
    }
    if (imax != j) {
      for (std::size_t c = 0; c < n; ++c) std::swap(x(imax, c), x(j, c));
      scale[imax] = scale[j];
      f.sign = -f.sign;
    }
    f.pivots[j] = imax;
    if (std::abs(x(j, j)) < 1E-100) {
      x(j, j) = 1E-100;
      f.status = LuStatus::tinyPivot;
    }
    for (std::size_t i = j + 1; i < n; ++i) x(i, j) /= x(j, j);
  }
  if (end < n) f.status = LuStatus::stopped;
  return f;
}

Square plainInverse(Factors f) {
  const std::size_t n = f.n;
  const Matrix x = f.a.view();
  Square inverse = zeros(n);
  for (std::size_t j = 0; j < n; ++j) {
    std::vector<double> b(n);
    b[j] = 1;
    std::size_t begin = n;
    for (std::size_t i = 0; i < n; ++i) {
      double s = b[f.pivots[i]];
      b[f.pivots[i]] = b[i];
      for (std::size_t k = begin; k < i; ++k) s = std::fma(-x(i, k), b[k], s);
      if (begin == n && s != 0) begin = i;
      b[i] = s;
    }
    for (std::size_t i = n; i-- > 0;) {
      for (std::size_t k = i + 1; k < n; ++k) b[i] = std::fma(-x(i, k), b[k], b[i]);
      b[i] /= x(i, i);
      inverse(i, j) = b[i];
    }
  }
  return inverse;
}

bool plainCholesky(Matrix a, std::vector<double>& d) {
  bool isPositive = true;
  for (std::size_t i = 0; i < a.rows; ++i) {
    for (std::size_t j = i; j < a.rows; ++j) {
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

Factors decompose(const Square& a) {
  Factors f(a);
  f.status = luDecompose(f.a.view(), f.pivots, f.sign);
  return f;
}

void expectSame(const Factors& f, const Factors& plain) {
  EXPECT_EQ(firstDifference(f.a.cells(), plain.a.cells()), "");
  EXPECT_EQ(f.status, plain.status);
  EXPECT_EQ(f.sign, plain.sign);
  if (f.status != LuStatus::zeroRow) {
    EXPECT_EQ(f.pivots, plain.pivots);
  }
}

/// LU, inverse and Cholesky on every instruction set against the plain algorithms.
void expectPlainBits(const Square& a) {
  const Factors plain = plainLu(a);
  const Square inverse = plainInverse(plain);
  Square lower = a;
  std::vector<double> diagonal(plain.n);
  const bool isPositive = plainCholesky(lower.view(), diagonal);
  test::forEachTarget([&] {
    Factors f = decompose(a);
    expectSame(f, plain);
    if (f.status != LuStatus::zeroRow) {
      Square x = zeros(f.n);
      EXPECT_TRUE(luInverse(f.a.view(), f.pivots, x.view()));
      EXPECT_EQ(firstDifference(x.cells(), inverse.cells()), "");
    }
    Square l = a;
    std::vector<double> d(f.n);
    EXPECT_EQ(choleskyDecompose(l.view(), d), isPositive);
    EXPECT_EQ(firstDifference(l.cells(), lower.cells()), "");
    EXPECT_EQ(firstDifference(d, diagonal), "");
  });
}

TEST(Decompositions, HaveTheBitsOfThePlainAlgorithms) {
  std::vector<std::size_t> sizes(28);
  std::iota(sizes.begin(), sizes.end(), 0u);
  for (const std::size_t n : {33u, 47u, 48u, 59u, 60u, 61u, 63u, 64u, 65u, 70u, 95u, 96u, 97u, 119u,
                              121u, 128u, 131u, 193u}) {
    sizes.push_back(n);
  }
  for (const std::size_t n : sizes) {
    SCOPED_TRACE(n);
    const auto value = normalCells(n);
    const double shift = 0.3 * static_cast<double>(n);
    expectPlainBits(square(
        n, [&](int r, int c) { return value(r, c) + (r == c ? shift : 0); }, n % 3));
  }
}

// Ties, exact cancellation, negative zeros, pivots that vanish, and values that are not finite meet
// every branch of the pivot search and of the leading zeros.
TEST(Decompositions, HaveTheBitsOfThePlainAlgorithmsOnHostileMatrices) {
  for (const std::size_t n : {1u, 2u, 5u, 13u, 27u, 74u}) {
    SCOPED_TRACE(n);
    std::mt19937_64 random(n);
    for (const std::vector<double>& values : {std::vector{-1.0, 0.0, 1.0},
                                              {-0.0, 0, 1e-101, -3e-120, 2},
                                              {1e-320, 4e-320, 1, -1e300, 1e300},
                                              {kNaN}}) {
      expectPlainBits(square(
          n, [&](int, int) { return values[random() % values.size()]; }, 1));
    }
    const auto value = normalCells(n);
    for (const double odd : {kNaN, kInf, -kInf, 0.0}) {
      const std::size_t at = random() % n;
      Square a = square(n, value, 2);
      a(at, random() % n) = odd;
      expectPlainBits(a);
      for (std::size_t i = 0; i < n; ++i) a(at, i) = odd;
      expectPlainBits(a);
    }
  }
}

TEST(Decompositions, StoppedStateIsThatOfThePlainAlgorithm) {
  for (const std::size_t n : {11u, 75u, 140u}) {
    const Square a = square(n, normalCells(n), 3);
    for (std::size_t end = 0; end <= n; end += n < 100 ? 1 : 9) {
      SCOPED_TRACE(std::to_string(n) + " until " + std::to_string(end));
      const Factors plain = plainLu(a, end);
      for (const bool throws : {false, true}) {
        Factors f(a);
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
  const Square a = square(n, normalCells(1));
  Factors f = decompose(a);
  Square untouched = a;
  std::size_t calls = 0;
  EXPECT_EQ(luDecompose(untouched.view(), f.pivots, f.sign, [&] { return ++calls < 5; }),
            LuStatus::stopped);
  EXPECT_EQ(calls, 5u);
  EXPECT_EQ(firstDifference(untouched.cells(), a.cells()), "");
  for (const std::size_t end : {0u, 1u, 60u, 129u, 130u}) {
    Square x = zeros(n);
    calls = 0;
    EXPECT_EQ(luInverse(f.a.view(), f.pivots, x.view(), [&] { return ++calls <= end; }), end == n);
    EXPECT_EQ(calls, std::min(end + 1, n));
  }
}

using Element = std::function<long double(std::size_t, std::size_t)>;

/// |A - B C| <= factor (n + 1) u |B| |C| in each element.
void expectProduct(std::size_t n, const Element& a, const Element& b, const Element& c,
                   double factor) {
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      long double residual = -a(i, j), size = 0;
      for (std::size_t k = 0; k < n; ++k) {
        residual += b(i, k) * c(k, j);
        size += std::abs(b(i, k) * c(k, j));
      }
      EXPECT_LE(std::abs(residual), factor * static_cast<double>(n + 1) * kRoundoff * size)
          << i << " " << j;
    }
  }
}

void expectRoot(Square a) {
  Square root = a;
  std::vector<double> d(a.view().rows);
  ASSERT_TRUE(choleskyDecompose(root.view(), d));
  const Element upper = [&](std::size_t i, std::size_t j) {
    return i < j ? root(i, j) : i == j ? d[i] : 0;
  };
  const Element lower = [&](std::size_t i, std::size_t j) { return upper(j, i); };
  expectProduct(d.size(), std::ref(a), lower, upper, 1);
}

void expectInverse(Square a) {
  Factors f = decompose(a);
  Square x = zeros(f.n);
  ASSERT_TRUE(luInverse(f.a.view(), f.pivots, x.view()));
  const Element one = [](std::size_t i, std::size_t j) { return i == j; };
  expectProduct(f.n, one, std::ref(a), std::ref(x), 30);  // what a growth of the factors costs
}

// Few matrices, since the bits are those of the plain algorithms for all.
TEST(Decompositions, GiveBackTheMatrix) {
  for (std::size_t n = 1; n <= 10; ++n) {
    const Square hilbert = square(n, [](int r, int c) { return 1.0 / (r + c + 1); });
    expectRoot(hilbert);
    expectInverse(hilbert);
  }
  expectRoot(square(90, [](int r, int c) {
    return std::ldexp(std::exp(-0.1 * std::abs(r - c)), -r / 2 - c / 2);
  }));
  expectInverse(square(150, normalCells(7)));
}

// That of the others shows in matrices.
TEST(Decompositions, FailedAllocationOfCholeskyLeavesTheMatrixAlone) {
  Square a = square(40, [](int r, int c) { return r == c ? 50 : 1; });
  std::vector<double> diagonal(40);
  test::expectFailsCleanly(1, a, [&] { (void)choleskyDecompose(a.view(), diagonal); });
}

}  // namespace
}  // namespace zel::kernels
