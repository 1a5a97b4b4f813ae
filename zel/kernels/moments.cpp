#include "zel/kernels/moments.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "zel/kernels/lane_sums.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/split_sums.h"
#include "zel/kernels/sums.h"

namespace zel::kernels {

namespace {

/// sum of d^2 about the mean from the sums of d and d^2 about some centre; never negative.
template <class T>
Twofold<T> spread(Twofold<T> sum, Twofold<T> squares, Twofold<T> n) {
  const Twofold<T> s = squares - sum * sum / n;
  return s.hi > 0 ? s : Twofold<T>{0, 0};
}

template <class T, std::size_t k>
bool allFinite(const std::array<Twofold<T>, k>& sums) {
  return std::all_of(sums.begin(), sums.end(), [](const Twofold<T>& s) { return isFinite(s); });
}

template <class T>
Extended extendedMean(std::span<const T> x) {
  const auto sum = sumsOf<SumTerms, Extended>(x, x)[0];
  return sum.hi / static_cast<Extended>(x.size()) + sum.lo / static_cast<Extended>(x.size());
}

template <class T>
MeanVariance extendedMeanVariance(std::span<const T> x) {
  const Extended mean = extendedMean(x);
  const auto s = sumsOf<CentredMomentTerms, Extended>(x, x, {mean, 0});
  const auto n = static_cast<Extended>(x.size());
  if (!isFinite(s[0]) || !isFinite(s[1]))
    return {static_cast<double>(mean), static_cast<double>(s[1].hi / n)};
  return {static_cast<double>(mean),
          static_cast<double>((spread(s[0], s[1], {n, 0}) / (n - 1)).hi)};
}

/// Mean and variance from error-free sums.
template <class T>
MeanVariance accurateMeanVariance(std::span<const T> x) {
  const auto n = twofoldOf<double>(x.size());
  const auto raw = sumsOf<RawMomentTerms, double>(x, x);
  const auto [sum, squares] = raw;
  if (!allFinite(raw) || (squares.hi < kSmallSquares && !isConstant(x)))
    return extendedMeanVariance(x);
  const DoubleDouble mean = sum / n;
  DoubleDouble s = spread(sum, squares, n);
  // Not enough digits left beside the mean: once more about the mean. Without this step an offset
  // of 1e9 and unit spread would lose half of the digits (test MeanVariance.OffsetKeepsDigits).
  if (s.hi * 0x1p-55 < squares.hi * fastSumError(x.size())) {
    const auto centred = sumsOf<CentredMomentTerms, double>(x, x, {mean.hi, 0});
    if (!allFinite(centred) || (centred[1].hi < kSmallSquares && !isConstant(x)))
      return extendedMeanVariance(x);
    s = spread(centred[0], centred[1], n);
  }
  return {mean.hi, (s / static_cast<double>(x.size() - 1)).hi};
}

/// A centre for the fast sums, guessed from the first elements: 0 unless they lie far from it.
template <class T>
double guessedCentre(std::span<const T> x) {
  const auto [low, high] = std::minmax_element(x.begin(), x.begin() + 16);
  const double half = (static_cast<double>(*high) - static_cast<double>(*low)) / 2;
  const double middle = static_cast<double>(*low) + half;
  return std::abs(middle) <= 8 * half || !std::isfinite(middle) ? 0 : middle;
}

/// sum of d^2 about the mean where the fast sums give it to an ulp or two, else a negative number.
/// Deviations from a centre other than 0 are rounded; as long as the centre is within two standard
/// deviations of the mean, that changes the result by 2^-51 of itself at most, usually far less.
DoubleDouble fastSpread(const SplitMoments& m, DoubleDouble n, double centre) {
  const DoubleDouble s = spread(m.sum.value, m.squares.value, n);
  const double error = m.squares.error + 2 * std::abs(m.sum.value.hi) / n.hi * m.sum.error;
  const bool isGood = error <= 0x1p-55 * s.hi && (centre == 0 || m.squares.value.hi <= 4 * s.hi);
  return isGood ? s : DoubleDouble{-1, 0};
}

// From this length the fast sums beat the setting up of their unit.
constexpr std::size_t kLongSample = 128;

template <class T>
MeanVariance meanVarianceOf(std::span<const T> x) {
  if (x.size() < 3) return {mean(x), 1};
  if (x.size() < kLongSample) return accurateMeanVariance(x);
  const auto n = twofoldOf<double>(x.size());
  const double centre = guessedCentre(x);
  const SplitMoments m = splitMoments(x.data(), x.size(), centre);
  DoubleDouble average = DoubleDouble{centre, 0} + m.sum.value / n;
  const double roundings = centre == 0 ? 0 : 0x1p-53 * std::sqrt(m.squares.value.hi / n.hi);
  const double meanError = m.sum.error / n.hi + roundings;
  if (!(meanError <= 0x1p-55 * std::abs(average.hi))) {
    average = sum(x) / n;  // close to 0 beside the spread
    if (!isFinite(average)) return accurateMeanVariance(x);
  }
  if (m.squares.value.hi == 0 && isConstant(x)) return {average.hi, 0};
  DoubleDouble s = fastSpread(m, n, centre);
  if (s.hi < 0) s = fastSpread(splitMoments(x.data(), x.size(), average.hi), n, average.hi);
  if (s.hi < 0) return accurateMeanVariance(x);
  return {average.hi, (s / static_cast<double>(x.size() - 1)).hi};
}

/// Population skewness and kurtosis + 3 from the power sums about c; nothing if a step left the
/// range of T. The mean is mu = c + s1 / n; moving the moments there costs a few operations and
/// makes the result independent of how the centre was rounded.
template <class T>
struct StandardMoments {
  Twofold<T> skewness{0, 0};
  Twofold<T> kurtosis{3, 0};
};

template <class T>
StandardMoments<T> standardMoments(const Sums<CentredPowerTerms, T>& s, std::size_t count) {
  const auto n = twofoldOf<T>(count);
  const Twofold<T> m = s[0] / n;
  const Twofold<T> m2 = spread(s[0], s[1], n);
  const Twofold<T> mm = m * m;
  const Twofold<T> m3 = s[2] - m * s[1] * T(3) + mm * s[0] * T(2);
  const Twofold<T> m4 = s[3] - m * s[2] * T(4) + mm * s[1] * T(6) - mm * m * s[0] * T(3);
  const Twofold<T> variance = m2 / static_cast<T>(count - 1);
  if (variance.hi == 0) return {};
  return {m3 / n / (variance * sqrt(variance)), m4 / n / (variance * variance)};
}

template <class T>
Shape shapeFrom(const StandardMoments<T>& moments, std::size_t count, ShapeForm form) {
  const Twofold<T> three{3, 0};
  if (form == ShapeForm::population) {
    return {static_cast<double>(moments.skewness.hi),
            static_cast<double>((moments.kurtosis - three).hi)};
  }
  const auto n = twofoldOf<T>(count);
  const auto minus1 = twofoldOf<T>(count - 1);
  const auto minus2 = twofoldOf<T>(count - 2);
  const auto minus3 = twofoldOf<T>(count - 3);
  const Twofold<T> skewness = moments.skewness * n * n / (minus1 * minus2);
  const Twofold<T> kurtosis =
      moments.kurtosis * n * n * (n + Twofold<T>{1, 0}) / (minus1 * minus2 * minus3) -
      minus1 * minus1 * T(3) / (minus2 * minus3);
  return {static_cast<double>(skewness.hi), static_cast<double>(kurtosis.hi)};
}

// Fourth powers below this may have lost digits to underflow, and so the results made from them.
constexpr double kSmallFourthPowers = 0x1p-850;

template <class T>
Shape shapeOf(std::span<const T> x, ShapeForm form, std::size_t least) {
  if (x.size() < least) return {};
  const auto s = sumsOf<CentredPowerTerms, double>(x, x, {mean(x), 0});
  if (allFinite(s) && (s[3].hi >= kSmallFourthPowers || isConstant(x))) {
    const auto moments = standardMoments<double>(s, x.size());
    if (isFinite(moments.skewness) && isFinite(moments.kurtosis))
      return shapeFrom(moments, x.size(), form);
  }
  const auto wide = sumsOf<CentredPowerTerms, Extended>(x, x, {extendedMean(x), 0});
  if (!allFinite(wide)) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    return {nan, nan};
  }
  return shapeFrom(standardMoments<Extended>(wide, x.size()), x.size(), form);
}

/// Moves sums of products of deviations from rounded means to the exact means.
template <class T>
void moveToMeans(Sums<CentredProductTerms, T>& s, Twofold<T> n) {
  s[4] = s[4] - s[0] * s[1] / n;
  s[2] = spread(s[0], s[2], n);
  s[3] = spread(s[1], s[3], n);
}

template <class T>
CentredProducts centredProductsOf(std::span<const T> x, std::span<const T> y) {
  const std::size_t count = std::min(x.size(), y.size());
  if (count == 0) return {};
  x = x.first(count);
  y = y.first(count);
  const auto n = twofoldOf<double>(count);
  const DoubleDouble meanX = sum(x) / n;
  const DoubleDouble meanY = sum(y) / n;
  auto s = sumsOf<CentredProductTerms, double>(x, y, {meanX.hi, meanY.hi});
  moveToMeans(s, n);
  return {meanX, meanY, s[2], s[3], s[4]};
}

template <class T>
double correlation(Twofold<T> xx, Twofold<T> yy, Twofold<T> xy) {
  if (xx.hi == 0 || yy.hi == 0) return 0;
  // Two roots, so that the product of two large or tiny spreads stays in the range.
  const auto r = static_cast<double>((xy / (sqrt(xx) * sqrt(yy))).hi);
  return std::isnan(r) ? r : std::clamp(r, -1.0, 1.0);
}

template <class T>
double pearson(std::span<const T> x, std::span<const T> y) {
  if (x.size() != y.size() || x.size() < 2) return 0;
  const CentredProducts c = centredProductsOf(x, y);
  const bool isInRange = isFinite(c.xx) && isFinite(c.yy) && isFinite(c.xy);
  if (isInRange && (c.xx.hi >= kSmallSquares || isConstant(x)) &&
      (c.yy.hi >= kSmallSquares || isConstant(y))) {
    return correlation(c.xx, c.yy, c.xy);
  }
  auto wide = sumsOf<CentredProductTerms, Extended>(x, y, {extendedMean(x), extendedMean(y)});
  if (!allFinite(wide)) return std::numeric_limits<double>::quiet_NaN();
  moveToMeans(wide, twofoldOf<Extended>(x.size()));
  return correlation(wide[2], wide[3], wide[4]);
}

}  // namespace

MeanVariance meanVariance(std::span<const double> x) { return meanVarianceOf(x); }
MeanVariance meanVariance(std::span<const std::int32_t> x) { return meanVarianceOf(x); }

Shape shape(std::span<const double> x, ShapeForm form, std::size_t least) {
  return shapeOf(x, form, least);
}
Shape shape(std::span<const std::int32_t> x, ShapeForm form, std::size_t least) {
  return shapeOf(x, form, least);
}

CentredProducts centredProducts(std::span<const double> x, std::span<const double> y) {
  return centredProductsOf(x, y);
}
CentredProducts centredProducts(std::span<const std::int32_t> x, std::span<const std::int32_t> y) {
  return centredProductsOf(x, y);
}

double pearsonCorrelation(std::span<const double> x, std::span<const double> y) {
  return pearson(x, y);
}
double pearsonCorrelation(std::span<const std::int32_t> x, std::span<const std::int32_t> y) {
  return pearson(x, y);
}

}  // namespace zel::kernels
