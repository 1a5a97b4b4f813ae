#include "zel/kernels/rank_sum.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numeric>

namespace zel::kernels {

namespace {

using Complex = std::complex<Extended>;

constexpr Extended kPi = 3.141592653589793238462643383279502884197L;

// The table is filled in at most some 10 ms, with at most 4 MB.
constexpr std::int64_t kMostSteps = 1 << 21;
constexpr std::int64_t kLongestTable = 1 << 18;
// The errors of its differences grow from stage to stage about the centre, to a unit in the last
// place of a double after 100 stages, to 7 after 110.
constexpr int kMostStages = 64;
// Up to here the table serves any samples: the centre is below only for some 90 stages, and the
// integral would have to include the peaks of the generating function at other roots of unity.
constexpr std::int64_t kAlwaysTable = 4096;

// The closed form is good for samples of up to four values: 12 is a multiple of 1..4.
constexpr int kFew = 4;
constexpr std::size_t kPeriod = 12;

/// A polynomial of degree 4 at most, given by its values at 0..4.
Extended extrapolate(std::array<Extended, kFew + 1> differences, Extended k) {
  for (std::size_t order = 1; order <= kFew; ++order)
    for (std::size_t i = kFew; i >= order; --i) differences[i] -= differences[i - 1];
  Extended value = 0;
  for (int i = kFew; i >= 0; --i)
    value = differences[static_cast<std::size_t>(i)] + value * (k - Extended(i)) / Extended(i + 1);
  return value;
}

/// How many partitions of u (or of all numbers up to u) have parts of 1..m only, m <= kFew: for
/// each remainder of u modulo 12 a polynomial.
Extended partitions(int m, bool cumulative, std::int64_t u) {
  if (u < 0) return 0;
  std::array<Extended, kPeriod*(kFew + 1)> counts{};
  counts[0] = 1;
  for (int part = cumulative ? 0 : 1; part <= m; ++part) {
    const auto stride = static_cast<std::size_t>(std::max(part, 1));
    for (std::size_t i = stride; i < counts.size(); ++i) counts[i] += counts[i - stride];
  }
  const auto period = static_cast<std::int64_t>(kPeriod);
  std::array<Extended, kFew + 1> values{};
  for (std::size_t i = 0; i < values.size(); ++i)
    values[i] = counts[i * kPeriod + static_cast<std::size_t>(u % period)];
  return extrapolate(values, static_cast<Extended>(u / period));
}

/// m <= kFew: the factors 1 - q^(n+1), ..., 1 - q^(n+m) take away from the partitions those with a
/// part above n. No two of them matter up to the centre.
Extended fewRanks(int m, int n, bool cumulative, std::int64_t u) {
  Extended count = partitions(m, cumulative, u);
  Extended all = 1;
  for (int i = 1; i <= m; ++i) {
    count -= partitions(m, cumulative, u - n - i);
    all *= (Extended(n) + i) / i;
  }
  return count / all;
}

/// 1 - e^w without cancellation.
Complex complement(Complex w) {
  const Extended growth = std::expm1(w.real());
  const Extended half = std::sin(w.imag() / 2);
  const Extended back = 2 * half * half;  // 1 - cos
  return {back + growth * (back - 1), -(growth + 1) * std::sin(w.imag())};
}

/// 1 - e^(ks) for k = first, first + 1, ... one after the other.
class Complements {
 public:
  Complements(Complex s, Extended first) : s_(s), k_(first), one_(complement(s)) {}

  Complex next() {
    constexpr int kFresh = 16;  // steps that rounding errors have to add up
    now_ = count_++ % kFresh == 0 ? complement(k_ * s_) : now_ + (Extended(1) - now_) * one_;
    k_ += 1;
    return now_;
  }

 private:
  Complex s_;
  Extended k_;
  Complex one_;
  Complex now_;
  int count_ = 0;
};

/// The generating function E(e^(sU)) for Re s < 0.
class GeneratingFunction {
 public:
  GeneratingFunction(int m, int n) : m_(m), n_(n) {}

  /// E(e^(sU)) e^(-su).
  Complex operator()(Complex s, Extended u) const {
    constexpr Extended kSmall = 0x1p-4000L;
    Complex product = 1;
    int scalings = 0;
    Complements above(s, n_ + 1);
    Complements below(s, 1);
    for (int i = 1; i <= m_; ++i) {
      const Extended k = i;
      product *= above.next() * k / (below.next() * (n_ + k));
      if (std::norm(product) < kSmall) {
        product *= 0x1p2000L;
        ++scalings;
      }
    }
    const Complex power = std::exp(-s * u - Extended(scalings) * 2000 * std::log(2.0L));
    return product * power;
  }

  /// First and second derivative of the logarithm for real s < 0.
  std::pair<Extended, Extended> slopes(Extended s) const {
    Extended first = 0;
    Extended second = 0;
    for (int i = 1; i <= m_; ++i) {
      for (const Extended k : {n_ + i, Extended(i)}) {
        const Extended power = std::exp(k * s);
        const Extended under = -std::expm1(k * s);
        const Extended sign = k > i ? 1 : -1;
        first -= sign * k * power / under;
        second -= sign * k * k * power / (under * under);
      }
    }
    return {first, second};
  }

