#include "zel/kernels/spline.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "zel/kernels/double_double.h"
#include "zel/kernels/scaling.h"
#include "zel/kernels/scratch.h"
#include "zel/kernels/sums.h"

namespace zel::kernels {

namespace {

/// The interval of strictly increasing knots that holds `at`; the last one also for their end.
std::size_t intervalOf(std::span<const double> x, double at) {
  const auto inner = x.subspan(1, x.size() - 2);
  return static_cast<std::size_t>(std::upper_bound(inner.begin(), inner.end(), at) - inner.begin());
}

/// A knot of the penalised spline. Lengths are in units of the mean spacing. The band matrix is
/// scaled so that its entries stay near 1 however uneven the spacing is.
struct Knot {
  DoubleDouble y{0, 0};
  DoubleDouble inverseWeight{0, 0};
  DoubleDouble step{0, 0};  // to the next knot
  DoubleDouble left{0, 0};  // weights of the neighbours in the straight line between them
  DoubleDouble right{0, 0};
  DoubleDouble scale{0, 0};  // half the harmonic mean of the two steps
  // LDL': the two entries of L below the pivot, and the first one times the pivot.
  DoubleDouble lower1{0, 0};
  DoubleDouble lower2{0, 0};
  DoubleDouble upper1{0, 0};
  DoubleDouble upper2{0, 0};
  DoubleDouble solution{0, 0};
  DoubleDouble second{0, 0};
};

/// Normalised data: x = x' 2^exponentX with steps in units of h, y = y' 2^exponentY.
struct System {
  std::vector<Knot> knots;  // and two empty ones behind them
  std::size_t n = 0;
  DoubleDouble h{0, 0};
  int exponentX = 0;
  int exponentY = 0;
};

System normalised(std::span<const double> x, std::span<const double> y, std::span<const double> w) {
  System s;
  s.n = x.size();
  s.exponentX = largestExponent(x);
  s.exponentY = largestExponent(y);
  s.knots.resize(s.n + 2);
  const auto place = [&](std::size_t i) { return std::ldexp(x[i], -s.exponentX); };
  s.h = twoDiff(place(s.n - 1), place(0)) / static_cast<double>(s.n - 1);
  for (std::size_t i = 0; i < s.n; ++i) {
    Knot& k = s.knots[i];
    k.y = {std::ldexp(y[i], -s.exponentY), 0};
    k.inverseWeight = DoubleDouble{1, 0} / w[i];
    if (i + 1 < s.n) k.step = twoDiff(place(i + 1), place(i)) / s.h;
    if (i == 0 || i + 1 == s.n) continue;
    const DoubleDouble before = s.knots[i - 1].step;
    const DoubleDouble both = before + k.step;
    k.left = k.step / both;
    k.right = before / both;
    k.scale = before * k.left;
  }
  return s;
}

/// Solves ((1 - s) R + s Q' W^-1 Q) c = Q' y, scaled, by LDL' and replaces y by the spline.
void smoothen(System& system, double s) {
  std::vector<Knot>& knots = system.knots;
  const std::size_t n = system.n;
  const DoubleDouble rest = twoDiff(1.0, s);
  const Knot none;
  for (std::size_t i = 1; i + 1 < n; ++i) {
    Knot& k = knots[i];
    const Knot& before = knots[i - 1];
    const Knot& after = knots[i + 1];
    const Knot& before2 = i > 1 ? knots[i - 2] : none;
    const DoubleDouble squares = k.left * k.left * before.inverseWeight + k.inverseWeight +
                                 k.right * k.right * after.inverseWeight;
    const DoubleDouble next = k.inverseWeight * after.left + k.right * after.inverseWeight;
    const DoubleDouble pivot = rest * k.scale * before.step * k.step / 3.0 + squares * s -
                               before.lower1 * before.upper1 - before2.lower2 * before2.upper2;
    k.upper1 =
        rest * k.scale * after.scale * k.step / 6.0 - next * s - before.lower1 * before.upper2;
    k.upper2 = k.right * knots[i + 2].left * after.inverseWeight * s;
    k.lower1 = k.upper1 / pivot;
    k.lower2 = k.upper2 / pivot;
    // Forward substitution; the division by the pivot is the one of the diagonal.
    k.second = k.left * before.y - k.y + k.right * after.y - before.upper1 * before.solution -
               before2.upper2 * before2.solution;
    k.solution = k.second / pivot;
  }
  for (std::size_t i = n - 1; i-- > 1;) {
    Knot& k = knots[i];
    k.solution = k.solution - k.lower1 * knots[i + 1].solution - k.lower2 * knots[i + 2].solution;
  }
  for (std::size_t i = 0; i < n; ++i) {
    Knot& k = knots[i];
    DoubleDouble bend = knots[i + 1].left * knots[i + 1].solution - k.solution;
    if (i > 0) bend = bend + knots[i - 1].right * knots[i - 1].solution;
    k.y = k.y - k.inverseWeight * bend * s;
    k.second = rest * k.scale * k.solution;
  }
}

/// Replaces y by the weighted regression line.
void straighten(System& system, std::span<const double> x, std::span<const double> w) {
  const std::size_t n = system.n;
  const Scratch scratch(3 * n);
  const std::span u(scratch.data(), n);
  const std::span v(scratch.data() + n, n);
  const std::span wu(scratch.data() + 2 * n, n);
  for (std::size_t i = 0; i < n; ++i) {
    u[i] = std::ldexp(x[i], -system.exponentX);
    v[i] = system.knots[i].y.hi;
  }
  const DoubleDouble weight = sum(w);
  const double centre = (sumOfProducts(w, u) / weight).hi;
  const double level = (sumOfProducts(w, v) / weight).hi;
  for (std::size_t i = 0; i < n; ++i) {
    u[i] -= centre;
    v[i] -= level;
    wu[i] = w[i] * u[i];
  }
  const DoubleDouble meanU = sumOfProducts(w, u) / weight;
  const DoubleDouble meanV = sumOfProducts(w, v) / weight;
  const DoubleDouble slope = (sumOfProducts(wu, v) - meanU * meanV * weight) /
                             (sumOfProducts(wu, u) - meanU * meanU * weight);
  const DoubleDouble constant = DoubleDouble{level, 0} + meanV - slope * meanU;
  // The rounded u would spoil the slopes between close neighbours.
  for (std::size_t i = 0; i < n; ++i)
    system.knots[i].y = constant + slope * twoDiff(std::ldexp(x[i], -system.exponentX), centre);
}

}  // namespace

void splineSecondDerivatives(std::span<const double> x, std::span<const double> y,
                             const SplineEnds& ends, std::span<double> second) {
  const std::size_t n = x.size();
  const Scratch scratch(n);
  double* upper = scratch.data();
  double step = x[1] - x[0];
  double slope = (y[1] - y[0]) / step;
  // Natural: the second derivative is 0; else the row is divided by its pivot, 2 * step.
  upper[0] = ends.first ? 0.5 : 0;
  second[0] = ends.first ? 3 * (slope - *ends.first) / step : 0;
  for (std::size_t i = 1; i + 1 < n; ++i) {
    const double nextStep = x[i + 1] - x[i];
    const double nextSlope = (y[i + 1] - y[i]) / nextStep;
    const double pivot = 2 * (step + nextStep) - step * upper[i - 1];
    upper[i] = nextStep / pivot;
    second[i] = (6 * (nextSlope - slope) - step * second[i - 1]) / pivot;
    step = nextStep;
    slope = nextSlope;
  }
  second[n - 1] =
      ends.last ? (6 * (*ends.last - slope) / step - second[n - 2]) / (2 - upper[n - 2]) : 0;
  for (std::size_t i = n - 1; i-- > 0;) second[i] -= upper[i] * second[i + 1];
}

double splineValue(std::span<const double> x, std::span<const double> y,
                   std::span<const double> second, double at) {
  if (std::isnan(at)) return at;
  const std::size_t i = intervalOf(x, at);
  const double step = x[i + 1] - x[i];
  const double slope = (y[i + 1] - y[i]) / step;
  if (at < x.front())
    return y[i] + (at - x[i]) * (slope - step / 6 * (2 * second[i] + second[i + 1]));
  if (at > x.back())
    return y[i + 1] + (at - x[i + 1]) * (slope + step / 6 * (second[i] + 2 * second[i + 1]));
  const double b = (at - x[i]) / step;
  const double a = (x[i + 1] - at) / step;
  // a^3 - a = -a b (1 + a), and so for b: no cancellation.
  const double bend = a * b * step / 6 * step * ((1 + a) * second[i] + (1 + b) * second[i + 1]);
  return a * y[i] + b * y[i + 1] - bend;
}

bool penalizedSpline(std::span<const double> x, std::span<const double> y,
                     std::span<const double> w, double smoothing, CubicPieces pieces) {
  System system = normalised(x, y, w);
  if (smoothing >= 1) {
    straighten(system, x, w);
  } else {
    smoothen(system, smoothing < 0 ? 0 : smoothing);
  }
  const std::size_t n = system.n;
  std::vector<double> all(4 * n);
  const auto store = [&](std::size_t part, std::size_t i, DoubleDouble value) {
    const int power = static_cast<int>(part);
    for (int k = 0; k < power; ++k) value = value / system.h;
    all[part * n + i] = std::ldexp(value.hi, system.exponentY - power * system.exponentX);
  };
  for (std::size_t i = 0; i < n; ++i) {
    const Knot& k = system.knots[i];
    store(0, i, k.y);
    store(2, i, k.second / 2.0);
    if (i + 1 == n) continue;
    const Knot& next = system.knots[i + 1];
    const DoubleDouble slope = (next.y - k.y) / k.step;
    store(1, i, slope - k.step * (k.second * 2.0 + next.second) / 6.0);
    store(3, i, (next.second - k.second) / k.step / 6.0);
    if (i + 2 == n) store(1, n - 1, slope + k.step * (k.second + next.second * 2.0) / 6.0);
  }
  if (!std::all_of(all.begin(), all.end(), [](double v) { return std::isfinite(v); })) return false;
  std::size_t part = 0;
  for (const auto& target : {pieces.a, pieces.b, pieces.c, pieces.d}) {
    std::copy_n(&all[n * part++], n, target.begin());
  }
  return true;
}

double piecewiseCubic(std::span<const double> x, const CubicPieces& pieces, double at) {
  if (std::isnan(at)) return at;
  const std::size_t i = at >= x.back() ? x.size() - 1 : intervalOf(x, at);
  const double u = at - x[i];
  if (u < 0 || i + 1 == x.size()) return pieces.a[i] + u * pieces.b[i];
  return pieces.a[i] + u * (pieces.b[i] + u * (pieces.c[i] + u * pieces.d[i]));
}

}  // namespace zel::kernels
