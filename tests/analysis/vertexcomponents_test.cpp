#include <cmath>
#include <limits>
#include <set>

#include <gtest/gtest.h>

#include "zel/analysis/Zel_math2.h"

namespace zel {
namespace {

/// Mixtures of three spectra of six bands; rows 4, 20 and 41 are pure.
struct Mixtures {
  TMatrix data, parts;
  explicit Mixtures(double scale) {
    const double spectra[3][6] = {{1, 2, 3, 4, 5, 6}, {4, 1, 4, 1, 4, 1}, {2, 7, 1, 8, 2, 8}};
    parts.Resize(3, 60);
    data.Resize(6, 60);
    for (int r = 1; r <= 60; ++r) {
      const double a = Random();
      const double b = Random() * (1 - a);
      const int pure = r == 4 ? 1 : r == 20 ? 2 : r == 41 ? 3 : 0;
      const double part[] = {a, b, 1 - a - b};
      for (int k = 1; k <= 3; ++k) parts.SetVal(k, r, pure ? pure == k : part[k - 1]);
      for (int c = 1; c <= 6; ++c) {
        double sum = 0;
        for (int k = 1; k <= 3; ++k) sum += parts(k, r) * spectra[k - 1][c - 1];
        data.SetVal(c, r, scale * sum);
      }
    }
  }
};

TEST(VertexComponents, OfNoiselessMixturesAreThePureOnes) {
  for (const bool isHigh : {true, false}) {
    for (const double scale : {1.0, 0x1p-700, 0x1p900}) {
      SetRandSeed(3);
      Mixtures mixtures(scale);
      TMatrix pure, fractions;
      TIntVector rows;
      ASSERT_TRUE(VertexCompAnalysis(&mixtures.data, 3, isHigh, &pure, &rows, &fractions));
      EXPECT_EQ((std::set<int>{rows(1), rows(2), rows(3)}), (std::set<int>{4, 20, 41}));
      for (int k = 1; k <= 3; ++k) {
        for (int c = 1; c <= 6; ++c) {
          EXPECT_NEAR(pure(c, k) / scale, mixtures.data(c, rows(k)) / scale, 1e-13);
        }
        const int spectrum = rows(k) == 4 ? 1 : rows(k) == 20 ? 2 : 3;
        for (int r = 1; r <= 60; ++r) {
          EXPECT_NEAR(fractions(k, r), mixtures.parts(spectrum, r), 1e-13);
        }
      }
    }
  }
}

TEST(VertexComponents, MoreThanTheDataSpanAreRefused) {
  Mixtures mixtures(1);
  TMatrix pure{{7}};
  for (const bool isHigh : {true, false}) {
    EXPECT_FALSE(VertexCompAnalysis(&mixtures.data, 4, isHigh, &pure, nullptr, nullptr));
    EXPECT_FALSE(VertexCompAnalysis(&mixtures.data, 1, isHigh, &pure, nullptr, nullptr));
    EXPECT_FALSE(VertexCompAnalysis(&mixtures.data, 7, isHigh, &pure, nullptr, nullptr));
  }
  mixtures.data.SetVal(2, 2, std::numeric_limits<double>::quiet_NaN());
  EXPECT_FALSE(VertexCompAnalysis(&mixtures.data, 3, true, &pure, nullptr, nullptr));
  EXPECT_EQ(pure(1, 1), 7);
  TMatrix equal{{1, 2}, {1, 2}, {1, 2}};
  EXPECT_FALSE(VertexCompAnalysis(&equal, 2, false, nullptr, nullptr, nullptr));
}

}  // namespace
}  // namespace zel
