#include "zel/kernels/student_t.h"

#include <algorithm>
#include <cmath>

#include "zel/base/types.h"
#include "zel/kernels/incomplete_beta.h"
#include "zel/kernels/normal_tail.h"

namespace zel::kernels {

namespace {

constexpr Extended kPi = 3.141592653589793238462643383279502884197L;
// Below this square of t the series takes less than a hundred terms, and the integral from 0 is no
// more than 0.46.
constexpr Extended kCentre = 3;
// The quantile belongs to the series up to this distance from the median: its t is below the root
// of kCentre for every df (at df = 1 the integral there is 1/3).
constexpr Extended kNearMedian = 0.33L;
// A step of fourth order from this close leaves an error below the roundoff.
constexpr Extended kEnough = 3e-5L;
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

  /// The t with the integral from 0.
  Extended nearMedian(Extended integral) const {
    const Extended first = integral / peak_;
    Extended t = first + (df_ + 1) / (6 * df_) * first * first * first;
    for (int k = 0; k < kMostSteps; ++k) {
      const Extended densityOfT = density(t);
      const Extended residual = integral - integralFromCentre(t, densityOfT);
      const Extended step = quarticStep(t, residual / densityOfT);
      t += step;
      if (std::abs(step) <= kEnough * t) break;
    }
    return t;
  }

  /// The t beyond which lies q, for small q.
  Extended farOut(Extended q) const {
    // Over w = (df+1)/2 ln(1 + t^2/df) the logarithm of the tail is convex and almost a line, from
    // the normal distribution to Cauchy's, so from the second step on w comes from below, in few
    // steps. The first w follows from the normal quantile (Peizer and Pratt, J. Amer. Statist.
    // Assoc. 63 (1968) 1416).
    const Extended z = normalTail(q) / (df_ - 2 / 3.0L + 0.1L / df_);
    Extended t = fromLogarithm(z * z * (df_ - 5 / 6.0L));
    for (int k = 0; k < kMostSteps; ++k) {
      const Extended densityOfT = density(t);
      const Extended beyond = tail(t, densityOfT);
      const Extended residual = (beyond - q) / densityOfT;
      if (std::abs(beyond - q) <= kEnough * q) return t + quarticStep(t, residual);
      const Extended slope = densityOfT * (df_ / t + t) / ((df_ + 1) * beyond);
      const Extended step = std::log(beyond / q) / slope;
      t = fromLogarithm(std::log1p(t / df_ * t) + 2 * step / (df_ + 1));
    }
    return t;
  }

 private:
  /// The t with ln(1 + t^2/df) = v.
  Extended fromLogarithm(Extended v) const { return std::sqrt(df_ * std::expm1(v)); }

  /// How far t has to go for the integral to grow by the density times the residual, but for the
  /// residual's fourth power: the Taylor series of the quantile.
  Extended quarticStep(Extended t, Extended residual) const {
    const Extended scale = df_ + t * t;
    const Extended bend = (df_ + 1) * (t / scale);  // minus the logarithmic derivative
    const Extended change = (df_ + 1) / scale * ((df_ - t * t) / scale);
    const Extended cubic = (2 * bend * bend + change) / 3;
    return residual * (1 + residual / 2 * (bend + residual * cubic));
  }

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
  const Student student(df);
  const Extended t = distance < kNearMedian ? student.nearMedian(distance) : student.farOut(q);
  return static_cast<double>(p < 0.5 ? -t : t);
}

}  // namespace zel::kernels
