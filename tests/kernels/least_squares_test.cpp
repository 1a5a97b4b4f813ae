#include "zel/kernels/least_squares.h"

#include "tests/support/testing.h"
#include "zel/kernels/cross_products.h"
#include "zel/kernels/sums.h"

namespace zel::kernels {
namespace {

using Numbers = std::vector<double>;

using test::expectSameBits;

Numbers normals(std::size_t count, unsigned seed) {
  std::mt19937_64 random(seed);
  std::normal_distribution<double> normal;
  Numbers values(count);
  for (double& v : values) v = normal(random);
  return values;
}

/// More rows than a block of the reduction holds, fewer than columns, and what is between.
struct Shape {
  std::size_t rows, columns;
};
constexpr Shape kShapes[] = {{1, 1}, {3, 7}, {16, 16}, {70, 33}, {3001, 20}, {40000, 3}};

/// The residuals are orthogonal to the columns, x is the wanted one where there is one, and the
/// error factors are those of the inverse of the crossed products.
TEST(LeastSquares, OfEveryShape) {
  for (const auto& [rows, columns] : kShapes) {
    SCOPED_TRACE(testing::Message() << rows << " x " << columns);
    const Numbers a = normals(rows * columns, 1);
    const ConstMatrix view{a.data(), rows, columns, rows};
    const Numbers b = normals(rows, 2);
    expectSameBits([&, m = rows, n = columns] {
      Numbers x(n), factors(n), residual = b;
      bool isNearSingular = true;
      EXPECT_TRUE(svdLeastSquares(view, b, x, factors, isNearSingular));
      EXPECT_EQ(isNearSingular, m < n);
      for (std::size_t c = 0; c < n; ++c) {
        for (std::size_t r = 0; r < m; ++r) residual[r] -= x[c] * view(r, c);
      }
      for (std::size_t c = 0; c < n; ++c) {
        EXPECT_NEAR(sumOfProducts(residual, view[c]).hi, 0, 1e-12 * std::sqrt(m));
      }
      Numbers inverse(m * n);
      EXPECT_TRUE(pseudoInverse(view, 0, {inverse.data(), n, m, n}));
      for (std::size_t c = 0; c < n; ++c) {
        double square = 0;
        double product = 0;
        for (std::size_t r = 0; r < m; ++r) {
          square += inverse[r * n + c] * inverse[r * n + c];
          product += inverse[r * n + c] * b[r];
        }
        EXPECT_NEAR(std::sqrt(square) / factors[c], 1, 1e-11);
        EXPECT_NEAR(product, x[c], 1e-11 * (1 + std::abs(x[c])));
      }
      x.insert(x.end(), inverse.begin(), inverse.end());
      return x;
    });
  }
}

TEST(LeastSquares, RefusesWhatIsNotFinite) {
  Numbers a{1, 2, NAN, 4}, b{1, 2}, x{7, 8};
  bool isNearSingular = false;
  EXPECT_FALSE(svdLeastSquares({a.data(), 2, 2, 2}, b, x, {}, isNearSingular));
  EXPECT_FALSE(pseudoInverse({a.data(), 2, 2, 2}, 0, {x.data(), 1, 2, 1}));
  a[2] = 3;
  b[0] = INFINITY;
  EXPECT_FALSE(svdLeastSquares({a.data(), 2, 2, 2}, b, x, {}, isNearSingular));
  EXPECT_EQ(x, (Numbers{7, 8}));
}

TEST(CrossProducts, AreSumsOverShortRuns) {
  for (const auto& [rows, columns] : kShapes) {
    Numbers a = normals(rows * columns, 4);
    for (double& v : a) v = std::round(v * 0x1p20) + 1e6;
    const ConstMatrix view{a.data(), rows, columns, rows};
    const Numbers centres(columns, 1e6), factors(columns, 0.5);
    expectSameBits([&, m = rows, n = columns] {
      const std::size_t first = n / 3;
      Numbers result((n - first) * n);
      crossProducts(view, centres, factors, first, n, {result.data(), n - first, n, n - first});
      Numbers lower;
      for (std::size_t i = first; i < n; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
          long double sum = 0;  // exact: integers, as in each run of rows but not in all together
          for (std::size_t r = 0; r < m; ++r) sum += (view(r, i) - 1e6) * (view(r, j) - 1e6);
          lower.push_back(result[j * (n - first) + i - first]);
          EXPECT_EQ(lower.back(), static_cast<double>(sum / 4));
        }
      }
      return lower;
    });
  }
}

}  // namespace
}  // namespace zel::kernels
