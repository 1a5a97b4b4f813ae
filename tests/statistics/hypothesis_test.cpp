#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "tests/support/data_file.h"
#include "tests/support/expect_message.h"
#include "tests/support/failing_new.h"
#include "zel/statistics/Zel_statis.h"

// Reference values without another source are those of R 4.2 on the data sets of the same names.
namespace zel {
namespace {

/// Results in the order in which they are computed, beside their references.
struct InOrder {
  TDoubleArray values;
  InOrder& operator<<(double value) { return values.push_back(value), *this; }
  void expect(const TDoubleArray& expected, double tolerance = 1e-11) {
    ASSERT_EQ(values.size(), expected.size());
    for (std::size_t i = 0; i < values.size(); ++i)
      EXPECT_NEAR(values[i], expected[i], tolerance * std::abs(expected[i])) << "place " << i;
    values.clear();
  }
};

struct Hypotheses : testing::Test {
  Hypotheses() {
    test::loadCsv("iris.csv", 0, 4, iris);
    test::loadCsv("mtcars.csv", 1, 8, cars);
    sepals.SetElements(iris.Column(1));
    mpg.SetElements(cars.Column(1));
    setosa.SetElements(iris.Column(1).first(50));
    versicolor.SetElements(iris.Column(1).subspan(50, 50));
    species.Resize(150);
    widths.Resize(150);
    for (i = 1; i <= 150; ++i) {  // the species take turns
      species.SetVal(i, i % 3 == 0 ? 7 : i % 3 - 2);
      widths.SetVal(i, iris(2, (i - 1) % 3 * 50 + (i + 2) / 3));
    }
  }
  TMatrix iris, cars;
  TVector sepals, widths, mpg, setosa, versicolor, v;
  TIntVector species;
  double a, b, c, d, e, f, p;
  int i, j, k;
  InOrder found;
};

TEST_F(Hypotheses, OutliersAtBothEndsForEverySize) {
  for (const auto [n, above, below] : {std::array{5, 1, 0}, {8, 1, 1}, {11, 2, 1}, {14, 2, 2}}) {
    TDoubleArray x;
    for (i = 1; i <= n; ++i) x.push_back(std::ldexp(1, i));
    std::rotate(x.begin(), x.begin() + 4, x.end());  // the largest is now at n - 4
    const double top = std::ldexp(1, n);
    const double Q = (top - std::ldexp(1, n - above)) / (top - std::ldexp(1, 1 + below));
    for (const double sign : {1, -1}) {
      for (double& value : x) value *= sign;
      v.SetElements(x);
      found << DeanDixonTest(&v, Dot500, a) << a;
      found.expect({n - 4.0, Q}, 0);
    }
  }
  v.SetElements(cars.Column(4));
  found << GrubbsTest(&v, 0.2, a) << a << GrubbsTest(&v, 0.05, a) << a;
  v.Fill(0);
  v.SetVal(4, 1);
  v.SetVal(20, -1);
  found << GrubbsTest(&v, 0.05, a);
  found.expect({31, 2.746566824714, 0, 2.746566824714, 4});
}

TEST_F(Hypotheses, Groups) {
  found << Anova1F(&widths, &species, a, b, c, i, j, k, f) << f << a << b << c << i << j << k;
  found << LeveneTest(&widths, &species, d) << d;
  for (i = 1; i <= 150; ++i) species.SetVal(i, species(i) * 100000000);
  widths.SMult(0x1p-700);  // whose squares underflow
  Anova1F(&widths, &species, a, b, c, i, j, k, e);
  EXPECT_EQ(e, f);
  test::loadCsv("USArrests.csv", 1, 4, iris);
  const TMatrix tied{{1, 1, 2}, {3, 1, 2}, {5, 5, 5}, {1, 2, 3}};  // by friedman.test too
  const TVector uneven{1, 3, 2, 6};
  const TIntVector two{4, 4, 5, 5};
  found << FriedmanTest(&iris, a) << a << FriedmanTest(&tied, a) << a;
  found << Anova1F(&uneven, &two, a, b, c, i, j, k, f) << f;  // t = sqrt(0.8) in two samples
  found.expect({4.492017133309e-17, 49.16004008961, 11.34493333333, 16.962, 28.30693333333, 2, 147,
                149, 0.5498108079674, 0.6006218158612, 1.414826748738e-31, 146.616, 0.3067205575766,
                2.363636363636, 1 - std::sqrt(0.8 / 2.8), 0.8});
}

TEST_F(Hypotheses, TwoSamples) {
  const double kP[] = {1.241914549129e-13, 8.985235037487e-18, 3.746742613984e-17};
  const double kDf[] = {49, 98, 86.53800179765};
  for (const auto version : {ttHomoScedastic, ttHeteroScedastic, ttPaired}) {
    found << Perform2SampleTTest(&setosa, &versicolor, version, a, b, c, d, e, f, i) << b << i;
    found.expect({kP[version], kDf[version], std::round(kDf[version])});
  }
  found << a << c << d << e << f;
  found.expect({-10.14589947574733, 5.006, 5.936, 0.1242489795918, 0.2664326530612});
  const TVector A{2.5, 1, 7, 3}, B{6, 9, 4, 8, 5};  // by wilcox.test(exact = TRUE)
  found << PerformMannWhitneyUTest(&A, &B, true, p) << p
        << PerformMannWhitneyUTest(&B, &A, false, p) << p;
  found << MedianTest(setosa.Elements(), versicolor.Elements(), a, b, c, d, p) << a << b << c << d
        << p;
  found.expect({3, 1 / 9.0, 17, 1 / 18.0, 0, 60.8643457383, 6.114629521409e-15, 57.7831132453,
                2.926714967232e-14, 3.453645050175e-16});
  found << PerformMannWhitneyUTest(&setosa, &versicolor, true, p) << p;
  found.expect({168.5, 8.345827145941e-14}, 1e-7);
}

/// Sums of integers (Python), and the normal tail (mpmath).
TEST_F(Hypotheses, Runs) {
  found << ExactRunsTest(3, 4, 4) << ExactRunsTest(25, 25, 17) << ExactRunsTest(40, 30, 24)
        << ExactRunsTest(3000, 2500, 2500) << ExactRunsTest(1000, 1000, 300)
        << DurbinWatson(TDoubleArray{1, 2, 4, 7});
  found.expect({19 / 35.0, 0.007074659429392, 0.003869083350135, 2.907737705384e-10,
                4.804886578805e-238, 0.2});
  TBitFld bits;
  bits.SetSize(59);
  for (i = 1; i < 60; i += 2) bits.SetBit(i, true);
  found << RunsTestSerial(&sepals, p) << p << RunsTest(&bits, p) << p;
  found.expect({1, 3.31940111434e-11, 1, 2.142436737899e-14}, 1e-7);
}

TEST_F(Hypotheses, Counts) {
  const TInt2DArray cylindersByGears{{1, 8, 2, 11}, {2, 4, 1, 7}, {12, 0, 2, 14}, {15, 12, 5, 32}};
  found << Chi2OfContTab(cylindersByGears, a, p) << a << p;
  found << Chi2OfContTabYates({{12, 7, 19}, {6, 7, 13}, {18, 14, 32}}, a, p) << a << p;
  // By hand: bins (20; 6), (26; 16), (20; 11), (2; 1), totals 68 and 34.
  const TIntArray observed{20, 24, 2, 14, 6, 2}, awaited{6, 16, 0, 5, 6, 1};
  found << PerformChi2DistComp(observed, awaited, a, p, i, j, k) << a << p << i << j << k;
  found << AdjustedRandIx({{2, 0, 0, 2}, {0, 1, 1, 2}, {2, 1, 1, 4}})
        << AdjustedRandIx({{1, 0, 1}, {0, 1, 1}, {1, 1, 2}});
  found.expect({0, 18.03636363636, 0.001214066033785, 0, 0.3475355054302, 0.5555115470131, 0,
                2 * (16 / 6.0 + 9 / 16.0 + 1 / 11.0), chi2DistriComplement(a, 3), 3, 68, 34,
                4 / 7.0, 1});
  // Each margin is the smallest one once; two are; all are, with tables of equal probability.
  const TDoubleArray same{0.00137972809261, 0.999966348095, 0.00275945618522, 0.00134607618791};
  const std::pair<TInt2DArray, TDoubleArray> tables[] = {
      {{{1, 9}, {11, 3}}, same},
      {{{11, 3}, {1, 9}}, same},
      {{{1, 11}, {9, 3}}, same},
      {{{12, 6}, {7, 7}}, {0.277630861988, 0.905778723542, 0.472697441602, 0.18340958553}},
      {{{6, 3}, {9, 6}}, {0.546843451339, 0.774700498048, 1, 0.321543949388}},
      {{{3, 1}, {1, 3}}, {69 / 70.0, 17 / 70.0, 34 / 70.0, 16 / 70.0}}};
  for (const auto& [table, expected] : tables) {
    EXPECT_EQ(FisherExactTest(table, a, b, c) + Prob2x2Contingency(table, d), 0);
    found << a << b << c << d;
    found.expect(expected);
  }
}

TEST_F(Hypotheses, Normality) {
  for (const std::size_t n : {4u, 5u, 7u, 32u}) {
    v.SetElements(mpg.Elements().first(n));
    found << ShapiroWilkTest(&v, 0, a, p) << a << p;
  }
  found.expect({0, 0.7759816249478, 0.06566116279706, 0, 0.9163477077659, 0.506657967075, 0,
                0.9029547237528, 0.3492503474279, 0, 0.9475647264793, 0.1228813585394},
               1e-9);
  mpg.SortElems(true, 0, 0);
  v.SetElements(mpg.Elements().first(25));
  for (i = 1; i <= 150; ++i) widths.SetVal(i, widths(i) - 3);
  found << ShapiroWilkTest(&v, 32, a, p) << a << p << PerformKSNormalityTest(&widths, false)
        << PerformLillieforsTest(&mpg, true);
  found.expect(
      {0, 0.9660256892753, ShapiroWilkIntegral(a, 32, 25), 0.2352042053927, 0.1263024418376},
      1e-7);               // W by mpmath
  std::mt19937 random(3);  // at every element, beside the search
  TDoubleArray x(2001);
  for (double& value : x) value = std::normal_distribution<double>(0.2)(random);
  std::ranges::sort(x);
  v.SetElements(x);
  double expected = 0;
  for (i = 0; i < 2001; ++i) {
    const double F = nDistriIntegral(v(i + 1));
    expected = std::max({expected, (i + 1) / 2001.0 - F, F - i / 2001.0});
  }
  EXPECT_EQ(PerformKSNormalityTest(&v, true), expected);
}

TEST_F(Hypotheses, ChecksInOrder) {
  const TVector one{1}, three{1, 2, 3}, flat{2, 2, 2, 2}, steps{1, 1, 2, 2};
  const TIntVector two{4, 4, 5, 5}, same{4, 4, 4, 4}, own{1, 2, 3, 4};
  const auto dixon = [&](const TVector& x) { DeanDixonTest(&x, Dot050, a); };
  const auto grubbs = [&](double alpha) { GrubbsTest(&three, alpha, a); };
  const std::string points = "Test: number of data points is too ";
  EXPECT_THROW_MSG(dixon(one), EZELStatisError, "DeanDixon" + points + "low");
  EXPECT_THROW_MSG(dixon(sepals), EZELStatisError, "DeanDixon" + points + "high");
  EXPECT_THROW_MSG(grubbs(1), EZELStatisError, "GrubbsTest: invalid level of significance");
  EXPECT_THROW_MSG(grubbs(0.5), EZELStatisError, "Grubbs" + points + "low");
  const auto anova = [&](auto& x, auto& g) { return Anova1F(&x, &g, a, b, c, i, j, k, f); };
  f = -1;
  const TMatrix even{{1, 1, 1}, {2, 2, 2}};
  const TInt2DArray small{{1, 1}, {1, 1}}, huge{{1000, 1}, {-1, 1}}, negative{{5, 1}, {-1, 1}};
  const TInt2DArray row{{1, 2, 3}}, noRow{{0, 0, 0}, {1, 2, 3}, {1, 2, 3}};
  const TIntArray counts{1, 2}, single{3};
  const std::span<const double> x = sepals.Elements(), y = flat.Elements(), none;
  found << anova(three, two) << anova(steps, same) << anova(steps, own) << f << anova(flat, two)
        << f << anova(steps, two) << f << LeveneTest(&steps, &two, f) << GrubbsTest(&flat, 0.5, a)
        << a << FriedmanTest(nullptr, a) << FriedmanTest(&even, a) << a
        << Chi2OfContTab(small, a, p) << Chi2OfContTabYates(row, a, p)
        << Chi2OfContTabYates(noRow, a, p) << FisherExactTest(row, a, b, c)
        << FisherExactTest(huge, a, b, c) << FisherExactTest(negative, a, b, c)
        << PerformChi2DistComp(counts, single, a, p, i, j, k) << j
        << PerformChi2DistComp({}, single, a, p, i, j, k) << k << i
        << PercentileOfArray(x, -1, 200, 101, a) << PercentileOfArray(x, 200, -1, 5, a)
        << PercentileOfArray(x, 0, 150, 5, a) << a << PercentileOfArray(x, 50, 99, 100, a) << a
        << PercentileOfArray(x, 50, 99, 50, a) << a;
  found.expect({-4, -1, -2, -1, -3, 0, 0,  0x1.fffffffffffffp1023,
                -3, 0,  0,  -1, 1,  0, -1, -1,
                -2, -1, -2, -3, -1, 3, -3, 3,
                -1, -2, -3, -1, 0,  0, 7,  0,
                5.9},
               0);
  found << Perform2SampleTTest(&one, &three, ttPaired)
        << Perform2SampleTTest(&flat, &three, ttPaired)
        << Perform2SampleTTest(&flat, &flat, ttHeteroScedastic)
        << PerformMannWhitneyUTest(&flat, nullptr, true, p)
        << PerformMannWhitneyUTest(&flat, &flat, true, p) << p << MedianTest(x, none, a, b, c, d, p)
        << p << MedianTest(y, y, a, b, c, d, p) << ShapiroWilkTest(&one, 0, a, p)
        << ShapiroWilkTest(&three, 2, a, p) << ShapiroWilkTest(&three, 20, a, p)
        << ShapiroWilkTest(&flat, 4, a, p) << DurbinWatson(none) << DurbinWatson(TDoubleArray(3))
        << RunsTest(nullptr, p) << p;
  std::string comment = "old";
  found << LoadPLSModelComment("/no/such/file", comment)
        << LoadPLSModelComment(ZEL_TEST_DATA "/sunspots.asc", comment)
        << comment.starts_with("Yearly mean");
  found.expect({-1, -2, -3, -1, 8, 1, -1, -1, -2, -1, -2, -2, -3, 2, 0, 0, -1, -1, 0, 1}, 0);
  const test::FailingNew fail(0);
  EXPECT_THROW_MSG(anova(flat, two), EZELStatisError, "Anova1F: not enough memory");
}

}  // namespace
}  // namespace zel
