#include "zel/kernels/student_t.h"

#include <algorithm>
#include <cmath>

#include "zel/base/types.h"
#include "zel/kernels/incomplete_beta.h"

namespace zel::kernels {

namespace {

constexpr Extended kPi = 3.141592653589793238462643383279502884197L;
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
  Extended above = 1;
  Extended below = 1;
  for (; a < 40; a += 1) {
    above *= a;
    below *= a + 0.5L;
  }
  Extended sum = 0;
  const Extended w = 1 / a;
  for (auto c = std::rbegin(kCoefficients); c != std::rend(kCoefficients); ++c) sum = sum * w + *c;
  return above / below * std::sqrt(a) * sum;
}

/// The distribution with df degrees of freedom.
class Student {
 public:
  explicit Student(Extended df)
      : df_(df), power_(-(df + 1) / 2), peak_(gammaRatio(df / 2) / std::sqrt(df * kPi)) {}

  Extended density(Extended t) const {
    const Extended ratio = t / df_ * t;
    // A large logarithm would cost digits, a large power too.
    return peak_ * (ratio > 2 ? std::pow(1 + ratio, power_) : std::exp(power_ * std::log1p(ratio)));
  }

  /// P(0 < T < t) for small t: half the incomplete beta function of 1/2 and df/2 at
  /// t^2 / (df + t^2).
  Extended integralFromCentre(Extended t, Extended densityOfT) const {
    return t * densityOfT * betaSeries(0.5L, df_ / 2, t * t / (df_ + t * t));
  }

  /// P(T > t) for t not near 0: half the incomplete beta function of df/2 and 1/2 at
  /// df / (df + t^2).
  Extended tail(Extended t, Extended densityOfT) const {
    const Extended ratio = t / df_ * t;
    const Extended x = 1 / (1 + ratio);
    const Extended y = ratio * x;
    const Extended a = df_ / 2;
    return t * densityOfT * betaFraction(a, 0.5L, x, y, a * y - x / 2) / 2;
  }

  /// P(T > t), t >= 0.
  Extended upper(Extended t) const {
    return t * t < kCentre ? 0.5L - integralFromCentre(t, density(t)) : tail(t, density(t));
  }

 private:
  Extended df_;
  Extended power_;
  Extended peak_;
};

}  // namespace

double studentDensity(double t, double df) {
  return std::isinf(t) ? 0 : static_cast<double>(Student(df).density(t));
}

double studentIntegral(double t, double df) {
  if (std::isnan(t)) return t;
  if (std::isinf(t)) return t > 0 ? 1 : 0;
  const Extended beyond = Student(df).upper(std::abs(Extended{t}));
  return static_cast<double>(t < 0 ? beyond : 1 - beyond);
}

double studentQuantile(double p, double df) {
  // Both exact: the distance from the median, and the tail beyond the result.
  const Extended distance = std::abs(0.5L - Extended{p});
  const Extended q = std::min<Extended>(p, 1 - Extended{p});
  const Extended n = df;
  const Student student(n);
  Extended t = 0;
  if (distance < kNearMedian) {
    t = distance / student.density(0);
    for (int k = 0; k < kMostSteps; ++k) {
      // The integral is concave, so from the second step on t comes from below.
      const Extended density = student.density(t);
      const Extended step = (distance - student.integralFromCentre(t, density)) / density;
      t += step;
      if (std::abs(step) <= kEnough * t) break;
    }
  } else {
    // Over w = (df+1)/2 ln(1 + t^2/df) the logarithm of the tail is convex and almost a line, from
    // the normal distribution to Cauchy's, so w comes from below in few steps.
    t = std::sqrt(kCentre);
    for (int k = 0; k < kMostSteps; ++k) {
      const Extended density = student.density(t);
      const Extended beyond = student.tail(t, density);
      const Extended slope = density * (n / t + t) / ((n + 1) * beyond);
      const Extended step = std::log(beyond / q) / slope;
      const Extended w = (n + 1) / 2 * std::log1p(t / n * t) + step;
      t = std::sqrt(n * std::expm1(2 * w / (n + 1)));
      if (std::abs(step) <= kEnough) break;
    }
    const Extended density = student.density(t);
    t += (student.tail(t, density) - q) / density;
  }
  return static_cast<double>(p < 0.5 ? -t : t);
}

}  // namespace zel::kernels
