// Natural cubic splines beside GSL: building with one value, and with 100000 values at random
// places.

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "bench/peers_spline.h"
#include "bench/rivals.h"
#include "zel/kernels/spline.h"

namespace zel::bench {
namespace {

using Data = std::vector<double>;

/// Knots an uneven distance apart, at most 2.
const Data& knots(std::size_t n) {
  static std::map<std::size_t, Data> all;
  Data& x = all[n];
  if (x.empty()) {
    for (const double v : normalData(n))
      x.push_back((x.empty() ? 0 : x.back()) + 1.1 + std::tanh(v - 5));
  }
  return x;
}

Data places(std::size_t n, std::size_t count) {
  Data at;
  const Data& x = knots(n);
  for (const double v : normalData(count))
    at.push_back(x.front() + (x.back() - x.front()) * (v - std::floor(v)));
  return at;
}

void zelSpline(const Data& x, const Data& y, const Data& at, Data& values) {
  Data second(x.size());
  kernels::splineSecondDerivatives(x, y, {}, second);
  std::transform(at.begin(), at.end(), values.begin(),
                 [&](double t) { return kernels::splineValue(x, y, second, t); });
  keep(second[second.size() / 2]);
}

void add(const char* kernel, std::size_t n, std::size_t count) {
  const auto run = [n, count](const auto& spline) {
    static std::map<std::size_t, std::map<std::size_t, Data>> prepared;
    Data& at = prepared[n][count];
    if (at.empty()) at = places(n, count);
    Data values(at.size());
    spline(knots(n), normalData(n), at, values);
    return values;
  };
  compete(kernel, n,
          [run] {
            const Data zel = run(zelSpline);
            const Data gsl = run(gslSpline);
            return std::equal(zel.begin(), zel.end(), gsl.begin(), [](double a, double b) {
              return std::abs(a - b) <= 1e-12 * (1 + std::abs(b));
            });
          },
          {{"Zel", [run] { static_cast<void>(run(zelSpline)); }},
           {"GSL", [run] { static_cast<void>(run(gslSpline)); }}});
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const std::size_t n : {1000u, 100000u}) {
    add("cubic spline, built", n, 1);
    add("cubic spline, built and 1e5 values", n, 100000);
  }
  return true;
}();

}  // namespace
}  // namespace zel::bench
