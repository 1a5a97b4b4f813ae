#include "zel/analysis/Zel_math2.h"

#include "tests/support/testing.h"

namespace zel {
namespace {

using Result = std::array<double, 4>;  // k0, k1, k2, FitQual

template <auto fit>
Result run(const TCurveFit& pairs) {
  Result r{9, 9, 0, 9};
  try {
    if constexpr (requires { (pairs.*fit)(r[0], r[1], r[3]); }) {
      (pairs.*fit)(r[0], r[1], r[3]);
    } else {
      (pairs.*fit)(r[0], r[1], r[2], r[3]);
    }
  } catch (...) {
    EXPECT_EQ(r, Result{});
    throw;
  }
  return r;
}

struct Model {
  const char* name;
  Result (*fit)(const TCurveFit&);
  double (*curve)(const Result& k, double x);
  Result exact;
  Result measured;   // R 4.2: lm() of the transformed variables of kMeasured
  Result offset;     // normal equations of kOffset in decimals of 120 digits
  const char* badX;  // what is said of an x, a y that is -1e-31
  const char* badY;
};

using Pairs = std::vector<std::array<double, 2>>;
const Pairs kMeasured{{0.5, 2.125}, {1, 3.5}, {1.75, 3.25}, {2.5, 4.75}, {3, 4.5},
                      {4.25, 5.75}, {5, 5.5}, {6.5, 5.25},  {8, 3.5},    {9, 2.75}};
const Pairs kOffset{{1e9, 2}, {1e9 + 1, 3}, {1e9 + 2, 5}, {1e9 + 4, 4}, {1e9 + 7, 1}};
constexpr const char* kPositiveX = "all x values must be positive";
constexpr const char* kPositiveY = "all y values must be positive";
constexpr const char* kNotZeroX = "x values must not be zero";
constexpr const char* kNotZeroY = "y values must not be zero";

// clang-format off
const std::vector<Model> kModels{
    {"CalcReciLinFit", run<&TCurveFit::CalcReciLinFit>,
     [](const Result& k, double x) { return 1 / (k[0] + k[1] * x); }, {0.5, 0.25, 0, 1},
     {0.2946614075176312, -0.006128015502183681, 0, 0.03642002279101093},
     {-75974025.73008658, 0.075974025974025972, 0, 0.42238991209424154}, nullptr, kNotZeroY},
    {"CalcHyperbolFit", run<&TCurveFit::CalcHyperbolFit>,
     [](const Result& k, double x) { return k[0] + k[1] / x; }, {2, -3, 0, 1},
     {4.739780081494798, -1.271497840173591, 0, 0.3659738531301224},
     {-194805191.64007422, 1.9480519518552877e+17, 0, 0.11688311566975881}, kNotZeroX, nullptr},
    {"CalcReciHyperbolFit", run<&TCurveFit::CalcReciHyperbolFit>,
     [](const Result& k, double x) { return x / (k[0] * x + k[1]); }, {2, 3, 0, 1},
     {0.2094828853721227, 0.1164660878337037, 0, 0.5273863311668102},
     {75974026.583611622, -75974026339672224, 0, 0.42238991012583926}, kNotZeroX, kNotZeroY},
    {"CalcLogFit", run<&TCurveFit::CalcLogFit>,
     [](const Result& k, double x) { return k[0] + k[1] * std::log(x); }, {-1, 2.5, 0, 1},
     {3.434597661289255, 0.5889326604590428, 0, 0.1989804077379359},
     {4036999845.8525195, -194805194.99536178, 0, 0.11688311627643785}, kPositiveX, nullptr},
    {"CalcReciLogFit", run<&TCurveFit::CalcReciLogFit>,
     [](const Result& k, double x) { return 1 / (k[0] + k[1] * std::log(x)); }, {4, 0.5, 0, 1},
     {0.3265335166846278, -0.05168893754599959, 0, 0.2632602792460679},
     {-1574429940.5075645, 75974026.156849101, 0, 0.42238991111004043}, kPositiveX, kNotZeroY},
    {"CalcPowerFit", run<&TCurveFit::CalcPowerFit>,
     [](const Result& k, double x) { return k[0] * std::pow(x, k[1]); }, {3, -1.5, 0, 1},
     {3.244437535260819, 0.1672829458268295, 0, 0.2290091499327089},
     {kInf, -115010108.06565501, 0, 0.25218470015388583}, kPositiveX, kPositiveY},
    {"CalcExponentialFit", run<&TCurveFit::CalcExponentialFit>,
     [](const Result& k, double x) { return k[0] * std::exp(k[1] * x); }, {7, -0.75, 0, 1},
     {3.619463151489565, 0.01832998902158418, 0, 0.02706352016637534},
     {kInf, -0.11501010784980052, 0, 0.2521847010085892}, nullptr, kPositiveY},
    {"CalcHoerlFit", run<&TCurveFit::CalcHoerlFit>,
     [](const Result& k, double x) { return k[0] * std::pow(k[1], x) * std::pow(x, k[2]); },
     {2, 0.75, 1.5, 1}, {3.996979756282993, 0.7971280019372292, 0.8279008603389415, 0.7986174677077639},
     {0, 0, 1.9589535960836973e+17, 0.98008776226754357}, kPositiveX, kPositiveY},
    {"CalcGaussFit", run<&TCurveFit::CalcGaussFit>,
     [](const Result& k, double x) { return k[0] * std::exp(-std::pow((x - k[1]) / k[2], 2) / 2); },
     {5, 3, 1.25, 1}, {5.6710318630389, 4.902189991490189, 3.341855702877643, 0.9133837546655712},
     {4.7787740224375543, 1000000002.9843289, 2.2593729621171299, 0.98008776215719862}, nullptr, kPositiveY}};
// clang-format on

Result fitted(const Model& model, const Pairs& pairs) {
  TCurveFit fit;
  for (const auto& [x, y] : pairs) fit.EnterStatValue(x, y);
  return model.fit(fit);
}

void expectNear(const Result& found, const Result& expected, double tolerance) {
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (std::isinf(expected[i])) {
      EXPECT_EQ(found[i], expected[i]) << "result " << i;
    } else {
      EXPECT_NEAR(found[i], expected[i], tolerance * std::abs(expected[i])) << "result " << i;
    }
  }
}

TEST(Fits, CoefficientsOfCurvesOfMeasuredPairsAndFarFromZero) {
  for (const Model& model : kModels) {
    SCOPED_TRACE(model.name);
    Pairs pairs;
    for (const double x : {0.25, 1.0, 2.0, 3.5, 5.0, 6.0})
      pairs.push_back({x, model.curve(model.exact, x)});
    expectNear(fitted(model, pairs), model.exact, 2e-14);
    expectNear(fitted(model, kMeasured), model.measured, 1e-13);
    expectNear(fitted(model, kOffset), model.offset, 2e-15);  // no digits are lost far from 0
  }
}

TEST(Fits, ImpossibleDataAreNamed) {
  const auto expect = [](const Model& model, const Pairs& pairs, std::string reason) {
    EXPECT_THROW_MSG(fitted(model, pairs), EZELMath2Error, model.name + (": " + reason));
  };
  for (const Model& model : kModels) {
    const bool isThree = model.exact[2] != 0;
    expect(model, {}, "not enough data points");
    expect(model, isThree ? Pairs{{1, 1}, {2, 2}} : Pairs{{1, 1}}, "not enough data points");
    expect(model, {{2, 1}, {2, 2}, {2, 3}}, "all x values are equal");
    if (isThree) expect(model, {{1, 1}, {2, 2}, {2, 3}}, "fewer than three different x values");
    if (model.badX) expect(model, {{1, 1}, {-1e-31, 2}, {2, 2}}, model.badX);
    if (model.badY) expect(model, {{1, 1}, {4, -1e-31}, {2, 2}}, model.badY);
    // Pairs that were removed do not count.
    TCurveFit fit;
    fit.EnterStatValue(-1e-31, -1e-31);
    for (const auto& [x, y] : kMeasured) fit.EnterStatValue(x, y);
    fit.RemoveStatValue(1);
    EXPECT_EQ(model.fit(fit), fitted(model, kMeasured)) << model.name;
  }
  for (const Pairs& pairs : {Pairs{{1, 4}, {2, 1}, {3, 3}}, Pairs{{1, 4}, {2, 4}, {3, 4}, {4, 4}},
                             Pairs{{1, 0.1}, {2, 0.01}, {3, 0.001}, {5, 0.00001}}})
    expect(kModels.back(), pairs, "the data have no maximum");
}

TEST(Fits, ExtremeData) {
  for (const Model& model : kModels) {
    SCOPED_TRACE(model.name);
    for (const double bad : {kNaN, kInf}) {
      EXPECT_TRUE(std::isnan(fitted(model, {{1, 1}, {2, 3}, {4, 2}, {bad, 1}})[3]));
      EXPECT_TRUE(std::isnan(fitted(model, {{1, 1}, {2, 3}, {4, 2}, {3, bad}})[3]));
    }
    // The quality does not depend on the units, however far from 1 they lie.
    const double quality = fitted(model, {{1, 2}, {2, 3}, {4, 7}, {5, 5}, {7, 4}})[3];
    for (const auto& [u, v] :
         Pairs{{0x1p1020, 0x1p1020}, {0x1p-90, 0x1p1020}, {0x1p1020, 0x1p-90}}) {
      const Pairs pairs{{u, 2 * v}, {2 * u, 3 * v}, {4 * u, 7 * v}, {5 * u, 5 * v}, {7 * u, 4 * v}};
      EXPECT_NEAR(fitted(model, pairs)[3], quality, 1e-13);
    }
    if (&model != &kModels.back()) {
      EXPECT_EQ(fitted(model, {{1, 0.3}, {3, 0.3}, {4, 0.3}})[3], 1) << "constant y";
    }
  }
}

}  // namespace
}  // namespace zel
