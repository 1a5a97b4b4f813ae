// Distribution functions beside Boost.Math and R.

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench/interpreter.h"
#include "bench/peers_distributions.h"
#include "bench/rivals.h"
#include "zel/kernels/incomplete_beta.h"
#include "zel/statistics/Zel_statis.h"

namespace zel::bench {
namespace {

constexpr std::size_t kValues = 100000;

/// Arguments of one call of each function. Degrees of freedom and parameters are spread evenly over
/// their logarithms, x over six standard deviations about the mean.
struct Arguments {
  double t, p;
  int df;
  double a, b, x;
  int df2, successes;
  double chi2, f;  // near the means
};

const std::vector<Arguments>& arguments() {
  static const std::vector<Arguments> all = [] {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> uniform(0, 1);
    std::vector<Arguments> made(kValues);
    for (Arguments& v : made) {
      v.t = 10 * uniform(random) - 5;
      v.p = uniform(random);
      v.df = static_cast<int>(std::exp(10 * uniform(random)));
      v.a = std::exp(8 * uniform(random) - 1);
      v.b = std::exp(8 * uniform(random) - 1);
      const double mean = v.a / (v.a + v.b);
      const double deviation = std::sqrt(mean * (1 - mean) / (v.a + v.b + 1));
      v.df2 = static_cast<int>(std::exp(10 * uniform(random)));
      const double deviations = 6 * uniform(random) - 3;
      v.chi2 = v.df * std::exp(deviations * std::sqrt(2.0 / v.df));
      v.f = std::exp(deviations * std::sqrt(2.0 / v.df + 2.0 / v.df2));
      v.successes = std::clamp(
          static_cast<int>(v.df * v.p + deviations * std::sqrt(v.df * v.p * (1 - v.p))), 0, v.df);
      v.x = std::clamp(mean + (6 * uniform(random) - 3) * deviation, 1e-6, 1 - 1e-6);
    }
    return made;
  }();
  return all;
}

using Function = double (*)(const Arguments&);

double zelIntegral(const Arguments& v) { return tDistriIntegral(v.t, v.df); }
double boostIntegral(const Arguments& v) { return boostStudentIntegral(v.t, v.df); }
double zelQuantile(const Arguments& v) { return tDistriQuantile(v.p, v.df); }
double boostQuantile(const Arguments& v) { return boostStudentQuantile(v.p, v.df); }
double zelBeta(const Arguments& v) {
  return static_cast<double>(kernels::incompleteBeta(v.a, v.b, v.x, 1 - Extended{v.x}).lower);
}
double boostBeta(const Arguments& v) { return boostIncompleteBeta(v.a, v.b, v.x); }

double zelChiSquare(const Arguments& v) { return chi2DistriIntegral(v.chi2, v.df); }
double boostChiSquare(const Arguments& v) { return boostChiSquareIntegral(v.chi2, v.df); }
double zelChiSquareQuantile(const Arguments& v) { return chi2DistriQuantile(v.p, v.df); }
double boostChiQuantile(const Arguments& v) { return boostChiSquareQuantile(v.p, v.df); }
double zelF(const Arguments& v) { return FDistriIntegral(v.f, v.df, v.df2); }
double boostF(const Arguments& v) { return boostFIntegral(v.f, v.df, v.df2); }
double zelFQuantile(const Arguments& v) { return FDistriQuantile(v.p, v.df, v.df2); }
double boostFQuantileOf(const Arguments& v) { return boostFQuantile(v.p, v.df, v.df2); }
double zelBinomial(const Arguments& v) { return BinomDistriIntegral(v.df, v.p, v.successes); }
double boostBinomial(const Arguments& v) { return boostBinomialIntegral(v.df, v.p, v.successes); }

void add(const char* kernel, Function zel, Function boost) {
  const auto all = [](Function f) {
    double sum = 0;
    for (const Arguments& v : arguments()) sum += f(v);
    keep(sum);
  };
  compete(kernel, kValues,
          [zel, boost] {
            return std::ranges::all_of(arguments(), [zel, boost](const Arguments& v) {
              const double expected = boost(v);
              return std::abs(zel(v) - expected) <= 1e-9 * std::abs(expected);
            });
          },
          {{"Zel", [all, zel] { all(zel); }}, {"Boost", [all, boost] { all(boost); }}});
}

/// Twenty values of a distribution of samples of n, each by a call of its own. R keeps the counts
/// of U between its calls up to n = 50; Zel keeps nothing.
void addBesideR(const char* kernel, const char* name, int n, double (*value)(int n, int k)) {
  const auto zel = [n, value] {
    double sum = 0;
    for (int k = 1; k <= 20; ++k) sum += value(n, k);
    return sum;
  };
  const auto r = [line = std::string(name) + " " + std::to_string(n)] {
    static const auto peer = std::make_unique<Interpreter>(
        "exec Rscript --vanilla " ZEL_BENCH_SOURCE "/distribution_peers.R");
    return peer->ask(line);
  };
  compete(kernel, static_cast<std::size_t>(n),
          [zel, r] { return std::abs(zel() - r()) <= 1e-9 * std::abs(r()); },
          {{"Zel", [zel] { keep(zel()); }}, {"R", [r] { keep(r()); }}});
}

double zelU(int n, int k) { return UDistriIntegral(n, n, n * n / 40 * k); }
double zelKolmogorov(int n, int k) { return 1 - KSPValue(n, k * 0.09 / std::sqrt(n)); }

[[maybe_unused]] const bool kRegistered = [] {
  add("t integral", zelIntegral, boostIntegral);
  add("t quantile", zelQuantile, boostQuantile);
  add("incomplete beta", zelBeta, boostBeta);
  add("chi-square integral", zelChiSquare, boostChiSquare);
  add("chi-square quantile", zelChiSquareQuantile, boostChiQuantile);
  add("F integral", zelF, boostF);
  add("F quantile", zelFQuantile, boostFQuantileOf);
  add("binomial integral", zelBinomial, boostBinomial);
  for (const int n : {10, 20, 50}) addBesideR("U integral", "u", n, zelU);
  for (const int n : {10, 100, 1000}) addBesideR("Kolmogorov-Smirnov", "ks", n, zelKolmogorov);
  return true;
}();

}  // namespace
}  // namespace zel::bench
