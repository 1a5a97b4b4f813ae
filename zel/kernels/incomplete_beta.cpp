#include "zel/kernels/incomplete_beta.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "zel/kernels/stirling.h"

namespace zel::kernels {

namespace {

constexpr Extended kPi = 3.141592653589793238462643383279502884197L;
constexpr Extended kRoundoff = std::numeric_limits<Extended>::epsilon() / 2;
// The expansion for large a and b reaches the roundoff in a dozen terms above kLarge, up to kNear
// of the smaller one from the mean. Elsewhere the fraction takes at most about 80 steps for large a
// and b, fewer far from the mean.
constexpr Extended kLarge = 2000;
constexpr Extended kNear = 0.1L;
// The fraction takes some 100 / (b x) steps where a is small, and the tail that it gives may be all
// but 1. A corner with a series of its own is cut off from the rest.
constexpr Extended kSmall = 2;
bool isCorner(Extended a, Extended b, Extended x) { return a < kSmall && b * x < 1 && x < 0.5L; }

/// a y - b x = a - (a + b) x = (a + b) y - b from the smaller of x and y, in twice the precision:
/// near the mean nothing of it would be left for large parameters.
Extended excess(Extended a, Extended b, Extended x, Extended y) {
  if (x > y) return -excess(b, a, y, x);
  constexpr Extended kSplitter = (1ULL << (std::numeric_limits<Extended>::digits + 1) / 2) + 1;
  const auto high = [](Extended v) {
    const Extended c = kSplitter * v;
    return c - (c - v);
  };
  const Extended n = a + b;
  const Extended restOfN = std::min(a, b) - (n - std::max(a, b));
  const Extended product = n * x;
  const Extended nHigh = high(n);
  const Extended xHigh = high(x);
  const Extended restOfProduct =
      ((nHigh * xHigh - product) + nHigh * (x - xHigh) + (n - nHigh) * xHigh) +
      (n - nHigh) * (x - xHigh);
  return (a - product) - (restOfProduct + restOfN * x);
}

/// a ln(x (a+b)/a) + b ln(y (a+b)/b), which is at most 0.
Extended exponent(Extended a, Extended b, Extended x, Extended y, Extended lambda) {
  const Extended n = a + b;
  return a * logMinusLinear(x * n / a, -lambda / a) + b * logMinusLinear(y * n / b, lambda / b);
}

/// stirlingRemainder(z+step) - stirlingRemainder(z), in proportion to the step.
Extended stirlingStep(Extended z, Extended step) {
  const Extended w = 1 / z;
  const Extended next = 1 / (z + step);
  const Extended square = w * w;
  const Extended change = -step * w * next;
  Extended sum = 0;
  Extended difference = 0;
  for (int k = stirlingTerms(z); k-- > 0;) {
    difference = difference * (next * next) + sum * (change * (w + next));
    sum = sum * square + kStirlingTerms[k];
  }
  return next * difference + sum * change;
}

/// Gamma(z) / (sqrt(2 pi) z^(z-1/2) e^-z) as a factor and the logarithm of another.
struct ScaledGamma {
  explicit ScaledGamma(Extended z) {
    if (z < kStirling) {
      factor = std::tgamma(z) * std::sqrt(z) / std::sqrt(2 * kPi);
      logarithm = z - z * std::log(z);
    } else {
      logarithm = stirlingRemainder(z);
    }
  }
  Extended factor = 1;
  Extended logarithm = 0;
};

/// The form of C. Loader (Fast and accurate computation of binomial probabilities, 2000): the peak
/// times the decline from it, which together lose no more than the size of the logarithm costs.
Extended power(Extended a, Extended b, Extended x, Extended y, Extended lambda) {
  const Extended n = a + b;
  if (n < kStirling) {
    const Extended decline = std::exp(a * std::log(x) + b * std::log(y));
    return std::tgamma(n) / (std::tgamma(a) * std::tgamma(b)) * decline;
  }
  const ScaledGamma ofA(a);
  const ScaledGamma ofB(b);
  const Extended root = std::sqrt(a / n * b / (2 * kPi));
  const Extended logarithm = stirlingRemainder(n) - ofA.logarithm - ofB.logarithm;
  return root / (ofA.factor * ofB.factor) * std::exp(exponent(a, b, x, y, lambda) + logarithm);
}

/// I_x(a, b) for a and b above kLarge and lambda between 0 and kNear times the smaller of them: the
/// expansion of DiDonato and Morris (their section 9, BASYM), in their notation.
Extended asymptotic(Extended a, Extended b, Extended x, Extended y, Extended lambda) {
  // Six to twelve are enough for these a and b, so the cube of their number that this costs is
  // small.
  constexpr std::size_t kTerms = 24;
  const Extended e0 = 2 / std::sqrt(kPi);
  const Extended e1 = 1 / std::sqrt(8.0L);
  const Extended h = std::min(a, b) / std::max(a, b);
  const Extended r0 = 1 / (1 + h);
  const Extended r1 = (b - a) / std::max(a, b);
  const Extended w0 = 1 / std::sqrt(std::min(a, b) * (1 + h));
  const Extended f = -exponent(a, b, x, y, lambda);
  const Extended bell = std::exp(-f);
  if (bell == 0) return 0;
  const Extended z = std::sqrt(f);
  std::array<Extended, kTerms + 1> a0{}, b0{}, c{}, d{};
  a0[0] = 2 * r1 / 3;
  c[0] = -a0[0] / 2;
  d[0] = -c[0];
  Extended j0 = std::erfc(z) / (2 * e0 * bell);
  Extended j1 = e1;
  Extended sum = j0 + d[0] * w0 * j1;
  Extended s = 1;
  Extended hPower = 1;
  Extended w = w0;
  Extended zOdd = z / e1 / 2;
  Extended zEven = 2 * f;
  for (std::size_t n = 2; n <= kTerms; n += 2) {
    const auto k = static_cast<Extended>(n);
    hPower *= h * h;
    a0[n - 1] = 2 * r0 * (1 + h * hPower) / (k + 2);
    s += hPower;
    a0[n] = 2 * r1 * s / (k + 3);
    for (std::size_t i = n; i <= n + 1; ++i) {
      const Extended r = -(static_cast<Extended>(i) + 1) / 2;
      b0[0] = r * a0[0];
      for (std::size_t m = 2; m <= i; ++m) {
        Extended inner = 0;
        for (std::size_t j = 1; j < m; ++j) {
          const auto factor = static_cast<Extended>(j) * r - static_cast<Extended>(m - j);
          inner += factor * a0[j - 1] * b0[m - j - 1];
        }
        b0[m - 1] = r * a0[m - 1] + inner / static_cast<Extended>(m);
      }
      c[i - 1] = b0[i - 1] / (static_cast<Extended>(i) + 1);
      Extended inner = 0;
      for (std::size_t j = 1; j < i; ++j) inner += d[i - j - 1] * c[j - 1];
      d[i - 1] = -(inner + c[i - 1]);
    }
    j0 = e1 * zOdd + (k - 1) * j0;
    j1 = e1 * zEven + k * j1;
    zOdd *= 2 * f;
    zEven *= 2 * f;
    w *= w0;
    const Extended even = d[n - 1] * w * j0;
    w *= w0;
    const Extended odd = d[n] * w * j1;
    sum += even + odd;
    if (std::abs(even) + std::abs(odd) <= kRoundoff * sum) break;
  }
  const Extended correction =
      stirlingRemainder(a + b) - stirlingRemainder(a) - stirlingRemainder(b);
  return e0 * bell * std::exp(correction) * sum;
}

/// ln Gamma(z+step) - ln Gamma(z) for step < kSmall, in proportion to the step however small it is.
Extended logGammaStep(Extended z, Extended step) {
  Extended product = 0;  // (1 + step/z) (1 + step/(z+1)) ... - 1
  for (; z < kStirling; z += 1) {
    const Extended ratio = step / z;
    product += ratio + product * ratio;
  }
  return (z - 0.5L) * std::log1p(step / z) + step * (std::log(z + step) - 1) +
         stirlingStep(z, step) - std::log1p(product);
}

/// Both tails in the corner: I_x(a, b) = x^a / (a B(a, b)) (1 + a s), where
/// s = sum of (1-b) (2-b) ... (n-b) x^n / (n! (a+n)). For small a the power is 1 + O(a).
BetaTails corner(Extended a, Extended b, Extended x) {
  Extended sum = 0;
  Extended term = 1;
  for (int k = 1; std::abs(term) > kRoundoff * std::abs(sum); ++k) {
    const Extended n = k;
    term *= (n - b) * x / n;
    sum += term / (a + n);
  }
  const Extended logarithm = a * std::log(x) + logGammaStep(b, a) - logGammaStep(1, a);
  const Extended power = std::exp(logarithm);
  const Extended rest = a * sum;
  return {power * (1 + rest), -std::expm1(logarithm) - power * rest};
}

/// I_x(a, b) where x is at most the mean: the tail that is the smaller one, more or less.
Extended tailBelowMean(Extended a, Extended b, Extended x, Extended y, Extended lambda) {
  const Extended least = std::min(a, b);
  if (least >= kLarge && lambda <= kNear * least) return asymptotic(a, b, x, y, lambda);
  return power(a, b, x, y, lambda) * betaFraction(a, b, x, y, lambda);
}

}  // namespace

Extended betaPower(Extended a, Extended b, Extended x, Extended y) {
  return power(a, b, x, y, excess(a, b, x, y));
}

Extended betaPower(Extended a, Extended b, Extended x, Extended y, Extended lambda) {
  return power(a, b, x, y, lambda);
}

Extended betaSeries(Extended a, Extended b, Extended x) {
  Extended term = 1;
  Extended sum = 1;
  Extended over = a + b;
  Extended under = a + 1;
  while (term > sum * kRoundoff) {
    term *= x * over / under;
    sum += term;
    over += 1;
    under += 1;
  }
  return sum;
}

Extended betaFraction(Extended a, Extended b, Extended x, Extended y, Extended lambda) {
  // 1 / f, f = beta_0 + alpha_1 / (beta_1 + alpha_2 / (beta_2 + ...)) with
  //   alpha_n = (a+n-1) (a+b+n-1) n (b-n) x^2 / (a+2n-1)^2,
  //   beta_n  = n + n (b-n) x / (a+2n-1) + (a+n) / (a+2n+1) (lambda + 1 + n (1+y)),
  // by the recurrences of numerators p and denominators q: one division a step.
  constexpr Extended kHuge = 1 / (std::numeric_limits<Extended>::epsilon() * 0x1p-300L);
  constexpr int kMostSteps = 10000;
  Extended reciprocal = 1 / (a + 1);
  Extended lastP = 1;
  Extended lastQ = 0;
  Extended p = a * reciprocal * (lambda + 1);
  Extended q = 1;
  for (int k = 1; k < kMostSteps; ++k) {
    const Extended n = k;
    const Extended bend = n * (b - n) * x * reciprocal;
    const Extended alpha = (a + n - 1) * ((a + b + n - 1) * reciprocal) * bend * x;
    reciprocal = 1 / (a + 2 * n + 1);
    const Extended beta = n + bend + (a + n) * reciprocal * (lambda + 1 + n * (1 + y));
    const Extended nextP = beta * p + alpha * lastP;
    const Extended nextQ = beta * q + alpha * lastQ;
    const Extended product = nextP * q;
    const bool settled = std::abs(product - p * nextQ) <= 2 * kRoundoff * std::abs(product);
    lastP = p;
    lastQ = q;
    p = nextP;
    q = nextQ;
    if (settled) break;
    if (std::abs(p) > kHuge) {
      const Extended scale = 1 / p;
      lastP *= scale;
      lastQ *= scale;
      q *= scale;
      p = 1;
    }
  }
  return q / p;
}

BetaTails incompleteBeta(Extended a, Extended b, Extended x, Extended y) {
  return incompleteBeta(a, b, x, y, excess(a, b, x, y));
}

BetaTails incompleteBeta(Extended a, Extended b, Extended x, Extended y, Extended lambda) {
  if (std::isnan(a + b + x + y)) return {a + b + x + y, a + b + x + y};
  if (x <= 0) return {0, 1};
  if (y <= 0) return {1, 0};
  if (isCorner(a, b, x)) return corner(a, b, x);
  if (isCorner(b, a, y)) {
    const auto [lower, upper] = corner(b, a, y);
    return {upper, lower};
  }
  if (lambda < 0) {
    const Extended upper = tailBelowMean(b, a, y, x, -lambda);
    return {1 - upper, upper};
  }
  const Extended lower = tailBelowMean(a, b, x, y, lambda);
  return {lower, 1 - lower};
}

}  // namespace zel::kernels
