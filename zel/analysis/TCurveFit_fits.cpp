// Fits that are linear least squares after a transformation of the variables.
//
// A transformed value is taken as its difference from that of a reference value in the data: the
// logarithm of x / r, not ln x, and r / x - 1, not 1 / x. Both are precise to a few ulps of
// themselves, so that data with a large offset keep all their digits (test
// Fits.LargeOffsetsKeepDigits).

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "zel/analysis/TCurveFit.h"
#include "zel/base/errors.h"
#include "zel/kernels/regression.h"
#include "zel/kernels/scaling.h"
#include "zel/kernels/sums.h"

namespace zel {

namespace {

using kernels::ExtendedPair;
using Data = std::span<const double>;

constexpr Extended kTiny = 1e-30L;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

enum class Form { plain, logarithm, reciprocal };

/// ln(x / r) for positive x and r.
double logRatio(double x, double r) {
  if (x >= r / 2 && x <= r * 2) return std::log1p((x - r) / r);
  return static_cast<double>(std::log(Extended{x} / r));
}

/// ln(x / r) - (x - r) / r for positive x and r.
double logRatioBend(double x, double r) {
  const double d = (x - r) / r;
  if (std::abs(d) < 0.01) {
    // ln(1 + d) - d = -d^2 / 2 + d^3 / 3 - ...; what is left out is below 2^-56 of the sum.
    double sum = 0;
    for (int k = 10; k >= 2; --k) sum = 1.0 / k - d * sum;
    return -d * d * sum;
  }
  const Extended wide = (Extended{x} - r) / r;
  return static_cast<double>((wide < -0.5L ? std::log(Extended{x} / r) : std::log1p(wide)) - wide);
}

/// The value of the form at x is (offset + values[i]) * scale.
struct Transformed {
  Transformed(Data x, Form form) : values(x) {
    if (form == Form::plain) return;
    storage.reserve(x.size());
    if (form == Form::logarithm) {
      const double r = x.front();
      offset = std::log(Extended{r});
      for (const double v : x) storage.push_back(logRatio(v, r));
    } else {
      // The smallest magnitude, so that no difference underflows; halves, so that none overflows.
      const double r = *std::min_element(
          x.begin(), x.end(), [](double a, double b) { return std::abs(a) < std::abs(b); });
      offset = 1;
      scale = 1 / Extended{r};
      for (const double v : x) storage.push_back((r / 2 - v / 2) / (v / 2));
    }
    values = storage;
  }
  Transformed(const Transformed&) = delete;
  Transformed& operator=(const Transformed&) = delete;

  std::vector<double> storage;
  Data values;
  Extended offset = 0;
  Extended scale = 1;
};

/// The pairs of one fit and the name that its messages begin with.
struct Fit {
  const char* routine;
  Data x;
  Data y;

