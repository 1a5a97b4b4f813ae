#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <random>

#include "tests/support/data_file.h"
#include "tests/support/expect_message.h"
#include "tests/support/failing_new.h"
#include "zel/statistics/Zel_statis.h"

// Reference values without another source are those of R 4.2 on the data sets of the same names.
namespace zel {
namespace {

/// Results beside their references, relative tolerance.
void expectNear(const TDoubleArray& values, const TDoubleArray& expected,
                double tolerance = 1e-13) {
  ASSERT_EQ(values.size(), expected.size());
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_NEAR(values[i], expected[i], tolerance * std::abs(expected[i])) << "place " << i;
}

/// Results in the order in which they are computed.
struct InOrder {
  TDoubleArray values;
  InOrder& operator<<(double value) { return values.push_back(value), *this; }
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
    for (int i = 1; i <= 150; ++i) species.SetVal(i, i % 3 == 0 ? 7 : i % 3 - 2);
    TDoubleArray mixed(150);  // the species take turns
    for (std::size_t i = 0; i < 150; ++i) mixed[i] = iris.Column(2)[i % 3 * 50 + i / 3];
    widths.SetElements(mixed);
  }
  TMatrix iris, cars;
  TVector sepals, widths, mpg, setosa, versicolor, v;
  TIntVector species;
  double a, b, c, d, e, f, p;
  int i, j, k;
  const double largest = std::numeric_limits<double>::max();
};

TEST_F(Hypotheses, OutliersAtBothEndsForEverySize) {
  for (const auto [n, above, below] : {std::array{5, 1, 0}, {8, 1, 1}, {11, 2, 1}, {14, 2, 2}}) {
    TDoubleArray x;
    for (i = 1; i <= n; ++i) x.push_back(std::ldexp(1, i));
    std::rotate(x.begin(), x.begin() + 4, x.end());  // the largest is now at n - 4
    const double Q =
        (x[n - 5u] - std::ldexp(1, n - above)) / (x[n - 5u] - std::ldexp(1, 1 + below));
    for (const double sign : {1, -1}) {
      for (double& value : x) value *= sign;
      v.SetElements(x);
      EXPECT_EQ(DeanDixonTest(&v, Dot500, a), n - 4) << n;
      EXPECT_EQ(a, Q);
    }
  }
  v.SetElements(cars.Column(4));
  EXPECT_EQ(GrubbsTest(&v, 0.2, a), 31);
  EXPECT_EQ(GrubbsTest(&v, 0.05, b), 0);
  expectNear({a, b}, {2.746566824714046, 2.746566824714046});
  v.Fill(0);
  v.SetVal(4, 1);
  v.SetVal(20, -1);
  EXPECT_EQ(GrubbsTest(&v, 0.05, a), 4);
}

TEST_F(Hypotheses, Groups) {
  p = Anova1F(&widths, &species, a, b, c, i, j, k, f);
  expectNear(
      {p, f, a, b, c},
      {4.492017133309114e-17, 49.160040089612075, 11.344933333333334, 16.962, 28.306933333333334},
      1e-12);
  EXPECT_EQ((std::array{i, j, k}), (std::array{2, 147, 149}));
  p = LeveneTest(&widths, &species, d);
  expectNear({d, p}, {0.6006218158611862, 0.5498108079674343}, 1e-12);
  v.SetElements(widths.Elements());
  v.SMult(0x1p-700);  // whose squares underflow
  for (i = 1; i <= 150; ++i) species.SetVal(i, species(i) * 100000000);
  Anova1F(&v, &species, a, b, c, i, j, k, e);
  EXPECT_EQ(e, f);
  TMatrix states;
  test::loadCsv("USArrests.csv", 1, 4, states);
  expectNear({FriedmanTest(&states, a), a}, {1.414826748738496e-31, 146.616}, 1e-12);
  TMatrix tied{{1, 1, 2}, {3, 1, 2}, {5, 5, 5}, {1, 2, 3}};  // friedman.test
  expectNear({FriedmanTest(&tied, a), a}, {0.3067205575765568, 2.363636363636364}, 1e-12);
}

TEST_F(Hypotheses, TwoSamples) {
  p = Perform2SampleTTest(&setosa, &versicolor, ttHomoScedastic, a, b, c, d, e, f, i);
  expectNear({p, a, b, c, d, e, f}, {8.985235037487079e-18, -10.52098626754911, 98, 5.006, 5.936,
                                     0.1242489795918368, 0.2664326530612245});
  p = Perform2SampleTTest(&setosa, &versicolor, ttHeteroScedastic, a, b, c, d, e, f, i);
  expectNear({p, b, double(i)}, {3.746742613983842e-17, 86.53800179765497, 87});
  expectNear({Perform2SampleTTest(&setosa, &versicolor, ttPaired)}, {1.241914549129247e-13});
  EXPECT_EQ(PerformMannWhitneyUTest(&setosa, &versicolor, true, p), 168.5);
  expectNear({p}, {8.345827145940737e-14}, 1e-7);
  TVector A{2.5, 1, 7, 3}, B{6, 9, 4, 8, 5};  // R: wilcox.test(exact = TRUE)
  EXPECT_EQ(PerformMannWhitneyUTest(&A, &B, true, p), 3);
  EXPECT_EQ(PerformMannWhitneyUTest(&B, &A, false, a), 17);
  expectNear({p, p}, {2 * a, 0.1111111111111111});
  TDoubleArray manual, automatic;
  for (std::size_t row = 0; row < 32; ++row)
    (cars.Column(8)[row] == 0 ? manual : automatic).push_back(cars.Column(1)[row]);
  EXPECT_EQ(MedianTest(manual, automatic, a, b, c, d, p), 0);
  expectNear({a, b, c, d, p}, {10.04120759414877, 0.001530768201808939, 7.905882352941176,
                               0.004927430103394074, 0.002103956510708995});
}

/// All orders of up to 12 symbols; beyond, sums of integers (Python).
TEST_F(Hypotheses, Runs) {
  std::map<std::array<int, 3>, int> counts;
  for (unsigned order = 0; order < 1u << 12; ++order) {
    const int changes = std::popcount((order ^ order >> 1) & 0x7FFu);
    ++counts[{std::popcount(order), 12 - std::popcount(order), changes + 1}];
  }
  for (int set = 1; set < 12; ++set) {
    double sum = 0;
    for (int r = 2; r <= 12; ++r) {
      sum += counts[{set, 12 - set, r}];
      EXPECT_DOUBLE_EQ(ExactRunsTest(set, 12 - set, r), sum / BinomCoeff(12, set));
    }
  }
  expectNear({ExactRunsTest(25, 25, 17), ExactRunsTest(40, 30, 24), ExactRunsTest(3000, 2500, 2500),
              ExactRunsTest(1000, 1000, 300)},
             {0.0070746594293919747, 0.0038690833501350014, 2.9077377053837615e-10,
              4.8048865788054053e-238});
  EXPECT_TRUE(RunsTestSerial(&sepals, p));
  expectNear({p}, {3.3194011143403029e-11}, 1e-7);  // z = -6.53, by mpmath
  TBitFld bits;
  bits.SetSize(59);
  for (i = 1; i < 60; i += 2) bits.SetBit(i, true);
  EXPECT_TRUE(RunsTest(&bits, p));
  expectNear({p}, {2.1424367378994068e-14}, 1e-7);  // z = 7.55
  bits.SetSize(7);
  EXPECT_FALSE(RunsTest(&bits, p));
  EXPECT_EQ(p, 1);
  test::loadCsv("faithful.csv", 1, 1, iris);
  v.SetElements(iris.Column(1));
  v.MeanCenter();
  expectNear({DurbinWatson(v.Elements()), DurbinWatson(TDoubleArray{1, -1, 1, -1})},
             {3.077258329898142, 3});
}

TEST_F(Hypotheses, Counts) {
  const TInt2DArray cylindersByGears{{1, 8, 2, 11}, {2, 4, 1, 7}, {12, 0, 2, 14}, {15, 12, 5, 32}};
  EXPECT_EQ(Chi2OfContTab(cylindersByGears, a, p), 0);
  expectNear({a, p}, {18.03636363636364, 0.001214066033785158});
  EXPECT_EQ(Chi2OfContTabYates({{12, 7, 19}, {6, 7, 13}, {18, 14, 32}}, a, p), 0);
  expectNear({a, p}, {0.3475355054302423, 0.5555115470131495});
  // The smallest margin: first row, second row, first column, second column; two-sided with equals.
  const TDoubleArray same{0.001379728092610043, 0.9999663480953023, 0.002759456185220084,
                          0.001346076187912237};
  const std::pair<TInt2DArray, TDoubleArray> tables[] = {
      {{{1, 9}, {11, 3}}, same},
      {{{11, 3}, {1, 9}}, same},
      {{{1, 11}, {9, 3}}, same},
      {{{12, 6}, {7, 7}},
       {0.2776308619883605, 0.9057787235414552, 0.4726974416017796, 0.1834095855298156}},
      {{{6, 3}, {9, 6}}, {0.5468434513393456, 0.7747004980481896, 1, 0.3215439493875352}},
      {{{3, 1}, {1, 3}}, {69 / 70.0, 17 / 70.0, 34 / 70.0, 16 / 70.0}}};
  for (const auto& [table, expected] : tables) {
    EXPECT_EQ(FisherExactTest(table, a, b, c) + Prob2x2Contingency(table, d), 0);
    expectNear({a, b, c, d}, expected);
  }
  // By hand: bins (20; 6), (26; 16), (20; 11), (2; 1), totals 68 and 34.
  const TIntArray observed{20, 24, 2, 14, 6, 2}, awaited{6, 16, 0, 5, 6, 1};
  EXPECT_EQ(PerformChi2DistComp(observed, awaited, a, p, i, j, k), 0);
  expectNear({a, p}, {2 * (16 / 6.0 + 9 / 16.0 + 1 / 11.0), chi2DistriComplement(a, 3)});
  EXPECT_EQ((std::array{i, j, k}), (std::array{3, 68, 34}));
  expectNear({AdjustedRandIx({{2, 0, 0, 2}, {0, 1, 1, 2}, {2, 1, 1, 4}}),
              AdjustedRandIx({{1, 0, 1}, {0, 1, 1}, {1, 1, 2}})},
             {4 / 7.0, 1});
}

TEST_F(Hypotheses, Normality) {
  for (const auto& [n, w, p1] : {std::tuple{4, 0.7759816249477935, 0.06566116279705714},
                                 {5, 0.9163477077659241, 0.5066579670750153},
                                 {7, 0.9029547237528159, 0.3492503474278779},
                                 {32, 0.9475647264792743, 0.1228813585394433}}) {
    v.SetElements(mpg.Elements().first(static_cast<std::size_t>(n)));
    EXPECT_EQ(ShapiroWilkTest(&v, 0, a, p), 0);
    expectNear({a, p}, {w, p1}, 1e-9);
  }
  mpg.SortElems(true, 0, 0);
  v.SetElements(mpg.Elements().first(25));
  EXPECT_EQ(ShapiroWilkTest(&v, 32, a, p), 0);
  expectNear({a, p}, {0.96602568927526611, ShapiroWilkIntegral(a, 32, 25)});  // by mpmath
  for (i = 1; i <= 150; ++i) widths.SetVal(i, widths(i) - 3);
  expectNear({PerformKSNormalityTest(&widths, false), PerformLillieforsTest(&mpg, true)},
             {0.23520420539265356, 0.1263024418375908}, 1e-7);
  std::mt19937 random(3);
  for (const double shift : {0.0, 0.3, 40.0}) {  // at every element, beside the search
    TDoubleArray x(2001);
    for (double& value : x) value = std::normal_distribution<double>(shift)(random);
    std::ranges::sort(x);
    double expected = 0;
    for (i = 0; i < 2001; ++i) {
      const double F = nDistriIntegral(x[static_cast<std::size_t>(i)]);
      expected = std::max({expected, (i + 1) / 2001.0 - F, F - i / 2001.0});
    }
    v.SetElements(x);
    EXPECT_EQ(PerformKSNormalityTest(&v, true), expected);
  }
}

TEST_F(Hypotheses, ChecksInOrder) {
  const TVector one{1}, three{1, 2, 3}, flat{2, 2, 2, 2}, steps{1, 1, 2, 2},
      many(TDoubleArray(101));
  const TIntVector two{4, 4, 5, 5}, same{4, 4, 4, 4}, own{1, 2, 3, 4};
  const auto dixon = [&](const TVector& x) { DeanDixonTest(&x, Dot050, a); };
  const auto grubbs = [&](double alpha) { GrubbsTest(&three, alpha, a); };
  const std::string low = "Test: number of data points is too low";
  EXPECT_THROW_MSG(dixon(one), EZELStatisError, "DeanDixon" + low);
  EXPECT_THROW_MSG(dixon(many), EZELStatisError,
                   "DeanDixonTest: number of data points is too high");
  EXPECT_THROW_MSG(grubbs(1), EZELStatisError, "GrubbsTest: invalid level of significance");
  EXPECT_THROW_MSG(grubbs(0.5), EZELStatisError, "Grubbs" + low);
  const auto anova = [&](const auto& x, const auto& g) {
    return Anova1F(&x, &g, a, b, c, i, j, k, f);
  };
  f = -1;
  const TInt2DArray small{{1, 1}, {1, 1}}, huge{{1000, 1}, {-1, 1}}, negative{{5, 1}, {-1, 1}};
  const TInt2DArray row{{1, 2, 3}}, noRow{{0, 0, 0}, {1, 2, 3}, {1, 2, 3}};
  const std::span<const double> x = sepals.Elements(), none;
  const TMatrix even{{1, 1, 1}, {2, 2, 2}};
  InOrder codes;
  codes << anova(three, two) << anova(steps, same) << anova(steps, own) << f << anova(flat, two)
        << f << anova(steps, two) << f << LeveneTest(&steps, &two, f) << GrubbsTest(&flat, 0.5, a)
        << a << FriedmanTest(nullptr, a) << FriedmanTest(&even, a) << a
        << Chi2OfContTab(small, a, p) << Chi2OfContTabYates(row, a, p)
        << Chi2OfContTabYates(noRow, a, p) << FisherExactTest(row, a, b, c)
        << FisherExactTest(huge, a, b, c) << FisherExactTest(negative, a, b, c)
        << PerformChi2DistComp(TIntArray{1, 2}, TIntArray{3}, a, p, i, j, k) << j
        << PerformChi2DistComp(TIntArray{}, TIntArray{3}, a, p, i, j, k) << k << i
        << PercentileOfArray(x, -1, 200, 101, a) << PercentileOfArray(x, 200, -1, 5, a)
        << PercentileOfArray(x, 0, 150, 5, a) << a << PercentileOfArray(x, 50, 99, 100, a) << a
        << PercentileOfArray(x, 50, 99, 50, a) << a << Perform2SampleTTest(&one, &three, ttPaired)
        << Perform2SampleTTest(&flat, &three, ttPaired)
        << Perform2SampleTTest(&flat, &flat, ttHeteroScedastic)
        << PerformMannWhitneyUTest(&flat, nullptr, true, p)
        << PerformMannWhitneyUTest(&flat, &flat, true, p) << p << MedianTest(x, none, a, b, c, d, p)
        << p << MedianTest(flat.Elements(), flat.Elements(), a, b, c, d, p)
        << ShapiroWilkTest(&one, 0, a, p) << ShapiroWilkTest(&three, 2, a, p)
        << ShapiroWilkTest(&three, 20, a, p) << ShapiroWilkTest(&flat, 4, a, p)
        << DurbinWatson(none) << DurbinWatson(TDoubleArray(3)) << RunsTest(nullptr, p) << p;
  expectNear(codes.values, {-4, -1, -2, -1, -3, 0,  0,  largest, -3, 0,  0,  -1, 1, 0, -1, -1,  -2,
                            -1, -2, -3, -1, 3,  -3, 3,  -1,      -2, -3, -1, 0,  0, 7, 0,  5.9, -1,
                            -2, -3, -1, 8,  1,  -1, -1, -2,      -1, -2, -2, -3, 2, 0, 0,  -1},
             0);
  std::string comment = "old";
  EXPECT_EQ(LoadPLSModelComment("/no/such/file", comment), -1);
  EXPECT_EQ(LoadPLSModelComment(ZEL_TEST_DATA "/sunspots.asc", comment), 0);
  EXPECT_EQ(comment.substr(0, 20), "Yearly mean sunspot ");
}

TEST_F(Hypotheses, LackOfMemory) {
  const std::pair<std::string, std::function<void()>> calls[] = {
      {"Anova1F", [&] { Anova1F(&widths, &species, a, b, c, i, j, k, f); }},
      {"FriedmanTest", [&] { FriedmanTest(&iris, a); }},
      {"MedianTest", [&] { MedianTest(widths.Elements(), mpg.Elements(), a, b, c, d, p); }},
      {"PerformMannWhitneyUTest", [&] { PerformMannWhitneyUTest(&setosa, &mpg, true, p); }},
      {"ShapiroWilkTest", [&] { ShapiroWilkTest(&mpg, 0, a, p); }}};
  for (const auto& [name, call] : calls) {
    const test::FailingNew fail(0);
    EXPECT_THROW_MSG(call(), EZELStatisError, name + ": not enough memory");
  }
}

}  // namespace
}  // namespace zel
