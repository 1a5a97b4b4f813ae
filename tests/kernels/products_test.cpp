#include "zel/kernels/products.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <new>
#include <random>
#include <utility>
#include <vector>

#include "tests/support/failing_new.h"
#include "tests/support/hostile.h"
#include "tests/support/simd_targets.h"

namespace zel::kernels {
namespace {

using test::sameValue;

constexpr double kPoison = std::numeric_limits<double>::quiet_NaN();
constexpr double kUntouched = -7777.25;

/// A matrix whose columns stand apart. The gaps hold NaN, and must keep it.
class Spaced {
 public:
  Spaced(std::size_t rows, std::size_t columns, const std::function<double()>& value)
      : FRows(rows), FColumns(columns), FStride(rows + 3), FCells(FStride * columns + 1, kPoison) {
    for (std::size_t c = 0; c < columns; ++c) {
      for (std::size_t r = 0; r < rows; ++r) view()(r, c) = value();
    }
  }
  [[nodiscard]] Matrix view() { return {FCells.data(), FRows, FColumns, FStride}; }
  [[nodiscard]] bool gapsIntact() const {
    for (std::size_t i = 0; i < FCells.size(); ++i) {
      if ((i % FStride >= FRows || i >= FStride * FColumns) && !std::isnan(FCells[i])) return false;
    }
    return true;
  }

