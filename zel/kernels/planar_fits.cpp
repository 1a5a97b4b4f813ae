#include "zel/kernels/planar_fits.h"

#include <algorithm>
#include <cmath>

#include "zel/kernels/lane_sums.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/sums.h"

namespace zel::kernels {

namespace {

using Points = std::span<const double>;

/// Whether sums of squares of deviations from a mean have kept their digits and leave room for
/// products of a few of them.
bool isModerate(DoubleDouble squares, Points x) {
  constexpr double kLimit = 0x1p120;
  if (!isFinite(squares)) return false;
  return squares.hi == 0 ? isConstant(x) : squares.hi > 1 / kLimit && squares.hi < kLimit;
}

/// What cancellation leaves of the sums is no more than this part of them.
template <class T>
bool isRounding(Twofold<T> difference, Twofold<T> of) {
  return std::abs(difference.hi) <= T(0x1p-90) * std::abs(of.hi);
}

template <class T>
double rounded(Twofold<T> a) {
  return static_cast<double>(a.hi);
}

/// The mean, rounded to a number: deviations from it need not sum up to 0.
template <class T>
T roundedMean(Points x) {
  if constexpr (std::is_same_v<T, double>) {
    return mean(x);
  } else {
    const auto s = sumsOf<SumTerms, T>(x, x)[0];
    return s.hi / static_cast<T>(x.size()) + s.lo / static_cast<T>(x.size());
  }
}

/// fit(Number) in double, and again in extended precision if `fits` refuses the sums.
template <class Fit>
auto inDoubleElseExtended(Fit&& fit) {
  const auto fast = fit(double{});
  return fast ? *fast : *fit(Extended{});
}

template <class T>
std::optional<ParabolaFit> parabolaIn(Points x, Points y) {
  const Centre<T> c{roundedMean<T>(x), roundedMean<T>(y)};
  const auto [su, su2, su3, su4] = sumsOf<CentredPowerTerms, T>(x, x, c);
  const auto [sv, sv2, suv, su2v] = sumsOf<CentredCrossTerms, T>(x, y, c);
  if constexpr (std::is_same_v<T, double>) {
    if (!isModerate(su2, x) || !isModerate(sv2, y)) return std::nullopt;
  }
  using Number = Twofold<T>;
  const auto n = twofoldOf<T>(x.size());
  const Number a = n * su2v - su2 * sv;
  const Number b = n * su3 - su * su2;
  const Number cross = n * suv - su * sv;
  const Number d = n * su2 - su * su;
  const Number e = n * su4 - su2 * su2;
  const Number determinant = d * e - b * b;
  const Number zero{0, 0};
  const Number c2 = isRounding(determinant, d * e) ? zero : (d * a - b * cross) / determinant;
  const Number c1 = isRounding(d, n * su2) ? zero : (cross - b * c2) / d;
  const Number c0 = (sv - c1 * su - c2 * su2) / n;
  const Number spread = sv2 - sv * sv / n;
  ParabolaFit fit;
  fit.k0 = rounded(c2 * c.x * c.x - c1 * c.x + c0 + Number{c.y, 0});
  fit.k1 = rounded(c1 - c2 * c.x * T(2));
  fit.k2 = rounded(c2);
  fit.determination = isRounding(spread, sv2)
                          ? 1
                          : rounded((c0 * sv + c1 * suv + c2 * su2v - sv * sv / n) / spread);
  return fit;
}

template <class T>
std::optional<std::optional<CircleFit>> circleIn(Points x, Points y) {
  const Centre<T> centre{roundedMean<T>(x), roundedMean<T>(y)};
  const Centre<T> exchanged{centre.y, centre.x};
  const auto ofU = sumsOf<CentredPowerTerms, T>(x, x, centre);
  const auto ofV = sumsOf<CentredPowerTerms, T>(y, y, exchanged);
  if constexpr (std::is_same_v<T, double>) {
    if (!isModerate(ofU[1], x) || !isModerate(ofV[1], y)) return std::nullopt;
  }
  using Number = Twofold<T>;
  const auto n = twofoldOf<T>(x.size());
  const auto& [su, su2, su3, su4] = ofU;
  const auto& [sv, sv2, sv3, sv4] = ofV;
  const auto crossed = sumsOf<CentredCrossTerms, T>(x, y, centre);
  const Number suv = crossed[2];
  const Number su2v = crossed[3];
  const Number suv2 = sumsOf<CentredCrossTerms, T>(y, x, exchanged)[3];
  const Number a = (su2 + sv2) * sv - n * (su2v + sv3);
  const Number b = sv * sv - n * sv2;
  const Number c = (su2 + sv2) * su - n * (suv2 + su3);
  const Number d = su * su - n * su2;
  const Number e = n * suv - su * sv;
  const Number determinant = b * d - e * e;
  if (isRounding(determinant, b * d)) return std::optional<CircleFit>();
  const Number u = (e * a + b * c) / (determinant * T(2));
  const Number v = (e * c + a * d) / (determinant * T(2));
  const Number square = u * u + v * v + (su2 + sv2 - (su * u + sv * v) * T(2)) / n;
  return CircleFit{rounded(Number{centre.x, 0} + u), rounded(Number{centre.y, 0} + v),
                   rounded(sqrt(square))};
}

void cut(Points& x, Points& y) {
  const std::size_t n = std::min(x.size(), y.size());
  x = x.first(n);
  y = y.first(n);
}

}  // namespace

ParabolaFit fitParabola(Points x, Points y) {
  cut(x, y);
  return inDoubleElseExtended([&](auto number) { return parabolaIn<decltype(number)>(x, y); });
}

std::optional<CircleFit> fitCircle(Points x, Points y) {
  cut(x, y);
  if (x.empty()) return std::nullopt;
  return inDoubleElseExtended([&](auto number) { return circleIn<decltype(number)>(x, y); });
}

}  // namespace zel::kernels
