#include "zel/kernels/products.h"

#include "tests/support/spaced_matrix.h"
#include "tests/support/testing.h"

namespace zel::kernels {
namespace {

using Spaced = test::SpacedMatrix;
using test::normalCells;
using test::sameValue;

constexpr double kPoison = std::numeric_limits<double>::quiet_NaN();
constexpr double kUntouched = -7777.25;

double untouched(int, int) { return kUntouched; }

/// Each cell has the bits that the rule for its row and column says.
void expectCells(Spaced& matrix, const auto& rule) {
  std::size_t wrong = 0;
  for (std::size_t c = 0; c < matrix.view().columns; ++c) {
    for (std::size_t r = 0; r < matrix.view().rows; ++r) {
      wrong += !sameValue(matrix(r, c), rule(r, c));
    }
  }
  EXPECT_EQ(wrong, 0u);
  EXPECT_TRUE(matrix.gapsIntact());
}

double entry(ConstMatrix m, Factor as, std::size_t r, std::size_t c) {
  return as == Factor::plain ? m(r, c) : m(c, r);
}

/// The sum that every product kernel has to give.
double chain(ConstMatrix a, Factor asA, std::size_t row, ConstMatrix b, Factor asB,
             std::size_t column, double start, double sign) {
  const std::size_t inner = asA == Factor::plain ? a.columns : a.rows;
  for (std::size_t k = 0; k < inner; ++k) {
    start = std::fma(sign * entry(a, asA, row, k), entry(b, asB, k, column), start);
  }
  return start;
}

/// Both products of the shape, for all kinds of factors, on every instruction set.
void checkProducts(std::size_t rows, std::size_t columns, std::size_t inner) {
  SCOPED_TRACE(testing::Message() << rows << " x " << columns << ", inner " << inner);
  const auto value = normalCells(5);
  for (const Factor asA : {Factor::plain, Factor::transposed}) {
    for (const Factor asB : {Factor::plain, Factor::transposed}) {
      const bool isPlainA = asA == Factor::plain;
      const bool isPlainB = asB == Factor::plain;
      Spaced a(isPlainA ? rows : inner, isPlainA ? inner : rows, value);
      Spaced b(isPlainB ? inner : columns, isPlainB ? columns : inner, value);
      Spaced start(rows, columns, value);
      test::forEachTarget([&] {
        Spaced product(rows, columns, [](int, int) { return kPoison; });
        Spaced difference = start;
        multiply(a.view(), asA, b.view(), asB, product.view());
        subtractProduct(a.view(), asA, b.view(), asB, difference.view());
        expectCells(product, [&](std::size_t r, std::size_t c) {
          return chain(a.view(), asA, r, b.view(), asB, c, 0, 1);
        });
        expectCells(difference, [&](std::size_t r, std::size_t c) {
          return chain(a.view(), asA, r, b.view(), asB, c, start(r, c), -1);
        });
      });
    }
  }
}

// Up to the largest product that is not packed, and of packed ones every number of rows and columns
// up to more than a tile of any instruction set, with inner extents around the tiles of the
// packing.
TEST(MatrixProducts, EveryRemainder) {
  std::size_t turn = 0;
  for (std::size_t rows = 0; rows <= 16; ++rows) {
    for (std::size_t columns = 0; columns <= 17; ++columns) {
      checkProducts(rows, columns, turn++ % 17);
    }
  }
  for (std::size_t rows = 1; rows <= 26; ++rows) {
    for (std::size_t columns = 9; columns <= 17; ++columns) {
      checkProducts(rows, columns, 17 + turn++ % 9);
    }
  }
  for (std::size_t n = 20; n <= 70; n += 5) checkProducts(n, 71 - n, n);
}

TEST(MatrixProducts, AroundTheBlocks) {
  constexpr std::size_t kShapes[][3] = {{95, 3, 383}, {96, 5, 384}, {97, 10, 385}, {193, 9, 17},
                                        {41, 30, 8},  {41, 8, 64},  {41, 7, 65},   {5, 2, 770},
                                        {3, 2048, 9}, {3, 2049, 9}};
  for (const auto& [rows, columns, inner] : kShapes) checkProducts(rows, columns, inner);
}

/// Values at which an emulated multiply-add can go wrong.
std::vector<double> hostileFactors() {
  std::vector<double> values;
  for (const double v :
       {0.0, 1.0, 1.5, 3.0, 1 + 0x1p-30, 1 - 0x1p-30, 1 + 0x1p-52, 1 - 0x1p-53, 0x1p27 + 1}) {
    for (const int e : {0, 1, -1, 500, -500, -540, 990, -1000, -1074}) {
      values.push_back(std::ldexp(v, e));
    }
  }
  for (const double v : {0x1.fffffffffffffp1023, 0x1p-1022, 0x1.fffffffffffffp-1023, 0x1p-1074,
                         std::numeric_limits<double>::infinity(), kPoison}) {
    values.push_back(v);
  }
  std::mt19937_64 random(17);
  for (int i = 0; i < 40; ++i) values.push_back(std::bit_cast<double>(random()));
  // Pairs whose product rounds to just below 1 and is a little larger or smaller than that.
  for (int i = 0; i < 20; ++i) {
    const double a = 1 + static_cast<double>(random() >> 12) * 0x1p-52;
    values.push_back(a);
    values.push_back((1 - 0x1p-53) / a);
  }
  for (std::size_t i = values.size(); i-- > 0;) values.push_back(-values[i]);
  return values;
}

// One multiply-add per cell. The summands cancel the product, or nearly, or put the sum next to the
// middle of two numbers, where rounding twice goes wrong, or have nothing to do with it.
TEST(MatrixProducts, OneRoundingForEveryValue) {
  std::vector<double> factors = hostileFactors();
  const std::size_t n = factors.size();
  std::mt19937_64 random(23);
  const std::vector<std::function<double(double)>> summands = {
      [](double product) { return product; },
      [](double product) { return std::nextafter(product, 0); },
      [](double product) { return -std::nextafter(2 * product, HUGE_VAL); },
      [](double product) { return std::copysign(0x1.fffffffffffffp1023, -product); },
      [](double) { return 0.0; },
      [](double) { return -0.0; },
      [&](double product) {
        // An odd or even number whose last place is twice the size of the product.
        const double whole = static_cast<double>((random() >> 12) | (1ULL << 52));
        const int size = std::clamp(std::ilogb(1.5 * product), -1100, 1100);
        return std::copysign(std::ldexp(whole, size + 1), static_cast<double>(random() % 2) - 0.5);
      },
      [&](double product) {
        const int shift = static_cast<int>(random() % 240) - 120;
        return std::ldexp(product * (1 + static_cast<double>(random() % 4096) * 0x1p-12), shift);
      },
      [&](double) { return std::bit_cast<double>(random()); },
  };
  for (const auto& summand : summands) {
    std::vector<double> start(n * n);
    for (std::size_t i = 0; i < n * n; ++i) start[i] = summand(factors[i % n] * factors[i / n]);
    test::forEachTarget([&] {
      std::vector<double> c = start;
      subtractProduct({factors.data(), n, 1, n}, Factor::plain, {factors.data(), 1, n, 1},
                      Factor::plain, {c.data(), n, n, n});
      for (std::size_t i = 0; i < n * n; ++i) {
        const double expected = std::fma(-factors[i % n], factors[i / n], start[i]);
        ASSERT_TRUE(sameValue(c[i], expected))
            << std::hexfloat << factors[i % n] << " * " << factors[i / n] << ", " << start[i]
            << ": " << c[i] << " instead of " << expected;
      }
    });
  }
}

TEST(MatrixProducts, MatrixTimesVector) {
  const std::size_t extents[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 35, 70, 2047, 2049};
  for (const std::size_t rows : extents) {
    for (const std::size_t columns : extents) {
      if (columns > 70 || (rows > 70 && columns > 17)) continue;
      SCOPED_TRACE(testing::Message() << rows << " x " << columns);
      Spaced a(rows, columns, normalCells(5));
      for (const Factor as : {Factor::plain, Factor::transposed}) {
        const bool isPlain = as == Factor::plain;
        Spaced x(isPlain ? columns : rows, 1, normalCells(6));
        test::forEachTarget([&] {
          Spaced y(isPlain ? rows : columns, 1, untouched);
          multiplyVector(a.view(), as, x.view()[0], y.view()[0]);
          expectCells(y, [&](std::size_t i, std::size_t) {
            return chain(a.view(), as, i, x.view(), Factor::plain, 0, 0, 1);
          });
        });
      }
    }
  }
}

// The columns in several calls, each of which writes its own cells only; at last more than a block
// of them at once.
TEST(MatrixProducts, SquareByRunsOfColumns) {
  constexpr std::size_t kShapes[][2] = {{0, 3},    {1, 1},   {3, 2},    {5, 12},  {385, 9},
                                        {384, 33}, {40, 70}, {770, 61}, {2, 2060}};
  std::mt19937_64 random(3);
  for (const auto& [rows, columns] : kShapes) {
    SCOPED_TRACE(testing::Message() << rows << " x " << columns);
    Spaced a(rows, columns, normalCells(5));
    Spaced expected(columns, columns, untouched);
    for (std::size_t c = 0; c < columns; ++c) {
      for (std::size_t r = 0; r < columns; ++r) {
        expected(r, c) =
            chain(a.view(), Factor::transposed, r, a.view(), Factor::plain, c, 0, 1) / 3;
      }
    }
    test::forEachTarget([&, n = columns] {
      Spaced result(n, n, untouched);
      std::size_t first = n;  // from the end, so that a call could spoil what is there
      while (first > 0) {
        const std::size_t last = first;
        first = n > 2000 ? 0 : last - 1 - random() % std::min<std::size_t>(last, 30);
        squareColumns(a.view(), 3, first, last, result.view());
        expectCells(result, [&](std::size_t r, std::size_t c) {
          return std::min(r, c) >= first ? expected(r, c) : kUntouched;
        });
      }
    });
  }
}

TEST(MatrixProducts, Transpose) {
  const std::size_t extents[] = {0, 1, 2, 3, 7, 8, 9, 12, 16, 31, 32, 33, 70};
  test::forEachTarget([&] {
    for (const std::size_t rows : extents) {
      for (const std::size_t columns : extents) {
        SCOPED_TRACE(testing::Message() << rows << " x " << columns);
        Spaced from(rows, columns, [&](int r, int c) { return 100 * r + c; });
        Spaced to(columns, rows, untouched);
        const auto mirrored = [&](std::size_t r, std::size_t c) { return from(c, r); };
        transpose(from.view(), to.view());
        expectCells(to, mirrored);
        if (rows != columns) continue;
        Spaced inPlace = from;
        transposeSquare(inPlace.view());
        expectCells(inPlace, mirrored);
      }
    }
  });
}

// That of the others shows in matrices.
TEST(MatrixProducts, FailedAllocationOfTheSquareLeavesTheResult) {
  Spaced a(100, 100, normalCells(5)), r(100, 100, untouched);
  test::expectFailsCleanly(1, r, [&] { squareColumns(a.view(), 1, 0, 100, r.view()); });
}

}  // namespace
}  // namespace zel::kernels
