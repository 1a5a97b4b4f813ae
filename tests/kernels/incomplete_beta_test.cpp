#include "zel/kernels/incomplete_beta.h"

#include "tests/support/testing.h"

namespace zel::kernels {
namespace {

struct Reference {
  double a, b, x, lower, upper;
};

// By Python with exact integers: the series of all positive terms in fixed point with 260 bits, for
// the tail that is the smaller one (or with 1700 bits for the other), times the power over a, by
// mpmath's loggamma in the same precision. The arguments are the exact values of the doubles.
constexpr Reference kReferences[] = {
    {0.001, 0.001, 0.001, 0.496559335639105643, 0.503440664360894357},
    {0.001, 2.5, 1e-6, 0.987542528125474174, 0.0124574718745258263},
    {0.25, 0.75, 1e-20, 9.00316316157106057e-6, 0.999990996836838429},
    {1, 0.001, 0.25, 0.000287640695932231942, 0.999712359304067768},
    {1.5, 2.5, 0.75, 0.942331114377562691, 0.0576688856224373086},
    {2.5, 1e9, 1e-7, 1, 2.84060869660585057e-41},
    {17, 0.3, 0.99, 0.372280422491989286, 0.627719577508010714},
    {17, 60, 1e-16, 3.82237421008281734e-256, 1},
    {60, 1e9, 6e-8, 0.517169456240716618, 0.482830543759283382},
    {300, 300, 0.53125, 0.937213008463543065, 0.0627869915364569355},
    {2000, 1e5, 0.0078125, 1.90230138082448921e-282, 1},
    {1e5, 1000, 0.9905, 0.90222073022133947, 0.0977792697786605298},
    {1e7, 2.5, 0.9999999, 0.849145001637978795, 0.150854998362021205},
    {1e7, 1e9, 0.0099, 0.375351847437558962, 0.624648152562441038},
    {1e9, 17, 0.99999998, 0.221074178992099328, 0.778925821007900672}};

/// Between 2 and 4 units in the last place.
void expectNear(Extended value, double expected) {
  EXPECT_NEAR(static_cast<double>(value), expected, 0x1p-51 * expected);
}

TEST(IncompleteBeta, BothTailsFromEitherSide) {
  for (const auto& [a, b, x, lower, upper] : kReferences) {
    SCOPED_TRACE(testing::Message() << "a " << a << ", b " << b << ", x " << x);
    const Extended y = 1 - Extended{x};
    const BetaTails tails = incompleteBeta(a, b, x, y);
    expectNear(tails.lower, lower);
    expectNear(tails.upper, upper);
    const BetaTails mirrored = incompleteBeta(b, a, y, x);
    expectNear(mirrored.upper, lower);
    expectNear(mirrored.lower, upper);
  }
}

/// I_x(a, b) - I_x(a+1, b) = x^a y^b / (a B(a, b)): across the borders of the methods, for
/// parameters of every size. The differences are taken in the smaller tail.
TEST(IncompleteBeta, RecurrenceInTheFirstParameter) {
  std::mt19937_64 random(11);
  std::uniform_real_distribution<double> logarithm(-7, 23);
  std::normal_distribution<double> normal(0, 3);
  for (int k = 0; k < 3000; ++k) {
    const Extended a = std::exp(logarithm(random));
    const Extended b = std::exp(logarithm(random));
    const Extended n = a + b;
    const Extended x = a / n + normal(random) * std::sqrt(a / n * (b / n) / (n + 1));
    if (x <= 0 || x >= 1) continue;
    const Extended y = 1 - x;
    const BetaTails here = incompleteBeta(a, b, x, y);
    const BetaTails next = incompleteBeta(a + 1, b, x, y);
    const Extended scale = here.lower < 0.5L ? here.lower : next.upper;
    const Extended difference = scale - (here.lower < 0.5L ? next.lower : here.upper);
    EXPECT_LE(std::abs(difference - betaPower(a, b, x, y) / a), 3e-16L * scale)
        << a << ' ' << b << ' ' << x;
  }
}

TEST(IncompleteBeta, EndsAndNotANumber) {
  for (const Extended a : {1e-300L, 0.5L, 3.0L, 1e10L}) {
    EXPECT_EQ(incompleteBeta(a, 2, 0, 1).lower, 0);
    EXPECT_EQ(incompleteBeta(2, a, 1, 0).lower, 1);
    EXPECT_TRUE(std::isnan(incompleteBeta(a, NAN, 0.25L, 0.75L).lower));
  }
  EXPECT_EQ(incompleteBeta(1e10L, 1e10L, 0.25L, 0.75L).lower, 0);
}

}  // namespace
}  // namespace zel::kernels