 private:
  std::size_t FRows, FColumns, FStride;
  std::vector<double> FCells;
};

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

std::function<double()> normal() {
  return [random = std::mt19937_64(5), deviate = std::normal_distribution<double>()]() mutable {
    return deviate(random);
  };
}

/// Both products of the shape, for all kinds of factors, on every instruction set.
void checkProducts(std::size_t rows, std::size_t columns, std::size_t inner) {
  SCOPED_TRACE(testing::Message() << rows << " x " << columns << ", inner " << inner);
  const auto value = normal();
  for (const Factor asA : {Factor::plain, Factor::transposed}) {
    for (const Factor asB : {Factor::plain, Factor::transposed}) {
      Spaced a = asA == Factor::plain ? Spaced(rows, inner, value) : Spaced(inner, rows, value);
      Spaced b =
          asB == Factor::plain ? Spaced(inner, columns, value) : Spaced(columns, inner, value);
      Spaced start(rows, columns, value);
      Spaced product(rows, columns, value);
      Spaced difference(rows, columns, value);
      for (std::size_t j = 0; j < columns; ++j) {
        for (std::size_t i = 0; i < rows; ++i) {
          product.view()(i, j) = chain(a.view(), asA, i, b.view(), asB, j, 0, 1);
          difference.view()(i, j) =
              chain(a.view(), asA, i, b.view(), asB, j, start.view()(i, j), -1);
        }
      }
      test::forEachTarget([&] {
        Spaced c(rows, columns, [] { return kPoison; });
        Spaced d = start;
        multiply(a.view(), asA, b.view(), asB, c.view());
        subtractProduct(a.view(), asA, b.view(), asB, d.view());
        std::size_t wrong = 0;
        for (std::size_t j = 0; j < columns; ++j) {
          for (std::size_t i = 0; i < rows; ++i) {
            wrong += !sameValue(c.view()(i, j), product.view()(i, j));
            wrong += !sameValue(d.view()(i, j), difference.view()(i, j));
          }
        }
        EXPECT_EQ(wrong, 0u);
        EXPECT_TRUE(c.gapsIntact() && d.gapsIntact());
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
  checkProducts(95, 3, 383);
  checkProducts(96, 5, 384);
  checkProducts(97, 10, 385);
  checkProducts(193, 9, 17);
  checkProducts(41, 30, 8);  // thin
  checkProducts(41, 8, 64);
  checkProducts(41, 7, 65);
  checkProducts(5, 2, 770);
  checkProducts(3, 2048, 9);
  checkProducts(3, 2049, 9);
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
  const std::size_t extents[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 35, 70};
  const auto check = [](std::size_t rows, std::size_t columns) {
    SCOPED_TRACE(testing::Message() << rows << " x " << columns);
    Spaced a(rows, columns, normal());
    for (const Factor as : {Factor::plain, Factor::transposed}) {
      Spaced x(as == Factor::plain ? columns : rows, 1, normal());
      Spaced y(as == Factor::plain ? rows : columns, 1, normal());
      test::forEachTarget([&] {
        multiplyVector(a.view(), as, x.view()[0], y.view()[0]);
        std::size_t wrong = 0;
        for (std::size_t i = 0; i < y.view().rows; ++i) {
          const double expected = chain(a.view(), as, i, x.view(), Factor::plain, 0, 0, 1);
          wrong += !sameValue(y.view()(i, 0), expected);
        }
        EXPECT_EQ(wrong, 0u);
        EXPECT_TRUE(y.gapsIntact());
      });
    }
  };
  for (const std::size_t rows : extents) {
    for (const std::size_t columns : extents) check(rows, columns);
  }
  check(2047, 3);
  check(2049, 17);
}

// The columns in several calls, each of which writes its own cells only.
TEST(MatrixProducts, SquareByRunsOfColumns) {
  const std::pair<std::size_t, std::size_t> shapes[] = {{0, 3},   {1, 1},    {3, 2},   {5, 12},
                                                        {385, 9}, {384, 33}, {40, 70}, {770, 61}};
  std::mt19937_64 random(3);
  for (const auto& shape : shapes) {
    const std::size_t rows = shape.first;
    const std::size_t columns = shape.second;
    SCOPED_TRACE(testing::Message() << rows << " x " << columns);
    Spaced a(rows, columns, normal());
    Spaced expected(columns, columns, [] { return 0.0; });
    for (std::size_t i = 0; i < columns; ++i) {
      for (std::size_t j = 0; j < columns; ++j) {
        expected.view()(i, j) =
            chain(a.view(), Factor::transposed, i, a.view(), Factor::plain, j, 0, 1) / 3;
      }
    }
    test::forEachTarget([&] {
      Spaced r(columns, columns, [] { return kUntouched; });
      std::size_t last = columns;  // from the end, so that a call could spoil what is there
      while (last > 0) {
        const std::size_t first = last - 1 - random() % std::min<std::size_t>(last, 30);
        squareColumns(a.view(), 3, first, last, r.view());
        std::size_t wrong = 0;
        for (std::size_t i = 0; i < columns; ++i) {
          for (std::size_t j = 0; j < columns; ++j) {
            const bool isDone = std::min(i, j) >= first;
            wrong += !sameValue(r.view()(i, j), isDone ? expected.view()(i, j) : kUntouched);
          }
        }
        EXPECT_EQ(wrong, 0u) << first << ".." << last;
        last = first;
      }
      EXPECT_TRUE(r.gapsIntact());
    });
  }
}

TEST(MatrixProducts, SquareOfManyColumns) {
  constexpr std::size_t n = 2060;  // more than a block
  Spaced a(2, n, normal());
  std::vector<double> r(n * n);
  squareColumns(a.view(), 1, 0, n, {r.data(), n, n, n});
  std::size_t wrong = 0;
  for (std::size_t i = 0; i < n * n; ++i) {
    wrong += !sameValue(
        r[i], chain(a.view(), Factor::transposed, i % n, a.view(), Factor::plain, i / n, 0, 1));
  }
  EXPECT_EQ(wrong, 0u);
}

TEST(MatrixProducts, Transpose) {
  const std::size_t extents[] = {0, 1, 2, 3, 7, 8, 9, 12, 16, 31, 32, 33, 70};
  test::forEachTarget([&] {
    for (const std::size_t rows : extents) {
      for (const std::size_t columns : extents) {
        SCOPED_TRACE(testing::Message() << rows << " x " << columns);
        const auto count = [next = 0.0]() mutable { return next++; };
        Spaced from(rows, columns, count);
        Spaced to(columns, rows, [] { return kUntouched; });
        Spaced inPlace = from;
        transpose(from.view(), to.view());
        if (rows == columns) transposeSquare(inPlace.view());
        std::size_t wrong = 0;
        for (std::size_t r = 0; r < rows; ++r) {
          for (std::size_t c = 0; c < columns; ++c) {
            wrong += to.view()(c, r) != from.view()(r, c);
            if (rows == columns) wrong += inPlace.view()(c, r) != from.view()(r, c);
          }
        }
        EXPECT_EQ(wrong, 0u);
        EXPECT_TRUE(to.gapsIntact() && inPlace.gapsIntact());
      }
    }
  });
}

TEST(MatrixProducts, FailedAllocationLeavesTheResult) {
  Spaced a(100, 100, normal());
  Spaced r(100, 100, [] { return kUntouched; });
  const auto expectRefused = [&](const std::function<void()>& call) {
    {
      const test::FailingNew fail(0);
      EXPECT_THROW(call(), std::bad_alloc);
    }
    for (std::size_t c = 0; c < 100; ++c) {
      for (const double cell : r.view()[c]) ASSERT_EQ(cell, kUntouched);
    }
  };
  expectRefused([&] { multiply(a.view(), Factor::plain, a.view(), Factor::plain, r.view()); });
  expectRefused(
      [&] { subtractProduct(a.view(), Factor::plain, a.view(), Factor::plain, r.view()); });
  expectRefused([&] { squareColumns(a.view(), 1, 0, 100, r.view()); });
}

}  // namespace
}  // namespace zel::kernels
