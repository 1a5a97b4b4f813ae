#include "zel/kernels/regression.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "zel/kernels/minmax.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/scaling.h"

namespace zel::kernels {

namespace {

/// x = values * 2^exponent, where squares of the values stay in the double range. Only data of
/// extreme magnitude are copied.
class Normalised {
 public:
  explicit Normalised(std::span<const double> x) : FValues(x) {
    const int e = beyondHarmless(largestExponent(x));
    if (e == 0) return;
    FExponent = e;
    FCopy.reserve(x.size());
    for (const double v : x) FCopy.push_back(std::ldexp(v, -e));
    FValues = FCopy;
  }
  Normalised(const Normalised&) = delete;
  Normalised& operator=(const Normalised&) = delete;
  [[nodiscard]] std::span<const double> values() const { return FValues; }
  [[nodiscard]] int exponent() const { return FExponent; }

 private:
  std::span<const double> FValues;
  std::vector<double> FCopy;
  int FExponent = 0;
};

ExtendedPair scaled(DoubleDouble v, int exponent) {
  const ExtendedPair wide = twoSum(Extended{v.hi}, Extended{v.lo});
  return {std::ldexp(wide.hi, exponent), std::ldexp(wide.lo, exponent)};
}

double limited(DoubleDouble quality) {
  return std::isnan(quality.hi) ? quality.hi : std::clamp(quality.hi, 0.0, 1.0);
}

}  // namespace

LineFit fitLine(std::span<const double> x, std::span<const double> y) {
  const Normalised u(x);
  const Normalised v(y);
  const CentredProducts c = centredProducts(u.values(), v.values());
  // The deviations of constant data from their rounded mean are not 0.
  const bool isLevel = isConstant(y);
  const DoubleDouble slope = isLevel ? DoubleDouble{0, 0} : c.xy / c.xx;
  return {isLevel ? ExtendedPair{y.front(), 0} : scaled(c.meanY - slope * c.meanX, v.exponent()),
          scaled(slope, v.exponent() - u.exponent()), isLevel ? 1 : limited(slope * c.xy / c.yy)};
}

PlaneFit fitPlane(std::span<const double> x1, std::span<const double> x2,
                  std::span<const double> y) {
  const Normalised u1(x1);
  const Normalised u2(x2);
  const Normalised v(y);
  const CentredProducts with1 = centredProducts(u1.values(), v.values());
  const CentredProducts with2 = centredProducts(u2.values(), v.values());
  const CentredProducts both = centredProducts(u1.values(), u2.values());
  // x2 less its regression on x1; what rounding leaves of a collinear x2 is far below the limit.
  const DoubleDouble slope21 = both.xy / both.xx;
  const DoubleDouble rest22 = both.yy - slope21 * both.xy;
  const DoubleDouble rest2y = with2.xy - slope21 * with1.xy;
  PlaneFit fit{};
  fit.singular = isConstant(x1) || isConstant(x2) || rest22.hi <= both.yy.hi * 0x1p-90;
  const bool isLevel = isConstant(y);
  const DoubleDouble slope2 = isLevel ? DoubleDouble{0, 0} : rest2y / rest22;
  const DoubleDouble slope1 =
      isLevel ? DoubleDouble{0, 0} : (with1.xy - slope2 * both.xy) / both.xx;
  fit.slope1 = scaled(slope1, v.exponent() - u1.exponent());
  fit.slope2 = scaled(slope2, v.exponent() - u2.exponent());
  fit.constant =
      isLevel ? ExtendedPair{y.front(), 0}
              : scaled(with1.meanY - slope1 * both.meanX - slope2 * both.meanY, v.exponent());
  fit.quality = isLevel ? 1 : limited((slope1 * with1.xy + slope2 * with2.xy) / with1.yy);
  const double perPair = rest22.hi / static_cast<double>(y.size());
  fit.part2 = std::ldexp(std::abs(slope2.hi) * std::sqrt(std::max(perPair, 0.0)), v.exponent());
  return fit;
}

}  // namespace zel::kernels
