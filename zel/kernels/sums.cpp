#include "zel/kernels/sums.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "zel/kernels/lane_sums.h"
#include "zel/kernels/split_sums.h"

namespace zel::kernels {

namespace {

/// Some product x * y is so small that it, or its rounding error, underflowed.
template <class T>
bool hasTinyProduct(std::span<const T> x, std::span<const T> y) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (x[i] == 0 || y[i] == 0) continue;
    if (std::abs(static_cast<double>(x[i]) * static_cast<double>(y[i])) < kSmallSquares)
      return true;
  }
  return false;
}

/// A sum of two factors: the fast one if it stayed in the double range, else the extended one.
template <class Terms, class T>
bool isReliable(DoubleDouble fast, std::span<const T> x, std::span<const T> y) {
  if (!isFinite(fast)) return false;
  if constexpr (std::is_same_v<Terms, SumTerms>) {
    return true;
  } else if constexpr (std::is_same_v<Terms, SquaredDifferenceTerms>) {
    return fast.hi >= kSmallSquares || std::equal(x.begin(), x.end(), y.begin());
  } else {
    return std::abs(fast.hi) >= kSmallSquares || !hasTinyProduct(x, y);
  }
}

// From this length the fast sum beats the setting up of its unit.
constexpr std::size_t kLongSum = 128;

template <class Terms, class T>
DoubleDouble fastSum(std::span<const T> x, std::span<const T> y) {
  if constexpr (std::is_same_v<Terms, SumTerms>) {
    if (x.size() >= kLongSum) {
      const BoundedSum split = splitSum(x.data(), x.size());
      if (split.error <= 0x1p-57 * std::abs(split.value.hi)) return split.value;
    }
  }
  return sumsOf<Terms, double>(x, y)[0];
}

template <class Terms, class T>
Twofold<Extended> extended(std::span<const T> x, std::span<const T> y) {
  return sumsOf<Terms, Extended>(x, y)[0];
}

/// What does not fit in a double becomes what conversion makes of it.
DoubleDouble narrowed(Twofold<Extended> a) {
  const double hi = static_cast<double>(a.hi);
  if (!std::isfinite(hi)) return {hi, 0};
  return fastTwoSum(hi, static_cast<double>((a.hi - static_cast<Extended>(hi)) + a.lo));
}

template <class Terms, class T>
DoubleDouble one(std::span<const T> x, std::span<const T> y) {
  const DoubleDouble fast = fastSum<Terms>(x, y);
  return isReliable<Terms>(fast, x, y) ? fast : narrowed(extended<Terms>(x, y));
}

template <class Terms, class T>
double root(std::span<const T> x, std::span<const T> y) {
  const DoubleDouble fast = fastSum<Terms>(x, y);
  if (isReliable<Terms>(fast, x, y)) return sqrt(fast).hi;
  const Twofold<Extended> slow = extended<Terms>(x, y);
  return static_cast<double>(std::isfinite(slow.hi) ? sqrt(slow).hi : std::sqrt(slow.hi));
}

template <class T>
double meanOf(std::span<const T> x) {
  if (x.empty()) return 0;
  const DoubleDouble fast = fastSum<SumTerms>(x, x);
  if (isFinite(fast)) {
    const double quotient = (fast / twofoldOf<double>(x.size())).hi;
    if (std::isfinite(quotient)) return quotient;  // not if the sum is next to the largest double
  }
  const Twofold<Extended> slow = extended<SumTerms>(x, x);
  const auto n = static_cast<Extended>(x.size());
  return static_cast<double>(slow.hi / n + slow.lo / n);
}

/// Cuts both spans to the shorter length.
template <class T>
void cut(std::span<const T>& x, std::span<const T>& y) {
  const std::size_t n = std::min(x.size(), y.size());
  x = x.first(n);
  y = y.first(n);
}

/// Keeps the x[i + shift] and y[i] that both exist.
template <class T>
void overlap(std::span<const T>& x, std::span<const T>& y, std::int64_t shift) {
  // In unsigned arithmetic, so that no shift overflows.
  const auto magnitude =
      shift < 0 ? 0 - static_cast<std::uint64_t>(shift) : static_cast<std::uint64_t>(shift);
  std::span<const T>& moved = shift < 0 ? y : x;
  moved = moved.subspan(static_cast<std::size_t>(std::min<std::uint64_t>(magnitude, moved.size())));
  cut(x, y);
}

template <class T>
std::optional<double> harmonicMeanOf(std::span<const T> x) {
  if (std::any_of(x.begin(), x.end(), [](T v) { return v <= 0; })) return std::nullopt;
  if (x.empty()) return 0.0;
  DoubleDouble sum{0, 0};
  bool isSafe = true;
  for (const T v : x) {
    const auto value = static_cast<double>(v);
    isSafe = isSafe && value > 0x1p-900 && value < 0x1p900;
    const double r = 1 / value;
    const DoubleDouble back = twoProduct(r, value);
    sum = add(sum, fastTwoSum(r, ((1 - back.hi) - back.lo) * r));
  }
  if (isSafe) return (twofoldOf<double>(x.size()) / sum).hi;
  Twofold<Extended> wide{0, 0};
  for (const T v : x) {
    const Twofold<Extended> t = twoSum(wide.hi, 1 / static_cast<Extended>(v));
    wide = {t.hi, std::isfinite(t.hi) ? wide.lo + t.lo : 0};
  }
  return static_cast<double>(static_cast<Extended>(x.size()) / (wide.hi + wide.lo));
}

