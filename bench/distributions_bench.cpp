// Distribution functions beside Boost.Math.

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "bench/peers_distributions.h"
#include "bench/rivals.h"
#include "zel/kernels/incomplete_beta.h"
#include "zel/statistics/tdistribution.h"

namespace zel::bench {
namespace {

constexpr std::size_t kValues = 100000;

/// Arguments of one call of each function. Degrees of freedom and parameters are spread evenly over
/// their logarithms, x over six standard deviations about the mean.
struct Arguments {
  double t, p;
  int df;
  double a, b, x;
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

[[maybe_unused]] const bool kRegistered = [] {
  add("t integral", zelIntegral, boostIntegral);
  add("t quantile", zelQuantile, boostQuantile);
  add("incomplete beta", zelBeta, boostBeta);
  return true;
}();

}  // namespace
}  // namespace zel::bench
