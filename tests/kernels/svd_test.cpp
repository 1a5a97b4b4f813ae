#include "zel/kernels/svd.h"

#include "tests/support/spaced_matrix.h"
#include "tests/support/testing.h"

namespace zel::kernels {
namespace {

using Dense = test::SpacedMatrix;

constexpr double kRoundoff = 0x1p-53;

Dense toFill(std::size_t n) {
  return {n, n, [](int, int) { return -7; }};
}

std::vector<double> sortedValues(Dense a) {
  std::vector<double> w(a.view().columns);
  EXPECT_EQ(singularValues(a.view(), w), SvdStatus::done);
  std::sort(w.rbegin(), w.rend());
  return w;
}

/// Largest element of x^T x - 1 over those columns whose values are above a limit.
double lossOfOrthogonality(Matrix x, const std::vector<double>& w, double limit) {
  double worst = 0;
  for (std::size_t i = 0; i < x.columns; ++i) {
    for (std::size_t j = 0; j < x.columns; ++j) {
      double dot = i == j ? -1 : 0;
      for (std::size_t r = 0; r < x.rows; ++r) dot += x(r, i) * x(r, j);
      if (w[i] > limit && w[j] > limit) worst = std::max(worst, std::abs(dot));
    }
  }
  return worst;
}

/// A = U diag(w) V^T with orthonormal factors within a multiple of the roundoff; the same bits on
/// all instruction sets and without the factors.
void expectDecomposed(std::size_t rows, std::size_t n, const test::CellRule& rule) {
  const Dense a(rows, n, rule);
  test::expectSameBits([&] {
    Dense u = a;
    Dense v = toFill(n);
    std::vector<double> w(n);
    EXPECT_EQ(singularValueDecompose(u.view(), w, v.view()), SvdStatus::done);
    const double norm = n > 0 ? *std::max_element(w.begin(), w.end()) : 0;
    const double unit = 8 * static_cast<double>(n + rows) * kRoundoff;
    EXPECT_LE(lossOfOrthogonality(v.view(), w, -1), unit);
    EXPECT_LE(lossOfOrthogonality(u.view(), w, 1e-9 * norm), unit);
    double worst = 0;
    Dense original = a;
    for (std::size_t r = 0; r < rows; ++r) {
      for (std::size_t c = 0; c < n; ++c) {
        double x = -original(r, c);
        for (std::size_t k = 0; k < n; ++k) x += u(r, k) * w[k] * v(c, k);
        worst = std::max(worst, std::abs(x));
      }
    }
    EXPECT_LE(worst, unit * norm);
    for (const double x : w) EXPECT_GE(x, 0);
    std::vector<double> alone(n);
    EXPECT_EQ(singularValues(original.view(), alone), SvdStatus::done);
    EXPECT_EQ(alone, w);
    EXPECT_TRUE(u.gapsIntact() && v.gapsIntact() && original.gapsIntact());
    w.insert(w.end(), u.cells().begin(), u.cells().end());
    w.insert(w.end(), v.cells().begin(), v.cells().end());
    return w;
  });
}

TEST(Svd, DecomposesEveryShape) {
  constexpr std::size_t kShapes[][2] = {{0, 0},   {0, 3},   {3, 0},   {1, 1},   {1, 9},
                                        {9, 1},   {2, 2},   {5, 4},   {4, 5},   {17, 16},
                                        {16, 17}, {33, 20}, {20, 45}, {70, 70}, {100, 35}};
  for (const auto& [m, n] : kShapes) {
    SCOPED_TRACE(std::to_string(m) + " x " + std::to_string(n));
    const auto value = test::normalCells(m * 100 + n);
    const test::CellRule rules[] = {
        value, [](int, int) { return 0.0; }, [](int r, int c) { return (r + 1.0) * (c + 2.0); },
        [](int r, int c) { return r % 3 == c % 3 ? 1.0 : 0.0; },
        // Upper bidiagonal with zeros on the diagonal, which have to be chased out.
        [](int r, int c) { return r == c       ? r % 4 == 2 ? 0.0 : r + 1.0
                                  : c == r + 1 ? 2.0
                                               : 0.0; },
        [&](int r, int c) { return std::ldexp(value(r, c), -9 * r - 20 * c); }};
    for (const auto& rule : rules) expectDecomposed(m, n, rule);
  }
}

// The examples of Golub and Reinsch, Numer. Math. 14 (1970) 403, whose values are known exactly.
TEST(Svd, FindsKnownValues) {
  constexpr double kFirst[8][5] = {{22, 10, 2, 3, 7},   {14, 7, 10, 0, 8}, {-1, 13, -1, -11, 3},
                                   {-3, -2, 13, -2, 4}, {9, 8, 1, -2, 4},  {9, 1, -7, 5, -1},
                                   {2, -6, 6, 5, 1},    {4, 5, 0, -2, 2}};
  const auto first = sortedValues({8, 5, [&](int r, int c) { return kFirst[r][c]; }});
  const double known[5] = {std::sqrt(1248), 20, std::sqrt(384), 0, 0};
  for (std::size_t i = 0; i < 5; ++i) EXPECT_NEAR(first[i], known[i], 1e-14 * known[0]);

  // At both ends of the range of doubles, too.
  for (const double scale : {1.0, 0x1p1018, 0x1p-1010}) {
    const auto w = sortedValues({20, 21, [scale](int r, int c) {
                                   return scale * (r > c ? 0 : r == c ? 20 - r : -1);
                                 }});
    for (int k = 0; k <= 20; ++k) {
      EXPECT_NEAR(w[static_cast<std::size_t>(20 - k)] / scale, std::sqrt(k * (k + 1)),
                  41 * kRoundoff * std::sqrt(20 * 21));
    }
  }
}

TEST(Svd, ValuesThatAreNotFiniteDoNotConverge) {
  for (const double odd :
       {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity()}) {
    Dense a(6, 4, [](int r, int c) { return r - c; });
    a(5, 2) = odd;
    std::vector<double> w(4);
    EXPECT_EQ(singularValues(a.view(), w), SvdStatus::notConverged);
    EXPECT_EQ(singularValueDecompose(a.view(), w, toFill(4).view()), SvdStatus::notConverged);
  }
}

TEST(Svd, AsksOncePerColumnAndPhase) {
  for (std::size_t end = 0; end <= 20; ++end) {
    for (const bool isWanted : {false, true}) {
      Dense u(7, 5, [](int r, int c) { return 1.0 / (r + c + 1); });
      std::vector<double> w(5);
      std::size_t calls = 0;
      const auto step = [&] { return ++calls <= end; };
      EXPECT_EQ(isWanted ? singularValueDecompose(u.view(), w, toFill(5).view(), step)
                         : singularValues(u.view(), w, step),
                end < 20 ? SvdStatus::stopped : SvdStatus::done);
      EXPECT_EQ(calls, std::min<std::size_t>(end + 1, 20));
    }
  }
}

}  // namespace
}  // namespace zel::kernels
