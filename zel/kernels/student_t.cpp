#include "zel/kernels/student_t.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "zel/base/types.h"

namespace zel::kernels {

namespace {

constexpr Extended kPi = 3.141592653589793238462643383279502884197L;
constexpr Extended kRoundoff = std::numeric_limits<Extended>::epsilon() / 2;
// Below this square of t the series takes less than a hundred terms, and the integral from 0 is no
// more than 0.46.
constexpr Extended kCentre = 3;
// The quantile belongs to the series up to this distance from the median: its t is below the root
// of kCentre for every df (at df = 1 the integral there is 1/3).
constexpr Extended kNearMedian = 0.33L;
// Newton's steps: this small, the next one is below the roundoff.
constexpr Extended kEnough = 1e-12L;
constexpr int kMostSteps = 200;

/// Gamma(a + 1/2) / Gamma(a): the asymptotic series in 1 / a, after a has been raised.
Extended gammaRatio(Extended a) {
  // 1 - 1/(8a) + 1/(128a^2) + 5/(1024a^3) - ... (Graham, Knuth and Patashnik, Concrete Mathematics,
  // 9.60); the first term left out is below 2^-68 for a >= 40.
  constexpr Extended kCoefficients[] = {1.0L,
                                        -1.0L / 8,
                                        1.0L / 128,
                                        5.0L / 1024,
                                        -21.0L / 32768,
                                        -399.0L / 262144,
                                        869.0L / 4194304,
                                        39325.0L / 33554432,
                                        -334477.0L / 2147483648,
                                        -28717403.0L / 17179869184,
                                        59697183.0L / 274877906944};
  Extended factor = 1;
  for (; a < 40; a += 1) factor *= a / (a + 0.5L);
  Extended sum = 0;
  for (auto c = std::rbegin(kCoefficients); c != std::rend(kCoefficients); ++c) sum = sum / a + *c;
  return factor * std::sqrt(a) * sum;
}

Extended density(Extended t, Extended df) {
  const Extended ratio = t / df * t;
  const Extended power = -(df + 1) / 2;
  // A large logarithm would cost digits, a large power too.
  const Extended decline =
      ratio > 2 ? std::pow(1 + ratio, power) : std::exp(power * std::log1p(ratio));
  return gammaRatio(df / 2) / std::sqrt(df * kPi) * decline;
}

/// P(0 < T < t) for small t: t times the density times 1 + (df+1)/3 y + (df+1)(df+3)/(3 5) y^2 +
/// ..., where y = t^2 / (df + t^2); all terms are positive.
Extended integralFromCentre(Extended t, Extended df) {
  const Extended y = t * t / (df + t * t);
  Extended term = 1;
  Extended sum = 1;
  for (int k = 1; term > sum * kRoundoff; ++k) {
    term *= y * (df + 2 * k - 1) / (2 * k + 1);
    sum += term;
  }
  return t * density(t, df) * sum;
}

/// P(T > t) for t not near 0: half the incomplete beta function of df/2 and 1/2 at df / (df + t^2),
/// by its even continued fraction with the terms
///   alpha_n = (a+n-1) (a+b+n-1) n (b-n) x^2 / (a+2n-1)^2,
///   beta_n  = n + n (b-n) x / (a+2n-1) + (a+n) / (a+2n+1) (lambda + 1 + n (1+y)),
/// where lambda = a y - b x, divided by a to keep them in range.
Extended tail(Extended t, Extended df) {
  const Extended ratio = t / df * t;
  const Extended a = df / 2;
  const Extended b = 0.5L;
  const Extended x = 1 / (1 + ratio);
  const Extended y = ratio / (1 + ratio);
  const Extended lambda = a * y - b * x;
  // Modified Lentz, where a zero is replaced by a tiny number (Thompson and Barnett, J. Comput.
  // Phys. 64 (1986) 490): f = beta_0 + alpha_1 / (beta_1 + alpha_2 / (beta_2 + ...)).
  const auto beta = [&](Extended n) {
    return n + n * (b - n) * x / (a + 2 * n - 1) +
           (a + n) / (a + 2 * n + 1) * (lambda + 1 + n * (1 + y));
  };
  const auto notZero = [](Extended v) { return v == 0 ? 1e-1000L : v; };
  Extended f = a / (a + 1) * (lambda + 1);  // beta_0, whose middle term is 0
  Extended c = f;
  Extended d = 0;
  for (int n = 1; n < 10000; ++n) {
    const Extended e = (a + n - 1) / (a + 2 * n - 1);
    const Extended alpha = e * ((a + b + n - 1) / (a + 2 * n - 1)) * n * (b - n) * x * x;
    d = 1 / notZero(beta(n) + alpha * d);
    c = notZero(beta(n) + alpha / c);
    const Extended step = c * d;
    f *= step;
    if (std::abs(step - 1) <= 2 * kRoundoff) break;
  }
  return t * density(t, df) / f / 2;
}

/// P(T > t), t >= 0.
Extended upper(Extended t, Extended df) {
  return t * t < kCentre ? 0.5L - integralFromCentre(t, df) : tail(t, df);
}

}  // namespace

double studentDensity(double t, double df) {
  return std::isinf(t) ? 0 : static_cast<double>(density(t, df));
}

double studentIntegral(double t, double df) {
  if (std::isnan(t)) return t;
  if (std::isinf(t)) return t > 0 ? 1 : 0;
  const Extended below = upper(std::abs(Extended{t}), df);
  return static_cast<double>(t < 0 ? below : 1 - below);
}

double studentQuantile(double p, double df) {
  // Both exact: the distance from the median, and the tail beyond the result.
  const Extended distance = std::abs(0.5L - Extended{p});
  const Extended q = std::min<Extended>(p, 1 - Extended{p});
  const Extended n = df;
  Extended t = 0;
  if (distance < kNearMedian) {
    t = distance / density(0, n);
    for (int k = 0; k < kMostSteps; ++k) {
      // The integral is concave, so from the second step on t comes from below.
      const Extended step = (distance - integralFromCentre(t, n)) / density(t, n);
      t += step;
      if (std::abs(step) <= kEnough * t) break;
    }
  } else {
    // Over w = (df+1)/2 ln(1 + t^2/df) the logarithm of the tail is convex and almost a line, from
    // the normal distribution to Cauchy's, so w comes from below in few steps.
    t = std::sqrt(kCentre);
    for (int k = 0; k < kMostSteps; ++k) {
      const Extended beyond = tail(t, n);
      const Extended slope = density(t, n) * (n / t + t) / ((n + 1) * beyond);
      const Extended step = std::log(beyond / q) / slope;
      const Extended w = (n + 1) / 2 * std::log1p(t / n * t) + step;
      t = std::sqrt(n * std::expm1(2 * w / (n + 1)));
      if (std::abs(step) <= kEnough) break;
    }
    t += (tail(t, n) - q) / density(t, n);
  }
  return static_cast<double>(p < 0.5 ? -t : t);
}

}  // namespace zel::kernels