template <class T>
std::optional<double> geometricMeanOf(std::span<const T> x) {
  if (std::any_of(x.begin(), x.end(), [](T v) { return v < 0; })) return std::nullopt;
  if (std::any_of(x.begin(), x.end(), [](T v) { return v == 0; })) return 0.0;
  if (x.empty()) return 1.0;
  // The product of all elements as significand * 2^exponent.
  DoubleDouble significand{1, 0};
  std::int64_t exponent = 0;
  double special = 0;
  for (const T v : x) {
    const auto value = static_cast<double>(v);
    if (!std::isfinite(value)) {
      special += value;
      continue;
    }
    int e = 0;
    significand = multiply(significand, std::frexp(value, &e));
    exponent += e;
    if (significand.hi < 0.5) {
      significand = {2 * significand.hi, 2 * significand.lo};
      --exponent;
    }
  }
  if (special != 0) return special;
  // 2^(exponent / n) is split into a whole power of two, which is exact, and a rest within half a
  // bit.
  const auto n = static_cast<std::int64_t>(x.size());
  const std::int64_t whole = (exponent >= 0 ? exponent + n / 2 : exponent - n / 2) / n;
  const std::int64_t rest = exponent - whole * n;
  constexpr Extended kLn2 = 0.693147180559945309417232121458176568L;
  const Extended logarithm =
      std::log(static_cast<Extended>(significand.hi)) +
      static_cast<Extended>(significand.lo) / static_cast<Extended>(significand.hi) +
      static_cast<Extended>(rest) * kLn2;
  const Extended root = std::exp(logarithm / static_cast<Extended>(n));
  return static_cast<double>(std::ldexp(root, static_cast<int>(whole)));
}

}  // namespace

DoubleDouble sum(std::span<const double> x) { return one<SumTerms>(x, x); }
DoubleDouble sum(std::span<const std::int32_t> x) { return one<SumTerms>(x, x); }

DoubleDouble sumOfSquares(std::span<const double> x) { return one<SquareTerms>(x, x); }
DoubleDouble sumOfSquares(std::span<const std::int32_t> x) { return one<SquareTerms>(x, x); }

DoubleDouble sumOfProducts(std::span<const double> x, std::span<const double> y) {
  cut(x, y);
  return one<ProductTerms>(x, y);
}
DoubleDouble sumOfProducts(std::span<const std::int32_t> x, std::span<const std::int32_t> y) {
  cut(x, y);
  return one<ProductTerms>(x, y);
}

DoubleDouble sumOfSquaredDifferences(std::span<const double> x, std::span<const double> y) {
  cut(x, y);
  return one<SquaredDifferenceTerms>(x, y);
}
DoubleDouble sumOfSquaredDifferences(std::span<const std::int32_t> x,
                                     std::span<const std::int32_t> y) {
  cut(x, y);
  return one<SquaredDifferenceTerms>(x, y);
}

double sumOfMagnitudes(std::span<const double> x) {
  std::array<double, 1024> magnitudes;
  DoubleDouble total{0, 0};
  while (!x.empty()) {
    const auto part = x.first(std::min(x.size(), magnitudes.size()));
    std::transform(part.begin(), part.end(), magnitudes.begin(),
                   [](double v) { return std::fabs(v); });
    const DoubleDouble next = sum(std::span<const double>(magnitudes).first(part.size()));
    const DoubleDouble longer = add(total, next);
    // Beyond the range of double the parts add up to infinity (or stay not-a-number).
    total = isFinite(longer) ? longer : DoubleDouble{total.hi + next.hi, 0};
    x = x.subspan(part.size());
  }
  return total.hi;
}

double mean(std::span<const double> x) { return meanOf(x); }
double mean(std::span<const std::int32_t> x) { return meanOf(x); }

double euclideanNorm(std::span<const double> x) { return root<SquareTerms>(x, x); }
double euclideanNorm(std::span<const std::int32_t> x) { return root<SquareTerms>(x, x); }

double euclideanDistance(std::span<const double> x, std::span<const double> y) {
  cut(x, y);
  return root<SquaredDifferenceTerms>(x, y);
}
double euclideanDistance(std::span<const std::int32_t> x, std::span<const std::int32_t> y) {
  cut(x, y);
  return root<SquaredDifferenceTerms>(x, y);
}

double shiftedCrossProduct(std::span<const double> x, std::span<const double> y,
                           std::int64_t shift) {
  overlap(x, y, shift);
  return x.size() < 2 ? 0 : sumOfProducts(x, y).hi;
}

std::int64_t integerSum(std::span<const std::int32_t> x) {
  std::uint64_t total = 0;
  for (const std::int32_t v : x) total += static_cast<std::uint64_t>(v);
  return static_cast<std::int64_t>(total);
}

std::int64_t integerSumOfProducts(std::span<const std::int32_t> x,
                                  std::span<const std::int32_t> y) {
  cut(x, y);
  std::uint64_t total = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    total += static_cast<std::uint64_t>(std::int64_t{x[i]} * std::int64_t{y[i]});
  }
  return static_cast<std::int64_t>(total);
}

std::int64_t integerShiftedCrossProduct(std::span<const std::int32_t> x,
                                        std::span<const std::int32_t> y, std::int64_t shift) {
  overlap(y, x, shift);
  return integerSumOfProducts(x, y);
}

std::optional<double> harmonicMean(std::span<const double> x) { return harmonicMeanOf(x); }
std::optional<double> harmonicMean(std::span<const std::int32_t> x) { return harmonicMeanOf(x); }

std::optional<double> geometricMean(std::span<const double> x) { return geometricMeanOf(x); }
std::optional<double> geometricMean(std::span<const std::int32_t> x) { return geometricMeanOf(x); }

}  // namespace zel::kernels
