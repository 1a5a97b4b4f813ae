// Daubechies wavelet transforms over all levels beside GSL, which works in double precision; Zel's
// numbers are extended ones. Both transform in place, from a fresh copy each time.

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <span>
#include <vector>

#include "bench/peers_wavelet.h"
#include "bench/rivals.h"
#include "zel/kernels/wavelet.h"
#include "zel/transforms/Zel_wavelet.h"

namespace zel::bench {
namespace {

struct Rivals {
  TWavelet1D zel;
  std::vector<Extended> extendedData, extendedCopy, scratch;
  GslWavelet gsl;
  std::vector<double> copy;

  Rivals(int order, std::size_t n)
      : extendedData(normalData(n).begin(), normalData(n).end()),
        extendedCopy(n),
        scratch(n / 2),
        gsl(static_cast<std::size_t>(2 * order), n),
        copy(n) {
    zel.SetOrder(order);
  }
  void runZel(bool inverse) {
    std::copy(extendedData.begin(), extendedData.end(), extendedCopy.begin());
    const std::size_t n = extendedCopy.size();
    const std::span values(extendedCopy);
    const auto level = [&](auto&& step, std::size_t length) {
      step(values.first(length), zel.LowPass(), kernels::BlockStart::wraps, scratch);
    };
    if (inverse) {
      for (std::size_t length = 2; length <= n; length *= 2) level(kernels::waveletInverse, length);
    } else {
      for (std::size_t length = n; length >= 2; length /= 2) level(kernels::waveletForward, length);
    }
    keep(static_cast<double>(values[n / 2]));
  }
  void runGsl(bool inverse) {
    const auto& data = normalData(copy.size());
    std::copy(data.begin(), data.end(), copy.begin());
    if (inverse) {
      gsl.inverse(copy);
    } else {
      gsl.forward(copy);
    }
    keep(copy[copy.size() / 2]);
  }
};

/// Our filters end at a pair of values, the other library's start there. Started t - 2 values
/// later, its transform has our coefficients, but each level turned by t - 2 places; details may
/// have the other sign.
bool sameForward(Rivals& r) {
  const std::size_t n = r.copy.size();
  const std::size_t turn = r.zel.LowPass().size() - 2;
  r.runZel(false);
  const auto& data = normalData(n);
  std::rotate_copy(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(turn), data.end(),
                   r.copy.begin());
  r.gsl.forward(r.copy);
  const double tolerance = 1e-12 * std::sqrt(static_cast<double>(n));
  for (std::size_t level = 1; level < n; level *= 2) {
    for (std::size_t i = 0; i < level; ++i) {
      const double wanted = std::abs(r.copy[level + i]);
      const auto found = static_cast<double>(r.extendedCopy[level + (i + turn) % level]);
      if (!(std::abs(std::abs(found) - wanted) <= tolerance)) return false;
    }
  }
  return std::abs(static_cast<double>(r.extendedCopy[0]) - r.copy[0]) <= tolerance;
}

/// Back from the transform.
bool sameInverse(Rivals& r) {
  r.runZel(false);
  std::swap(r.extendedData, r.extendedCopy);
  r.runZel(true);
  std::swap(r.extendedData, r.extendedCopy);
  const auto& data = normalData(r.copy.size());
  const bool same =
      std::equal(data.begin(), data.end(), r.extendedData.begin(), [](double a, Extended b) {
        return std::abs(static_cast<double>(b) - a) <= 1e-13 * (10 + std::abs(a));
      });
  std::copy(data.begin(), data.end(), r.extendedData.begin());
  return same;
}

void add(int order, std::size_t n) {
  const auto rivals = [order, n]() -> Rivals& {
    static std::map<std::pair<int, std::size_t>, std::unique_ptr<Rivals>> all;
    auto& r = all[{order, n}];
    if (!r) r = std::make_unique<Rivals>(order, n);
    return *r;
  };
  for (const bool inverse : {false, true}) {
    compete(
        "wavelet order " + std::to_string(order) + (inverse ? ", inverse" : ""), n,
        [=] { return inverse ? sameInverse(rivals()) : sameForward(rivals()); },
        {{"Zel", [=] { rivals().runZel(inverse); }}, {"GSL", [=] { rivals().runGsl(inverse); }}});
  }
}

[[maybe_unused]] const bool kRegistered = [] {
  for (int order = 1; order <= 3; ++order) {
    for (const int bits : {10, 16, 20}) add(order, std::size_t{1} << bits);
  }
  return true;
}();

}  // namespace
}  // namespace zel::bench
