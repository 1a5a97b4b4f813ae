// Tests of hypotheses beside GSL and what a user would write.

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "bench/peers_statistics.h"
#include "bench/rivals.h"
#include "zel/statistics/Zel_statis.h"

namespace zel::bench {
namespace {

constexpr int kGroups = 8;

/// The same numbers in every shape that the tests take.
struct Data {
  explicit Data(std::size_t n) : x(normalData(n)), half(n / 2), classes(n) {
    vector.SetElements(x);
    a.assign(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(half));
    b.assign(x.begin() + static_cast<std::ptrdiff_t>(half), x.end());
    for (auto* half : {&a, &b})  // with ties: the exact distribution is another matter
      for (double& value : *half) value = std::round(value * 100) / 100;
    A.SetElements(a);
    B.SetElements(b);
    labels.Resize(static_cast<int>(n));
    for (std::size_t i = 0; i < n; ++i) {
      classes[i] = static_cast<int>(i * 2654435761u >> 7) % kGroups;
      labels.SetVal(static_cast<int>(i) + 1, classes[i]);
    }
    rows = static_cast<int>(n) / kGroups;
    table.Resize(kGroups, rows);
    for (int r = 1; r <= rows; ++r) {
      for (int c = 1; c <= kGroups; ++c)
        table.SetVal(c, r, x[static_cast<std::size_t>((r - 1) * kGroups + c - 1)]);
    }
  }
  const std::vector<double>& x;
  std::size_t half;
  std::vector<double> a, b;
  std::vector<int> classes;
  TVector vector, A, B;
  TIntVector labels;
  TMatrix table;
  int rows = 0;
};

const Data& data(std::size_t n) {
  static const Data small(1000), large(100000);
  return n == 1000 ? small : large;
}

double zelTTest(const Data& d) { return Perform2SampleTTest(&d.A, &d.B, ttHomoScedastic); }
double zelAnova(const Data& d) {
  double between, within, total, F;
  int dfBetween, dfWithin, dfTotal;
  return Anova1F(&d.vector, &d.labels, between, within, total, dfBetween, dfWithin, dfTotal, F);
}
double zelMannWhitney(const Data& d) {
  double p;
  PerformMannWhitneyUTest(&d.A, &d.B, true, p);
  return p;
}
double zelFriedman(const Data& d) {
  double chi2 = 0;
  return FriedmanTest(&d.table, chi2);
}
double zelRuns(const Data& d) {
  double p;
  RunsTestSerial(&d.vector, p);
  return p;
}
double zelLilliefors(const Data& d) {
  TVector work(d.vector.Elements());
  return PerformLillieforsTest(&work, false);
}
double zelShapiroWilk(const Data& d) {
  double W, p;
  ShapiroWilkTest(&d.vector, 0, W, p);
  return W;
}
double zelDurbinWatson(const Data& d) { return DurbinWatson(d.x); }

/// The same significance from the number of runs, each half of the values being above.
double significanceOfRuns(double runs, std::size_t n) {
  const auto size = static_cast<double>(n);
  const double variance = size * (size / 2 - 1) / (2 * (size - 1));
  return nDistriIntegral(-std::abs(runs - size / 2 - 1) / std::sqrt(variance));
}

using Test = std::function<double(const Data&)>;

void add(const char* kernel, const char* peer, std::size_t n, Test zel, Test other) {
  const auto agree = [=] {
    const double expected = other(data(n));
    return std::abs(zel(data(n)) - expected) <= 1e-6 * std::abs(expected);
  };
  compete(kernel, n, agree,
          {{"Zel", [=] { keep(zel(data(n))); }}, {peer, [=] { keep(other(data(n))); }}});
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const std::size_t n : {std::size_t{1000}, std::size_t{100000}}) {
    add("t test", "GSL", n, zelTTest, [](const Data& d) { return gslTTest(d.a, d.b); });
    add("one-way anova", "plain", n, zelAnova,
        [](const Data& d) { return plainAnova(d.x, d.classes); });
    add("Mann-Whitney", "std::sort", n, zelMannWhitney,
        [](const Data& d) { return plainMannWhitney(d.a, d.b); });
    add("Friedman", "std::sort", n, zelFriedman,
        [](const Data& d) { return plainFriedman(d.x, d.rows, kGroups); });
    add("runs test", "std::nth_element", n, zelRuns,
        [](const Data& d) { return significanceOfRuns(plainRuns(d.x), d.x.size()); });
    add("Lilliefors", "std::erfc", n, zelLilliefors,
        [](const Data& d) { return plainLilliefors(d.x); });
    add("Durbin-Watson", "plain", n, zelDurbinWatson,
        [](const Data& d) { return plainDurbinWatson(d.x); });
  }
  add("Shapiro-Wilk", "GSL", 1000, zelShapiroWilk,
      [](const Data& d) { return gslShapiroWilk(d.x); });
  return true;
}();

}  // namespace
}  // namespace zel::bench
