#include "zel/kernels/incomplete_gamma.h"

#include <cmath>
#include <limits>

#include "zel/kernels/stirling.h"

namespace zel::kernels {

namespace {

constexpr Extended kPi = 3.141592653589793238462643383279502884197L;
constexpr Extended kRoundoff = std::numeric_limits<Extended>::epsilon() / 2;
// Where the table of the expansion reaches the roundoff.
constexpr Extended kLarge = 150;
constexpr Extended kNear = 0.3L;
// exp(-x) x^a is 0 beyond, in the widest format, for a up to kStirling.
constexpr Extended kBeyond = 1e5L;

struct Coefficients {
  unsigned count;
  Extended values[20];
};
constexpr Coefficients kTemme[] = {
#include "zel/kernels/temme.inc"
};

/// 1 + x/(a+1) + x^2/((a+1)(a+2)) + ...
Extended series(Extended a, Extended x) {
  Extended term = 1;
  Extended sum = 1;
  while (term > kRoundoff * sum) {
    a += 1;
    term *= x / a;
    sum += term;
  }
  return sum;
}

/// Q(a, x) / gammaPower(a, x).
Extended fraction(Extended a, Extended x) {
  constexpr int kMostSteps = 10000;
  const Extended first = x + 1 - a;
  Extended p = 0;
  Extended q = (x - 1 - a) * first;
  Extended r = 4 * first;
  Extended s = 1 - a;
  Extended rho = 0;
  Extended term = 1;
  Extended sum = 1;
  for (int k = 0; k < kMostSteps && std::abs(term) > kRoundoff * sum; ++k) {
    p += s;
    q += r;
    r += 8;
    s += 2;
    const Extended tau = p * (1 + rho);
    rho = tau / (q - tau);
    term *= rho;
    sum += term;
  }
  return sum / first;
}

/// The smaller tail by the uniform expansion; decline is ln(x/a) - (x/a - 1).
GammaTails uniform(Extended a, Extended excess, Extended decline) {
  const Extended z = std::sqrt(-decline * a);
  const Extended eta = std::copysign(std::sqrt(-2 * decline), excess);
  Extended sum = 0;
  Extended weight = 1;
  for (const auto& [count, values] : kTemme) {
    Extended power = 0;
    for (unsigned n = count; n-- > 0;) power = power * eta + values[n];
    sum += weight * power;
    weight /= a;
    if (weight < kRoundoff) break;
  }
  const Extended rest = std::exp(decline * a) / std::sqrt(2 * kPi * a) * sum;
  const Extended tail = std::erfc(z) / 2;
  if (excess > 0) return {1 - (tail + rest), tail + rest};
  return {tail - rest, 1 - (tail - rest)};
}

}  // namespace

Extended gammaPower(Extended a, Extended x) {
  if (a < kStirling) return x > kBeyond ? 0 : std::pow(x, a) * std::exp(-x) / std::tgamma(a);
  const Extended logarithm = a * logMinusLinear(x / a, (x - a) / a) - stirlingRemainder(a);
  return std::sqrt(a / (2 * kPi)) * std::exp(logarithm);
}

GammaTails incompleteGamma(Extended a, Extended x) {
  if (std::isnan(a + x)) return {a + x, a + x};
  if (x <= 0) return {0, 1};
  if (std::isinf(x)) return {1, 0};
  const Extended excess = (x - a) / a;
  if (a >= kLarge && std::abs(excess) <= kNear)
    return uniform(a, excess, logMinusLinear(x / a, excess));
  if (x < a + 1.5L) {
    const Extended lower = gammaPower(a, x) / a * series(a, x);
    return {lower, 1 - lower};
  }
  const Extended upper = gammaPower(a, x) * fraction(a, x);
  return {1 - upper, upper};
}

}  // namespace zel::kernels