  [[noreturn]] void fail(const char* reason) const {
    throw EZELMath2Error(std::string(routine) + ": " + reason);
  }
  void requirePairs(std::size_t least) const {
    if (x.size() < least) fail("not enough data points");
  }
  void requireForm(Form formOfX, Form formOfY) const {
    const auto notPositive = [](double v) { return v <= 0; };
    const auto isZero = [](double v) { return std::abs(v) <= kTiny; };
    if (formOfX == Form::logarithm && std::any_of(x.begin(), x.end(), notPositive))
      fail("all x values must be positive");
    if (formOfX == Form::reciprocal && std::any_of(x.begin(), x.end(), isZero))
      fail("x values must not be zero");
    if (formOfY == Form::logarithm && std::any_of(y.begin(), y.end(), notPositive))
      fail("all y values must be positive");
    if (formOfY == Form::reciprocal && std::any_of(y.begin(), y.end(), isZero))
      fail("y values must not be zero");
  }
  [[nodiscard]] bool isFinite() const {
    const auto finite = [](double v) { return std::isfinite(v); };
    return std::all_of(x.begin(), x.end(), finite) && std::all_of(y.begin(), y.end(), finite);
  }
  void requireDifferentX() const {
    if (std::all_of(x.begin(), x.end(), [&](double v) { return v == x.front(); }))
      fail("all x values are equal");
  }
  void requireThreeDifferentX() const {
    requireDifferentX();
    const double second =
        *std::find_if(x.begin(), x.end(), [&](double v) { return v != x.front(); });
    if (std::all_of(x.begin(), x.end(), [&](double v) { return v == x.front() || v == second; }))
      fail("fewer than three different x values");
  }
};

struct Line {
  Extended constant;
  Extended slope;
  double quality;
};

/// The line through the transformed pairs.
Line lineThrough(const Fit& fit, Form formOfX, Form formOfY) {
  fit.requirePairs(2);
  fit.requireForm(formOfX, formOfY);
  if (!fit.isFinite()) return {kNaN, kNaN, kNaN};
  fit.requireDifferentX();
  const Transformed u(fit.x, formOfX);
  const Transformed v(fit.y, formOfY);
  const auto line = kernels::fitLine(u.values, v.values);
  const ExtendedPair constant =
      line.constant + ExtendedPair{v.offset, 0} - line.slope * ExtendedPair{u.offset, 0};
  return {(constant * v.scale).hi, line.slope.hi * v.scale / u.scale, line.quality};
}

void storeLine(const Line& line, double& k0, double& k1, double& FitQual) {
  k0 = static_cast<double>(line.constant);
  k1 = static_cast<double>(line.slope);
  FitQual = line.quality;
}

void clear(double& k0, double& k1, double& FitQual) { k0 = k1 = FitQual = 0; }

}  // namespace

void TCurveFit::CalcReciLinFit(double& k0, double& k1, double& FitQual) const {
  clear(k0, k1, FitQual);
  const Fit fit{"CalcReciLinFit", Values(1), Values(2)};
  storeLine(lineThrough(fit, Form::plain, Form::reciprocal), k0, k1, FitQual);
}

void TCurveFit::CalcHyperbolFit(double& k0, double& k1, double& FitQual) const {
  clear(k0, k1, FitQual);
  const Fit fit{"CalcHyperbolFit", Values(1), Values(2)};
  storeLine(lineThrough(fit, Form::reciprocal, Form::plain), k0, k1, FitQual);
}

void TCurveFit::CalcReciHyperbolFit(double& k0, double& k1, double& FitQual) const {
  clear(k0, k1, FitQual);
  const Fit fit{"CalcReciHyperbolFit", Values(1), Values(2)};
  storeLine(lineThrough(fit, Form::reciprocal, Form::reciprocal), k0, k1, FitQual);
}

void TCurveFit::CalcLogFit(double& k0, double& k1, double& FitQual) const {
  clear(k0, k1, FitQual);
  const Fit fit{"CalcLogFit", Values(1), Values(2)};
  storeLine(lineThrough(fit, Form::logarithm, Form::plain), k0, k1, FitQual);
}

void TCurveFit::CalcReciLogFit(double& k0, double& k1, double& FitQual) const {
  clear(k0, k1, FitQual);
  const Fit fit{"CalcReciLogFit", Values(1), Values(2)};
  storeLine(lineThrough(fit, Form::logarithm, Form::reciprocal), k0, k1, FitQual);
}

void TCurveFit::CalcPowerFit(double& k0, double& k1, double& FitQual) const {
  clear(k0, k1, FitQual);
  const Fit fit{"CalcPowerFit", Values(1), Values(2)};
  Line line = lineThrough(fit, Form::logarithm, Form::logarithm);
  line.constant = std::exp(line.constant);
  storeLine(line, k0, k1, FitQual);
}

void TCurveFit::CalcExponentialFit(double& k0, double& k1, double& FitQual) const {
  clear(k0, k1, FitQual);
  const Fit fit{"CalcExponentialFit", Values(1), Values(2)};
  Line line = lineThrough(fit, Form::plain, Form::logarithm);
  line.constant = std::exp(line.constant);
  storeLine(line, k0, k1, FitQual);
}

void TCurveFit::CalcHoerlFit(double& k0, double& k1, double& k2, double& FitQual) const {
  clear(k0, k1, FitQual);
  k2 = 0;
  const Fit fit{"CalcHoerlFit", Values(1), Values(2)};
  fit.requirePairs(3);
  fit.requireForm(Form::logarithm, Form::logarithm);
  if (!fit.isFinite()) {
    k0 = k1 = k2 = FitQual = kNaN;
    return;
  }
  fit.requireThreeDifferentX();
  // ln x near r is almost a straight line; its deviation from the tangent there takes its place:
  // ln x = ln r - 1 + x / r + bend.
  const double r = kernels::mean(fit.x);
  std::vector<double> bend;
  bend.reserve(fit.x.size());
  for (const double v : fit.x) bend.push_back(logRatioBend(v, r));
  const Transformed v(fit.y, Form::logarithm);
  const auto plane = kernels::fitPlane(fit.x, bend, v.values);
  if (plane.singular) fit.fail("singular system");
  const ExtendedPair power = plane.slope2;
  const ExtendedPair lnBase = plane.slope1 - power / Extended{r};
  const ExtendedPair lnFactor = plane.constant + ExtendedPair{v.offset, 0} -
                                power * ExtendedPair{std::log(Extended{r}) - 1, 0};
  k0 = static_cast<double>(std::exp(lnFactor.hi));
  k1 = static_cast<double>(std::exp(lnBase.hi));
  k2 = static_cast<double>(power.hi);
  FitQual = plane.quality;
}

void TCurveFit::CalcGaussFit(double& k0, double& k1, double& k2, double& FitQual) const {
  clear(k0, k1, FitQual);
  k2 = 0;
  const Fit fit{"CalcGaussFit", Values(1), Values(2)};
  fit.requirePairs(3);
  fit.requireForm(Form::plain, Form::logarithm);
  if (!fit.isFinite()) {
    k0 = k1 = k2 = FitQual = kNaN;
    return;
  }
  fit.requireThreeDifferentX();
  // x = (centre + d) 2^exponent.
  const int exponent = kernels::largestExponent(fit.x);
  std::vector<double> d;
  std::vector<double> squares;
  d.reserve(fit.x.size());
  squares.reserve(fit.x.size());
  for (const double x : fit.x) d.push_back(std::ldexp(x, -exponent));
  const double centre = kernels::mean(d);
  for (double& v : d) {
    v -= centre;
    squares.push_back(v * v);
  }
  const Transformed v(fit.y, Form::logarithm);
  const auto plane = kernels::fitPlane(d, squares, v.values);
  if (plane.singular) fit.fail("singular system");
  // A curvature that the rounding of y explains is none.
  constexpr double kNoise = 4 * std::numeric_limits<double>::epsilon();
  if (!(plane.slope2.hi < 0) || plane.part2 <= kNoise) fit.fail("the data have no maximum");
  const ExtendedPair shift = plane.slope1 / plane.slope2 * Extended{-0.5L};
  const ExtendedPair lnTop =
      plane.constant + ExtendedPair{v.offset, 0} + plane.slope1 * shift * Extended{0.5L};
  k0 = static_cast<double>(std::exp(lnTop.hi));
  k1 = static_cast<double>(std::ldexp((shift + ExtendedPair{centre, 0}).hi, exponent));
  k2 = static_cast<double>(std::ldexp(std::sqrt(-0.5L / plane.slope2.hi), exponent));
  FitQual = plane.quality;
}

}  // namespace zel
