#include "zel/kernels/svd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <new>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/failing_new.h"
#include "tests/support/simd_targets.h"

namespace zel::kernels {
namespace {

constexpr double kRoundoff = 0x1p-53;

/// With gaps between the columns.
struct Dense {
  std::size_t rows;
  std::size_t columns;
  std::vector<double> data = std::vector<double>((rows + 1) * columns, -7.0);

  Matrix view() { return {data.data(), rows, columns, rows + 1}; }
  double& operator()(std::size_t r, std::size_t c) { return view()(r, c); }
};

Dense filled(std::size_t rows, std::size_t columns, const std::function<double(int, int)>& value) {
  Dense a{rows, columns};
  for (std::size_t c = 0; c < columns; ++c) {
    for (std::size_t r = 0; r < rows; ++r)
      a(r, c) = value(static_cast<int>(r), static_cast<int>(c));
  }
  return a;
}

std::vector<double> sortedValues(Dense a) {
  std::vector<double> w(a.columns);
  EXPECT_EQ(singularValues(a.view(), w), SvdStatus::done);
  std::sort(w.rbegin(), w.rend());
  return w;
}

/// Largest element of x^T x - 1 over those columns that are wanted.
double lossOfOrthogonality(Dense& x, const std::function<bool(std::size_t)>& isWanted) {
  double worst = 0;
  for (std::size_t i = 0; i < x.columns; ++i) {
    for (std::size_t j = 0; j < x.columns; ++j) {
      double dot = i == j ? -1 : 0;
      for (std::size_t r = 0; r < x.rows; ++r) dot += x(r, i) * x(r, j);
      if (isWanted(i) && isWanted(j)) worst = std::max(worst, std::abs(dot));
    }
  }
  return worst;
}

/// A = U diag(w) V^T with orthonormal factors within a multiple of the roundoff; the same bits on
/// all instruction sets and without the factors.
void expectDecomposed(Dense a) {
  const std::size_t n = a.columns;
  std::vector<double> first;
  test::forEachTarget([&] {
    Dense u = a;
    Dense v{n, n};
    std::vector<double> w(n);
    ASSERT_EQ(singularValueDecompose(u.view(), w, v.view()), SvdStatus::done);
    const double norm = n > 0 ? *std::max_element(w.begin(), w.end()) : 0;
    const double unit = 8 * static_cast<double>(n + a.rows) * kRoundoff;
    EXPECT_LE(lossOfOrthogonality(v, [](std::size_t) { return true; }), unit);
    EXPECT_LE(lossOfOrthogonality(u, [&](std::size_t c) { return w[c] > 1e-9 * norm; }), unit);
    double worst = 0;
    for (std::size_t r = 0; r < a.rows; ++r) {
      for (std::size_t c = 0; c < n; ++c) {
        double x = -a(r, c);
        for (std::size_t k = 0; k < n; ++k) x += u(r, k) * w[k] * v(c, k);
        worst = std::max(worst, std::abs(x));
      }
    }
    EXPECT_LE(worst, unit * norm);
    for (const double x : w) EXPECT_GE(x, 0);

    std::vector<double> all = w;
    all.insert(all.end(), u.data.begin(), u.data.end());
    all.insert(all.end(), v.data.begin(), v.data.end());
    if (first.empty()) first = all;
    EXPECT_EQ(all, first);
    std::vector<double> alone(n);
    EXPECT_EQ(singularValues(Dense(a).view(), alone), SvdStatus::done);
    EXPECT_EQ(alone, w);
  });
}

TEST(Svd, DecomposesEveryShape) {
  for (const auto& [m, n] : {std::pair<std::size_t, std::size_t>{0, 0},
                             {0, 3},
                             {3, 0},
                             {1, 1},
                             {1, 9},
                             {9, 1},
                             {2, 2},
                             {5, 4},
                             {4, 5},
                             {17, 16},
                             {16, 17},
                             {33, 20},
                             {20, 45},
                             {70, 70},
                             {100, 35}}) {
    SCOPED_TRACE(std::to_string(m) + " x " + std::to_string(n));
    std::mt19937_64 random(m * 100 + n);
    std::normal_distribution<double> normal;
    const auto value = [&](int, int) { return normal(random); };
    expectDecomposed(filled(m, n, value));
    expectDecomposed(filled(m, n, [](int, int) { return 0.0; }));
    expectDecomposed(filled(m, n, [](int r, int c) { return (r + 1.0) * (c + 2.0); }));
    expectDecomposed(filled(m, n, [](int r, int c) { return r % 3 == c % 3 ? 1.0 : 0.0; }));
    // Upper bidiagonal with zeros on the diagonal, which have to be chased out.
    expectDecomposed(filled(m, n, [](int r, int c) {
      return r == c ? r % 4 == 2 ? 0.0 : r + 1.0 : c == r + 1 ? 2.0 : 0.0;
    }));
    expectDecomposed(
        filled(m, n, [&](int r, int c) { return std::ldexp(value(r, c), -9 * r - 20 * c); }));
  }
}

// The examples of Golub and Reinsch, Numer. Math. 14 (1970) 403, whose values are known exactly.
TEST(Svd, FindsKnownValues) {
  constexpr double kFirst[8][5] = {{22, 10, 2, 3, 7},   {14, 7, 10, 0, 8}, {-1, 13, -1, -11, 3},
                                   {-3, -2, 13, -2, 4}, {9, 8, 1, -2, 4},  {9, 1, -7, 5, -1},
                                   {2, -6, 6, 5, 1},    {4, 5, 0, -2, 2}};
  const auto first = sortedValues(filled(8, 5, [&](int r, int c) { return kFirst[r][c]; }));
  const double known[5] = {std::sqrt(1248), 20, std::sqrt(384), 0, 0};
  for (std::size_t i = 0; i < 5; ++i) EXPECT_NEAR(first[i], known[i], 1e-14 * known[0]);

  // At both ends of the range of doubles, too.
  for (const double scale : {1.0, 0x1p1018, 0x1p-1010}) {
    const auto w = sortedValues(filled(20, 21, [scale](int r, int c) {
      return scale * (r > c ? 0 : r == c ? 20 - r : -1);
    }));
    for (int k = 0; k <= 20; ++k) {
      EXPECT_NEAR(w[static_cast<std::size_t>(20 - k)] / scale, std::sqrt(k * (k + 1)),
                  41 * kRoundoff * std::sqrt(20 * 21));
    }
  }
}

TEST(Svd, ValuesThatAreNotFiniteDoNotConverge) {
  for (const double odd :
       {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity()}) {
    Dense a = filled(6, 4, [](int r, int c) { return r - c; });
    a(5, 2) = odd;
    std::vector<double> w(4);
    EXPECT_EQ(singularValues(a.view(), w), SvdStatus::notConverged);
    Dense v{4, 4};
    EXPECT_EQ(singularValueDecompose(a.view(), w, v.view()), SvdStatus::notConverged);
  }
}

TEST(Svd, AsksOncePerColumnAndPhase) {
  const Dense a = filled(7, 5, [](int r, int c) { return 1.0 / (r + c + 1); });
  for (std::size_t end = 0; end <= 20; ++end) {
    for (const bool isWanted : {false, true}) {
      Dense u = a;
      Dense v{5, 5};
      std::vector<double> w(5);
      std::size_t calls = 0;
      const auto step = [&] { return ++calls <= end; };
      EXPECT_EQ(isWanted ? singularValueDecompose(u.view(), w, v.view(), step)
                         : singularValues(u.view(), w, step),
                end < 20 ? SvdStatus::stopped : SvdStatus::done);
      EXPECT_EQ(calls, std::min<std::size_t>(end + 1, 20));
    }
  }
}

TEST(Svd, FailedAllocationLeavesEverythingAlone) {
  const Dense a = filled(90, 80, [](int r, int c) { return r == c; });
  Dense u = a;
  std::vector<double> w(80, 3.0);
  bool failed = false;
  {
    const test::FailingNew fail(0);
    try {
      (void)singularValues(u.view(), w);
    } catch (const std::bad_alloc&) {
      failed = true;
    }
  }
  EXPECT_TRUE(failed);
  EXPECT_EQ(u.data, a.data);
}

}  // namespace
}  // namespace zel::kernels
