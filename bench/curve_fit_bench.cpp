// Pairs of values beside GSL and the plain loop over all pairs of points.

#include <cmath>
#include <memory>
#include <vector>

#include "bench/peers_fit.h"
#include "bench/rivals.h"
#include "zel/analysis/TCurveFit.h"

namespace zel::bench {
namespace {

using Data = std::vector<double>;

/// y depends on x, with as much noise.
Data dependent(const Data& x) {
  Data y(x.rbegin(), x.rend());
  for (std::size_t i = 0; i < x.size(); ++i) y[i] += x[i];
  return y;
}

/// n pairs, entered once.
struct Pairs {
  Data x, y;
  TCurveFit fit;
  explicit Pairs(std::size_t n) : x(normalData(n)), y(dependent(x)) {
    for (std::size_t i = 0; i < n; ++i) fit.EnterStatValue(x[i], y[i]);
  }
};

template <std::size_t kPairs>
Pairs& pairs() {
  static Pairs all(kPairs);
  return all;
}

void addEntering() {
  constexpr std::size_t kPairs = 100000;
  compete("EnterStatValue", kPairs, [] { return true; }, {{"Zel", [] {
                                                             TCurveFit fit;
                                                             const Pairs& p = pairs<kPairs>();
                                                             for (std::size_t i = 0; i < kPairs;
                                                                  ++i)
                                                               fit.EnterStatValue(p.x[i], p.y[i]);
                                                             keep(fit.MeanX());
                                                           }}});
}

void addFits() {
  constexpr std::size_t kPairs = 1000000;
  const auto zelLine = [] {
    double k, d, quality;
    pairs<kPairs>().fit.CalcLinFit(k, d, quality);
    keep(d + quality);
    return k;
  };
  const auto gslLine = [] {
    const Pairs& p = pairs<kPairs>();
    return gslFitLine(p.x.data(), p.y.data(), kPairs);
  };
  compete("line fit", kPairs, [=] { return std::abs(zelLine() - gslLine()) < 1e-9; },
          {{"Zel", [=] { keep(zelLine()); }}, {"GSL", [=] { keep(gslLine()); }}});
  const auto zelParabola = [] {
    double k0, k1, k2, quality;
    pairs<kPairs>().fit.CalcParabolFit(k0, k1, k2, quality);
    keep(k0 + k1 + quality);
    return k2;
  };
  // The data are those of a line, so the curvature is noise.
  compete("parabola fit", kPairs, [=] { return std::abs(zelParabola()) < 1e-2; },
          {{"Zel", [=] { keep(zelParabola()); }}, {"GSL line", [=] { keep(gslLine()); }}});
}

template <std::size_t kPairs>
void addTau() {
  const auto zel = [] {
    Pairs& p = pairs<kPairs>();
    p.fit.RemoveStatValue(0);  // the counts are no longer valid
    double significance;
    return p.fit.KendallsTau(significance);
  };
  const auto plain = [] {
    const Pairs& p = pairs<kPairs>();
    return plainKendall(p.x.data(), p.y.data(), kPairs);
  };
  compete("Kendall's tau", kPairs, [=] { return std::abs(zel() - plain()) < 1e-12; },
          {{"Zel", [=] { keep(zel()); }}, {"plain loop", [=] { keep(plain()); }}});
}

[[maybe_unused]] const bool kRegistered = [] {
  addEntering();
  addFits();
  addTau<20000>();
  addTau<100000>();
  return true;
}();

}  // namespace
}  // namespace zel::bench
