#include "zel/foundation/interpolation.h"

#include "tests/support/testing.h"
#include "zel/foundation/polynomial.h"

using namespace zel;

TEST(Polynomial, AgreesWithItsFactors) {
  const TDoubleArray coeffs{-6, 11, -6, 1};
  for (const double x : {-2.0, 0.0, 1.0, 2.5, 10.0}) {
    EXPECT_EQ(Polynomial(coeffs, 3, x), (x - 1) * (x - 2) * (x - 3));
    EXPECT_EQ(CenteredPolynomial(coeffs, 3, 0.5, x), (x - 1.5) * (x - 2.5) * (x - 3.5));
  }
  EXPECT_EQ(Polynomial(TDoubleArray(40), 39, 1e300), 0);  // the powers overflow
  for (const int order : {-1, 4}) {
    EXPECT_THROW_MSG((void)CenteredPolynomial(coeffs, order, 0, 1), EZELMath1Error,
                     "Polynomial: invalid order of polynomial");
  }
}

TEST(InterpolXYTable, FollowsThePivotsInBothDirections) {
  const TDouble2DArray up{{-1, 0.5, 2, 2.1, 7}, {3, -1, 4, 4, 0.1}};
  const TDouble2DArray down{{7, 2.1, 2, 0.5, -1}, {0.1, 4, 4, -1, 3}};
  for (const auto& table : {up, down}) {
    for (std::size_t i = 0; i < 5; ++i) {
      EXPECT_EQ(InterpolXYTable(table[0][i], table, true), table[1][i]);
      EXPECT_EQ(InterpolXYTable(table[0][i], table, false), i == 0 || i == 4 ? 0 : table[1][i]);
    }
    for (const auto& [x, y] : {std::pair(-0.25, 1.0), {4.55, 2.05}, {-4, 11}, {11.9, -3.8}}) {
      EXPECT_DOUBLE_EQ(InterpolXYTable(x, table, true), y);
      EXPECT_DOUBLE_EQ(InterpolXYTable(x, table, false), x > -1 && x < 7 ? y : 0);
    }
    EXPECT_TRUE(std::isnan(InterpolXYTable(std::nan(""), table, true)));
  }
  EXPECT_EQ(InterpolXYTable(0, TDouble2DArray{{1, 1, 3}, {5, 6, 8}}, true), 5);
  EXPECT_EQ(InterpolXYTable(2, TDouble2DArray{{1, 1, 3}, {5, 6, 8}}, true), 7);
  // The sanitizers watch that a missing pivot leads nowhere outside.
  (void)InterpolXYTable(2, TDouble2DArray{{0, 1, std::nan("")}, {1, 2, 3}}, true);
}

TEST(InterpolXYTable, RefusesTablesWithoutASegment) {
  const std::string prefix = "InterpolXYTable: pivot array must contain ";
  for (const auto& table : {TDouble2DArray(), TDouble2DArray{{1}, {2}}}) {
    EXPECT_THROW_MSG((void)InterpolXYTable(0, table, true), EZELMath1Error,
                     prefix + "at least 2 rows");
  }
  for (const auto& table : {TDouble2DArray{{1, 2}}, TDouble2DArray{{1, 2}, {1, 2}, {1, 2}}}) {
    EXPECT_THROW_MSG((void)InterpolXYTable(0, table, true), EZELMath1Error, prefix + "2 columns");
  }
}

TEST(InterpolTable, SamplesOfBothTypesAndDirections) {
  const TIntArray whole{0, 10, 20, 30, 40};
  const TDoubleArray real(whole.begin(), whole.end());
  for (double x = -7; x <= 7; x += 0.25) {
    EXPECT_EQ(InterpolTable(x, 0, 4, real), 10 * x);
    EXPECT_EQ(InterpolTable(x, 4, 0, whole), 40 - 10 * x);
  }
  const int extremes[] = {INT_MIN, INT_MAX};
  EXPECT_EQ(InterpolTable(0.5, 0, 1, extremes), -0.5);  // their difference is not an int
  EXPECT_EQ(InterpolTable(9, 1, 9, TDoubleArray{0.1, 0.7, -0.3}), -0.3);
  EXPECT_TRUE(std::isnan(InterpolTable(std::nan(""), 0, 4, whole)));
  EXPECT_THROW_MSG((void)InterpolTable(0, 0, 0, TDoubleArray{1}), EZELMath1Error,
                   "InterpolTable: pivot array must contain at least 2 values");
  EXPECT_THROW_MSG((void)InterpolTable(0, 3, 3, whole), EZELMath1Error,
                   "InterpolTable: specified range of pivot array is zero");
}

TEST(InterpolZofXYRect, MeetsCornersAndCentre) {
  for (const auto& [x, y, z] :
       {std::array{0.0, 1.0, 2.0}, {1, 0, 3}, {1, 1, 5}, {0.5, 0.5, 2.75}}) {
    EXPECT_EQ(InterpolZofXYRect(1, 2, 3, 5, x, y), z) << x << ' ' << y;
  }
}