  /// Real s < 0 where the logarithm has the slope u: Newton steps, from above as the slope is
  /// convex.
  Extended saddle(Extended u) const {
    constexpr int kMostSteps = 100;
    const Extended variance = Extended(m_) * n_ * (m_ + n_ + 1) / 12;
    const Extended nearest = -2.5L / std::sqrt(variance);
    Extended s = std::min((u - Extended(m_) * n_ / 2) / variance, nearest);
    for (int k = 0; k < kMostSteps; ++k) {
      const auto [first, second] = slopes(s);
      const Extended step = (first - u) / second;
      // Near 0 the slopes cancel and the terms of the sum over u do not decline.
      if (s - step > nearest) return nearest;
      s -= step;
      if (std::abs(step) < 1e-3L * std::abs(s)) break;
    }
    return s;
  }

 private:
  int m_;
  Extended n_;
};

/// 1 / (2 pi) times the integral over a period of E(e^(sU)) e^(-su), summed over all up to u if
/// cumulative. m > kFew.
Extended contour(int m, int n, bool cumulative, std::int64_t u) {
  const GeneratingFunction function(m, n);
  const auto at = static_cast<Extended>(u);
  const Extended real = function.saddle(at);
  const Extended spread = std::sqrt(function.slopes(real).second);
  const auto sample = [&](Extended imaginary) {
    const Complex s(real, imaginary);
    const Complex value = function(s, at);
    return (cumulative ? value / complement(s) : value).real();
  };
  // The rule errs by the mass of the distribution a period of 2 pi / step and more away.
  constexpr Extended kNegligible = 0x1p-72L;
  constexpr Extended kSettled = 1e-10L;
  constexpr int kMostHalvings = 12;
  auto intervals = static_cast<std::int64_t>(8 * spread) + 4;
  Extended sum = sample(0) / 2;
  const auto add = [&](std::int64_t first, std::int64_t stride) {
    int quiet = 0;
    for (std::int64_t j = first; j <= intervals && quiet < 8; j += stride) {
      const Extended k = static_cast<Extended>(j);
      const Extended term = sample(k / static_cast<Extended>(intervals) * kPi);
      sum += j == intervals ? term / 2 : term;
      quiet = std::abs(term) * k <= kNegligible * std::abs(sum) ? quiet + 1 : 0;
    }
  };
  add(1, 1);
  for (int halving = 0; halving < kMostHalvings; ++halving) {
    const Extended coarse = sum;
    intervals *= 2;
    add(1, 2);
    // The error is squared with each halving.
    if (std::abs(sum - 2 * coarse) <= kSettled * std::abs(sum)) break;
  }
  return sum / static_cast<Extended>(intervals);
}

}  // namespace

std::vector<Extended> rankSumProbabilities(int m, int n, std::int64_t last) {
  const std::int64_t fewer = std::min(m, n);
  const std::int64_t more = std::max(m, n);
  std::vector<Extended> p(static_cast<std::size_t>(last) + 1);
  p[0] = 1;
  // With i values in the smaller sample the generating function has the factors
  // (1 - q^(more+i)) / (1 - q^i) i / (more+i). Up to the middle of its range each coefficient is
  // far from the differences that make it; the other half is the mirror image.
  const std::int64_t stages = std::min(fewer, last);
  for (std::int64_t i = 1; i <= stages; ++i) {
    const std::int64_t range = more * i;
    const auto middle = static_cast<std::size_t>(std::min(last, range / 2));
    const auto stride = static_cast<std::size_t>(i);
    for (std::size_t u = stride; u <= middle; ++u) p[u] += p[u - stride];
    const auto shift = static_cast<std::size_t>(more + i);
    for (std::size_t u = middle; u >= shift; --u) p[u] -= p[u - shift];
    const Extended weight = static_cast<Extended>(i) / static_cast<Extended>(more + i);
    for (std::size_t u = 0; u <= middle; ++u) p[u] *= weight;
    const auto end = static_cast<std::size_t>(std::min(last, range));
    for (std::size_t u = middle + 1; u <= end; ++u) p[u] = p[static_cast<std::size_t>(range) - u];
  }
  Extended weight = 1;  // of the factors that have no power of q up to the last
  for (std::int64_t i = stages + 1; i <= fewer; ++i)
    weight *= static_cast<Extended>(i) / static_cast<Extended>(more + i);
  for (Extended& v : p) v *= weight;
  return p;
}

bool isRankSumTableCheap(int m, int n, std::int64_t last) {
  const std::int64_t stages = std::min(m, n);
  return last < kAlwaysTable ||
         (stages <= kMostStages && last < kLongestTable && (last + 1) * stages <= kMostSteps);
}

Extended rankSumDensity(int m, int n, std::int64_t u) {
  const auto [fewer, more] = std::minmax(m, n);
  if (fewer <= kFew) return fewRanks(fewer, more, false, u);
  if (isRankSumTableCheap(m, n, u)) return rankSumProbabilities(m, n, u).back();
  return contour(fewer, more, false, u);
}

Extended rankSumLower(int m, int n, std::int64_t u) {
  const auto [fewer, more] = std::minmax(m, n);
  if (fewer <= kFew) return fewRanks(fewer, more, true, u);
  if (isRankSumTableCheap(m, n, u)) {
    const std::vector<Extended> p = rankSumProbabilities(m, n, u);
    return std::accumulate(p.begin(), p.end(), Extended{0});
  }
  return contour(fewer, more, true, u);
}

}  // namespace zel::kernels
