// A published data set through statistics and algebra; the values beside are R's.
#include "tests/matrix/matrices.h"
#include "tests/support/data_file.h"

namespace zel {
namespace {

/// Arrests in the states of the USA: 50 rows of murder, assault, urban population, rape.
void loadArrests(TMatrix& m) { test::loadCsv("USArrests.csv", 1, 4, m); }

#define EXPECT_REL(value, reference) EXPECT_NEAR((value) / (reference), 1, 4e-15)

TEST(MatrixRealData, Statistics) {
  TMatrix m;
  loadArrests(m);
  double a = 0;
  double b = 0;
  double c = 0;
  m.MeanVar(2, 0, 2, 0, a, b);
  EXPECT_REL(a, 170.76);
  EXPECT_REL(b, 6945.16571428571388);
  m.Quartiles(1, 0, 1, 0, a, b, c);  // quantile(type = 6)
  EXPECT_REL(a, 3.95);
  EXPECT_REL(b, 7.25);
  EXPECT_REL(c, 11.325);
  m.SkewKurt(2, 0, 2, 0, a, b);
  EXPECT_REL(a, 0.22053254279336806);
  EXPECT_REL(b, -1.14548685753078350);
  EXPECT_REL(m.GeometricMean(0, 0, 0, 0), 32.916536443099304);
  EXPECT_REL(m.HarmonicMean(0, 0, 0, 0), 14.072536206025584);
  EXPECT_EQ(m.Percentile(37, 0, 0, 0, 0), 20);  // sort(m)[75]
  TMatrix left;
  TMatrix right;
  left.Resize(2, 50);
  right.Resize(2, 50);
  left.CopyFrom(&m, 1, 1, 2, 50, 1, 1);
  right.CopyFrom(&m, 3, 1, 4, 50, 1, 1);
  EXPECT_REL(left.Correlate(&right), -0.61225999469050341);
  EXPECT_REL(m.DistanceOfObjects(dmEuclid, 1, 2), 37.177009024395709);
  EXPECT_REL(m.DistanceOfObjects(dmManhattan, 1, 35), 139.1);
  m.StandardizeColumns(nullptr, nullptr);
  EXPECT_REL(m(1, 1), 1.2425640838811227);
  EXPECT_NEAR(m(4, 1), -0.0034164730151624227, 1e-17);
}

TEST(MatrixRealData, Algebra) {
  TMatrix m;
  loadArrests(m);
  TMatrix cross;
  TMatrix hat;
  EXPECT_REL(m.Norm(ntSpectral), 1419.0613950977229);
  EXPECT_TRUE(m.Square(&cross, 1));
  EXPECT_NEAR(cross.Determinant() / 52034066198275760, 1, 1e-13);
  EXPECT_TRUE(cross.Invert());
  EXPECT_NEAR(cross(1, 1) / 0.0030451952351145759, 1, 1e-13);
  EXPECT_NEAR(cross(4, 1) / -1.7535833778422683e-04, 1, 1e-13);
  EXPECT_TRUE(m.CalcHatMatrix(&hat));
  EXPECT_NEAR(hat.Trace(), 4, 1e-13);
  m.SortRows(4, true, 0, 0, 0, 0);
  EXPECT_EQ(m(1, 1), 0.8) << "North Dakota";
  EXPECT_EQ(m(2, 3), 174) << "Rhode Island";
}

}  // namespace
}  // namespace zel
